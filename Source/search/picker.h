#pragma once
// The move picker: hands out a node's moves one at a time, the promising ones first.
//
// Order: the hash move; captures and queen promotions that do not lose material, the most valuable
// victim first and among equals the least valuable attacker; then quiet moves, losing captures and
// under-promotions together by history and killers. Quiet moves are generated only when the good
// captures are used up, and each call moves only one best entry forward, so an early cut-off costs
// neither a full generation nor a sort. Once the scores are down to 3, or 16 moves were searched,
// the rest comes in list order.
//
// The lists of all plies lie in one buffer: a list starts behind its parent's.

#include "search/thread_data.h"

namespace quon {

// The ladder of a move's order. Quiet moves add their history, 0..64, to what they are.
enum MoveOrder : int {
    HASH_MOVE_ORDER = 255,
    // Captures and queen promotions that do not lose material, 194..249 (capture_order).
    GOOD_CAPTURE_ORDER = 150,  // above: tried before the quiet moves are generated
    EVASION_KILLER_ORDER = 90,
    EVASION_COUNTER1_ORDER = 70,
    EVASION_COUNTER2_ORDER = 60,
    NULL_KILLER_ORDER = 50,
    KILLER1_ORDER = 48,
    KILLER2_ORDER = 46,
    COUNTER1_ORDER = 44,
    COUNTER2_ORDER = 42,
    GOOD_QUIET_ORDER = 40,  // from here on neither pruned nor reduced as a late move
    FOLLOWUP_ORDER = 32,
    UNDERPROMOTION_ORDER = 15,
    LOSING_CAPTURE_ORDER = 4,  // plus the victim's type
    UNSORTED_ORDER = 3,        // at or below: the rest is taken as it stands
};
static_assert(HASH_MOVE_ORDER > GOOD_CAPTURE_ORDER && GOOD_CAPTURE_ORDER > NULL_KILLER_ORDER + 64);
static_assert(COUNTER2_ORDER > GOOD_QUIET_ORDER && GOOD_QUIET_ORDER > FOLLOWUP_ORDER);

// The mover is worth more than its victim and the exchange on the destination loses.
bool loses_material(const Position& p, const MoveEntry& entry);

// Next move of the node at the thread's current ply, nullptr when there is none left. The caller
// has set the ply's `stage` to START and its `hash_move` before the first call, and counts the
// searched moves in `move_count`. The record is valid until the next call.
const MoveEntry* next_move(ThreadData& t, int ply, bool in_check);

// Of a capture or a queen promotion: the most valuable victim first, then the least valuable
// attacker; 194 .. 249.
int capture_order(const MoveEntry& entry);

// Scores a complete list of root moves.
void score_moves(ThreadData& t, MoveEntry* list);

// Swaps the entry with the highest order from `from` on into this place; the first of equals wins.
// False at the end of the list.
bool select_best(MoveEntry* from);

// Writes the terminator at `end` and stacks the lists of the next two plies behind it.
void finish_list(ThreadData& t, int ply, MoveEntry* end);

// Captures without promotions into the ply's list, scored like the picker's.
void list_captures(ThreadData& t, int ply);
// Captures and queen promotions into the ply's list, by victim and attacker alone.
void list_quiescence_captures(ThreadData& t, int ply);

}  // namespace quon
