// Make and unmake: every redundant field, the keys, the game record, the order of the lists.

#include "board/make.h"

#include <gtest/gtest.h>

#include <array>

#include "board/draw.h"
#include "board/fen.h"
#include "board/verify.h"
#include "harness/board_support.h"

namespace quon::test {
namespace {

// side, castle, ep, fifty, game_ply, ply, last_move
using State = std::array<int, 7>;
State state_of(const Game& game) {
    const Position& p = game.position;
    return {p.side, p.castle, p.ep, p.fifty, game.game_ply, game.ply, game.last_move};
}

// A place in a game: everything that taking back must bring back.
struct Place {
    decltype(Position::board) board;
    State state;
};

// What a move, or a pass (move 0), makes of the state before it; `after` is the board then.
State expected_state(const Place& before, const decltype(Position::board)& after, Move move) {
    const auto [side, castle, passed, fifty, game_ply, ply, last] = before.state;
    constexpr int HOMES[][5] = {// right, king's square and code, rook's square and code
                                {1, 4, 6, 7, 4},
                                {2, 4, 6, 0, 4},
                                {4, 60, 14, 63, 12},
                                {8, 60, 14, 56, 12}};
    int rights = 0;
    for (const auto& [right, king, king_code, rook, rook_code] : HOMES) {
        if (after[king] == king_code && after[rook] == rook_code) rights |= castle & right;
    }
    const int from = move_from(move);
    const int to = move_to(move);
    const int type = move == NO_MOVE ? 0 : type_of(before.board[from]);
    const int distance = std::abs(to - from);
    const int ep = type == PAWN && distance == 16 ? (from + to) / 2 : NO_SQUARE;
    const bool castled = type == KING && distance == 2;
    const bool progress = type == PAWN || castled || (type != 0 && before.board[to] != 0);
    return {side ^ 1, rights, ep, progress ? 0 : fifty + 1, game_ply + 1, ply + 1, move};
}

TEST(Make, RandomWalksThereAndBack) {
    Random random(11);
    visit_random_positions(scaled(1000), 12, [&](Game& game) {
        Position& p = game.position;
        std::vector<Place> places;
        for (int ply = 0; ply < 100; ++ply) {
            const std::vector<Move> moves = legal_moves(p);
            if (moves.empty()) break;
            places.push_back({p.board, state_of(game)});
            const bool pass = !in_check(p) && pick(random, 16) == 0;
            const Move move = pass ? NO_MOVE : moves[random() % moves.size()];
            pass ? make_null_move(p) : make_move(p, move);
            ASSERT_EQ(state_of(game), expected_state(places.back(), p.board, move));
            ASSERT_EQ(verify(p), "") << position_to_fen(p);
        }
        for (; !places.empty(); places.pop_back()) {
            game.last_move == NO_MOVE ? unmake_null_move(p) : unmake_move(p);
            const auto& board = places.back().board;
            ASSERT_TRUE(std::equal(p.board.begin(), p.board.end(), board.begin()));
            ASSERT_EQ(state_of(game), places.back().state);
            ASSERT_EQ(verify(p), "");
        }
    });
}

// A captured piece leaves a gap that closes; a piece new on the board goes to the end.
TEST(Make, OrderOfTheLists) {
    const std::tuple<const char*, Move, int, std::vector<int>, std::vector<int>> cases[] = {
        // A capture, en passant, castling, a promotion.
        {"4k3/n7/1n6/n7/8/8/8/RR2K3 w - -", make_code(1, 41), 10, {48, 32}, {48, 32, 41}},
        {"4k3/8/p7/1pP5/8/p7/8/4K3 w - b6", make_code(34, 41), 9, {40, 16}, {40, 16, 33}},
        {"4k3/R7/8/8/8/8/8/R3K2R w KQ -", make_code(4, 2), 4, {48, 3, 7}, {48, 0, 7}},
        {"2n1k3/1P6/8/8/8/P7/7Q/4K3 w - -", make_code(49, 57, PROMOTE_QUEEN), 5, {15, 57}, {15}},
    };
    for (const auto& [fen, move, piece, made, unmade] : cases) {
        const auto game = make_game(fen);
        make_move(game->position, move);
        EXPECT_EQ(piece_squares(game->position, piece), made) << fen << move;
        unmake_move(game->position);
        EXPECT_EQ(piece_squares(game->position, piece), unmade) << fen << move;
    }
}

TEST(Make, GameLongerThanTheRecordAndItsCopy) {
    constexpr Move SHUFFLE[] = {make_code(6, 21), make_code(62, 45), make_code(21, 6),
                                make_code(45, 62)};
    const auto game = make_game(START_FEN);
    std::vector<u64> keys;
    for (int i = 0; i < 3 * MAX_GAME_PLIES + 1; ++i) {
        keys.push_back(game->position.key);
        make_game_move(*game, SHUFFLE[i % 4]);
        ASSERT_LE(game->game_ply, MAX_GAME_PLIES);
        ASSERT_GT(game->game_ply, std::min(i, MAX_GAME_PLIES / 2));
    }
    game->position.fifty = 99;
    EXPECT_EQ(is_draw(game->position, 3), 2);
    const auto copy = std::make_unique<Game>();
    copy_game(*copy, *game);
    EXPECT_EQ(state_of(*copy), state_of(*game));
    const State state = state_of(*game);
    for (; copy->game_ply > 0; keys.pop_back()) {
        ASSERT_EQ(copy->undo[copy->game_ply - 1].key, keys.back());
        unmake_move(copy->position);
        ASSERT_EQ(copy->position.key, keys.back());
    }
    EXPECT_EQ(verify(copy->position), "");
    EXPECT_EQ(state_of(*game), state);
}

}  // namespace
}  // namespace quon::test
