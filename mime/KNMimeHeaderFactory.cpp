#include <mime/KNMimeHeaderFactory.h>

#include <foundation/KNTHRInvalidPointer.h>
#include <mime/KNMimeContentDispositionHeaderImp.h>
#include <mime/KNMimeContentTransferEncodingHeaderImp.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>
#include <mime/KNMimeVersionHeaderImp.h>

#include <algorithm>
#include <new>
#include <utility>

namespace {

// The first registration whose label is not shorter than `label`.
template <class Registrations>
auto lowerBound(Registrations& registrations, std::string_view label)
{
    return std::lower_bound(registrations.begin(), registrations.end(), label.size(),
                            [](const auto& r, std::size_t size) { return r.first.size() < size; });
}

} // namespace

KNTCountingPointer<KNMimeHeaderFactory, KNAtomicCounter> KNMimeHeaderFactory::instance()
{
    // Made on first use, so a header made during another file's static initialisation finds
    // it ready (concurrent first callers wait for one construction), and never destroyed,
    // so a header made by a static destructor at exit finds it still there.
    static const auto* const factory =
        new KNTCountingPointer<KNMimeHeaderFactory, KNAtomicCounter>(new (std::nothrow) KNMimeHeaderFactory);
    return *factory;
}

// The labels are literals, not the typed headers' Label constants, which may not be
// initialised yet when the first header is made during static initialisation.
KNMimeHeaderFactory::KNMimeHeaderFactory()
    : defaultCreator_(&KNMimeUnstructuredHeaderImp::make)
{
    const Creator structured(&KNMimeStructuredHeaderImp::make);
    setHeaderFunctor("Content-Description", defaultCreator_);
    setHeaderFunctor("Content-Disposition", &KNMimeContentDispositionHeaderImp::make);
    setHeaderFunctor("Content-Id", structured);
    setHeaderFunctor("Content-Location", structured);
    setHeaderFunctor("Content-Transfer-Encoding", &KNMimeContentTransferEncodingHeaderImp::make);
    setHeaderFunctor("Content-Type", &KNMimeContentTypeHeaderImp::make);
    setHeaderFunctor("MIME-Version", &KNMimeVersionHeaderImp::make);
}

KNMimeHeaderFactory::~KNMimeHeaderFactory() = default;

std::vector<KNMimeHeaderFactory::Registration>::const_iterator
KNMimeHeaderFactory::find(std::string_view label) const noexcept
{
    // Registrations of the label's length are next to one another: compare only those.
    for (auto at = lowerBound(creators_, label); at != creators_.end() && at->first.size() == label.size(); ++at)
        if (knEqualsIgnoreCase(at->first, label))
            return at;
    return creators_.end();
}

bool KNMimeHeaderFactory::mayBeRegistered(std::string_view label) const noexcept
{
    return label.empty() || registeredFirstBytes_[static_cast<unsigned char>(knToLowerAscii(label[0]))];
}

KNMimeHeader KNMimeHeaderFactory::create(const KNCString& label) const
{
    const Creator* creator = &defaultCreator_;
    if (mayBeRegistered(label)) {
        const auto found = find(label);
        if (found != creators_.end())
            creator = &found->second;
    }
    if (!*creator)
        throw KNTHRInvalidPointer();
    return (*creator)();
}

bool KNMimeHeaderFactory::contains(const KNCString& label) const
{
    return mayBeRegistered(label) && find(label) != creators_.end();
}

void KNMimeHeaderFactory::setHeaderFunctor(const KNCString& label, KNTFunctorR0<KNMimeHeader> creator)
{
    if (find(label) != creators_.end())
        return; // the first registration wins
    creators_.emplace(lowerBound(creators_, label), label, std::move(creator));
    if (!label.empty())
        registeredFirstBytes_.set(static_cast<unsigned char>(knToLowerAscii(label[0])));
}

void KNMimeHeaderFactory::unsetHeaderFunctor(const KNCString& label)
{
    const auto found = find(label);
    if (found != creators_.end())
        creators_.erase(found);
}

void KNMimeHeaderFactory::setDefaultHeaderFunctor(KNTFunctorR0<KNMimeHeader> creator)
{
    defaultCreator_ = std::move(creator);
}
