// Strength limiting.

#include <cmath>

#include "harness/search_support.h"
#include "platform/clock.h"
#include "search/strength.h"

namespace quon::test {
namespace {

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
