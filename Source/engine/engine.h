#pragma once
// The engine.

#include <functional>

#include "board/move_text.h"
#include "book/book.h"
#include "engine/options.h"
#include "eval/tunables.h"
#include "search/searcher.h"
#include "search/strength.h"
#include "support/random.h"

namespace quon {

struct Engine : Searcher {
    EngineOptions options;
    EvalParams default_params;    // as start-up left them, parameter file included
    SearchLimits default_limits;  // as the command line left them
    Tunables tunables;
    Book book;
    Random random;                           // of book moves, matches and samples
    Table<Move, MAX_MULTIPV> shown_moves{};  // by its place among several lines, the move last told
};

// What a message begins with: "info string " where a front end reads it, nothing in console mode.
inline const char* message_prefix(const Engine& engine) {
    return engine.options.uci_mode ? "info string " : "";
}

// In the style of the mode: e7e8q where a front end reads it, e7e8=Q in console mode.
inline std::string move_to_text(const Engine& engine, Move move) {
    return move_to_text(move, engine.options.uci_mode ? MoveStyle::UCI : MoveStyle::LONG);
}

// Console mode or not, for all that depends on it.
void set_uci_mode(Engine& engine, bool uci_mode);

// The two doors to a search on the game's position. The first prepares it: tables, limits, clock,
// shared state. In console mode the moves to the end of the period are counted from the game's
// plies.
void begin_search(Engine& engine);

enum class SearchOn : u8 { ALL_THREADS, THIS_THREAD };
// The second runs it and returns when it is over, with run.elapsed and the totals up to date.
// on_tick is called over and over; false ends the search. With all threads it follows every look at
// the clock and is to wait a moment; on this thread nobody looks at the clock.
void search_and_wait(Engine& engine, const std::function<bool()>& on_tick,
                     SearchOn where = SearchOn::ALL_THREADS);

// Sets calibration_nps, if it is not given already, and elo_max by the machine's speed. Measuring
// leaves the start position on the board; thread 0 must be idle.
Calibration calibrate_strength(Engine& engine);
// The UCI_Elo option: 1500 at least; 0.99 * elo_max or more lifts the node-rate cap. Returns the
// Elo that holds from now on.
int set_elo(Engine& engine, int value);

}  // namespace quon
