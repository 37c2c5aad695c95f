#pragma once
// The selectivity parameters as the search uses them, and the reduction tables made from them.

#include "eval/eval_params.h"
#include "support/integers.h"
#include "support/table.h"

namespace quon {

// Late-move reductions in plies by depth 0..69 and moves searched 0..31.
using ReductionTable = Table<Table<u8, 32>, 70>;

struct SearchParams {
    int NMP_depth, SEP_depth, SEP_margin, FP_depth, FP_margin, LMP_depth, LMP_count, LMR_depth,
        LMR_strength, SingularExtension;
    ReductionTable pv_reductions;
    ReductionTable zero_window_reductions;
};

// Copies the parameters and builds the tables.
void apply_search_params(SearchParams& search_params, const EvalParams& params);

}  // namespace quon
