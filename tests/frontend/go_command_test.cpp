#include "frontend/uci.h"

#include <gtest/gtest.h>

#include "board/fen.h"
#include "harness/engine.h"
#include "search/control.h"
#include "search/run.h"
#include "support/text.h"

namespace quon::test {
namespace {

// Every test starts from the limits of a fresh start with White to move.
struct GoCommand : testing::Test {
    void SetUp() override {
        game.position.owner = &game;
        set_start_position(game.position);
        TearDown();
    }
    void TearDown() override {
        limits = {};
        control = {};
    }
};

TEST_F(GoCommand, Clocks) {
    const struct {
        int side;
        const char *rest, *limits;  // mode, seconds of White and Black, increment, moves to go
    } cases[] = {
        {WHITE, "wtime 60000 btime 30500 winc 1000 binc 2000", "0 60 30.5 1 0"},
        {BLACK, "wtime -5 btime 7 winc 3000", "0 0 0.007 1 0"},
        {BLACK, "binc 3000", "0 0 0.007 3 0"},
        {WHITE, "wtime 1000 btime 1000 movestogo 7", "40 1 1 3 7"},
        {WHITE, "movestogo -3", "40 1 1 3 0"},
        {WHITE, "movestogo 99999999999", "40 1 1 3 32767"},
        // The order of the keywords in the line does not count.
        {WHITE, "movetime 2000 movestogo 30", "1 1 1 0 30"},
    };
    for (const auto& c : cases) {
        game.position.side = u8(c.side);
        go_command(engine, c.rest);
        EXPECT_EQ(format("%d %g %g %g %d", limits.time_mode, limits.clock[WHITE],
                         limits.clock[BLACK], limits.increment, limits.moves_to_go),
                  c.limits)
            << c.rest;
        EXPECT_EQ(control.go_request, GO_PLAY);
        EXPECT_EQ(control.stop_flag, ABORT);
    }
    go_command(engine, "wtime 1 ponder btime 1");
    EXPECT_EQ(control.go_request, GO_PONDER);
}

// Depth and nodes stay until they are changed, each row after the one before it.
TEST_F(GoCommand, FixedForms) {
    const struct {
        const char *rest, *limits;  // mode, depth, nodes, seconds, increment
    } cases[] = {
        {"depth 5 wtime 1 winc 4000", "1 5 0 1e+07 4"},
        {"wtime 1000 btime 1000", "0 5 0 1e+07 4"},
        {"nodes 12345", "1 5 12345 1e+07 4"},
        {"movetime 1500", "1 5 12345 1.5 0"},
        {"depth 66", "1 66 12345 1e+07 0"},
        {"depth 100", "1 66 12345 1e+07 0"},
        {"depth 12", "1 12 12345 1e+07 0"},
        {"movestogo 3", "40 66 0 1e+07 0"},
        {"depth 9 nodes 8 winc 1000", "1 9 8 1e+07 1"},
        {"infinite depth 4", "1 66 0 1e+07 0"},
        {"depth 1", "1 1 0 1e+07 0"},
        {"depth 128", "1 66 0 1e+07 0"},
        {"depth 2", "1 2 0 1e+07 0"},
        {"depth 300", "1 66 0 1e+07 0"},
        {"depth -1", "1 0 0 1e+07 0"},
        {"depth 99999999999999999999", "1 66 0 1e+07 0"},
    };
    for (const auto& c : cases) {
        go_command(engine, c.rest);
        EXPECT_EQ(format("%d %d %d %g %g", limits.time_mode, limits.depth_limit,
                         int(limits.max_nodes), limits.fixed_time, limits.increment),
                  c.limits)
            << c.rest;
    }
}

TEST_F(GoCommand, Garbage) {
    for (const char* rest : {"", " ", "depth", "wtime", "wtime btime", "movetime x nodes -7",
                             "searchmoves e2e4", "mate 3", "\x01\xff", "nodesnodes 5"}) {
        go_command(engine, rest);
        EXPECT_EQ(control.go_request, GO_PLAY) << rest;
        EXPECT_GE(limits.max_nodes, 0) << rest;
        EXPECT_LE(limits.depth_limit, NO_DEPTH_LIMIT) << rest;
    }
}

}  // namespace
}  // namespace quon::test
