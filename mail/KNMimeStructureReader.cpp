#include <mail/internal/KNMimeStructureReader.h>

#include <foundation/KNxmsg.h>
#include <mail/internal/KNMimeFieldReader.h>
#include <mail/internal/KNMimeMailScan.h>
#include <mail/internal/KNMimeStoredText.h>
#include <mail/KNMimeBodyDecoder.h>
#include <mail/KNMimeExtendedParameters.h>
#include <mail/KNMimeReader.h>
#include <mime/KNMimeContentType.h>
#include <mime/KNMimeContentTypeHeader.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeHeaderImp.h>
#include <mime/KNMimeMultipart.h>
#include <mime/KNMimeMultipartImp.h>
#include <mime/KNMimeStringPartImp.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>
#include <mime/internal/KNMimeEntityParse.h>
#include <mime/KNMimeUtils.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

using Kind = KNMimeDefect::Kind;

namespace {

constexpr std::string_view crlf = "\r\n";
constexpr std::size_t npos = std::string_view::npos;
// Line ends are checked this far ahead of the reading at a time: one call per block, and the
// block still in the cache when it is read.
constexpr std::size_t checkAhead = 1 << 14;

bool isBlankText(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == npos;
}

// A line that reads as a header field: a run of printable characters other than the colon,
// then a colon.
bool looksLikeField(std::string_view line)
{
    std::size_t i = 0;
    while (i < line.size() && line[i] > ' ' && line[i] < 0x7f && line[i] != ':')
        ++i;
    return i > 0 && i < line.size() && line[i] == ':';
}

// What the structure needs to know of an entity's first Content-Type.
struct MediaType {
    KNCString type;
    KNCString subtype;
    KNCString boundary;
    bool extendedBoundary = false;
};

// The media type of the first Content-Type header, as written (compare ignoring case); `fallback` when there is none, text/plain
// when it was kept as text because it could not be read.
MediaType mediaTypeOf(const std::vector<KNMimeHeader>& headers, std::size_t contentType, const char* fallbackType,
                      const char* fallbackSubtype)
{
    if (contentType == npos)
        return {fallbackType, fallbackSubtype, KNCString(), false};
    const auto* typed = dynamic_cast<const KNMimeContentTypeHeaderImp*>(headers[contentType].body());
    if (typed == nullptr)
        return {"text", "plain", KNCString(), false};
    KNMimeContentType type = typed->getContentType();
    MediaType media{type.getMediaType(), type.getSubType(), KNCString(), false};
    if (!knEqualsIgnoreCase(media.type, "multipart"))
        return media;
    media.boundary = type.getParameterValue("boundary", 0);
    if (media.boundary.empty()) {
        // Only in the extended form (boundary*= or boundary*0*= ...): read the way every
        // extended parameter is read.
        media.boundary = KNMimeExtendedParameters::fromHeaderValue(typed->getValueAsString()).get("boundary").value_or("");
        // Decoding can give any byte; a boundary must print on a line of its own.
        const bool printable =
            std::all_of(media.boundary.begin(), media.boundary.end(), [](char c) { return c >= ' ' && c < 0x7f; });
        if (!printable)
            media.boundary.clear();
        if (!media.boundary.empty()) {
            // The printed form needs it, and reading it again must find it first: empty
            // plain ones go.
            while (type.findParameter("boundary", 0) != KNCString::npos)
                type.setParameterValue("boundary", KNCString(), 0);
            type.setParameterValue("boundary", media.boundary, 0);
            media.extendedBoundary = true;
        }
    }
    return media;
}

KNMimePart leafPart(std::vector<KNMimeHeader>&& headers, KNCString body)
{
    KNMimePart part(new KNMimeStringPartImp(std::move(body)));
    part.body()->adoptHeaders(std::move(headers));
    return part;
}

// The transfer encoding named by the first Content-Transfer-Encoding, lower case.
KNCString transferEncodingOf(const KNMimePart& part)
{
    const std::size_t i = part.findHeader("Content-Transfer-Encoding", 0);
    if (i == KNCString::npos)
        return KNCString();
    const KNMimeHeader header = part.getHeader(i);
    try {
        return knToLower(KNMimeUtils::cleanToken(header.body()->getValueAsString(), true));
    } catch (const KNxmsg&) {
        return KNCString();
    }
}

} // namespace

struct KNMimeStructureReader::Frame {
    KNCString boundary;
    KNCString path;
    std::vector<KNMimeHeader> headers;
    KNMimePart part;           // the multipart, made at the first delimiter line
    std::size_t entity = 0;    // index in the output's entities
    std::size_t start = 0;     // where the entity's text starts
    std::size_t bodyStart = 0; // where its preamble starts
    std::size_t epilogueStart = 0;
    std::size_t children = 0;
    enum class State { Preamble, Parts, Epilogue } state = State::Preamble;
    bool digest = false;
};

struct KNMimeStructureReader::Leaf {
    std::vector<KNMimeHeader> headers;
    KNCString path;
    std::size_t entity = 0;
    std::size_t bodyStart = 0;
    bool attachedMessage = false;
};

KNMimeStructureReader::KNMimeStructureReader(std::string_view text, OffsetMap toInput, KNCString path, unsigned levels,
                                             bool openAttachedMessages, Output& output)
    : text_(text), toInput_(std::move(toInput)), path_(std::move(path)), levels_(levels),
      openAttachedMessages_(openAttachedMessages), output_(output)
{
    // Room for the entities of most messages, read without regrowing the list. Only the
    // outermost reader asks: one per attached message asking for more each time would copy
    // the whole list every time.
    if (output_.entities.empty())
        output_.entities.reserve(8);
}

void KNMimeStructureReader::report(Kind kind, const KNCString& path, std::size_t pos, const KNCString& text)
{
    output_.defects.push_back(KNMimeDefect{kind, path, toInput_(pos), text});
}

// Text read in place is checked for line ends other than CRLF as the reading reaches it,
// while it is in the cache; at the first one, the whole read starts again from a CRLF copy.
void KNMimeStructureReader::ensureChecked(std::size_t upTo)
{
    if (unchecked_ == nullptr || upTo <= checked_)
        return;
    upTo = std::min(upTo, text_.size());
    if (!lineEndsHold(checked_, upTo, nullptr))
        throw NeedsCrlfCopy{};
    checked_ = upTo;
}

bool KNMimeStructureReader::lineEndsHold(std::size_t begin, std::size_t end, bool* sawDash) const
{
    return lineFeeds_ ? unchecked_->isBareLfBetween(begin, end, sawDash) : unchecked_->isCrlfBetween(begin, end, sawDash);
}

std::size_t KNMimeStructureReader::lineEnd(std::size_t pos) const
{
    if (lineFeeds_) {
        const void* end = std::memchr(text_.data() + pos, '\n', text_.size() - pos);
        return end == nullptr ? text_.size() : static_cast<std::size_t>(static_cast<const char*>(end) - text_.data());
    }
    const std::size_t end = text_.find(crlf, pos);
    return end == npos ? text_.size() : end;
}

std::size_t KNMimeStructureReader::nextLine(std::size_t pos) const
{
    const std::size_t end = lineEnd(pos);
    return end == text_.size() ? end : end + lineBreakSize();
}

// Text taken out of the input for the tree: as it stands, or with LF line ends made CRLF.
KNCString KNMimeStructureReader::copyOut(std::string_view text) const
{
    return lineFeeds_ ? KNMimeStoredText::withCrlf(text) : KNCString(text);
}

KNMimePart KNMimeStructureReader::readStored(std::string_view stored, const OffsetMap& toInput, const KNCString& path,
                                             unsigned levels, bool openAttachedMessages, Output& output)
{
    // Text is read in place with the line ends its first line has: CRLF, or a bare LF (as
    // mail stored on Unix has; what is copied out of it gets CRLF, as it is copied anyway).
    // The line ends are checked as the reading goes; at the first other one (a bare CR, or
    // the other kind), the read starts again from a CRLF copy.
    const std::size_t entities = output.entities.size();
    const std::size_t defects = output.defects.size();
    const std::size_t firstLineFeed = stored.find('\n');
    const bool lineFeeds = firstLineFeed != npos && (firstLineFeed == 0 || stored[firstLineFeed - 1] != '\r');
    try {
        if (firstLineFeed != npos || stored.find('\r') == npos) {
            const KNMimeStoredText text(stored, false);
            return readText(text, lineFeeds ? LineEnds::CheckedLineFeeds : LineEnds::CheckedCrlf, toInput, path,
                            levels, openAttachedMessages, output);
        }
    } catch (const NeedsCrlfCopy&) {
        output.entities.erase(output.entities.begin() + static_cast<std::ptrdiff_t>(entities), output.entities.end());
        output.defects.erase(output.defects.begin() + static_cast<std::ptrdiff_t>(defects), output.defects.end());
    }
    const KNMimeStoredText text(stored, true);
    return readText(text, LineEnds::Crlf, toInput, path, levels, openAttachedMessages, output);
}

KNMimePart KNMimeStructureReader::readText(const KNMimeStoredText& text, LineEnds lineEnds, const OffsetMap& toInput,
                                           const KNCString& path, unsigned levels, bool openAttachedMessages,
                                           Output& output)
{
    const OffsetMap map = [&](std::size_t pos) { return toInput(text.inputOffset(pos)); };
    KNMimeStructureReader reader(text.text(), map, path, levels, openAttachedMessages, output);
    if (lineEnds != LineEnds::Crlf)
        reader.unchecked_ = &text;
    reader.lineFeeds_ = lineEnds == LineEnds::CheckedLineFeeds;
    if (text.hadByteOrderMark())
        output.defects.push_back(KNMimeDefect{Kind::ByteOrderMark, path, toInput(0), "byte-order mark before the headers dropped"});
    if (text.firstBareCarriageReturn() != KNMimeStoredText::none)
        output.defects.push_back(KNMimeDefect{Kind::BareCarriageReturn, path, toInput(text.firstBareCarriageReturn()),
                                              "carriage return without line feed read as a line end"});
    if (text.firstMixedLineFeed() != KNMimeStoredText::none)
        output.defects.push_back(KNMimeDefect{Kind::MixedLineEnds, path, toInput(text.firstMixedLineFeed()),
                                              "CRLF and bare LF line ends mixed; all read as line ends"});

    // A leading mbox "From " line, then blank lines before a header, are storage, not message.
    std::size_t start = 0;
    const std::string_view all = text.text();
    if (all.substr(0, 5) == "From ") {
        reader.report(Kind::MboxFromLine, path, 0, "mbox \"From \" line dropped");
        start = reader.nextLine(0);
    }
    // Only a first line of blanks counts: an empty first line means "no headers", which is
    // also how a message without headers prints.
    std::size_t first = start;
    while (first < all.size() && isBlankText(all.substr(first, reader.lineEnd(first) - first)))
        first = reader.nextLine(first);
    if (first != start && reader.lineEnd(start) != start && first < all.size() &&
        looksLikeField(all.substr(first, reader.lineEnd(first) - first))) {
        reader.report(Kind::LeadingBlankLines, path, start, "blank lines before the first header dropped");
        start = first;
    }
    return reader.read(start);
}

KNMimePart KNMimeStructureReader::read(std::size_t start)
{
    beginEntity(readHead(start, path_, true), path_, start);
    std::size_t cursor = frames_.empty() ? text_.size() : frames_.back().bodyStart;
    while (!frames_.empty()) {
        Delimiter match;
        const std::size_t line = findDelimiterLine(cursor, match);
        if (line == npos)
            break;
        // The line end before a delimiter line belongs to the delimiter.
        const std::size_t regionEnd = line >= cursor + lineBreakSize() ? line - lineBreakSize() : cursor;
        if (!leaf_.empty())
            finishLeaf(regionEnd);
        while (frames_.size() > match.frame + 1)
            finishFrame(regionEnd);

        Frame& frame = frames_.back();
        const std::size_t after = nextLine(line);
        if (frame.state == Frame::State::Preamble) {
            KNMimeMultipart multipart;
            multipart.body()->adoptHeaders(std::move(frame.headers));
            if (regionEnd > frame.bodyStart)
                multipart.setPreamble(copyOut(text_.substr(frame.bodyStart, regionEnd - frame.bodyStart)));
            frame.part = multipart;
            frame.state = Frame::State::Parts;
            deliver(multipart, frame.entity, enclosing(frames_.size() - 1));
        }
        cursor = after;
        if (match.close) {
            frame.state = Frame::State::Epilogue;
            frame.epilogueStart = after;
            continue;
        }
        const KNCString path = childPath();
        Head head = readHead(after, path, false);
        if (head.doubledDelimiter) {
            report(Kind::DoubledDelimiter, frame.path, after, "delimiter line repeated; the empty part between skipped");
            continue;
        }
        cursor = head.bodyStart;
        beginEntity(std::move(head), path, after);
    }
    ensureChecked(text_.size()); // what no step above looked at, such as a single part's body
    if (!leaf_.empty())
        finishLeaf(text_.size());
    while (!frames_.empty())
        finishFrame(text_.size());
    return message_;
}

KNCString KNMimeStructureReader::childPath() const
{
    const Frame& parent = frames_.back();
    const KNCString number = std::to_string(parent.children + 1);
    return parent.path.empty() ? number : parent.path + "." + number;
}

// The header block from `pos`: it ends at an empty line, at a delimiter line of an open
// multipart (the part then has an empty body), at a line that is no header field (the
// body starts there), or at the end of the text.
KNMimeStructureReader::Head KNMimeStructureReader::readHead(std::size_t pos, const KNCString& path, bool atRoot)
{
    Head head;
    head.headers.reserve(8);
    std::size_t field = npos; // start of the field being gathered
    std::size_t fieldEnd = 0;
    const auto flush = [&] {
        if (field != npos)
            addField(field, fieldEnd, path, head);
        field = npos;
    };
    std::size_t p = pos;
    for (;;) {
        if (p >= text_.size()) {
            flush();
            head.bodyStart = text_.size();
            return head;
        }
        const std::size_t end = lineEnd(p);
        const std::size_t next = end == text_.size() ? end : end + lineBreakSize();
        ensureChecked(std::max(next, p + checkAhead));
        const std::string_view line = text_.substr(p, end - p);
        Delimiter match;
        if (line.empty() || (line[0] == '-' && matchDelimiter(p, end, match))) {
            flush();
            head.bodyStart = line.empty() ? next : p;
            head.doubledDelimiter = !line.empty() && p == pos && !atRoot;
            return head;
        }
        if (KNMimeMailScan::isBlank(line[0])) {
            if (field != npos)
                fieldEnd = end;
            else
                report(Kind::ContinuationWithoutHeader, path, p,
                       "folded line \"" + KNMimeFieldReader::excerpt(line) + "\" continues no header; dropped");
            p = next;
            continue;
        }
        flush();
        if (line[0] == 'F' && line.substr(0, 5) == "From ") {
            report(Kind::MisplacedFromLine, path, p, "mbox \"From \" line inside the headers dropped");
        } else if (line.find(':') == npos) {
            report(Kind::HeaderWithoutColon, path, p,
                   "line \"" + KNMimeFieldReader::excerpt(line) + "\" is no header field; the body starts there");
            head.bodyStart = p;
            return head;
        } else {
            field = p;
            fieldEnd = end;
        }
        p = next;
    }
}

void KNMimeStructureReader::addField(std::size_t start, std::size_t end, const KNCString& path, Head& head)
{
    const std::string_view field = text_.substr(start, end - start);
    const auto report = [&](Kind kind, const KNCString& text) { this->report(kind, path, start, text); };
    // A field folded over LF line ends is read as the CRLF text it stands for.
    KNCString crlfField;
    if (lineFeeds_ && field.find('\n') != npos)
        crlfField = copyOut(field);
    std::optional<KNMimeHeader> header = KNMimeFieldReader::read(crlfField.empty() ? field : crlfField, report);
    if (!header)
        return;
    if (head.contentType == npos) {
        // Compared on the text, which spares a copy of every label: a header was made, so its
        // name is the text before the colon less trailing blanks (names with quotes or
        // comments are dropped).
        std::string_view label = field.substr(0, field.find(':'));
        while (!label.empty() && KNMimeMailScan::isBlank(label.back()))
            label.remove_suffix(1);
        if (knEqualsIgnoreCase(label, KNMimeContentTypeHeader::Label))
            head.contentType = head.headers.size();
    }
    head.headers.push_back(std::move(*header));
}

// A delimiter line of an open multipart, innermost first: "--", the boundary, "--" for the
// closing one, then only blanks and tabs (transport padding). A closed multipart whose
// epilogue is being read matches no more.
bool KNMimeStructureReader::matchDelimiter(std::size_t pos, std::size_t lineEnd, Delimiter& match) const
{
    const std::string_view line = text_.substr(pos, lineEnd - pos);
    if (line.size() < 2 || line[0] != '-' || line[1] != '-')
        return false;
    for (std::size_t i = frames_.size(); i-- > 0;) {
        const Frame& frame = frames_[i];
        if (frame.state == Frame::State::Epilogue)
            continue;
        const std::string_view boundary = frame.boundary;
        if (line.size() < 2 + boundary.size() || line.compare(2, boundary.size(), boundary) != 0)
            continue;
        std::string_view rest = line.substr(2 + boundary.size());
        const bool close = rest.substr(0, 2) == "--";
        if (close)
            rest.remove_prefix(2);
        if (rest.find_first_not_of(" \t") != npos)
            continue;
        if (close && frame.state == Frame::State::Preamble && reusesEnclosingBoundary(i))
            continue; // see reusesEnclosingBoundary
        match = Delimiter{i, close};
        return true;
    }
    return false;
}

// A multipart that reuses the boundary of one around it and meets a closing delimiter before
// any other: that delimiter closes the enclosing one. Read the other way, the empty inner
// multipart would swallow it, and a multipart kept as a leaf (its boundary unused) would not
// read back as the leaf it printed as.
bool KNMimeStructureReader::reusesEnclosingBoundary(std::size_t frame) const
{
    for (std::size_t i = 0; i < frame; ++i)
        if (frames_[i].boundary == frames_[frame].boundary)
            return true;
    return false;
}

// The next delimiter line at or after `from`, which starts a line. Dashes are rare in most
// bodies (base64 has none), so the scan jumps from one "-" to the next; it goes block by block
// so that line ends are checked while the block is in the cache.
std::size_t KNMimeStructureReader::findDelimiterLine(std::size_t from, Delimiter& match)
{
    constexpr std::size_t block = checkAhead;
    const char* const data = text_.data();
    const std::size_t n = text_.size();
    std::size_t p = from;
    while (p < n) {
        const std::size_t blockEnd = std::min(n, p + block);
        if (unchecked_ != nullptr && checked_ <= p) {
            // The block is checked now, all of it: without a dash it holds no delimiter.
            bool dash = true;
            if (!lineEndsHold(checked_, blockEnd, &dash))
                throw NeedsCrlfCopy{};
            checked_ = blockEnd;
            if (!dash) {
                p = blockEnd;
                continue;
            }
        } else {
            ensureChecked(blockEnd);
        }
        const void* hit = std::memchr(data + p, '-', blockEnd - p);
        if (hit == nullptr) {
            p = blockEnd;
            continue;
        }
        const std::size_t q = static_cast<const char*>(hit) - data;
        if (q + 1 < n && data[q + 1] == '-' && (q == from || data[q - 1] == '\n')) {
            const std::size_t end = lineEnd(q);
            ensureChecked(end == n ? n : end + lineBreakSize());
            if (matchDelimiter(q, end, match))
                return q;
            p = end;
        } else {
            p = q + 1;
        }
    }
    return npos;
}

void KNMimeStructureReader::beginEntity(Head head, const KNCString& path, std::size_t start)
{
    const std::size_t entity = output_.entities.size();
    // An empty handle until the entity is read (a default part would make a body to throw away).
    output_.entities.push_back(KNMimeReadResult::Entity{path, KNMimePart(static_cast<KNMimePartImp*>(nullptr)), toInput_(start)});
    const bool inDigest = !frames_.empty() && frames_.back().digest;
    const MediaType media =
        mediaTypeOf(head.headers, head.contentType, inDigest ? "message" : "text", inDigest ? "rfc822" : "plain");
    if (knEqualsIgnoreCase(media.type, "multipart")) {
        if (media.extendedBoundary)
            report(Kind::ExtendedBoundary, path, start, "boundary given only in the extended form; plain form added");
        if (media.boundary.empty()) {
            report(Kind::MissingBoundary, path, start, "multipart without a boundary read as one leaf");
        } else if (levels_ + frames_.size() >= KNMimeReader::MaxNesting) {
            report(Kind::NestingTooDeep, path, start, "nesting deeper than 128 levels kept as the body of a leaf");
        } else {
            Frame frame;
            frame.boundary = media.boundary;
            frame.path = path;
            frame.headers = std::move(head.headers);
            frame.entity = entity;
            frame.start = start;
            frame.bodyStart = head.bodyStart;
            frame.digest = knEqualsIgnoreCase(media.subtype, "digest");
            frames_.push_back(std::move(frame));
            return;
        }
    }
    Leaf leaf;
    leaf.headers = std::move(head.headers);
    leaf.path = path;
    leaf.entity = entity;
    leaf.bodyStart = head.bodyStart;
    leaf.attachedMessage = knEqualsIgnoreCase(media.type, "message") &&
                           (knEqualsIgnoreCase(media.subtype, "rfc822") || knEqualsIgnoreCase(media.subtype, "global"));
    leaf_.push_back(std::move(leaf));
}

void KNMimeStructureReader::finishLeaf(std::size_t end)
{
    Leaf leaf = std::move(leaf_.back());
    leaf_.pop_back();
    const std::string_view body = leaf.bodyStart < end ? text_.substr(leaf.bodyStart, end - leaf.bodyStart) : std::string_view();
    const KNMimePart part = leafPart(std::move(leaf.headers), copyOut(body));
    deliver(part, leaf.entity, enclosing(frames_.size()));
    if (leaf.attachedMessage && openAttachedMessages_)
        openAttachedMessage(part, body, leaf.bodyStart, leaf.path);
}

// A multipart is in place since its first delimiter line; one that never had one becomes
// the leaf it is put in place as here.
void KNMimeStructureReader::finishFrame(std::size_t end)
{
    Frame frame = std::move(frames_.back());
    frames_.pop_back();
    switch (frame.state) {
    case Frame::State::Preamble: {
        report(Kind::UnusedBoundary, frame.path, frame.start,
               "boundary \"" + KNMimeFieldReader::excerpt(frame.boundary) + "\" starts no line; read as one leaf");
        const std::string_view body =
            frame.bodyStart < end ? text_.substr(frame.bodyStart, end - frame.bodyStart) : std::string_view();
        deliver(leafPart(std::move(frame.headers), copyOut(body)), frame.entity, enclosing(frames_.size()));
        break;
    }
    case Frame::State::Parts:
        report(Kind::MissingCloseDelimiter, frame.path, end, "multipart ends without its closing delimiter");
        break;
    case Frame::State::Epilogue:
        if (frame.epilogueStart < end && !isBlankText(text_.substr(frame.epilogueStart, end - frame.epilogueStart)))
            report(Kind::EpilogueDropped, frame.path, frame.epilogueStart, "text after the closing delimiter dropped");
        break;
    }
}

// Puts an entity in its place: the message, or the next part of `parent`. The part was
// just made by this reader and cannot hold its parent, so it is appended without the check
// against cycles.
void KNMimeStructureReader::deliver(const KNMimePart& part, std::size_t entity, Frame* parent)
{
    output_.entities[entity].part = part;
    if (parent == nullptr) {
        message_ = part;
        return;
    }
    KNMimeEntityParse::appendPart(static_cast<KNMimeMultipartImp&>(*parent->part.body()), part);
    ++parent->children;
}

KNMimeStructureReader::Frame* KNMimeStructureReader::enclosing(std::size_t frame)
{
    return frame == 0 ? nullptr : &frames_[frame - 1];
}

// The message inside a message/rfc822 leaf, read as entity path + ".1"; a base64 or
// quoted-printable transfer encoding is undone first.
void KNMimeStructureReader::openAttachedMessage(const KNMimePart& leaf, std::string_view body, std::size_t bodyStart,
                                                const KNCString& path)
{
    const KNCString messagePath = path.empty() ? "1" : path + ".1";
    const unsigned levels = levels_ + static_cast<unsigned>(frames_.size()) + 1;
    if (levels > KNMimeReader::MaxNesting) {
        report(Kind::NestingTooDeep, path, bodyStart, "attached message deeper than 128 levels not opened");
        return;
    }
    // Undone the forgiving way, as a mail reader would: only an encoding name nobody knows
    // leaves the text as stored (and is reported).
    const KNCString encoding = transferEncodingOf(leaf);
    const KNMimeBodyDecoder::Encoding kind = KNMimeBodyDecoder::encodingByName(encoding);
    if (kind == KNMimeBodyDecoder::Encoding::Unknown)
        report(Kind::UndecodableMessage, path, bodyStart,
               "attached message in the unknown transfer encoding \"" + KNMimeFieldReader::excerpt(encoding) +
                   "\" read as stored");
    if (kind != KNMimeBodyDecoder::Encoding::Identity && kind != KNMimeBodyDecoder::Encoding::Unknown) {
        const KNCString decoded = KNMimeBodyDecoder::decode(copyOut(body), encoding).data;
        const std::size_t offset = toInput_(bodyStart);
        readStored(decoded, [offset](std::size_t) { return offset; }, messagePath, levels, openAttachedMessages_,
                   output_);
        return;
    }
    const OffsetMap& outer = toInput_;
    readStored(body, [&outer, bodyStart](std::size_t pos) { return outer(bodyStart + pos); }, messagePath, levels,
               openAttachedMessages_, output_);
}
