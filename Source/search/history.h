#pragma once
// What the search learns about quiet moves: history, killers, counter moves, follow-ups.

#include "search/thread_data.h"

namespace quon {

constexpr i16 HISTORY_START = 2048;
constexpr int HISTORY_MAX = 8192;

// At every search start: no killers, counters or follow-ups; every history value at its start.
void reset_ordering(ThreadData& t);

// After a quiet move was searched in a node not in check.
void update_history(ThreadData& t, const MoveEntry& entry, bool beat_alpha, int depth);

// After a quiet move caused a cut-off.
void update_killers(ThreadData& t, int ply, Move move, bool in_check);

// The reply to the opponent's last move in a table of replies; NO_MOVE when there was no last move.
Move reply_to_last(const ThreadData& t, const Table<Table<Move, 64>, 16>& replies);

// The side's own previous move, two plies back; a record with NO_MOVE at the first two plies and
// two plies below a null move.
const MoveEntry& own_previous(const ThreadData& t, int ply);

extern const MoveEntry NULL_ENTRY;

}  // namespace quon
