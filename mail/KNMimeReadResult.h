#ifndef KN_MAIL_KNMIMEREADRESULT_H
#define KN_MAIL_KNMIMEREADRESULT_H

/// @file
/// What the forgiving reader gives back for one message.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <mail/KNMimeDefect.h>
#include <mime/KNMimePart.h>

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

/// One message as KNMimeReader read it: an ordinary part tree, every entity in it (and in
/// the messages attached to it) depth first with its path, and the defects read past.
class KNMIME_EXPORT KNMimeReadResult {
public:
    /// One entity of the tree as read: the message itself, a part, or an attached message.
    struct Entity {
        KNCString path;     ///< "" for the message, "1", "1.2", ...; an attached message of leaf "2" is "2.1"
        KNMimePart part;    ///< shares its body with the tree
        /// Byte offset in the input where the entity's text starts; for an entity of a message
        /// attached in base64 or quoted-printable, where that message's encoded body starts.
        std::size_t offset;
    };

    /// An empty message (no headers, empty body), no entities beyond it, no defects.
    KNMimeReadResult();
    /// The reader's result; `entities` start with the message and go depth first.
    KNMimeReadResult(KNMimePart message, std::vector<Entity> entities, std::vector<KNMimeDefect> defects);

    /// The message: its headers and body, a multipart body for a multipart message.
    const KNMimePart& getMessage() const { return message_; }
    /// What was repaired, in input order within each entity.
    const std::vector<KNMimeDefect>& getDefects() const { return defects_; }
    /// Every entity depth first, attached messages right after the leaf that holds them. A
    /// snapshot of the tree as read: it does not follow later changes to the tree.
    const std::vector<Entity>& getEntities() const { return entities_; }
    /// The message read from a message/rfc822 or message/global leaf of this tree, or
    /// nothing for any other part (or when the leaf could not be opened).
    std::optional<KNMimePart> getAttachedMessage(const KNMimePart& leaf) const;
    /// The entity at `path`, or nothing.
    std::optional<Entity> findEntity(const KNCString& path) const;

private:
    KNMimePart message_;
    std::vector<Entity> entities_;
    std::vector<KNMimeDefect> defects_;
    std::unordered_map<const void*, std::size_t> leafToMessage_; // leaf body -> entity index
};

#endif
