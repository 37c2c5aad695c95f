// The choice of a book move.

#include "book/book_pick.h"

#include <cmath>

#include "harness/book_support.h"

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
        Move& to_redo = engine.game.undo[engine.game.game_ply].move;
        to_redo = 77;
        std::optional<BookMove> book;
        printed = captured_output([&] { book = book_pick(engine); });
        const Move move = book ? book->move : NO_MOVE;
        EXPECT_EQ(position_to_fen(engine.game.position), before);
        EXPECT_EQ(verify(engine.game.position), "");
        EXPECT_EQ(to_redo, 77) << "the move that could be played again";
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
    EXPECT_EQ(captured_output([&] { book_show(engine, true); }), printed + "book move is g1f3\n\n");
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
    make_book({{"e1e2", 0, 20, 0}, {"c4c5", 0, 19, 2}}, fen);
    EXPECT_EQ(pick("", fen), "c4c5");
}

// Each move's logarithm of its points, and a throw of its dice: of all 27,000 throws of three, so
// many choose each move.
TEST_F(BookPick, Distribution) {
    constexpr int DRAWS = 10000;
    const std::pair<const char*, double> throws[] = {
        {"e2e4", 16504}, {"d2d4", 8184}, {"c2c4", 2312}};
    make_book({{"c2c4", 0, 30, 0}, {"d2d4", 0, 60, 0}, {"e2e4", 0, 100, 0}});
    options.book_variety = 30;
    seed(engine.random, 1);
    std::map<std::string, int> drawn;
    copy_game(engine.game, *make_game(START_FEN));
    captured_output([&] {
        for (int i = 0; i < DRAWS; ++i) ++drawn[move_to_text(book_pick(engine)->move)];
    });
    EXPECT_EQ(drawn.size(), std::size(throws));
    double chi_square = 0;
    for (const auto& [move, count] : throws) {
        const double expected = count / 27000 * DRAWS;
        chi_square += std::pow(drawn[move] - expected, 2) / expected;
    }
    EXPECT_LT(chi_square, 20);
}

}  // namespace
}  // namespace quon::test
