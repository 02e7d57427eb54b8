#include <mail/KNMimeReader.h>

#include <foundation/KNMessage.h>
#include <mail/internal/KNMimeStructureReader.h>
#include <mime/KNMimeError.h>
#include <mime/internal/KNMimeHeaderArena.h>

#include <utility>

namespace {
const KNCatMsg KNMIMEMSG_INPUT_TOO_LARGE{"mime_", 32800,
                                         "[INPUT_TOO_LARGE] The input of %zu bytes exceeds the reader's limit of %zu bytes"};
} // namespace

const KNCatMsg* knmime_INPUT_TOO_LARGE()
{
    return &KNMIMEMSG_INPUT_TOO_LARGE;
}

KNMimeReadResult KNMimeReader::read(std::string_view bytes) const
{
    if (bytes.size() > maxInputSize_)
        KNThrow(KNMimeError(KNMessage(knmime_INPUT_TOO_LARGE(), bytes.size(), maxInputSize_)));
    KNMimeStructureReader::Output output;
    // The message's header bodies share memory, as when the strict parser reads.
    const KNMimeHeaderArena::Scope headerMemory;
    KNMimePart message = KNMimeStructureReader::readStored(
        bytes, [](std::size_t pos) { return pos; }, KNCString(), 0, openAttachedMessages_, output);
    return KNMimeReadResult(std::move(message), std::move(output.entities), std::move(output.defects));
}
