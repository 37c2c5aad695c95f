#pragma once
// The search tree as text, for a person who wonders what a search looks at: every move that the
// main search thread makes near the root goes to "trace.txt" while options.trace is not 0.

#include "frontend/engine_options.h"
#include "search/thread_data.h"

namespace quon {

// Writes a move that is about to be made, NO_MOVE for a null move, if the node's ply is at most
// options.trace. Ends the program when the file cannot be written.
void trace_move(const ThreadData& t, Move move);

// The end of a search: the file then holds all that was traced. The main search thread must be
// idle.
void flush_search_trace();

inline void trace_before_make(const ThreadData& t, Move move) {
    if (options.trace != 0) [[unlikely]] {
        trace_move(t, move);
    }
}

}  // namespace quon
