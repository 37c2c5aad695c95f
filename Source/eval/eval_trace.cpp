// Accumulation of the trace record.

#include "eval/eval_trace.h"

namespace quon {

void trace_piece(EvalTrace& trace, int color, TraceTerm term, int square, int value) {
    trace.square[square] = i16(trace.square[square] + value);
    trace_total(trace, color, term, value);
}

void trace_total(EvalTrace& trace, int color, TraceTerm term, int value) {
    i16& total = trace.total[term][color];
    total = i16(total + value);
}

}  // namespace quon
