#include <mail/KNMimeExtendedParameters.h>

#include <mail/KNMimeCharset.h>
#include <mail/KNMimeHeaderText.h>
#include <mail/internal/KNMimeMailScan.h>

#include <algorithm>

namespace {

using KNMimeMailScan::isSpace;

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// %XX escapes decoded; a '%' without two hex digits is kept.
void appendPercentDecoded(KNCString& out, std::string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            const int hi = knHexDigitValue(text[i + 1]), lo = knHexDigitValue(text[i + 2]);
            if (hi >= 0 && lo >= 0) {
                out += static_cast<char>(hi << 4 | lo);
                i += 2;
                continue;
            }
        }
        out += text[i];
    }
}

// Splits "charset'lang'data" into charset and data; without two quotes everything is data.
std::string_view splitCharset(std::string_view value, KNCString& charset)
{
    const std::size_t first = value.find('\'');
    const std::size_t second = first == std::string_view::npos ? first : value.find('\'', first + 1);
    if (second == std::string_view::npos)
        return value;
    charset = KNCString(value.substr(0, first));
    return value.substr(second + 1);
}

// An RFC 2231 section of `base`: "base*", "base*N" or "base*N*". The number is -1 for
// "base*"; false when `name` is no section of `base`.
bool sectionOf(std::string_view name, std::string_view base, long& number, bool& extended)
{
    if (name.size() <= base.size() || name[base.size()] != '*'
        || !knEqualsIgnoreCase(name.substr(0, base.size()), base))
        return false;
    std::string_view rest = name.substr(base.size() + 1);
    if (rest.empty()) {
        number = -1;
        extended = true;
        return true;
    }
    extended = rest.back() == '*';
    if (extended)
        rest.remove_suffix(1);
    if (rest.empty() || rest.size() > 6)
        return false;
    number = 0;
    for (const char c : rest) {
        if (c < '0' || c > '9')
            return false;
        number = number * 10 + (c - '0');
    }
    return true;
}

bool isPlainValueChar(char c) noexcept
{
    const auto b = static_cast<unsigned char>(c);
    return b >= 0x20 && b < 0x7F;
}

// Characters RFC 2231 lets stand unescaped in an extended value.
bool isAttributeChar(char c) noexcept
{
    const auto b = static_cast<unsigned char>(c);
    if (b <= 0x20 || b >= 0x7F)
        return false;
    return std::string_view("*'%()<>@,;:\\\"/[]?=").find(c) == std::string_view::npos;
}

} // namespace

KNMimeExtendedParameters::KNMimeExtendedParameters() = default;

KNMimeExtendedParameters KNMimeExtendedParameters::fromHeaderValue(std::string_view text)
{
    KNMimeExtendedParameters result;
    // One pass: cut at ';' outside quotes and comments, unquoting and dropping comments.
    KNCString segment;
    KNCString name;
    bool haveName = false;
    bool first = true;
    bool wasQuoted = false;
    auto finish = [&]() {
        if (first) {
            result.value_ = knToLower(trimmed(segment));
            first = false;
        } else if (haveName) {
            const std::string_view n = trimmed(name);
            if (!n.empty())
                result.parameters_.emplace_back(KNCString(n), wasQuoted ? segment : KNCString(trimmed(segment)));
        }
        segment.clear();
        name.clear();
        haveName = false;
        wasQuoted = false;
    };
    std::size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (c == '"') {
            // A quoted string: backslash escapes a character; an unterminated one runs to the end.
            if (!wasQuoted)
                segment = KNCString(trimmed(segment));
            wasQuoted = true;
            ++i;
            while (i < text.size() && text[i] != '"') {
                if (text[i] == '\\' && i + 1 < text.size())
                    ++i;
                if (text[i] != '\r' && text[i] != '\n')
                    segment += text[i];
                ++i;
            }
            ++i;
        } else if (c == '(') {
            int depth = 0;
            for (; i < text.size(); ++i) {
                if (text[i] == '\\') {
                    ++i;
                } else if (text[i] == '(') {
                    ++depth;
                } else if (text[i] == ')' && --depth == 0) {
                    ++i;
                    break;
                }
            }
        } else if (c == ';') {
            finish();
            ++i;
        } else if (c == '=' && !first && !haveName) {
            name = segment;
            segment.clear();
            haveName = true;
            ++i;
        } else {
            if (!wasQuoted)
                segment += c;
            ++i;
        }
    }
    finish();
    return result;
}

void KNMimeExtendedParameters::setValue(std::string_view value)
{
    value_ = KNCString(value);
}

void KNMimeExtendedParameters::add(std::string_view name, std::string_view value)
{
    parameters_.emplace_back(KNCString(name), KNCString(value));
}

std::optional<KNCString> KNMimeExtendedParameters::get(std::string_view name) const
{
    const std::pair<KNCString, KNCString>* plain = nullptr;
    const std::pair<KNCString, KNCString>* whole = nullptr;
    struct Section {
        long number;
        bool extended;
        std::string_view value;
    };
    std::vector<Section> sections;
    for (const auto& parameter : parameters_) {
        long number = 0;
        bool extended = false;
        if (knEqualsIgnoreCase(parameter.first, name)) {
            if (plain == nullptr)
                plain = &parameter;
        } else if (sectionOf(parameter.first, name, number, extended)) {
            if (number < 0) {
                if (whole == nullptr)
                    whole = &parameter;
            } else {
                sections.push_back({number, extended, parameter.second});
            }
        }
    }

    KNCString charset;
    KNCString bytes;
    if (!sections.empty()) {
        std::stable_sort(sections.begin(), sections.end(),
                         [](const Section& a, const Section& b) { return a.number < b.number; });
        long previous = -1;
        for (std::size_t k = 0; k < sections.size(); ++k) {
            const Section& s = sections[k];
            if (s.number == previous)
                continue; // a repeated section number: the first one written counts
            previous = s.number;
            std::string_view data = s.value;
            if (k == 0 && s.extended)
                data = splitCharset(data, charset);
            if (s.extended)
                appendPercentDecoded(bytes, data);
            else
                bytes.append(data.data(), data.size());
        }
    } else if (whole != nullptr) {
        appendPercentDecoded(bytes, splitCharset(whole->second, charset));
    } else if (plain != nullptr) {
        // Printable ASCII without an encoded word decodes to itself.
        const std::string_view value = plain->second;
        if (std::all_of(value.begin(), value.end(), isPlainValueChar) && value.find("=?") == std::string_view::npos)
            return plain->second;
        return KNMimeHeaderText::decode(value);
    } else {
        return std::nullopt;
    }
    // No charset given: UTF-8 when the bytes are valid UTF-8, else windows-1252.
    return KNMimeCharset::toUtf8(bytes, charset.empty() ? "x-unknown" : std::string_view(charset)).text;
}

std::vector<KNMimeParameter> KNMimeExtendedParameters::encode(std::string_view name, std::string_view utf8Value,
                                                              std::size_t sectionLength)
{
    std::vector<KNMimeParameter> out;
    if (std::all_of(utf8Value.begin(), utf8Value.end(), isPlainValueChar)) {
        out.emplace_back(KNCString(name), KNCString(utf8Value));
        return out;
    }
    sectionLength = std::max<std::size_t>(sectionLength, 12);
    static constexpr char hex[] = "0123456789ABCDEF";
    KNCString value = "utf-8''";
    for (const char c : utf8Value) {
        const std::size_t width = isAttributeChar(c) ? 1 : 3;
        if (value.size() + width > sectionLength) {
            out.emplace_back(KNCString(name) + "*" + std::to_string(out.size()) + "*", value);
            value.clear();
        }
        if (width == 1) {
            value += c;
        } else {
            value += '%';
            value += hex[static_cast<unsigned char>(c) >> 4];
            value += hex[static_cast<unsigned char>(c) & 0x0F];
        }
    }
    if (out.empty()) {
        out.emplace_back(KNCString(name) + "*", value);
        return out;
    }
    out.emplace_back(KNCString(name) + "*" + std::to_string(out.size()) + "*", value);
    return out;
}
