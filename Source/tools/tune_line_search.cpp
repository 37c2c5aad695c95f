// The line search on one parameter: the value with the least error, all other parameters staying as
// they are. Values are integers in the parameter's own unit.
//
// The search keeps the best value found so far between two bounds, each a value whose error is not
// less, or not found yet. A probe is one measurement of the whole file (tune_error.cpp):
//
//   1. The start's error is measured; the start is the best value.
//   2. Downwards: the next probe lies 12 % of the best value's size, and one, below it. While the
//      error falls the probe becomes the best value and the old best the bound above; the first
//      that does not fall is the bound below.
//   3. Upwards likewise, unless step 2 has found the upper bound already.
//   4. The next probe is the middle, rounded, between the best value and a bound: the one below
//      after every probe with an odd number, the one above after the others, numbers from 0. A
//      probe that is better takes the best value's place, which becomes a bound; one that is not is
//      the bound itself.
//
// It ends when the next probe is a bound, as nothing then lies between, or after 30 probes. Of an
// error with several valleys it finds one. Equal errors count as worse, so that the search does not
// wander over a plateau. Nothing but the bracket is kept from probe to probe.

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
    TuneRun run;
    for (int probe = 0; probe < MAX_PROBES; ++probe) {
        const int x = field;
        const double error = tune_error(engine, engine.options.tune_file, run);
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
    if (found == engine.tunables.end()) {
        error_line(format("quon: no parameter is named %s", std::string(name).c_str()));
    } else {
        static_cast<void>(can_be_read(engine.options.tune_file));
        search_parameter(engine, *found);
    }
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
