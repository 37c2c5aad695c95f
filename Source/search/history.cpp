// Updates of the ordering tables.

#include "search/history.h"

namespace quon {

const MoveEntry NULL_ENTRY = {NO_MOVE, 0, 0, 0};

void reset_ordering(ThreadData& t) {
    for (PlyRecord& record : t.plies) {
        record.hash_move = NO_MOVE;
        record.killer_null = record.killer1 = record.killer2 = record.killer_evasion = NO_MOVE;
    }
    for (auto& squares : t.history) {
        for (i16& value : squares) value = HISTORY_START;
    }
    t.counter1 = {};
    t.counter2 = {};
    t.followup = {};
}

void update_history(ThreadData& t, const MoveEntry& entry, bool beat_alpha, int depth) {
    i16& value = t.history[entry.piece][move_to(entry.move)];
    const int gain = (HISTORY_MAX - value) / 64 * (depth >= 2 ? 2 : 1);
    value = i16(beat_alpha ? value + gain : value - value / 128);
}

Move reply_to_last(const ThreadData& t, const Table<Table<Move, 64>, 16>& replies) {
    if (t.last_move == NO_MOVE) return NO_MOVE;
    const int square = move_to(t.last_move);
    return replies[t.position.board[square]][square];
}

const MoveEntry& own_previous(const ThreadData& t, int ply) {
    return ply > 2 ? *t.plies[ply - 2].next_pick : NULL_ENTRY;
}

void update_killers(ThreadData& t, int ply, Move move, bool in_check) {
    PlyRecord& record = t.plies[ply];
    if (in_check) {
        record.killer_evasion = move;
    } else if (t.last_move == NO_MOVE) {
        record.killer_null = move;
    } else if (move != record.killer1) {
        record.killer2 = record.killer1;
        record.killer1 = move;
    }
    if (t.last_move != NO_MOVE) {
        const int square = move_to(t.last_move);
        const int piece = t.position.board[square];
        if (move != t.counter1[piece][square]) {
            t.counter2[piece][square] = t.counter1[piece][square];
            t.counter1[piece][square] = move;
        }
    }
    const MoveEntry& previous = own_previous(t, ply);
    if (!in_check && previous.move != NO_MOVE) {
        t.followup[previous.piece][move_to(previous.move)] = move;
    }
}

}  // namespace quon
