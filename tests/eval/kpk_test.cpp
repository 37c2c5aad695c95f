// King and pawn against king. A solver of another make agreed with every answer; what is left of it
// is a signature of them all.

#include "eval/kpk.h"

#include <gtest/gtest.h>

#include "board/bitboard.h"

namespace quon::test {
namespace {

TEST(Kpk, EveryPosition) {
    u64 signature = 0;
    int wins = 0;         // with the pawn on files a to d
    int differences = 0;  // between the colours
    for (int pawn = 8; pawn < 56; ++pawn) {
        for (int men = 0; men < 64 * 64; ++men) {
            const int king = men % 64, enemy = men / 64;
            if (king == pawn || enemy == pawn || king_distance[king][enemy] < 2) continue;
            for (const int side : {WHITE, BLACK}) {
                if (side == WHITE && has(pawn_attacks[WHITE][pawn], enemy)) continue;
                const int score = kpk_probe({WHITE, pawn, king, enemy, side});
                differences +=
                    kpk_probe({BLACK, 63 - pawn, 63 - king, 63 - enemy, side ^ 1}) != score;
                if (file_of(pawn) < 4) wins += score != 0;
                signature = signature * 31 + u64(score + 1000);
            }
        }
    }
    EXPECT_EQ(differences, 0);
    EXPECT_EQ(wins, 111282);  // the well-known count
    EXPECT_EQ(signature, 1784881397326861120U);
}

}  // namespace
}  // namespace quon::test
