// What is printed of positions, moves and the book.

#include "engine/report.h"

#include "board/fen.h"
#include "board/move_text.h"
#include "engine/output.h"
#include "support/text.h"

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

void load_book(Engine& engine) {
    for (const std::string& problem : book_open(engine.book, engine.options.book_file)) {
        engine_print(format("%sbook file %s %s", message_prefix(engine),
                            engine.options.book_file.c_str(), problem.c_str()));
    }
}

namespace {

std::string row_text(const Engine& engine, const BookMove& move) {
    return format("  %s   %0.1f%%   %5d  %5d  %5d", move_to_text(engine, move.move).c_str(),
                  double(100 * move.share), move.record.wins, move.record.losses,
                  move.record.draws);
}

}  // namespace

std::optional<BookMove> book_pick(Engine& engine) {
    const auto moves = book_moves(engine.book, engine.game.position);
    if (!moves) return std::nullopt;
    const std::string start = engine.options.uci_mode ? "info string " : " ";
    engine_print(start + "  move  result    wins losses  draws");
    for (const BookMove& move : *moves) engine_print(start + row_text(engine, move));
    return draw_book_move(*moves, engine.options.book_variety, engine.random);
}

void book_show(Engine& engine, bool announce) {
    const auto book = book_pick(engine);
    if (announce && book) {
        engine_print(format("book move is %s\n", move_to_text(engine, book->move).c_str()));
    }
}

}  // namespace quon
