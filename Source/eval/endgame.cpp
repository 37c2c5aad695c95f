// Lone kings, dead draws, and the scaling of endings that are hard to win.

#include "eval/terms.h"

#include "eval/eval_info.h"
#include "eval/eval_trace.h"
#include "eval/kpk.h"

namespace quon {

namespace {

// Material signatures (Position::sig).
constexpr u32 PAWN_SIG = SIG_UNIT[PAWN];
constexpr u32 KNIGHT_SIG = SIG_UNIT[KNIGHT];
constexpr u32 BISHOP_SIG = SIG_UNIT[BISHOP];
constexpr u32 ROOK_SIG = SIG_UNIT[ROOK];
constexpr u32 QUEEN_SIG = SIG_UNIT[QUEEN];

// clang-format off
// For a dark bishop, rank 8 first: the weak king dies in the corners a1 and h8.
constexpr Table<int, 64> BISHOP_CORNER = {{
     6,  8, 10, 12, 14, 16, 18, 20,
     8,  4,  6,  8, 10, 12, 14, 18,
    10,  6,  2,  2,  6,  8, 12, 16,
    12,  8,  2,  0,  2,  6, 10, 14,
    14, 10,  6,  2,  0,  2,  8, 12,
    16, 12,  8,  6,  2,  2,  6, 10,
    18, 14, 12, 10,  8,  6,  4,  8,
    20, 18, 16, 14, 12, 10,  8,  6,
}};
constexpr Table<int, 64> KING_CENTRE = {{
    0, 0, 0, 0, 0, 0, 0, 0,
    0, 1, 1, 1, 1, 1, 1, 0,
    0, 1, 2, 2, 2, 2, 1, 0,
    0, 1, 2, 2, 2, 2, 1, 0,
    0, 1, 2, 2, 2, 2, 1, 0,
    0, 1, 2, 2, 2, 2, 1, 0,
    0, 1, 1, 1, 1, 1, 1, 0,
    0, 0, 0, 0, 0, 0, 0, 0,
}};
constexpr Table<int, 64> KING_EDGE = {{
    60, 50, 40, 30, 30, 40, 50, 60,
    50, 40, 30, 20, 20, 30, 40, 50,
    40, 30, 20, 10, 10, 20, 30, 40,
    30, 20, 10,  0,  0, 10, 20, 30,
    30, 20, 10,  0,  0, 10, 20, 30,
    40, 30, 20, 10, 10, 20, 30, 40,
    50, 40, 30, 20, 20, 30, 40, 50,
    60, 50, 40, 30, 30, 40, 50, 60,
}};
// clang-format on

// A bare king or a king and one bishop.
bool is_bare(u32 sig) { return sig == 0 || sig == BISHOP_SIG; }

// Kings of a lone-king ending, the stronger side's first.
struct Kings {
    int strong;
    int weak;

    [[nodiscard]] int distance() const { return king_distance[strong][weak]; }
};

// Drives the weak king to a corner of the bishop's colour.
int bishop_and_knight(const Position& p, int strong, Kings kings) {
    const int mirror = p.bb[strong][BISHOP] & LIGHT_SQUARES ? 7 : 0;
    const int corner = BISHOP_CORNER[kings.weak ^ 56 ^ mirror];
    return 4 * (2 * corner + KING_CENTRE[kings.strong] + 200 - 2 * kings.distance());
}

// Drives the weak king to the edge.
int rook_or_queen(const Position& p, int strong, Kings kings) {
    return 100 * p.npm[strong] + KING_EDGE[kings.weak] - 10 * kings.distance() + 200;
}

}  // namespace

bool material_shortcut(const Position& p, EvalNotes& notes, EvalTrace* trace, int& score) {
    if (is_bare(p.sig[WHITE]) && is_bare(p.sig[BLACK])) {
        notes.eval_final = 1;
        score = 0;
        return true;
    }
    if (p.sig[WHITE] != 0 && p.sig[BLACK] != 0) return false;

    const int strong = p.sig[WHITE] != 0 ? WHITE : BLACK;
    const u32 sig = p.sig[strong];
    const Kings kings = {king_square(p, strong), king_square(p, strong ^ 1)};
    const int sign = p.side == strong ? 1 : -1;
    if (sig == PAWN_SIG) {
        score = kpk_probe(p, p.side);
    } else if (sig == BISHOP_SIG + KNIGHT_SIG) {
        score = sign * bishop_and_knight(p, strong, kings);
        if (trace) trace_piece(*trace, strong, TRACE_KINGS, kings.strong, score);
    } else if (sig >= ROOK_SIG) {
        const int value = rook_or_queen(p, strong, kings);
        score = sign * value;
        if (trace) trace_piece(*trace, strong, TRACE_KINGS, kings.strong, value);
    } else {
        return false;
    }
    return true;
}

namespace {

// An ending from the side that the score favours.
struct Ending {
    const EvalInfo& info;
    const Position& p;
    int strong;
    int weak;
    u32 strong_sig;
    u32 weak_sig;
    int strong_npm;
    int weak_npm;
    int strong_pawns;
    int weak_pawns;
};

// The stronger side is ahead by more than a minor piece.
double clear_advantage(const Ending& e) {
    if (e.strong_sig == 2 * KNIGHT_SIG) return 0.05;
    const bool lone_queen = e.strong_sig == QUEEN_SIG;
    if ((lone_queen || e.strong_sig == ROOK_SIG) && e.weak_pawns > 0) {
        return lone_queen && e.weak_npm >= 6 ? 0.675 : 0.9;
    }
    return lone_queen && e.weak_npm >= 6 ? 0.75 : 1.0;
}

double without_pawns(const Ending& e) {
    if (e.strong_sig == 2 * BISHOP_SIG && e.weak_sig == KNIGHT_SIG) return 0.9;
    if (e.strong_npm <= 3) return 0.05;
    return e.strong_npm <= 8 ? 0.15 : 0.25;
}

// Each side has a pawn and nothing else: would the stronger one win without the other?
double pawn_each(const Ending& e) {
    const int result = kpk_probe({e.strong, lsb_index(e.p.bb[e.strong][PAWN]),
                                  king_square(e.p, e.strong), king_square(e.p, e.weak), e.p.side});
    return result != 0 ? 1.0 : 0.25;
}

// Rook pawns, at most a bishop of the wrong colour, and the lone king in front of them.
bool is_wrong_corner(const Ending& e) {
    const Bitboard pawns = e.p.bb[e.strong][PAWN];
    const bool few_pieces = e.weak_npm == 0 && e.strong_npm < 4 && e.strong_sig < 2 * BISHOP_SIG &&
                            (e.strong_sig & 0xF0) == 0;
    if (!few_pieces || ((pawns & ~FILE_A) && (pawns & ~FILE_H))) return false;
    const int file = pawns & FILE_A ? 0 : 7;
    const int corner = make_square(file, e.strong == WHITE ? 7 : 0);
    if (king_distance[king_square(e.p, e.weak)][corner] > 1) return false;
    const Bitboard corner_color = has(LIGHT_SQUARES, corner) ? LIGHT_SQUARES : ~LIGHT_SQUARES;
    return !(e.p.bb[e.strong][BISHOP] & corner_color);
}

// Factors with three pawns, two, and the general one.
struct PawnFactors {
    double three;
    double two;
    double general;
};

PawnFactors pawn_factors(const Ending& e) {
    const auto one_bishop = [](u32 sig) { return sig < QUEEN_SIG && (sig & 0xF00) == BISHOP_SIG; };
    const int more_pawns = e.strong_pawns - e.weak_pawns;
    const bool bishop_ending = one_bishop(e.strong_sig) && one_bishop(e.weak_sig) &&
                               e.strong_npm <= e.weak_npm && more_pawns < 3;
    if (bishop_ending) {
        const Bitboard bishops = e.p.bb[WHITE][BISHOP] | e.p.bb[BLACK][BISHOP];
        const bool opposite = (bishops & LIGHT_SQUARES) && (bishops & ~LIGHT_SQUARES);
        if (opposite && more_pawns == 2) return {0.72, 0.64, 0.8};
        if (opposite) return {0.45, 0.4, 0.5};
    }
    return {0.9, 0.8, 1.0};
}

// The last pawn: can its way be barred?
double last_pawn(const Ending& e, double general) {
    const int pawn = lsb_index(e.p.bb[e.strong][PAWN]);
    const Bitboard path = squares_ahead(e.strong, pawn);
    const auto& weak = e.info.attacks[e.weak];
    if (path & (weak[KNIGHT] | weak[BISHOP])) return general * 0.3;
    if (path & weak[KING] & ~e.info.attacks[e.strong][KING]) return general * 0.5;
    const bool minor = e.p.bb[e.strong][KNIGHT] || e.p.bb[e.strong][BISHOP];
    return general * (minor ? 0.6 : 0.75);
}

double few_pawns(const Ending& e) {
    const PawnFactors factors = pawn_factors(e);
    if (e.strong_pawns + e.strong_npm - e.weak_npm - e.weak_pawns > 1) return factors.general;
    switch (e.strong_pawns) {
        case 1: return last_pawn(e, factors.general);
        case 2: return factors.two;
        case 3: return factors.three;
        default: return factors.general;
    }
}

}  // namespace

double scale_factor(const EvalInfo& info, int score) {
    constexpr int SMALL_SCORE = 14;
    constexpr int ENOUGH_MATERIAL = 14;
    if (-SMALL_SCORE <= score && score <= SMALL_SCORE) return 1.0;
    const Position& p = info.position;
    const int strong = score > 0 ? p.side : p.side ^ 1;
    if (p.npm[strong] >= ENOUGH_MATERIAL) return 1.0;

    const int weak = strong ^ 1;
    const Ending e = {info,
                      p,
                      strong,
                      weak,
                      p.sig[strong],
                      p.sig[weak],
                      p.npm[strong],
                      p.npm[weak],
                      pawn_count(p, strong),
                      pawn_count(p, weak)};
    if (e.strong_npm - e.weak_npm >= 4) return clear_advantage(e);
    if (e.strong_pawns == 0) return without_pawns(e);
    if (e.strong_sig == PAWN_SIG && e.weak_sig == PAWN_SIG) return pawn_each(e);
    if (is_wrong_corner(e)) return 0.06;
    if (e.weak_npm > 0 && e.strong_npm < 9) return few_pawns(e);
    return 1.0;
}

}  // namespace quon
