// Gradient descent on several parameters at once.
//
// A parameter p has a continuous value, and its field holds that value rounded. A pass draws a
// sample of about 15 % of the file's lines, sets the fields, measures the whole file for the log,
// and then takes the parameters one after the other:
//
//   distance   d = round(0.03 |p| + 1)
//   slope      g = (E(x + d) - E(x - d)) / 2d        x: the field; E: the sample's error
//   rate       r = k g                               k: common to all, 2000 at first
//   size       S = |p| + 6
//   step       p := p - r S, by at most 2.5 % of S
//
// The errors (tune_error.cpp) lie between 0 and 1; x, d, S and the step are in the parameter's own
// unit, and r is the part of its size that it wants to move. So large parameters make large steps,
// and six units more keep those near zero alive. The field goes back to x behind the slope: within
// a pass every slope is measured with the fields of its start.
//
// Behind the pass k grows by 3 % if the largest |r| is below 1.6 % or no step wanted is 0.8 units
// long, as rounding then swallows the moves, and shrinks by 3 % if |r| is above 7 % on average.
//
// What a pass measures is not kept for the next one; its sample is drawn anew, so that the noise of
// one sample does not pull in the same direction for long. A measurement that is broken off moves
// nothing.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "engine/engine.h"
#include "engine/output.h"
#include "eval/eval_tables.h"
#include "eval/tunables.h"
#include "support/line_reader.h"
#include "support/status_line.h"
#include "support/text.h"
#include "tools/tool_input.h"
#include "tools/tune.h"

namespace quon {

namespace {

constexpr char LOG_FILE[] = "tune.log";
constexpr char SAMPLE_FILE[] = "junk.epd";
constexpr int SAMPLE_PERCENT = 15;
constexpr std::size_t PIECE_LENGTH = 4096;

constexpr std::array ACTIVE_NAMES = {"p1", "p2", "p3", "p4", "p5", "p6", "p7", "p8", "p9"};
constexpr int PASSES = 100;
constexpr double FIRST_RATE = 2000;

struct Descent {
    File log;
    std::string unreadable;  // the file that could not be read
    TuneRun run;
    double k0 = FIRST_RATE;
    // Of the last pass.
    double avg_lr = 0;
    double max_lr = 0;
    double max_step = 0;
};

void say(Descent& descent, const std::string& text) {
    print_unlogged(text + "\n");
    descent.log.write(text + "\n");
}

bool must_end(Engine& engine, const Descent& descent) {
    return descent.log.failed() || end_wished(engine);
}

void activate_parameters(Engine& engine) {
    register_tunables(engine.tunables, engine.params);
    for (TunableParam& t : engine.tunables) {
        t.active =
            std::find(ACTIVE_NAMES.begin(), ACTIVE_NAMES.end(), t.name) != ACTIVE_NAMES.end();
    }
}

// size: of the file, 1 for the whole one.
double error_of(Engine& engine, Descent& descent, const std::string& path, double size) {
    // A pass takes the whole file once and the sample twice for each parameter.
    constexpr double PASS_SIZE = 1 + 2 * double(ACTIVE_NAMES.size()) * SAMPLE_PERCENT / 100;
    descent.run.status.part = size / PASS_SIZE / PASSES;
    const ErrorSum errors = sum_errors(engine, path, descent.run);
    if (!errors.readable) descent.unreadable = path;
    return mean_error(errors);
}

double sample_error_at(Engine& engine, Descent& descent, TunableParam& t, int x) {
    *t.field = i16(x);
    return error_of(engine, descent, SAMPLE_FILE, SAMPLE_PERCENT / 100.0);
}

// Measures the slope at the parameter's field and moves its continuous value. Nothing is moved when
// the measurement is broken off.
void move_parameter(Engine& engine, Descent& descent, TunableParam& t) {
    const int x0 = *t.field;
    const int d = int(std::round(std::abs(t.value) * 0.03 + 1.0));
    const double e1 = sample_error_at(engine, descent, t, x0 - d);
    const double e2 = sample_error_at(engine, descent, t, x0 + d);
    *t.field = i16(x0);
    if (must_end(engine, descent)) return;

    const double g = (e2 - e1) / (2 * d);
    const double size = std::abs(t.value) + 6;
    const double lr = descent.k0 * g;
    const double wanted = -lr * size;
    const double step = std::clamp(wanted, -0.025 * size, 0.025 * size);
    t.value += step;
    t.gradient = g;
    descent.avg_lr += std::abs(lr);
    descent.max_lr = std::max(descent.max_lr, std::abs(lr));
    descent.max_step = std::max(descent.max_step, std::abs(wanted));
    say(descent, format("p1=%4d/%6.5f, p2=%4d/%6.5f, g=%10.2e, lr=%5.2f, x=%5.1f, p=%6.1f", x0 - d,
                        e1, x0 + d, e2, g, 100 * lr, step, t.value));
}

void adapt_rate(Descent& descent) {
    if (descent.max_lr < 0.016 || descent.max_step < 0.8) descent.k0 *= 1.03;
    if (descent.avg_lr > 0.07) descent.k0 *= 0.97;
}

// False if the sample cannot be written.
bool run_pass(Engine& engine, Descent& descent, int pass) {
    const Sample sample = tune_sample(engine, engine.options.tune_file);
    if (!sample.readable) descent.unreadable = engine.options.tune_file;
    if (!sample.written) return false;
    descent.run.status.label = format("pass %d of %d, ", pass + 1, PASSES);
    descent.run.status.done = double(pass) / PASSES;
    say(descent, format("pass= %d, k0= %0.3e, avg_lr= %0.1f, max_lr= %0.1f\n", pass, descent.k0,
                        100 * descent.avg_lr, 100 * descent.max_lr));
    for (const TunableParam& t : engine.tunables) {
        if (!t.active) continue;
        *t.field = i16(std::round(t.value));
        say(descent, format("** %s = %d", t.name.c_str(), *t.field));
    }
    const double error = error_of(engine, descent, engine.options.tune_file, 1);
    if (must_end(engine, descent)) return true;
    say(descent, format("\nerr= %0.5f\n\n", error));
    descent.log.flush();

    descent.avg_lr = descent.max_lr = descent.max_step = 0;
    int active = 0;
    for (TunableParam& t : engine.tunables) {
        if (!t.active) continue;
        move_parameter(engine, descent, t);
        if (must_end(engine, descent)) return true;
        ++active;
    }
    descent.avg_lr /= std::max(active, 1);
    adapt_rate(descent);
    say(descent, "");
    return true;
}

}  // namespace

Sample tune_sample(Engine& engine, const std::string& path) {
    File sample;
    if (!sample.open(SAMPLE_FILE, FileMode::WRITE)) {
        error_line(format("quon: can't create %s", SAMPLE_FILE));
        return {.written = false};
    }
    LineReader reader;
    bool readable = open_tool_file(reader, path, PIECE_LENGTH);
    LinePiece piece;
    bool drawn = false;
    while (readable && !sample.failed() && !end_wished(engine) && next_piece(reader, piece)) {
        if (piece.starts_line) drawn = draw(engine.random, 100) < SAMPLE_PERCENT;
        if (!drawn) continue;
        sample.write(piece.text);
        if (piece.ends_line) sample.write("\n");
    }
    readable = readable && !read_failed(reader);
    return {readable, close_output(sample)};
}

bool tune_gradient(Engine& engine) {
    for (const char* name : {LOG_FILE, SAMPLE_FILE}) {
        if (overwrites_input(engine.options.tune_file, name)) return false;
    }
    if (!can_be_read(engine.options.tune_file)) return false;
    Descent descent;
    if (!descent.log.open(LOG_FILE, FileMode::WRITE)) {
        error_line(format("quon: can't create %s", LOG_FILE));
        return false;
    }
    engine.options.output_delay = NEVER;
    engine.limits.depth_limit = 0;
    activate_parameters(engine);
    start_tool_input(engine, engine.options.tune_file);
    bool sampled = true;
    for (int pass = 0; pass < PASSES && sampled && !must_end(engine, descent); ++pass) {
        sampled = run_pass(engine, descent, pass);
    }
    end_tool_input(engine);
    end_progress();
    const bool readable = descent.unreadable.empty();
    if (!readable) report_unreadable_file(descent.unreadable);
    const bool logged = close_output(descent.log);
    init_eval_tables(engine.eval_tables, engine.params);
    return readable && sampled && logged;
}

}  // namespace quon
