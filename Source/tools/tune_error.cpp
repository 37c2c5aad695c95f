// The error that the tuners minimise, and the choice of positions that it is measured over.
//
// Each line of the file is a position of a game and how the game ended. For the side to move the
// end is r = 1 (won), 1/2 or 0 (lost). What the engine thinks of the position is its quiescence
// score s, in centipawns for the same side; it stands for the probability of winning
//
//     P(s) = 1 / (1 + 10^(-s / 400)),
//
// one half at 0, 10 / 11 at 400. The line's error is |r - P(s)|, the distance and not its
// square, and the file's error the mean over the lines that count, between 0 and 1.
//
// A search with the depth limit 0 gives s: it evaluates the position, runs the quiescence search
// and ends before the first iteration. A line counts if it names a possible position and a result,
// if |s| <= 900, as a decided game tells nothing about small terms, and if s is within 150 of the
// evaluation: captures that change the picture would have other terms judged than those of the
// position. In check there is no such evaluation, and the line does not count either.
//
// The parameters change between measurements, and with them every score and which lines count. So
// nothing of a position is kept: a measurement derives the evaluation's tables from the live
// parameters once, which empties the thread's caches of pawns and evaluations if they differ, and
// reads and searches all lines again. The one thing remembered through a run is the positions whose
// captures came to no end.

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

#include "board/fen.h"
#include "engine/engine.h"
#include "engine/report.h"
#include "search/threads.h"
#include "support/line_reader.h"
#include "support/status_line.h"
#include "support/text.h"
#include "tools/tool_input.h"
#include "tools/tune.h"

namespace quon {

namespace {

constexpr char FILTERED_FILE[] = "tune_new.epd";

constexpr std::size_t MAX_LINE = 253;  // characters; what a line has beyond them is passed over
constexpr int DECIDED_SCORE = 900;     // centipawns; beyond it a position teaches nothing
constexpr int MAX_UNREST = 150;        // between evaluation and quiescence score
constexpr i64 MAX_GIVEN_SCORE = 950;
constexpr u64 MAX_NODES = 1000000;  // of a quiescence search; games need a few thousand

bool is_comment(std::string_view line) {
    return line.empty() || line[0] == ' ' || line[0] == '#' || line[0] == ';';
}

// The game's result from White's side, as it stands behind the side to move.
std::optional<double> result_of(std::string_view line) {
    constexpr struct {
        std::string_view text;
        double value;
    } results[] = {{"1-0", 1.0}, {"0-1", 0.0}, {"1/2", 0.5}};
    const std::string_view rest = text_from(line, std::min(line.find(" w "), line.find(" b ")));
    for (const auto& row : results) {
        if (rest.find(row.text) != std::string_view::npos) return row.value;
    }
    return std::nullopt;
}

double winning_probability(int score) { return 1 / (1 + std::pow(10.0, -score / 400.0)); }

int given_score(const EpdRecord& record) {
    return int(std::clamp(to_integer(record.ce), -MAX_GIVEN_SCORE, MAX_GIVEN_SCORE));
}

// Evaluation and quiescence score of the game's position, for the side to move.
struct Scores {
    int eval;
    int quiet;
};

// None if the search is broken off.
std::optional<Scores> measure_position(Engine& engine) {
    const ThreadData& thread = thread_data(engine, 0);
    bool whole = true;
    begin_search(engine);
    search_and_wait(
        engine, [&] { return whole = thread.nodes < MAX_NODES && !end_wished(engine); },
        SearchOn::THIS_THREAD);
    if (!whole) return std::nullopt;
    return Scores{thread.root_eval, thread.root_score};
}

// The share of the error that the line with the game's position has; none if it teaches nothing.
std::optional<double> line_error(Engine& engine, std::string_view line, const Scores& scores) {
    const std::optional<double> result = result_of(line);
    if (!result || std::abs(scores.quiet) > DECIDED_SCORE ||
        std::abs(scores.eval - scores.quiet) > MAX_UNREST) {
        return std::nullopt;
    }
    const double reached = engine.game.position.side == WHITE ? *result : 1 - *result;
    const double error = std::abs(reached - winning_probability(scores.quiet));
    assert(0 <= error && error <= 1);
    return error;
}

void show_status(TuneStatus& status, const LineReader& reader) {
    if (!progress_due(status.progress)) return;
    const bool size_known = reader.file_size > 0;
    const double read = size_known ? double(reader.bytes_read) / double(reader.file_size) : 0;
    const auto positions = double(status.positions);
    show_progress(status.progress,
                  status.label + format("%.0f positions, %.0f/s", positions,
                                        positions / progress_seconds(status.progress)),
                  status.done + status.part * read, size_known ? 1 : 0);
}

void pass_over(TuneRun& run, const EpdRecord& record, const std::string& path, int line) {
    run.restless.insert(record.fen);
    end_progress();
    error_line(format("quon: %s, line %d: too many captures, passed over", path.c_str(), line));
}

ErrorSum measure(Engine& engine, const std::string& path, TuneRun& run, File* copy) {
    derive_tables(engine);
    ErrorSum errors;
    int line = 0;
    LineReader reader;
    errors.readable = open_tool_file(reader, path, MAX_LINE);
    LinePiece piece;
    EpdRecord record;
    while (errors.readable && !(copy && copy->failed()) && !end_wished(engine) &&
           next_piece(reader, piece)) {
        show_status(run.status, reader);
        line += piece.starts_line;
        if (!piece.starts_line || is_comment(piece.text)) continue;
        if (!parse_epd_line(piece.text, record)) continue;
        if (run.restless.contains(record.fen)) continue;
        read_position(engine.game.position, record.fen);
        if (position_problem(engine.game.position) != nullptr) continue;
        const std::optional<Scores> scores = measure_position(engine);
        if (!scores) {
            if (!end_wished(engine)) pass_over(run, record, path, line);
            continue;
        }
        const std::optional<double> error = line_error(engine, piece.text, *scores);
        if (!error || (copy && std::abs(given_score(record)) > DECIDED_SCORE)) continue;
        errors.sum += *error;
        ++errors.positions;
        ++run.status.positions;
        if (!copy) continue;
        copy->write(piece.text);
        copy->write("\n");
    }
    errors.readable = errors.readable && !read_failed(reader);
    run.status.done += run.status.part;
    return errors;
}

}  // namespace

double mean_error(const ErrorSum& errors) {
    if (!errors.readable) return 1.0;
    return errors.positions > 0 ? errors.sum / double(errors.positions) : 0.0;
}

ErrorSum sum_errors(Engine& engine, const std::string& path, TuneRun& run) {
    return measure(engine, path, run, nullptr);
}

double tune_error(Engine& engine, const std::string& path, TuneRun& run) {
    run.status = {};
    return mean_error(sum_errors(engine, path, run));
}

ErrorSum tune_error_filter(Engine& engine, const std::string& path, File& copy) {
    TuneRun run;
    return measure(engine, path, run, &copy);
}

bool make_tuning_set(Engine& engine) {
    const std::string& path = engine.options.tune_file;
    if (overwrites_input(path, FILTERED_FILE) || !can_be_read(path)) return false;
    File copy;
    if (!copy.open(FILTERED_FILE, FileMode::WRITE)) {
        error_line(format("quon: can't create %s", FILTERED_FILE));
        return false;
    }
    engine.options.output_delay = NEVER;
    engine.limits.depth_limit = 0;
    start_tool_input(engine, path);
    const bool readable = tune_error_filter(engine, path, copy).readable;
    end_tool_input(engine);
    end_progress();
    if (!readable) report_unreadable_file(path);
    return close_output(copy) && readable;
}

}  // namespace quon
