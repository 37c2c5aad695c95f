// Probing. The tables hold no useful values for positions whose best move is a capture, and ignore
// en passant: captures are therefore tried before the table is asked, en passant after it.

#include "syzygy/tbprobe.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>

#include "syzygy/tbprobe_position.h"
#include "syzygy/tbprobe_tables.h"

namespace quon {

namespace {

constexpr int LOSS = -2;
constexpr int WIN = 2;
constexpr int NO_VALUE = -3;  // below every win/draw/loss value
constexpr int FIFTY_MOVES = 100;

// How a probe ended, as out_success.
constexpr int FAILED = 0;
constexpr int FROM_TABLE = 1;
constexpr int FROM_CAPTURE = 2;

int fail(int& success) {
    success = FAILED;
    return 0;
}

int probe_table(const ProbePosition& position, int& success) {
    success = FROM_TABLE;
    if (occupied(position) == position.kings) return 0;
    const TableUse use = wdl_table(position);
    if (!use.table) return fail(success);
    const int value = look_up_wdl(*use.table, position, use.exchanged);
    if (value != TABLE_DAMAGED) return value;
    give_up_wdl_table(use);
    return fail(success);
}

// Captures down to the table's own positions; en passant does not exist here.
int probe_ab(const ProbePosition& position, int alpha, int beta, int& success) {
    ProbeMoves captures;
    ProbePosition child;
    list_moves(position, MoveKind::CAPTURES, captures);
    for (const ProbeMove& move : captures) {
        if (!play(position, move, child)) continue;
        const int value = -probe_ab(child, -beta, -alpha, success);
        if (success == FAILED) return 0;
        if (value <= alpha) continue;
        if (value >= beta) {
            success = FROM_CAPTURE;
            return value;
        }
        alpha = value;
    }
    const int value = probe_table(position, success);
    if (success == FAILED) return 0;
    if (alpha < value) return value;
    success = alpha > 0 ? FROM_CAPTURE : FROM_TABLE;
    return alpha;
}

// The value of the best en-passant capture, NO_VALUE without a legal one.
int probe_en_passant(const ProbePosition& position, int& success) {
    int best = NO_VALUE;
    ProbeMoves captures;
    ProbePosition child;
    list_moves(position, MoveKind::EN_PASSANT, captures);
    for (const ProbeMove& move : captures) {
        if (!play(position, move, child)) continue;
        const int value = -probe_ab(child, LOSS, WIN, success);
        if (success == FAILED) return NO_VALUE;
        best = std::max(best, value);
    }
    return best;
}

// En passant is the only kind of legal move.
bool must_take_en_passant(const ProbePosition& position) {
    ProbePosition without = position;
    without.ep = 0;
    return !has_legal_move(without);
}

// What the tables can be asked about at all.
bool askable(const ProbePosition& position) {
    return popcount64(occupied(position)) <= TB_MAX_PIECES && well_formed(position);
}

// Plies to zeroing after a move that wins, draws or loses by zeroing.
int zeroing_distance(int wdl) {
    constexpr int DISTANCES[] = {-1, -101, 0, 101, 1};
    assert(-2 <= wdl && wdl <= 2);
    return DISTANCES[wdl + 2];
}

int wdl_of_distance(int dtz) {
    if (dtz > 0) return dtz > FIFTY_MOVES ? 1 : 2;
    if (dtz < 0) return dtz < -FIFTY_MOVES ? -1 : -2;
    return 0;
}

bool is_mate(const ProbePosition& position) {
    return mover_in_check(position) && !has_legal_move(position);
}

// The distance by way of a legal move, for the side that makes it.
int move_distance(const ProbePosition& position, const ProbeMove& move, const ProbePosition& child,
                  int& success) {
    if (resets_count(position, move)) return zeroing_distance(-tb_probe_wdl(child, success));
    const int distance = -tb_probe_dtz(child, success);
    return distance > 0 ? distance + 1 : distance < 0 ? distance - 1 : 0;
}

// The winner hurries, the loser delays. The best distance by way of any move that keeps the sign of
// wdl; a loser without a move is mated.
int distance_by_search(const ProbePosition& position, int wdl, int& success) {
    int best = 0;
    ProbeMoves list;
    ProbePosition child;
    list_moves(position, MoveKind::ALL, list);
    for (const ProbeMove& move : list) {
        if (!play(position, move, child)) continue;
        if (wdl > 0 && is_mate(child)) return 1;
        const int distance = move_distance(position, move, child, success);
        if (success == FAILED) return 0;
        if (wdl > 0 ? distance > 0 && (best == 0 || distance < best) : distance < best) {
            best = distance;
        }
    }
    return best == 0 && wdl < 0 ? -1 : best;
}

// Whether a pawn move without capture keeps the win. A table that is missing (of an odd promotion,
// say) does not matter when another move does it.
bool wins_by_pawn_move(const ProbePosition& position, int wdl, int& success) {
    ProbeMoves list;
    ProbePosition child;
    list_moves(position, MoveKind::ALL, list);
    bool all_known = true;
    for (const ProbeMove& move : list) {
        const bool push = has(position.pawns, move.from) && file_of(move.from) == file_of(move.to);
        if (!push || !play(position, move, child)) continue;
        if (-tb_probe_wdl(child, success) == wdl && success != FAILED) return true;
        all_known &= success != FAILED;
    }
    success = all_known ? FROM_TABLE : FAILED;
    return false;
}

// The distance as if en passant did not exist at the root.
int distance_without_ep(const ProbePosition& position, int& success) {
    const int wdl = probe_ab(position, LOSS, WIN, success);
    if (success == FAILED || wdl == 0) return 0;
    if (success == FROM_CAPTURE) return zeroing_distance(wdl);
    if (wdl > 0) {
        const bool wins = wins_by_pawn_move(position, wdl, success);
        if (success == FAILED) return 0;
        if (wins) return zeroing_distance(wdl);
    }
    success = FROM_TABLE;
    const TableUse use = dtz_table(position);
    if (!use.table) return fail(success);
    int distance = look_up_dtz(*use.table, position, use.exchanged, wdl);
    if (distance == OTHER_SIDE_STORED) return distance_by_search(position, wdl, success);
    if (distance == TABLE_DAMAGED) {
        give_up_dtz_table(use);
        return fail(success);
    }
    if (std::abs(wdl) == 1) distance += FIFTY_MOVES;
    return wdl > 0 ? distance : -distance;
}

// One king a side, no impossible piece, and the side that waits is not in check.
bool valid_root(const ProbePosition& position) {
    return well_formed(position) && !waiting_in_check(position);
}

int wdl_under_fifty(int distance, int rule50) {
    const bool in_time = std::abs(distance) + rule50 <= FIFTY_MOVES;
    if (distance > 0) return in_time ? 4 : 3;
    if (distance < 0) return in_time ? 0 : 1;
    return 2;
}

constexpr int MAX_PACKED_DISTANCE = 4095;

u32 pack(const ProbeMove& move, int wdl, int distance) {
    return u32(wdl) | u32(move.to) << 4 | u32(move.from) << 10 | u32(move.promotion) << 16 |
           u32(move.en_passant) << 19 |
           u32(std::min(std::abs(distance), MAX_PACKED_DISTANCE)) << 20;
}

struct RootMove {
    ProbeMove move;
    int distance;
};

struct RootMoves {
    RootMove moves[TB_MAX_MOVES];
    int count = 0;

    [[nodiscard]] const RootMove* begin() const { return moves; }
    [[nodiscard]] const RootMove* end() const { return moves + count; }
};

// All legal moves with their distances; false when a probe fails.
bool rate_root_moves(const ProbePosition& position, int distance, RootMoves& rated) {
    ProbeMoves list;
    ProbePosition child;
    list_moves(position, MoveKind::ALL, list);
    for (const ProbeMove& move : list) {
        if (!play(position, move, child)) continue;
        int success = FROM_TABLE;
        const int value =
            distance > 0 && is_mate(child) ? 1 : move_distance(position, move, child, success);
        if (success == FAILED) return false;
        rated.moves[rated.count++] = {move, value};
    }
    return true;
}

// One of the drawing moves, chosen by the material: the same each time.
const RootMove* choose_drawing_move(const ProbePosition& position, const RootMoves& rated) {
    const auto draws = [](const RootMove& root) { return root.distance == 0; };
    const auto count = u64(std::count_if(rated.begin(), rated.end(), draws));
    if (count == 0) return nullptr;
    u64 skipped = material_key(position, position.turn != 0) % count;
    return std::find_if(rated.begin(), rated.end(),
                        [&](const RootMove& root) { return draws(root) && skipped-- == 0; });
}

// The fastest win, the slowest loss, or a draw; nullptr when there is none.
const RootMove* choose_root_move(const ProbePosition& position, int distance,
                                 const RootMoves& rated) {
    if (distance == 0) return choose_drawing_move(position, rated);
    const RootMove* best = nullptr;
    for (const RootMove& root : rated) {
        if (distance > 0 ? root.distance <= 0 : root.distance >= 0) continue;
        if (!best || root.distance < best->distance) best = &root;
    }
    return best;
}

}  // namespace

int tb_probe_wdl(const ProbePosition& position, int& out_success) {
    if (!askable(position)) return fail(out_success);
    const int value = probe_ab(position, LOSS, WIN, out_success);
    if (out_success == FAILED || position.ep == 0) return value;
    const int taking = probe_en_passant(position, out_success);
    if (out_success == FAILED) return 0;
    if (taking >= value) return taking;
    if (taking != NO_VALUE && value == 0 && must_take_en_passant(position)) return taking;
    return value;
}

int tb_probe_dtz(const ProbePosition& position, int& out_success) {
    if (!askable(position)) return fail(out_success);
    const int distance = distance_without_ep(position, out_success);
    if (out_success == FAILED || position.ep == 0) return distance;
    const int taking = probe_en_passant(position, out_success);
    if (out_success == FAILED) return 0;
    if (taking == NO_VALUE) return distance;
    // A capture that wins is as fast as can be; one that loses is no delay.
    const int other = wdl_of_distance(distance);
    if (taking > other || (taking == other && taking > 0)) return zeroing_distance(taking);
    if (distance == 0 && taking < 0 && must_take_en_passant(position)) {
        return zeroing_distance(taking);
    }
    return distance;
}

u32 tb_probe_root(const ProbePosition& position, u32* out_results) {
    if (out_results) *out_results = TB_FAILED;
    if (!valid_root(position)) return TB_FAILED;
    int success = FROM_TABLE;
    const int distance = tb_probe_dtz(position, success);
    RootMoves rated;
    if (success == FAILED || !rate_root_moves(position, distance, rated)) return TB_FAILED;
    if (out_results) {
        for (const RootMove& root : rated) {
            const int wdl = wdl_under_fifty(root.distance, position.rule50);
            *out_results++ = pack(root.move, wdl, root.distance);
        }
        *out_results = TB_FAILED;
    }
    const RootMove* const chosen = choose_root_move(position, distance, rated);
    if (chosen) {
        return pack(chosen->move, wdl_under_fifty(distance, position.rule50), distance);
    }
    if (distance > 0) return TB_FAILED;
    return distance < 0 ? TB_CHECKMATE : TB_STALEMATE;
}

}  // namespace quon
