#include <mail/KNMimeReadResult.h>

#include <utility>

KNMimeReadResult::KNMimeReadResult() : entities_{Entity{KNCString(), message_, 0}} {}

KNMimeReadResult::KNMimeReadResult(KNMimePart message, std::vector<Entity> entities, std::vector<KNMimeDefect> defects)
    : message_(std::move(message)), entities_(std::move(entities)), defects_(std::move(defects))
{
    // An attached message's root follows its leaf directly, with the leaf's path + ".1".
    for (std::size_t i = 0; i + 1 < entities_.size(); ++i) {
        const Entity& leaf = entities_[i];
        const Entity& next = entities_[i + 1];
        if (!leaf.part.isMultipart() && next.path == (leaf.path.empty() ? "1" : leaf.path + ".1"))
            leafToMessage_.emplace(leaf.part.body(), i + 1);
    }
}

std::optional<KNMimePart> KNMimeReadResult::getAttachedMessage(const KNMimePart& leaf) const
{
    const auto found = leafToMessage_.find(leaf.body());
    if (found == leafToMessage_.end())
        return std::nullopt;
    return entities_[found->second].part;
}

std::optional<KNMimeReadResult::Entity> KNMimeReadResult::findEntity(const KNCString& path) const
{
    for (const Entity& entity : entities_)
        if (entity.path == path)
            return entity;
    return std::nullopt;
}
