#include <mime/KNMimeParameterList.h>

#include <mime/internal/KNMimeScan.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

// Up to this length lists are compared pairwise; longer ones through sorted keys, so that
// comparing two long lists does not take quadratic time.
constexpr std::size_t pairwiseCompareLimit = 16;

bool occursIn(const KNTOrderedList<KNMimeParameter>& list, const KNMimeParameter& p)
{
    return std::find(list.begin(), list.end(), p) != list.end();
}

// One key per distinct parameter: the lower-cased name makes equal keys exactly of the
// parameters that compare equal.
std::vector<std::pair<KNCString, KNCString>> distinctKeys(const KNTOrderedList<KNMimeParameter>& list)
{
    std::vector<std::pair<KNCString, KNCString>> keys;
    keys.reserve(list.size());
    for (const KNMimeParameter& p : list)
        keys.emplace_back(knToLower(p.getName()), p.getValue());
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

} // namespace

KNMimeParameterList::KNMimeParameterList() = default;

std::size_t KNMimeParameterList::getParameterCount() const
{
    return parameters_.size();
}

KNMimeParameter KNMimeParameterList::getParameter(std::size_t i) const
{
    return parameters_.at(i);
}

const KNCString& KNMimeParameterList::getParameterName(std::size_t i) const
{
    return parameters_.at(i).name_;
}

std::size_t KNMimeParameterList::findParameter(const KNCString& name, std::size_t start) const
{
    for (std::size_t i = start; i < parameters_.size(); ++i) {
        if (knEqualsIgnoreCase(parameters_[i].name_, name))
            return i;
    }
    return KNCString::npos;
}

KNCString KNMimeParameterList::getParameterValue(const KNCString& name, std::size_t start) const
{
    const std::size_t i = findParameter(name, start);
    return i == KNCString::npos ? KNCString() : parameters_[i].value_;
}

void KNMimeParameterList::setParameterValue(const KNCString& name, const KNCString& value, std::size_t start)
{
    const std::size_t i = findParameter(name, start);
    if (i != KNCString::npos)
        parameters_.removeAt(i);
    // An empty value only removes: that is how a parameter is removed by name.
    if (!value.empty())
        parameters_.append(KNMimeParameter(name, value));
}

void KNMimeParameterList::insertParameter(const KNMimeParameter& p)
{
    parameters_.append(p);
}

void KNMimeParameterList::removeParameter(std::size_t i)
{
    parameters_.removeAt(i);
}

void KNMimeParameterList::removeAllParameters()
{
    parameters_.clear();
}

void KNMimeParameterList::fromString(const KNCString& text)
{
    *this = parsed(text);
}

KNMimeParameterList KNMimeParameterList::parsed(std::string_view text)
{
    KNMimeParameterList result;
    // Each ';' is found outside quotes and comments, so the scan can resume right after it
    // in the unquoted state. An empty piece before a ';' has no '=' and is refused.
    std::size_t from = 0;
    for (std::size_t semicolon; (semicolon = KNMimeScan::findDelimiter(text, ';', from)) != text.npos;
         from = semicolon + 1)
        result.parameters_.append(KNMimeParameter::parsed(text.substr(from, semicolon - from)));
    // What follows the last ';' may be blank: a trailing ';' adds nothing.
    const KNCString rest = KNMimeScan::unfoldAndTrim(text.substr(from));
    if (!rest.empty())
        result.parameters_.append(KNMimeParameter::parsed(rest));
    return result;
}

KNCString KNMimeParameterList::asString() const
{
    KNCString result;
    result.reserve(20 * parameters_.size());
    appendTo(result);
    return result;
}

void KNMimeParameterList::appendTo(KNCString& out) const
{
    for (const KNMimeParameter& p : parameters_) {
        out += "; ";
        p.appendTo(out);
    }
}

bool operator==(const KNMimeParameterList& a, const KNMimeParameterList& b)
{
    const KNTOrderedList<KNMimeParameter>& left = a.parameters_;
    const KNTOrderedList<KNMimeParameter>& right = b.parameters_;
    if (left.size() != right.size())
        return false;
    if (left.size() > pairwiseCompareLimit)
        return distinctKeys(left) == distinctKeys(right);
    for (std::size_t k = 0; k < left.size(); ++k) {
        if (!occursIn(left, right[k]) || !occursIn(right, left[k]))
            return false;
    }
    return true;
}

bool operator!=(const KNMimeParameterList& a, const KNMimeParameterList& b)
{
    return !(a == b);
}
