#pragma once
// The result board: what the search has found so far, for all to see.

#include "search/thread_data.h"

namespace quon {

// Puts the thread's best line on the result board if it is better than what stands there, and has
// it printed when progress lines are due.
void publish_result(ThreadData& t);

}  // namespace quon
