#pragma once
// What tests on positions share: games on the heap, random play, slow but obvious attack queries,
// colour flip, files beside the checkout.

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "board/position.h"

namespace quon::test {

using Random = std::mt19937_64;

// A number below `bound`.
int pick(Random& random, int bound);

// `count` times the environment variable QUON_TEST_SCALE (1 when unset), at least 1.
int scaled(double count);

std::unique_ptr<Game> make_game(std::string_view fen);

// "e4" as a square.
inline int square_of(std::string_view name) { return make_square(name[0] - 'a', name[1] - '1'); }

std::vector<Move> legal_moves(const Position& p);

// The squares of a piece code in the order of the position's list.
std::vector<int> piece_squares(const Position& p, int piece);

// Up to `plies` random legal moves; returns how many were made.
int play_random(Game& game, Random& random, int plies);

// Calls `visit` on `count` positions of random games from starts with castling, en passant,
// promotions and few men. The visitor may make moves if it takes them back.
void visit_random_positions(int count, unsigned seed, const std::function<void(Game&)>& visit);

// The position seen from the other side.
std::string flip_colors(const Position& p);

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
// All files of a folder in both.
std::vector<std::string> data_files(const std::string& folder);
// The lines of the file in the repository and those that only the folder's has, without line ends.
std::vector<std::string> shared_lines(const std::string& name);

// Compares each row of "/reference/NAME.csv", "FEN;cell;cell ...", with the cells that `row` makes
// of the position; it may make fewer, and "*" stands for any.
using CellMaker = std::function<std::vector<std::string>(const Position&)>;
void expect_reference(const std::string& name, const CellMaker& row);

// The parts of a text between the separators.
std::vector<std::string> split(std::string_view text, char separator);

}  // namespace quon::test
