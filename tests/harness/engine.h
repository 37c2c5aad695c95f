#pragma once
// The engine that tests work on, and short names of its parts.

#include "engine/engine.h"

namespace quon::test {

extern Engine engine;
inline EngineOptions& options = engine.options;
inline SearchSettings& settings = engine.settings;
inline SearchLimits& limits = engine.limits;
inline EvalParams& params = engine.params;
inline EvalParams& default_params = engine.default_params;
inline EvalTables& eval_tables = engine.eval_tables;
inline SearchParams& search_params = engine.search_params;
inline Game& game = engine.game;
inline SearchControl& control = engine.control;
inline SearchRun& run = engine.run;
inline SearchTotals& totals = engine.totals;
inline Tunables& tunables = engine.tunables;

// In the style of the engine's mode.
inline std::string move_to_text(Move move) { return quon::move_to_text(engine, move); }

// As after start-up, with the parameters as they stand.
void derive_parameters();

}  // namespace quon::test
