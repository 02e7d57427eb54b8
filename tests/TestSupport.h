#ifndef KN_TESTS_TESTSUPPORT_H
#define KN_TESTS_TESTSUPPORT_H

// Helpers the suites share for checking what an action throws.

#include <foundation/KNCString.h>
#include <foundation/KNxmsg.h>

#include <gtest/gtest.h>

#include <typeinfo>

// The text of the error `action` throws, which must be of exactly type E (not a subclass
// or a base); otherwise a text saying what went wrong, so the comparison fails readably.
template <class E, class F>
KNCString errorText(F action)
{
    try {
        action();
    } catch (const KNxmsg& e) {
        return typeid(e) == typeid(E) ? e.why() : "of another type: " + e.why();
    }
    return "no error";
}

// Expects `action` to throw exactly E with the text `why`.
template <class E, class F>
void expectError(F action, const KNCString& why)
{
    EXPECT_EQ(errorText<E>(action), why);
}

// What `action` returns, or the text of the library error it throws.
template <class F>
KNCString outcome(F action)
{
    try {
        return action();
    } catch (const KNxmsg& e) {
        return e.why();
    }
}

// A T read from `text` with its fromString.
template <class T>
T parsedAs(const KNCString& text)
{
    T value;
    value.fromString(text);
    return value;
}

// The text of the error refusing to print a non-token.
inline KNCString invalidToken(const KNCString& text)
{
    return "[INVALID_TOKEN] The following is not a valid token:  \"" + text + "\"";
}

// Unfolding and trimming as the rule reads, erasing from a copy: quadratic on purpose, to
// compare the library's scanners against.
inline KNCString naiveUnfoldAndTrim(KNCString text)
{
    for (std::size_t at = text.find("\r\n"); at != KNCString::npos; at = text.find("\r\n", at + 1))
        if (at + 2 < text.size() && (text[at + 2] == ' ' || text[at + 2] == '\t'))
            text.erase(at, 2);
    text.erase(0, text.find_first_not_of(" \t\r\n"));
    return text.erase(text.find_last_not_of(" \t\r\n") + 1);
}

#endif
