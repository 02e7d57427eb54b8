#include <mime/KNMimeHeaderFactory.h>

#include <foundation/KNTHRInvalidPointer.h>
#include <mime/KNMimeContentDispositionHeaderImp.h>
#include <mime/KNMimeContentTransferEncodingHeaderImp.h>
#include <mime/KNMimeContentTypeHeaderImp.h>
#include <mime/KNMimeStructuredHeaderImp.h>
#include <mime/KNMimeUnstructuredHeaderImp.h>
#include <mime/KNMimeVersionHeaderImp.h>

#include <new>
#include <utility>

namespace {

// A prime comfortably above the built-in registrations plus an application's own.
constexpr std::size_t initialBuckets = 61;

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
    : creators_(initialBuckets), defaultCreator_(&KNMimeUnstructuredHeaderImp::make)
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

bool KNMimeHeaderFactory::mayBeRegistered(const KNCString& label) const noexcept
{
    return label.empty() || registeredFirstBytes_[static_cast<unsigned char>(knToLowerAscii(label[0]))];
}

KNMimeHeader KNMimeHeaderFactory::create(const KNCString& label) const
{
    const Creator* creator = &defaultCreator_;
    if (mayBeRegistered(label)) {
        const auto found = creators_.find(knToLower(label));
        if (found != creators_.end())
            creator = &found->second;
    }
    if (!*creator)
        throw KNTHRInvalidPointer();
    return (*creator)();
}

bool KNMimeHeaderFactory::contains(const KNCString& label) const
{
    return mayBeRegistered(label) && creators_.find(knToLower(label)) != creators_.end();
}

void KNMimeHeaderFactory::setHeaderFunctor(const KNCString& label, KNTFunctorR0<KNMimeHeader> creator)
{
    creators_.try_emplace(knToLower(label), std::move(creator));
    if (!label.empty())
        registeredFirstBytes_.set(static_cast<unsigned char>(knToLowerAscii(label[0])));
}

void KNMimeHeaderFactory::unsetHeaderFunctor(const KNCString& label)
{
    creators_.erase(knToLower(label));
}

void KNMimeHeaderFactory::setDefaultHeaderFunctor(KNTFunctorR0<KNMimeHeader> creator)
{
    defaultCreator_ = std::move(creator);
}
