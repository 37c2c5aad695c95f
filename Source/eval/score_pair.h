#pragma once
// Values with an opening and an ending half, centipawns, and their arithmetic.

#include "support/integers.h"

namespace quon {

// As parameters and tables hold them.
struct Pair {
    i16 op;
    i16 en;
};

// As sums are computed.
struct Score {
    int op = 0;
    int en = 0;

    constexpr Score() = default;
    constexpr Score(int opening, int ending) : op(opening), en(ending) {}
    constexpr Score(Pair pair) : op(pair.op), en(pair.en) {}

    constexpr Score& operator+=(Score other) {
        op += other.op;
        en += other.en;
        return *this;
    }
    // The same amount in both halves.
    constexpr Score& operator+=(int both) { return *this += Score(both, both); }
};

constexpr Score operator+(Score a, Score b) { return {a.op + b.op, a.en + b.en}; }
constexpr Score operator-(Score a, Score b) { return {a.op - b.op, a.en - b.en}; }
constexpr Score operator*(Score score, int n) { return {score.op * n, score.en * n}; }
// Each half towards zero.
constexpr Score operator/(Score score, int n) { return {score.op / n, score.en / n}; }

// Cut to the 16 bits of a half.
constexpr Pair to_pair(Score score) { return {i16(score.op), i16(score.en)}; }

constexpr int FULL_STAGE = 24;

// The score at a stage of the game: 0 with all pieces, 24 with kings and pawns only.
constexpr int blend(Score score, int stage) {
    return (score.op * (FULL_STAGE - stage) + score.en * stage) / FULL_STAGE;
}

}  // namespace quon
