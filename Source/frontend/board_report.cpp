// Messages about positions and moves.

#include "frontend/board_report.h"

#include "board/fen.h"
#include "board/move_text.h"
#include "frontend/output.h"

namespace quon {

void print_board(const Position& p) { engine_print(board_text(p)); }

void read_position(Position& p, std::string_view fen) {
    if (!position_from_fen(p, fen)) engine_print("Illegal EPD record");
}

bool read_move(const Position& p, std::string_view text, Move& move) {
    const int named = parse_san(p, text, move);
    if (named == 2) print_unlogged("ambiguous move\n");
    return named == 1;
}

}  // namespace quon
