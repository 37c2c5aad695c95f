// What the engine adds to its search.

#include "engine/engine.h"

#include <algorithm>

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
    time_setup(engine);
}

Calibration calibrate_strength(Engine& engine) {
    const Calibration measured = calibrate(engine);
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
