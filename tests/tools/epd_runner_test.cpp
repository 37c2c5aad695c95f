// The test-suite runner as a program, on small suites whose solutions are certain.

#include "harness/process.h"

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
    for (const std::string depth : {"4", "8"}) {
        const std::string suite = data_file("/data/epd/bratko-kopec.epd");
        const Ending ending =
            directory.run({"-nolog", "-noise", "1000", "-anepd", suite, "-d", depth});
        EXPECT_EQ(ending.status, 0);
        Lines printed;
        for (const std::string& line : ending.lines) printed.push_back(comparable(line));
        int compared = 0;
        for (std::string line :
             shared_lines("/reference/tools/epd-bratko-kopec-" + depth + ".txt")) {
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
        const char* correct;
        Lines lines;
        std::string unsolved = {};
    } cases[] = {
        {"7 / 7",
         {MATE + " bm Ra8#; id \"1\";", MATE + " bm Ra8+;", MATE + " bm Ra8 Kf1;",
          MATE + " am Kf1;", MATE + " bm Ra8; am Ra8;", BLACK_MATE + " bm Ra1;\r",
          "\xEF\xBB\xBF" + MATE + " bm Ra8;"}},  // the first line of its file
        // Only the first move counts; what cannot be read is not there.
        {"0 / 4",
         {MATE + " bm Kf1;", MATE + " bm Kf1 Ra8;", MATE + " am Ra8;", MATE + " bm Qa8; am Ra8;"}},
        {"0 / 4",
         {MATE + " bm Qa8;", MATE + " id \"only\"; c0 \"text\";", MATE,
          MATE + " id \"" + std::string(400, 'x') + "\"; bm Ra8;"},
         MATE + "\n" + MATE + "\n" + MATE + "\n" + MATE + "\n"},
        // Not a record, or none that can be searched.
        {"0 / 0",
         {"# " + MATE, "; " + MATE, " " + MATE, "8/8/8 w -", "k - - -",
          "8/8/8/8/8/8/8/7K w - - bm Kg1;", std::string(12, '\0'), ""}},
    };
    const ToolDirectory directory;
    for (const auto& c : cases) {
        std::string suite;
        for (auto line = c.lines.rbegin(); line != c.lines.rend(); ++line) suite += *line + "\n";
        directory.write("suite", suite);
        const Ending ending = directory.run(quiet("2"));
        EXPECT_EQ(ending.status, 0) << suite;
        EXPECT_EQ(correct(ending), c.correct) << suite;
        EXPECT_EQ(directory.read("unsolved.epd"), c.unsolved) << suite;
    }
}

// The other figures are compared with the reference.
TEST(EpdRunner, Statistics) {
    const ToolDirectory directory;
    directory.write("suite", MATE + " bm Ra8;\n\n" + BLACK_MATE + " bm Ra2;\nlast line, no record");
    const Lines lines = directory.run(quiet("6")).lines;
    ASSERT_EQ(lines.size(), 9U);
    EXPECT_EQ(lines[0] + lines[1], "Analyzing suite...1 / 2 correct best moves");
    EXPECT_TRUE(matches(lines[3], "total time= \\d+\\.\\d\\d seconds")) << lines[3];
    EXPECT_TRUE(matches(lines[6], "node_rate= \\d+")) << lines[6];
    const Ending unsearched = directory.run(quiet("0"));
    EXPECT_EQ(correct(unsearched), "0 / 2");
    EXPECT_TRUE(contains(unsearched.lines, "avg depth= 0.0"));
    EXPECT_EQ(directory.read("unsolved.epd"), "") << "not searched, so not unsolved";
}

// Standard input as the suite holds positions, not commands; one that has ended before the tool
// starts does not end it, whatever it holds.
TEST(EpdRunner, StandardInput) {
    std::string suite = "quit\n";
    for (int i = 0; i < 600; ++i) suite += MATE + " bm Ra8;\n";
    for (const char* depth : {"1", "6"}) {
        const Ending ending =
            run_to_end({"-quiet", "-hash", "1", "-anepd", "/dev/stdin", "-d", depth}, suite);
        EXPECT_EQ(correct(ending), "600 / 600") << depth;
        EXPECT_EQ(ending.errors, "");
    }
    const ToolDirectory directory;
    directory.write("suite", MATE + " bm Ra8;\n" + MATE + " bm Ra8;\n");
    for (const std::string& input : {std::string(), std::string("text"), std::string(20000, 'x')}) {
        Process process(quiet("6"), directory.path(), &input);
        EXPECT_EQ(correct(process.wait()), "2 / 2") << input;
    }
}

}  // namespace
}  // namespace quon::test
