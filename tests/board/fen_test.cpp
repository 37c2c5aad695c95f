// Positions as text: reading, writing, odd and broken input, EPD lines.

#include "harness/board_support.h"

namespace quon::test {
namespace {

TEST(Fen, ReadingAndWriting) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", START_FEN, false},
        {"r3k2r/8/8/8/8/8/8/R3K2R b qK -", "r3k2r/8/8/8/8/8/8/R3K2R b Kq -", false},
        {"4k3/8/8/8/8/8/8/4K3 w KQkq -", "4k3/8/8/8/8/8/8/4K3 w - -", true},
        {"r3k3/8/8/8/8/8/8/4K2R w KQkq -", "r3k3/8/8/8/8/8/8/4K2R w Kq -", true},
        {"R3k2R/8/8/8/8/8/8/r3K2r b KQkq -", "R3k2R/8/8/8/8/8/8/r3K2r b - -", true},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b -   e3 0 1", "4k3/8/8/8/4Pp2/8/8/4K3 b - e3", false},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - e9", "4k3/8/8/8/4Pp2/8/8/4K3 b - e1", false},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - 33", "4k3/8/8/8/4Pp2/8/8/4K3 b - -", false},
        // Ranks that are too wide end on the h-file; unknown letters take a square.
        {"4k3/9/44/8/8/8/8/4K3 w - -", "4k3/8/8/8/8/8/8/4K3 w - -", false},
        {"4k3/pxZp/8/8/8/8/8/4K3 w - -", "4k3/p2p4/8/8/8/8/8/4K3 w - -", false},
        // Missing fields keep the rights claimed by default, which then fail the check.
        {"4k3//p", "4k3/8/p7/8/8/8/8/8 w - -", true},
        {"", "8/8/8/8/8/8/8/8 w - -", true},
    };
    for (const auto& [text, written, complaint] : cases) {
        const auto game = make_game(START_FEN);
        const bool kept = position_from_fen(game->position, text);
        EXPECT_EQ(position_to_fen(game->position), written) << text;
        EXPECT_EQ(verify(game->position), "") << text;
        EXPECT_EQ(game->position.flaw, TextFlaw::NONE) << text;
        EXPECT_EQ(kept, !complaint) << text;
    }
}

TEST(Fen, ReadingForgetsTheGame) {
    const auto game = make_game(START_FEN);
    Random random(51);
    play_random(*game, random, 9);
    (void)position_from_fen(game->position, "4k3/8/8/8/8/8/8/4K3 ? - -");
    EXPECT_EQ(game->position.side, BLACK);  // an unknown side changes nothing
    EXPECT_EQ(game->game_ply, 0);
    EXPECT_EQ(game->ply, 1);
    EXPECT_EQ(game->last_move, NO_MOVE);
    EXPECT_EQ(game->position.fifty, 0);
    EXPECT_EQ(game->undo[0].key + game->undo[1].key, 0U);
    EXPECT_EQ(game->undo[0].move + game->undo[1].move, NO_MOVE);
}

TEST(Fen, PositionsThatCannotBeSearched) {
    const std::pair<const char*, bool> cases[] = {
        {"rnbqkbnr/qqqqqqqq/8/8/8/8/QQQQQQQQ/RNBQKBNR w KQkq -", true},    // nine queens
        {"qqqqkqqq/qqq5/8/8/8/8/8/4K3 w - -", false},                      // ten
        {"rnbqkbnrr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", false},  // one square too far
        {"4k3/8/8/8/8/8/8/4K3/P7 w - -", false},                           // one rank too far
        {"4k3/8/8/8/8/8/8/K3K3 w - -", false},
        {"4k2P/8/8/8/8/8/8/4K3 w - -", false},
        {"4k3/8/8/8/8/8/8/4RK2 w - -", false},  // the king can be taken
        {"4k3/8/8/8/8/8/8/4RK2 b - -", true},
        {"4k3/8/8/8/4P3/8/8/4K3 b - e3", true},  // nobody can take it
        {"4k3/8/8/8/4Pp2/8/8/4K3 w - e3", false},
        {"4k3/8/8/8/4Pp2/8/4N3/4K3 b - e3", false},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - h8", false},
    };
    for (const auto& [text, playable] : cases) {
        EXPECT_EQ(position_problem(make_game(text)->position) == nullptr, playable) << text;
    }
}

// Whatever is read is safe to hold; what texts do to a board is tried in unsound_test.cpp.
TEST(Fen, RandomAndBrokenText) {
    Random random(53);
    const std::string alphabet("pnbrqkPNBRQK12345678/// wb-KQkqabcdefgh019xX?\xff", 47);
    const auto game = make_game(START_FEN);
    const auto check = [&](const std::string& text) {
        (void)position_from_fen(game->position, text);
        ASSERT_EQ(verify(game->position), "") << text;
    };
    visit_random_positions(scaled(5000), 54, [&](Game& visited) {
        std::string text = position_to_fen(visited.position);
        check(text);
        ASSERT_EQ(position_to_fen(game->position), text);
        ASSERT_EQ(game->position.key, visited.position.key);
        ASSERT_EQ(game->position.pawn_key, visited.position.pawn_key);
        ASSERT_EQ(position_problem(visited.position), nullptr) << text;
        for (int changes = 1 + pick(random, 4); changes > 0; --changes) {
            const auto at = std::size_t(pick(random, int(text.size())));
            const char letter = alphabet[std::size_t(pick(random, int(alphabet.size())))];
            text.replace(at, std::size_t(pick(random, 2)), 1, letter);
        }
        check(text);
        check(text.substr(0, std::size_t(pick(random, 60))));
    });
    check(std::string(100000, '/').append("p"));
    check(std::string(100000, 'q'));
}

TEST(Epd, Operations) {
    const std::string four = "8/8/4k3/8/8/8/4K3/8 w - -";
    const std::tuple<std::string, bool, EpdRecord> cases[] = {
        {"  8/8/4k3/8/8/8/4K3/8   w -  - \r\n", true, {four, "", "", "", "", ""}},
        {"8/8/4k3/8/8/8/4K3/8 w - \r\n", false, {}},
        {four + " bm Qxf7+; id \"WAC 001\";", true, {four, "Qxf7+", "", "\"WAC", "", ""}},
        {four + " bm Nf3 Nc3; am Ke3;", true, {four, "Nf3", "Ke3", "", "", ""}},
        {four + " ce 35;c0 \"a=1\";id x", true, {four, "", "", "x", "35", "\"a=1\""}},
        {four + " 0 1 ;;  bm e4\r\n", true, {four, "e4", "", "", "", ""}},
        {four + " bma e4; abm e5; BM e6;", true, {four, "", "", "", "", ""}},
        // A line is read up to its 511th character, in the middle of a word if need be.
        {four + std::string(485, ' ') + "bm e4;", true, {four, "", "", "", "", ""}},
        {four + " id " + std::string(600, 'i'),
         true,
         {four, "", "", std::string(482, 'i'), "", ""}},
    };
    for (const auto& [line, is_record, expected] : cases) {
        EpdRecord record{"x", "x", "x", "x", "x", "x"};
        EXPECT_EQ(parse_epd_line(line, record), is_record) << line;
        const auto fields = [](const EpdRecord& r) {
            return Lines{r.fen, r.bm, r.am, r.id, r.ce, r.c0};
        };
        EXPECT_EQ(fields(record), fields(expected)) << line;
    }
}

}  // namespace
}  // namespace quon::test
