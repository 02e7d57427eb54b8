#ifndef KN_MIME_KNMIMEVERSIONHEADERIMP_H
#define KN_MIME_KNMIMEVERSIONHEADERIMP_H

/// @class KNMimeVersionHeaderImp
/// Header body of a MIME-Version field: a major and a minor number, 1.0 when new.

#include <mime/KNMimeHeaderImp.h>

class KNMimeHeader;

class KNMIME_EXPORT KNMimeVersionHeaderImp : public KNMimeHeaderImp {
public:
    KNMimeVersionHeaderImp() = default;
    /// A copy with the same label and version.
    KNMimeVersionHeaderImp(const KNMimeVersionHeaderImp& other) = default;
    ~KNMimeVersionHeaderImp() override;

    /// A new header of this kind; the creator registered with the header factory.
    static KNMimeHeader make();

    KNCString getValueAsString() const override;
    void appendValueTo(KNCString& out) const override;
    /// Reads "major.minor" (comments allowed); a number read before a failure stays set. A
    /// number beyond 32 bits is refused (INVALID_VERSION).
    void setValueFromString(const KNCString& text) override;
    KNMimeVersionHeaderImp* copy() const override;
    bool compareValueTo(const KNMimeHeaderImp& other) const override;

    /// The number before the dot.
    unsigned getMajorVersion() const { return majorVersion_; }
    /// The number after the dot.
    unsigned getMinorVersion() const { return minorVersion_; }
    /// Replaces the version.
    void setVersion(unsigned majorVersion, unsigned minorVersion)
    {
        majorVersion_ = majorVersion;
        minorVersion_ = minorVersion;
    }

private:
    unsigned majorVersion_ = 1;
    unsigned minorVersion_ = 0;
};

#endif
