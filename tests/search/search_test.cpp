// Whole searches: mates, draws, limits, threads, stops; the move picker.

#include <utility>

#include "engine/search_report.h"
#include "harness/search_support.h"
#include "platform/clock.h"
#include "search/history.h"
#include "search/picker.h"
#include "search/search_params.h"

namespace quon::test {
namespace {

constexpr const char* POSITIONS[] = {
    "r1bqkb1r/pp1ppppp/2n2n2/8/3NP3/2N5/PPP2PPP/R1BQKB1R b KQkq -",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "8/4k2p/4p3/2P5/1r2P1K1/6P1/5p1P/5R2 w - -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "8/4q1k1/8/8/8/1P6/P4R2/K7 w - -",
};

constexpr struct {
    const char* fen;
    int moves;  // to checkmate
} MATES[] = {
    {"6k1/5ppp/8/8/8/8/8/R5K1 w - -", 1},
    {"rnbqkbnr/pppp1ppp/8/4p3/6P1/5P2/PPPPP2P/RNBQKBNR b KQkq -", 1},
    {"kbK5/pp6/1P6/8/8/8/8/R7 w - -", 2},
    {"6k1/pp4p1/2p5/2bp4/8/P5Pb/1P3rrP/2BRRN1K b - -", 2},
    {"r5rk/5p1p/5R2/4B3/8/8/7P/7K w - -", 3},
    {"3k4/8/8/3K4/8/8/8/7R w - -", 3},
    {"8/8/8/5K2/1Q6/6k1/8/8 w - -", 5},
};

TEST(Search, Mates) {
    const SearchRig rig(4);
    for (const auto& c : MATES) {
        SCOPED_TRACE(c.fen);
        const SearchResult result = SearchRig::search(c.fen, 14);
        EXPECT_EQ(result.score, 10000 - 2 * c.moves);
        EXPECT_EQ(result.line.size(), std::size_t(2 * c.moves - 1));
        EXPECT_EQ(line_problem(c.fen, result.line, true), "");
        // The same for the side that gets mated, one ply later.
        const auto game_before = make_game(c.fen);
        make_move(game_before->position, result.line.at(0));
        const std::string defended = position_to_fen(game_before->position);
        const SearchResult defence = SearchRig::search(defended, 14);
        EXPECT_EQ(defence.score, c.moves == 1 ? -9999 : 2 * c.moves - 1 - 10000);
        EXPECT_EQ(line_problem(defended, defence.line, true), "");
    }
}

TEST(Search, Draws) {
    constexpr const char* LOST = "3q3k/8/8/8/8/8/8/K7 w - -";
    constexpr const char* SHUFFLE = "a1a2 h8g8 a2a1 g8h8";
    constexpr const char* TWICE = "a1a2 h8g8 a2a1 g8h8 a1a2 h8g8 a2a1 g8h8";
    constexpr const char* WON_LATER = "8/8/8/3k4/8/8/8/K5Q1 w - -";
    const struct {
        const char* fen;
        const char* moves;
        int fifty;  // set by hand unless 0
        int least, most;
        const char* best;  // if it matters
    } cases[] = {
        {"7k/5Q2/6K1/8/8/8/8/8 b - -", "", 0, 0, 0, ""},  // stalemate
        {"R5k1/5ppp/8/8/8/8/8/6K1 b - -", "", 0, -9999, -9999, ""},
        {LOST, SHUFFLE, 0, -9000, -500, ""},  // once before is not enough next to the root
        {LOST, TWICE, 0, 0, 0, "a1a2"},
        {"k7/8/1K6/8/8/8/8/7R w - -", "", 99, 9998, 9998, "h1h8"},  // mate comes before the draw
        {WON_LATER, "", 99, 0, 0, ""},
        {"8/8/8/3k4/8/8/P7/K5Q1 w - -", "", 99, 500, 10000, "a2"},  // a pawn move starts afresh
    };
    const SearchRig rig;
    for (const auto& c : cases) {
        hash_clear(engine.hash);
        set_game(c.fen, c.moves);
        if (c.fifty != 0) game.position.fifty = u8(c.fifty);
        const SearchResult result = SearchRig::search_game(5);
        EXPECT_GE(result.score, c.least) << c.fen << " " << c.moves << c.fifty;
        EXPECT_LE(result.score, c.most) << c.fen << " " << c.moves << c.fifty;
        EXPECT_TRUE(line_text(result.line).starts_with(c.best)) << line_text(result.line);
    }
}

// With and without a table.
TEST(Search, NodeLimit) {
    for (const int megabytes : {0, 1}) {
        const SearchRig rig(megabytes);
        for (const char* const fen : POSITIONS) {
            limits.max_nodes = 0;
            const u64 depth_2 = SearchRig::search(fen, 2).nodes;
            for (const u64 limit : {u64{1}, depth_2 + 100, u64{20000}}) {
                limits.max_nodes = i64(limit);
                const SearchResult result = SearchRig::search(fen, 60);
                // A result of two plies is always awaited; nodes on the way back are few.
                EXPECT_GT(result.nodes, limit) << fen;
                EXPECT_LE(result.nodes, std::max(limit, depth_2) + 16) << fen << " " << limit;
                EXPECT_GE(result.depth, 2);
                EXPECT_EQ(line_problem(fen, result.line), "");
                EXPECT_EQ(copy_problem(thread_data(engine, 0)), "");
            }
        }
    }
}

// Every parameter changes some search, however far it goes.
TEST(Search, SelectivityParameters) {
    using P = EvalParams;
    const struct {
        i16 P::*parameter;
        int value;
    } cases[] = {
        {&P::SingularExtension, 1}, {&P::NMP_depth, -32768}, {&P::LMP_depth, 99},
        {&P::LMP_count, -50},       {&P::FP_depth, 99},      {&P::FP_margin, -200},
        {&P::SEP_depth, 99},        {&P::SEP_margin, -200},  {&P::LMR_depth, -5},
        {&P::LMR_strength, 32767},
    };
    const SearchRig rig;
    const EvalParams standard = params;
    limits.max_nodes = 30000;
    std::vector<u64> before;
    for (const char* const fen : POSITIONS) before.push_back(SearchRig::search(fen, 9).nodes);
    for (const auto& c : cases) {
        params = standard;
        params.*c.parameter = i16(c.value);
        std::vector<u64> nodes;
        for (const char* const fen : POSITIONS) {
            const SearchResult result = SearchRig::search(fen, 9);
            nodes.push_back(result.nodes);
            EXPECT_GE(result.depth, 2) << &c - cases << " " << fen;
            EXPECT_FALSE(result.line.empty());
            EXPECT_EQ(line_problem(fen, result.line), "") << &c - cases << " " << fen;
            EXPECT_EQ(copy_problem(thread_data(engine, 0)), "") << &c - cases << " " << fen;
        }
        EXPECT_NE(nodes, before) << &c - cases;
    }
}

// The whole table of the default strength is compared with what the console prints.
TEST(Search, ReductionsByStrength) {
    const struct {
        int strength, depth, move, zero_window, pv;
    } cases[] = {{-32768, 36, 31, 0, 0}, {25, 3, 2, 1, 0},     {25, 36, 31, 2, 2},
                 {100, 3, 2, 1, 0},      {100, 2, 31, 0, 0},   {100, 36, 31, 4, 2},
                 {32767, 3, 2, 4, 0},    {32767, 36, 31, 4, 2}};
    EvalParams changed = params;
    for (const auto& c : cases) {
        changed.LMR_strength = i16(c.strength);
        apply_search_params(search_params, changed);
        EXPECT_EQ(search_params.zero_window_reductions[c.depth][c.move], c.zero_window)
            << &c - cases;
        EXPECT_EQ(search_params.pv_reductions[c.depth][c.move], c.pv) << &c - cases;
    }
    apply_search_params(search_params, params);
}

// A search that is cut short keeps the last finished result or has one of the iteration under way.
// In lost positions a score made up for the move under way would be better than all of them.
TEST(Search, InterruptedScores) {
    const SearchRig rig;
    Random random(7);
    constexpr int DEPTH = 8;
    for (const char* const fen : {"8/4q1k1/8/8/8/1P6/P4R2/K7 w - -", "3q3k/8/8/8/8/8/8/K7 w - -",
                                  "r3k2r/pppq1ppp/2n2n2/8/8/8/PPP2PPP/R3K2R w KQkq -"}) {
        SearchResult finished[DEPTH + 1];
        limits.max_nodes = 0;
        for (int depth = 2; depth <= DEPTH; ++depth)
            finished[depth] = SearchRig::search(fen, depth);
        const u64 least = finished[2].nodes;
        for (int i = 0; i < scaled(150); ++i) {
            const u64 limit = least + random() % (finished[DEPTH].nodes - least);
            limits.max_nodes = i64(limit);
            const SearchResult result = SearchRig::search(fen, DEPTH);
            int last = 2;
            while (finished[last + 1].nodes <= limit) ++last;
            ASSERT_EQ(line_problem(fen, result.line), "");
            if (result.depth == last) {
                ASSERT_EQ(result.score, finished[last].score) << fen << " " << limit;
                ASSERT_EQ(result.line.at(0), finished[last].line[0]);
            } else {
                ASSERT_EQ(result.depth, last + 1);
                ASSERT_LE(result.score,
                          std::max(finished[last].score, finished[last + 1].score) + 50);
            }
        }
    }
}

// Root moves are told one by one at each depth, and a best move has changed when it last did.
TEST(Search, RootMovesAndChanges) {
    struct Recorder : SearchReporter {
        using SearchReporter::SearchReporter;
        std::vector<int> numbers;
        void on_root_move(Searcher&, int, Move, int number) override { numbers.push_back(number); }
    } recorder(engine);
    const SearchRig rig;
    SearchListener* const usual = std::exchange(engine.listener, &recorder);
    SearchRig::search(POSITIONS[3], 7);
    engine.listener = usual;
    recorder.numbers.resize(14);  // of the first iteration
    for (int i = 0; i < 14; ++i) EXPECT_EQ(recorder.numbers[std::size_t(i)], i + 1);
    int changed = 7;
    while (changed > 1 && run.move_by_depth[changed - 1] == run.move_by_depth[7]) --changed;
    EXPECT_EQ(run.change_depth, changed);
}

TEST(Threads, FindMatesAndLegalLines) {
    for (const int threads : {2, 8}) {
        const SearchRig rig(4, threads);
        for (const auto& c : MATES) {
            if (c.moves > 3) continue;
            const SearchResult result = SearchRig::search(c.fen, 12);
            EXPECT_EQ(result.score, 10000 - 2 * c.moves) << c.fen;
            EXPECT_EQ(line_problem(c.fen, result.line, true), "") << c.fen;
        }
        const int depth = scaled(6) + 2;
        for (const char* const fen : POSITIONS) {
            const SearchResult result = SearchRig::search(fen, depth);
            EXPECT_EQ(result.depth, depth);
            EXPECT_EQ(line_problem(fen, result.line), "");
        }
    }
}

TEST(Threads, StopAtAnyMoment) {
    Random random(11);
    for (const int threads : {2, 8}) {
        const SearchRig rig(1, threads);
        for (int round = 0; round < scaled(30); ++round) {
            const char* const fen = POSITIONS[pick(random, int(std::size(POSITIONS)))];
            set_game(fen);
            SearchRig::start(60);
            sleep_ms(pick(random, 25));
            const double before = monotonic_seconds();
            control.stop_flag = round % 2 ? STOP : ABORT;
            const SearchResult result = SearchRig::result();
            EXPECT_LT(monotonic_seconds() - before, 5);
            EXPECT_TRUE(result.depth == 0 || !result.line.empty());
            EXPECT_EQ(line_problem(fen, result.line), "") << fen;
            for (int i = 0; i < threads; ++i)
                EXPECT_EQ(copy_problem(thread_data(engine, i)), "") << i;
        }
    }
}

TEST(Threads, ComeAndGo) {
    const SearchRig rig(1, 1);
    for (const int count : {3, 1, 9, 2}) {
        destroy_threads(engine);
        EXPECT_EQ(thread_total(engine), 0);
        ASSERT_TRUE(create_threads(engine, count));
        ASSERT_EQ(thread_total(engine), count);
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(thread_data(engine, i).seed, u32(i) * 123);
            EXPECT_EQ(thread_data(engine, i).jitter_range, i < 8 ? 12U : 24U);
        }
        SearchRig::start(count == 1 ? 3 : 60);  // they leave in the middle of a search
    }
}

// No move is lost or comes twice, whatever the killers; the order shows in the node counts.
TEST(Picker, EveryMoveOnce) {
    constexpr int PLY = 3;  // the first with an own previous move
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
