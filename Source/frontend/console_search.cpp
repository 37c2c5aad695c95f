// Console commands that start and end searches and set what they go by.

#include <string>

#include "engine/engine.h"
#include "engine/input.h"
#include "engine/output.h"
#include "eval/parameters.h"
#include "frontend/console_commands.h"
#include "frontend/search_session.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/search_params.h"
#include "search/strength.h"
#include "search/threads.h"
#include "support/text.h"

namespace quon {

void search_move(Engine& engine, const ConsoleLine&) {
    take_over(engine);
    engine.control.go_request = GO_PLAY;
}

void analyse(Engine& engine, const ConsoleLine& line) {
    constexpr double ANALYSIS_SECONDS = 99999;
    constexpr u8 KEEP_TABLE = 2;  // hash mode
    take_over(engine);
    const i64 depth = to_integer(line.first);
    engine.limits.fixed_time = ANALYSIS_SECONDS;
    engine.limits.time_mode = FIXED_TIME;
    engine.limits.depth_limit = u8(depth >= 1 && depth < NO_DEPTH_LIMIT ? depth : NO_DEPTH_LIMIT);
    if (engine.settings.hash_mode < KEEP_TABLE) hash_clear(engine.hash, engine.settings.threads);
    engine.control.go_request = GO_ANALYSE;
}

void end_search(Engine& engine, const ConsoleLine&) {
    if (busy_threads(engine) != 0) stop_search(engine, ABORT);
}

void play_itself(Engine& engine, const ConsoleLine&) {
    take_over(engine);
    engine.settings.ponder_option = 0;
    engine.options.self_play = true;
    engine.options.self_play_alone = input_at_end();
    engine.control.go_request = GO_PLAY;
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

void set_level(Engine& engine, const ConsoleLine& line) {
    engine.limits.time_mode = to_number<u8>(line.first);
    engine.limits.fixed_time = to_seconds(line.second);
    engine.limits.increment = to_seconds(line.third);
    reset_clocks(engine);
    engine_print(format("set level to %d moves in %0.2f seconds, inc %0.2f",
                        engine.limits.time_mode, engine.limits.fixed_time,
                        engine.limits.increment));
}

namespace {

void stop_pruning(Engine& engine) {
    constexpr i16 NEVER_DEPTH = 99;
    engine.params.SEP_depth = 0;
    engine.params.NMP_depth = NEVER_DEPTH;
    engine.params.LMP_depth = 0;
    engine.params.LMR_depth = NEVER_DEPTH;
    engine_print("selectivity set to OFF");
}

void set_target_nps(Engine& engine, std::string_view value) {
    engine.settings.target_nps = std::max(to_real(value), MIN_NPS);
    engine.params.limit_strength = 1;
    engine_print(format("target_nps set to %.0f", engine.settings.target_nps.get()));
}

void change_parameter(Engine& engine, std::string_view name, std::string_view value) {
    for (const Parameter& parameter : parameters()) {
        if (!parameter.console || parameter.key != name) continue;
        i16& field = number_of(parameter, engine.params);
        field = to_number<i16>(value);
        engine_print(format("%s set to %d", parameter.key, field));
        return;
    }
    if (name == "ss_off") {
        stop_pruning(engine);
    } else if (name == "target_nps") {
        set_target_nps(engine, value);
    } else {
        engine.params = engine.default_params;
        engine_print("selectivity set to default");
    }
}

}  // namespace

void set_parameter(Engine& engine, const ConsoleLine& line) {
    finish_search(engine);
    change_parameter(engine, line.first, line.second);
    apply_search_params(engine.search_params, engine.params);
}

}  // namespace quon
