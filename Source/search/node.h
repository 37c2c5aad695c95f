#pragma once
// A node of the search tree below the root, as its steps see it.

#include "search/hash.h"
#include "search/thread_data.h"

namespace quon {

struct Node {
    ThreadData& t;
    PlyRecord& record;
    int ply;
    int depth;
    int alpha;
    int beta;
    bool zero_window;
    bool in_check;
    int eval = 0;
    HashEntry tt{};
    bool tt_fail_low = false;   // the table predicts a score of at most alpha
    bool tt_fail_high = false;  // the table predicts a score of at least beta

    [[nodiscard]] const Position& position() const { return t.position; }
    [[nodiscard]] int own_npm() const { return position().npm[position().side]; }
    [[nodiscard]] int enemy_npm() const { return position().npm[position().side ^ 1]; }
    // Depth behind the table's move, 0 without one.
    [[nodiscard]] int tt_move_depth() const {
        return tt.hit() && tt.move != NO_MOVE ? tt.depth : 0;
    }
};

// The node's move loop, to a depth and within a window that may differ from the node's own;
// fail-soft.
int search_moves(const Node& node, int depth, int alpha, int beta);

}  // namespace quon
