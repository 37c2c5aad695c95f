// The console command that changes the board piece by piece.

#include <cctype>
#include <string>

#include "board/fen.h"
#include "engine/engine.h"
#include "engine/input.h"
#include "engine/output.h"
#include "engine/report.h"
#include "frontend/console_commands.h"
#include "search/control.h"
#include "search/run.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr std::size_t EDIT_LINE = 77;
constexpr char HELP[] =
    "\n\n"
    ".                    end edit\n"
    "#                    clear board\n"
    "w  Pa2 Pb2 Kc2       white, pieces\n"
    "b  Pa7 Pb7 Kc7       black, pieces";

// Piece letter and square, such as "Kc2"; the first square that is none ends the line.
void place_pieces(Position& p, int color, std::string_view tokens) {
    while (true) {
        const std::string_view token = take_token(tokens, " ");
        if (token.empty()) return;
        const int type = type_of_letter(char(std::toupper(static_cast<unsigned char>(token[0]))));
        if (type == NO_TYPE) continue;
        const int square = square_named(token.substr(1));
        if (square == NO_SQUARE) return;
        const int piece = make_piece(color, type);
        const bool more = p.board[square] != piece;
        if (more && popcount64(p.bb[color][type]) >= MAX_PER_CODE) {
            engine_print("more than nine pieces of a kind");
            continue;
        }
        if (p.board[square]) remove_piece(p, square);
        place_piece(p, piece, square);
    }
}

// A board with promoted pieces may hold more than a search has room for, once it has new pawns.
bool has_too_many(const Position& p) {
    for (const auto& pieces : p.bb) {
        for (int type = PAWN; type <= KING; ++type) {
            if (popcount64(pieces[type]) > MAX_PER_CODE) return true;
        }
    }
    return false;
}

// False when the line ends the edit; "quit" ends the program as well.
bool edit_line(Engine& engine, Position& p, std::string_view line) {
    if (first_word(line) == "quit") engine.control.quit_requested = true;
    if (line.starts_with('.') || first_word(line) == "stop" || engine.control.quit_requested)
        return false;
    if (line.starts_with('#')) {
        clear_position(p);
        return true;
    }
    const std::string_view side = take_token(line, " ");
    if (side.empty() || (side[0] != 'w' && side[0] != 'b')) return true;
    p.side = side[0] == 'w' ? WHITE : BLACK;
    place_pieces(p, p.side, line);
    return true;
}

}  // namespace

void edit_position(Engine& engine, const ConsoleLine&) {
    take_over(engine);
    engine_print(HELP);
    Position& p = engine.game.position;
    std::string line;
    while (next_input_line(engine, line) &&
           edit_line(engine, p, std::string_view(line).substr(0, EDIT_LINE))) {
    }
    p.flaw = has_too_many(p) ? TextFlaw::TOO_MANY_PIECES : TextFlaw::NONE;
    complete_position(p);
    clear_record(engine.game);
    print_board(p);
}

}  // namespace quon
