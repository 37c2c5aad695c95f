// The staged move picker.

#include "search/picker.h"

#include <cassert>
#include <utility>

#include "board/legality.h"
#include "board/movegen.h"
#include "board/see.h"
#include "search/history.h"

namespace quon {

namespace {

// Coarse piece values by type, for "takes something cheaper" tests.
constexpr Table<int, 7> COARSE_VALUE = {{0, 1, 3, 3, 5, 10, 0}};
// A move worth less than this in static exchange, centipawns, loses material.
constexpr int LOSING_EXCHANGE = -74;

bool takes_cheaper(const MoveEntry& entry) {
    return COARSE_VALUE[type_of(entry.piece)] > COARSE_VALUE[type_of(entry.captured)];
}

constexpr Table<int, 7> VICTIM_ORDER = {{200, 210, 220, 220, 230, 240, 250}};

constexpr int SORTED_MOVES = 16;

int history_order(const ThreadData& t, const MoveEntry& entry) {
    return t.history[entry.piece][move_to(entry.move)] / 128;
}

int good_or_losing_capture_order(const Position& p, const MoveEntry& entry) {
    if (entry.captured && loses_material(p, entry))
        return LOSING_CAPTURE_ORDER + type_of(entry.captured);
    if (entry.move & UNDERPROMOTION_MASK) return UNDERPROMOTION_ORDER;
    return capture_order(entry);
}

// The moves that raise a quiet move's order at this node.
struct QuietHints {
    Move counter1;
    Move counter2;
    Move followup;
};

QuietHints quiet_hints(const ThreadData& t, int ply) {
    const MoveEntry& previous = own_previous(t, ply);
    const Move followup =
        previous.move == NO_MOVE ? NO_MOVE : t.followup[previous.piece][move_to(previous.move)];
    return {reply_to_last(t, t.counter1), reply_to_last(t, t.counter2), followup};
}

int quiet_order(const ThreadData& t, const PlyRecord& record, const QuietHints& hints,
                const MoveEntry& entry) {
    const int history = history_order(t, entry);
    const Move move = entry.move;
    if (move == record.killer_null) return history + NULL_KILLER_ORDER;
    if (move == record.killer1) return history + KILLER1_ORDER;
    if (move == record.killer2) return history + KILLER2_ORDER;
    if (move == hints.counter1) return history + COUNTER1_ORDER;
    if (move == hints.counter2) return history + COUNTER2_ORDER;
    if (move == hints.followup) return history + FOLLOWUP_ORDER;
    return history;
}

int evasion_order(const PlyRecord& record, const QuietHints& hints, Move move) {
    if (move == record.killer_evasion) return EVASION_KILLER_ORDER;
    if (move == hints.counter1) return EVASION_COUNTER1_ORDER;
    return move == hints.counter2 ? EVASION_COUNTER2_ORDER : 0;
}

// Ends the ply's list and gives each of its entries an order.
template <typename Order>
void finish_scored_list(ThreadData& t, int ply, MoveEntry* end, Order order) {
    finish_list(t, ply, end);
    for (MoveEntry* entry = t.plies[ply].list_start; entry != end; ++entry) {
        entry->order = i16(order(*entry));
    }
}

void list_all_captures(ThreadData& t, int ply) {
    const Position& p = t.position;
    MoveEntry* end = gen_promotions(p, true, gen_captures(p, t.plies[ply].list_start));
    finish_scored_list(t, ply, end, [&](const MoveEntry& entry) {
        return good_or_losing_capture_order(p, entry);
    });
}

// Quiet moves behind what is left of the captures.
void add_quiets(ThreadData& t, int ply, bool in_check, MoveEntry* rest) {
    PlyRecord& record = t.plies[ply];
    while (rest->move != LIST_END) ++rest;
    MoveEntry* end = gen_quiets(t.position, rest);
    finish_list(t, ply, end);
    const QuietHints hints = quiet_hints(t, ply);
    for (MoveEntry* entry = rest; entry != end; ++entry) {
        entry->order = i16(in_check ? evasion_order(record, hints, entry->move)
                                    : quiet_order(t, record, hints, *entry));
    }
}

}  // namespace

int capture_order(const MoveEntry& entry) {
    return VICTIM_ORDER[type_of(entry.captured)] - type_of(entry.piece);
}

bool loses_material(const Position& p, const MoveEntry& entry) {
    return takes_cheaper(entry) &&
           see(p, p.side, move_from(entry.move), move_to(entry.move)) < LOSING_EXCHANGE;
}

void finish_list(ThreadData& t, int ply, MoveEntry* end) {
    assert(end + 2 < t.move_buffer.end());
    terminate_list(end);
    t.plies[ply + 1].list_start = end + 1;
    t.plies[ply + 2].list_start = end + 2;
}

bool select_best(MoveEntry* from) {
    if (from->move == LIST_END) return false;
    MoveEntry* best = from;
    for (MoveEntry* entry = from + 1; entry->move != LIST_END; ++entry) {
        if (entry->order > best->order) best = entry;
    }
    std::swap(*from, *best);
    return true;
}

void list_captures(ThreadData& t, int ply) {
    const Position& p = t.position;
    finish_scored_list(
        t, ply, gen_captures(p, t.plies[ply].list_start),
        [&](const MoveEntry& entry) { return good_or_losing_capture_order(p, entry); });
}

void list_quiescence_captures(ThreadData& t, int ply) {
    const Position& p = t.position;
    MoveEntry* end = gen_promotions(p, false, gen_captures(p, t.plies[ply].list_start));
    finish_scored_list(t, ply, end, capture_order);
}

const MoveEntry* next_move(ThreadData& t, int ply, bool in_check) {
    PlyRecord& record = t.plies[ply];
    switch (record.stage) {
        case PickStage::START:
            record.stage = PickStage::CAPTURES;
            record.rest = record.list_start;
            if (record.hash_move != NO_MOVE && is_pseudo_legal(t.position, record.hash_move)) {
                const Table<u8, 65>& board = t.position.board;
                *record.rest = {record.hash_move, HASH_MOVE_ORDER,
                                board[move_from(record.hash_move)],
                                board[move_to(record.hash_move)]};
                finish_list(t, ply, record.rest + 1);
                return record.next_pick = record.rest;
            }
            [[fallthrough]];
        case PickStage::CAPTURES:
            list_all_captures(t, ply);
            record.stage = PickStage::PICK_CAPTURES;
            record.rest = record.list_start;
            [[fallthrough]];
        case PickStage::PICK_CAPTURES:
            if (select_best(record.rest) && record.rest->order > GOOD_CAPTURE_ORDER) {
                return record.next_pick = record.rest++;
            }
            add_quiets(t, ply, in_check, record.rest);
            record.stage = PickStage::PICK_ALL;
            [[fallthrough]];
        case PickStage::PICK_ALL:
            if (!select_best(record.rest)) return nullptr;
            if (record.rest->order <= UNSORTED_ORDER || record.move_count >= SORTED_MOVES) {
                record.stage = PickStage::REST;
            }
            return record.next_pick = record.rest++;
        case PickStage::REST: break;
    }
    if (record.rest->move == LIST_END) return nullptr;
    return record.next_pick = record.rest++;
}

void score_moves(ThreadData& t, MoveEntry* list) {
    const PlyRecord& record = t.plies[1];
    const QuietHints hints = quiet_hints(t, 1);
    for (MoveEntry* entry = list; entry->move != LIST_END; ++entry) {
        const Move move = entry->move;
        const Move favoured[] = {record.killer_null, record.killer1, record.killer2, hints.counter1,
                                 hints.counter2};
        int order = history_order(t, *entry);
        for (const Move good : favoured) {
            if (move == good) order = history_order(t, *entry) + GOOD_QUIET_ORDER;
        }
        if (entry->captured || (move & PROMOTE_QUEEN)) order = capture_order(*entry);
        if (move == record.hash_move) order = HASH_MOVE_ORDER;
        entry->order = i16(order);
    }
}

}  // namespace quon
