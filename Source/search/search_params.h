#pragma once
// The reduction tables made from the parameters; the other ones the search reads as they are.

#include "eval/eval_params.h"
#include "support/integers.h"
#include "support/table.h"

namespace quon {

// Late-move reductions in plies by depth 0..69 and moves searched 0..31.
using ReductionTable = Table<Table<u8, 32>, 70>;

struct SearchParams {
    ReductionTable pv_reductions;
    ReductionTable zero_window_reductions;
};

// Builds the tables.
void apply_search_params(SearchParams& search_params, const EvalParams& params);

}  // namespace quon
