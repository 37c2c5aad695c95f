// The random keys and what a position makes of them.

#include "board/keys.h"

#include <gtest/gtest.h>

#include "harness/board_support.h"

namespace quon::test {
namespace {

// The first word by hand; a signature of the rest, which slow drawing by the definition confirmed.
TEST(Keys, AreTheStream) {
    u64 signature = 0;
    for (const auto& row : piece_sq_keys) {
        for (const u64 key : row) signature = signature * 31 + key;
    }
    for (const u64 key : state_keys) signature = signature * 31 + key;
    EXPECT_EQ(piece_sq_keys[0][0] >> 32, 36969U * 65536U + 18000U);
    EXPECT_EQ(signature, 12009177996388126485U);
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
