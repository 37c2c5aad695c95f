// Two engines in one process know nothing of each other.

#include "board/legality.h"
#include "board/make.h"
#include "engine/engine.h"
#include "harness/board_support.h"

namespace quon::test {
namespace {

std::unique_ptr<Engine> make_engine(int threads, int pawn_value) {
    auto made = std::make_unique<Engine>();
    made->params.pawn_value = {i16(pawn_value), i16(pawn_value)};
    made->limits.fixed_time = ENDLESS_SECONDS;
    derive_tables(*made);
    set_start_position(made->game.position);
    if (!hash_alloc(made->hash, 1) || !create_threads(*made, threads)) ADD_FAILURE();
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
        const auto player = make_engine(1, pawn_values[i]);
        start(*player, DEPTH);
        alone[i] = finding(*player);
    }
    EXPECT_NE(alone[0], alone[1]);
    const auto first = make_engine(1, pawn_values[0]);
    const auto second = make_engine(1, pawn_values[1]);
    start(*first, DEPTH);
    start(*second, DEPTH);
    EXPECT_EQ(finding(*first), alone[0]);
    EXPECT_EQ(finding(*second), alone[1]);
}

// Each thinks on while the other does; the one is stopped and started while the other is not.
TEST(TwoEngines, PlayEachOther) {
    const std::unique_ptr<Engine> players[] = {make_engine(2, 100), make_engine(2, 60)};
    for (int ply = 0; ply < scaled(20); ++ply) {
        Engine& mover = *players[ply % 2];
        Engine& other = *players[1 - ply % 2];
        start(other, 60);
        start(mover, 5);
        wait_for_idle_threads(mover);
        EXPECT_NE(busy_threads(other), 0);
        other.control.stop_flag = STOP;
        wait_for_idle_threads(other);
        const Move move = mover.run.shared_line[1];
        ASSERT_TRUE(can_be_made(mover.game.position, move)) << ply;
        for (const auto& player : players) make_game_move(player->game, move);
    }
}

}  // namespace
}  // namespace quon::test
