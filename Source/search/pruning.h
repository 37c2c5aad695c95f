#pragma once
// What may end a node before its moves are tried, or tells which of them to try first. Scores and
// margins are centipawns for the side to move.

#include "search/node.h"

namespace quon {

// Razoring: so far below alpha near the horizon that only captures could help. True if they do not;
// their `score` is then the node's.
[[nodiscard]] bool razoring(const Node& node, int& score);

// Reverse futility, also called static null move: so far above beta near the horizon that a quiet
// reply will not catch up. True if the node fails high.
[[nodiscard]] bool static_eval_pruning(const Node& node);

// True if a capture beats beta by a margin in a shallower search.
[[nodiscard]] bool probcut(const Node& node);

// True if even passing the turn holds beta in a reduced search; the node's is then `score`.
[[nodiscard]] bool null_move(const Node& node, int& score);

// The score that the table or the evaluation lets expect.
[[nodiscard]] int expected_value(const Node& node);

// Internal iterative deepening: without a hash move worth the depth, a shallower search of this
// node finds one. `expected` becomes its score; true when that already settles the node with
// `score`.
[[nodiscard]] bool internal_iterative_deepening(const Node& node, int& expected, int& score);

// Singular extension: marks the node whose hash move stands alone; the move loop extends it.
void mark_singular(const Node& node, int expected);

}  // namespace quon
