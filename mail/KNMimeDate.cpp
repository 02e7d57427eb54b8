#include <mail/KNMimeDate.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

constexpr const char* monthNames[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char* dayNames[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

struct Zone {
    const char* name;
    int hours;
};

constexpr Zone namedZones[] = {{"UT", 0},   {"UTC", 0},  {"GMT", 0},  {"Z", 0},    {"EST", -5},
                               {"EDT", -4}, {"CST", -6}, {"CDT", -5}, {"MST", -7}, {"MDT", -6},
                               {"PST", -8}, {"PDT", -7}};

// Days from 1970-01-01 to the given civil date (proleptic Gregorian).
std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d) noexcept
{
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

void civilFromDays(std::int64_t z, std::int64_t& y, unsigned& m, unsigned& d) noexcept
{
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y = static_cast<std::int64_t>(yoe) + era * 400 + (m <= 2);
}

bool isLeap(std::int64_t y) noexcept
{
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

unsigned daysInMonth(std::int64_t y, unsigned m) noexcept
{
    static constexpr unsigned days[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && isLeap(y) ? 29 : days[m - 1];
}

bool isDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

bool isAlpha(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool allDigits(std::string_view text) noexcept
{
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

bool allAlpha(std::string_view text) noexcept
{
    return !text.empty() && std::all_of(text.begin(), text.end(), isAlpha);
}

int number(std::string_view digits) noexcept
{
    int n = 0;
    for (const char c : digits)
        n = n * 10 + (c - '0');
    return n;
}

// The words of a date: comments dropped, cut at blanks and commas.
std::vector<std::string_view> wordsOf(std::string_view text)
{
    std::vector<std::string_view> words;
    std::size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (c == '(') {
            int depth = 0;
            for (; i < text.size(); ++i) {
                if (text[i] == '\\')
                    ++i;
                else if (text[i] == '(')
                    ++depth;
                else if (text[i] == ')' && --depth == 0)
                    break;
            }
            ++i;
            continue;
        }
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ',') {
            ++i;
            continue;
        }
        const std::size_t start = i;
        while (i < text.size() && text[i] != ' ' && text[i] != '\t' && text[i] != '\r' && text[i] != '\n'
               && text[i] != ',' && text[i] != '(')
            ++i;
        words.push_back(text.substr(start, i - start));
    }
    return words;
}

int monthOf(std::string_view word) noexcept
{
    if (word.size() < 3 || !allAlpha(word))
        return 0;
    for (int m = 0; m < 12; ++m) {
        if (knEqualsIgnoreCase(word.substr(0, 3), monthNames[m]))
            return m + 1;
    }
    return 0;
}

// "HH:MM" or "HH:MM:SS" into seconds of the day; false for anything else.
bool timeOf(std::string_view word, int& seconds) noexcept
{
    int parts[3] = {0, 0, 0};
    int count = 0;
    std::size_t start = 0;
    for (;;) {
        const std::size_t colon = word.find(':', start);
        const std::string_view part = word.substr(start, colon == std::string_view::npos ? colon : colon - start);
        if (count == 3 || part.empty() || part.size() > 2 || !allDigits(part))
            return false;
        parts[count++] = number(part);
        if (colon == std::string_view::npos)
            break;
        start = colon + 1;
    }
    if (count < 2)
        return false;
    if (parts[0] > 23 || parts[1] > 59 || parts[2] > 60)
        return false;
    seconds = parts[0] * 3600 + parts[1] * 60 + std::min(parts[2], 59); // a leap second reads as :59
    return true;
}

// A zone word into minutes east of UTC; false when it is no zone.
bool zoneOf(std::string_view word, int& minutes) noexcept
{
    if ((word[0] == '+' || word[0] == '-') && word.size() >= 3) {
        KNCString digits;
        for (const char c : word.substr(1)) {
            if (c != ':')
                digits += c;
        }
        if (!allDigits(digits) || (digits.size() != 4 && digits.size() != 2))
            return false;
        const int hours = number(std::string_view(digits).substr(0, 2));
        const int mins = digits.size() == 4 ? number(std::string_view(digits).substr(2)) : 0;
        if (hours > 23 || mins > 59)
            return false;
        minutes = (word[0] == '-' ? -1 : 1) * (hours * 60 + mins);
        return true;
    }
    if (!allAlpha(word))
        return false;
    for (const Zone& zone : namedZones) {
        if (knEqualsIgnoreCase(word, zone.name)) {
            minutes = zone.hours * 60;
            return true;
        }
    }
    minutes = 0; // military letters and zone names nobody agrees on carry no offset
    return true;
}

} // namespace

KNMimeDate::KNMimeDate() = default;

KNMimeDate::KNMimeDate(TimePoint time, int offsetMinutes)
    : time_(std::chrono::floor<std::chrono::seconds>(time)), offset_(std::clamp(offsetMinutes, -1439, 1439))
{
}

std::optional<KNMimeDate> KNMimeDate::parse(std::string_view text)
{
    const std::vector<std::string_view> words = wordsOf(text);
    std::size_t w = 0;
    if (w < words.size() && allAlpha(words[w]) && monthOf(words[w]) == 0) {
        bool day = false;
        for (const char* name : dayNames)
            day = day || (words[w].size() >= 3 && knEqualsIgnoreCase(words[w].substr(0, 3), name));
        if (!day)
            return std::nullopt;
        ++w;
    }
    if (words.size() < w + 4)
        return std::nullopt;
    const std::string_view dayWord = words[w], monthWord = words[w + 1], yearWord = words[w + 2];
    if (!allDigits(dayWord) || dayWord.size() > 2 || !allDigits(yearWord) || yearWord.size() < 2 || yearWord.size() > 4)
        return std::nullopt;
    const int month = monthOf(monthWord);
    if (month == 0)
        return std::nullopt;
    std::int64_t year = number(yearWord);
    if (yearWord.size() == 2)
        year += year < 50 ? 2000 : 1900;
    else if (yearWord.size() == 3)
        year += 1900;
    const int day = number(dayWord);
    if (day < 1 || static_cast<unsigned>(day) > daysInMonth(year, static_cast<unsigned>(month)))
        return std::nullopt;
    int seconds = 0;
    if (!timeOf(words[w + 3], seconds))
        return std::nullopt;
    int offset = 0;
    if (words.size() > w + 4 && !zoneOf(words[w + 4], offset))
        return std::nullopt;
    const std::int64_t epoch = daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) * 86400
        + seconds - static_cast<std::int64_t>(offset) * 60;
    // The clock's ticks are finer than seconds (nanoseconds in the usual libraries, some 292
    // years either side of 1970): a year past them would overflow the conversion.
    constexpr std::int64_t limit = std::chrono::duration_cast<std::chrono::seconds>(TimePoint::duration::max()).count();
    if (epoch > limit || epoch < -limit)
        return std::nullopt;
    return KNMimeDate(TimePoint(std::chrono::seconds(epoch)), offset);
}

KNMimeDate KNMimeDate::now()
{
    const TimePoint current = std::chrono::system_clock::now();
    const std::time_t t = std::chrono::system_clock::to_time_t(current);
    std::tm local{};
    localtime_r(&t, &local);
    const std::int64_t localSeconds = daysFromCivil(local.tm_year + 1900, static_cast<unsigned>(local.tm_mon + 1),
                                                    static_cast<unsigned>(local.tm_mday)) * 86400
        + local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
    const auto offset = static_cast<int>((localSeconds - static_cast<std::int64_t>(t)) / 60);
    return KNMimeDate(current, offset);
}

KNCString KNMimeDate::asString() const
{
    const std::int64_t local = std::chrono::duration_cast<std::chrono::seconds>(time_.time_since_epoch()).count()
        + static_cast<std::int64_t>(offset_) * 60;
    std::int64_t days = local / 86400;
    std::int64_t secs = local % 86400;
    if (secs < 0) {
        secs += 86400;
        --days;
    }
    std::int64_t year = 0;
    unsigned month = 0, day = 0;
    civilFromDays(days, year, month, day);
    const auto weekday = static_cast<unsigned>(((days % 7) + 7 + 4) % 7); // 1970-01-01 was a Thursday
    const int absOffset = offset_ < 0 ? -offset_ : offset_;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%s, %u %s %04lld %02d:%02d:%02d %c%02d%02d", dayNames[weekday], day,
                  monthNames[month - 1], static_cast<long long>(year), static_cast<int>(secs / 3600),
                  static_cast<int>(secs / 60 % 60), static_cast<int>(secs % 60), offset_ < 0 ? '-' : '+',
                  absOffset / 60, absOffset % 60);
    return buffer;
}

bool operator==(const KNMimeDate& a, const KNMimeDate& b)
{
    return a.getTime() == b.getTime() && a.getOffsetMinutes() == b.getOffsetMinutes();
}

bool operator!=(const KNMimeDate& a, const KNMimeDate& b)
{
    return !(a == b);
}
