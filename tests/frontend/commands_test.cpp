// What the command line and the UCI commands leave in the engine. Plain values, refusals and
// replies are tried on the program itself, in tests/protocol.

#include "frontend/command_line.h"
#include "frontend/uci.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "search/strength.h"

namespace quon::test {
namespace {

// Every test begins and ends with the settings and the board of a fresh start.
struct Commands : testing::Test {
    Commands() { reset(); }
    ~Commands() override { reset(); }
    static void reset() {
        options = {};
        settings = {};
        limits = {};
        params = {};
        control = {};
        game.position.owner = &game;
        set_start_position(game.position);
    }
    // Words are separated by '|'.
    static RunMode apply(const std::string& words) {
        reset();
        return apply_command_line(engine, read_command_line(engine, split(words, '|')));
    }
};

TEST_F(Commands, Switches) {
    const struct {
        double (*get)();
        std::vector<std::pair<const char*, double>> settings;
    } cases[] = {
        // Unknown words are passed over; the word behind a switch is its argument, whatever it is.
        {[] { return double(settings.hash_mb); },
         {{"-hash|9000", 8192},
          {"-hash|-5", 0},
          {"-hash|big", 0},
          {"-HASH|1|-hash 1|hash|1|", 64}}},
        {[] { return double(settings.threads); },
         {{"-threads|0", 1}, {"-threads|200", 80}, {"-threads|300", 44}, {"-hash|-threads|3", 1}}},
        {[] { return double(limits.depth_limit); },
         {{"-d|100", 66}, {"-d|1000", 66}, {"bench|7", 7}, {"bench", 66}}},
        {[] { return limits.fixed_time; }, {{"-d|12", 10000}, {"-n|5000", 1000}, {"-t|2.5", 2.5}}},
        {[] { return options.calibration_nps; }, {{"-calibration|1e99", NO_NPS_LIMIT}}},
        {[] { return double(options.uci_mode.get()); }, {{"-c|-uci", 1}}},
        {[] { return double(settings.numa); }, {{"-numa", 1}}},
    };
    for (const auto& c : cases) {
        for (const auto& [words, setting] : c.settings) {
            apply(words);
            EXPECT_EQ(c.get(), setting) << words;
        }
    }
    EXPECT_EQ(captured_output([] { apply("-nps|1000000"); }), "Elo= 2870\n");
    EXPECT_EQ(params.limit_strength, 1);
    EXPECT_EQ(params.elo, 2870);
    EXPECT_EQ(settings.target_nps, 1000000.0);
}

// Of several jobs one wins, whatever their order on the command line.
TEST_F(Commands, Jobs) {
    const struct {
        const char* words;
        Job job;
        int scan_variant;
    } cases[] = {
        {"", Job::PROTOCOL, 0},
        {"-scan_pgn4|games|-scan_pgn1|games|-bench", Job::PGN_SCAN, 1},
        {"-scan_pgn1|-anepd|-scan_pgn3|games", Job::PGN_SCAN, 3},
        {"-scan_pgn3|a|-anepd|suite", Job::TEST_SUITE, 3},
        // A variant that there is not runs nothing, but takes its file name.
        {"-scan_pgn5|-bench", Job::PROTOCOL, 0},
        {"-scan_pgn2|a|x-scan_pgnx|games", Job::PGN_SCAN, 2},
    };
    for (const auto& c : cases) {
        const RunMode mode = apply(c.words);
        EXPECT_EQ(mode.job, c.job) << c.words;
        EXPECT_EQ(mode.scan_variant, c.scan_variant) << c.words;
        EXPECT_TRUE(mode.job != Job::PGN_SCAN || mode.scan_file == "games") << c.words;
    }
    EXPECT_EQ(apply("-bench|-bench2").bench_variant, 2);
    EXPECT_TRUE(apply("-pbench").bench_single_thread);
    const std::string longest(140, 'n');
    apply("-anepd|first|-anepd|" + longest);
    EXPECT_EQ(options.tune_file, longest);
}

// Each row after the one before it: depth, nodes and clocks stay until they are changed.
TEST_F(Commands, Go) {
    const struct {
        int side;
        const char *rest, *limits;  // mode, depth, nodes, seconds, increment; clocks, moves to go
    } cases[] = {
        {WHITE, "wtime 60000 btime 30500 winc 1000 binc 2000", "0 66 0 1e+07 1; 60 30.5 0"},
        {BLACK, "wtime -5 btime 7 winc 3000", "0 66 0 1e+07 1; 0 0.007 0"},
        {BLACK, "binc 3000", "0 66 0 1e+07 3; 0 0.007 0"},
        {WHITE, "wtime 1000 btime 1000 movestogo -3", "0 66 0 1e+07 3; 1 1 0"},
        {WHITE, "movestogo 99999999999", "40 66 0 1e+07 3; 1 1 32767"},
        // The order of the keywords in the line does not count.
        {WHITE, "movetime 2000 movestogo 30", "1 66 0 2 0; 1 1 30"},
        {WHITE, "depth 5 wtime 1 winc 4000", "1 5 0 1e+07 4; 0.001 1 30"},
        {WHITE, "wtime 1000", "0 5 0 1e+07 4; 1 1 30"},
        {WHITE, "nodes 12345", "1 5 12345 1e+07 4; 1 1 30"},
        {WHITE, "movetime 1500", "1 5 12345 1.5 0; 1 1 30"},
        {WHITE, "depth 100", "1 66 12345 1e+07 0; 1 1 30"},
        {WHITE, "depth 12", "1 12 12345 1e+07 0; 1 1 30"},
        {WHITE, "movestogo 3", "40 66 0 1e+07 0; 1 1 3"},
        {WHITE, "depth 9 nodes 8", "1 9 8 1e+07 0; 1 1 3"},
        {WHITE, "infinite depth 4", "1 66 0 1e+07 0; 1 1 3"},
        {WHITE, "depth -1", "1 0 0 1e+07 0; 1 1 3"},
        {WHITE, "depth 99999999999999999999", "1 66 0 1e+07 0; 1 1 3"},
        {WHITE, "depth 300 nodes -7", "1 66 0 1e+07 0; 1 1 3"},
    };
    limits.fixed_time = 1e7;
    for (const auto& c : cases) {
        game.position.side = u8(c.side);
        go_command(engine, c.rest);
        EXPECT_EQ(format("%d %d %d %g %g; %g %g %d", limits.time_mode, limits.depth_limit,
                         int(limits.max_nodes), limits.fixed_time, limits.increment,
                         limits.clock[WHITE], limits.clock[BLACK], limits.moves_to_go),
                  c.limits)
            << c.rest;
        EXPECT_EQ(control.go_request, GO_PLAY);
        EXPECT_EQ(control.stop_flag, ABORT);
    }
    for (const char* rest : {"", "depth", "wtime btime", "searchmoves e2e4", "\x01\xff"}) {
        go_command(engine, rest);
        EXPECT_EQ(control.go_request, GO_PLAY) << rest;
    }
    go_command(engine, "wtime 1 ponder btime 1");
    EXPECT_EQ(control.go_request, GO_PONDER);
}

TEST_F(Commands, Position) {
    constexpr char AFTER_E4[] = "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3";
    constexpr char ENDING[] = "8/P7/8/8/8/8/k6K/8 w - -";
    const std::string fen_ending = std::string("fen ") + ENDING;
    const struct {
        std::string rest, fen;
        int plies;
        std::string illegal = "";
    } cases[] = {
        {"startpos moves ", START_FEN, 0},
        {"startpos moves  e2e4  ", AFTER_E4, 1},
        {"startpos moves e2e4?", AFTER_E4, 1},  // the fifth character names no piece
        {fen_ending, ENDING, 0},
        {fen_ending + " 0 1 moves a7a8n", "N7/8/8/8/8/8/k6K/8 b - -", 1},
        {fen_ending + " moves a7a8r a2b3", "R7/8/8/8/8/1k6/7K/8 w - -", 2},
        {fen_ending + " startpos", START_FEN, 0},
        // Castling as king takes rook.
        {"fen r3k2r/8/8/8/8/8/8/R3K2R w KQkq - moves e1h1 e8a8", "2kr3r/8/8/8/8/8/8/R4RK1 w - -",
         2},
        // A king may be left in check, but not taken.
        {"fen 4r2k/8/8/8/8/8/4B3/4K3 w - - moves e2d3", "4r2k/8/8/8/8/3B4/8/4K3 b - -", 1},
        {"fen 4k3/4Q3/8/8/8/8/8/4K3 w - - moves e7e8", "4k3/4Q3/8/8/8/8/8/4K3 w - -", 0, "e7e8"},
        // Without a position nothing changes.
        {"startpos moves e2e4", AFTER_E4, 1},
        {"", AFTER_E4, 1},
        {"moves g8f6", AFTER_E4, 1},
        {"START moves g8f6", AFTER_E4, 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(captured_output([&] { position_command(engine, c.rest); }),
                  c.illegal.empty() ? "" : "info string illegal move " + c.illegal + "\n");
        EXPECT_EQ(position_to_fen(game.position), c.fen) << c.rest;
        EXPECT_EQ(game.game_ply, c.plies) << c.rest;
    }
    // A word that is no move ends the list, and nothing is left to replay.
    position_command(engine, "startpos moves e2e4 e7e5 g1f3");
    for (const std::string token : {"e2", "i2i4", "e2e0", "e7e5", "e2e5", "e1h1", "0000",
                                    "\xff\xff\xff\xff", "e2-e4", "e2e4q"}) {
        const std::string rest = "startpos moves d2d4 d7d5 " + token + " g1f3";
        EXPECT_EQ(captured_output([&] { position_command(engine, rest); }),
                  "info string illegal move " + token + "\n");
        EXPECT_EQ(game.game_ply, 2) << token;
        EXPECT_EQ(game.undo[2].move, NO_MOVE);
    }
}

TEST_F(Commands, OptionNameAndValue) {
    const std::pair<const char*, const char*> cases[] = {
        {"name   Hash   value   32   ", "Hash|32"},
        {"name  Clear Hash  ", "Clear Hash|"},
        {"name Clear Hash value true false", "Clear Hash|true"},
        {"name SyzygyPath value /a/b c", "SyzygyPath|/a/b"},
        {"nonsense name Log value true", "Log|true"},
        {"namexHash value 1", "Hash|1"},
        {"name value 3", "|3"},
        {"value 3 name Hash", "|"},
        {"", "|"},
        {"namevalue", "|"},
    };
    for (const auto& [rest, expected] : cases) {
        const OptionText text = parse_option(rest);
        EXPECT_EQ(std::string(text.name) + "|" + std::string(text.value), expected) << rest;
    }
}

}  // namespace
}  // namespace quon::test
