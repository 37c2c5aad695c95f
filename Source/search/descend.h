#pragma once
// A step down the tree.

#include "board/make.h"
#include "search/hash.h"
#include "search/searcher.h"

namespace quon {

// Makes a move, NO_MOVE to pass, and has the memory fetch what the node behind it reads first: the
// caches of the evaluation and, if it will be asked, the transposition table. Taking the move back
// is the caller's business.
inline void descend(ThreadData& t, Move move, bool table_asked) {
    if (t.shared->settings.trace != 0) [[unlikely]] {
        trace_move(t, move);
    }
    if (move == NO_MOVE) {
        make_null_move(t.position);
    } else {
        make_move(t.position, move);
    }
    if (table_asked) hash_prefetch(t.shared->hash, t.position);
    prefetch_evaluation(t.eval, t.position);
}

}  // namespace quon
