#ifndef KN_MIME_KNMIMEPARAMETERLIST_H
#define KN_MIME_KNMIMEPARAMETERLIST_H

/// @class KNMimeParameterList
/// The ordered list of parameters that follows a media type or disposition type, held as a
/// plain value; duplicates are allowed and names are looked up ignoring case.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <foundation/KNTOrderedList.h>
#include <mime/KNMimeParameter.h>

#include <cstddef>
#include <string_view>

class KNMIME_EXPORT KNMimeParameterList {
public:
    KNMimeParameterList();

    /// The number of parameters.
    std::size_t getParameterCount() const;
    /// A copy of parameter i; KNBoundsErr when i is not below the count.
    KNMimeParameter getParameter(std::size_t i) const;
    /// The name of parameter i as written, without copying it; KNBoundsErr past the end.
    const KNCString& getParameterName(std::size_t i) const;
    /// Position of the first parameter at or after `start` named `name` (ignoring case), or npos.
    std::size_t findParameter(const KNCString& name, std::size_t start = 0) const;
    /// Value of the parameter findParameter finds; empty when there is none.
    KNCString getParameterValue(const KNCString& name, std::size_t start = 0) const;
    /// Removes the first match at or after `start`, then appends name=value unless the
    /// value is empty (so an empty value removes the parameter).
    void setParameterValue(const KNCString& name, const KNCString& value, std::size_t start = 0);
    /// Appends a copy at the end.
    void insertParameter(const KNMimeParameter& p);
    /// KNBoundsErr when i is not below the count.
    void removeParameter(std::size_t i);
    /// Removes every parameter.
    void removeAllParameters();

    /// Replaces the list by the ';'-separated parameters of `text`; on KNMimeParseError the
    /// list is left as it was.
    void fromString(const KNCString& text);
    /// Every parameter preceded by "; ", e.g. `; charset="us-ascii"`; empty for no parameters.
    KNCString asString() const;

private:
    friend class KNMimeContentType;
    friend class KNMimeContentTypeImp;
    friend class KNMimeContentDispositionImp;
    friend KNMIME_EXPORT bool operator==(const KNMimeParameterList& a, const KNMimeParameterList& b);

    static KNMimeParameterList parsed(std::string_view text);
    void appendTo(KNCString& out) const;

    KNTOrderedList<KNMimeParameter> parameters_;
};

/// Order-insensitive: equal sizes, and every element of each list occurs in the other
/// (multiplicity is not counted, so [a, a, b] equals [a, b, b]).
/// @relates KNMimeParameterList
KNMIME_EXPORT bool operator==(const KNMimeParameterList& a, const KNMimeParameterList& b);
/// The negation of operator==.
/// @relates KNMimeParameterList
KNMIME_EXPORT bool operator!=(const KNMimeParameterList& a, const KNMimeParameterList& b);

/// The parameter operations of a class that owns a parameter list (a content type or a
/// content disposition, handle or body), forwarded unchanged to that list. `Owner` provides
/// parameterList() on a const owner, and on a non-const one for the changing operations.
template <class Owner>
class KNMimeParameterAccess {
public:
    /// The number of parameters.
    std::size_t getParameterCount() const { return list().getParameterCount(); }
    /// A copy of parameter i; KNBoundsErr when i is not below the count.
    KNMimeParameter getParameter(std::size_t i) const { return list().getParameter(i); }
    /// Position of the first parameter at or after `start` named `name` (ignoring case), or npos.
    std::size_t findParameter(const KNCString& name, std::size_t start = 0) const
    {
        return list().findParameter(name, start);
    }
    /// Value of the parameter findParameter finds; empty when there is none.
    KNCString getParameterValue(const KNCString& name, std::size_t start = 0) const
    {
        return list().getParameterValue(name, start);
    }
    /// Removes the first match at or after `start`, then appends name=value unless the value
    /// is empty (so an empty value removes the parameter).
    void setParameterValue(const KNCString& name, const KNCString& value, std::size_t start = 0)
    {
        list().setParameterValue(name, value, start);
    }
    /// Appends a copy at the end.
    void insertParameter(const KNMimeParameter& p) { list().insertParameter(p); }
    /// Removes parameter i; KNBoundsErr when i is not below the count.
    void removeParameter(std::size_t i) { list().removeParameter(i); }
    /// Removes every parameter.
    void removeAllParameters() { list().removeAllParameters(); }

protected:
    KNMimeParameterAccess() = default;
    ~KNMimeParameterAccess() = default;

private:
    decltype(auto) list() const { return static_cast<const Owner&>(*this).parameterList(); }
    decltype(auto) list() { return static_cast<Owner&>(*this).parameterList(); }
};

#endif
