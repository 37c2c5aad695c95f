// The ends of long work, of the tools and in the console: asked for in every way, soon, and with
// whole files left behind; forced by files that cannot be used.

#include <csignal>

#include "harness/process.h"
#include "platform/clock.h"

namespace quon::test {
namespace {

enum class Way { QUIT, STOP, END_OF_INPUT, CTRL_C, TERMINATE, HANG_UP, OUTPUT_LOST };
using enum Way;
const Lines NAMES = {"quit", "stop", "end of input", "Ctrl-C", "SIGTERM", "SIGHUP", "output lost"};

// Returns when that was, in seconds.
double ask_to_end(Process& process, Way way) {
    const double now = monotonic_seconds();
    switch (way) {
        case QUIT: process.send({"position fen 8/8 w - -", "quit"}); break;  // one is no command
        case STOP: process.send({"stop"}); break;
        case END_OF_INPUT: process.close_input(); break;
        case CTRL_C: process.signal(SIGINT); break;
        case TERMINATE: process.signal(SIGTERM); break;
        case HANG_UP: process.signal(SIGHUP); break;
        case OUTPUT_LOST: process.close_output(); break;
    }
    return now;
}

void expect_soon(double start) { EXPECT_LT(monotonic_seconds() - start, 1.0 * SLOWNESS); }

Lines with(Lines words, const Lines& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (; times > 0; --times) all += text;
    return all;
}

const std::string KINGS = "8/8/4k3/8/8/4K3/8/8 w - - 1-0\n";
const std::string OPENING = "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 1/2\n";
const std::string WILD = "rnbqkbnr/rrrrrrr1/8/8/8/8/RRRRRRR1/RNBQKBNR w ";  // captures without end

std::string knights_game() {
    return "[Event \"a\"]\n" +
           repeated("Nf3 {0.00/9} Nf6 {0.00/9} Ng1 {0.00/9} Ng8 {0.00/9}\n", 15);
}

// A directory with work that takes long.
struct LongWork : testing::Test {
    const ToolDirectory directory;

    LongWork() {
        std::string wild;
        for (const char* rights : {"KQkq", "KQk", "KQq", "KQ", "Kkq", "Qkq", "kq", "K", "Q", "-"}) {
            wild += WILD + rights + " - bm a2a7; c9 \"1-0\";\n";
        }
        directory.write("wild.epd", wild);
        directory.write("suite", repeated(OPENING, 3));
        directory.write("games", repeated(knights_game(), 20000));
        directory.write("lines", repeated(OPENING, 200000));
        for (const char* name : {"empty", "book.pgn", "test.epd"}) {  // nothing, but that is long
            directory.write(name, "");
            std::filesystem::resize_file(directory.path(name), std::uintmax_t{1} << 34);
        }
        directory.write("book.opn", "old");
    }

    // What is wrong with the file that a tool has left, given what it printed.
    std::string problem(const std::string& tool, const Lines& printed) const {
        if (tool == "-anepd") {
            if (!contains(printed, "0 / 1 correct best moves")) return "not one position";
            const std::string file = directory.read("unsolved.epd");
            return file == OPENING.substr(0, OPENING.find(" 1/2")) + "\n" ? "" : file;
        }
        if (tool == "-scan_pgn2") {
            const std::string file = directory.read("tmp.epd");
            const auto records = std::count(file.begin(), file.end(), '\n') - 1;
            if (!printed.back().ends_with("positions= " + std::to_string(records))) return "count";
            return file.ends_with("c9 \"1/2-1/2\";\n\n") ? "" : "the last record is not whole";
        }
        std::string told;
        for (const std::string& line : printed) told += line + "\n";
        return directory.read("tune.log") == told ? "" : "tune.log is not what was printed";
    }
};

TEST_F(LongWork, Tools) {
    const std::vector<Way> all = {QUIT,    STOP,      END_OF_INPUT, CTRL_C,
                                  HANG_UP, TERMINATE, OUTPUT_LOST};
    const struct {
        Lines arguments;
        std::vector<Way> ways;
        std::string begun = {};  // the line from which on it is at work, and leaves a file
    } cases[] = {
        {{"-anepd", "suite", "-t", "500"}, all, "info depth 4 "},
        {{"-scan_pgn2", "games"}, all, "game 100"},
        {{"-tune", "lines"}, all, "pass= 0"},
        {{"-mktune", "wild.epd"}, {QUIT, STOP, END_OF_INPUT, CTRL_C}},
        {{"-anepd", "wild.epd", "-d", "1"}, {STOP, TERMINATE}},
        {{"-anepd", "wild.epd", "-d", "5"}, {QUIT, END_OF_INPUT}},
        {{"-anepd", "empty"}, {QUIT}},
        {{"-tune", "empty"}, {STOP}},
        {{"-scan_pgn1", "empty"}, {END_OF_INPUT}},
    };
    for (const auto& c : cases) {
        for (const Way way : c.ways) {
            SCOPED_TRACE(c.arguments[0] + " " + c.arguments[1] + ": " + NAMES[std::size_t(way)]);
            Process process(with({"-nolog", "-hash", "1"}, c.arguments), directory.path());
            Lines printed;
            if (c.begun.empty()) {
                process.send({"isready"});
                process.read_to("readyok");
                sleep_ms(100);  // beyond what counts as there before the start
            } else {
                printed = process.read_to(c.begun);
            }
            const double start = ask_to_end(process, way);
            const Ending ending = process.wait();
            if (way != OUTPUT_LOST) expect_soon(start);  // that is seen at the next line
            EXPECT_EQ(ending.status, way == OUTPUT_LOST ? 1 : 0);
            EXPECT_EQ(ending.errors,
                      way == OUTPUT_LOST ? "quon: standard output cannot be written\n" : "");
            if (way == OUTPUT_LOST || c.begun.empty()) continue;
            EXPECT_EQ(problem(c.arguments[0], with(printed, ending.lines)), "");
        }
    }
}

TEST_F(LongWork, ConsoleCommands) {
    const struct {
        std::string command;
        std::vector<Way> ways;
        const char* printed = "";  // then
    } cases[] = {
        {"perft 20", {QUIT, STOP, END_OF_INPUT, CTRL_C, TERMINATE, HANG_UP}, "perft ended"},
        {"ev", {QUIT, CTRL_C, TERMINATE}, "evaluation ended"},
        {"tune p1 wild.epd", {STOP, END_OF_INPUT, TERMINATE}, "done!"},
        {"mkbook", {QUIT, CTRL_C, END_OF_INPUT}, "ended, no book made"},
        {"load empty", {STOP, TERMINATE}},
        {"get 7", {CTRL_C, END_OF_INPUT}},
        {"edit", {QUIT, STOP, CTRL_C, HANG_UP}},
        {"self", {END_OF_INPUT}, "move= "},
    };
    for (const auto& c : cases) {
        for (const Way way : c.ways) {
            SCOPED_TRACE(c.command + ": " + NAMES[std::size_t(way)]);
            Process console({"-c", "-nolog", "-hash", "1"}, directory.path());
            console.send({"fen " + WILD + "- -", "level 1 100", c.command});
            console.read_to("set level");
            sleep_ms(100);
            const double start = ask_to_end(console, way);
            Lines printed;
            if (way == STOP || way == CTRL_C) {  // that ends the command alone
                sleep_ms(20);
                console.send({"level 1 2"});
                printed = console.read_to("set level to 1 moves in 2.00");
                console.send({"quit"});
            }
            const Ending ending = console.wait();
            EXPECT_EQ(ending.status, 0);
            expect_soon(start);
            printed = with(printed, ending.lines);
            EXPECT_FALSE(lines_with(printed, c.printed).empty());
            EXPECT_EQ(lines_with(printed, "visited"), Lines{});
            EXPECT_EQ(directory.read("book.opn"), "old");
            EXPECT_FALSE(std::filesystem::exists(directory.path("tmp.opn")));
        }
    }
}

// Commands sent in one go, with "quit" or the end of the input behind them, are not cut short.
TEST_F(LongWork, WhatWaitsAlreadyEndsNothing) {
    std::filesystem::resize_file(directory.path("book.pgn"), 1000000);
    directory.write("kings.epd", KINGS);
    for (const char* last : {"quit\n", "stop\n", ""}) {
        Process console({"-c", "-nolog", "-hash", "1"}, directory.path());
        console.send_bytes(
            std::string("perft 5\ntune p1 kings.epd\nmkbook\nfen 7k/8/6K1/8/8/8/8/R7 w - -\n") +
            (*last ? "" : "depth 3\nself\n") + last);
        console.close_input();
        const Ending ending = console.wait();
        EXPECT_EQ(ending.status, 0);
        EXPECT_EQ(lines_with(ending.lines, "visited 4865609 nodes").size(), 1U) << last;
        EXPECT_TRUE(contains(ending.lines, "done!") && contains(ending.lines, "done")) << last;
        EXPECT_EQ(lines_with(ending.lines, "move= a1a8").size(), *last ? 0U : 1U);
        EXPECT_EQ(lines_with(ending.lines, "move= null").size(), *last ? 0U : 1U) << "mate";
    }
}

// The first one lets the tool wait for its reader for a while.
TEST_F(LongWork, ASecondSignalKills) {
    directory.write("suite", repeated("6k1/5ppp/8/8/8/8/8/R5K1 w - - bm Ra8;\n", 50));
    Process process({"-nolog", "-anepd", "suite", "-d", "1"}, directory.path(), nullptr,
                    OutputPipe::NARROW);
    process.await_full_output();
    process.signal(SIGTERM);
    sleep_ms(50);
    process.signal(SIGINT);
    EXPECT_EQ(process.wait().status, -1);
}

enum Trouble { MISSING, UNREADABLE, IN_THE_WAY, FULL, OWN_INPUT };

TEST(FilesOfTools, ThatCannotBeUsed) {
    const std::string games = repeated(knights_game(), 40);
    const struct {
        Lines tool;
        std::string input;
        std::string output;
        Trouble trouble;
        std::string errors;
    } cases[] = {
        {{"-anepd"}, "", "", MISSING, "input cannot be read"},
        {{"-scan_pgn2"}, "", "", MISSING, "input cannot be read"},
        {{"-tune"}, "", "", MISSING, "input cannot be read"},
        {{"-mktune"}, "", "", MISSING, "input cannot be read"},
        {{"-anepd"}, "", "", UNREADABLE, "input cannot be read"},
        {{"-scan_pgn1"}, "", "", UNREADABLE, "input cannot be read"},
        {{"-tune"}, "", "", UNREADABLE, "input cannot be read"},
        {{"-mktune"}, "", "", UNREADABLE, "input cannot be read"},
        {{"-tune"}, KINGS, "tune.log", IN_THE_WAY, "can't create tune.log"},
        {{"-tune"}, KINGS, "junk.epd", IN_THE_WAY, "can't create junk.epd"},
        {{"-mktune"}, KINGS, "tune_new.epd", IN_THE_WAY, "can't create tune_new.epd"},
        {{"-d", "2", "-anepd"}, OPENING, "unsolved.epd", FULL, "unsolved.epd could not"},
        {{"-scan_pgn3"}, games, "tmp.epd", FULL, "tmp.epd could not be written whole"},
        {{"-tune"}, KINGS, "tune.log", FULL, "tune.log could not be written whole"},
        {{"-mktune"}, KINGS, "tune_new.epd", FULL, "tune_new.epd could not be written whole"},
        {{"-anepd"}, OPENING, "unsolved.epd", OWN_INPUT, "unsolved.epd would be overwritten"},
        {{"-scan_pgn1"}, games, "tmp.pgn", OWN_INPUT, "tmp.pgn would be overwritten"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool.back() + " " + c.output + ", trouble " + std::to_string(c.trouble));
        const ToolDirectory directory;
        const std::string input = c.trouble == OWN_INPUT ? c.output : "input";
        if (c.trouble == UNREADABLE) make_pipe(directory.path("input"));
        if (c.trouble > UNREADABLE) directory.write(input, c.input);
        if (c.trouble == IN_THE_WAY) std::filesystem::create_directory(directory.path(c.output));
        if (c.trouble == FULL) {
            if (!std::filesystem::exists("/dev/full")) continue;
            std::filesystem::create_symlink("/dev/full", directory.path(c.output));
        }
        const Ending ending = directory.run(with({"-nolog", "-hash", "1"}, with(c.tool, {input})));
        EXPECT_EQ(ending.status, 1);
        EXPECT_TRUE(ending.errors.starts_with("quon: " + c.errors)) << ending.errors;
        if (c.trouble <= UNREADABLE) {
            EXPECT_EQ(ending.lines, Lines{});
            EXPECT_FALSE(std::filesystem::exists(directory.path("tune_new.epd")));
        }
        if (c.trouble == OWN_INPUT) {
            EXPECT_EQ(directory.read(c.output), c.input);
        }
    }
}

}  // namespace
}  // namespace quon::test
