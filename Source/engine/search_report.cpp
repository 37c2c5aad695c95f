// Report formats, and when a report is due.

#include "engine/search_report.h"

#include <algorithm>

#include "board/fen.h"
#include "board/move_text.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "search/score.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr double CURRMOVE_AFTER = 3.5;  // seconds

constexpr int SHOWN_WHILE_SEARCHING = 8;  // moves of a console line
constexpr int SHOWN_AT_END = 32;
constexpr char CONSOLE_BREAK[] = "\n                              ";  // after every eighth move

// A known result of the root outweighs what the search thinks, except for mates it has found.
int shown_score(Engine& engine, int score) {
    if (engine.run.root_tb_result == NO_TB_RESULT) return score;
    if (engine.run.root_tb_result == TB_WIN)
        return score <= LAST_OPEN_SCORE ? TB_SHOWN_SCORE : score;
    if (engine.run.root_tb_result == TB_LOSS)
        return score >= -LAST_OPEN_SCORE - 1 ? -TB_SHOWN_SCORE : score;
    return 0;
}

std::string score_text(int score) {
    if (score >= CERTAIN_MATE) return format("mate %d", (MATE - score) / 2);
    if (score < -CERTAIN_MATE) return format("mate -%d", (score + MATE + 1) / 2);
    return format("cp %d", score);
}

std::string uci_line_text(const Engine& engine, const Line& line) {
    std::string text;
    for (int i = 1; i <= LAST_LINE_PLY && line[i] != NO_MOVE; ++i) {
        if (i > 1) text += ' ';
        text += move_to_text(engine, line[i]);
    }
    return text;
}

std::string console_line_text(Engine& engine, const Line& line) {
    const int limit = stopped(engine) ? SHOWN_AT_END : SHOWN_WHILE_SEARCHING;
    std::string text;
    for (int i = 1; i <= limit && line[i] != NO_MOVE; ++i) {
        if (i > 1) text += i % 8 == 1 ? CONSOLE_BREAK : " ";
        text += move_to_text(engine, line[i]);
    }
    return text;
}

double nodes_per_second(Engine& engine) {
    return engine.run.elapsed > 0.001 ? double(engine.totals.nodes) / engine.run.elapsed : 0.0;
}

std::string uci_info(Engine& engine, const SearchLine& line) {
    const std::string multipv =
        engine.run.multipv > 1 ? format("multipv %d ", line.pv_index + 1) : "";
    const char kind = line.pv_index >= 0 ? '.' : ' ';
    const std::string tag = engine.options.uci_extra ? format("[%02d%c] ", line.thread, kind) : "";
    return format(
        "info %s%sdepth %d seldepth %d score %s time %.0f nodes %.0f nps %.0f tbhits %.0f "
        "hashfull %.0f pv %s",
        multipv.c_str(), tag.c_str(), line.depth, thread_data(engine, 0).sel_depth - 1,
        score_text(shown_score(engine, line.score)).c_str(), engine.run.elapsed * 1000,
        double(engine.totals.nodes), nodes_per_second(engine), double(engine.totals.tb_hits),
        engine.hash.fill * 1000, uci_line_text(engine, line.moves).c_str());
}

std::string console_info(Engine& engine, const SearchLine& line) {
    return format("%02d] %02d%c %5.1f %7.0fK %5d  %s", line.thread, line.depth,
                  line.pv_index >= 0 ? '.' : ' ', engine.run.elapsed.get(),
                  double(engine.totals.nodes) / 1000, line.score,
                  console_line_text(engine, line.moves).c_str());
}

bool output_due(Engine& engine) {
    const double delay = engine.options.output_delay;
    return delay != NEVER && engine.run.elapsed >= delay;
}

// A result that a stop brings is told whatever the delay is.
bool is_due(Engine& engine, const SearchLine& line) {
    if (line.kind == LineKind::RESULT && stopped(engine))
        return engine.options.output_delay != NEVER;
    return output_due(engine);
}

// One info line, or one currmove block, at a time.
std::mutex mutex;

void print_line(Engine& engine, const SearchLine& line) {
    const std::lock_guard lock(mutex);
    collect_stats(engine);
    if (line.depth > 6) hash_update_fill(engine.hash);
    engine_print(engine.options.uci_mode ? uci_info(engine, line) : console_info(engine, line));
}

// A move that goes to another place is no longer at the one before.
void note_place(Engine& engine, const SearchLine& line) {
    const Move move = line.moves[1];
    std::replace(engine.shown_moves.begin(), engine.shown_moves.end(), move, NO_MOVE);
    engine.shown_moves[line.pv_index] = move;
}

int place_of(const Engine& engine, Move move) {
    const auto* const place = std::find(engine.shown_moves.begin(), engine.shown_moves.end(), move);
    return place == engine.shown_moves.end() ? 0 : int(place - engine.shown_moves.begin());
}

}  // namespace

void SearchReporter::on_start(Searcher&) {
    engine.shown_moves = {};
    if (engine.options.output_delay == NEVER) return;
    const std::string fen = position_to_fen(engine.game.position);
    const int ply = engine.game.game_ply;
    if (engine.options.uci_mode) {
        log_line("info string fen " + fen);
        log_line(format("info string ply= %d, trg_time= %0.3f sec", ply, engine.run.target_time));
    } else {
        engine_print("fen " + fen);
        engine_print(format("Ply= %d, Clock= %0.2fs  Target time= %0.2fs", ply,
                            engine.limits.clock[engine.run.root_side], engine.run.target_time));
    }
}

void SearchReporter::on_line(Searcher&, const SearchLine& line) {
    if (!is_due(engine, line)) return;
    print_line(engine, line);
    if (line.kind == LineKind::ITERATION) note_place(engine, line);
}

void SearchReporter::on_root_move(Searcher&, int depth, Move move, int number) {
    if (!engine.options.uci_mode || engine.run.elapsed <= CURRMOVE_AFTER || !output_due(engine))
        return;
    const std::lock_guard lock(mutex);
    if (number == 1) {
        collect_stats(engine);
        hash_update_fill(engine.hash);
        engine_print(format("info depth %d time %.0f nodes %.0f nps %.0f hashfull %.0f", depth,
                            engine.run.elapsed * 1000, double(engine.totals.nodes),
                            nodes_per_second(engine), engine.hash.fill * 1000));
    }
    if (engine.run.multipv == 1) {
        engine_print(format("info currmove %s%s currmovenumber %d", square_name[move_from(move)],
                            square_name[move_to(move)], number));
    }
}

void SearchReporter::on_lines_end(Searcher&) {
    if (!engine.options.uci_mode) engine_print("");
}

void SearchReporter::on_message(std::string_view text) { print_unlogged(text); }

void final_report(Engine& engine, int score) {
    const bool due = !engine.run.finished || engine.run.elapsed >= engine.options.output_delay;
    if (!due || engine.run.shared_depth == 0 || engine.options.output_delay == NEVER) return;
    const Line& line = engine.run.shared_line;
    if (line[1] == NO_MOVE) return;
    const int place = place_of(engine, line[1]);
    print_line(engine, {LineKind::RESULT, 0, place, engine.run.shared_depth, score, line});
}

namespace {

double percent(u64 hits, u64 probes) { return double(hits) * 100 / double(probes + 1); }

}  // namespace

void print_console_statistics(Engine& engine) {
    hash_update_fill(engine.hash);
    engine_print(format("move= %s, time= %0.3f, score= %d, nodes= %0.0f, nps= %0.0fK ebf= %0.2f",
                        move_to_text(engine, engine.run.shared_line[1]).c_str(),
                        engine.run.elapsed.get(), int(engine.run.shared_score),
                        double(engine.totals.nodes),
                        double(engine.totals.nodes) / (engine.run.elapsed + 0.001) / 1000,
                        effective_branching(engine.run)));
    engine_print(
        format("Hash fill= %.1f%%, Hash hits: main= %0.1f%%, pawn= %0.1f%%, eval= %0.1f%%, "
               "TB=%0.0fK",
               engine.hash.fill * 100, percent(engine.totals.hash_hits, engine.totals.hash_probes),
               percent(engine.totals.pawn_hits, engine.totals.pawn_probes),
               percent(engine.totals.eval_hits, engine.totals.eval_probes),
               double(engine.totals.tb_hits) / 1000));
    engine_print("");
}

}  // namespace quon
