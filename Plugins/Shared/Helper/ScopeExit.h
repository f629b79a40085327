#pragma once

#include <concepts>
#include <type_traits>
#include <utility>

namespace Ombrique::GaussianBlur {

/// Runs a callable at the end of a scope, whichever way the scope is left:
///
///     const unsigned texture = makeTexture();
///     const ScopeExit deleteTexture([texture] { destroyTexture(texture); });
///
/// Guards of one scope run in reverse order of their declaration. The action runs inside a destructor, so it must not
/// throw: an exception that leaves it ends the program. The guard stays where it was made, and belongs to one thread.
template <std::invocable Action> class ScopeExit {
    // A move that failed half-way would leave the scope unguarded. A callable whose move throws, such as a lambda with
    // a const copy of a string, captures by reference instead.
    static_assert(std::is_nothrow_move_constructible_v<Action>, "the guard must not fail to take its action over");

public:
    [[nodiscard]] explicit ScopeExit(Action action) noexcept : mAction(std::move(action)) {}
    ~ScopeExit() {
        if (mArmed)
            mAction();
    }

    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

    /// Lets the scope end without the action; what it would have undone is to stay.
    void dismiss() noexcept { mArmed = false; }

private:
    Action mAction;
    bool mArmed = true;
};

} // namespace Ombrique::GaussianBlur
