// A multiply-with-carry generator fills the key tables; keys that look too much alike are redrawn.

#include "board/keys.h"

#include <cassert>

namespace quon {

Table<Table<u64, 64>, 16> piece_sq_keys;
Table<u64, 66> state_keys;

namespace {

struct MultiplyWithCarry {
    u32 z = 1;
    u32 w = 1;

    u32 step() {
        z = 36969 * (z & 65535) + (z >> 16);
        w = 18000 * (w & 65535) + (w >> 16);
        return (z << 16) + w;
    }
    u64 key() {
        const u64 high = step();
        return high << 32 | step();
    }
};

// Each half must differ from the same half of every earlier key in at least this many bits.
constexpr int MIN_DIFFERENCE = 4;
constexpr int MAX_CANDIDATES = 5;

bool too_close(u64 a, u64 b) {
    const u64 difference = a ^ b;
    return popcount64(difference >> 32) < MIN_DIFFERENCE ||
           popcount64(difference & 0xFFFFFFFF) < MIN_DIFFERENCE;
}

bool close_to_earlier(u64 candidate, int count) {
    for (int i = 0; i < count; ++i) {
        if (too_close(candidate, piece_sq_keys[i >> 6][i & 63])) return true;
    }
    return false;
}

}  // namespace

void init_keys() {
    static bool ready = false;
    if (ready) return;
    ready = true;

    MultiplyWithCarry random;
    for (int i = 0; i < 16 * 64; ++i) {
        u64 candidate = random.key();
        int tries = 1;
        bool close = close_to_earlier(candidate, i);
        while (close && tries < MAX_CANDIDATES) {
            candidate = random.key();
            close = close_to_earlier(candidate, i);
            ++tries;
        }
        assert(!close);
        piece_sq_keys[i >> 6][i & 63] = candidate;
    }
    for (u64& key : state_keys) key = random.key();
}

}  // namespace quon
