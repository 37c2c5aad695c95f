// The move picker against a plain re-computation of its order.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "board/fen.h"
#include "board/legality.h"
#include "board/move_text.h"
#include "board/movegen.h"
#include "board/see.h"
#include "search/history.h"
#include "search/picker.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

constexpr int PLY = 3;  // the first with an own previous move

constexpr int COARSE[] = {0, 1, 3, 3, 5, 10, 0};
constexpr int VICTIM[] = {200, 210, 220, 220, 230, 240, 250};

// Makes the game the thread's, at a node three plies deep with nothing learned.
void set_thread(ThreadData& t, const Game& game) {
    copy_game(t, game);
    reset_ordering(t);
    t.plies[PLY].list_start = t.move_buffer.begin();
    t.plies[1].list_start = t.move_buffer.begin();
    t.plies[PLY - 2].next_pick = &NULL_ENTRY;
}

std::unique_ptr<ThreadData> make_thread(const Game& game) {
    auto t = std::make_unique<ThreadData>();
    set_thread(*t, game);
    return t;
}

int exchange_order(const MoveEntry& entry) {
    return VICTIM[type_of(entry.captured)] - type_of(entry.piece);
}

int capture_stage_order(const Position& p, const MoveEntry& entry) {
    const int victim = type_of(entry.captured);
    const bool losing = victim != 0 && COARSE[type_of(entry.piece)] > COARSE[victim] &&
                        see(p, p.side, move_from(entry.move), move_to(entry.move)) < -74;
    if (losing) return victim + 4;
    const int promotion = promotion_type(entry.move);
    return promotion != NO_TYPE && promotion != QUEEN ? 15 : exchange_order(entry);
}

// The bonuses of the table, first match first, over the moves they belong to.
int quiet_stage_order(const ThreadData& t, const MoveEntry& entry, bool checked) {
    const PlyRecord& record = t.plies[PLY];
    const MoveEntry& previous = *t.plies[PLY - 2].next_pick;
    Move counter1 = NO_MOVE;
    Move counter2 = NO_MOVE;
    if (t.last_move != NO_MOVE) {
        const int to = move_to(t.last_move);
        counter1 = t.counter1[t.position.board[to]][to];
        counter2 = t.counter2[t.position.board[to]][to];
    }
    const Move followup =
        previous.move != NO_MOVE ? t.followup[previous.piece][move_to(previous.move)] : NO_MOVE;
    using Bonuses = std::vector<std::pair<Move, int>>;
    const Bonuses bonuses =
        checked ? Bonuses{{record.killer_evasion, 90}, {counter1, 70}, {counter2, 60}}
                : Bonuses{{record.killer_null, 50}, {record.killer1, 48}, {record.killer2, 46},
                          {counter1, 44},           {counter2, 42},       {followup, 32}};
    const int base = checked ? 0 : t.history[entry.piece][move_to(entry.move)] / 128;
    for (const auto& [move, bonus] : bonuses) {
        if (move == entry.move) return base + bonus;
    }
    return base;
}

bool weaker(const MoveEntry& a, const MoveEntry& b) { return a.order < b.order; }

// Every move in the order in which a node that searches them all should get them.
std::vector<Move> expected_moves(const ThreadData& t, bool checked) {
    const Position& p = t.position;
    const Move hash_move = t.plies[PLY].hash_move;
    std::vector<Move> moves;
    if (hash_move != NO_MOVE && is_pseudo_legal(p, hash_move)) moves.push_back(hash_move);

    std::vector<MoveEntry> list(2 * MAX_LIST);
    MoveEntry* const captures_end = gen_promotions(p, true, gen_captures(p, list.data()));
    for (MoveEntry* entry = list.data(); entry != captures_end; ++entry) {
        entry->order = i16(capture_stage_order(p, *entry));
    }
    auto at = list.begin();
    auto end = list.begin() + (captures_end - list.data());
    for (; at != end; ++at) {
        std::iter_swap(at, std::max_element(at, end, weaker));
        if (at->order <= 150) break;
        moves.push_back(at->move);
    }
    MoveEntry* const quiets_end = gen_quiets(p, captures_end);
    for (MoveEntry* entry = captures_end; entry != quiets_end; ++entry) {
        entry->order = i16(quiet_stage_order(t, *entry, checked));
    }
    end += quiets_end - captures_end;
    for (bool sorting = true; at != end; ++at) {
        if (sorting) std::iter_swap(at, std::max_element(at, end, weaker));
        if (at->order <= 3 || moves.size() >= 16) sorting = false;
        moves.push_back(at->move);
    }
    return moves;
}

std::vector<Move> picked_moves(ThreadData& t, bool checked) {
    PlyRecord& record = t.plies[PLY];
    record.stage = 0;
    record.move_count = 0;
    std::vector<Move> moves;
    while (const MoveEntry* entry = next_move(t, PLY, checked)) {
        EXPECT_EQ(record.next_pick, entry);
        EXPECT_EQ(entry->piece, t.position.board[move_from(entry->move)]);
        EXPECT_EQ(entry->captured, t.position.board[move_to(entry->move)]);
        moves.push_back(entry->move);
        ++record.move_count;
    }
    return moves;
}

// Fills the tables with values that matter for the position: its own moves more often than not.
void randomize(ThreadData& t, Random& random, MoveEntry& previous) {
    MoveEntry list[MAX_LIST];
    const int count = int(gen_all(t.position, list) - list);
    const auto some_move = [&] {
        const int kind = pick(random, 8);
        if (kind == 0 || count == 0) return NO_MOVE;
        return kind == 1 ? Move(random()) : list[pick(random, count)].move;
    };
    const int highest = pick(random, 3) == 0 ? 900 : 8193;  // at times most orders are 3 or less
    for (auto& squares : t.history) {
        for (i16& value : squares) value = i16(pick(random, highest));
    }
    PlyRecord& record = t.plies[PLY];
    for (Move* move : {&record.hash_move, &record.killer_null, &record.killer1, &record.killer2,
                       &record.killer_evasion}) {
        *move = some_move();
        if (*move == LIST_END) *move = NO_MOVE;
    }
    const int to = move_to(t.last_move);
    t.counter1[t.position.board[to]][to] = some_move();
    t.counter2[t.position.board[to]][to] = some_move();
    previous = {make_code(pick(random, 64), pick(random, 64)), 0, u8(t.position.side * 8 + KNIGHT),
                0};
    if (pick(random, 4) == 0) previous.move = NO_MOVE;
    t.followup[previous.piece][move_to(previous.move)] = some_move();
    t.plies[PLY - 2].next_pick = &previous;
}

TEST(Picker, EveryMoveOnceInOrder) {
    Random random(5);
    int in_checks = 0;
    const auto t = std::make_unique<ThreadData>();
    visit_random_positions(scaled(4000), 8, [&](Game& game) {
        set_thread(*t, game);
        MoveEntry previous{};
        randomize(*t, random, previous);
        const bool checked = in_check(t->position);
        in_checks += checked;
        const std::vector<Move> moves = picked_moves(*t, checked);
        ASSERT_EQ(moves, expected_moves(*t, checked)) << position_to_fen(t->position);

        std::map<Move, int> times;
        for (const Move move : moves) ++times[move];
        MoveEntry list[MAX_LIST];
        const MoveEntry* const end = gen_all(t->position, list);
        ASSERT_EQ(times.size(), std::size_t(end - list));
        for (const MoveEntry* entry = list; entry != end; ++entry) {
            const bool hash_move = entry->move == t->plies[PLY].hash_move;
            ASSERT_EQ(times[entry->move], hash_move ? 2 : 1) << move_to_text(entry->move);
            ASSERT_TRUE(!hash_move || moves[0] == entry->move);
        }
    });
    EXPECT_GT(in_checks, scaled(4000) / 100);
}

TEST(Picker, Orders) {
    const struct {
        const char* fen;
        const char* move;
        int order;
    } cases[] = {
        // A queen that takes a defended pawn or rook, and one that takes them for nothing.
        {"4k3/8/2p5/3p4/8/8/8/3QK3 w - -", "d1d5", 5},
        {"4k3/8/2p5/3r4/8/8/8/3QK3 w - -", "d1d5", 8},
        {"4k3/8/8/3p4/8/8/8/3QK3 w - -", "d1d5", 205},
        {"4k3/8/2p5/3n4/8/4N3/8/4K3 w - -", "e3d5", 218},  // an even exchange
        {"4k3/8/8/3q4/4P3/8/8/4K3 w - -", "e4d5", 239},
        {"8/2P5/8/8/8/k7/8/4K3 w - -", "c7c8q", 199},
        {"8/2P5/8/8/8/k7/8/4K3 w - -", "c7c8n", 15},
        {"1r6/2P5/8/8/8/k7/8/4K3 w - -", "c7b8q", 229},
        {"1r6/2P5/8/8/8/k7/8/4K3 w - -", "c7b8r", 15},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - d6", "e5d6", 199},  // en passant
        {"4k3/8/8/8/8/8/8/4K2R w K -", "e1g1", 16},      // 2048 / 128
    };
    for (const auto& c : cases) {
        const auto t = make_thread(*make_game(c.fen));
        int order = -1;
        t->plies[PLY].stage = 0;
        while (const MoveEntry* entry = next_move(*t, PLY, false)) {
            if (entry->move == parse_coordinates(t->position, c.move)) order = entry->order;
        }
        EXPECT_EQ(order, c.order) << c.fen << " " << c.move;
    }
}

TEST(Picker, RootScores) {
    Random random(6);
    const auto t = std::make_unique<ThreadData>();
    visit_random_positions(scaled(1000), 9, [&](Game& game) {
        set_thread(*t, game);
        MoveEntry list[MAX_LIST];
        MoveEntry* const end = gen_all(t->position, list);
        if (end == list) return;
        PlyRecord& record = t->plies[1];
        for (Move* move :
             {&record.hash_move, &record.killer_null, &record.killer1, &record.killer2}) {
            *move = list[pick(random, int(end - list))].move;
        }
        for (auto& squares : t->history) {
            for (i16& value : squares) value = i16(pick(random, 8193));
        }
        score_moves(*t, list);
        for (const MoveEntry* entry = list; entry != end; ++entry) {
            const Move move = entry->move;
            const bool killer =
                move == record.killer_null || move == record.killer1 || move == record.killer2;
            const int quiet = t->history[entry->piece][move_to(move)] / 128 + (killer ? 40 : 0);
            const bool forcing = entry->captured != 0 || promotion_type(move) == QUEEN;
            const int expected = move == record.hash_move ? 255
                                 : forcing                ? exchange_order(*entry)
                                                          : quiet;
            ASSERT_EQ(entry->order, expected) << move_to_text(move);
        }
    });
}

// What a cut-off by a quiet move leaves behind, and what each search of one does to its history.
TEST(History, Updates) {
    const auto game = make_game("4k3/8/8/8/8/8/4R3/4K3 w - -");
    Random random(1);
    play_random(*game, random, 2);
    const auto t = make_thread(*game);
    const MoveEntry entry{make_code(4, 12), 0, u8(make_piece(WHITE, KING)), 0};
    const struct {
        int before;
        bool beat_alpha;
        int depth, after;
    } cases[] = {
        {2048, false, 5, 2032}, {2048, true, 1, 2144},  {2048, true, 2, 2240},
        {2048, true, -1, 2144}, {127, false, 1, 127},   {8192, true, 9, 8192},
        {8129, true, 9, 8129},  {8191, false, 0, 8128}, {0, true, 1, 128},
        {50, true, 2, 304},  // 2 * (8142 / 64)
    };
    for (const auto& c : cases) {
        i16& value = t->history[entry.piece][12];
        value = i16(c.before);
        update_history(*t, entry, c.beat_alpha, c.depth);
        EXPECT_EQ(value, c.after) << c.before << " " << c.depth;
    }

    const Move first = make_code(1, 2);
    const Move second = make_code(3, 4);
    const MoveEntry previous{make_code(20, 30), 0, u8(make_piece(WHITE, ROOK)), 0};
    t->plies[PLY - 2].next_pick = &previous;
    const PlyRecord& record = t->plies[PLY];
    const int to = move_to(t->last_move);
    const int piece = t->position.board[to];
    for (const Move move : {first, second, second}) update_killers(*t, PLY, move, false);
    EXPECT_EQ(record.killer1, second);
    EXPECT_EQ(record.killer2, first);
    EXPECT_EQ(t->counter1[piece][to], second);
    EXPECT_EQ(t->counter2[piece][to], first);
    EXPECT_EQ(t->followup[previous.piece][30], second);
    update_killers(*t, PLY, first, true);  // in check: the evasion and the counters, no follow-up
    EXPECT_EQ(record.killer_evasion, first);
    EXPECT_EQ(record.killer1, second);
    EXPECT_EQ(t->counter1[piece][to], first);
    EXPECT_EQ(t->followup[previous.piece][30], second);
    t->last_move = NO_MOVE;  // after a null move
    update_killers(*t, PLY, first, false);
    EXPECT_EQ(record.killer_null, first);
    EXPECT_EQ(record.killer1, second);
    EXPECT_EQ(t->followup[previous.piece][30], first);
}

}  // namespace
}  // namespace quon::test
