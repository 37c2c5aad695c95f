// Strength limiting.

#include <gtest/gtest.h>

#include <cmath>

#include "board/fen.h"
#include "frontend/uci.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "harness/search_support.h"
#include "platform/clock.h"
#include "search/control.h"
#include "search/strength.h"

namespace quon::test {
namespace {

TEST(Strength, SetElo) {
    const SearchRig rig;
    options.calibration_nps = 512345.6;
    options.elo_max = 2800.7;  // 0.99 of it is 2772.7
    const struct {
        int value, elo;
        const char* nps;
    } cases[] = {{-70000, 1500, "24"}, {2772, 2772, "411670"}, {2773, 2800, "1000000000"}};
    for (const auto& c : cases) {
        EXPECT_EQ(captured_output([&] {
                      setoption_command(engine, "name UCI_Elo value " + std::to_string(c.value));
                  }),
                  "info string UCI_Elo set to " + std::to_string(c.elo) +
                      "\ninfo string calibration nps = 512346\ninfo string target nps = " + c.nps +
                      "\n");
        EXPECT_EQ(params.elo, c.elo);
        EXPECT_NEAR(nps_to_elo(elo_to_nps(c.elo)), c.elo, 0.001);
    }
}

TEST(Strength, Calibration) {
    const SearchRig rig;
    set_game("4k3/8/8/8/8/8/8/4K2R w - -");
    const Calibration measured = calibrate_strength(engine);
    EXPECT_LT(measured.seconds, 5);
    EXPECT_LT(measured.nodes, 2015540U);  // 1 + 6 + ... + 6^8
    EXPECT_NEAR(double(measured.nodes) * 0.51 / (measured.seconds + 0.001), measured.nps,
                measured.nps * 0.01);
    EXPECT_NEAR(options.elo_max, std::log(options.calibration_nps - 20) * 111 + 1337, 0.001);
    EXPECT_EQ(position_to_fen(game.position), START_FEN);
}

// Each thread keeps to the target on its own, and the first iteration is free.
TEST(Strength, ThrottleKeepsTheRate) {
    const SearchRig rig(1, 2);
    params.limit_strength = 1;
    settings.target_nps = 3000.0;
    limits.fixed_time = 0.5;
    EXPECT_GE(SearchRig::search(START_FEN, 60).depth, 2);
    for (int i = 0; i < 2; ++i) {
        const double nodes = double(thread_data(engine, i).nodes);
        EXPECT_LT(nodes, 3000 * run.elapsed * 1.2 + 300) << i;
        EXPECT_GT(nodes, 3000 * run.elapsed * 0.3) << i;
    }
}

// Only while the limit is switched on.
TEST(Strength, LimitOff) {
    const SearchRig rig;
    const u64 nodes = SearchRig::search(START_FEN, 5).nodes;
    settings.target_nps = 25.0;
    EXPECT_EQ(SearchRig::search(START_FEN, 5).nodes, nodes);
    // A low target also gives the root's later moves zero windows at depth 1.
    params.limit_strength = 1;
    settings.target_nps = 15000.0;
    const u64 narrow = SearchRig::search(START_FEN, 1).nodes;
    settings.target_nps = 15001.0;
    EXPECT_NE(SearchRig::search(START_FEN, 1).nodes, narrow);
}

}  // namespace
}  // namespace quon::test
