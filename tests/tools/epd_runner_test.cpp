// The test-suite runner as a program, on small suites whose solutions are certain.

#include <gtest/gtest.h>

#include <csignal>

#include "harness/board_support.h"
#include "harness/engine.h"
#include "harness/files.h"
#include "harness/tool_support.h"
#include "support/text.h"

namespace quon::test {
namespace {

const std::string MATE = "6k1/5ppp/8/8/8/8/8/R5K1 w - -";  // Ra8
const std::string BLACK_MATE = "r5k1/8/8/8/8/8/5PPP/6K1 b - -";

Lines quiet(const char* depth) { return {"-quiet", "-hash", "1", "-anepd", "suite", "-d", depth}; }

std::string correct(const Ending& ending) {
    for (const std::string& line : ending.lines) {
        if (line.ends_with(" correct best moves")) return line.substr(0, line.find(" correct"));
    }
    return "no statistics";
}

// Without times, which differ from run to run.
std::string comparable(const std::string& line) {
    if (!line.starts_with("move= ")) return line;
    const std::size_t time = line.find(" time= ");
    const std::size_t score = line.find(" score= ");
    return line.substr(0, time) + line.substr(score, line.rfind(',') - score);
}

TEST(EpdRunner, Reference) {
    const ToolDirectory directory;
    for (const char* depth : {"4", "8"}) {
        Lines expected =
            shared_lines(std::string("/reference/tools/epd-bratko-kopec-") + depth + ".txt");
        if (expected.empty()) GTEST_SKIP() << "the reference is not there";
        const std::string suite = QUON_SHARED_DIR "/data/epd/bratko-kopec.epd";
        const Ending ending =
            directory.run({"-nolog", "-noise", "1000", "-anepd", suite, "-d", depth});
        EXPECT_EQ(ending.status, 0);
        Lines printed;
        for (const std::string& line : ending.lines) printed.push_back(comparable(line));
        int compared = 0;
        for (std::string line : expected) {
            if (line.starts_with("Analyzing")) continue;
            if (line.starts_with("move= ")) line = line.substr(0, line.find(", depth="));
            EXPECT_TRUE(contains(printed, line)) << line;
            ++compared;
        }
        EXPECT_GE(compared, 24 * 3);
        EXPECT_EQ(directory.read("unsolved.epd"), "");
    }
}

TEST(EpdRunner, Judgement) {
    const struct {
        std::string line;
        const char* correct;
        bool unsolved;
    } cases[] = {
        {MATE + " bm Ra8#; id \"1\";", "1 / 1", false},
        {MATE + " bm Ra8+;", "1 / 1", false},
        {MATE + " bm Kf1;", "0 / 1", false},
        {MATE + " bm Kf1 Ra8;", "0 / 1", false},  // only the first counts
        {MATE + " bm Ra8 Kf1;", "1 / 1", false},
        {MATE + " am Kf1;", "1 / 1", false},
        {MATE + " am Ra8;", "0 / 1", false},
        {MATE + " bm Ra8; am Ra8;", "1 / 1", false},
        {MATE + " bm Qa8; am Ra8;", "0 / 1", false},  // what cannot be read is not there
        {MATE + " bm Qa8;", "0 / 1", true},
        {MATE + " id \"only\"; c0 \"text\";", "0 / 1", true},
        {BLACK_MATE + " bm Ra1;\r", "1 / 1", false},
        {MATE + " id \"" + std::string(400, 'x') + "\"; bm Ra8;", "0 / 1", true},
        {"\xEF\xBB\xBF" + MATE + " bm Ra8;", "1 / 1", false},
        {MATE, "0 / 1", true},
        // Not a record, or none that can be searched.
        {"# " + MATE, "0 / 0", false},
        {"; " + MATE, "0 / 0", false},
        {" " + MATE, "0 / 0", false},
        {"8/8/8 w -", "0 / 0", false},
        {"k - - -", "0 / 0", false},
        {"8/8/8/8/8/8/8/7K w - - bm Kg1;", "0 / 0", false},
        {std::string("\0\0\0\0\0\0\0\0\0\0\0\0", 12), "0 / 0", false},
        {"", "0 / 0", false},
    };
    const ToolDirectory directory;
    for (const auto& c : cases) {
        directory.write("suite", c.line);
        const Ending ending = directory.run(quiet("2"));
        EXPECT_EQ(ending.status, 0) << c.line;
        EXPECT_EQ(correct(ending), c.correct) << c.line;
        const std::string fen = c.line.starts_with("r") ? BLACK_MATE : MATE;
        EXPECT_EQ(directory.read("unsolved.epd"), c.unsolved ? fen + "\n" : "") << c.line;
    }
}

// The lines of a run, and their sums.
TEST(EpdRunner, Lines) {
    const ToolDirectory directory;
    directory.write("suite", MATE + " bm Ra8;\n\n" + BLACK_MATE + " bm Ra2;\nlast line, no record");
    const Ending told = directory.run({"-nolog", "-anepd", "suite", "-d", "6", "-hash", "1"});
    ASSERT_GT(told.lines.size(), 20U);
    EXPECT_EQ(told.lines[0], "Analyzing suite...");
    EXPECT_EQ(told.lines[1], "pos= 1");
    EXPECT_EQ(told.lines[2], MATE);
    EXPECT_EQ(told.lines[3], MATE) << "the diagram";
    EXPECT_TRUE(contains(told.lines, "pos= 2"));
    EXPECT_EQ(lines_with(told.lines, "info depth ").empty(), false);
    const Lines moves = lines_with(told.lines, "move= ");
    ASSERT_EQ(moves.size(), 2U);
    u64 nodes = 0;
    for (std::size_t i = 0; i < moves.size(); ++i) {
        const std::string best = i == 0 ? "a1a8" : "a8a1";
        EXPECT_TRUE(matches(moves[i], "move= " + best + R"(, time= \d+\.\d{3}, score= 9998, )" +
                                          R"(nodes= \d+, \d+K nps)"))
            << moves[i];
        nodes += std::stoull(moves[i].substr(moves[i].find("nodes= ") + 7));
    }
    const Ending silent = directory.run(quiet("6"));
    const char* const patterns[] = {"Analyzing suite\\.\\.\\.",
                                    "1 / 2 correct best moves",
                                    "total nodes= \\d+",
                                    "total time= \\d+\\.\\d\\d seconds",
                                    "avg depth= \\d+\\.0",
                                    "avg nodes= \\d+\\.0",
                                    "node_rate= \\d+",
                                    "avg bf= 2\\.00",
                                    ""};
    ASSERT_EQ(silent.lines.size(), std::size(patterns));
    for (std::size_t i = 0; i < std::size(patterns); ++i) {
        EXPECT_TRUE(matches(silent.lines[i], patterns[i])) << silent.lines[i];
    }
    EXPECT_TRUE(contains(silent.lines, format("total nodes= %d", int(nodes))));
    EXPECT_TRUE(contains(silent.lines, format("avg nodes= %d.0", int(nodes / 2))));
}

TEST(EpdRunner, DepthZero) {
    const ToolDirectory directory;
    directory.write("suite", MATE + "\n" + MATE + " bm Ra8;\n");
    const Ending ending = directory.run(quiet("0"));
    EXPECT_EQ(correct(ending), "0 / 2");
    EXPECT_TRUE(contains(ending.lines, "avg depth= 0.0"));
    EXPECT_EQ(directory.read("unsolved.epd"), "") << "not searched, so not unsolved";
}

TEST(EpdRunner, NoFile) {
    const ToolDirectory directory;
    make_pipe(directory.path() + "/pipe");
    const std::pair<std::string, int> cases[] = {
        {"missing", 0}, {".", 1}, {"pipe", 1}, {"/dev/zero", 1}};
    for (const auto& [file, status] : cases) {
        const Ending ending = directory.run({"-anepd", file});
        EXPECT_EQ(ending.status, status) << file;
        EXPECT_EQ(ending.lines, Lines{});
        EXPECT_EQ(ending.errors, status == 0 ? "" : "quon: " + file + " cannot be read\n");
    }
}

TEST(EpdRunner, OutputFull) {
    const ToolDirectory directory;
    if (!directory.make_full("unsolved.epd")) GTEST_SKIP() << "no such device";
    directory.write("suite", MATE + "\n" + MATE + "\n");
    const Ending ending = directory.run(quiet("2"));
    EXPECT_EQ(ending.status, 1);
    EXPECT_NE(ending.errors.find("unsolved.epd"), std::string::npos) << ending.errors;
    EXPECT_EQ(correct(ending), "0 / 1");
}

const std::string OPENING = "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq -\n";

// A long run ends early and breaks the search under way off.
TEST(EpdRunner, EarlyEnd) {
    const ToolDirectory directory;
    directory.write("suite", OPENING + OPENING + OPENING);
    const struct {
        const char* what;
        void (*end)(Process& process);
    } cases[] = {
        {"quit",
         [](Process& p) {
             p.send({"position fen 8/8 w - -", "isready", "quit"});
         }},
        {"stop",
         [](Process& p) {
             p.send({"isready", "stop"});
         }},
        {"end of input",
         [](Process& p) {
             p.send({"isready"});
             p.close_input();
         }},
        {"Ctrl-C",
         [](Process& p) {
             p.send({"isready"});
             p.read_to("readyok");
             p.signal(SIGINT);
         }},
    };
    for (const auto& c : cases) {
        Process process({"-nolog", "-hash", "1", "-anepd", "suite", "-t", "500"}, directory.path());
        process.read_to("info depth 4 ");
        c.end(process);
        const Ending ending = process.wait();
        EXPECT_EQ(ending.status, 0) << c.what;
        EXPECT_EQ(correct(ending), "0 / 1") << c.what;
        EXPECT_EQ(contains(ending.lines, "readyok"), std::string(c.what) != "Ctrl-C") << c.what;
        EXPECT_EQ(directory.read("unsolved.epd"), OPENING) << c.what;
    }
}

TEST(EpdRunner, StandardOutputLost) {
    const ToolDirectory directory;
    directory.write("suite", OPENING + OPENING);
    Process process({"-nolog", "-hash", "1", "-anepd", "suite", "-t", "500"}, directory.path());
    process.read_to("info depth 4 ");
    process.close_output();
    const Ending ending = process.wait();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.errors, "quon: standard output cannot be written\n");
}

// What stands there are positions, not commands.
TEST(EpdRunner, SuiteOnStandardInput) {
    std::string suite = "quit\n";
    for (int i = 0; i < 600; ++i) suite += MATE + " bm Ra8;\n";
    for (const char* depth : {"1", "6"}) {
        const Ending ending =
            run_to_end({"-quiet", "-hash", "1", "-anepd", "/dev/stdin", "-d", depth}, suite);
        EXPECT_EQ(correct(ending), "600 / 600") << depth;
        EXPECT_EQ(ending.errors, "");
    }
}

// An input that has ended before the tool starts does not end it, whatever it holds.
TEST(EpdRunner, InputEndedBefore) {
    const ToolDirectory directory;
    directory.write("suite", MATE + " bm Ra8;\n" + MATE + " bm Ra8;\n");
    for (const std::string& input :
         {std::string(), std::string("text"), std::string("text\n"), std::string(20000, 'x')}) {
        Process process(quiet("6"), directory.path(), &input);
        EXPECT_EQ(correct(process.wait()), "2 / 2") << input;
    }
}

}  // namespace
}  // namespace quon::test
