// Long work of every kind, on the command line and in the console, is over soon after it is asked
// to end, in whichever way; what it leaves behind is in order.

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "harness/tool_support.h"
#include "platform/clock.h"
#include "protocol/session.h"

namespace quon::test {
namespace {

enum class Way { QUIT, STOP, END_OF_INPUT, CTRL_C, TERMINATE, HANG_UP };
using enum Way;
constexpr const char* NAMES[] = {"quit", "stop", "end of input", "Ctrl-C", "SIGTERM", "SIGHUP"};

void ask_to_end(Process& process, Way way) {
    switch (way) {
        case QUIT: process.send({"quit"}); break;
        case STOP: process.send({"stop"}); break;
        case END_OF_INPUT: process.close_input(); break;
        case CTRL_C: process.signal(SIGINT); break;
        case TERMINATE: process.signal(SIGTERM); break;
        case HANG_UP: process.signal(SIGHUP); break;
    }
}

void expect_soon(double start, const std::string& what) {
    const double seconds = monotonic_seconds() - start;
    EXPECT_LT(seconds, 1.0 * SLOWNESS) << what;
}

// Positions whose captures have no end, and files that take long without holding anything.
struct LongWork : testing::Test {
    const ToolDirectory directory;

    LongWork() {
        std::string wild;
        for (const char* rights : {"KQkq", "KQk", "KQq", "KQ", "Kkq", "Qkq", "kq", "K", "Q", "-"}) {
            wild += std::string(WILD) + rights + " - bm a2a7; c9 \"1-0\";\n";
        }
        directory.write("wild.epd", wild);
        for (const char* name : {"empty", "book.pgn", "test.epd"}) {
            directory.write(name, "");
            std::filesystem::resize_file(directory.path() + "/" + name, std::uintmax_t{1} << 34);
        }
        directory.write("book.opn", "old");
    }
    static constexpr char WILD[] = "rnbqkbnr/rrrrrrr1/8/8/8/8/RRRRRRR1/RNBQKBNR w ";
};

TEST_F(LongWork, Tools) {
    const struct {
        Lines arguments;
        std::vector<Way> ways;
    } cases[] = {
        {{"-mktune", "wild.epd"}, {QUIT, STOP, END_OF_INPUT, CTRL_C, TERMINATE, HANG_UP}},
        {{"-anepd", "wild.epd", "-d", "1"}, {STOP, CTRL_C, TERMINATE}},
        {{"-anepd", "wild.epd", "-d", "5"}, {QUIT, END_OF_INPUT, HANG_UP}},
        {{"-anepd", "empty"}, {QUIT, TERMINATE}},
        {{"-tune", "empty"}, {STOP, HANG_UP}},
        {{"-scan_pgn1", "empty"}, {END_OF_INPUT, TERMINATE}},
    };
    for (const auto& c : cases) {
        for (const Way way : c.ways) {
            const std::string what = c.arguments[0] + " " + c.arguments[1] + ": " + NAMES[int(way)];
            Lines arguments = {"-nolog", "-hash", "1"};
            arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
            Process process(arguments, directory.path());
            process.send({"isready"});
            process.read_to("readyok");
            sleep_ms(100);  // beyond what counts as there before the start
            const double start = monotonic_seconds();
            ask_to_end(process, way);
            EXPECT_EQ(process.wait().status, 0) << what;
            expect_soon(start, what);
        }
    }
}

TEST_F(LongWork, ConsoleCommands) {
    const struct {
        const char* command;
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
        {"self", {QUIT, END_OF_INPUT}, "move= "},
    };
    for (const auto& c : cases) {
        for (const Way way : c.ways) {
            const std::string what = std::string(c.command) + ": " + NAMES[int(way)];
            Process console({"-c", "-nolog", "-hash", "1"}, directory.path());
            console.send({std::string("fen ") + WILD + "- -", "level 1 100", c.command});
            console.read_to("set level");
            sleep_ms(100);
            const double start = monotonic_seconds();
            ask_to_end(console, way);
            Lines printed;
            if (way == STOP || way == CTRL_C) {  // that ends the command alone
                sleep_ms(20);
                console.send({"level 1 2"});
                printed = console.read_to("set level to 1 moves in 2.00");
                console.send({"quit"});
            }
            const Ending ending = console.wait();
            EXPECT_EQ(ending.status, 0) << what;
            expect_soon(start, what);
            printed.insert(printed.end(), ending.lines.begin(), ending.lines.end());
            if (way != QUIT || std::string(c.command) != "self") {
                EXPECT_FALSE(lines_with(printed, c.printed).empty()) << what;
            }
            EXPECT_EQ(lines_with(printed, "visited").size(), 0U) << what;
            EXPECT_EQ(directory.read("book.opn"), "old");
            EXPECT_FALSE(std::filesystem::exists(directory.path() + "/tmp.opn"));
        }
    }
}

// Commands sent in one go, with "quit" or the end of the input behind them, are not cut short.
TEST_F(LongWork, WhatWaitsAlreadyEndsNothing) {
    std::filesystem::resize_file(directory.path() + "/book.pgn", 1000000);
    for (const char* last : {"quit\n", "stop\n", ""}) {
        Process console({"-c", "-nolog", "-hash", "1"}, directory.path());
        console.send_bytes(std::string("perft 5\nmkbook\nfen 7k/8/6K1/8/8/8/8/R7 w - -\n") +
                           (*last ? "" : "depth 3\nself\n") + last);
        console.close_input();
        const Ending ending = console.wait();
        EXPECT_EQ(ending.status, 0);
        EXPECT_EQ(lines_with(ending.lines, "visited 4865609 nodes").size(), 1U) << last;
        EXPECT_TRUE(contains(ending.lines, "done")) << last;
        EXPECT_EQ(lines_with(ending.lines, "move= a1a8").size(), *last ? 0U : 1U);
        EXPECT_EQ(lines_with(ending.lines, "move= null").size(), *last ? 0U : 1U) << "mate";
    }
}

// The first one lets the tool wait for its reader for a while.
TEST_F(LongWork, ASecondSignalKills) {
    std::string suite;
    for (int i = 0; i < 50; ++i) suite += "6k1/5ppp/8/8/8/8/8/R5K1 w - - bm Ra8;\n";
    directory.write("suite", suite);
    Process process({"-nolog", "-anepd", "suite", "-d", "1"}, directory.path(), nullptr,
                    OutputPipe::NARROW);
    process.await_full_output();
    process.signal(SIGTERM);
    sleep_ms(50);
    process.signal(SIGINT);
    EXPECT_EQ(process.wait().status, -1);
}

}  // namespace
}  // namespace quon::test
