#pragma once
// The ladder of depths and plies. Iterations, node depths and limits count plies to go, the others
// plies from the root (ply 1).

#include "board/position.h"

namespace quon {

// Plies from the root.
constexpr int LAST_SEARCHED_PLY = 65;  // deeper nodes return their evaluation
constexpr int LAST_LINE_PLY = 66;      // last move of a line that is shown

// Plies to go.
constexpr int FIRST_RESULT_DEPTH = 2;  // of a move that a search may answer with
constexpr int NO_DEPTH_LIMIT = 66;
constexpr int MAX_ITERATION = 68;
constexpr int TB_RESULT_DEPTH = MAX_ITERATION + 1;  // marks a result that the tablebases gave
constexpr int TB_ROOT_DEPTH = 70;                   // of the root's probes: above every probe limit

static_assert(LAST_SEARCHED_PLY < LAST_LINE_PLY && LAST_LINE_PLY < MAX_PLY);
static_assert(NO_DEPTH_LIMIT < MAX_ITERATION && TB_RESULT_DEPTH < MAX_PLY);

}  // namespace quon
