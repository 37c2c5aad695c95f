// The test-suite runner. A deep search runs on the search threads while the main thread watches the
// clock; a shallow one is over too soon for that and runs on the main thread itself.

#include "tools/epd_runner.h"

#include "board/fen.h"
#include "board/move_text.h"
#include "engine/engine.h"
#include "engine/output.h"
#include "engine/report.h"
#include "engine/search_report.h"
#include "platform/interrupt.h"
#include "platform/standard_output.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/threads.h"
#include "support/line_reader.h"
#include "support/output_file.h"
#include "support/status_line.h"
#include "support/text.h"
#include "tools/tool_input.h"

namespace quon {

namespace {

constexpr char UNSOLVED_NAME[] = "unsolved.epd";
constexpr std::size_t MAX_LINE = 253;  // characters; what a line has beyond them is passed over
constexpr std::size_t SHORTEST_RECORD = 10;
constexpr int SHALLOW_DEPTH = 5;
constexpr int CHECK_MS = 5;  // between time checks

struct Suite {
    LineReader reader;
    File unsolved;
    Progress progress;
    bool status_wanted;  // the status line would not get between the lines of the searches
    int count = 0;
    int correct = 0;
    u64 nodes = 0;
    double seconds = 0;
    i64 depth_sum = 0;
    double branching_sum = 0;
};

bool tells_searches(Engine& engine) { return engine.options.output_delay != NEVER; }

bool looks_like_record(const LinePiece& piece) {
    return piece.starts_line && piece.text.size() >= SHORTEST_RECORD &&
           std::string_view(" #;").find(piece.text[0]) == std::string_view::npos;
}

// Sets up the next position that can be searched; false at the end of the file, or when the run is
// to end.
bool next_record(Engine& engine, Suite& suite, EpdRecord& record) {
    LinePiece piece;
    while (!end_wished(engine) && next_piece(suite.reader, piece)) {
        if (!looks_like_record(piece) || !parse_epd_line(piece.text, record)) continue;
        read_position(engine.game.position, record.fen);
        const char* const problem = position_problem(engine.game.position);
        if (problem == nullptr) return true;
        end_progress();
        error_line(format("quon: %s: illegal position: %s", record.fen.c_str(), problem));
    }
    return false;
}

void show_status(Suite& suite) {
    if (!suite.status_wanted || !progress_due(suite.progress)) return;
    show_progress(suite.progress,
                  format("position %d, %d correct, %.0fK nodes/s", suite.count, suite.correct,
                         double(suite.nodes) / (suite.seconds + 0.01) / 1000),
                  double(suite.reader.bytes_read), double(suite.reader.file_size));
}

void search_deep(Engine& engine, Suite& suite) {
    search_and_wait(engine, [&] {
        const bool going = keep_on(engine, CHECK_MS);
        show_status(suite);
        return going;
    });
}

void search_shallow(Engine& engine, Suite& suite) {
    search_and_wait(
        engine, [&] { return keep_on(engine); }, SearchOn::THIS_THREAD);
    engine.run.shared_score = thread_data(engine, 0).root_score;
    show_status(suite);
}

bool names_move(Engine& engine, const std::string& text, Move& move) {
    return !text.empty() && read_move(engine.game.position, text, move);
}

void judge(Engine& engine, Suite& suite, const EpdRecord& record) {
    const Move best = engine.run.shared_line[1];
    Move move;
    if (names_move(engine, record.bm, move)) {
        suite.correct += best == move;
    } else if (names_move(engine, record.am, move)) {
        suite.correct += best != move;
    } else if (engine.run.shared_depth > 0) {
        suite.unsolved.write(record.fen + "\n");
        suite.unsolved.flush();
    }
}

void print_search(Engine& engine) {
    final_report(engine, engine.run.shared_score);
    const auto nodes = double(engine.totals.nodes);
    print_unlogged(format("move= %s, time= %0.3f, score= %d, nodes= %0.0f, %0.0fK nps\n",
                          move_to_text(engine, engine.run.shared_line[1]).c_str(),
                          engine.run.elapsed.get(), int(engine.run.shared_score), nodes,
                          nodes / (engine.run.elapsed + 0.001) / 1000));
}

// Searches the game position, which stands at the record; true when the run is to end.
bool run_record(Engine& engine, Suite& suite, const EpdRecord& record) {
    ++suite.count;
    if (tells_searches(engine)) {
        engine_print(format("pos= %d", suite.count));
        engine_print(record.fen);
        print_board(engine.game.position);
    }
    if (engine.limits.depth_limit > 1) hash_clear(engine.hash, engine.settings.threads);
    begin_search(engine);
    if (engine.limits.depth_limit > SHALLOW_DEPTH) {
        search_deep(engine, suite);
    } else {
        search_shallow(engine, suite);
    }
    const bool ending = end_wished(engine);
    suite.nodes += engine.totals.nodes;
    suite.seconds += engine.run.elapsed;
    suite.depth_sum += engine.run.shared_depth;
    suite.branching_sum += effective_branching(engine.run);
    judge(engine, suite, record);
    if (tells_searches(engine)) print_search(engine);
    engine.control.search_mode = NO_SEARCH;
    return ending;
}

void print_statistics(const Suite& suite) {
    const auto nodes = double(suite.nodes);
    const int divisor = suite.count > 0 ? suite.count : 1;
    engine_print(format("%d / %d correct best moves", suite.correct, suite.count));
    engine_print(format("total nodes= %0.0f", nodes));
    engine_print(format("total time= %0.2f seconds", suite.seconds));
    engine_print(format("avg depth= %0.1f", double(suite.depth_sum) / divisor));
    const u64 average_nodes = suite.nodes / u64(divisor);  // whole nodes
    engine_print(format("avg nodes= %0.1f", double(average_nodes)));
    engine_print(format("node_rate= %0.0f", nodes / (suite.seconds + 0.01)));
    engine_print(format("avg bf= %0.2f", suite.branching_sum / divisor));
    engine_print("");
}

}  // namespace

bool run_test_suite(Engine& engine, const std::string& path) {
    Suite suite;
    if (!can_be_read(path) || !open_tool_file(suite.reader, path, MAX_LINE)) return false;
    if (overwrites_input(path, UNSOLVED_NAME)) return false;
    if (!suite.unsolved.open(UNSOLVED_NAME, FileMode::WRITE)) return true;
    suite.progress = start_progress();
    suite.status_wanted = !tells_searches(engine) || !output_is_terminal();
    start_tool_input(engine, path);
    engine_print(format("Analyzing %s...", path.c_str()));
    derive_tables(engine);
    if (engine.limits.depth_limit <= 1) engine.settings.hash_mode = 0;
    bool ending = false;
    EpdRecord record;
    while (!ending && !suite.unsolved.failed() && next_record(engine, suite, record)) {
        ending = run_record(engine, suite, record);
    }
    end_progress();
    print_statistics(suite);
    const bool written = close_output(suite.unsolved);
    end_tool_input(engine);
    return read_well(suite.reader, path) && written;
}

}  // namespace quon
