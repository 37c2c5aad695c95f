// Positions that no game reaches but a text may hold, and the moves that texts make in them.
// QUON_RANDOM_MOVES sets how many.

#include <array>
#include <cstdlib>

#include "board/see.h"
#include "harness/eval_support.h"

namespace quon::test {
namespace {

// Any number of kings and queens, pawns anywhere, rights without pieces, en passant without pawns.
std::string random_fen(Random& random) {
    std::string board(64, '1');  // by FEN's order of squares
    const bool end_pawns = pick(random, 3) == 0;
    for (const char letter : std::string("pnbrqkPNBRQK")) {
        const int usual = letter == 'k' || letter == 'K' ? 1 : pick(random, 4);
        const bool inside = (letter == 'p' || letter == 'P') && !end_pawns;
        for (int left = pick(random, 6) ? usual : pick(random, 11); left > 0; --left) {
            board[std::size_t(inside ? 8 + pick(random, 48) : pick(random, 64))] = letter;
        }
    }
    if (pick(random, 3) == 0) board.replace(56, 8, "R111K11R").replace(0, 8, "r111k11r");
    // Pawns of both sides behind the en-passant square and beside that.
    const bool white = pick(random, 2) == 0;
    const int rank = pick(random, 2) ? pick(random, 8) : white ? 5 : 2;
    const int ep = pick(random, 4) ? make_square(pick(random, 8), rank) : NO_SQUARE;
    for (int square = (ep ^ 56) + (white ? 7 : -9), i = 0; i < 3 && ep != NO_SQUARE;
         ++i, ++square) {
        const int kind = pick(random, 3);
        if (square >= 0 && square < 64 && kind < 2) board[std::size_t(square)] = "Pp"[kind];
    }
    std::string text;
    for (std::size_t at = 0; at < 64; at += 8) text += board.substr(at, 8) + '/';
    text.back() = ' ';
    text += white ? "w " : "b ";
    for (const char right : {'K', 'Q', 'k', 'q'}) text += pick(random, 2) ? right : '-';
    text += ep == NO_SQUARE ? " -" : std::string(" ") + square_name[ep];
    return text + std::array{" 0 1", " 255 0", " -1 -1", " 99999 99999"}[random() % 4];
}

// A generated move, or one that may be anything.
std::string random_move(const Position& p, Random& random) {
    MoveEntry list[MAX_LIST];
    const int count = int(gen_all(p, list) - list);
    if (count > 0 && pick(random, 3)) return move_to_text(list[pick(random, count)].move);
    int from = pick(random, 64);
    for (int i = 0; i < 20 && !has(p.bb[p.side][0], from); ++i) from = pick(random, 64);
    const int step = std::array{1, 2, 7, 8, 9, 16, -1, -2, -7, -8, -9, -16}[random() % 12];
    return move_to_text(
        make_code(from, (from + step) & 63, Move(pick(random, 4) ? 0 : random() & 0xC0C0)));
}

std::string state_of(const Game& game) {
    const Position& p = game.position;
    std::string text = position_to_fen(p);
    for (const u64 field :
         {p.key, p.pawn_key, u64{p.fifty}, u64(game.game_ply), u64{game.last_move}}) {
        text += ' ' + std::to_string(field);
    }
    return text;
}

// Up to ten moves and back; returns how many were made.
int play_texts(Game& game, EvalState& state, Random& random) {
    Position& p = game.position;
    Lines states;
    for (int tries = 0; tries < 40 && states.size() < 10; ++tries) {
        if (tries % 10 == 0 && !position_problem(p)) evaluate_traced(state, p);
        const std::string text = random_move(p, random);
        const Move move = parse_coordinates(p, text);
        if (move == NO_MOVE) continue;
        states.push_back(state_of(game));
        make_move(p, move);
        EXPECT_EQ(verify(p), "") << states.back() << " " << text;
    }
    const int made = int(states.size());
    for (; !states.empty(); states.pop_back()) {
        unmake_move(p);
        EXPECT_EQ(verify(p), "") << states.back();
        EXPECT_EQ(state_of(game), states.back());
    }
    return made;
}

TEST(UnsoundPositions, NoTextCorruptsTheBoard) {
    options.uci_mode = true;
    const char* const wanted = std::getenv("QUON_RANDOM_MOVES");
    Random random(71);
    const auto game = make_game(START_FEN);
    const auto state = make_eval_state();
    for (int left = wanted ? std::atoi(wanted) : scaled(50000); left > 0 && !HasFailure();) {
        const std::string fen = random_fen(random);
        (void)position_from_fen(game->position, fen);
        ASSERT_EQ(verify(game->position), "") << fen;
        game->position.fifty = std::array<u8, 4>{0, 3, 99, 253}[random() % 4];
        left -= play_texts(*game, *state, random);
    }
}

}  // namespace
}  // namespace quon::test
