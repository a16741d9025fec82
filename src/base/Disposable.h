#pragma once

#include <functional>

/// A token that ties the life of an observation to the life of its owner: when the token is
/// released its clean-up closure runs, exactly once, on the releasing thread.
///
/// Moving hands the duty on; the moved-from token does nothing any more. A token cannot be made
/// without a closure, and there is no way to dispose of one but to release it.
class Disposable {
public:
    explicit Disposable(std::function<void()> closure);
    ~Disposable();

    Disposable() = delete;
    Disposable(const Disposable&) = delete;
    Disposable& operator=(const Disposable&) = delete;
    Disposable(Disposable&& other) noexcept;
    /// Releases what this token held before it takes over the other's duty.
    Disposable& operator=(Disposable&& other) noexcept;

private:
    void release() noexcept;

    std::function<void()> m_closure;
};
