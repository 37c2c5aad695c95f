// The program as a process: switches, exit statuses, files, the ends of its input and output, the
// benchmark.

#include <cstdlib>
#include <fstream>

#include "harness/process.h"

namespace quon::test {
namespace {

TEST(Program, SwitchesThatEndIt) {
    const struct {
        Lines words;
        std::string output, error;
    } cases[] = {
        {{"-c", "--version", "-hash"}, "Quon 3.60", ""},
        {{"version"}, "Quon 3.60", ""},
        {{"-hash"}, "", "-hash needs an argument"},
        {{"-bench", "-threads"}, "", "-threads needs an argument"},
        {{"-nps", "21"}, "", "-nps needs a number above 21"},
        {{"-nps", "nan"}, "", "-nps needs a number above 21"},
        {{"-calibration", "21"}, "", "-calibration needs a number above 21"},
    };
    for (const auto& c : cases) {
        Process process(c.words);
        const Ending ending = process.wait();
        EXPECT_EQ(ending.status, c.error.empty() ? 0 : 1);
        EXPECT_EQ(ending.lines, c.output.empty() ? Lines{} : Lines{c.output});
        EXPECT_TRUE(ending.errors.starts_with(c.error.empty() ? "" : "quon: " + c.error));
        EXPECT_EQ(ending.errors.empty(), c.error.empty()) << ending.errors;
        EXPECT_TRUE(std::filesystem::is_empty(process.directory())) << "nothing is created";
    }
}

TEST(Program, Quiet) {
    const Ending quiet = run_to_end({"-quiet"}, "go depth 6\n");
    EXPECT_EQ(quiet.status, 0);
    ASSERT_EQ(quiet.lines.size(), 2U) << "speed and move";
    EXPECT_TRUE(names_move(quiet.lines.back()));
}

TEST(Program, EndOfInput) {
    const struct {
        std::string input, surely;  // a line that begins so comes
        std::size_t moves = 1;
    } cases[] = {
        {"", "info string et=", 0},
        {"isready", "readyok", 0},  // the last line has no end
        {"go depth 5\nposition startpos\nisready", "readyok"},
        {"go depth 10\n", "info depth 10 "},
        {"go wtime 400 btime 400\n", "bestmove"},
        {"go infinite\n", "bestmove"},
        {"go ponder wtime 100000 btime 100000\n", "bestmove"},
        {"go infinite\nquit\nisready\n", "info string et=", 0},
    };
    for (const auto& c : cases) {
        const Ending ending = run_to_end({"-nolog"}, c.input);
        EXPECT_EQ(ending.status, 0) << c.input;
        EXPECT_FALSE(lines_with(ending.lines, c.surely).empty()) << c.input;
        const Lines best = lines_with(ending.lines, "bestmove");
        EXPECT_EQ(best.size(), c.moves) << c.input;
        for (const std::string& line : best) EXPECT_TRUE(names_move(line)) << c.input << line;
    }
}

const Lines PRINT_MUCH(60, "uci");

TEST(Program, EndsWhenNobodyReads) {
    const struct {
        Lines sent;
        void (Process::*cut)();
    } cases[] = {{{"quit"}, nullptr},
                 {{"stop", "quit"}, nullptr},  // the main thread waits for the search threads
                 {{}, &Process::close_input},
                 {{}, &Process::close_output}};
    for (const auto& c : cases) {
        for (const Lines& lines :
             {PRINT_MUCH, {"setoption name MultiPV value 30", "go infinite"}}) {
            Process process({"-nolog", "-threads", "2"}, {}, nullptr, OutputPipe::NARROW);
            process.send(lines);
            process.await_full_output();
            EXPECT_FALSE(process.ends_unread(50)) << &c - cases << lines.back();
            process.send(c.sent);
            if (c.cut) (process.*c.cut)();
            EXPECT_TRUE(process.ends_unread(5000)) << &c - cases << lines.back();
        }
    }
}

TEST(Program, LosesNoLineToASlowReader) {
    // Longer than the patience with a reader when the program is to end.
    constexpr int PAUSE_MS = 700;
    for (const OutputPipe output : {OutputPipe::NARROW, OutputPipe::NARROW_NONBLOCKING}) {
        Process engine({"-nolog"}, {}, nullptr, output);
        engine.send(PRINT_MUCH);
        engine.await_full_output();
        EXPECT_FALSE(engine.ends_unread(PAUSE_MS));
        engine.send({"isready", "uci", "quit"});
        const Lines lines = engine.wait().lines;
        EXPECT_EQ(lines_with(lines, "uciok").size(), 61U);
        EXPECT_EQ(lines_with(lines, "id author").size(), 61U);
        EXPECT_TRUE(contains(lines, "readyok"));
    }
    // The input of a tool was at its end before.
    const Directory directory;
    std::string suite;
    for (int i = 0; i < 50; ++i) suite += "6k1/5ppp/8/8/8/8/8/R5K1 w - - bm Ra8;\n";
    directory.write("suite", suite);
    Process tool({"-nolog", "-anepd", "suite", "-d", "1"}, directory.path(), nullptr,
                 OutputPipe::NARROW);
    tool.close_input();
    tool.await_full_output();
    EXPECT_FALSE(tool.ends_unread(PAUSE_MS));
    const Ending ending = tool.wait();
    EXPECT_EQ(ending.status, 0) << ending.errors;
    EXPECT_EQ(lines_with(ending.lines, "move= ").size(), 50U);
}

// Runs the program in a shell, for redirections and limits; its exit status.
int run_in_shell(const std::string& directory, const std::string& redirections,
                 const std::string& limits = {}) {
    const std::string command =
        "cd '" + directory + "' && " + limits + " timeout 120 " + QUON_BINARY + " " + redirections;
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Program, OtherKindsOfInputAndOutput) {
    const Process host({"--version"});
    const std::string& directory = host.directory();
    std::ofstream(directory + "/commands") << "position startpos\ngo depth 3\n";
    EXPECT_EQ(run_in_shell(directory, "<commands >answers"), 0);
    // Here the speed is measured.
    const Lines answers = split(read_file(directory + "/answers"), '\n');
    const std::string speed = lines_with(answers, "info string et=").at(0);
    EXPECT_TRUE(matches(speed, R"(info string et= \d\.\d{3}, nodes= \d+, nps= \d+)")) << speed;
    EXPECT_EQ(lines_with(answers, "bestmove ").size(), 1U);
    const std::pair<const char*, int> cases[] = {
        {"</dev/null >answers", 0},        {"<&- >answers", 0},
        {"-bench -d 1 <&- >answers", 0},   {"<. >answers", 0},
        {"<commands >&- 2>errors", 1},     {"<commands >/dev/full 2>errors", 1},
        {"--help >/dev/full 2>errors", 1},
    };
    for (const auto& [redirections, status] : cases) {
        EXPECT_EQ(run_in_shell(directory, redirections), status) << redirections;
    }
    EXPECT_EQ(read_file(directory + "/errors"), "quon: standard output cannot be written\n");
}

TEST(Program, MemoryRunsOut) {
    const Process host({"--version"});
    const std::string& directory = host.directory();
    const auto last_answer = [&](const std::string& option, int status) {
        std::ofstream(directory + "/commands") << option << "\nisready\n";
        const std::string limits = "ulimit -v 600000 &&";
        EXPECT_EQ(run_in_shell(directory, "<commands >answers 2>&1", limits), status) << option;
        const Lines answers = split(read_file(directory + "/answers"), '\n');
        return answers.size() > 1 ? answers[answers.size() - 2] : "";
    };
    if (run_in_shell(directory, "--version >answers 2>&1", "ulimit -v 600000 &&") != 0) {
        GTEST_SKIP() << "a sanitizer needs more";
    }
    EXPECT_EQ(last_answer("setoption name Hash value 8192", 255),
              "info string not enough memory for a hash table of 8192M bytes");
    EXPECT_EQ(last_answer("setoption name Threads value 80", 255),
              "info string not enough memory for the search threads");
    EXPECT_TRUE(read_file(directory + "/quon.log").ends_with("for the search threads\n"));
}

TEST(Program, PipesInPlaceOfItsFiles) {
    const ToolDirectory directory;
    for (const char* name : {"quon.rc", "quon.opn"}) make_pipe(directory.path() + "/" + name);
    Session session({"-nolog"}, directory.path());
    EXPECT_EQ(session.answers({}), Lines{"info string book file quon.opn cannot be read"});
}

TEST(Program, WithoutALog) {
    // A place where no file can be made, whoever asks.
    Process nowhere({}, "/proc");
    nowhere.send({"uci", "go depth 3"});
    EXPECT_TRUE(names_move(nowhere.read_to("bestmove").back()));

    const Process host({"--version"});
    std::filesystem::create_directories(host.directory() + "/quon.log/full");
    Process blocked({}, host.directory());
    EXPECT_EQ(blocked.read_line(), "log file in use.");
    blocked.send({"isready", "quit"});
    const Ending ending = blocked.wait();
    EXPECT_EQ(ending.status, 0);
    EXPECT_TRUE(contains(ending.lines, "readyok"));
}

TEST(Bench, Signature) {
    const struct {
        Lines words;
        std::string threads, nodes;
        std::size_t lines;
    } cases[] = {{{"-bench", "-d", "6"}, "1 threads", "101415", 12},
                 {{"-bench2", "-d", "6"}, "1 threads", "245952", 22},
                 {{"-bench2", "-d", "2", "-threads", "2"}, "2 threads", "\\d+", 22}};
    for (const auto& c : cases) {
        const Ending ending = run_to_end(c.words, "");
        EXPECT_EQ(ending.status, 0);
        ASSERT_EQ(ending.lines.size(), c.lines);
        EXPECT_EQ(ending.lines[0], "Quon 3.60 running benchmark using " + c.threads);
        EXPECT_TRUE(matches(*(ending.lines.end() - 2), R"(pos +\d+: [ \d]{3}\.\d\d seconds)"));
        const std::string total = R"(total time= \d+\.\d\d seconds, nodes= )" + c.nodes;
        EXPECT_TRUE(matches(ending.lines.back(), total + R"(, nps= \d+)")) << ending.lines.back();
    }
}

}  // namespace
}  // namespace quon::test
