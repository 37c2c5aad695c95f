// King and pawn against king, against a slow solver of another make.

#include "eval/kpk.h"

#include <gtest/gtest.h>

#include "board/bitboard.h"
#include "harness/board_support.h"

namespace quon::test {
namespace {

bool apart(int a, int b) { return a != b && !has(king_attacks[a], b); }

template <typename Visit>
void each_pair_of_kings(int pawn, const Visit& visit) {
    for (int king = 0; king < 64; ++king) {
        for (int enemy = 0; enemy < 64; ++enemy) {
            if (king != pawn && enemy != pawn && apart(king, enemy)) visit(king, enemy);
        }
    }
}

// Solves one pawn square after the other from the seventh rank down, each by letting the set of won
// positions grow. White has the pawn; files are not folded.
struct Solver {
    // [side to move][pawn][white king]: black king squares from which White wins
    Bitboard wins[2][64][64] = {};

    bool white_wins(int pawn, int king, int enemy) const {
        if (has(pawn_attacks[WHITE][pawn], enemy)) return false;  // not White's turn
        const int ahead = pawn + 8;
        if (ahead != king && ahead != enemy) {
            if (rank_of(ahead) == 7) {
                if (apart(ahead, enemy) || has(king_attacks[king], ahead)) return true;
            } else if (has(wins[BLACK][ahead][king], enemy)) {
                return true;
            }
            const int beyond = pawn + 16;
            if (rank_of(pawn) == 1 && beyond != king && beyond != enemy &&
                has(wins[BLACK][beyond][king], enemy)) {
                return true;
            }
        }
        for (Bitboard moves = king_attacks[king] & ~bit(pawn); moves;) {
            const int to = pop_square(moves);
            if (apart(to, enemy) && has(wins[BLACK][pawn][to], enemy)) return true;
        }
        return false;
    }

    bool black_loses(int pawn, int king, int enemy) const {
        const Bitboard guarded = pawn_attacks[WHITE][pawn] | king_attacks[king] | bit(king);
        Bitboard moves = king_attacks[enemy] & ~guarded;
        if (!moves) return has(pawn_attacks[WHITE][pawn], enemy);  // mate or stalemate
        if (has(moves, pawn)) return false;
        while (moves) {
            if (!has(wins[WHITE][pawn][king], pop_square(moves))) return false;
        }
        return true;
    }

    void grow(int pawn) {
        for (bool changed = true; changed;) {
            changed = false;
            each_pair_of_kings(pawn, [&](int king, int enemy) {
                for (const int side : {WHITE, BLACK}) {
                    Bitboard& won = wins[side][pawn][king];
                    if (has(won, enemy) || !(side == WHITE ? white_wins(pawn, king, enemy)
                                                           : black_loses(pawn, king, enemy))) {
                        continue;
                    }
                    won |= bit(enemy);
                    changed = true;
                }
            });
        }
    }
};

TEST(Kpk, EveryPosition) {
    const auto solver = std::make_unique<Solver>();
    for (int pawn = 55; pawn >= 8; --pawn) solver->grow(pawn);
    int differences = 0;
    int wins = 0;  // with the pawn on files a to d
    for (int pawn = 8; pawn < 56; ++pawn) {
        each_pair_of_kings(pawn, [&](int king, int enemy) {
            for (const int side : {WHITE, BLACK}) {
                if (side == WHITE && has(pawn_attacks[WHITE][pawn], enemy)) continue;
                const bool won = has(solver->wins[side][pawn][king], enemy);
                const int expected = won ? (side == WHITE ? 800 : -800) : 0;
                differences += kpk_probe({WHITE, pawn, king, enemy, side}) != expected;
                differences +=
                    kpk_probe({BLACK, 63 - pawn, 63 - king, 63 - enemy, side ^ 1}) != expected;
                if (file_of(pawn) < 4) wins += won;
            }
        });
    }
    EXPECT_EQ(differences, 0);
    EXPECT_EQ(wins, 111282);  // the well-known count
}

}  // namespace
}  // namespace quon::test
