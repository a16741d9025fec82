#include "base/Disposable.h"

#include <utility>

Disposable::Disposable(std::function<void()> closure) : m_closure(std::move(closure)) {}

Disposable::~Disposable()
{
    release();
}

Disposable::Disposable(Disposable&& other) noexcept
    : m_closure(std::exchange(other.m_closure, nullptr))
{
}

Disposable& Disposable::operator=(Disposable&& other) noexcept
{
    if (this != &other) {
        release();
        m_closure = std::exchange(other.m_closure, nullptr);
    }
    return *this;
}

void Disposable::release() noexcept
{
    if (auto closure = std::exchange(m_closure, nullptr))
        closure();
}
