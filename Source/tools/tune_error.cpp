// The error that the tuners minimise, and the choice of positions that it is measured over.

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>

#include "board/fen.h"
#include "engine/engine.h"
#include "engine/report.h"
#include "eval/eval_tables.h"
#include "search/search_params.h"
#include "search/threads.h"
#include "search/time.h"
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
    search_in_main_thread(engine, [&] {
        whole = thread.nodes < MAX_NODES && !end_wished(engine);
        return whole;
    });
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

// Positions whose captures have no end, as FEN: told and tried once, however often they are read.
std::set<std::string> restless;

void pass_over(const EpdRecord& record, const std::string& path, int line) {
    restless.insert(record.fen);
    end_progress();
    error_line(format("quon: %s, line %d: too many captures, passed over", path.c_str(), line));
}

ErrorSum measure(Engine& engine, const std::string& path, TuneStatus& status, OutputFile* copy) {
    init_eval_tables(engine.eval_tables, engine.params);
    apply_search_params(engine.search_params, engine.params);
    ErrorSum errors;
    int line = 0;
    LineReader reader;
    errors.readable = open_tool_file(reader, path, MAX_LINE);
    LinePiece piece;
    EpdRecord record;
    while (errors.readable && !(copy && copy->failed) && !end_wished(engine) &&
           next_piece(reader, piece)) {
        show_status(status, reader);
        line += piece.starts_line;
        if (!piece.starts_line || is_comment(piece.text)) continue;
        if (!parse_epd_line(piece.text, record)) continue;
        if (restless.contains(record.fen)) continue;
        read_position(engine.game.position, record.fen);
        if (position_problem(engine.game.position) != nullptr) continue;
        const std::optional<Scores> scores = measure_position(engine);
        if (!scores) {
            if (!end_wished(engine)) pass_over(record, path, line);
            continue;
        }
        const std::optional<double> error = line_error(engine, piece.text, *scores);
        if (!error || (copy && std::abs(given_score(record)) > DECIDED_SCORE)) continue;
        errors.sum += *error;
        ++errors.positions;
        ++status.positions;
        if (!copy) continue;
        write_text(*copy, piece.text);
        write_text(*copy, "\n");
    }
    errors.readable = errors.readable && !read_failed(reader);
    status.done += status.part;
    return errors;
}

}  // namespace

double mean_error(const ErrorSum& errors) {
    if (!errors.readable) return 1.0;
    return errors.positions > 0 ? errors.sum / double(errors.positions) : 0.0;
}

ErrorSum sum_errors(Engine& engine, const std::string& path, TuneStatus& status) {
    return measure(engine, path, status, nullptr);
}

double tune_error(Engine& engine, const std::string& path) {
    TuneStatus status;
    return mean_error(sum_errors(engine, path, status));
}

ErrorSum tune_error_filter(Engine& engine, const std::string& path, OutputFile& copy) {
    TuneStatus status;
    return measure(engine, path, status, &copy);
}

bool make_tuning_set(Engine& engine) {
    const std::string& path = engine.options.tune_file;
    if (overwrites_input(path, FILTERED_FILE)) return false;
    OutputFile copy;
    if (!create_output(copy, FILTERED_FILE)) {
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
