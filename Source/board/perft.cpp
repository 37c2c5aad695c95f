// Perft. The last ply is counted without making its moves.

#include "board/perft.h"

#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"

namespace quon {

namespace {

constexpr u64 NODES_PER_LOOK = 256;  // nodes of two plies or more

struct Count {
    const std::function<bool()>& keep_on;
    u64 nodes = 0;
    bool ended = false;
};

bool ended(Count& count) {
    if (++count.nodes % NODES_PER_LOOK == 0 && count.keep_on && !count.keep_on()) {
        count.ended = true;
    }
    return count.ended;
}

u64 count_paths(Count& count, Position& p, int depth) {
    if (depth < 1 || (depth > 1 && ended(count))) return 0;
    MoveEntry list[MAX_LIST];
    const MoveEntry* end = gen_all(p, list);
    const KingGuard guard = king_guard(p);
    u64 nodes = 0;
    for (const MoveEntry* entry = list; entry != end; ++entry) {
        if (!is_legal(p, entry->move, guard)) continue;
        if (depth == 1) {
            ++nodes;
        } else {
            make_move(p, entry->move);
            nodes += count_paths(count, p, depth - 1);
            unmake_move(p);
        }
    }
    return nodes;
}

}  // namespace

std::optional<u64> perft(Position& p, int depth, const std::function<bool()>& keep_on) {
    Count count{keep_on};
    const u64 nodes = count_paths(count, p, depth);
    if (count.ended) return std::nullopt;
    return nodes;
}

}  // namespace quon
