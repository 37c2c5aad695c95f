#pragma once
// Positions and moves between the board and whoever types or reads them.

#include <string_view>

#include "board/position.h"

namespace quon {

// The position as FEN, the board from White's side, and the side to move.
void print_board(const Position& p);
// position_from_fen; says so when the text claims castling rights that the pieces do not support.
void read_position(Position& p, std::string_view fen);
// The one legal move that the text names (parse_san); false without one. Says so when two match.
[[nodiscard]] bool read_move(const Position& p, std::string_view text, Move& move);

}  // namespace quon
