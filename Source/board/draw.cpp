// Draw detection over the game record.

#include "board/draw.h"

#include "board/legality.h"

namespace quon {

int is_draw(const Position& p, int count) {
    if (p.fifty < 4) return 0;
    if (p.fifty >= 100 && has_legal_move(p)) return 1;
    const GameRecord& record = *p.owner;
    const int oldest = record.game_ply > p.fifty ? record.game_ply - p.fifty : 0;
    int seen = 1;
    for (int i = record.game_ply - 4; i >= oldest; i -= 2) {
        if (record.undo[i].key == p.key && ++seen >= count) return 2;
    }
    return 0;
}

}  // namespace quon
