// The random keys and what the position keys tell apart.

#include "board/keys.h"

#include <gtest/gtest.h>

#include "support/board_support.h"

namespace quon::test {
namespace {

struct Stream {
    u32 z = 1;
    u32 w = 1;
    u32 step() {
        z = 36969U * (z & 0xFFFFU) + (z >> 16);
        w = 18000U * (w & 0xFFFFU) + (w >> 16);
        return (z << 16) + w;
    }
    u64 next() {
        const u64 high = step();
        return (high << 32) + step();
    }
};

int closest_half(u64 a, u64 b) {
    return std::min(popcount64((a ^ b) >> 32), popcount64((a ^ b) & 0xFFFFFFFF));
}

TEST(Keys, AreTheStreamWithOneCandidateLeftOut) {
    EXPECT_EQ(piece_sq_keys[0][0] >> 32, 36969U * 65536U + 18000U);
    std::vector<u64> keys;
    for (const auto& row : piece_sq_keys) keys.insert(keys.end(), row.begin(), row.end());
    std::vector<u64> all = keys;
    all.insert(all.end(), state_keys.begin(), state_keys.end());
    ASSERT_EQ(all.size(), 1090U);

    Stream stream;
    int rejected = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        u64 candidate = stream.next();
        while (candidate != all[i] && rejected <= 1) {
            ++rejected;
            ASSERT_LT(i, keys.size());
            const bool close =
                std::any_of(keys.begin(), keys.begin() + std::ptrdiff_t(i),
                            [&](u64 key) { return closest_half(candidate, key) < 4; });
            ASSERT_TRUE(close) << "key " << i << " was redrawn without need";
            candidate = stream.next();
        }
        ASSERT_EQ(candidate, all[i]) << "key " << i;
    }
    EXPECT_EQ(rejected, 1);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) ASSERT_GE(closest_half(keys[i], keys[j]), 4);
    }
}

TEST(Keys, WhatTheyTellApart) {
    struct Case {
        const char* first;
        const char* second;
        bool same_key, same_pawn_key, same_full_key;
    };
    const Case cases[] = {
        {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", "r3k2r/8/8/8/8/8/8/R3K2R b KQkq -", true, true, false},
        {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", "r3k2r/8/8/8/8/8/8/R3K2R w KQk -", true, true, false},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - d6", "4k3/8/8/3pP3/8/8/8/4K3 w - -", true, true, false},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - -", "4k3/8/8/3Pp3/8/8/8/4K3 w - -", false, false, false},
        {"4k3/8/8/3pP3/8/8/8/4KN2 w - -", "4k3/8/8/3pP3/8/8/8/4KB2 w - -", false, true, false},
    };
    for (const Case& row : cases) {
        const auto a = make_game(row.first);
        const auto b = make_game(row.second);
        EXPECT_EQ(a->position.key == b->position.key, row.same_key) << row.second;
        EXPECT_EQ(a->position.pawn_key == b->position.pawn_key, row.same_pawn_key) << row.second;
        EXPECT_EQ(full_key(a->position) == full_key(b->position), row.same_full_key) << row.second;
    }
    const auto white = make_game(cases[0].first);
    const auto black = make_game(cases[0].second);
    EXPECT_EQ(full_key(white->position), ~full_key(black->position));
    EXPECT_EQ(make_game("8/8/8/8/8/8/8/8 w - -")->position.key, 0U);
}

}  // namespace
}  // namespace quon::test
