// The tuners: their error against figures worked out apart from them, and their walks on errors
// whose best value is known.

#include "tools/tune.h"

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "board/fen.h"
#include "board/make.h"
#include "eval/tunables.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "harness/files.h"
#include "harness/process.h"
#include "harness/search_support.h"
#include "harness/work_directory.h"
#include "support/text.h"

namespace quon::test {
namespace {

const std::string KINGS = "8/8/4k3/8/8/4K3/8/8 ";  // worth 0
const std::string PAWN_UP = "4k3/ppp5/8/8/8/8/PPPP4/4K3 ";
const std::string QUEEN_UP = "4k3/8/8/8/8/8/8/3QK3 w - - ";
const std::string CHECK = "4k3/8/8/8/8/8/4r3/4K2R w - - ";
const std::string QUEEN_HANGS = "4k3/3ppp2/8/3q4/8/8/3QPP2/4K3 w - - ";

class Tuning : public testing::Test {
protected:
    Tuning() {
        limits.depth_limit = 0;
        options.tune_file = "tune.epd";
    }
    ~Tuning() override { tunables.clear(); }

    double error_of(const std::string& text) {
        directory.write("lines.epd", text);
        return tune_error(engine, "lines.epd", tuning);
    }

    WorkDirectory directory;
    SearchRig rig;
    TuneRun tuning;
};

TEST_F(Tuning, ErrorOfFewLines) {
    const struct {
        std::string text;
        double error;
    } cases[] = {
        {"", 0},
        {"# " + KINGS + "w - - 1-0\n; " + KINGS + "w - - 1-0\n " + KINGS + "w - - 1-0\n\n", 0},
        {KINGS + "w - - c9 \"1-0\";\n", 0.5},
        {KINGS + "b - - c9 \"0-1\";", 0.5},  // no line end
        {KINGS + "w - - c9 \"1/2-1/2\";\n", 0},
        {KINGS + "w - - 1/2 0-1;\n", 0.5},
        {KINGS + "w - - 1-0;\r\n" + KINGS + "w - - 1/2;\r\n", 0.25},
        {"\xEF\xBB\xBF" + KINGS + "w - - 1-0;\n" + KINGS + "w - -\n", 0.5},
        {KINGS + "w - -\n" + KINGS + "w -\n1/2-1/2 w - - 1-0\n", 0},  // without result, no position
        {QUEEN_UP + "1-0\n" + CHECK + "1-0\n" + QUEEN_HANGS + "1-0\n", 0},  // teach nothing
        // Only the beginning of a long line counts; its end is no line of its own.
        {KINGS + "w - - " + std::string(300, 'x') + " 1-0\n", 0},
        {KINGS + "w - - 1-0 " + std::string(4000, 'x') + KINGS + "w - - 1/2\n", 0.5},
        {std::string(253, '#') + KINGS + "w - - 1-0\n", 0},
    };
    for (const auto& [text, error] : cases) EXPECT_DOUBLE_EQ(error_of(text), error) << text;

    // The probability grows with the score, seen by either side.
    for (const char* side : {"w - - ", "b - - "}) {
        const double won = error_of(PAWN_UP + side + "1-0");
        EXPECT_LT(won, 0.45);
        EXPECT_DOUBLE_EQ(error_of(PAWN_UP + side + "0-1"), 1 - won);
        EXPECT_DOUBLE_EQ(error_of(PAWN_UP + side + "1/2"), 0.5 - won);
    }
    EXPECT_EQ(tune_error(engine, "missing.epd", tuning), 1);
    EXPECT_EQ(tune_error(engine, ".", tuning), 1);
}

// Captures without end: told once, however often the file is read.
TEST_F(Tuning, RestlessPositionsArePassedOver) {
    const std::string text = "# head\nrnbqkbnr/rrrrrrr1/8/8/8/8/RRRRRRR1/RNBQKBNR w KQkq - 1-0\n" +
                             KINGS + "w - - 1-0\n";
    testing::internal::CaptureStderr();
    for (int i = 0; i < 3; ++i) EXPECT_DOUBLE_EQ(error_of(text), 0.5);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "quon: lines.epd, line 2: too many captures, passed over\n");
}

// Evaluations and quiescence scores by another program; every result in turn.
TEST_F(Tuning, ErrorOfKnownScores) {
    std::string text;
    int positions = 0;
    double sum = 0;
    int turn = 0;
    for (const std::string& row : shared_lines("/reference/evaluation.csv")) {
        const auto cells = split(row, ';');
        if (cells.size() < 3 || cells[0] == "fen") continue;
        const char* const results[] = {"1-0", "0-1", "1/2-1/2"};
        const double points[] = {1, 0, 0.5};
        const int result = ++turn % 3;
        text += cells[0] + " c9 \"" + results[result] + "\";\n";
        const int eval = std::atoi(cells[1].c_str());
        const int quiet = std::atoi(cells[2].c_str());
        if (std::abs(quiet) > 900 || std::abs(eval - quiet) > 150) continue;
        const bool black = cells[0].find(" b ") != std::string::npos;
        const double won = black ? 1 - points[result] : points[result];
        sum += std::abs(won - 1 / (1 + std::pow(10, -quiet / 400.0)));
        ++positions;
    }
    if (turn == 0) GTEST_SKIP() << "evaluation.csv is not there";
    directory.write("known.epd", text);
    const ErrorSum errors = sum_errors(engine, "known.epd", tuning);
    EXPECT_EQ(errors.positions, positions);
    EXPECT_DOUBLE_EQ(errors.sum, sum);
}

TEST_F(Tuning, ReferenceFile) {
    const auto figures = shared_lines("/reference/tools/tuning-error.txt");
    if (figures.empty()) GTEST_SKIP() << "tuning-error.txt is not there";
    const ErrorSum errors = sum_errors(engine, QUON_SHARED_DIR "/data/tuning/quiet.epd", tuning);
    EXPECT_EQ(format("positions= %d, sum= %0.12f, mean= %0.12f", int(errors.positions), errors.sum,
                     mean_error(errors)),
              figures[0]);
}

TEST_F(Tuning, FilterKeepsUsableLines) {
    const std::string kept = KINGS + "w - - ce 12; c9 \"1-0\";\n" + KINGS + "b - - 0-1\n" + KINGS +
                             "w - - ce -900; 1-0\n";
    directory.write("tune.epd", "# head\n" + kept + QUEEN_UP + "1-0\n" + CHECK + "1-0\n" + KINGS +
                                    "w - - ce 901; 1-0\n" + KINGS + "w - - ce -30000; 1-0\n" +
                                    KINGS + "w - - ce 5;\n" + KINGS + "w - - 1/2\r\n");
    EXPECT_TRUE(make_tuning_set(engine));
    EXPECT_EQ(directory.read("tune_new.epd"), kept + KINGS + "w - - 1/2\n");
    File copy;
    ASSERT_TRUE(copy.open("copy.epd", FileMode::WRITE));
    EXPECT_DOUBLE_EQ(mean_error(tune_error_filter(engine, "tune.epd", copy)), 0.375);
}

// A knight against pawns, drawn: the error is least where the pawns together weigh as much. Against
// three a pawn is worth more than at the start, against six less.
const std::string THREE_PAWNS = "r1bqkb1r/pppppppp/8/8/8/8/PPPP3P/RNBQKB1R w - - ";
const std::string SIX_PAWNS = "r1bqkb1r/pppppppp/8/8/8/8/3P3P/RNBQKB1R w - - ";

TEST_F(Tuning, LineSearchFindsTheMinimum) {
    for (const std::string& position : {THREE_PAWNS, SIX_PAWNS}) {
        directory.write("tune.epd", position + "1/2-1/2\n");
        params = EvalParams();
        double least = 1;
        for (int value = 30; value <= 200; ++value) {
            params.pawn_value.op = i16(value);
            least = std::min(least, tune_error(engine, "tune.epd", tuning));
        }
        params.pawn_value.op = 90;
        const auto lines =
            split(captured_output([] { tune_line_search(engine, "pawn_value_op"); }), '\n');
        EXPECT_EQ(params.pawn_value.op, 90);
        ASSERT_GT(lines.size(), 8U);
        EXPECT_EQ(lines[0] + lines[1] + lines[2], "tune file= tune.epdtuning pawn_value_op");
        EXPECT_TRUE(lines[3].starts_with("pawn_value_op= 90, err= ")) << lines[3];
        EXPECT_TRUE(matches(lines[4], "best= 90, err= .*, min= -10000, max= 10000")) << lines[4];
        EXPECT_TRUE(lines[6].starts_with("pawn_value_op= 78, err= ")) << lines[6];
        EXPECT_EQ(lines[lines.size() - 2], "done!");
        const std::string& last = lines[lines.size() - 4];
        int best = 0;
        double error = 0;
        int low = 0;
        int high = 0;
        ASSERT_EQ(std::sscanf(last.c_str(), "best= %d, err= %lf, min= %d, max= %d", &best, &error,
                              &low, &high),
                  4)
            << last;
        EXPECT_NEAR(error, least, 0.0000006) << last;
        EXPECT_EQ(best < 90, position == SIX_PAWNS) << last;
        EXPECT_LE(low, best);
        EXPECT_LE(best, high);
        EXPECT_LE(high - low, 4) << last;
    }
}

TEST_F(Tuning, Command) {
    directory.write("tune.epd", KINGS + "w - - 1-0\n");
    options.tune_file = "";
    set_game(PAWN_UP + "w - -", "e1d1 e8f8 d1c1 f8g8");
    const std::string fen = position_to_fen(game.position);
    const Table<Move, 2> taken_back = {{game.undo[2].move, game.undo[3].move}};
    for (int i = 0; i < 2; ++i) unmake_move(game.position);
    const auto run = [](const char* name, const char* file) {
        return captured_output([&] { tune_command(engine, name, file); });
    };
    EXPECT_EQ(run("", "other.epd"), "");
    EXPECT_EQ(run("no_such_name", ""), "tune file= tune.epd\ndone!\n");
    // All errors are equal: every other value counts as worse.
    EXPECT_TRUE(
        run("tune", "").ends_with("best= 256, err= 0.500000, min= 255, max= 257\n\ndone!\n"));
    // A missing file's error of 1 is no better than none.
    EXPECT_TRUE(run("tune", "missing")
                    .starts_with("tune file= missing\n\ntuning tune\ntune= 256, "
                                 "err= 1.000000\nbest= 256, err= 1.000000, "));
    // The game is as it was, with the moves that can be made again.
    EXPECT_EQ(game.game_ply, 2);
    for (const Move move : taken_back) {
        ASSERT_EQ(game.undo[game.game_ply].move, move);
        make_move(game.position, move);
    }
    EXPECT_EQ(position_to_fen(game.position), fen);
}

TEST_F(Tuning, GradientLog) {
    std::string text;
    for (int i = 0; i < 40; ++i) text += THREE_PAWNS + "1/2\n";
    directory.write("tune.epd", text);
    register_tunables(engine.tunables, params);
    for (TunableParam& t : tunables) {
        if (t.name == "p2") t = {"p2", &params.pawn_value.op, 10, 90, 0, 0};  // one that counts
    }
    std::srand(1);
    const double before = tune_error(engine, "tune.epd", tuning);
    const std::string output = captured_output([] { EXPECT_TRUE(tune_gradient(engine)); });
    EXPECT_EQ(output, directory.read("tune.log"));
    EXPECT_LT(tune_error(engine, "tune.epd", tuning), before / 4);

    const auto lines = split(output, '\n');
    ASSERT_GT(lines.size(), 26U);
    EXPECT_EQ(lines[0], "pass= 0, k0= 2.000e+03, avg_lr= 0.0, max_lr= 0.0");
    EXPECT_EQ(lines[2], "** p1 = 36");
    EXPECT_EQ(lines[3], "** p2 = 90");
    EXPECT_EQ(lines[10], "** p9 = 15");
    EXPECT_EQ(lines[12], format("err= %0.5f", before));
    EXPECT_EQ(lines[15], "p1=  34/" + format("%0.5f", before) + ", p2=  38/" +
                             format("%0.5f", before) +
                             ", g=  0.00e+00, lr= 0.00, x= -0.0, p=  36.0");
    // At most 2.5 % of 90 + 6 in the direction in which the error falls.
    EXPECT_TRUE(matches(lines[16], "p1=  86/.*, p2=  94/.*, g= -.*, lr=-.*, x=  2.4, p=  92.4"))
        << lines[16];
    EXPECT_EQ(lines[24], "");
    EXPECT_TRUE(lines[25].starts_with("pass= 1, k0= ")) << lines[25];
    EXPECT_EQ(lines[28], "** p2 = 92");
    EXPECT_EQ(lines_with(lines, "pass= ").size(), 100U);
}

// Without a slope the rate grows by 3 % a pass.
TEST_F(Tuning, RateGrowsOnFlatGround) {
    directory.write("tune.epd", KINGS + "w - - 1-0\n");
    const auto passes =
        lines_with(split(captured_output([] { tune_gradient(engine); }), '\n'), "pass= ");
    ASSERT_EQ(passes.size(), 100U);
    EXPECT_EQ(passes[1], "pass= 1, k0= 2.060e+03, avg_lr= 0.0, max_lr= 0.0");
    EXPECT_EQ(passes[99], "pass= 99, k0= " + format("%0.3e", 2000 * std::pow(1.03, 99)) +
                              ", avg_lr= 0.0, max_lr= 0.0");
}

TEST_F(Tuning, SampleDrawsLines) {
    std::string text;
    for (int i = 0; i < 4000; ++i)
        text += std::to_string(i) + std::string(std::size_t(i) % 9 * 1000, '.') + "\n";
    directory.write("tune.epd", text);
    std::srand(2);
    EXPECT_TRUE(tune_sample(engine, "tune.epd").readable);
    const auto drawn = split(directory.read("junk.epd"), '\n');
    EXPECT_NEAR(double(drawn.size()), 600, 120);  // five standard deviations
    const auto all = split(text, '\n');
    auto from = all.begin();
    for (const std::string& line : drawn) {
        from = std::find(from, all.end(), line);
        ASSERT_NE(from, all.end()) << line.substr(0, 10);
    }
    EXPECT_FALSE(tune_sample(engine, "missing.epd").readable);
    EXPECT_EQ(directory.read("junk.epd"), "");
}

TEST(TuningProcess, EndsWhenAskedTo) {
    const WorkDirectory directory;
    std::string text;
    for (int i = 0; i < 200000; ++i) text += THREE_PAWNS + "1/2\n";
    directory.write("many.epd", text);
    enum { QUIT, STOP, END_OF_INPUT, INTERRUPT };
    for (const int way : {QUIT, STOP, END_OF_INPUT, INTERRUPT}) {
        Process tuner({"-tune", "many.epd", "-nolog"}, directory.path());
        Lines lines = tuner.read_to("pass= 0");
        if (way == QUIT) tuner.send({"d", "quit"});
        if (way == STOP) tuner.send({"d", "stop"});
        if (way == END_OF_INPUT) tuner.close_input();
        if (way == INTERRUPT) tuner.signal(SIGINT);
        const Ending ending = tuner.wait();
        EXPECT_EQ(ending.status, 0);
        EXPECT_EQ(ending.errors, "");
        std::string output;
        lines.insert(lines.end(), ending.lines.begin(), ending.lines.end());
        for (const std::string& line : lines) output += line + "\n";
        EXPECT_EQ(directory.read("tune.log"), output);
        EXPECT_EQ(lines_with(lines, "pass= ").size(), 1U);
    }
}

TEST(TuningProcess, FilesThatCannotBeRead) {
    for (const char* mode : {"-tune", "-mktune"}) {
        for (const std::string file : {"missing.epd", ".", "pipe"}) {
            const WorkDirectory directory;
            make_pipe("pipe");
            const Ending ending = directory.run({mode, file, "-nolog"});
            EXPECT_EQ(ending.status, 1) << mode;
            EXPECT_EQ(ending.errors, "quon: " + file + " cannot be read\n");
        }
    }
}

// The console's lines behind "tune", all of them, in one write or while it runs.
TEST(TuningProcess, ConsoleLinesWait) {
    const WorkDirectory directory;
    directory.write("few.epd", KINGS + "w - - 1-0\n");
    Process console({"-c", "-nolog"}, directory.path());
    console.send({"tune p1 few.epd", "tune p2", "swap", "perft 1"});
    console.close_input();
    const Ending ending = console.wait();
    EXPECT_EQ(ending.status, 0);
    Lines told;
    for (const std::string& line : ending.lines) {
        if (matches(line, "tuning .*|done!|visited 20 nodes.*")) told.push_back(line.substr(0, 9));
    }
    EXPECT_EQ(told, (Lines{"tuning p1", "done!", "tuning p2", "done!", "visited 2"}));
}

TEST(TuningProcess, ConsoleEndsTuning) {
    const WorkDirectory directory;
    std::string text;
    for (int i = 0; i < 200000; ++i) text += THREE_PAWNS + "1/2\n";
    directory.write("many.epd", text);
    const std::string tune = "tune pawn_value_op many.epd";
    for (const char* word : {"stop", ".", "quit", "Ctrl-C"}) {
        for (const bool at_once : {true, false}) {
            Process console({"-c", "-nolog"}, directory.path());
            const bool interrupt = word[0] == 'C';
            if (at_once && !interrupt) {
                console.send({tune, "perft 1", word});
            } else {
                console.send({tune});
                console.read_to("tuning ");
                console.send({"perft 1"});
                interrupt ? console.signal(SIGINT) : console.send({word});
            }
            Lines lines = console.read_to("visited 20 nodes");
            EXPECT_EQ(lines_with(lines, "pawn_value_op= ").size(), 0U) << word;
            EXPECT_TRUE(contains(lines, "best= 90, err= 1.000000, min= -10000, max= 10000"));
            EXPECT_TRUE(contains(lines, "done!"));
            if (word[0] != 'q') console.send({"perft 2", "quit"});
            const Ending ending = console.wait();
            EXPECT_EQ(ending.status, 0);
            EXPECT_EQ(lines_with(ending.lines, "visited 400").size(), word[0] == 'q' ? 0U : 1U);
            EXPECT_EQ(lines_with(ending.lines, "unknown").size(), 0U) << word;
        }
    }
}

TEST(TuningProcess, SetFromPipe) {
    const std::string text = KINGS + "w - - 1-0\n" + KINGS + "b - - 1/2\n";
    const WorkDirectory directory;
    Process tool({"-mktune", "/dev/stdin", "-nolog"}, directory.path());
    tool.send_bytes(text + "quit\n");
    tool.close_input();
    EXPECT_EQ(tool.wait().status, 0);
    EXPECT_EQ(directory.read("tune_new.epd"), text);
}

TEST(TuningProcess, FilesThatCannotBeWritten) {
    const struct {
        const char* mode;
        const char* file;
        bool full;  // there is no room for the file; otherwise a directory stands in its way
        const char* message;
    } cases[] = {
        {"-tune", "tune.log", false, "quon: can't create tune.log\n"},
        {"-tune", "junk.epd", false, "quon: can't create junk.epd\n"},
        {"-mktune", "tune_new.epd", false, "quon: can't create tune_new.epd\n"},
        {"-tune", "tune.log", true, "quon: tune.log could not be written whole\n"},
        {"-mktune", "tune_new.epd", true, "quon: tune_new.epd could not be written whole\n"},
    };
    for (const auto& [mode, file, full, message] : cases) {
        const WorkDirectory directory;
        directory.write("few.epd", KINGS + "w - - 1-0\n");
        if (full && !directory.make_full(file)) continue;
        if (!full) std::filesystem::create_directory(file);
        const Ending ending = directory.run({mode, "few.epd", "-nolog"});
        EXPECT_EQ(ending.status, 1) << message;
        EXPECT_EQ(ending.errors, message);
    }
}

}  // namespace
}  // namespace quon::test
