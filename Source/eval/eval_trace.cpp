// The trace record and its accumulation.

#include "eval/eval_trace.h"

namespace quon {

EvalTrace traced;

void reset_trace() { traced = {}; }

void trace_piece(int color, TraceTerm term, int square, int value) {
    traced.square[square] = i16(traced.square[square] + value);
    trace_total(color, term, value);
}

void trace_total(int color, TraceTerm term, int value) {
    i16& total = traced.total[term][color];
    total = i16(total + value);
}

}  // namespace quon
