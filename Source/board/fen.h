#pragma once
// Positions as text: FEN and EPD in, FEN and a board diagram out.

#include <string>
#include <string_view>

#include "board/position.h"

namespace quon {

extern const char* const square_name[64];
constexpr char PIECE_LETTERS[] = "-PNBRQK--pnbrqk";  // by piece code; White's are the types'

// The square that the text begins with, NO_SQUARE if it does not.
[[nodiscard]] int square_named(std::string_view text);
// The type of a piece that the colour's letter stands for, NO_TYPE for any other character.
[[nodiscard]] int type_of_letter(char letter, int color = WHITE);

// Sets the position from the first four fields of a FEN or EPD text and empties its game record.
// Castling rights that the pieces do not support are dropped: then it returns false. Pieces that no
// board can hold are left out and noted in `flaw`.
[[nodiscard]] bool position_from_fen(Position& p, std::string_view text);
void set_start_position(Position& p);

// The four fields, without counters.
[[nodiscard]] std::string position_to_fen(const Position& p);

// For a position put together from pieces: computes both keys and drops castling rights that the
// pieces do not support; true if one was dropped.
bool complete_position(Position& p);

// The square in a diagram: a piece's letter, 'o' for Black's pawns, '+' or '-' when it is empty.
char diagram_character(const Position& p, int square);

// FEN, diagram and side to move, a line each.
std::string board_text(const Position& p);

// Operands of the opcodes that the tools use; empty when absent.
struct EpdRecord {
    std::string fen;
    std::string bm;
    std::string am;
    std::string id;
    std::string ce;
    std::string c0;
};

// Splits an EPD line (its first 511 characters); false when it has fewer than four fields. Only the
// first operand of an opcode is kept, with any quote it is written with.
[[nodiscard]] bool parse_epd_line(std::string_view line, EpdRecord& out);

}  // namespace quon
