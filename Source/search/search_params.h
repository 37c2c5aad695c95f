#pragma once
// The selectivity parameters as the search uses them, and the reduction tables made from them.

#include "board/types.h"

namespace quon {

struct SearchParams {
    int NMP_depth, SEP_depth, SEP_margin, FP_depth, FP_margin, LMP_depth, LMP_count, LMR_depth,
        LMR_strength, SingularExtension;
};
extern SearchParams search_params;

// Late-move reductions in plies by depth 0..69 and moves searched 0..31.
using ReductionTable = Table<Table<u8, 32>, 70>;
extern ReductionTable pv_reductions;
extern ReductionTable zero_window_reductions;

// Copies the parameters from `params` and builds the tables. No search may be running.
void apply_search_params();

}  // namespace quon
