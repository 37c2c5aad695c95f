// The line search on one parameter: steps down from the start while the error falls, then up, then
// halves the way to the bounds found, above and below in turn.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

#include "engine/engine.h"
#include "engine/output.h"
#include "eval/eval_tables.h"
#include "eval/tunables.h"
#include "search/run.h"
#include "support/status_line.h"
#include "support/text.h"
#include "tools/tool_input.h"
#include "tools/tune.h"

namespace quon {

namespace {

constexpr char DEFAULT_FILE[] = "tune.epd";
constexpr int MAX_PROBES = 30;
// No bound found yet.
constexpr int NO_LOW = -10000;
constexpr int NO_HIGH = 10000;

struct Bracket {
    int best;
    double best_error = 1.0;
    int low = NO_LOW;
    int high = NO_HIGH;
};

// Takes in the error at x, the first one that of the starting value.
void narrow(Bracket& b, bool first, int x, double error) {
    const bool better = error < b.best_error;
    if (!first) {
        // A better value makes the old best the bound behind it, a worse one is a bound itself.
        int& bound = (x > b.best) == better ? b.low : b.high;
        bound = better ? b.best : x;
    }
    if (better) {
        b.best = x;
        b.best_error = error;
    }
}

int next_probe(const Bracket& b, int probe) {
    const int step = int(std::round(0.12 * std::abs(b.best))) + 1;
    if (b.low == NO_LOW) return b.best - step;
    if (b.high == NO_HIGH) return b.best + step;
    return int(std::round(0.5 * b.best + 0.5 * (probe % 2 == 0 ? b.high : b.low)));
}

void print_bracket(const Bracket& b) {
    print_unlogged(
        format("best= %d, err= %0.6f, min= %d, max= %d\n\n", b.best, b.best_error, b.low, b.high));
}

void search_parameter(Engine& engine, TunableParam& parameter) {
    const char* const name = parameter.name.c_str();
    print_unlogged(format("\ntuning %s\n", name));
    i16& field = *parameter.field;
    const i16 start = field;
    Bracket bracket{.best = start};
    for (int probe = 0; probe < MAX_PROBES; ++probe) {
        const int x = field;
        const double error = tune_error(engine, engine.options.tune_file);
        if (end_wished(engine)) break;
        print_unlogged(format("%s= %d, err= %0.6f\n", name, x, error));
        narrow(bracket, probe == 0, x, error);
        print_bracket(bracket);
        const int next = next_probe(bracket, probe);
        field = i16(next);
        if (next == bracket.low || next == bracket.high) break;
    }
    print_bracket(bracket);
    field = start;
    init_eval_tables(engine.eval_tables, engine.params);
}

}  // namespace

void tune_line_search(Engine& engine, std::string_view name) {
    print_unlogged(format("tune file= %s\n", engine.options.tune_file.c_str()));
    engine.limits.depth_limit = 0;
    engine.options.output_delay = NEVER;
    register_tunables(engine.tunables, engine.params);
    const auto found = std::find_if(engine.tunables.begin(), engine.tunables.end(),
                                    [&](const TunableParam& t) { return t.name == name; });
    if (found != engine.tunables.end()) search_parameter(engine, *found);
    print_unlogged("done!\n");
}

void tune_command(Engine& engine, std::string_view name, std::string_view file) {
    if (name.empty()) return;
    if (!file.empty()) engine.options.tune_file = file;
    if (engine.options.tune_file.empty()) engine.options.tune_file = DEFAULT_FILE;
    const auto board = std::make_unique<Game>(engine.game);
    heed_waiting_lines();
    tune_line_search(engine, name);
    end_progress();
    engine.game = *board;
}

}  // namespace quon
