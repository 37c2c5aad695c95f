// Passed pawns depend on pieces and kings, so they are scored here and not in the pawn cache.

#include "eval/terms.h"

#include "board/see.h"
#include "eval/eval_info.h"
#include "eval/eval_trace.h"

namespace quon {

namespace {

// By relative rank: 6 is a passed pawn on the seventh, one step before it promotes. What a passed
// pawn is worth on each rank, the sixth included, is EvalTables::ppawn.
constexpr Table<int, 8> PUSH_THREAT = {{0, 32, 32, 64, 128, 256, 512, 0}};
constexpr Table<int, 8> FREE_PASSER = {{0, 5, 5, 12, 20, 30, 40, 0}};

constexpr int CANDIDATE_STAGE = 13;  // beyond it candidates count

template <int Color>
int promotion_square(int square) {
    return make_square(file_of(square), Color == WHITE ? 7 : 0);
}

template <int Color>
void add_threat(EvalInfo& info, int amount) {
    i16& threat = info.notes.threat[Color];
    threat = i16(threat + amount);
}

// A passer's worth, and the base of the bonuses for company and for kings.
struct PasserValue {
    int value;
    int base;
};

template <int Color>
PasserValue push_value(EvalInfo& info, int square, int rank) {
    constexpr int ENEMY = Color ^ 1;
    const Position& p = info.position;
    const int basic = info.tables.ppawn[rank];
    int stop = square + forward(Color);
    if (rank == 1 && p.board[stop] == 0) stop += forward(Color);
    if (p.board[stop] != 0) {
        return {color_of(p.board[stop]) == ENEMY ? basic - basic / 4 : basic, basic};
    }
    if (see(p, Color, square, stop) < 0) return {basic, basic};
    int value = basic + info.tables.ppawnx[rank];
    add_threat<ENEMY>(info, PUSH_THREAT[rank]);
    if (!(squares_ahead(Color, square) & (p.bb[ENEMY][0] | info.attacks[ENEMY][0]))) {
        value += FREE_PASSER[rank];
        add_threat<ENEMY>(info, PUSH_THREAT[rank]);
    }
    return {value, value};
}

// How far the enemy king is from the pawn's way, compared with the own king.
template <int Color>
int king_race(const EvalInfo& info, int square, int rank, int base) {
    const Position& p = info.position;
    const auto& from_enemy = king_distance[king_square(p, Color ^ 1)];
    const auto& from_own = king_distance[king_square(p, Color)];
    const int target = square + forward(Color) * (rank < 6 ? 2 : 1);
    int value = (24 * from_enemy[target] - 16 * from_own[target]) * (rank + 1) / 16;
    const int moves_left = 8 - rank - (p.side == Color ? 1 : 0);
    const bool outruns = from_enemy[promotion_square<Color>(square)] > moves_left;
    const bool escorted = rank >= 4 && from_own[target] <= 1 && has(CENTRAL_FILES, square);
    if (outruns || escorted) value += base / 4;
    return value;
}

template <int Color>
Score passer_score(EvalInfo& info, int square) {
    const Bitboard own_pawns = info.position.bb[Color][PAWN];
    const int rank = relative_rank(Color, square);
    if (squares_ahead(Color, square) & own_pawns) {
        const int value = info.tables.ppawn[rank] / 3;
        return {value, value};
    }
    auto [value, base] = push_value<Color>(info, square, rank);
    if ((shift_east(bit(square)) | shift_west(bit(square))) & own_pawns) value += base / 4;
    if (has(info.attacks[Color][PAWN], square)) value += base / 8;
    value += king_race<Color>(info, square, rank, base);
    return {value / 2, value};
}

template <int Color>
void add_score(EvalInfo& info, int square, Score score) {
    info.positional[Color] += score;
    if (info.trace)
        trace_piece(*info.trace, Color, TRACE_PASSERS, square, blend(score, info.stage));
}

template <int Color>
void evaluate_passed_of(EvalInfo& info) {
    for (Bitboard left = info.pawns->passed & info.position.bb[Color][PAWN]; left;) {
        const int square = pop_square(left);
        add_score<Color>(info, square, passer_score<Color>(info, square));
    }
}

template <int Color>
void evaluate_candidates_of(EvalInfo& info) {
    const Position& p = info.position;
    const int enemy_king = king_square(p, Color ^ 1);
    for (Bitboard left = info.pawns->candidates & p.bb[Color][PAWN]; left;) {
        const int square = pop_square(left);
        const int front = square + forward(Color);
        if (p.board[front] != 0) continue;
        const int progress =
            32 * (relative_rank(Color, square) - 2) + 24 * king_distance[enemy_king][front];
        add_score<Color>(info, square, {0, info.terms.pawn_candidate.en * progress / 256});
    }
}

}  // namespace

void evaluate_passed(EvalInfo& info) {
    evaluate_passed_of<WHITE>(info);
    evaluate_passed_of<BLACK>(info);
}

void evaluate_candidates(EvalInfo& info) {
    if (info.stage <= CANDIDATE_STAGE) return;
    evaluate_candidates_of<WHITE>(info);
    evaluate_candidates_of<BLACK>(info);
}

}  // namespace quon
