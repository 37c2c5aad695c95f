// The console's settings and inspections.

#include "frontend/console_commands.h"

#include "harness/console_support.h"
#include "search/search_params.h"

namespace quon::test {
namespace {

struct Console : testing::Test {
    const ConsoleRig rig;
};

TEST_F(Console, Level) {
    const struct {
        const char *line, *shown;
        double time, increment;
    } cases[] = {
        {"level 40 5:00 0", "40 moves in 300.00 seconds, inc 0.00", 300, 0},
        {"level 0 5 0.5", "0 moves in 5.00 seconds, inc 0.50", 5, 0.5},
        {"  level   60  0:07.5  2  9", "60 moves in 7.50 seconds, inc 2.00", 7.5, 2},
        {"level", "0 moves in 0.00 seconds, inc 0.00", 0, 0},
        {"level 99999999999 -3 1e300", "255 moves in 0.00 seconds, inc 10000000.00", 0, 1e7},
        {"level x y:z w", "0 moves in 0.00 seconds, inc 0.00", 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(console(c.line), std::string("set level to ") + c.shown + "\n") << c.line;
        for (const double value : {limits.fixed_time, limits.clock[WHITE], limits.clock[BLACK]}) {
            EXPECT_EQ(value, c.time) << c.line;
        }
        EXPECT_EQ(limits.increment, c.increment) << c.line;
    }
    console("level 40 60 0");
    EXPECT_EQ(limits.time_mode, 40);
    limits.clock = {{1, 2}};
    console("new");
    EXPECT_EQ(limits.clock[WHITE], 60);
    EXPECT_EQ(limits.clock[BLACK], 60);
}

TEST_F(Console, NumbersThatAreStoredInSilence) {
    const auto depth = [] { return double(limits.depth_limit); };
    const auto multipv = [] { return double(settings.multipv); };
    const struct {
        const char* line;
        double (*stored)();
        double value;
    } cases[] = {
        {"depth 67", depth, 66},
        {"depth", depth, 0},
        {"depth 999999999999999999999", depth, 66},
        {"ponder 1x", [] { return double(settings.ponder_option); }, 1},
        {"noise 2.5", [] { return options.output_delay.get(); }, 2.5},
        {"hash -1", [] { return double(settings.hash_mode); }, 0},
        {"trace -99999", [] { return double(settings.trace); }, -32768},
        {"multipv 400", multipv, 400},
        {"set_multipv_to 3 9", multipv, 3},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(console(c.line), "") << c.line;
        EXPECT_EQ(c.stored(), c.value) << c.line;
    }
}

TEST_F(Console, Set) {
    const struct {
        const char *line, *reply;
        int (*used)();  // by the search
        int value;
    } cases[] = {
        {"set NMP_depth 5", "NMP_depth set to 5", [] { return +params.NMP_depth; }, 5},
        {"set FP_depth 2x", "FP_depth set to 2", [] { return +params.FP_depth; }, 2},
        {"set LMP_depth", "LMP_depth set to 0", [] { return +params.LMP_depth; }, 0},
        {"set LMR_strength 0", "LMR_strength set to 0",
         [] { return int(search_params.pv_reductions[50][31]); }, 0},
        {"set LMR_strength 99999", "LMR_strength set to 32767",
         [] { return int(search_params.pv_reductions[50][31]); }, 2},
        {"set target_nps 1234.6", "target_nps set to 1235", [] { return +params.limit_strength; },
         1},
        {"set ss_off", "selectivity set to OFF", [] { return +params.LMR_depth; }, 99},
        {"set target_nps", "target_nps set to 21", [] { return int(settings.target_nps.get()); },
         21},
        {"set", "selectivity set to default", [] { return +params.limit_strength; }, 0},
        {"set lmr_depth 9", "selectivity set to default", [] { return +params.NMP_depth; },
         default_params.NMP_depth},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(console(c.line), std::string(c.reply) + "\n");
        EXPECT_EQ(c.used(), c.value) << c.line;
    }
    params.contempt = 50;
    console("set anything 1");
    EXPECT_EQ(params.contempt, default_params.contempt);
}

TEST_F(Console, ExpectedLine) {
    set_game("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -", "e1g1 e8g8");
    EXPECT_EQ(console("pv"), "PV: \n\n" + board_text()) << "nothing is known";
    const SearchResult result = SearchRig::search_game(8);
    control.search_mode = NO_SEARCH;  // nothing left to report
    // The search's line from its root, the table's below it.
    for (std::size_t made = 0; made < 2; ++made) {
        const auto before = std::make_unique<Game>(game);
        const Lines lines = split(console("pv"), '\n');
        EXPECT_EQ(game_difference(game, *before), "");
        ASSERT_TRUE(lines[0].starts_with("PV: ")) << lines[0];
        EXPECT_EQ(lines[1], "");
        const Lines moves = split(lines[0].substr(4), ' ');
        EXPECT_EQ(game.undo[game.game_ply].move, result.line[made]);
        for (const std::string& text : moves) {
            const Move move = game.undo[game.game_ply].move;  // the line is left in the record
            const Position& p = game.position;
            const MoveEntry entry{move, 0, p.board[move_from(move)], p.board[move_to(move)]};
            EXPECT_EQ(text, move_forms(p, entry).san);
            console("]");
        }
        EXPECT_GE(moves.size(), 3U);
        EXPECT_EQ(lines[2], game_fen()) << "the board at the end of the line";
        console("jump 3");
    }
}

// Every figure of the default parameters' tables; the file was written by this program.
TEST_F(Console, PrintedTables) {
    EXPECT_EQ(console("sp") + console("lmr"),
              read_file(QUON_SOURCE_DIR "/tests/data/printed-tables.txt"));
}

TEST_F(Console, UnknownWords) {
    for (const char* line :
         {"frobnicate 3", "isready", "NEW", "e5", "Ke2", "e9", "move", "move e5", " ", "x@y", "\t",
          "mov e4", "e1e8", "\xff\xfe", "a a a a a a a a a a a a a a a a"}) {
        EXPECT_EQ(console(line), "") << line;
    }
    EXPECT_EQ(console(std::string(100000, 'x')), "");
    EXPECT_EQ(game_fen(), START_FEN);
}

// With hung and pinned pieces, and in check, where there is no evaluation; the file was written by
// this program.
TEST_F(Console, EvaluationBreakdown) {
    std::string text;
    for (const char* fen :
         {"4k3/5p2/2n5/1B1n4/8/3R4/PP6/4K3 w - -", "4k3/4R3/8/8/8/8/PP6/4K3 b - -"}) {
        console(std::string("fen ") + fen);
        text += console("ev");
    }
    EXPECT_EQ(text, read_file(QUON_SOURCE_DIR "/tests/data/evaluation-breakdown.txt"));
    console("fen 8/8/8/8/8/8/8/4K3 w - -");
    EXPECT_EQ(console("ev"), "illegal position: Black needs one king\n");
}

}  // namespace
}  // namespace quon::test
