// Time management: the target of a move, and when the check stops a search.

#include "search/time.h"
#include "harness/search_support.h"
#include "platform/clock.h"

namespace quon::test {
namespace {

enum Mode : u8 { GAME = 0, FIXED = 1, LEVEL = 40 };

TEST(TimeTarget, Forms) {
    const struct {
        Mode mode;
        int uci, ponder;
        double clock, increment;
        int moves_to_go, ply;
        double target;
    } cases[] = {{GAME, 1, 1, 60, 0, 0, 0, 2.0},        {GAME, 1, 0, 60, 0, 0, 0, 1.5385},
                 {GAME, 1, 0, 60, 0, 0, 29, 2.4},       {GAME, 1, 0, 60, 0, 0, 40, 2.4},
                 {GAME, 1, 1, 1, 2, 0, 0, 0.4333},      {GAME, 1, 1, 1, 20, 0, 0, 0.45},
                 {GAME, 1, 1, 60, -2, 0, 0, 2.0},       {GAME, 1, 1, -5, 3, 0, 0, 0.002},
                 {LEVEL, 1, 1, 60, 0, 3, 0, 19.5},      {LEVEL, 1, 1, 60, 0, 2, 0, 20},
                 {LEVEL, 1, 1, 60, 0, -1, 0, 38.8},     {LEVEL, 1, 1, 60, 0, -2, 0, 0.002},
                 {LEVEL, 0, 0, 60, 0, 99, 11, 1.66667}, {LEVEL, 0, 1, 60, 0, 99, 78, 30},
                 {LEVEL, 0, 1, 60, 0, 99, 80, 1.90244}, {FIXED, 1, 1, 60, 5, 0, 0, 7}};
    const SearchRig rig;
    limits.fixed_time = 7;
    limits.move_overhead = 0.05;
    for (const auto& c : cases) {
        for (const char* const fen : {"4k3/8/8/8/8/8/8/4K2R w - -", "4k3/8/8/8/8/8/8/4K2R b - -"}) {
            set_game(fen);
            const int mover = game.position.side;
            game.game_ply = i16(c.ply);
            options.uci_mode = c.uci != 0;
            settings.ponder_option = c.ponder != 0;
            limits.time_mode = c.mode;
            limits.clock = {{777, 777}};
            limits.clock[mover] = c.clock;
            limits.increment = c.increment;
            limits.moves_to_go = i16(c.moves_to_go);
            begin_search(engine);
            EXPECT_NEAR(run.target_time, c.target, 0.0001) << "case " << &c - cases << " " << fen;
            EXPECT_EQ(limits.clock[mover], c.mode == FIXED ? 7 : c.clock);
        }
    }
}

TEST(TimeTarget, StartsAFreshRun) {
    const SearchRig rig;
    SearchRig::search("6k1/5ppp/8/8/8/8/8/R5K1 w - -", 4);  // a mate in one
    options.uci_mode = false;
    options.output_delay = 1.0;
    settings.target_nps = 500.0;
    control.go_request = GO_ANALYSE;
    limits.time_mode = GAME;
    limits.clock = {{60, 30}};
    EXPECT_EQ(captured_output([] { begin_search(engine); }),
              "fen 6k1/5ppp/8/8/8/8/8/R5K1 w - -\nPly= 0, Clock= 60.00s  Target time= 2.00s\n");
    EXPECT_EQ(settings.target_nps, NO_NPS_LIMIT);  // the limit is switched off
    EXPECT_EQ(control.stop_flag, RUN);
    EXPECT_EQ(control.search_mode, GO_ANALYSE);
    EXPECT_EQ(run.shared_score, -10000);
    EXPECT_EQ(run.shared_depth + run.change_depth + run.main_done_depth + run.current_depth, 0);
    EXPECT_EQ(run.shared_line[1] + run.move_by_depth[1] + run.nodes_by_depth[1], 0U);
}

constexpr Move BEST = make_code(12, 28);
constexpr Move OTHER = make_code(11, 27);

// A search as the check sees it, frozen: 100 seconds allotted, the score stable, the best move
// found two iterations ago.
struct Scene {
    int depth = 10, change = 8, score = 50, before = 50;
    // What the second thread thinks of its best move, at which iteration.
    int iteration = 0;
    Move move = BEST;
    int opinion = 0;
    RootState state = ROOT_NORMAL;

    int easy = 0, result = 10;
    double clock = 1000;
    Mode mode = GAME;
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
        ThreadData& t = thread_data(engine, 1);
        t.iteration = u8(scene.iteration);
        t.root_line[1] = scene.move;
        t.root_score = i16(scene.opinion);
        t.root_state = u8(scene.state);
    }
    static u8 flag_at(double seconds) {
        control.stop_flag = RUN;
        run.start_time = monotonic_seconds() - seconds;
        time_check(engine);
        return control.stop_flag;
    }
    // Seconds after which the search is stopped.
    static double stop_time(double precision = 0.1) {
        double low = 0;
        double high = NEVER;
        if (flag_at(high) == RUN) return NEVER;
        while (high - low > precision) {
            const double middle = (low + high) / 2;
            (flag_at(middle) == RUN ? low : high) = middle;
        }
        return high;
    }
};

// Doubt in percent of the rest of the clock, on top: e = 100 + f * (1000 - e) - 2.
constexpr double target(int percent) { return (98 + percent * 10.0) / (1 + percent / 100.0); }
constexpr double SURE = 83;

TEST_F(TimeCheck, Scores) {
    const struct {
        int depth, change, score, before;
        double expected;
    } cases[] = {{10, 6, 50, 50, SURE},          {10, 7, 50, 50, target(0)},
                 {7, 0, 50, 50, target(0)},      {8, 4, 50, 50, SURE},
                 {10, 9, 50, 50, target(1)},     {7, 6, 50, 50, target(1)},
                 {6, 5, 50, 50, target(0)},      {10, 8, 32, 50, target(0)},
                 {10, 8, 31, 50, target(4)},     {10, 8, 14, 50, target(4)},
                 {10, 8, 13, 50, target(8)},     {10, 8, -22, 50, target(8)},
                 {10, 8, -23, 50, target(20)},   {10, 8, -864, -799, target(4)},
                 {10, 8, -865, -800, target(0)}, {10, 2, -866, -800, target(4)},
                 {10, 8, 539, 800, target(20)}};
    for (const auto& c : cases) {
        set({c.depth, c.change, c.score, c.before});
        EXPECT_NEAR(stop_time(), c.expected, 0.5) << "case " << &c - cases;
    }
}

TEST_F(TimeCheck, OtherThreads) {
    const struct {
        int score, iteration;
        Move move;
        int opinion;
        RootState state;
        int doubt;
    } cases[] = {{50, 10, BEST, 49, FAIL_LOW, 20},     {50, 10, BEST, 50, FAIL_LOW, 0},
                 {50, 10, BEST, -9, ROOT_NORMAL, 0},   {50, 10, BEST, 900, FAIL_HIGH, 0},
                 {50, 9, BEST, -900, FAIL_LOW, 0},     {50, 10, OTHER, 51, FAIL_HIGH, 2},
                 {50, 10, OTHER, 50, FAIL_HIGH, 0},    {50, 10, OTHER, 70, ROOT_NORMAL, 0},
                 {50, 10, OTHER, 71, ROOT_NORMAL, 12}, {50, 10, OTHER, 10, FAIL_LOW, 0},
                 {13, 10, OTHER, 34, ROOT_NORMAL, 12}, {13, 10, OTHER, 14, FAIL_HIGH, 8}};
    for (const auto& c : cases) {
        set({10, 8, c.score, 50, c.iteration, c.move, c.opinion, c.state});
        EXPECT_NEAR(stop_time(), target(c.doubt), 0.5) << "case " << &c - cases;
    }
}

TEST_F(TimeCheck, EasyMovesAndClocks) {
    const std::pair<double, Scene> cases[] = {
        {50, {.change = 9, .easy = 2}},
        {50, {.clock = 60}},  // less than five overheads left
        {0, {.clock = 0}},
        // Fixed time: no overhead and no reserve; the clock is the target, so doubt has no effect.
        {100, {.change = 2, .clock = 100, .mode = FIXED}},
        {100, {.score = -900, .clock = 100, .mode = FIXED}},
        {50, {.easy = 2, .mode = FIXED}},
        // Nothing stops a ponder search. One without a result of two plies is stopped at twice its
        // time, or near the end of the clock.
        {NEVER, {.easy = 1, .search = GO_PONDER}},
        {NEVER, {.result = 1, .search = GO_PONDER}},
        {202, {.depth = 1, .easy = 1}},
        {202, {.result = 0, .mode = FIXED}},
        {58, {.result = 1, .clock = 60}},
    };
    for (const auto& [expected, scene] : cases) {
        set(scene);
        EXPECT_NEAR(stop_time(), expected, 0.5) << "case " << &scene - &cases[0].second;
    }
}

TEST_F(TimeCheck, FlagAndElapsedTime) {
    // No search is stopped in its first 20 ms, unless the clock is nearly gone.
    set({.clock = 9});
    EXPECT_EQ(flag_at(0.001), STOP);
    set({.result = 1, .clock = 0});
    EXPECT_EQ(flag_at(0.001), RUN);
    EXPECT_EQ(flag_at(2.1), STOP);
    set({.easy = 1});
    EXPECT_EQ(flag_at(0.001), RUN);
    EXPECT_EQ(flag_at(0.021), STOP);
    EXPECT_EQ(flag_at(5), STOP);
    EXPECT_NEAR(run.elapsed, 5, 0.5);
    control.search_mode = GO_ANALYSE;
    EXPECT_EQ(flag_at(5), ABORT);
    control.search_mode = GO_PLAY;  // a flag that is up stays what it is
    time_check(engine);
    EXPECT_EQ(control.stop_flag, ABORT);
}

// Seconds at which a search with a result is stopped.
double stop_at(const SearchLimits& given, SearchProgress search) {
    double low = 0;
    double high = 2 * search.clock + 1;
    while (high - low > 1e-6) {
        search.elapsed = (low + high) / 2;
        (time_is_up(given, search) ? high : low) = search.elapsed;
    }
    return high;
}

// The target and the stop stay inside the clock wherever that is possible, more time never means
// less, more doubt never an earlier stop.
void check_clocks(const SearchLimits& given, int ply, bool ponder) {
    double target_before = 0;
    double sure_before = 0;
    for (const double clock : {0.001, 0.01, 0.05, 0.2, 0.5, 1.0, 3.0, 10.0, 60.0, 300.0, 3600.0}) {
        const double target = target_time(given, clock, ply, ponder);
        ASSERT_GE(target, target_before);
        ASSERT_LE(target, std::max(0.002, 0.65 * clock - 4 * given.move_overhead));
        double stop[4];
        for (int i = 0; i < 4; ++i) {
            constexpr int DOUBTS[] = {0, 1, 4, 20};
            stop[i] = stop_at(given, {0, target, clock, 9, 9, 8, 0, DOUBTS[i]});
            ASSERT_GE(stop[i], i > 0 ? stop[i - 1] : sure_before) << clock;
        }
        ASSERT_LE(stop[3], std::max(0.021, clock - 5 * given.move_overhead)) << clock;
        target_before = target;
        sure_before = stop[0] - 1e-5;
    }
}

TEST(TimeProperties, OverEverythingThatAClockCanShow) {
    SearchLimits given;
    for (const double increment : {0.0, 0.002, 0.1, 1.0, 20.0}) {
        for (const double overhead : {0.0, 0.01, 0.05, 0.5, 5.0}) {
            given.increment = increment;
            given.move_overhead = overhead;
            for (const int moves : {-1, 0, 1, 2, 3, 10, 40, 99}) {
                given.time_mode = moves < 0 ? CLOCK_TIME : u8(LEVEL);
                given.moves_to_go = i16(std::max(moves, 0));
                for (const int ply : {0, 29, 30, 120}) {
                    check_clocks(given, ply, ply % 2 == 0);
                    if (HasFatalFailure()) FAIL() << increment << ' ' << overhead << ' ' << moves;
                }
            }
        }
    }
}

}  // namespace
}  // namespace quon::test
