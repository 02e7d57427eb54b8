#ifndef KN_MAIL_KNMIMEADDRESS_H
#define KN_MAIL_KNMIMEADDRESS_H

// One mailbox of an address header: a display name in UTF-8, an address, and the group it
// was listed in.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <string_view>

/// A mailbox as a plain value: display name (UTF-8, decoded), address ("local@domain", the
/// local part quoted when it needs quotes) and group name (UTF-8, empty outside a group).
/// An entry with a group name and an empty address stands for an empty group.
class KNMIME_EXPORT KNMimeAddress {
public:
    /// No name, no address, no group.
    KNMimeAddress();
    /// A mailbox with these parts, taken as given.
    KNMimeAddress(std::string_view name, std::string_view address, std::string_view group = {});

    /// The display name in UTF-8 (empty when there is none).
    const KNCString& getName() const { return name_; }
    /// Sets the display name (UTF-8).
    void setName(std::string_view name);
    /// The address "local@domain".
    const KNCString& getAddress() const { return address_; }
    /// Sets the address.
    void setAddress(std::string_view address);
    /// The group this mailbox was listed in, in UTF-8 (empty outside a group).
    const KNCString& getGroup() const { return group_; }
    /// Sets the group name (UTF-8).
    void setGroup(std::string_view group);

    /// The address before its last "@" (the whole address when it has none).
    KNCString getLocalPart() const;
    /// The address after its last "@", lower-cased (empty when it has none).
    KNCString getDomain() const;

    /// For display, in UTF-8: "Name <local@domain>", or the address alone when there is no
    /// name; a name holding specials is quoted.
    KNCString toDisplayString() const;
    /// For a header: the name as KNMimeHeaderText::encodePhrase writes it, then "<address>";
    /// the address alone when there is no name.
    KNCString encode() const;

private:
    KNCString name_;
    KNCString address_;
    KNCString group_;
};

/// Equal when names, addresses and groups are equal byte for byte.
KNMIME_EXPORT bool operator==(const KNMimeAddress& a, const KNMimeAddress& b);
/// Not operator==.
KNMIME_EXPORT bool operator!=(const KNMimeAddress& a, const KNMimeAddress& b);

#endif
