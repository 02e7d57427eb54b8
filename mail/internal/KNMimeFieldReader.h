#ifndef KN_MAIL_INTERNAL_KNMIMEFIELDREADER_H
#define KN_MAIL_INTERNAL_KNMIMEFIELDREADER_H

// Reads one header field of stored mail into a header the library can print, repairing what
// a receiver can repair and reporting what it did. Not installed: internal to the reader.

#include <foundation/KNCString.h>
#include <mail/KNMimeDefect.h>
#include <mime/KNMimeHeader.h>

#include <optional>
#include <string_view>

class KNMimeFieldReader {
public:
    // Receives each repair: its kind and a one-line description. A reference to the
    // caller's callable, so reading a field allocates nothing for it.
    class Report {
    public:
        template <class F>
        Report(const F& f) // NOLINT(google-explicit-constructor): a view of any callable
            : context_(&f), call_([](const void* c, KNMimeDefect::Kind kind, const KNCString& text) {
                  (*static_cast<const F*>(c))(kind, text);
              })
        {
        }
        void operator()(KNMimeDefect::Kind kind, const KNCString& text) const { call_(context_, kind, text); }

    private:
        const void* context_;
        void (*call_)(const void*, KNMimeDefect::Kind, const KNCString&);
    };

    // `field` is one logical header line (folds included, no final line end) that holds a
    // colon. Gives the header as the strict parser would read it when that header prints;
    // otherwise the repaired header (unreadable parameters dropped, or the value kept as
    // plain text), or nothing when the name itself cannot be printed. Never throws a
    // library error.
    static std::optional<KNMimeHeader> read(std::string_view field, const Report& report);

private:
    // The slow road for a field the strict reading refuses or cannot print.
    static std::optional<KNMimeHeader> repair(std::string_view field, std::size_t colon, const Report& report);

public:
    // A short, printable excerpt of `text` for a defect's description.
    static KNCString excerpt(std::string_view text);
};

#endif
