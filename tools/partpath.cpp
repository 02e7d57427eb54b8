#include "partpath.h"

#include "commands.h"

namespace {

const KNCString MessagePath = ".";
constexpr std::size_t MaxDigits = 9; // far above any real part count, and no overflow

[[noreturn]] void badPath(const KNCString& text)
{
    throw UsageError("bad part path \"" + text + "\": write part numbers from 1 up, joined by dots "
                     "as tree prints them (2, 1.2), or \".\" for the whole message");
}

// One part number of a path; 0 when it is not a number from 1 up.
std::size_t partNumber(const KNCString& digits)
{
    if (digits.empty() || digits.size() > MaxDigits)
        return 0;
    std::size_t number = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9')
            return 0;
        number = number * 10 + static_cast<std::size_t>(c - '0');
    }
    return number;
}

} // namespace

PartPath parsePartPath(const KNCString& text)
{
    PartPath path;
    if (text == MessagePath)
        return path;
    std::size_t start = 0;
    for (;;) {
        const std::size_t dot = text.find('.', start);
        const std::size_t number = partNumber(text.substr(start, dot - start));
        if (number == 0)
            badPath(text);
        path.push_back(number - 1);
        if (dot == KNCString::npos)
            return path;
        start = dot + 1;
    }
}

KNCString formatPartPath(const PartPath& path)
{
    if (path.empty())
        return MessagePath;
    KNCString text;
    for (const std::size_t index : path) {
        if (!text.empty())
            text += '.';
        text += std::to_string(index + 1);
    }
    return text;
}

KNCString describePart(const PartPath& path)
{
    return path.empty() ? KNCString("the message") : "part " + formatPartPath(path);
}
