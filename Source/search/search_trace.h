#pragma once
// The search tree as text, for a person who wonders what a search looks at: every move that the
// main search thread makes near the root goes to "trace.txt" while settings.trace is not 0.

#include "board/move_text.h"
#include "search/thread_data.h"
#include "support/file.h"

namespace quon {

// Belongs to the main search thread.
struct SearchTrace {
    File file;
    int iteration = 0;                 // the last one of this search with a heading
    int ply = 0;                       // of the last entry
    MoveStyle style = MoveStyle::UCI;  // of the moves
    bool told = false;                 // that a write has failed
};

// Writes a move that is about to be made, NO_MOVE for a null move, if the node's ply is at most
// settings.trace. Ends the program when the file cannot be written.
void trace_move(const ThreadData& t, Move move);

// The end of a search: the file then holds all that was traced. The main search thread must be
// idle.
void flush_search_trace(SearchTrace& trace);

}  // namespace quon
