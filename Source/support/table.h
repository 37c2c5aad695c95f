#pragma once
// An array indexed by plain ints: squares, pieces, plies and depths. Debug builds check the index.

#include <cassert>

namespace quon {

template <typename T, int N>
struct Table {
    T values[N];

    static constexpr int size() { return N; }
    constexpr T& operator[](int index) {
        assert(0 <= index && index < N);
        return values[index];
    }
    constexpr const T& operator[](int index) const {
        assert(0 <= index && index < N);
        return values[index];
    }
    constexpr T* begin() { return values; }
    constexpr T* end() { return values + N; }
    constexpr const T* begin() const { return values; }
    constexpr const T* end() const { return values + N; }
};

}  // namespace quon
