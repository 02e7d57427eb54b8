#include <mime/internal/KNMimeEntityParse.h>

#include <foundation/KNSubstringFinder.h>
#include <mime/KNMimeMultipartImp.h>
#include <mime/internal/KNMimeEntityText.h>

#include <limits>

KNMimeEntityParse::KNMimeEntityParse(std::string_view text, Search search) : text_(text), search_(search) {}

KNMimeEntityParse::~KNMimeEntityParse() = default;

KNMimePart KNMimeEntityParse::entity(bool requireMultipart)
{
    return KNMimeEntityText::parseEntity(text_, 0, requireMultipart, *this);
}

void KNMimeEntityParse::multipartBody(KNMimeMultipartImp& multipart)
{
    KNMimeEntityText::parseMultipartBody(multipart, text_, 1, *this);
}

std::size_t KNMimeEntityParse::findDelimiter(const KNSubstringFinder& delimiter, std::string_view slice,
                                             std::size_t from, unsigned level)
{
    if (outermostLevel_ == 0)
        outermostLevel_ = level;
    // Most mail has one multipart level, searched once: it is not worth an index. Below that
    // level every level would scan the text of all those under it again.
    const bool wanted = search_ == Search::Indexed || (search_ == Search::Nested && level > outermostLevel_);
    if (wanted && !index_) {
        const std::size_t maxRuns = search_ == Search::Indexed ? std::numeric_limits<std::size_t>::max()
                                                               : KNMimeDelimiterIndex::runLimit(text_.size());
        index_.emplace(text_, maxRuns);
    }
    return index_ ? index_->find(slice, delimiter, from) : delimiter.find(slice, from);
}

void KNMimeEntityParse::appendPart(KNMimeMultipartImp& multipart, const KNMimePart& part)
{
    multipart.parts_.append(part);
}
