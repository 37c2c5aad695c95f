// The move picker: no move is lost or comes twice. The order itself shows in the node counts of
// whole searches.

#include <gtest/gtest.h>

#include <algorithm>

#include "board/fen.h"
#include "board/move_text.h"
#include "board/movegen.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "search/history.h"
#include "search/picker.h"

namespace quon::test {
namespace {

constexpr int PLY = 3;  // the first with an own previous move

// The killers are moves of the position or arbitrary ones.
TEST(Picker, EveryMoveOnce) {
    Random random(5);
    const auto t = std::make_unique<ThreadData>();
    visit_random_positions(scaled(4000), 8, [&](Game& game) {
        copy_game(*t, game);
        reset_ordering(*t);
        MoveEntry list[MAX_LIST];
        const int count = int(gen_all(t->position, list) - list);
        const auto some_move = [&] {
            const bool own = pick(random, 4) != 0 && count != 0;
            const Move move = own ? list[pick(random, count)].move : Move(random());
            return move == LIST_END ? NO_MOVE : move;
        };
        PlyRecord& record = t->plies[PLY];
        record.list_start = t->move_buffer.begin();
        record.stage = PickStage::START;
        record.move_count = 0;
        record.hash_move = some_move();
        record.killer1 = record.killer2 = record.killer_null = some_move();
        record.killer_evasion = some_move();
        t->plies[PLY - 2].next_pick = &NULL_ENTRY;

        std::vector<Move> moves;
        while (const MoveEntry* entry = next_move(*t, PLY, in_check(t->position))) {
            ASSERT_EQ(record.next_pick, entry);
            ASSERT_EQ(entry->piece, t->position.board[move_from(entry->move)]);
            ASSERT_EQ(entry->captured, t->position.board[move_to(entry->move)]);
            moves.push_back(entry->move);
            ++record.move_count;
        }
        std::vector<Move> expected;  // the hash move comes first, and again in its turn
        for (int i = 0; i < count; ++i) {
            expected.push_back(list[i].move);
            if (list[i].move != record.hash_move) continue;
            expected.push_back(list[i].move);
            ASSERT_EQ(moves.at(0), record.hash_move) << position_to_fen(t->position);
        }
        std::sort(moves.begin(), moves.end());
        std::sort(expected.begin(), expected.end());
        ASSERT_EQ(moves, expected) << position_to_fen(t->position);
    });
}

}  // namespace
}  // namespace quon::test
