#pragma once
// The result board: what the search has found so far, for all to see.

#include "search/listener.h"
#include "search/thread_data.h"

namespace quon {

// Tells whoever listens.
void tell_line(const ThreadData& t, const SearchLine& line);

// Puts the thread's best line on the result board if it is better than what stands there, and tells
// it.
void publish_result(ThreadData& t);

}  // namespace quon
