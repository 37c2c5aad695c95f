// Console commands that look inside: the expected line, the search's tables, exchanges, move paths.

#include <string>

#include "board/fen.h"
#include "board/keys.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "board/perft.h"
#include "board/see.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "engine/report.h"
#include "frontend/console_commands.h"
#include "frontend/search_session.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/run.h"
#include "search/search.h"
#include "search/search_params.h"
#include "search/threads.h"
#include "support/text.h"
#include "tools/tool_input.h"

namespace quon {

namespace {

// What the search of the game position, running or ended, expects; empty if another position was
// searched.
Table<Move, MAX_PLY> searched_line(Engine& engine) {
    Table<Move, MAX_PLY> line{};
    if (engine.run.root_key != full_key(engine.game.position)) return line;
    for (int i = 1; i < MAX_PLY; ++i) line[i] = engine.run.shared_line[i];
    return line;
}

}  // namespace

// Walks the line on the game's own board and record, so that "]" can then replay it.
void show_line(Engine& engine, const ConsoleLine&) {
    if (!position_accepted(engine)) return;
    Position& p = engine.game.position;
    Table<Move, MAX_PLY> line = searched_line(engine);
    hash_line(engine.hash, p, 1, line);
    std::string text;
    int made = 0;
    for (; made < LAST_LINE_PLY && can_be_made(p, line[made + 1]); ++made) {
        const Move move = line[made + 1];
        if (made > 0) text += ' ';
        text += move_forms(p, move_entry(p, move)).san;
        make_move(p, move);
    }
    print_unlogged("PV: " + text + "\n\n");
    print_board(p);
    for (; made > 0; --made) unmake_move(p);
}

namespace {

std::string reductions_text(const ReductionTable& table) {
    std::string text;
    for (int depth = 1; depth <= 50; ++depth) {
        text += format("%2d  ", depth);
        for (const u8 reduction : table[depth]) text += format("%d ", reduction);
        text += '\n';
    }
    return text;
}

}  // namespace

void show_reductions(Engine& engine, const ConsoleLine&) {
    const struct {
        const char* name;
        int value;
    } values[] = {
        {"FP_depth", engine.params.FP_depth},   {"FP_margin", engine.params.FP_margin},
        {"SEP_depth", engine.params.SEP_depth}, {"SEP_margin", engine.params.SEP_margin},
        {"NMP_depth", engine.params.NMP_depth}, {"LMP_depth", engine.params.LMP_depth},
        {"LMP_count", engine.params.LMP_count}, {"LMR_depth", engine.params.LMR_depth},
    };
    std::string text;
    for (const auto& row : values) text += format("%s= %d\n", row.name, row.value);
    text += "LMR table:\n" + reductions_text(engine.search_params.pv_reductions);
    print_unlogged(text + "\n\n" + reductions_text(engine.search_params.zero_window_reductions));
}

void show_exchanges(Engine& engine, const ConsoleLine&) {
    const Position& position = engine.game.position;
    for (int square = 0; square < 64; ++square) {
        const int piece = position.board[square];
        if (piece == 0) continue;
        const int value = see(position, color_of(piece) ^ 1, NO_SQUARE, square);
        if (value != 0) print_unlogged(format("sq= %s, swap= %d\n", square_name[square], value));
    }
}

// Counts on a search thread's copy, so that the game's piece lists keep their order.
void count_paths(Engine& engine, const ConsoleLine& line) {
    const int depth = int(std::clamp<i64>(to_integer(line.first), 0, 20));
    finish_search(engine, ABORT);
    if (!position_accepted(engine)) return;
    const u8 next_search = engine.control.go_request;  // that of self-play
    engine.control.go_request = NO_SEARCH;
    begin_search(engine);
    ThreadData& thread = thread_data(engine, 0);
    thread_prepare(thread);
    const std::optional<u64> paths = perft(thread.position, depth, [&] { return keep_on(engine); });
    update_elapsed(engine.run);
    engine.control.go_request = next_search;
    if (!paths) {
        engine_print("perft ended");
        return;
    }
    const auto nodes = double(*paths);
    engine_print(format("visited %0.0f nodes in %0.3f seconds, nps= %0.0f", nodes,
                        engine.run.elapsed.get(), nodes / (engine.run.elapsed + 0.001)));
}

}  // namespace quon
