#include <mime/KNMimeContentDispositionImp.h>

#include <foundation/KNMessage.h>
#include <mime/KNMimeContentDisposition.h>
#include <mime/KNMimeError.h>
#include <mime/KNMimeMessages.h>
#include <mime/internal/KNMimeScan.h>

#include <string_view>
#include <utility>

KNMimeContentDispositionImp::KNMimeContentDispositionImp() = default;

KNMimeContentDispositionImp::KNMimeContentDispositionImp(const KNCString& type, const KNCString& filename)
    : type_(type)
{
    if (!filename.empty())
        parameters_.insertParameter(KNMimeParameter(KNMimeContentDisposition::Filename, filename));
}

KNMimeContentDispositionImp::~KNMimeContentDispositionImp() = default;

KNMimeContentDispositionImp* KNMimeContentDispositionImp::copy() const
{
    return new KNMimeContentDispositionImp(*this);
}

KNCString KNMimeContentDispositionImp::getType() const
{
    return type_;
}

void KNMimeContentDispositionImp::setType(const KNCString& type)
{
    type_ = type;
}

KNCString KNMimeContentDispositionImp::getFilename() const
{
    return parameters_.getParameterValue(KNMimeContentDisposition::Filename, 0);
}

void KNMimeContentDispositionImp::setFilename(const KNCString& filename)
{
    parameters_.setParameterValue(KNMimeContentDisposition::Filename, filename, 0);
}

void KNMimeContentDispositionImp::fromString(const KNCString& text)
{
    // Lenient on purpose: no ';' means a bare type, and an empty type is accepted.
    const std::string_view view(text);
    const std::size_t semicolon = KNMimeScan::findDelimiter(view, ';');
    KNCString type = KNMimeScan::cleanToken(view.substr(0, semicolon), true);
    KNMimeParameterList parameters;
    if (semicolon != view.npos)
        parameters = KNMimeParameterList::parsed(view.substr(semicolon + 1));
    // Only now that everything parsed is the body changed.
    parameters_ = std::move(parameters);
    type_ = std::move(type);
}

KNCString KNMimeContentDispositionImp::asString() const
{
    KNCString result;
    result.reserve(10 * parameters_.getParameterCount() + 10);
    appendTo(result);
    return result;
}

void KNMimeContentDispositionImp::appendTo(KNCString& out) const
{
    if (!KNMimeScan::isToken(type_))
        KNThrow(KNMimeError(KNMessage(knmime_INVALID_TOKEN(), type_)));
    out += type_;
    parameters_.appendTo(out);
}

bool operator==(const KNMimeContentDispositionImp& a, const KNMimeContentDispositionImp& b)
{
    return knEqualsIgnoreCase(a.getType(), b.getType()) && a.parameterList() == b.parameterList();
}

bool operator!=(const KNMimeContentDispositionImp& a, const KNMimeContentDispositionImp& b)
{
    return !(a == b);
}
