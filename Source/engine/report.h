#pragma once
// What is said of positions, moves and the book, to whoever types or reads along.

#include <optional>
#include <string_view>

#include "board/position.h"
#include "book/book_pick.h"
#include "engine/engine.h"

namespace quon {

// The position as FEN, the board from White's side, and the side to move.
void print_board(const Position& p);
// position_from_fen; says so when the text claims castling rights that the pieces do not support.
void read_position(Position& p, std::string_view fen);
// The one legal move that the text names (parse_san); false without one. Says so when two match.
[[nodiscard]] bool read_move(const Position& p, std::string_view text, Move& move);

// Opens the book that the settings name and says what is wrong with it.
void load_book(Engine& engine);

// A move that the book offers for the game's position, drawn at random; none without one. Prints
// what the book knows of every move.
std::optional<BookMove> book_pick(Engine& engine);
// The same for a person to see; with `announce` the choice is printed as well.
void book_show(Engine& engine, bool announce);

}  // namespace quon
