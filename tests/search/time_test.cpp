// Time management: the target of a move, and when the check stops a search.

#include <gtest/gtest.h>

#include "frontend/output.h"
#include "platform/clock.h"
#include "search/control.h"
#include "search/time.h"
#include "support/board_support.h"
#include "support/search_support.h"

namespace quon::test {
namespace {

enum Mode : u8 { WHOLE_GAME = 0, FIXED = 1, LEVEL = 40 };
constexpr bool UCI = true;
constexpr bool CONSOLE = false;

TEST(TimeTarget, Forms) {
    const struct {
        Mode mode;
        bool uci, ponder;
        double clock, increment, overhead;
        int moves_to_go, ply;
        double target;
    } cases[] = {
        {WHOLE_GAME, UCI, true, 60, 0, 0.05, 0, 0, 2.0},
        {WHOLE_GAME, UCI, false, 60, 0, 0.05, 0, 0, 1.5385},
        {WHOLE_GAME, UCI, false, 60, 0, 0.05, 0, 29, 60.0 / 25},  // 38 - 14 moves, and one
        {WHOLE_GAME, UCI, false, 60, 0, 0.05, 0, 40, 2.4},
        {WHOLE_GAME, CONSOLE, false, 60, 0, 0.05, 0, 10, 60.0 / 34},
        {WHOLE_GAME, UCI, true, 1, 2, 0.05, 0, 0, 0.4333},
        {WHOLE_GAME, UCI, true, 1, 20, 0.05, 0, 0, 0.45},  // the cap
        {WHOLE_GAME, UCI, true, 60, -2, 0.05, 0, 0, 2.0},
        {WHOLE_GAME, UCI, true, 0.1, 0, 0.05, 0, 0, 0.002},
        {WHOLE_GAME, UCI, true, 0, 3, 0, 0, 0, 0.002},
        {WHOLE_GAME, UCI, true, -5, 3, 0.05, 0, 0, 0.002},
        {LEVEL, UCI, true, 60, 0, 0.05, 10, 0, 60.0 / 11 * 1.3},
        {LEVEL, UCI, true, 60, 0, 0.05, 3, 0, 60.0 / 4 * 1.3},
        {LEVEL, UCI, true, 60, 0, 0.05, 2, 0, 20},
        {LEVEL, UCI, true, 60, 0, 0.05, 1, 0, 30},
        {LEVEL, UCI, true, 60, 0, 0.05, 0, 0, 38.8},
        {LEVEL, UCI, true, 60, 0, 0.05, -1, 0, 38.8},
        {LEVEL, UCI, true, 60, 0, 0.05, -2, 0, 0.002},
        {LEVEL, CONSOLE, false, 60, 0, 0.05, 99, 0, 60.0 / 41},
        {LEVEL, CONSOLE, false, 60, 0, 0.05, 99, 11, 60.0 / 36},
        {LEVEL, CONSOLE, true, 60, 0, 0.05, 99, 78, 30},
        {LEVEL, CONSOLE, true, 60, 0, 0.05, 99, 80, 60.0 / 41 * 1.3},
        {FIXED, UCI, true, 60, 5, 0.05, 0, 0, 7},
    };
    const SearchRig rig;
    limits.fixed_time = 7;
    for (const auto& c : cases) {
        for (const char* const fen : {"4k3/8/8/8/8/8/8/4K2R w - -", "4k3/8/8/8/8/8/8/4K2R b - -"}) {
            set_game(fen);
            const int mover = game.position.side;
            game.game_ply = i16(c.ply);
            options.uci_mode = c.uci;
            options.ponder_option = c.ponder;
            limits.time_mode = c.mode;
            limits.clock = {{777, 777}};
            limits.clock[mover] = c.clock;
            limits.increment = c.increment;
            limits.move_overhead = c.overhead;
            limits.moves_to_go = i16(c.moves_to_go);
            time_setup();
            EXPECT_NEAR(run.target_time, c.target, 0.0001) << "case " << &c - cases << " " << fen;
            EXPECT_EQ(limits.clock[mover], c.mode == FIXED ? 7 : c.clock);
            EXPECT_EQ(limits.clock[mover ^ 1], 777);
        }
    }
}

TEST(TimeTarget, Report) {
    const SearchRig rig;
    limits.time_mode = WHOLE_GAME;
    limits.clock = {{60, 30}};
    options.uci_mode = false;
    EXPECT_EQ(captured_output(time_setup), "");
    options.output_delay = 1.0;
    EXPECT_EQ(captured_output(time_setup),
              "fen rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -\n"
              "Ply= 0, Clock= 60.00s  Target time= 2.00s\n");
    options.uci_mode = true;
    EXPECT_EQ(captured_output(time_setup), "");
}

TEST(TimeTarget, StartsAFreshRun) {
    const SearchRig rig;
    options.target_nps = 500.0;
    SearchRig::search("6k1/5ppp/8/8/8/8/8/R5K1 w - -", 4);  // a mate in one
    EXPECT_EQ(options.target_nps, NO_NPS_LIMIT);            // the cap is off
    params.limit_strength = 1;
    options.target_nps = 500.0;
    control.go_request = GO_ANALYSE;
    time_setup();
    EXPECT_EQ(options.target_nps, 500);
    EXPECT_EQ(control.stop_flag, RUN);
    EXPECT_EQ(control.search_mode, GO_ANALYSE);
    EXPECT_EQ(run.shared_score, -10000);
    EXPECT_EQ(run.shared_depth + run.change_depth + run.main_done_depth + run.current_depth, 0);
    EXPECT_EQ(run.shared_line[1], NO_MOVE);
    EXPECT_EQ(run.score_by_depth[1], -10000);
    EXPECT_EQ(run.move_by_depth[1], NO_MOVE);
    EXPECT_EQ(run.nodes_by_depth[1], 0U);
}

constexpr Move BEST = make_code(12, 28);
constexpr Move OTHER = make_code(11, 27);

// What a thread thinks of its best move, at which iteration.
struct Opinion {
    int iteration = 0;
    Move move = BEST;
    int score = 0;
    RootState state = ROOT_NORMAL;
};

// A search as the check sees it, frozen: 100 seconds allotted, the score stable, the best move
// found two iterations ago.
struct Scene {
    int depth = 10, change = 8, result = 10;
    int score = 50, before = 50;
    Opinion first = {}, second = {};
    int easy = 0;
    double clock = 1000;
    Mode mode = WHOLE_GAME;
    GoRequest search = GO_PLAY;
};

struct TimeCheck : testing::Test {
    const SearchRig rig{1, 2};

    static void set(const Scene& scene) {
        limits.time_mode = scene.mode;
        limits.clock = {{scene.clock, 5000}};
        limits.move_overhead = 2;
        control.search_mode = scene.search;
        run.root_side = WHITE;
        run.target_time = 100;
        run.current_depth = i8(scene.depth);
        run.change_depth = i8(scene.change);
        run.shared_depth = i8(scene.result);
        run.shared_score = i16(scene.score);
        run.shared_line[1] = BEST;
        run.score_by_depth[scene.depth - 1] = i16(scene.before);
        run.easy_state = u8(scene.easy);
        set_thread(0, scene.first);
        set_thread(1, scene.second);
    }
    static void set_thread(int index, const Opinion& opinion) {
        ThreadData& t = thread_data(index);
        t.iteration = u8(opinion.iteration);
        t.root_line[1] = opinion.move;
        t.root_score = i16(opinion.score);
        t.root_state = u8(opinion.state);
    }
    static u8 flag_at(double seconds) {
        control.stop_flag = RUN;
        run.start_time = monotonic_seconds() - seconds;
        time_check();
        return control.stop_flag;
    }
    // Seconds after which the search is stopped.
    static double stop_time() {
        double low = 0;
        double high = NEVER;
        if (flag_at(high) == RUN) return NEVER;
        while (high - low > 0.1) {
            const double middle = (low + high) / 2;
            (flag_at(middle) == RUN ? low : high) = middle;
        }
        return high;
    }
};

// With a share of the rest of the clock on top: e = 100 + f * (1000 - e) - 2.
constexpr double stretched(int percent) { return (98 + percent * 10.0) / (1 + percent / 100.0); }

TEST_F(TimeCheck, DoubtStretchesTheTarget) {
    const struct {
        const char* name;
        double expected;
        Scene scene;
    } cases[] = {
        {"no doubt", 98, {}},
        {"stable", 83, {.change = 6}},
        {"stable for three only", 98, {.change = 7}},
        {"stable at 7", 98, {.depth = 7, .change = 0}},
        {"stable at 8", 83, {.depth = 8, .change = 4}},
        {"new move", stretched(1), {.change = 9}},
        {"new move just now", stretched(1), {.change = 10}},
        {"new move at 6", 98, {.depth = 6, .change = 5}},
        {"new move at 7", stretched(1), {.depth = 7, .change = 6}},
        // Against 50 the thresholds are 18 and 72.
        {"no drop", 98, {.score = 50 - 18}},
        {"small drop", stretched(4), {.score = 50 - 19}},
        {"not yet double", stretched(4), {.score = 50 - 36}},
        {"double drop", stretched(8), {.score = 50 - 37}},
        {"not yet big", stretched(8), {.score = 50 - 72}},
        {"big drop", stretched(20), {.score = 50 - 73}},
        {"drop from -799", stretched(4), {.score = -799 - 65, .before = -799}},
        {"no drop from -800", 98, {.score = -800 - 65, .before = -800}},
        {"drop from -800", stretched(4), {.score = -800 - 66, .before = -800}},
        {"big drop from 800", stretched(20), {.score = 800 - 261, .before = 800}},
        {"stable but for a drop", stretched(4), {.change = 2, .score = 50 - 19}},
        // What the threads think.
        {"same, fails low", stretched(20), {.first = {10, BEST, 49, FAIL_LOW}}},
        {"same, not lower", 98, {.first = {10, BEST, 50, FAIL_LOW}}},
        {"same, lower, at rest", 98, {.second = {11, BEST, -900}}},
        {"same, fails high", 98, {.second = {10, BEST, 900, FAIL_HIGH}}},
        {"same, behind", 98, {.first = {9, BEST, -900, FAIL_LOW}}},
        {"other, fails high", stretched(2), {.second = {10, OTHER, 51, FAIL_HIGH}}},
        {"other, not higher", 98, {.second = {10, OTHER, 50, FAIL_HIGH}}},
        {"other, higher, at rest", 98, {.second = {10, OTHER, 70}}},
        {"other, much higher", stretched(12), {.second = {10, OTHER, 71}}},
        {"other, fails low", 98, {.second = {10, OTHER, 10, FAIL_LOW}}},
        {"both", stretched(20), {.first = {10, BEST, 4, FAIL_LOW}, .second = {10, OTHER, 71}}},
        {"more than a drop", stretched(12), {.score = 13, .second = {10, OTHER, 34}}},
        {"less than a drop", stretched(8), {.score = 13, .second = {10, OTHER, 14, FAIL_HIGH}}},
        // Easy moves.
        {"single move", 0, {.easy = 1}},
        {"clearly best", 50, {.easy = 2}},
        {"clearly best, in doubt", 50, {.change = 9, .easy = 2}},
        // Less than five overheads left.
        {"short clock", 50, {.clock = 60}},
        {"no clock", 0, {.clock = 0}},
        // Fixed time: no overhead and no reserve; the clock is the target, so doubt has no effect.
        {"fixed", 100, {.clock = 100, .mode = FIXED}},
        {"fixed, stable", 100, {.change = 2, .clock = 100, .mode = FIXED}},
        {"fixed, in doubt", 100, {.score = -900, .clock = 100, .mode = FIXED}},
        {"fixed, single move", 0, {.easy = 1, .mode = FIXED}},
        {"fixed, clearly best", 50, {.easy = 2, .mode = FIXED}},
        {"pondering", NEVER, {.easy = 1, .search = GO_PONDER}},
        {"first iteration", NEVER, {.depth = 1, .easy = 1}},
        {"no result of two plies", NEVER, {.result = 1, .easy = 1}},
    };
    for (const auto& c : cases) {
        set(c.scene);
        EXPECT_NEAR(stop_time(), c.expected, 0.5) << c.name;
    }
}

TEST_F(TimeCheck, FlagAndElapsedTime) {
    set({.easy = 1});
    EXPECT_EQ(flag_at(-5), RUN);  // less than 0.02 seconds
    EXPECT_EQ(flag_at(5), STOP);
    EXPECT_NEAR(run.elapsed, 5, 0.5);
    control.search_mode = GO_ANALYSE;
    EXPECT_EQ(flag_at(5), ABORT);
    // Pondering counts once the opponent has played the expected move.
    set({.search = GO_PONDER});
    EXPECT_EQ(flag_at(500), RUN);
    EXPECT_NEAR(run.elapsed, 500, 0.5);
    control.search_mode = GO_PLAY;
    EXPECT_EQ(flag_at(500), STOP);
    // A flag that is up stays what it is.
    control.stop_flag = ABORT;
    time_check();
    EXPECT_EQ(control.stop_flag, ABORT);
}

}  // namespace
}  // namespace quon::test
