#pragma once
// What all tests of positions share, and the headers that they need: games on the heap, random
// play, slow but obvious attack queries, reference files.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "board/movegen.h"
#include "board/position.h"
#include "board/verify.h"
#include "support/text.h"

namespace quon::test {

using Random = std::mt19937_64;
using Lines = std::vector<std::string>;

// A number below `bound`.
inline int pick(Random& random, int bound) { return int(random() % u64(bound)); }
template <typename List>
const auto& pick_from(Random& random, const List& list) {
    return list[std::size_t(pick(random, int(std::size(list))))];
}

// `count` times the environment variable QUON_TEST_SCALE (1 when unset), at least 1.
int scaled(double count);

std::unique_ptr<Game> make_game(std::string_view fen);

// "e4" as a square.
inline int square_of(std::string_view name) { return make_square(name[0] - 'a', name[1] - '1'); }

std::vector<Move> legal_moves(const Position& p);

// Up to `plies` random legal moves; returns how many were made.
int play_random(Game& game, Random& random, int plies);

// Calls `visit` on `count` positions of random games from starts with castling, en passant,
// promotions and few men. The visitor may make moves if it takes them back.
void visit_random_positions(int count, unsigned seed, const std::function<void(Game&)>& visit);

// Squares that a piece (no pawn) reaches with one step after the other up to a blocker, and the
// pieces of a side that attack a square in this way: slow but obvious.
Bitboard reach_by_steps(int type, int from, Bitboard occupancy);
Bitboard attackers_by_steps(const Position& p, int square, int by_side);

// What the call writes to standard output.
std::string captured_output(const std::function<void()>& call);

// Reference data are in tests/data, and more of them in the folder beside the checkout where that
// exists. Names are those of that folder: "/data/..." and "/reference/...".
//
// The file in the repository, or else in that folder; "" if it is in neither.
std::string data_file(const std::string& name);
// The lines of the file in the repository and those that only the folder's has, without line ends.
Lines shared_lines(const std::string& name);

// Compares each row of "/reference/NAME.csv", "FEN;cell;cell ...", with the cells that `row` makes
// of the position; it may make fewer, and "*" stands for any.
void expect_reference(const std::string& name, const std::function<Lines(const Position&)>& row);

// The parts of a text between the separators.
Lines split(std::string_view text, char separator);

}  // namespace quon::test
