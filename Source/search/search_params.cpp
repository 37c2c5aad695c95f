// Reductions grow with the logarithms of depth and of the number of moves searched.

#include "search/search_params.h"

#include <algorithm>
#include <cmath>

#include "eval/eval_params.h"

namespace quon {

SearchParams search_params;
ReductionTable pv_reductions;
ReductionTable zero_window_reductions;

namespace {

constexpr int MAX_PV_REDUCTION = 2;
constexpr int MAX_ZERO_WINDOW_REDUCTION = 4;

void build_reductions() {
    const double strength = 0.1 * std::sqrt(double(search_params.LMR_strength));
    pv_reductions = {};
    zero_window_reductions = {};
    for (int depth = 3; depth < ReductionTable::size(); ++depth) {
        for (int moves = 2; moves < pv_reductions[depth].size(); ++moves) {
            const double grown = 0.3 * std::log(double(depth)) * std::log(double(moves)) - 0.4;
            const double base = std::max(0.0, std::min(grown, double(depth - 3)));
            const int pv = int(std::round(base * strength));
            const int zero_window = int(std::round((base + 1.2) * strength));
            pv_reductions[depth][moves] = u8(std::min(pv, MAX_PV_REDUCTION));
            zero_window_reductions[depth][moves] =
                u8(std::min(zero_window, MAX_ZERO_WINDOW_REDUCTION));
        }
    }
}

}  // namespace

void apply_search_params() {
    search_params = {
        .NMP_depth = params.NMP_depth,
        .SEP_depth = params.SEP_depth,
        .SEP_margin = params.SEP_margin,
        .FP_depth = params.FP_depth,
        .FP_margin = params.FP_margin,
        .LMP_depth = params.LMP_depth,
        .LMP_count = params.LMP_count,
        .LMR_depth = params.LMR_depth,
        .LMR_strength = std::max<int>(params.LMR_strength, 0),
        .SingularExtension = params.SingularExtension,
    };
    build_reductions();
}

}  // namespace quon
