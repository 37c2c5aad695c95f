// Derivation of the evaluation tables.

#include "eval/eval_tables.h"

#include <algorithm>
#include <cmath>

namespace quon {

namespace {

// The built-in square tables: files a to d within each rank, rank 1 first; files e to h mirror
// them.
using HalfBoard = Table<i8, 32>;

// clang-format off
constexpr HalfBoard PAWN_OP = {{
     0,  0,  0,  0,
    -7,  0,  0, -4,
    -5,  0,  3,  6,
    -5,  0,  6,  8,
     0,  6, 12, 12,
     0,  6, 12, 12,
     0,  7,  8,  8,
     0,  0,  0,  0,
}};
constexpr HalfBoard PAWN_EN = {{
     0,  0,  0,  0,
     0,  0,  0,  0,
     0,  0,  0,  0,
     4,  4,  4,  4,
     6,  6,  6,  6,
     8,  8,  8,  8,
     8,  8,  8,  8,
     0,  0,  0,  0,
}};
constexpr HalfBoard KNIGHT_BASE = {{
    -35, -24, -17, -14,
    -24, -14,  -7,  -3,
    -17,  -7,   0,   3,
    -14,  -3,   3,   7,
    -14,  -3,   3,   7,
    -17,  -7,   0,   3,
    -24, -14,  -7,  -3,
    -35, -24, -17, -14,
}};
constexpr HalfBoard BISHOP_BASE = {{
    -12, -8, -6, -5,
     -8,  0, -2, -1,
     -6, -2,  0,  1,
     -5, -1,  1,  2,
     -5, -1,  1,  2,
     -6, -2,  0,  1,
     -8,  0, -2, -1,
    -12, -8, -6, -5,
}};
constexpr HalfBoard ROOK_BASE = {{
    -8, -4, 0, 2,
    -8, -4, 0, 2,
    -8, -4, 0, 2,
    -8, -4, 0, 2,
    -8, -4, 0, 2,
    -8, -4, 0, 2,
    -8, -4, 0, 2,
    -8, -4, 0, 2,
}};
constexpr HalfBoard QUEEN_BASE = {{
    -12, -8, -6, -5,
     -8, -5, -2, -1,
     -6, -2,  0,  1,
     -5, -1,  1,  2,
     -5, -1,  1,  2,
     -6, -2,  0,  1,
     -8, -5, -2, -1,
    -12, -8, -6, -5,
}};
constexpr HalfBoard KING_OP = {{
      7,   7,   0,  -7,
      0,   0,  -7, -15,
     -7,  -7, -14, -21,
    -14, -14, -21, -29,
    -21, -21, -29, -36,
    -21, -21, -29, -36,
    -21, -21, -29, -36,
    -21, -21, -29, -36,
}};
constexpr HalfBoard KING_EN = {{
    -50, -35, -25, -20,
    -35, -20, -10,  -5,
    -25, -10,   0,   5,
    -20,  -5,   5,  10,
    -20,  -5,   5,  10,
    -25, -10,   0,   5,
    -35, -20, -10,  -5,
    -50, -35, -25, -20,
}};
// clang-format on

// A type's two halves; an entry is base * scale / divisor.
struct SquareTableSource {
    PieceType type;
    const HalfBoard& op;
    const HalfBoard& en;
    int op_divisor;
    int en_divisor;
};
constexpr SquareTableSource SQUARE_TABLE_SOURCES[] = {
    {PAWN, PAWN_OP, PAWN_EN, 16, 8},
    {KNIGHT, KNIGHT_BASE, KNIGHT_BASE, 42, 42},
    {BISHOP, BISHOP_BASE, BISHOP_BASE, 12, 12},
    {ROOK, ROOK_BASE, ROOK_BASE, 8, 8},
    {QUEEN, QUEEN_BASE, QUEEN_BASE, 14, 14},
    {KING, KING_OP, KING_EN, 48, 60},
};
// A queen in the enemy half comes out too early.
constexpr int ADVANCED_QUEEN_OP = -4;

void build_default_psts(SquareTables& pst, const Table<Pair, 7>& scales) {
    for (const SquareTableSource& source : SQUARE_TABLE_SOURCES) {
        const Pair scale = scales[source.type];
        for (int square = 0; square < 64; ++square) {
            const int file = file_of(square);
            const int half = rank_of(square) * 4 + (file < 4 ? file : 7 - file);
            pst[source.type][square] = {i16(source.op[half] * scale.op / source.op_divisor),
                                        i16(source.en[half] * scale.en / source.en_divisor)};
        }
    }
    for (int square = 32; square < 64; ++square) {
        Pair& entry = pst[QUEEN][square];
        entry.op = i16(entry.op + ADVANCED_QUEEN_OP);
    }
}

i16 rounded(double value) { return i16(std::lround(value)); }

// Fills entries 0..most: the first squares of mobility are worth more than the last ones.
template <int N>
void build_mobility(Table<Pair, N>& table, Pair term, int most, double exponent,
                    double zero_point) {
    for (int n = 0; n <= most; ++n) {
        const double share = std::pow(double(n) / most, exponent) - zero_point;
        table[n] = {rounded(term.op * share), rounded(term.en * share)};
    }
}

constexpr int PPAWN_RANK8 = 275;

void build_passed_pawns(EvalTables& tables, const EvalParams& params) {
    for (int rank = 0; rank < 7; ++rank) tables.ppawn[rank] = params.passed_pawn[rank];
    tables.ppawn[7] = PPAWN_RANK8;
    for (int rank = 0; rank < 7; ++rank) {
        tables.ppawnx[rank] = rounded(0.6 * (tables.ppawn[rank + 1] - tables.ppawn[rank]));
    }
}

// Grows with the square of the attack until the steps get too steep, then ever more slowly.
void build_king_danger(Table<i16, 64>& danger, int percent) {
    constexpr double STEEPEST = 470;
    danger[0] = 0;
    for (int i = 1; i < 64; ++i) {
        const long square_law = std::lround(i * i * percent * 0.01 * 0.5);
        const long limit = danger[i - 1] + std::lround(STEEPEST / i);
        danger[i] = i16(std::min(square_law, limit));
    }
}

}  // namespace

void init_eval_tables(EvalTables& t, const EvalParams& params) {
    t.terms = params;
    if (has_square_tables(params)) {
        t.pst = params.pst;
    } else {
        build_default_psts(t.pst, params.pst_scale);
    }
    build_mobility(t.knight_mobility, params.knight_mobility, 8, 0.7, 0.5);
    build_mobility(t.bishop_mobility, params.bishop_mobility, 14, 0.7, 0.4);
    build_mobility(t.rook_mobility, params.rook_mobility, 14, 0.7, 0.4);
    build_mobility(t.queen_mobility, params.queen_mobility, 28, 0.6, 0.4);
    build_passed_pawns(t, params);
    build_king_danger(t.KingDanger, params.king_safety.op);
}

}  // namespace quon
