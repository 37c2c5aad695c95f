// The random keys against their definition, drawn slowly.

#include "board/keys.h"

#include <gtest/gtest.h>

#include "harness/board_support.h"

namespace quon::test {
namespace {

TEST(Keys, AreTheStreamWithOneCandidateLeftOut) {
    u32 z = 1;
    u32 w = 1;
    const auto step = [&] {
        z = 36969U * (z & 0xFFFFU) + (z >> 16);
        w = 18000U * (w & 0xFFFFU) + (w >> 16);
        return u64{(z << 16) + w};
    };
    const auto next = [&] {
        const u64 high = step();
        return (high << 32) + step();
    };
    std::vector<u64> drawn;
    int rejected = 0;
    for (const auto& row : piece_sq_keys) {
        for (const u64 key : row) {
            u64 candidate = next();
            const auto close = [&](u64 other) {
                const u64 difference = candidate ^ other;
                return popcount64(difference >> 32) < 4 || popcount64(u32(difference)) < 4;
            };
            for (; std::any_of(drawn.begin(), drawn.end(), close); ++rejected) candidate = next();
            ASSERT_EQ(key, candidate) << "key " << drawn.size();
            drawn.push_back(candidate);
        }
    }
    EXPECT_EQ(drawn[0] >> 32, 36969U * 65536U + 18000U);
    EXPECT_EQ(rejected, 1);
    for (const u64 key : state_keys) ASSERT_EQ(key, next());
}

TEST(Keys, FullKey) {
    const auto fold = [](const char* fen) { return full_key(make_game(fen)->position); };
    const u64 key = fold("4k3/8/8/8/4Pp2/8/8/4K2R w K -");
    EXPECT_EQ(fold("4k3/8/8/8/4Pp2/8/8/4K2R b K -"), ~key);
    EXPECT_EQ(fold("4k3/8/8/8/4Pp2/8/8/4K2R w - -"), key ^ state_keys[1] ^ state_keys[0]);
    EXPECT_EQ(fold("4k3/8/8/8/4Pp2/8/8/4K2R b K e3"), ~key ^ state_keys[64] ^ state_keys[20]);
}

}  // namespace
}  // namespace quon::test
