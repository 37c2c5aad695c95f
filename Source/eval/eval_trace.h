#pragma once
// The record of one evaluation, term by term, for the console's breakdown.
// Values are blended by the game stage. An evaluation adds to the record that it is given.

#include "board/types.h"

namespace quon {

// The piece types' totals follow TRACE_POSITIONAL in the order of the types.
enum TraceTerm : int {
    TRACE_MATERIAL,
    TRACE_POSITIONAL,
    TRACE_PAWNS,
    TRACE_KNIGHTS,
    TRACE_BISHOPS,
    TRACE_ROOKS,
    TRACE_QUEENS,
    TRACE_KINGS,
    TRACE_PASSERS,
    TRACE_TERMS,
};
constexpr TraceTerm trace_term(int type) { return TraceTerm(TRACE_POSITIONAL + type); }

struct EvalTrace {
    Table<i16, 64> square;
    Table<Table<i16, 2>, TRACE_TERMS> total;  // [term][colour]
    Bitboard hung;                            // both colours
    Bitboard pinned;                          // both colours
    int stage;                                // 0 with all pieces, 24 with kings and pawns only
    double factor = 1.0;                      // by which the score was scaled down
};

// Adds to the colour's total of the term.
inline void trace_total(EvalTrace& trace, int color, TraceTerm term, int value) {
    i16& total = trace.total[term][color];
    total = i16(total + value);
}
// Adds a piece's value to its square as well.
inline void trace_piece(EvalTrace& trace, int color, TraceTerm term, int square, int value) {
    trace.square[square] = i16(trace.square[square] + value);
    trace_total(trace, color, term, value);
}

}  // namespace quon
