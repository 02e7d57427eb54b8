#ifndef KN_FOUNDATION_KNTFUNCTORR0_H
#define KN_FOUNDATION_KNTFUNCTORR0_H

/// @class KNTFunctorR0
/// A copyable callable with no arguments returning R. Copies share one target, so two
/// registrations made from the same functor are the very same creator object.

#include <foundation/KNTHRInvalidPointer.h>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

template <class R>
class KNTFunctorR0 {
public:
    KNTFunctorR0() noexcept = default;

    /// Holds a copy of `callable` (a function pointer, lambda or function object).
    template <class F,
              class = std::enable_if_t<!std::is_same_v<std::decay_t<F>, KNTFunctorR0> &&
                                       std::is_invocable_r_v<R, F&>>>
    KNTFunctorR0(F&& callable) // NOLINT: converting on purpose, like std::function
    {
        // A null function pointer or an empty std::function is no target: the functor stays
        // empty and calling it throws KNTHRInvalidPointer, not std::bad_function_call.
        if constexpr (std::is_pointer_v<std::decay_t<F>> || IsStdFunction<std::decay_t<F>>::value) {
            if (!callable)
                return;
        }
        target_ = std::make_shared<const std::function<R()>>(std::forward<F>(callable));
    }

    /// Calls the target; an empty functor throws KNTHRInvalidPointer.
    R operator()() const
    {
        if (!target_)
            throw KNTHRInvalidPointer();
        return (*target_)();
    }

    /// True when a callable is held; calling an empty functor throws.
    explicit operator bool() const noexcept { return static_cast<bool>(target_); }

    /// True when both functors were copied from one another (or are both empty).
    bool sharesTargetWith(const KNTFunctorR0& other) const noexcept { return target_ == other.target_; }

private:
    template <class T>
    struct IsStdFunction : std::false_type {};
    template <class Signature>
    struct IsStdFunction<std::function<Signature>> : std::true_type {};

    std::shared_ptr<const std::function<R()>> target_;
};

#endif
