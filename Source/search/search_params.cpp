// Late-move reductions.
//
// How many plies a late quiet move loses grows with the logarithm of the depth (a ply more or less
// matters less far from the horizon) and with that of the number of moves searched before it (the
// tenth move is about as unlikely to be best as the fifteenth, but much less likely than the
// third). Nodes of the principal variation lose less: their score is the answer. Nothing is reduced
// below depth 3, nor before the third move. LMR_strength scales the whole, 100 being what the
// engine is tuned for; it acts through its square root.

#include "search/search_params.h"

#include <algorithm>
#include <cmath>

namespace quon {

namespace {

constexpr int MAX_PV_REDUCTION = 2;           // plies
constexpr int MAX_ZERO_WINDOW_REDUCTION = 4;  // plies
constexpr double GROWTH = 0.3;                // plies per product of both logarithms
constexpr double START = 0.4;                 // plies that the first growth does not count
constexpr double ZERO_WINDOW_MORE = 1.2;      // plies

}  // namespace

void apply_search_params(SearchParams& out, const EvalParams& params) {
    const double strength = 0.1 * std::sqrt(std::max<double>(params.LMR_strength, 0));
    out = {};
    for (int depth = 3; depth < ReductionTable::size(); ++depth) {
        for (int moves = 2; moves < out.pv_reductions[depth].size(); ++moves) {
            const double grown = GROWTH * std::log(double(depth)) * std::log(double(moves)) - START;
            const double base = std::max(0.0, std::min(grown, double(depth - 3)));
            const int pv = int(std::round(base * strength));
            const int zero_window = int(std::round((base + ZERO_WINDOW_MORE) * strength));
            out.pv_reductions[depth][moves] = u8(std::min(pv, MAX_PV_REDUCTION));
            out.zero_window_reductions[depth][moves] =
                u8(std::min(zero_window, MAX_ZERO_WINDOW_REDUCTION));
        }
    }
}

}  // namespace quon
