// The test-suite runner as a program, on small suites whose solutions are certain.

#include <gtest/gtest.h>

#include "frontend/output.h"
#include "support/board_support.h"
#include "support/tool_support.h"

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
    const Ending ending = directory.run(quiet("4"));
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.lines, Lines{});
    EXPECT_EQ(ending.errors, "");
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

// How a long run ends early.
TEST(EpdRunner, EarlyEnd) {
    const std::string position = "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq -\n";
    const ToolDirectory directory;
    directory.write("suite", position + position + position);
    const struct {
        const char* what;
        void (*end)(Process& process);
        const char* seconds;  // for each position
        bool used_up;
    } cases[] = {
        {"quit",
         [](Process& p) {
             p.send({"position fen 8/8 w - -", "quit"});
         },
         "1", true},
        {"end of input", [](Process& p) { p.close_input(); }, "1", true},
        {"stop",
         [](Process& p) {
             p.send({"isready", "stop"});
         },
         "300", false},
        {"Ctrl-C", [](Process& p) { p.interrupt(); }, "300", false},
    };
    for (const auto& c : cases) {
        Process process({"-nolog", "-hash", "1", "-anepd", "suite", "-t", c.seconds},
                        directory.path());
        process.read_to("info depth 4 ");
        c.end(process);
        const Ending ending = process.wait();
        EXPECT_EQ(ending.status, 0) << c.what;
        EXPECT_EQ(correct(ending), "0 / 1") << c.what;
        EXPECT_EQ(lines_with(ending.lines, "readyok"), Lines{});
        const Lines time = lines_with(ending.lines, "total time= ");
        ASSERT_EQ(time.size(), 1U);
        EXPECT_EQ(std::stod(time[0].substr(12)) >= std::stod(c.seconds), c.used_up)
            << c.what << ": " << time[0];
        EXPECT_EQ(directory.read("unsolved.epd"), position) << c.what;
    }
}

// Shallow searches look at the input at every 256th position.
TEST(EpdRunner, ShallowEarlyEnd) {
    std::string suite;
    for (int i = 0; i < 300; ++i) suite += MATE + "\n";
    const ToolDirectory directory;
    directory.write("suite", suite);
    Process process(quiet("1"), directory.path());
    process.send({"quit"});
    EXPECT_EQ(correct(process.wait()), "0 / 255");
}

}  // namespace
}  // namespace quon::test
