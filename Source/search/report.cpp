// Search reporting.

#include "search/report.h"

#include <cmath>

#include "board/fen.h"
#include "board/move_text.h"
#include "frontend/engine_options.h"
#include "frontend/output.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/score.h"
#include "search/threads.h"

namespace quon {

SearchTotals totals;

namespace {

constexpr int LAST_LINE_ENTRY = 66;
constexpr int SHOWN_WHILE_SEARCHING = 8;  // moves of a console line
constexpr int SHOWN_AT_END = 32;
constexpr char CONSOLE_BREAK[] = "\n                              ";  // after every eighth move

constexpr int TB_SCORE = 9800;

// A known result of the root outweighs what the search thinks, except for mates it has found.
int shown_score(int score) {
    if (run.root_tb_result == NO_TB_RESULT) return score;
    if (run.root_tb_result == TB_WIN) return score <= 9898 ? TB_SCORE : score;
    if (run.root_tb_result == TB_LOSS) return score >= -9899 ? -TB_SCORE : score;
    return 0;
}

std::string score_text(int score) {
    if (score >= CERTAIN_MATE) return format("mate %d", (MATE - score) / 2);
    if (score < -CERTAIN_MATE) return format("mate -%d", (score + MATE + 1) / 2);
    return format("cp %d", score);
}

std::string uci_line_text(const Line& line) {
    std::string text;
    for (int i = 1; i <= LAST_LINE_ENTRY && line[i] != NO_MOVE; ++i) {
        if (i > 1) text += ' ';
        text += move_to_text(line[i]);
    }
    return text;
}

std::string console_line_text(const Line& line) {
    const int limit = stopped() ? SHOWN_AT_END : SHOWN_WHILE_SEARCHING;
    std::string text;
    for (int i = 1; i <= limit && line[i] != NO_MOVE; ++i) {
        if (i > 1) text += i % 8 == 1 ? CONSOLE_BREAK : " ";
        text += move_to_text(line[i]);
    }
    return text;
}

double nodes_per_second() { return run.elapsed > 0.001 ? double(totals.nodes) / run.elapsed : 0.0; }

std::string uci_info(int thread_index, int pv_index, int depth, int score, const Line& line) {
    const std::string multipv = run.multipv > 1 ? format("multipv %d ", pv_index + 1) : "";
    const char kind = pv_index >= 0 ? '.' : ' ';
    const std::string tag = options.uci_extra ? format("[%02d%c] ", thread_index, kind) : "";
    return format(
        "info %s%sdepth %d seldepth %d score %s time %.0f nodes %.0f nps %.0f tbhits %.0f "
        "hashfull %.0f pv %s",
        multipv.c_str(), tag.c_str(), depth, thread_data(0).sel_depth - 1,
        score_text(shown_score(score)).c_str(), run.elapsed * 1000, double(totals.nodes),
        nodes_per_second(), double(totals.tb_hits), hash_fill() * 1000,
        uci_line_text(line).c_str());
}

std::string console_info(int thread_index, int pv_index, int depth, int score, const Line& line) {
    return format("%02d] %02d%c %5.1f %7.0fK %5d  %s", thread_index, depth,
                  pv_index >= 0 ? '.' : ' ', run.elapsed.get(), double(totals.nodes) / 1000, score,
                  console_line_text(line).c_str());
}

}  // namespace

bool output_due() {
    const double delay = options.output_delay;
    return delay != NEVER && run.elapsed >= delay;
}

void collect_stats() {
    totals = {};
    for (int i = 0; i < thread_total(); ++i) {
        const ThreadData& t = thread_data(i);
        totals.nodes += t.nodes;
        totals.tb_hits += t.tb_hits;
        totals.hash_probes += t.hash_probes;
        totals.hash_hits += t.hash_hits;
        totals.eval_probes += t.eval.evaluations;
        totals.eval_hits += t.eval.eval_hits;
        totals.pawn_probes += t.eval.pawn_probes;
        totals.pawn_hits += t.eval.pawn_hits;
    }
}

void print_info(int thread_index, int pv_index, int depth, int score, const Line& line) {
    const std::lock_guard lock(run.output_mutex);
    collect_stats();
    if (depth > 6) hash_update_fill();
    engine_print(options.uci_mode ? uci_info(thread_index, pv_index, depth, score, line)
                                  : console_info(thread_index, pv_index, depth, score, line));
}

void print_currmove(int depth, Move move, int number) {
    const std::lock_guard lock(run.output_mutex);
    if (number == 1) {
        collect_stats();
        hash_update_fill();
        engine_print(format("info depth %d time %.0f nodes %.0f nps %.0f hashfull %.0f", depth,
                            run.elapsed * 1000, double(totals.nodes), nodes_per_second(),
                            hash_fill() * 1000));
    }
    if (run.multipv == 1) {
        engine_print(format("info currmove %s%s currmovenumber %d", square_name[move_from(move)],
                            square_name[move_to(move)], number));
    }
}

void final_report(int score) {
    const bool due = !run.finished || run.elapsed >= options.output_delay;
    if (!due || run.shared_depth == 0 || options.output_delay == NEVER) return;
    if (run.shared_line[1] == NO_MOVE) return;
    print_info(0, 0, run.shared_depth, score, run.shared_line);
}

double effective_branching() {
    const int depth = run.main_done_depth;
    if (depth < 6) return 2.0;
    const double last = double(run.nodes_by_depth[depth].load());
    const double earlier = double(run.nodes_by_depth[depth - 4].load());
    if (last == 0 || earlier == 0) return 2.0;
    return std::pow(last / earlier, 0.25);
}

namespace {

double percent(u64 hits, u64 probes) { return double(hits) * 100 / double(probes + 1); }

}  // namespace

void print_console_statistics() {
    hash_update_fill();
    engine_print(format("move= %s, time= %0.3f, score= %d, nodes= %0.0f, nps= %0.0fK ebf= %0.2f",
                        move_to_text(run.shared_line[1]).c_str(), run.elapsed.get(),
                        int(run.shared_score), double(totals.nodes),
                        double(totals.nodes) / (run.elapsed + 0.001) / 1000,
                        effective_branching()));
    engine_print(
        format("Hash fill= %.1f%%, Hash hits: main= %0.1f%%, pawn= %0.1f%%, eval= %0.1f%%, "
               "TB=%0.0fK",
               hash_fill() * 100, percent(totals.hash_hits, totals.hash_probes),
               percent(totals.pawn_hits, totals.pawn_probes),
               percent(totals.eval_hits, totals.eval_probes), double(totals.tb_hits) / 1000));
    engine_print("");
}

}  // namespace quon
