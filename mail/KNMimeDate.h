#ifndef KN_MAIL_KNMIMEDATE_H
#define KN_MAIL_KNMIMEDATE_H

// The value of a Date header: a point in time and the offset from UTC it was written in,
// read from RFC 5322 dates and their obsolete forms and written for a header.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>

#include <chrono>
#include <optional>
#include <string_view>

/// A date as mail carries it: a time point (seconds) and the writer's offset from UTC.
class KNMIME_EXPORT KNMimeDate {
public:
    /// The clock of the time points.
    using TimePoint = std::chrono::system_clock::time_point;

    /// The epoch, offset +0000.
    KNMimeDate();
    /// `time` (truncated to whole seconds) written at `offsetMinutes` east of UTC
    /// (clamped to -1439..1439).
    KNMimeDate(TimePoint time, int offsetMinutes);

    /// Reads a Date value: "[Day,] DD Mon YYYY HH:MM[:SS] zone" with the obsolete forms
    /// (two-digit years: below 50 is 20xx, else 19xx; three-digit years add 1900; named zones
    /// UT, GMT, EST, EDT, CST, CDT, MST, MDT, PST, PDT; military letters and a missing zone
    /// read as +0000; missing seconds; comments, extra blanks and a missing comma). Nothing
    /// when the text is no date, a field is out of range, or the date lies beyond what a
    /// TimePoint holds (with nanosecond ticks, before 1678 or after 2261).
    static std::optional<KNMimeDate> parse(std::string_view text);
    /// The current time at the local offset from UTC.
    static KNMimeDate now();

    /// The time point.
    TimePoint getTime() const { return time_; }
    /// Minutes east of UTC the date was written at.
    int getOffsetMinutes() const { return offset_; }

    /// The value for a header: "Mon, 23 Nov 2026 13:05:09 +0100", in the date's own offset.
    KNCString asString() const;

private:
    TimePoint time_;
    int offset_ = 0;
};

/// Equal when the time points and the offsets are equal.
KNMIME_EXPORT bool operator==(const KNMimeDate& a, const KNMimeDate& b);
/// Not operator==.
KNMIME_EXPORT bool operator!=(const KNMimeDate& a, const KNMimeDate& b);

#endif
