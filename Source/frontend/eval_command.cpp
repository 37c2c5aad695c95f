// The breakdown of the evaluation: a search of depth 0 fills the trace record, which is then
// printed.

#include "frontend/console_commands.h"

#include <cstdlib>
#include <string>

#include "board/fen.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "eval/eval_trace.h"
#include "frontend/search_session.h"
#include "search/control.h"
#include "search/run.h"
#include "search/search_trace.h"
#include "search/threads.h"
#include "support/text.h"
#include "tools/tool_input.h"

namespace quon {

namespace {

// Leaves the evaluation and the score of the captures in the main search thread's record; false if
// it is to end before.
bool search_captures(Engine& engine, EvalTrace& trace) {
    bool whole = true;
    const int depth_limit = engine.run.depth_limit;
    engine.run.depth_limit = 0;
    engine.control.stop_flag = RUN;
    thread_data(engine, 0).eval_trace = &trace;
    search_in_main_thread(engine, [&] { return whole = !end_wished(engine); });
    thread_data(engine, 0).eval_trace = nullptr;
    engine.run.depth_limit = depth_limit;
    flush_search_trace(engine.trace);
    return whole;
}

std::string squares_text(const char* title, Bitboard squares) {
    if (squares == 0) return "";
    std::string text = title;
    while (squares) text += format("  %s", square_name[pop_square(squares)]);
    return text + '\n';
}

// The pieces that one side has more of than the other, queens first.
std::string surplus_text(const Position& p, int color) {
    std::string text;
    for (int type = QUEEN; type >= PAWN; --type) {
        const int more = popcount64(p.bb[color][type]) - popcount64(p.bb[color ^ 1][type]);
        if (more > 0) text.append(std::size_t(more), PIECE_LETTERS[type]);
    }
    return text;
}

std::string totals_text(const Position& p, const EvalTrace& trace) {
    constexpr const char* NAMES[] = {"mtl",   "pos",    "pawns", "knights", "bishops",
                                     "rooks", "queens", "kings", "passers"};
    std::string text = "           white    black     diff\n";
    for (int term = 0; term < TRACE_TERMS; ++term) {
        const int white = trace.total[term][WHITE];
        const int black = trace.total[term][BLACK];
        const std::string name = std::string(NAMES[term]) + '=';
        text += format("%-11s%5d    %5d    %5d", name.c_str(), white, black, white - black);
        if (term == TRACE_MATERIAL) {
            text += format("   (%s :: %s)", surplus_text(p, WHITE).c_str(),
                           surplus_text(p, BLACK).c_str());
        }
        text += '\n';
    }
    return text;
}

std::string board_text(const Position& p, const EvalTrace& trace) {
    std::string text;
    for (int rank = 7; rank >= 0; --rank) {
        std::string values = "    ";
        for (int file = 0; file < 8; ++file) {
            const int square = make_square(file, rank);
            text += format(" %c", diagram_character(p, square));
            values += p.board[square] ? format(" %4d", trace.square[square]) : "    -";
        }
        text += values + '\n';
    }
    return text;
}

}  // namespace

void eval_trace(Engine& engine) {
    finish_search(engine);
    if (!position_accepted(engine)) return;
    EvalTrace trace{};
    if (!search_captures(engine, trace)) {
        engine_print("evaluation ended");
        return;
    }
    const ThreadData& t = thread_data(engine, 0);
    const Position& p = engine.game.position;
    std::string text = format("eval= %d, qscore= %d, stage= %d, draw_adj= %0.2f\n\n", t.root_eval,
                              t.root_score.get(), trace.stage, trace.factor);
    text += squares_text("hung pieces on: ", trace.hung);
    text += squares_text("pinned pieces on :", trace.pinned);
    text += totals_text(p, trace) + board_text(p, trace);
    text += p.side == WHITE ? "white\n" : "black\n";
    engine_print(text);
}

}  // namespace quon
