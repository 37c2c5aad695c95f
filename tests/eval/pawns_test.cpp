// Pawn structure: the entry of the pawn cache, with figures worked out by hand.

#include "eval/pawns.h"

#include <gtest/gtest.h>

#include "eval/eval_info.h"
#include "support/board_support.h"
#include "support/eval_support.h"

namespace quon::test {
namespace {

// The entry of a position; the trace record then holds each pawn's value at the stage.
PawnEntry pawn_entry(const char* fen, int stage) {
    const auto game = make_game(fen);
    EvalNotes notes{};
    EvalInfo info(game->position, eval_tables, notes, true);
    info.stage = stage;
    PawnEntry entry{};
    reset_trace();
    fill_pawn_entry(info, entry);
    return entry;
}

TEST(Pawns, Values) {
    struct Case {
        const char* fen;
        const char* square;
        int op, en;
    };
    // The square table gives the first number of each sum.
    const Case cases[] = {
        {"4k3/7p/8/8/8/P7/8/4K3 w - -", "a3", -5 - 20, 0 - 20},  // backward 4, isolated 8, weak 8
        {"4k3/7p/8/8/8/P7/8/4K3 w - -", "h7", -7 - 20, 0 - 20},
        {"4k3/p7/8/8/8/P7/8/4K3 w - -", "a3", -5 - 12, 0 - 12},
        {"4k3/7p/8/P7/8/8/8/4K3 w - -", "a5", 0 - 16, 6 - 16},
        {"4k3/7p/8/P7/7P/8/8/4K3 w - -", "a5", 0 - 16, 6 - 16},            // h4 is no neighbour
        {"4k3/7p/8/8/P7/P7/P7/4K3 w - -", "a4", -5 - 5 - 20, 4 - 5 - 20},  // doubled, all three
        {"4k3/7p/8/8/P7/P7/P7/4K3 w - -", "a3", -5 - 5 - 20, 0 - 5 - 20},
        {"4k3/7p/8/8/P7/P7/P7/4K3 w - -", "a2", -7 - 5 - 20, 0 - 5 - 20},
        {"4k3/7p/8/8/8/8/3PP3/4K3 w - -", "d2", -4, 0},  // beside a neighbour
        {"4k3/7p/8/8/3PP3/8/8/4K3 w - -", "d4", 8 + 5, 4 + 5},
        {"4k3/7p/8/3PP3/8/8/8/4K3 w - -", "e5", 12 + 13, 6 + 13},
        {"4k3/7p/3PP3/8/8/8/8/4K3 w - -", "e6", 12 + 30, 8 + 30},
        {"8/3PP2p/8/8/8/8/8/4K1k1 w - -", "d7", 8 + 30, 8 + 30},
        {"4k3/7p/8/3P4/2P5/8/8/4K3 w - -", "d5", 12 + 7, 6 + 7},  // supported
        {"4k3/7p/8/3P4/2P5/8/8/4K3 w - -", "c4", 6 - 12, 4 - 12},
        {"4k3/7p/8/P7/1P6/8/8/4K3 w - -", "a5", 0 + 2, 6 + 2},
        {"4k3/7p/8/8/1P6/P7/8/4K3 w - -", "b4", 0 + 3, 4 + 3},
        {"4k3/7p/8/8/8/2P5/1P6/4K3 w - -", "c3", 3 + 2, 0 + 2},
        {"4k3/8/8/2p5/3p4/8/7P/4K3 w - -", "d4", 12 + 7, 6 + 7},
        // An outpost: not passed, and no enemy pawn can attack it any more.
        {"4k3/3p4/8/3P4/2P5/8/8/4K3 w - -", "d5", 12 + 7 + 4, 6 + 7},
        {"4k3/4p3/8/3P4/2P5/8/8/4K3 w - -", "d5", 12 + 7, 6 + 7},
        {"4k3/p7/8/P7/1P6/8/8/4K3 w - -", "a5", 0 + 2, 6 + 2},
        {"4k3/8/8/2p5/3p4/8/3P4/4K3 w - -", "d4", 12 + 7 + 4, 6 + 7},
    };
    for (const Case& row : cases) {
        const int square = make_square(row.square[0] - 'a', row.square[1] - '1');
        pawn_entry(row.fen, 0);
        EXPECT_EQ(traced.square[square], row.op) << row.square << " in " << row.fen;
        pawn_entry(row.fen, 24);
        EXPECT_EQ(traced.square[square], row.en) << row.square << " in " << row.fen;
    }
}

TEST(Pawns, Sets) {
    struct Case {
        const char* fen;
        const char* passed;
        const char* candidates;
    };
    const Case cases[] = {
        {"4k3/8/3p4/8/3PP3/8/8/4K3 w - -", "", "e4"},
        {"4k3/8/3p1p2/8/3PP3/8/8/4K3 w - -", "", ""},  // two guards, one helper
        {"4k3/8/3p1p2/8/3PPP2/8/8/4K3 w - -", "", "e4"},
        {"4k3/8/8/3p4/4P3/8/8/4K3 w - -", "", "e4 d5"},  // d5 attacks e4 but does not guard e5
        {"4k3/8/3p4/8/8/3PP3/8/4K3 w - -", "", ""},      // third rank
        {"4k3/4p3/3p4/8/3PP3/8/8/4K3 w - -", "", ""},    // e7 bars the file
        {"4k3/8/8/8/3PP3/8/p7/4K3 w - -", "a2 d4 e4", ""},
        {"4k3/p7/8/8/P7/8/8/4K3 w - -", "", ""},
        {"4k3/1p6/8/P7/8/8/8/4K3 w - -", "", ""},  // b7 guards a6
        {"4k3/8/1p6/P7/8/8/8/4K3 w - -", "", "a5"},
        {"4k3/8/8/Pp6/8/8/8/4K3 w - -", "a5 b5", ""},
        {"4k3/8/8/P6p/8/8/8/4K3 w - -", "a5 h5", ""},
        {"4k3/8/8/3P4/3P4/8/3p4/4K3 w - -", "d2 d4 d5", ""},
    };
    for (const Case& row : cases) {
        const PawnEntry entry = pawn_entry(row.fen, 24);
        EXPECT_EQ(square_list(entry.passed), row.passed) << row.fen;
        EXPECT_EQ(square_list(entry.candidates), row.candidates) << row.fen;
    }
}

TEST(Pawns, EntryOfRandomPositionsFollowsFromTheBoard) {
    visit_random_positions(scaled(3000), 21, [](Game& game) {
        const Position& p = game.position;
        EvalNotes notes{};
        const EvalInfo info(p, eval_tables, notes, false);
        PawnEntry entry{};
        fill_pawn_entry(info, entry);
        Bitboard span[2] = {};
        unsigned files[2] = {};
        Bitboard passed = 0;
        for (const int color : {WHITE, BLACK}) {
            for (int square = 8; square < 56; ++square) {
                if (!has(p.bb[color][PAWN], square)) continue;
                files[color] |= 1U << file_of(square);
                bool free = true;
                const int step = color == WHITE ? 1 : -1;
                for (int rank = rank_of(square) + step; rank >= 0 && rank < 8; rank += step) {
                    for (int file = file_of(square) - 1; file <= file_of(square) + 1; ++file) {
                        if (file < 0 || file > 7) continue;
                        const int ahead = make_square(file, rank);
                        EXPECT_TRUE(has(passed_span[color][square], ahead));
                        if (has(p.bb[color ^ 1][PAWN], ahead)) free = false;
                        if (file != file_of(square)) span[color] |= bit(ahead);
                    }
                }
                if (free) passed |= bit(square);
            }
            EXPECT_EQ(entry.span[color], span[color]);
            EXPECT_EQ(entry.files[color], files[color]);
        }
        EXPECT_EQ(entry.passed, passed);
        EXPECT_EQ(entry.key, p.pawn_key);
    });
}

TEST(Pawns, WithoutPawnsTheEntryIsEmpty) {
    const PawnEntry entry = pawn_entry("r3k3/8/8/8/8/8/8/R3K3 w - -", 20);
    EXPECT_EQ(entry.key, 0U);
    EXPECT_EQ(entry.span[WHITE] | entry.span[BLACK] | entry.passed | entry.candidates, 0U);
    EXPECT_EQ(entry.op[WHITE], 0);
    EXPECT_EQ(entry.files[BLACK], 0);
}

}  // namespace
}  // namespace quon::test
