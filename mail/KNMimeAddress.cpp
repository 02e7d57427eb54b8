#include <mail/KNMimeAddress.h>

#include <mail/KNMimeHeaderText.h>

KNMimeAddress::KNMimeAddress() = default;

KNMimeAddress::KNMimeAddress(std::string_view name, std::string_view address, std::string_view group)
    : name_(name), address_(address), group_(group)
{
}

void KNMimeAddress::setName(std::string_view name)
{
    name_ = KNCString(name);
}

void KNMimeAddress::setAddress(std::string_view address)
{
    address_ = KNCString(address);
}

void KNMimeAddress::setGroup(std::string_view group)
{
    group_ = KNCString(group);
}

KNCString KNMimeAddress::getLocalPart() const
{
    const std::size_t at = address_.rfind('@');
    return at == KNCString::npos ? address_ : address_.substr(0, at);
}

KNCString KNMimeAddress::getDomain() const
{
    const std::size_t at = address_.rfind('@');
    return at == KNCString::npos ? KNCString() : knToLower(std::string_view(address_).substr(at + 1));
}

KNCString KNMimeAddress::toDisplayString() const
{
    if (name_.empty())
        return address_;
    KNCString out;
    if (name_.find_first_of(",;<>@:\"()[]\\") == KNCString::npos) {
        out = name_;
    } else {
        out = "\"";
        for (const char c : name_) {
            if (c == '"' || c == '\\')
                out += '\\';
            out += c;
        }
        out += '"';
    }
    return out + " <" + address_ + ">";
}

KNCString KNMimeAddress::encode() const
{
    if (name_.empty())
        return address_;
    return KNMimeHeaderText::encodePhrase(name_) + " <" + address_ + ">";
}

bool operator==(const KNMimeAddress& a, const KNMimeAddress& b)
{
    return a.getName() == b.getName() && a.getAddress() == b.getAddress() && a.getGroup() == b.getGroup();
}

bool operator!=(const KNMimeAddress& a, const KNMimeAddress& b)
{
    return !(a == b);
}
