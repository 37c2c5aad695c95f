// The two parameter records.

#include "eval/eval_params.h"

namespace quon {

bool has_square_tables(const EvalParams& record) {
    for (int type = PAWN; type <= KING; ++type) {
        for (const Pair& entry : record.pst[type]) {
            if (entry.op == UNSET || entry.en == UNSET) return false;
        }
    }
    return true;
}

}  // namespace quon
