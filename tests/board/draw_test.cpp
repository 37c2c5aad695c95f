// Draws by repetition and by the fifty-move rule.

#include "board/draw.h"

#include <gtest/gtest.h>

#include "board/make.h"
#include "board/move_text.h"
#include "harness/board_support.h"

namespace quon::test {
namespace {

constexpr char ROOK[] = "4k3/8/8/8/8/8/8/4K2R w - -";
constexpr char ROOKS[] = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -";

TEST(Draw, Repetition) {
    struct Case {
        const char* fen;
        const char* moves;  // "0000" passes
        int twice, thrice;  // the answer for the second and for the third occurrence
    };
    const Case cases[] = {
        {START_FEN, "g1f3 g8f6 f3g1 f6g8", 2, 0},
        {START_FEN, "g1f3 g8f6 f3g1 f6g8 g1f3 g8f6 f3g1 f6g8", 2, 2},
        {START_FEN, "e2e4 e7e5 g1f3 g8f6 f3g1 f6g8", 2, 0},  // since the pawn move
        {ROOKS, "a1b1 a8b8 b1a1 b8a8", 2, 0},                // rights are not compared
        {ROOK, "e1e2 e8e7 e2d1 e7e8 d1e1", 0, 0},            // the other side to move
        {ROOKS, "e1g1 e8c8 g1h1 c8b8 h1g1 b8c8", 2, 0},      // since castling
        {ROOKS, "e1g1 e8d8 g1g2 d8d7 f1h1 d7e8 g2f2 a8b8 f2e1 b8a8", 0, 0},  // from before castling
        {START_FEN, "0000 0000 0000 0000", 2, 0},  // passes count as moves
    };
    for (const Case& row : cases) {
        const auto game = make_game(row.fen);
        for (const std::string& text : split(row.moves, ' ')) {
            const Move move = parse_coordinates(game->position, text);
            ASSERT_EQ(move == NO_MOVE, text == "0000") << text;
            move ? make_game_move(*game, move) : make_null_move(game->position);
        }
        EXPECT_EQ(is_draw(game->position, 2), row.twice) << row.moves;
        EXPECT_EQ(is_draw(game->position, 3), row.thrice) << row.moves;
    }
}

TEST(Draw, FiftyMoves) {
    const std::tuple<const char*, int, int> cases[] = {
        {ROOK, 99, 0},
        {ROOK, 100, 1},
        {"4k3/8/8/8/8/8/8/4K2R b - -", 255, 1},
        {"R3k3/8/4K3/8/8/8/8/8 b - -", 100, 0},  // mate comes first
        {"k7/2Q5/1K6/8/8/8/8/8 b - -", 100, 0},  // stalemate is for the caller
    };
    for (const auto& [fen, fifty, answer] : cases) {
        const auto game = make_game(fen);
        game->position.fifty = u8(fifty);  // more than the moves in the record
        EXPECT_EQ(is_draw(game->position, 2), answer) << fen << " " << fifty;
    }
}

}  // namespace
}  // namespace quon::test
