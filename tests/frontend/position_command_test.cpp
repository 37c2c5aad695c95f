#include "frontend/uci.h"

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/make.h"
#include "board/move_text.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "search/run.h"

namespace quon::test {
namespace {

constexpr char AFTER_E4[] = "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3";

struct PositionCommand : testing::Test {
    void SetUp() override {
        game.position.owner = &game;
        set_start_position(game.position);
    }
    void TearDown() override { SetUp(); }
    static std::string fen() { return position_to_fen(game.position); }
    static std::string output(const std::string& rest) {
        return captured_output([&] { position_command(engine, rest); });
    }
};

TEST_F(PositionCommand, WhatIsSet) {
    constexpr char ENDING[] = "8/P7/8/8/8/8/k6K/8 w - -";
    const std::string fen_ending = std::string("fen ") + ENDING;
    const struct {
        std::string rest, fen;
        int plies;
    } cases[] = {
        {"startpos", START_FEN, 0},
        {"startpos moves e2e4", AFTER_E4, 1},
        {"startpos moves ", START_FEN, 0},
        {"startpos moves  e2e4  ", AFTER_E4, 1},
        {"startpos moves e2e4?", AFTER_E4, 1},  // the fifth character names no piece
        {fen_ending, ENDING, 0},
        {fen_ending + " 0 1 moves a7a8n", "N7/8/8/8/8/8/k6K/8 b - -", 1},
        {fen_ending + " moves a7a8r a2b3", "R7/8/8/8/8/1k6/7K/8 w - -", 2},
        {fen_ending + " startpos", START_FEN, 0},
        // A king may be left in check.
        {"fen 4r2k/8/8/8/8/8/4B3/4K3 w - - moves e2d3", "4r2k/8/8/8/8/3B4/8/4K3 b - -", 1},
        // Without a position nothing changes.
        {"startpos moves e2e4", AFTER_E4, 1},
        {"", AFTER_E4, 1},
        {"moves g8f6", AFTER_E4, 1},
        {"START moves g8f6", AFTER_E4, 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(output(c.rest), "") << c.rest;
        EXPECT_EQ(fen(), c.fen) << c.rest;
        EXPECT_EQ(game.game_ply, c.plies) << c.rest;
    }
}

TEST_F(PositionCommand, TokensThatAreNoMovesEndTheList) {
    for (const std::string token :
         {"e2", "e2e", "i2i4", "e9e4", "e2e0", "e3e4", "e7e5", "e2e5", "e1e2", "e1g1", "x", "0000",
          "\xff\xff\xff\xff", "e2-e4", "e2e4q"}) {
        EXPECT_EQ(output("startpos moves d2d4 d7d5 " + token + " g1f3"),
                  "info string illegal move " + token + "\n");
        EXPECT_EQ(game.game_ply, 2) << token;
    }
    EXPECT_EQ(output("fen 4k3/4Q3/8/8/8/8/8/4K3 w - - moves e7e8"),
              "info string illegal move e7e8\n");
}

TEST_F(PositionCommand, NothingIsLeftToReplay) {
    position_command(engine, "startpos moves e2e4 e7e5 g1f3");
    EXPECT_NE(game.undo[2].move, NO_MOVE);
    position_command(engine, "startpos moves e2e4 e7e5");
    EXPECT_EQ(game.undo[2].move, NO_MOVE);
    EXPECT_EQ(game.undo[1].move,
              parse_coordinates(make_game("8/4p3/8/8/8/8/8/8 b - -")->position, "e7e5"));
}

TEST_F(PositionCommand, LongGames) {
    std::string moves;
    for (int i = 0; i < 1500; ++i) moves += "g1f3 g8f6 f3g1 f6g8 ";
    EXPECT_EQ(output("startpos moves " + moves + "e2e4"), "");
    EXPECT_EQ(fen(), AFTER_E4);
    EXPECT_LE(game.game_ply, MAX_GAME_PLIES);
}

}  // namespace
}  // namespace quon::test
