#pragma once
// The breakdown of the static evaluation.

namespace quon {

struct Engine;

// Prints the evaluation of the game position term by term, or why there is none. A running search
// is stopped and reported first, since one of its threads does the work.
void eval_trace(Engine& engine);

}  // namespace quon
