// Make and unmake: every redundant field, the keys, the game record; draws by that record.

#include <array>

#include "board/draw.h"
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
