#include <mail/KNMimeAddressList.h>

#include <mail/KNMimeHeaderText.h>
#include <mail/KNMimeMessageView.h>
#include <mail/internal/KNMimeMailScan.h>
#include <mime/KNMimeUtils.h>

#include <algorithm>
#include <utility>

namespace {

using KNMimeMailScan::isSpace;

bool isSpecial(char c) noexcept
{
    return c == '(' || c == ')' || c == '<' || c == '>' || c == '@' || c == ',' || c == ';' || c == ':'
        || c == '"' || c == '[' || c == ']';
}

struct Token {
    enum class Kind { Atom, Quoted, Comment, Special, DomainLiteral };
    Kind kind = Kind::Atom;
    KNCString text;     // the content: unquoted, unescaped; the character of a special
    bool spaceBefore = false;
    std::size_t begin = 0;
    std::size_t end = 0;

    bool is(char special) const { return kind == Kind::Special && text.size() == 1 && text[0] == special; }
};

// Cuts an address header value into tokens in one pass; nested comments are counted, not
// recursed into.
std::vector<Token> tokenized(std::string_view text, KNCStringList& problems)
{
    std::vector<Token> tokens;
    std::size_t i = 0;
    bool space = false;
    while (i < text.size()) {
        const char c = text[i];
        if (isSpace(c)) {
            space = true;
            ++i;
            continue;
        }
        Token token;
        token.spaceBefore = space;
        token.begin = i;
        space = false;
        if (c == '"' || c == '(' || c == '[') {
            const char close = c == '"' ? '"' : (c == '(' ? ')' : ']');
            token.kind = c == '"' ? Token::Kind::Quoted : (c == '(' ? Token::Kind::Comment : Token::Kind::DomainLiteral);
            int depth = 1;
            ++i;
            for (; i < text.size(); ++i) {
                const char d = text[i];
                if (d == '\\' && i + 1 < text.size() && close != ']') {
                    const char escaped = text[++i];
                    if (escaped != '\r' && escaped != '\n') // a line break is no part of a value, quoted or not
                        token.text += escaped;
                    continue;
                }
                if (c == '(' && d == '(') {
                    ++depth;
                } else if (d == close && --depth == 0) {
                    break;
                }
                if (d != '\r' && d != '\n')
                    token.text += d;
            }
            if (i >= text.size()) {
                problems.push_back(c == '"' ? "unterminated quoted string" : (c == '(' ? "unterminated comment" : "unterminated domain literal"));
            } else {
                ++i;
            }
        } else if (isSpecial(c)) {
            token.kind = Token::Kind::Special;
            token.text = KNCString(1, c);
            ++i;
        } else {
            const std::size_t start = i;
            while (i < text.size() && !isSpace(text[i]) && !isSpecial(text[i]))
                ++i;
            token.text = KNCString(text.substr(start, i - start));
        }
        token.end = i;
        tokens.push_back(std::move(token));
    }
    return tokens;
}

bool isDotAtom(std::string_view text)
{
    if (text.empty() || text.front() == '.' || text.back() == '.')
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isSpace(c) || isSpecial(c) || c == '\\' || static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            return false;
        if (c == '.' && text[i + 1] == '.')
            return false;
    }
    return true;
}

// A display name from its words: quoted strings unquoted, words joined as they were spaced,
// encoded words decoded.
KNCString phraseText(const std::vector<const Token*>& words)
{
    KNCString joined;
    for (const Token* word : words) {
        if (word->kind == Token::Kind::Comment)
            continue;
        if (!joined.empty() && word->spaceBefore)
            joined += ' ';
        joined += word->text;
    }
    return KNMimeHeaderText::decode(joined);
}

// An address from its tokens, blanks and comments dropped; a quoted local part stays quoted
// unless it needs no quotes.
KNCString addressText(const std::vector<const Token*>& tokens)
{
    KNCString out;
    for (const Token* token : tokens) {
        switch (token->kind) {
        case Token::Kind::Atom:
            out += token->text;
            break;
        case Token::Kind::Quoted:
            out += isDotAtom(token->text) ? token->text : KNMimeUtils::quoteAndEscape(token->text);
            break;
        case Token::Kind::DomainLiteral:
            out += "[" + token->text + "]";
            break;
        case Token::Kind::Special:
            if (token->is('@'))
                out += '@';
            break;
        case Token::Kind::Comment:
            break;
        }
    }
    return out;
}

// True when the tokens are a local part (words), one '@' outside quotes, then a domain
// (atoms or domain literals).
bool isCompleteAddress(const std::vector<const Token*>& tokens)
{
    std::size_t at = 0;
    while (at < tokens.size() && (tokens[at]->kind == Token::Kind::Atom || tokens[at]->kind == Token::Kind::Quoted))
        ++at;
    if (at == 0 || at + 1 >= tokens.size() || !tokens[at]->is('@'))
        return false;
    for (std::size_t i = at + 1; i < tokens.size(); ++i) {
        if (tokens[i]->kind != Token::Kind::Atom && tokens[i]->kind != Token::Kind::DomainLiteral)
            return false;
    }
    return true;
}

// The reading of one list: the tokens of the current mailbox and the group around it.
class ListReader {
public:
    ListReader(std::string_view text, std::vector<KNMimeAddress>& addresses, KNCStringList& problems)
        : text_(text), addresses_(addresses), problems_(problems)
    {
    }

    void read(const std::vector<Token>& tokens)
    {
        for (const Token& token : tokens) {
            if (token.kind == Token::Kind::Comment) {
                comments_.push_back(&token);
                continue;
            }
            if (token.kind == Token::Kind::Special && !inAngle_) {
                const char c = token.text[0];
                if (c == ',') {
                    finishMailbox();
                    continue;
                }
                if (c == ';') {
                    finishMailbox();
                    closeGroup();
                    continue;
                }
                if (c == ':' && !sawAngle_ && !hasAt(phrase_)) {
                    const KNCString name = phraseText(phrase_);
                    closeGroup();
                    clear();
                    inGroup_ = true;
                    group_ = name;
                    groupCount_ = 0;
                    continue;
                }
                if (c == '<') {
                    note(token);
                    inAngle_ = true;
                    sawAngle_ = true;
                    continue;
                }
            }
            if (token.is(',') && inAngle_ && !isRoute()) {
                finishMailbox(); // a '>' was forgotten: the comma still ends the mailbox
                continue;
            }
            if (token.is('>') && inAngle_) {
                note(token);
                inAngle_ = false;
                continue;
            }
            note(token);
            if (inAngle_) {
                if (token.is(':'))
                    angle_.clear(); // an obsolete route "@a,@b:" ends here
                else if (!token.is(','))
                    angle_.push_back(&token);
            } else if (!sawAngle_) {
                phrase_.push_back(&token);
            }
        }
        finishMailbox();
        closeGroup();
    }

private:
    static bool hasAt(const std::vector<const Token*>& tokens)
    {
        for (const Token* token : tokens) {
            if (token->is('@'))
                return true;
        }
        return false;
    }

    // True while the angle brackets hold an obsolete route ("@a,@b:") not yet ended by ':'.
    bool isRoute() const { return !angle_.empty() && angle_.front()->is('@'); }

    void note(const Token& token)
    {
        if (!any_)
            begin_ = token.begin;
        any_ = true;
        end_ = token.end;
    }

    void clear()
    {
        phrase_.clear();
        angle_.clear();
        comments_.clear();
        inAngle_ = false;
        sawAngle_ = false;
        any_ = false;
    }

    void finishMailbox()
    {
        if (!any_) {
            clear();
            return;
        }
        const std::vector<const Token*>& spec = sawAngle_ ? angle_ : phrase_;
        const KNCString raw(text_.substr(begin_, end_ - begin_));
        if (!isCompleteAddress(spec)) {
            problems_.push_back("not an address: " + raw);
        } else {
            if (sawAngle_ && inAngle_)
                problems_.push_back("missing '>' in: " + raw);
            KNCString name;
            if (sawAngle_)
                name = phraseText(phrase_);
            else if (!comments_.empty())
                name = KNMimeHeaderText::decode(comments_.back()->text);
            addresses_.emplace_back(name, addressText(spec), group_);
            ++groupCount_;
        }
        clear();
    }

    void closeGroup()
    {
        if (!inGroup_)
            return;
        if (groupCount_ == 0 && !group_.empty())
            addresses_.emplace_back("", "", group_);
        inGroup_ = false;
        group_.clear();
    }

    std::string_view text_;
    std::vector<KNMimeAddress>& addresses_;
    KNCStringList& problems_;
    std::vector<const Token*> phrase_;
    std::vector<const Token*> angle_;
    std::vector<const Token*> comments_;
    bool inAngle_ = false;
    bool sawAngle_ = false;
    bool any_ = false;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    bool inGroup_ = false;
    KNCString group_;
    std::size_t groupCount_ = 0;
};

} // namespace

KNMimeAddressList::KNMimeAddressList() = default;

KNMimeAddressList KNMimeAddressList::parse(std::string_view value)
{
    KNMimeAddressList list;
    const std::vector<Token> tokens = tokenized(value, list.problems_);
    ListReader(value, list.addresses_, list.problems_).read(tokens);
    return list;
}

std::optional<KNMimeAddressList> KNMimeAddressList::fromHeader(const KNMimePart& part, std::string_view label)
{
    const std::optional<KNCString> value = KNMimeMessageView::header(part, label);
    if (!value)
        return std::nullopt;
    return parse(*value);
}

void KNMimeAddressList::add(const KNMimeAddress& address)
{
    addresses_.push_back(address);
}

KNCString KNMimeAddressList::encode() const
{
    KNCString out;
    std::size_t i = 0;
    while (i < addresses_.size()) {
        if (!out.empty())
            out += ", ";
        const KNMimeAddress& first = addresses_[i];
        if (first.getGroup().empty()) {
            out += first.encode();
            ++i;
            continue;
        }
        // Consecutive members of one group share "Group: ...;"; an empty group stands alone.
        const KNCString& group = first.getGroup();
        out += KNMimeHeaderText::encodePhrase(group) + ":";
        if (first.getAddress().empty()) {
            out += ';';
            ++i;
            continue;
        }
        for (bool firstMember = true;
             i < addresses_.size() && addresses_[i].getGroup() == group && !addresses_[i].getAddress().empty(); ++i) {
            out += firstMember ? " " : ", ";
            out += addresses_[i].encode();
            firstMember = false;
        }
        out += ';';
    }
    return out;
}

bool operator==(const KNMimeAddressList& a, const KNMimeAddressList& b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

bool operator!=(const KNMimeAddressList& a, const KNMimeAddressList& b)
{
    return !(a == b);
}
