#include <mail/KNMimeHeaderText.h>

#include <mail/KNMimeBodyDecoder.h>
#include <mail/KNMimeCharset.h>
#include <mail/internal/KNMimeMailScan.h>
#include <mime/KNMimeUtils.h>

#include <algorithm>

namespace {

using KNMimeMailScan::isBlank;
using KNMimeMailScan::isLineBreak;

constexpr std::size_t wordLimit = 75;
constexpr std::string_view wordPrefixB = "=?UTF-8?B?";
constexpr std::string_view wordPrefixQ = "=?UTF-8?Q?";

// The payload of a Q word: '_' is a blank, =XX a byte, an invalid escape stays as written.
KNCString decodedQ(std::string_view text)
{
    KNCString out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '_') {
            out += ' ';
        } else if (c == '=' && i + 2 < text.size() && knHexDigitValue(text[i + 1]) >= 0 && knHexDigitValue(text[i + 2]) >= 0) {
            out += static_cast<char>(knHexDigitValue(text[i + 1]) << 4 | knHexDigitValue(text[i + 2]));
            i += 2;
        } else {
            out += c;
        }
    }
    return out;
}

// One encoded word found in a value.
struct Word {
    std::string_view charset;
    char encoding = 0;
    std::string_view payload;
    std::size_t end = 0; // just past "?="
};

// The scanner of a value: finds encoded words and remembers where a payload scan failed, so
// no stretch of the value is scanned twice for a closing "?=".
class WordScanner {
public:
    explicit WordScanner(std::string_view text) : text_(text) {}

    // The encoded word starting at `pos` ("=?" already seen there), if one does.
    bool wordAt(std::size_t pos, Word& word)
    {
        std::size_t i = pos + 2;
        const std::size_t charsetStart = i;
        while (i < text_.size() && text_[i] != '?' && !isBlank(text_[i]) && !isLineBreak(text_[i])
               && i - charsetStart < 64)
            ++i;
        if (i == charsetStart || i + 2 >= text_.size() || text_[i] != '?' || text_[i + 2] != '?')
            return false;
        const char encoding = static_cast<char>(text_[i + 1] & ~0x20);
        if (encoding != 'B' && encoding != 'Q')
            return false;
        word.charset = text_.substr(charsetStart, i - charsetStart);
        word.encoding = encoding;
        const std::size_t payloadStart = i + 3;
        if (payloadStart < deadUntil_)
            return false; // an earlier scan saw no "?=" before the blank that ends this one
        std::size_t k = payloadStart;
        while (k < text_.size() && !isBlank(text_[k]) && !isLineBreak(text_[k])) {
            if (text_[k] == '?' && k + 1 < text_.size() && text_[k + 1] == '=') {
                word.payload = text_.substr(payloadStart, k - payloadStart);
                word.end = k + 2;
                return true;
            }
            ++k;
        }
        deadUntil_ = k;
        return false;
    }

private:
    std::string_view text_;
    std::size_t deadUntil_ = 0;
};

// Collects the decoded value: plain runs, and the bytes of consecutive encoded words in one
// charset, each converted when it ends.
class Assembler {
public:
    explicit Assembler(KNMimeHeaderText::Decoded& result) : result_(result) {}

    void plain(char c)
    {
        flushWords();
        plain_ += c;
    }
    void blank(char c)
    {
        if (inWords_)
            gap_ += c;
        else
            plain_ += c;
    }
    void word(std::string_view charset, const KNCString& bytes)
    {
        flushPlain();
        gap_.clear(); // white space between two encoded words is dropped
        if (inWords_ && !knEqualsIgnoreCase(charset, charset_))
            flushWords();
        if (!inWords_) {
            charset_ = KNCString(charset);
            inWords_ = true;
        }
        bytes_ += bytes;
    }
    void finish()
    {
        flushWords();
        flushPlain();
    }

private:
    void flushPlain()
    {
        if (plain_.empty())
            return;
        append(KNMimeCharset::toUtf8(plain_, "x-unknown"));
        plain_.clear();
    }
    void flushWords()
    {
        if (!inWords_)
            return;
        append(KNMimeCharset::toUtf8(bytes_, charset_));
        bytes_.clear();
        inWords_ = false;
        plain_ += gap_;
        gap_.clear();
    }
    void append(const KNMimeCharset::Conversion& converted)
    {
        result_.text += converted.text;
        result_.lossy = result_.lossy || converted.lossy;
        result_.unknownCharset = result_.unknownCharset || converted.unknownCharset;
    }

    KNMimeHeaderText::Decoded& result_;
    KNCString plain_;
    KNCString gap_;
    KNCString bytes_;
    KNCString charset_;
    bool inWords_ = false;
};

bool isPrintableAscii(char c) noexcept
{
    return c >= 0x20 && c < 0x7F;
}

bool isAtomChar(char c) noexcept
{
    if (!isPrintableAscii(c) || c == ' ')
        return false;
    return std::string_view("()<>[]:;@\\,.\"").find(c) == std::string_view::npos;
}

// Characters a Q word may carry as they are, in any header context.
bool isQSafe(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '!' || c == '*'
        || c == '+' || c == '-' || c == '/';
}

// Length of the UTF-8 character whose first byte is `lead` (1 for a stray byte).
std::size_t characterLength(unsigned char lead) noexcept
{
    if (lead >= 0xF0)
        return 4;
    if (lead >= 0xE0)
        return 3;
    if (lead >= 0xC0)
        return 2;
    return 1;
}

bool needsWords(std::string_view text)
{
    return text.find("=?") != std::string_view::npos
        || !std::all_of(text.begin(), text.end(), [](char c) { return isPrintableAscii(c) || c == '\t'; });
}

} // namespace

KNMimeHeaderText::Decoded KNMimeHeaderText::decodeWithReport(std::string_view value)
{
    Decoded result;
    result.text.reserve(value.size());
    Assembler out(result);
    WordScanner scanner(value);
    std::size_t i = 0;
    while (i < value.size()) {
        const char c = value[i];
        if (isLineBreak(c)) {
            ++i; // unfolding: the blank after the break stays
            continue;
        }
        if (isBlank(c)) {
            out.blank(c);
            ++i;
            continue;
        }
        Word word;
        if (c == '=' && i + 1 < value.size() && value[i + 1] == '?') {
            if (scanner.wordAt(i, word)) {
                out.word(KNMimeCharset::canonicalName(word.charset),
                         word.encoding == 'B' ? KNMimeBodyDecoder::decodeBase64(word.payload) : decodedQ(word.payload));
                i = word.end;
                continue;
            }
            result.malformed = true;
        }
        out.plain(c);
        ++i;
    }
    out.finish();
    return result;
}

KNCString KNMimeHeaderText::decode(std::string_view value)
{
    return decodeWithReport(value).text;
}

KNCString KNMimeHeaderText::encodeWords(std::string_view utf8)
{
    // Q where it is no longer than B.
    const auto escaped = static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return !isQSafe(c) && c != ' '; }));
    const bool useQ = utf8.size() + 2 * escaped <= (utf8.size() + 2) / 3 * 4;
    const std::string_view prefix = useQ ? wordPrefixQ : wordPrefixB;
    const std::size_t room = wordLimit - prefix.size() - 2;
    const std::size_t roomBytesB = room / 4 * 3;
    static constexpr char hex[] = "0123456789ABCDEF";

    KNCString out;
    out.reserve(utf8.size() * 3 + 16);
    KNCString chunk; // the bytes of the current word (B), or its payload (Q)
    auto flush = [&]() {
        if (chunk.empty())
            return;
        if (!out.empty())
            out += ' ';
        out += prefix;
        if (useQ) {
            out += chunk;
        } else {
            out += KNMimeUtils::encodeBase64(chunk);
        }
        out += "?=";
        chunk.clear();
    };
    std::size_t i = 0;
    while (i < utf8.size()) {
        const std::size_t len = std::min(characterLength(static_cast<unsigned char>(utf8[i])), utf8.size() - i);
        const std::string_view character = utf8.substr(i, len);
        i += len;
        if (useQ) {
            KNCString piece;
            for (const char c : character) {
                if (c == ' ') {
                    piece += '_';
                } else if (isQSafe(c)) {
                    piece += c;
                } else {
                    piece += '=';
                    piece += hex[static_cast<unsigned char>(c) >> 4];
                    piece += hex[static_cast<unsigned char>(c) & 0x0F];
                }
            }
            if (chunk.size() + piece.size() > room)
                flush();
            chunk += piece;
        } else {
            if (chunk.size() + character.size() > roomBytesB)
                flush();
            chunk.append(character.data(), character.size());
        }
    }
    flush();
    return out;
}

KNCString KNMimeHeaderText::encode(std::string_view utf8)
{
    if (!needsWords(utf8))
        return KNCString(utf8);
    // Words (runs of non-blanks) that need encoding are encoded together with the blanks
    // between them; the blanks around such a run stay as written.
    KNCString out;
    out.reserve(utf8.size() * 3);
    std::size_t i = 0;
    std::size_t runStart = std::string_view::npos;
    std::size_t runEnd = 0;
    while (i <= utf8.size()) {
        std::size_t blankEnd = i;
        while (blankEnd < utf8.size() && isBlank(utf8[blankEnd]))
            ++blankEnd;
        std::size_t wordEnd = blankEnd;
        while (wordEnd < utf8.size() && !isBlank(utf8[wordEnd]))
            ++wordEnd;
        const std::string_view word = utf8.substr(blankEnd, wordEnd - blankEnd);
        if (!word.empty() && needsWords(word)) {
            if (runStart == std::string_view::npos) {
                out.append(utf8.substr(i, blankEnd - i));
                runStart = blankEnd;
            }
            runEnd = wordEnd;
        } else {
            if (runStart != std::string_view::npos) {
                out += encodeWords(utf8.substr(runStart, runEnd - runStart));
                runStart = std::string_view::npos;
            }
            out.append(utf8.substr(i, wordEnd - i));
        }
        if (wordEnd == utf8.size())
            break;
        i = wordEnd;
    }
    if (runStart != std::string_view::npos)
        out += encodeWords(utf8.substr(runStart, runEnd - runStart));
    return out;
}

KNCString KNMimeHeaderText::encodePhrase(std::string_view utf8)
{
    if (needsWords(utf8))
        return encodeWords(utf8);
    bool atoms = !utf8.empty() && utf8.front() != ' ' && utf8.back() != ' ';
    for (std::size_t i = 0; atoms && i < utf8.size(); ++i) {
        const char c = utf8[i];
        atoms = isAtomChar(c) || (c == ' ' && utf8[i - 1] != ' ');
    }
    if (atoms)
        return KNCString(utf8);
    KNCString out = "\"";
    for (const char c : utf8) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    out += '"';
    return out;
}
