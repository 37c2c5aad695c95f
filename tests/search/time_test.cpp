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
    EXPECT_EQ(options.target_nps, NO_NPS_LIMIT);             // the cap is off
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

// A search as the check sees it, frozen at iteration 10: 100 seconds allotted of 1000, the result
// stable in score, the best move found at iteration 8.
struct TimeCheck : testing::Test {
    static constexpr Move BEST = make_code(12, 28);
    static constexpr Move OTHER = make_code(11, 27);
    const SearchRig rig{1, 2};

    TimeCheck() { reset(); }

    static void reset() {
        limits.time_mode = WHOLE_GAME;
        limits.clock = {{1000, 1000}};
        limits.increment = 0;
        limits.move_overhead = 2;
        control.go_request = GO_PLAY;
        time_setup();
        run.target_time = 100;
        run.current_depth = i8{10};
        run.shared_depth = i8{10};
        run.change_depth = i8{8};
        run.shared_score = i16{50};
        run.shared_line[1] = BEST;
        for (auto& score : run.score_by_depth) score = i16{50};
        for (int i = 0; i < 2; ++i) set_thread(i, 0, BEST, 0, ROOT_NORMAL);
    }
    static void set_thread(int index, int iteration, Move best, int score, RootState state) {
        ThreadData& t = thread_data(index);
        t.iteration = u8(iteration);
        t.root_line[1] = best;
        t.root_score = i16(score);
        t.root_state = u8(state);
    }
    static u8 flag_at(double seconds) {
        control.stop_flag = RUN;
        run.start_time = monotonic_seconds() - seconds;
        time_check();
        return control.stop_flag;
    }
    // Seconds after which the search is stopped; 100000 if never.
    static double stop_time() {
        double low = 0;
        double high = 100000;
        while (high - low > 0.1) {
            const double middle = high > 2000 ? low + 100 : (low + high) / 2;
            if (flag_at(middle) != RUN) {
                high = middle;
            } else {
                low = middle;
                if (low > 2000) return high;
            }
        }
        return high;
    }
    // With a share of the rest of the clock on top: e = 100 + f * (1000 - e) - 2.
    static double stretched(int percent) { return (98 + percent * 10.0) / (1 + percent / 100.0); }
};

TEST_F(TimeCheck, DoubtStretchesTheTarget) {
    const struct {
        const char* name;
        void (*change)();
        double expected;
    } cases[] = {
        {"no doubt", [] {}, 98},
        {"stable", [] { run.change_depth = i8{6}; }, 83},
        {"stable for three only", [] { run.change_depth = i8{7}; }, 98},
        {"stable, early", [] { run.change_depth = i8{0}; run.current_depth = i8{7}; }, 98},
        {"stable, less early", [] { run.change_depth = i8{4}; run.current_depth = i8{8}; }, 83},
        {"new move", [] { run.change_depth = i8{9}; }, stretched(1)},
        {"new move in this iteration", [] { run.change_depth = i8{10}; }, stretched(1)},
        {"new move, early", [] { run.change_depth = i8{5}; run.current_depth = i8{6}; }, 98},
        {"new move, less early", [] { run.change_depth = i8{6}; run.current_depth = i8{7}; }, stretched(1)},
        // Against 50 the thresholds are 18 and 72.
        {"small drop, not quite", [] { run.shared_score = i16{50 - 18}; }, 98},
        {"small drop", [] { run.shared_score = i16{50 - 19}; }, stretched(4)},
        {"double drop, not quite", [] { run.shared_score = i16{50 - 36}; }, stretched(4)},
        {"double drop", [] { run.shared_score = i16{50 - 37}; }, stretched(8)},
        {"big drop, not quite", [] { run.shared_score = i16{50 - 72}; }, stretched(8)},
        {"big drop", [] { run.shared_score = i16{50 - 73}; }, stretched(20)},
        {"drop from -799", [] { run.score_by_depth[9] = i16{-799}; run.shared_score = i16{-799 - 65}; }, stretched(4)},
        {"drop from -800", [] { run.score_by_depth[9] = i16{-800}; run.shared_score = i16{-800 - 65}; }, 98},
        {"more from -800", [] { run.score_by_depth[9] = i16{-800}; run.shared_score = i16{-800 - 66}; }, stretched(4)},
        {"big from 800", [] { run.score_by_depth[9] = i16{800}; run.shared_score = i16{800 - 261}; }, stretched(20)},
        {"a drop hides stability", [] { run.change_depth = i8{2}; run.shared_score = i16{50 - 19}; }, stretched(4)},
        // What the threads think.
        {"same move fails low", [] { set_thread(0, 10, BEST, 49, FAIL_LOW); }, stretched(20)},
        {"same move, not lower", [] { set_thread(0, 10, BEST, 50, FAIL_LOW); }, 98},
        {"same move, lower, at rest", [] { set_thread(1, 11, BEST, -900, ROOT_NORMAL); }, 98},
        {"same move fails high", [] { set_thread(1, 10, BEST, 900, FAIL_HIGH); }, 98},
        {"thread behind", [] { set_thread(0, 9, BEST, -900, FAIL_LOW); }, 98},
        {"other move fails high", [] { set_thread(1, 10, OTHER, 51, FAIL_HIGH); }, stretched(2)},
        {"other move, not higher", [] { set_thread(1, 10, OTHER, 50, FAIL_HIGH); }, 98},
        {"other move, higher, at rest", [] { set_thread(1, 10, OTHER, 70, ROOT_NORMAL); }, 98},
        {"other move, much higher", [] { set_thread(1, 10, OTHER, 71, ROOT_NORMAL); }, stretched(12)},
        {"other move fails low", [] { set_thread(1, 10, OTHER, 10, FAIL_LOW); }, 98},
        {"the most doubtful thread counts",
         [] { set_thread(0, 10, BEST, 40, FAIL_LOW); set_thread(1, 10, OTHER, 71, FAIL_HIGH); }, stretched(20)},
        {"threads beyond a drop", [] { run.shared_score = i16{50 - 37}; set_thread(1, 10, OTHER, 34, ROOT_NORMAL); }, stretched(12)},
        {"a drop beyond threads", [] { run.shared_score = i16{50 - 37}; set_thread(1, 10, OTHER, 14, FAIL_HIGH); }, stretched(8)},
        // Easy moves.
        {"single move", [] { run.easy_state = u8{1}; }, 0},
        {"clearly best", [] { run.easy_state = u8{2}; }, 50},
        {"clearly best, in doubt", [] { run.easy_state = u8{2}; run.change_depth = i8{9}; }, 50},
        // The clock is nearly gone: less than five overheads left.
        {"short clock", [] { limits.clock = {{60, 5000}}; }, 50},
        {"no clock", [] { limits.clock = {{0, 5000}}; }, 0},
        // Fixed time: no overhead, no reserve, and no doubt counts when the clock is the target.
        {"fixed", [] { limits.time_mode = FIXED; limits.clock = {{100, 100}}; }, 100},
        {"fixed, stable", [] { limits.time_mode = FIXED; run.change_depth = i8{2}; limits.clock = {{100, 100}}; }, 100},
        {"fixed, in doubt", [] { limits.time_mode = FIXED; run.shared_score = i16{-900}; limits.clock = {{100, 100}}; }, 100},
        {"fixed, single move", [] { limits.time_mode = FIXED; run.easy_state = u8{1}; }, 0},
        {"fixed, clearly best", [] { limits.time_mode = FIXED; run.easy_state = u8{2}; }, 50},
        // Never.
        {"pondering", [] { control.search_mode = GO_PONDER; run.easy_state = u8{1}; }, 100000},
        {"first iteration", [] { run.current_depth = i8{1}; run.easy_state = u8{1}; }, 100000},
        {"no result of two plies", [] { run.shared_depth = i8{1}; run.easy_state = u8{1}; }, 100000},
    };
    for (const auto& c : cases) {
        reset();
        c.change();
        EXPECT_NEAR(stop_time(), c.expected, 0.5) << c.name;
    }
}

TEST_F(TimeCheck, FlagAndElapsedTime) {
    run.easy_state = u8{1};
    EXPECT_EQ(flag_at(-5), RUN);  // less than 0.02 seconds
    EXPECT_EQ(flag_at(5), STOP);
    EXPECT_NEAR(run.elapsed, 5, 0.5);
    control.search_mode = GO_ANALYSE;
    EXPECT_EQ(flag_at(5), ABORT);
    // Pondering counts once the opponent has played the expected move.
    reset();
    control.search_mode = GO_PONDER;
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
