// The choice of a book move.

#include "book/book_pick.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "board/fen.h"
#include "board/move_text.h"
#include "board/verify.h"
#include "engine/report.h"
#include "harness/book_support.h"
#include "harness/engine.h"

namespace quon::test {
namespace {

struct BookPick : testing::Test {
    BookDirectory directory;
    std::string printed;

    BookPick() {
        options.uci_mode = true;
        options.book_variety = 1;
    }

    // A book of the positions that the moves lead to.
    struct Entry {
        const char* moves;
        int losses, wins, draws;
    };
    static void make_book(const std::vector<Entry>& entries, const char* fen = START_FEN) {
        Records records;
        for (const Entry& e : entries) {
            const auto game = game_after(e.moves, fen);
            records.push_back(record_of(game->position, e.losses, e.wins, e.draws));
        }
        write_file("a.opn", bytes_of(in_order(records)));
        ASSERT_EQ(open_book("a.opn"), "");
    }

    std::string pick(const std::string& moves = "", const char* fen = START_FEN) {
        copy_game(engine.game, *game_after(moves, fen));
        const std::string before = position_to_fen(engine.game.position);
        Move move = NO_MOVE;
        printed = captured_output([&] { move = book_pick(engine); });
        EXPECT_EQ(position_to_fen(engine.game.position), before);
        EXPECT_EQ(verify(engine.game.position), "");
        return move_to_text(move);
    }
};

TEST_F(BookPick, Table) {
    // In list order: quiet pawn moves from the a-file on, then knights.
    make_book({{"e2e4", 5, 10, 4}, {"g1f3", 0, 0, 1000}, {"d2d4", 9, 0, 0}, {"a2a3", 1, 3, 2}});
    const std::string rows[] = {
        "  move  result    wins losses  draws", "  a2a3   66.7%       3      1      2",
        "  e2e4   63.2%      10      5      4", "  g1f3   50.0%       0      0   1000"};
    for (const bool uci : {true, false}) {
        options.uci_mode = uci;
        EXPECT_EQ(pick(), "g1f3");  // 500 points
        std::string expected;
        for (const std::string& row : rows) {
            expected += (uci ? "info string " : " ") + row + "\n";
        }
        EXPECT_EQ(printed, expected);
    }
    const std::string shown = captured_output([&] { book_show(engine, true); });
    EXPECT_EQ(shown, printed + "book move is g1f3\n\n");
    EXPECT_EQ(captured_output([&] { book_show(engine, false); }), printed);
}

TEST_F(BookPick, Thresholds) {
    const struct {
        int side, losses, wins, draws;
        bool chosen;
    } cases[] = {
        {WHITE, 0, 8, 1, true},    {WHITE, 0, 9, 0, true},          {WHITE, 0, 8, 0, false},
        {WHITE, 100, 0, 0, false}, {WHITE, 11, 9, 0, false},  // 0.45
        {WHITE, 109, 91, 0, true},                            // 0.455
        {WHITE, 1, 0, 9, false},                              // 0.45
        {WHITE, 0, 0, 9, true},    {WHITE, 33000, 27000, 0, false}, {WHITE, 32999, 27001, 0, true},
        {BLACK, 59, 41, 0, false},  // 0.41
        {BLACK, 57, 43, 0, true},  {BLACK, 11, 9, 0, true},         {BLACK, 0, 8, 0, false},
        {BLACK, 9, 0, 41, false},  // 0.41
        {BLACK, 8, 0, 42, true},
    };
    for (const auto& c : cases) {
        const std::string first = c.side == WHITE ? "" : "e2e4";
        const std::string second = c.side == WHITE ? "e2e4" : "e2e4 c7c5";
        make_book({{first.c_str(), 1, 1, 1}, {second.c_str(), c.losses, c.wins, c.draws}});
        EXPECT_EQ(pick(first) != "null", c.chosen)
            << c.side << " " << c.losses << " " << c.wins << " " << c.draws;
    }
}

TEST_F(BookPick, OffTheBook) {
    const std::vector<Entry> line = {{"e2e4", 0, 9, 0},
                                     {"e2e4 e7e5", 0, 9, 0},
                                     {"e2e4 e7e5 g1f3", 0, 9, 0},
                                     {"e2e4 e7e6 d2d4", 0, 9, 0}};
    make_book(line);
    EXPECT_EQ(pick(), "e2e4");  // where the game starts need not be in the book
    EXPECT_EQ(pick("e2e4"), "e7e5");
    EXPECT_EQ(pick("e2e4 e7e5"), "g1f3");
    EXPECT_EQ(pick("e2e4 e7e5 g1f3"), "null");
    EXPECT_EQ(printed, "info string   move  result    wins losses  draws\n");
    EXPECT_EQ(pick("e2e4 e7e6"), "null");  // unknown, though d4 would lead back
    EXPECT_EQ(printed, "");
    const auto loaded = game_after("e2e4 e7e6");
    EXPECT_EQ(pick("", position_to_fen(loaded->position).c_str()), "d2d4");
}

TEST_F(BookPick, FirstOfEquals) {
    // Captures come before quiet moves, the most valuable victim first.
    const char* const fen = "3qk3/8/8/1r2r3/2P1P3/2P1P3/3R4/4K3 w - -";
    make_book({{"e3e4", 0, 1, 1}, {"c4b5", 0, 20, 0}, {"d2d8", 0, 20, 0}, {"e1e2", 0, 20, 0}}, fen);
    EXPECT_EQ(pick("", fen), "d2d8");
    make_book({{"c4b5", 0, 20, 0}, {"e1e2", 0, 20, 0}, {"c4c5", 0, 19, 2}}, fen);
    EXPECT_EQ(pick("", fen), "c4b5");
    make_book({{"e1e2", 0, 20, 0}, {"c4c5", 0, 19, 2}}, fen);
    EXPECT_EQ(pick("", fen), "c4c5");
}

TEST_F(BookPick, NothingForImpossiblePositions) {
    make_book({{"e2e4", 0, 9, 0}});
    for (const char* fen :
         {"8/8/8/8/8/8/8/8 w - -", "8/8/8/8/8/8/8/K7 w - -", "4k3/4R3/8/8/8/8/8/4K3 w - -"}) {
        EXPECT_EQ(pick("", fen), "null");
        EXPECT_EQ(printed, "");
    }
}

// What the move that could be played again is, does not change.
TEST_F(BookPick, KeepsTheMoveToRedo) {
    make_book({{"e2e4", 0, 9, 0}, {"e2e4 e7e5", 0, 9, 0}});
    copy_game(engine.game, *game_after("e2e4"));
    engine.game.undo[engine.game.game_ply].move = 77;
    captured_output([&] { book_pick(engine); });
    EXPECT_EQ(engine.game.undo[engine.game.game_ply].move, 77);
}

TEST_F(BookPick, Distribution) {
    constexpr int DRAWS = 10000;
    constexpr int VARIETY = 30;
    const double points[] = {100, 60, 30};
    make_book({{"c2c4", 0, 30, 0}, {"d2d4", 0, 60, 0}, {"e2e4", 0, 100, 0}});
    // Every throw of the dice of all three.
    double expected[3] = {};
    const double unit = 0.02 * std::log(points[0]);
    for (int throws = 0; throws < VARIETY * VARIETY * VARIETY; ++throws) {
        const int dice[] = {throws % VARIETY, throws / VARIETY % VARIETY,
                            throws / VARIETY / VARIETY};
        int winner = 0;
        double best = 0;
        for (int i = 0; i < 3; ++i) {
            const double value = unit * dice[i] + std::log(points[i]);
            if (value > best) winner = i;
            best = std::max(best, value);
        }
        expected[winner] += double(DRAWS) / (VARIETY * VARIETY * VARIETY);
    }
    options.book_variety = VARIETY;
    seed(engine.random, 1);
    std::map<std::string, int> drawn;
    copy_game(engine.game, *make_game(START_FEN));
    captured_output([&] {
        for (int i = 0; i < DRAWS; ++i) ++drawn[move_to_text(book_pick(engine))];
    });
    const int counts[] = {drawn["e2e4"], drawn["d2d4"], drawn["c2c4"]};
    double chi_square = 0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_GT(expected[i], 300);
        chi_square += std::pow(counts[i] - expected[i], 2) / expected[i];
    }
    EXPECT_LT(chi_square, 20) << counts[0] << " " << counts[1] << " " << counts[2];
    EXPECT_EQ(counts[0] + counts[1] + counts[2], DRAWS);
}

}  // namespace
}  // namespace quon::test
