#ifndef KN_MIME_KNMIMEHEADERFACTORY_H
#define KN_MIME_KNMIMEHEADERFACTORY_H

/// @class KNMimeHeaderFactory
/// The process-wide registry that decides, from a header's label (ignoring case), which
/// body class the header gets.
///
/// Registrations must not change while other threads create headers; create() and
/// contains() may run concurrently with one another.

#include <foundation/KNCString.h>
#include <foundation/KNExport.h>
#include <foundation/KNTCountingPointer.h>
#include <foundation/KNTFunctorR0.h>
#include <mime/KNMimeHeader.h>

#include <cstddef>
#include <bitset>
#include <string_view>
#include <utility>
#include <vector>

class KNMIME_EXPORT KNMimeHeaderFactory {
public:
    /// Makes a header handle over a fresh body.
    using Creator = KNTFunctorR0<KNMimeHeader>;

    /// The single factory, made with the built-in registrations on first use.
    static KNTCountingPointer<KNMimeHeaderFactory, KNAtomicCounter> instance();

    KNMimeHeaderFactory(const KNMimeHeaderFactory&) = delete;
    KNMimeHeaderFactory& operator=(const KNMimeHeaderFactory&) = delete;
    ~KNMimeHeaderFactory();

    /// A header from the creator registered for `label`, or from the default creator; the
    /// label of the new body is not set.
    KNMimeHeader create(const KNCString& label) const;
    /// Whether `label` has a creator of its own (the default creator does not count).
    bool contains(const KNCString& label) const;
    /// Registers `creator` for `label` unless the label already has one: the first
    /// registration wins; unset it first to replace it.
    void setHeaderFunctor(const KNCString& label, KNTFunctorR0<KNMimeHeader> creator);
    /// Removes the registration of `label`, if any.
    void unsetHeaderFunctor(const KNCString& label);
    /// Replaces the creator used for every unregistered label.
    void setDefaultHeaderFunctor(KNTFunctorR0<KNMimeHeader> creator);

private:
    KNMimeHeaderFactory();

    // One registration per label (ignoring case), ordered by length, so that a lookup
    // compares the label as it stands with the few registrations of its length, without
    // lowering or hashing a copy of it.
    using Registration = std::pair<KNCString, Creator>;
    std::vector<Registration>::const_iterator find(std::string_view label) const noexcept;

    // Whether a label starting with this byte (lower-cased) may have a creator of its own:
    // most labels in mail are not registered, and this spares them even the search. Set on
    // registration and never cleared, so a set bit only means "look it up".
    bool mayBeRegistered(std::string_view label) const noexcept;

    std::vector<Registration> creators_;
    std::bitset<256> registeredFirstBytes_;
    Creator defaultCreator_;
};

#endif
