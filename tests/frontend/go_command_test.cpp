#include "frontend/go_command.h"

#include <gtest/gtest.h>

#include "board/fen.h"
#include "frontend/engine_options.h"
#include "search/control.h"
#include "search/run.h"

namespace quon::test {
namespace {

// Every test starts from the limits of a fresh start with White to move.
struct GoCommand : testing::Test {
    void SetUp() override {
        game.position.owner = &game;
        position_from_fen(game.position, START_FEN);
        limits = {};
        control = {};
    }
    void TearDown() override {
        limits = {};
        control = {};
    }
};

TEST_F(GoCommand, Clocks) {
    go_command("wtime 60000 btime 30500 winc 1000 binc 2000");
    EXPECT_EQ(limits.time_mode, 0);
    EXPECT_DOUBLE_EQ(limits.clock[WHITE], 60);
    EXPECT_DOUBLE_EQ(limits.clock[BLACK], 30.5);
    EXPECT_DOUBLE_EQ(limits.increment, 1);
    EXPECT_EQ(control.go_request, GO_PLAY);
    EXPECT_EQ(control.stop_flag, ABORT);

    game.position.side = BLACK;
    go_command("wtime -5 btime 7 winc 3000");
    EXPECT_DOUBLE_EQ(limits.clock[WHITE], 0);
    EXPECT_DOUBLE_EQ(limits.clock[BLACK], 0.007);
    EXPECT_DOUBLE_EQ(limits.increment, 1) << "the other side's increment is not the mover's";
    go_command("binc 3000");
    EXPECT_DOUBLE_EQ(limits.increment, 3);
}

TEST_F(GoCommand, MovesToGo) {
    limits.depth_limit = 5;
    limits.max_nodes = 77;
    go_command("wtime 1000 btime 1000 movestogo 7");
    EXPECT_EQ(limits.time_mode, 40);
    EXPECT_EQ(limits.moves_to_go, 7);
    EXPECT_EQ(limits.depth_limit, NO_DEPTH_LIMIT);
    EXPECT_EQ(limits.max_nodes, 0);
    go_command("movestogo -3");
    EXPECT_GE(limits.moves_to_go, 0);
    go_command("movestogo 99999999999");
    EXPECT_EQ(limits.moves_to_go, 32767);
}

TEST_F(GoCommand, DepthStaysUntilItIsChanged) {
    const struct {
        const char* rest;
        int depth;
    } cases[] = {
        {"depth 5", 5},    {"wtime 1000 btime 1000", 5},
        {"depth 66", 66},  {"depth 100", 66},
        {"depth 127", 66}, {"depth 128", 66},
        {"depth 12", 12},  {"movetime 100", 12},
        {"depth 300", 66}, {"depth 9", 9},
        {"infinite", 66},  {"depth 99999999999999999999", 66},
        {"depth 1", 1},    {"movestogo 3", 66},
        {"depth -1", 0},
    };
    for (const auto& c : cases) {
        go_command(c.rest);
        EXPECT_EQ(limits.depth_limit, c.depth) << c.rest;
    }
    go_command("depth 3");
    EXPECT_EQ(limits.time_mode, 1);
    EXPECT_DOUBLE_EQ(limits.fixed_time, 10000000);
}

TEST_F(GoCommand, FixedForms) {
    go_command("nodes 12345");
    EXPECT_EQ(limits.max_nodes, 12345);
    EXPECT_EQ(limits.time_mode, 1);
    EXPECT_DOUBLE_EQ(limits.fixed_time, 10000000);

    limits.increment = 4;
    go_command("movetime 1500");
    EXPECT_EQ(limits.time_mode, 1);
    EXPECT_DOUBLE_EQ(limits.fixed_time, 1.5);
    EXPECT_DOUBLE_EQ(limits.increment, 0);
    EXPECT_EQ(limits.max_nodes, 12345) << "only movestogo and infinite lift it";

    limits.increment = 4;
    go_command("infinite");
    EXPECT_EQ(limits.time_mode, 1);
    EXPECT_DOUBLE_EQ(limits.fixed_time, 10000000);
    EXPECT_EQ(limits.max_nodes, 0);
    EXPECT_DOUBLE_EQ(limits.increment, 0);
}

TEST_F(GoCommand, TableOrderNotTextOrderDecides) {
    go_command("movetime 2000 movestogo 30");
    EXPECT_EQ(limits.time_mode, 1);
    go_command("infinite depth 4");
    EXPECT_EQ(limits.depth_limit, NO_DEPTH_LIMIT);
    go_command("wtime 1 ponder btime 1");
    EXPECT_EQ(control.go_request, GO_PONDER);
    go_command("wtime 1 btime 1");
    EXPECT_EQ(control.go_request, GO_PLAY);
    EXPECT_EQ(limits.time_mode, 0);
}

TEST_F(GoCommand, Garbage) {
    for (const char* rest : {"", " ", "depth", "wtime", "wtime btime", "movetime x nodes -7",
                             "searchmoves e2e4", "mate 3", "\x01\xff", "nodesnodes 5"}) {
        go_command(rest);
        EXPECT_EQ(control.go_request, GO_PLAY) << rest;
        EXPECT_GE(limits.max_nodes, 0) << rest;
        EXPECT_LE(limits.depth_limit, NO_DEPTH_LIMIT) << rest;
    }
}

}  // namespace
}  // namespace quon::test
