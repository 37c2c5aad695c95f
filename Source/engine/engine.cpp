// What the engine adds to its search.

#include "engine/engine.h"

#include <algorithm>

#include "search/threads.h"
#include "search/time.h"

namespace quon {

void set_uci_mode(Engine& engine, bool uci_mode) {
    engine.options.uci_mode = uci_mode;
    engine.trace.style = uci_mode ? MoveStyle::UCI : MoveStyle::LONG;
}

void begin_search(Engine& engine) {
    SearchLimits& limits = engine.limits;
    if (!engine.options.uci_mode && limits.time_mode > FIXED_TIME) {
        limits.moves_to_go = i16(limits.time_mode - engine.game.game_ply / 2 % limits.time_mode);
    }
    // The clock of a fixed time shows that time; self-play goes on counting from there.
    if (limits.time_mode == FIXED_TIME) limits.clock[engine.game.position.side] = limits.fixed_time;
    start_run(engine);
}

namespace {

void search_with_all_threads(Engine& engine, const std::function<bool()>& on_tick) {
    start_search_threads(engine);
    while (busy_threads(engine) != 0) {
        time_check(engine);
        if (!on_tick() && !stopped(engine)) engine.control.stop_flag = STOP;
        if (stopped(engine)) wait_for_idle_threads(engine);
    }
}

}  // namespace

void search_and_wait(Engine& engine, const std::function<bool()>& on_tick, SearchOn where) {
    if (where == SearchOn::ALL_THREADS) {
        search_with_all_threads(engine, on_tick);
    } else {
        search_in_main_thread(engine, on_tick);
    }
    update_elapsed(engine.run);
    collect_stats(engine);
}

Calibration calibrate_strength(Engine& engine) {
    const double given = engine.options.calibration_nps;
    const Calibration measured = given > 0.0 ? Calibration{0.0, 0, given} : calibrate(engine);
    engine.options.calibration_nps = measured.nps;
    // A machine too slow for the formula still gets a finite scale.
    engine.options.elo_max = nps_to_elo(std::max(measured.nps, MIN_NPS));
    return measured;
}

int set_elo(Engine& engine, int value) {
    int elo = std::max(value, MIN_ELO);
    if (elo < 0.99 * engine.options.elo_max) {
        engine.settings.target_nps = elo_to_nps(elo);
    } else {
        engine.settings.target_nps = NO_NPS_LIMIT;
        elo = int(engine.options.elo_max);
    }
    engine.params.elo = i16(elo);
    return elo;
}

}  // namespace quon
