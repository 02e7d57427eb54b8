#include <mime/KNMimeParameter.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeScan.h>

KNMimeParameter::KNMimeParameter() = default;

KNMimeParameter::KNMimeParameter(const KNCString& name, const KNCString& value)
    : name_(name), value_(value)
{
}

KNCString KNMimeParameter::getName() const
{
    return name_;
}

void KNMimeParameter::setName(const KNCString& name)
{
    name_ = name;
}

KNCString KNMimeParameter::getValue() const
{
    return value_;
}

void KNMimeParameter::setValue(const KNCString& value)
{
    value_ = value;
}

void KNMimeParameter::fromString(const KNCString& text)
{
    *this = parsed(text);
}

KNMimeParameter KNMimeParameter::parsed(std::string_view text)
{
    const std::size_t equals = KNMimeScan::findDelimiter(text, '=');
    if (equals == std::string_view::npos)
        KNThrow(KNMimeParseError(KNMessage(knmime_MISSING_PARAMETER_SEPARATOR())));
    // The name is deliberately not checked here: an invalid one is refused when printed.
    KNMimeParameter result;
    result.name_ = KNMimeScan::cleanToken(text.substr(0, equals), true);
    result.value_ = KNMimeScan::cleanToken(text.substr(equals + 1), true);
    return result;
}

KNCString KNMimeParameter::asString() const
{
    KNCString result;
    result.reserve(name_.size() + value_.size() + 10);
    appendTo(result);
    return result;
}

void KNMimeParameter::appendTo(KNCString& out) const
{
    if (!KNMimeScan::isToken(name_))
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_TOKEN(), name_)));
    out += name_;
    out += "=\"";
    // Quoted even when the value is a plain token: readers expect one form only.
    const std::size_t n = value_.size();
    std::size_t from = 0;
    for (std::size_t i = 0; i < n; ++i) {
        if (value_[i] != '"' && value_[i] != '\\')
            continue;
        out.append(value_, from, i - from);
        out += '\\';
        out += value_[i];
        from = i + 1;
    }
    out.append(value_, from);
    out += '"';
}

bool operator==(const KNMimeParameter& a, const KNMimeParameter& b)
{
    return knEqualsIgnoreCase(a.name_, b.name_) && a.value_ == b.value_;
}

bool operator!=(const KNMimeParameter& a, const KNMimeParameter& b)
{
    return !(a == b);
}
