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

#endif
