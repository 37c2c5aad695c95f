#pragma once
// A value that one thread writes and others may read at any time. Reads and writes never tear but
// carry no ordering: use it for counters, flags and published numbers, never to hand over other
// data.

#include <atomic>

namespace quon {

template <typename T>
struct Relaxed {
    Relaxed() = default;
    constexpr Relaxed(T initial) : value(initial) {}
    Relaxed(const Relaxed& other) : value(other.get()) {}
    Relaxed& operator=(const Relaxed& other) {
        set(other.get());
        return *this;
    }
    Relaxed& operator=(T next) {
        set(next);
        return *this;
    }

    [[nodiscard]] T get() const { return value.load(std::memory_order_relaxed); }
    void set(T next) { value.store(next, std::memory_order_relaxed); }
    operator T() const { return get(); }

    // Load, add, store: for counters with a single writer.
    void add(T amount) { set(static_cast<T>(get() + amount)); }

private:
    std::atomic<T> value{};
};

}  // namespace quon
