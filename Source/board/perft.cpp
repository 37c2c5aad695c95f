// Perft. The last ply is counted without making its moves.

#include "board/perft.h"

#include "board/legality.h"
#include "board/make.h"
#include "board/movegen.h"

namespace quon {

u64 perft(Position& p, int depth) {
    if (depth < 1) return 0;
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
            nodes += perft(p, depth - 1);
            unmake_move(p);
        }
    }
    return nodes;
}

}  // namespace quon
