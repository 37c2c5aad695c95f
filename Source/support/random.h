#pragma once
// A source of random numbers with a seed: the same seed, the same numbers, on every machine.

#include <random>

#include "support/integers.h"

namespace quon {

struct Random {
    std::mt19937_64 source;
};

inline void seed(Random& random, u64 value) { random.source.seed(value); }

// 0 .. below - 1; below: 1 or more.
inline int draw(Random& random, int below) { return int(random.source() % u64(below)); }

}  // namespace quon
