#ifndef KN_MIME_KNMIMETYPEDHEADER_H
#define KN_MIME_KNMIMETYPEDHEADER_H

/// @class KNMimeTypedHeader
/// The shape every typed header handle shares: a header handle bound to one label
/// (`Derived::Label`, ignoring case) whose body is of class `Body`.

#include <foundation/KNCString.h>
#include <mime/KNMimeHeader.h>

template <class Derived, class Body>
class KNMimeTypedHeader : public KNMimeHeader {
public:
    /// A header labelled `Derived::Label` with the body the factory makes for that label.
    KNMimeTypedHeader() : KNMimeHeader(Derived::Label) {}
    /// Adopts a newly made body; null gives an empty handle.
    explicit KNMimeTypedHeader(Body* body) : KNMimeHeader(body) {}
    /// Shares the body of `header` (no copy), which must carry this class's label;
    /// otherwise INVALID_HEADER_CONVERSION naming the label of `header`.
    KNMimeTypedHeader(const KNMimeHeader& header) : KNMimeHeader(accepted(header)) {}

    /// True when `label` equals this class's label ignoring case.
    bool checkLabel(const KNCString& label) const override { return acceptsLabel(label); }

    /// The typed body; "Invalid pointer" when there is none or it is of another class
    /// (which happens when the application registered another creator for the label).
    Body* body() const { return bodyAs<Body>(); }

    /// True when `label` equals `Derived::Label` ignoring case.
    static bool acceptsLabel(const KNCString& label) { return knEqualsIgnoreCase(label, Derived::Label); }

private:
    // Checked before any body is bound, so a refused conversion allocates nothing.
    static const KNMimeHeader& accepted(const KNMimeHeader& header)
    {
        const KNCString label = header.getLabel();
        if (!acceptsLabel(label))
            throwConversionRefused(label);
        return header;
    }
};

#endif
