#pragma once
// The tuners fit the evaluation's parameters to positions with known game results.
//
// What they all measure is the error over a file of positions: the mean distance between a game's
// result and the winning probability that the quiescence score of the position stands for. A file's
// line is a position (four fields) and, anywhere behind its side to move, the result as 1-0, 0-1 or
// 1/2. Lines count up to their 253rd character; those that begin with a blank, '#' or ';' are
// comments. Positions that are in check, not quiet or already decided are passed over.
//
// Whoever measures sets limits.depth_limit to 0 and options.output_delay to NEVER first, and
// listens for the wish to end (tool_input.h), which breaks a measurement off; the game on the board
// is overwritten. Tested in tests/tools/tune_test.cpp.

#include <set>
#include <string>
#include <string_view>

#include "board/types.h"
#include "engine/engine.h"
#include "support/output_file.h"
#include "support/status_line.h"

namespace quon {

struct ErrorSum {
    i64 positions = 0;  // accepted
    double sum = 0;
    bool readable = true;  // to the end
};
// 1 for a file that cannot be read, 0 for one without accepted positions.
double mean_error(const ErrorSum& errors);

// The status line over several measurements, whose whole work is 1.
struct TuneStatus {
    Progress progress = start_progress();
    std::string label = {};  // in front of the line
    double done = 0;         // what the measurements before this one have done; grows by `part`
    double part = 1;         // the measurement's part of the work
    i64 positions = 0;       // accepted in all of them
};
// What the measurements of one run of a tuner share.
struct TuneRun {
    TuneStatus status = {};
    // Positions whose captures have no end, as FEN: told and tried once, however often they are
    // read.
    std::set<std::string> restless = {};
};
// Measures with the live parameters.
ErrorSum sum_errors(Engine& engine, const std::string& path, TuneRun& run);
// The same as the mean, with a status line of its own.
double tune_error(Engine& engine, const std::string& path, TuneRun& run);
// Passes over lines as well whose own evaluation ("ce") is beyond 900 centipawns, and copies those
// that are accepted.
ErrorSum tune_error_filter(Engine& engine, const std::string& path, File& copy);

// Copies the lines of tune_file that tuning can use to "tune_new.epd". False if a file cannot be
// read or written.
bool make_tuning_set(Engine& engine);

struct Sample {
    bool readable = true;
    bool written = true;
};
// Copies about 15 % of the file's lines, drawn at random, to "junk.epd", which is made anew.
Sample tune_sample(Engine& engine, const std::string& path);

// Gradient descent on the parameters p1 to p9 over tune_file, 100 passes, logged to "tune.log".
// False if a file cannot be read or written.
bool tune_gradient(Engine& engine);

// Searches the best value of one parameter over tune_file, by name, and leaves the parameter as it
// was.
void tune_line_search(Engine& engine, std::string_view name);
// The console's command, while no search runs: `file`, unless empty, becomes tune_file, "tune.epd"
// if there is none yet. Nothing happens without a name. The game on the board stays.
void tune_command(Engine& engine, std::string_view name, std::string_view file);

}  // namespace quon
