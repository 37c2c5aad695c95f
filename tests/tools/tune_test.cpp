// The tuners: their error against figures worked out apart from them, and their walks on errors
// whose best value is known.

#include "tools/tune.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "eval/tunables.h"
#include "harness/process.h"
#include "harness/search_support.h"

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

    ToolDirectory directory{true};
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
        {KINGS + "w - - c9 \"1/2-1/2\";\n", 0},
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
    ASSERT_GE(turn, 300);
    directory.write("known.epd", text);
    const ErrorSum errors = sum_errors(engine, "known.epd", tuning);
    EXPECT_EQ(errors.positions, positions);
    EXPECT_DOUBLE_EQ(errors.sum, sum);
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
        const Lines lines =
            split(captured_output([] { tune_line_search(engine, "pawn_value_op"); }), '\n');
        EXPECT_EQ(params.pawn_value.op, 90);
        ASSERT_GT(lines.size(), 8U);
        EXPECT_EQ(lines[0] + lines[1] + lines[2], "tune file= tune.epdtuning pawn_value_op");
        EXPECT_TRUE(lines[6].starts_with("pawn_value_op= 78, err= ")) << lines[6];
        const std::string& last = lines[lines.size() - 4];
        int best = 0, low = 0, high = 0;
        double error = 0;
        std::sscanf(last.c_str(), "best= %d, err= %lf, min= %d, max= %d", &best, &error, &low,
                    &high);
        EXPECT_NEAR(error, least, 0.0000006) << last;
        EXPECT_EQ(best < 90, position == SIX_PAWNS) << last;
        EXPECT_TRUE(0 < low && low <= best && best <= high && high - low <= 4) << last;
    }
}

TEST_F(Tuning, Command) {
    directory.write("tune.epd", KINGS + "w - - 1-0\n");
    options.tune_file = "";
    set_game(PAWN_UP + "w - -", "e1d1 e8f8 d1c1");
    const Move taken_back = game.last_move;
    unmake_move(game.position);
    const std::string fen = position_to_fen(game.position);
    // All errors are equal: every other value counts as worse; a missing file's is 1.
    const std::tuple<const char*, const char*, std::string> cases[] = {
        {"", "other.epd", ""},
        {"no_such_name", "", "tune file= tune.epd\ndone!\n"},
        {"tune", "", "\nbest= 256, err= 0.500000, min= 255, max= 257\n\ndone!\n"},
        {"tune", "missing",
         "tune file= missing\n\ntuning tune\ntune= 256, err= 1.000000\nbest= 256"},
    };
    for (const auto& [name, file, told] : cases) {
        const std::string output =
            captured_output([&, name = name, file = file] { tune_command(engine, name, file); });
        EXPECT_NE(output.find(told), std::string::npos) << output;
        EXPECT_EQ(output.empty(), told.empty());
    }
    EXPECT_EQ(position_to_fen(game.position), fen);
    EXPECT_EQ(game.undo[game.game_ply].move, taken_back) << "can be made again";
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
    EXPECT_EQ(lines[0], "pass= 0, k0= 2.000e+03, avg_lr= 0.0, max_lr= 0.0");
    EXPECT_EQ(lines[3], "** p2 = 90");
    EXPECT_EQ(lines[12], format("err= %0.5f", before));
    // At most 2.5 % of 90 + 6 in the direction in which the error falls.
    EXPECT_TRUE(matches(lines[16], "p1=  86/.*, p2=  94/.*, g= -.*, lr=-.*, x=  2.4, p=  92.4"))
        << lines[16];
    EXPECT_EQ(lines[28], "** p2 = 92");
    EXPECT_EQ(lines_with(lines, "pass= ").size(), 100U);

    // Without a slope the rate grows by 3 % a pass.
    directory.write("tune.epd", KINGS + "w - - 1-0\n");
    const Lines passes =
        lines_with(split(captured_output([] { tune_gradient(engine); }), '\n'), "pass= ");
    EXPECT_EQ(passes.at(99), "pass= 99, k0= " + format("%0.3e", 2000 * std::pow(1.03, 99)) +
                                 ", avg_lr= 0.0, max_lr= 0.0");
}

TEST_F(Tuning, SampleDrawsLines) {
    std::string text;
    for (int i = 0; i < 4000; ++i) {
        text += std::to_string(i) + std::string(std::size_t(i) % 9 * 1000, '.') + "\n";
    }
    directory.write("tune.epd", text);
    std::srand(2);
    EXPECT_TRUE(tune_sample(engine, "tune.epd").readable);
    const auto drawn = split(directory.read("junk.epd"), '\n');
    EXPECT_NEAR(double(drawn.size()), 600, 120);  // five standard deviations
    auto from = std::size_t{0};
    for (const std::string& line : drawn) {
        from = text.find(line + "\n", from);
        ASSERT_NE(from, std::string::npos) << line.substr(0, 10);
    }
}

}  // namespace
}  // namespace quon::test
