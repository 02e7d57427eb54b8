#ifndef KN_FOUNDATION_KNONCE_H
#define KN_FOUNDATION_KNONCE_H

/// @class KNOnce
/// A once-only guard: the first caller runs the initialiser, every other caller waits for it.

#include <mutex>
#include <utility>

class KNOnce {
public:
    /// Runs `initialiser` if no call ran one yet, and returns once it has run (on any thread).
    template <class F>
    void run(F&& initialiser)
    {
        std::call_once(flag_, std::forward<F>(initialiser));
    }

private:
    std::once_flag flag_;
};

#endif
