// Console commands that start and end searches and set what they go by.

#include <string>

#include "eval/eval_params.h"
#include "frontend/console_commands.h"
#include "frontend/engine_options.h"
#include "frontend/input.h"
#include "frontend/output.h"
#include "frontend/search_session.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/search_params.h"
#include "search/strength.h"
#include "search/threads.h"

namespace quon {

void search_move(const ConsoleLine&) {
    take_over();
    control.go_request = GO_PLAY;
}

void analyse(const ConsoleLine& line) {
    constexpr double ANALYSIS_SECONDS = 99999;
    constexpr u8 KEEP_TABLE = 2;  // hash mode
    take_over();
    const i64 depth = to_integer(line.first);
    limits.fixed_time = ANALYSIS_SECONDS;
    limits.time_mode = FIXED_TIME;
    limits.depth_limit = u8(depth >= 1 && depth < NO_DEPTH_LIMIT ? depth : NO_DEPTH_LIMIT);
    if (options.hash_mode < KEEP_TABLE) hash_clear();
    control.go_request = GO_ANALYSE;
}

void end_search(const ConsoleLine&) {
    if (busy_threads() != 0) stop_search(ABORT);
}

void play_itself(const ConsoleLine&) {
    take_over();
    options.ponder_option = 0;
    options.self_play = true;
    options.self_play_alone = input_at_end();
    control.go_request = GO_PLAY;
}

namespace {

double to_seconds(std::string_view text) {
    const std::size_t colon = text.find(':');
    const double seconds = colon == std::string_view::npos ? to_real(text)
                                                           : 60 * to_real(text.substr(0, colon)) +
                                                                 to_real(text.substr(colon + 1));
    return std::clamp(seconds, 0.0, ENDLESS_SECONDS);
}

}  // namespace

void set_level(const ConsoleLine& line) {
    limits.time_mode = to_number<u8>(line.first);
    limits.fixed_time = to_seconds(line.second);
    limits.increment = to_seconds(line.third);
    reset_clocks();
    engine_print(format("set level to %d moves in %0.2f seconds, inc %0.2f", limits.time_mode,
                        limits.fixed_time, limits.increment));
}

namespace {

struct SearchParam {
    std::string_view name;
    i16 EvalParams::*field;
};
constexpr SearchParam SEARCH_PARAMS[] = {
    {"NMP_depth", &EvalParams::NMP_depth}, {"SEP_depth", &EvalParams::SEP_depth},
    {"FP_depth", &EvalParams::FP_depth},   {"LMP_depth", &EvalParams::LMP_depth},
    {"LMR_depth", &EvalParams::LMR_depth}, {"LMR_strength", &EvalParams::LMR_strength},
};

void stop_pruning() {
    constexpr i16 NEVER_DEPTH = 99;
    params.SEP_depth = 0;
    params.NMP_depth = NEVER_DEPTH;
    params.LMP_depth = 0;
    params.LMR_depth = NEVER_DEPTH;
    engine_print("selectivity set to OFF");
}

void set_target_nps(std::string_view value) {
    options.target_nps = std::max(to_real(value), MIN_NPS);
    params.limit_strength = 1;
    engine_print(format("target_nps set to %.0f", options.target_nps.get()));
}

void change_parameter(std::string_view name, std::string_view value) {
    for (const SearchParam& param : SEARCH_PARAMS) {
        if (param.name != name) continue;
        params.*param.field = to_number<i16>(value);
        engine_print(format("%s set to %d", std::string(name).c_str(), params.*param.field));
        return;
    }
    if (name == "ss_off") {
        stop_pruning();
    } else if (name == "target_nps") {
        set_target_nps(value);
    } else {
        params = default_params;
        engine_print("selectivity set to default");
    }
}

}  // namespace

void set_parameter(const ConsoleLine& line) {
    finish_search();
    change_parameter(line.first, line.second);
    apply_search_params();
}

}  // namespace quon
