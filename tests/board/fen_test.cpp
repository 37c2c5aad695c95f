// Positions as text: reading, writing, odd and broken input, EPD lines, the diagram.

#include "board/fen.h"

#include <gtest/gtest.h>

#include "board/make.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

TEST(Fen, ReadingAndWriting) {
    struct Case {
        const char* text;
        const char* written;
        bool complaint;
    };
    const Case cases[] = {
        {START_FEN, START_FEN, false},
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", START_FEN, false},
        {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", false},
        {"r3k2r/8/8/8/8/8/8/R3K2R b qK -", "r3k2r/8/8/8/8/8/8/R3K2R b Kq -", false},
        {"r3k2r/8/8/8/8/8/8/R3K2R   w  KQ -", "r3k2r/8/8/8/8/8/8/R3K2R w - -", false},
        {"4k3/8/8/8/8/8/8/4K3 w KQkq -", "4k3/8/8/8/8/8/8/4K3 w - -", true},
        {"r3k2r/8/8/8/8/8/8/R3K2R w KQkqx- -", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", false},
        {"r3k3/8/8/8/8/8/8/4K2R w KQkq -", "r3k3/8/8/8/8/8/8/4K2R w Kq -", true},
        {"R3k2R/8/8/8/8/8/8/r3K2r b KQkq -", "R3k2R/8/8/8/8/8/8/r3K2r b - -", true},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b -   e3 0 1", "4k3/8/8/8/4Pp2/8/8/4K3 b - e3", false},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - e9", "4k3/8/8/8/4Pp2/8/8/4K3 b - e1", false},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - 3e", "4k3/8/8/8/4Pp2/8/8/4K3 b - e1", false},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - 33", "4k3/8/8/8/4Pp2/8/8/4K3 b - -", false},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - h888", "4k3/8/8/8/4Pp2/8/8/4K3 b - h8", false},
        // Ranks that are too wide end on the h-file; unknown letters take a square.
        {"4k3/9/44/8/8/8/8/4K3 w - -", "4k3/8/8/8/8/8/8/4K3 w - -", false},
        {"4k3/44p/8/8/8/8/8/4K3 w - -", "4k3/7p/8/8/8/8/8/4K3 w - -", false},
        {"4k3/pxZp/8/8/8/8/8/4K3 w - -", "4k3/p2p4/8/8/8/8/8/4K3 w - -", false},
        {"4k3/0p?p/8/8/8/8/8/4K3 w - -", "4k3/pp6/8/8/8/8/8/4K3 w - -", false},
        {"4k3//p", "4k3/8/p7/8/8/8/8/8 w - -", true},
        {"", "8/8/8/8/8/8/8/8 w - -", true},
    };
    for (const Case& row : cases) {
        std::unique_ptr<Game> game;
        const std::string output = captured_output([&] { game = make_game(row.text); });
        EXPECT_EQ(position_to_fen(game->position), row.written) << row.text;
        EXPECT_EQ(inconsistency(game->position), "") << row.text;
        EXPECT_EQ(game->position.flaw, TextFlaw::NONE) << row.text;
        // Missing fields keep the rights claimed by default, which then fail the check.
        EXPECT_EQ(output, row.complaint ? "Illegal EPD record\n" : "") << row.text;
    }
}

TEST(Fen, ReadingForgetsTheGame) {
    const auto game = make_game(START_FEN);
    Random random(51);
    play_random(*game, random, 9);
    ASSERT_EQ(game->position.side, BLACK);
    position_from_fen(game->position,
                      "4k3/8/8/8/8/8/8/4K3 ? - -");  // an unknown side changes nothing
    EXPECT_EQ(game->position.side, BLACK);
    EXPECT_EQ(game->game_ply, 0);
    EXPECT_EQ(game->ply, 1);
    EXPECT_EQ(game->last_move, NO_MOVE);
    EXPECT_EQ(game->position.fifty, 0);
    for (const int i : {0, 1}) {
        EXPECT_EQ(game->undo[i].key, 0U);
        EXPECT_EQ(game->undo[i].move, NO_MOVE);
    }
}

TEST(Fen, ListsInReadingOrder) {
    const auto game = make_game("1n1qk1n1/8/8/2n5/5N2/1N6/8/1N2K3 w - -");
    const auto order = [&](int piece) {
        std::vector<std::string> names;
        for (const u8* s = game->position.plist[piece].begin(); *s != NO_SQUARE; ++s) {
            names.emplace_back(square_name[*s]);
        }
        return names;
    };
    EXPECT_EQ(order(make_piece(BLACK, KNIGHT)), (std::vector<std::string>{"b8", "g8", "c5"}));
    EXPECT_EQ(order(make_piece(WHITE, KNIGHT)), (std::vector<std::string>{"f4", "b3", "b1"}));
}

TEST(Fen, RandomPositionsRoundTrip) {
    visit_random_positions(scaled(5000), 52, [](Game& game) {
        const std::string text = position_to_fen(game.position);
        const auto again = make_game(text);
        ASSERT_EQ(position_to_fen(again->position), text);
        ASSERT_EQ(again->position.key, game.position.key);
        ASSERT_EQ(again->position.pawn_key, game.position.pawn_key);
        ASSERT_EQ(position_problem(game.position), nullptr) << text;
    });
}

TEST(Fen, PositionsThatCannotBeSearched) {
    struct Case {
        const char* text;
        bool playable;
    };
    const Case cases[] = {
        {"4k3/8/8/8/8/8/8/4K3 w - -", true},
        {"rnbqkbnr/qqqqqqqq/8/8/8/8/QQQQQQQQ/RNBQKBNR w KQkq -", true},    // nine queens
        {"qqqqkqqq/qqq5/8/8/8/8/8/4K3 w - -", false},                      // ten
        {"rnbqkbnrr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", false},  // one square too far
        {"4k3/8/8/8/8/8/8/4K3/P7 w - -", false},                           // one rank too far
        {"4k3/8/8/8/8/8/8/8 w - -", false},
        {"4k3/8/8/8/8/8/8/K3K3 w - -", false},
        {"4k2P/8/8/8/8/8/8/4K3 w - -", false},
        {"4k3/8/8/8/8/8/8/4K2p w - -", false},
        {"4k3/8/8/8/8/8/8/4RK2 w - -", false},  // the king can be taken
        {"4k3/8/8/8/8/8/8/4RK2 b - -", true},
        {"8/8/8/3kK3/8/8/8/8 w - -", false},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - e3", true},
        {"4k3/8/8/8/4P3/8/8/4K3 b - e3", true},  // nobody can take it
        {"4k3/8/8/8/4Pp2/8/8/4K3 w - e3", false},
        {"4k3/8/8/8/5p2/8/8/4K3 b - e3", false},
        {"4k3/8/8/8/4Pp2/8/4N3/4K3 b - e3", false},
        {"4k3/8/8/8/4Pp2/4N3/8/4K3 b - e3", false},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - h8", false},
    };
    for (const Case& row : cases) {
        const auto game = make_game(row.text);
        EXPECT_EQ(position_problem(game->position) == nullptr, row.playable) << row.text;
        EXPECT_EQ(inconsistency(game->position), "") << row.text;
    }
}

// Whatever is read must be safe to hold, and safe to play from unless it is refused.
void expect_safe(const std::string& text, Random& random) {
    const auto game = make_game(text);
    ASSERT_EQ(inconsistency(game->position), "") << text;
    position_to_fen(game->position);
    if (position_problem(game->position)) return;
    const std::string fen = position_to_fen(game->position);
    const int plies = play_random(*game, random, 40);
    ASSERT_EQ(inconsistency(game->position), "") << text;
    for (int i = 0; i < plies; ++i) unmake_move(game->position);
    ASSERT_EQ(position_to_fen(game->position), fen);
}

TEST(Fen, BrokenTextIsHarmless) {
    Random random(53);
    std::string alphabet = "pnbrqkPNBRQK12345678/// wb-KQkqabcdefgh019xX?";
    alphabet += '\0';
    alphabet += '\xff';
    captured_output([&] {
        for (const char* name : {"/data/epd/malformed.epd", "/data/epd/odd-syntax.epd"}) {
            for (const std::string& line : shared_lines(name)) {
                ASSERT_NO_FATAL_FAILURE(expect_safe(line, random));
                EpdRecord record;
                if (parse_epd_line(line, record)) {
                    ASSERT_NO_FATAL_FAILURE(expect_safe(record.fen, random));
                }
            }
        }
        visit_random_positions(scaled(5000), 54, [&](Game& game) {
            std::string text = position_to_fen(game.position);
            for (int changes = 1 + pick(random, 4); changes > 0; --changes) {
                const auto at = std::size_t(pick(random, int(text.size())));
                const char letter = alphabet[std::size_t(pick(random, int(alphabet.size())))];
                pick(random, 2) ? text.insert(at, 1, letter) : text.replace(at, 1, 1, letter);
            }
            ASSERT_NO_FATAL_FAILURE(expect_safe(text, random));
            ASSERT_NO_FATAL_FAILURE(
                expect_safe(text.substr(0, std::size_t(pick(random, 60))), random));
        });
        ASSERT_NO_FATAL_FAILURE(expect_safe(std::string(100000, '/') + "p", random));
        ASSERT_NO_FATAL_FAILURE(expect_safe(std::string(100000, 'q'), random));
    });
}

TEST(Epd, Operations) {
    struct Case {
        std::string line;
        bool record;
        EpdRecord expected;
    };
    const std::string four = "8/8/4k3/8/8/8/4K3/8 w - -";
    const Case cases[] = {
        {four, true, {four, "", "", "", "", ""}},
        {"  8/8/4k3/8/8/8/4K3/8   w -  - \r\n", true, {four, "", "", "", "", ""}},
        {"8/8/4k3/8/8/8/4K3/8 w -", false, {}},
        {"8/8/4k3/8/8/8/4K3/8 w - \r\n", false, {}},
        {"", false, {}},
        {four + " bm Qxf7+; id \"WAC 001\";", true, {four, "Qxf7+", "", "\"WAC", "", ""}},
        {four + " bm Nf3 Nc3; am Ke3;", true, {four, "Nf3", "Ke3", "", "", ""}},
        {four + " ce 35;c0 \"a=1\";id x", true, {four, "", "", "x", "35", "\"a=1\""}},
        {four + " 0 1 ;;  bm e4\r\n", true, {four, "e4", "", "", "", ""}},
        {four + " bm; id A; ce", true, {four, "", "", "A", "", ""}},
        {four + " bma e4; abm e5; BM e6;", true, {four, "", "", "", "", ""}},
        {four + " bm e4; bm d4;", true, {four, "d4", "", "", "", ""}},
        {four + " ce -20; c9 \"1-0\"; tune 0.50000;", true, {four, "", "", "", "-20", ""}},
        {four + std::string(600, ' ') + "bm e4;", true, {four, "", "", "", "", ""}},
    };
    for (const Case& row : cases) {
        EpdRecord record{"x", "x", "x", "x", "x", "x"};
        EXPECT_EQ(parse_epd_line(row.line, record), row.record) << row.line;
        const auto fields = [](const EpdRecord& r) {
            return std::vector<std::string>{r.fen, r.bm, r.am, r.id, r.ce, r.c0};
        };
        EXPECT_EQ(fields(record), fields(row.expected)) << row.line;
    }
    // A line is read up to its 511th character, in the middle of a word if need be.
    EpdRecord record;
    const std::string head = four + " id ";
    ASSERT_TRUE(parse_epd_line(head + std::string(600, 'i'), record));
    EXPECT_EQ(record.id.size(), 511 - head.size());
}

TEST(Diagram, StartPosition) {
    const auto game = make_game(START_FEN);
    EXPECT_EQ(captured_output([&] { print_board(game->position); }),
              "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -\n"
              " r n b q k b n r\n"
              " o o o o o o o o\n"
              " - + - + - + - +\n"
              " + - + - + - + -\n"
              " - + - + - + - +\n"
              " + - + - + - + -\n"
              " P P P P P P P P\n"
              " R N B Q K B N R\n"
              "white\n\n");
    make_move(game->position, make_code(12, 28));
    const std::string after = captured_output([&] { print_board(game->position); });
    EXPECT_EQ(after.substr(0, after.find('\n')),
              "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3");
    EXPECT_EQ(after.substr(after.size() - 7), "black\n\n");
}

}  // namespace
}  // namespace quon::test
