// Two engines in one process know nothing of each other.

#include "engine/engine.h"
#include "harness/board_support.h"

namespace quon::test {
namespace {

std::unique_ptr<Engine> make_engine(int pawn_value) {
    auto made = std::make_unique<Engine>();
    made->params.pawn_value = {i16(pawn_value), i16(pawn_value)};
    made->limits.fixed_time = ENDLESS_SECONDS;
    derive_tables(*made);
    set_start_position(made->game.position);
    if (!hash_alloc(made->hash, 1) || !create_threads(*made, 1)) ADD_FAILURE();
    return made;
}

void start(Engine& player, int depth) {
    player.limits.depth_limit = u8(depth);
    player.control.go_request = GO_PLAY;
    begin_search(player);
    start_search_threads(player);
}

std::string finding(Engine& player) {
    wait_for_idle_threads(player);
    collect_stats(player);
    return format("%d %d %.0f", player.run.shared_line[1].get(), player.run.shared_score.get(),
                  double(player.totals.nodes));
}

TEST(TwoEngines, SearchAtTheSameTimeWhatTheySearchAlone) {
    constexpr int DEPTH = 8;
    const int pawn_values[] = {100, 60};
    std::string alone[2];
    for (int i = 0; i < 2; ++i) {
        const auto player = make_engine(pawn_values[i]);
        start(*player, DEPTH);
        alone[i] = finding(*player);
    }
    EXPECT_NE(alone[0], alone[1]);
    const auto first = make_engine(pawn_values[0]);
    const auto second = make_engine(pawn_values[1]);
    start(*first, DEPTH);
    start(*second, DEPTH);
    EXPECT_EQ(finding(*first), alone[0]);
    EXPECT_EQ(finding(*second), alone[1]);
}

}  // namespace
}  // namespace quon::test
