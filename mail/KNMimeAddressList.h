#ifndef KN_MAIL_KNMIMEADDRESSLIST_H
#define KN_MAIL_KNMIMEADDRESSLIST_H

// The mailboxes of an address header (From, To, Cc, Reply-To), read forgivingly and written
// with non-ASCII names as encoded words.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <mail/KNMimeAddress.h>

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

class KNMimePart;

/// An ordered list of mailboxes as a plain value. Reading never throws: a malformed entry is
/// skipped and described in getProblems(), the others are read.
class KNMIME_EXPORT KNMimeAddressList {
public:
    /// No mailboxes, no problems.
    KNMimeAddressList();

    /// Reads an address header value: display names (atoms, quoted strings, encoded words,
    /// also inside quotes) decoded to UTF-8, groups ("Team: a@x, b@y;"), comments (a comment
    /// names the mailbox when it has no other name), quoted local parts, obsolete routes.
    static KNMimeAddressList parse(std::string_view value);
    /// The list in the first header `label` of `part`, or nothing when there is none.
    static std::optional<KNMimeAddressList> fromHeader(const KNMimePart& part, std::string_view label);

    /// The number of mailboxes (an empty group counts as one entry).
    std::size_t size() const { return addresses_.size(); }
    /// True when there are no mailboxes.
    bool empty() const { return addresses_.empty(); }
    /// Mailbox i; std::out_of_range when i is not below size().
    const KNMimeAddress& at(std::size_t i) const { return addresses_.at(i); }
    /// Mailbox i, unchecked.
    const KNMimeAddress& operator[](std::size_t i) const { return addresses_[i]; }
    /// The first mailbox.
    std::vector<KNMimeAddress>::const_iterator begin() const { return addresses_.begin(); }
    /// Past the last mailbox.
    std::vector<KNMimeAddress>::const_iterator end() const { return addresses_.end(); }
    /// Appends a mailbox.
    void add(const KNMimeAddress& address);

    /// What could not be read, one text per problem (empty when the whole value was read).
    const KNCStringList& getProblems() const { return problems_; }
    /// True when there were no problems.
    bool isComplete() const { return problems_.empty(); }

    /// The list as a header value: mailboxes as KNMimeAddress::encode writes them, separated by
    /// ", "; consecutive mailboxes of one group written as "Group: a, b;", an empty group as
    /// "Group:;". parse() reads it back equal.
    KNCString encode() const;

private:
    std::vector<KNMimeAddress> addresses_;
    KNCStringList problems_;
};

/// Equal when the mailboxes are equal in order (problems play no part).
KNMIME_EXPORT bool operator==(const KNMimeAddressList& a, const KNMimeAddressList& b);
/// Not operator==.
KNMIME_EXPORT bool operator!=(const KNMimeAddressList& a, const KNMimeAddressList& b);

#endif
