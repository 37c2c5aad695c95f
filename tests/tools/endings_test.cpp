// The ends of the tools: asked for, in each way, and forced by files that cannot be used.

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include "harness/tool_support.h"

namespace quon::test {
namespace {

const std::string KINGS = "8/8/4k3/8/8/4K3/8/8 w - - 1-0\n";
const std::string OPENING = "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 1/2\n";

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (; times > 0; --times) all += text;
    return all;
}

std::string knights_game() {
    return "[Event \"a\"]\n" +
           repeated("Nf3 {0.00/9} Nf6 {0.00/9} Ng1 {0.00/9} Ng8 {0.00/9}\n", 15);
}

// Work that takes a long time, and what it has left behind when it was ended.
struct LongTool {
    Lines arguments;
    std::string input;   // the content of the file "input"
    std::string begun;   // the line from which on it is at work
    std::string output;  // its file
    std::string (*problem)(const std::string& file, const Lines& printed);
};

const LongTool LONG_TOOLS[] = {
    {{"-anepd", "input", "-t", "500"},
     repeated(OPENING, 3),
     "info depth 4 ",
     "unsolved.epd",
     [](const std::string& file, const Lines& printed) -> std::string {
         if (!contains(printed, "0 / 1 correct best moves")) return "not one position";
         return file == OPENING.substr(0, OPENING.find(" 1/2")) + "\n" ? "" : file;
     }},
    {{"-scan_pgn2", "input"},
     repeated(knights_game(), 20000),
     "game 100",
     "tmp.epd",
     [](const std::string& file, const Lines& printed) -> std::string {
         const auto records = std::count(file.begin(), file.end(), '\n') - 1;
         const std::string total = "positions= " + std::to_string(records);
         if (!printed.back().ends_with(total)) return printed.back() + ", not " + total;
         return file.ends_with("c9 \"1/2-1/2\";\n\n") ? "" : "the last record is not whole";
     }},
    {{"-tune", "input"},
     repeated(OPENING, 200000),
     "pass= 0",
     "tune.log",
     [](const std::string& file, const Lines& printed) -> std::string {
         std::string told;
         for (const std::string& line : printed) told += line + "\n";
         return file == told && lines_with(printed, "pass= ").size() == 1 ? ""
                                                                          : "tune.log: " + file;
     }},
};

enum Way { QUIT, STOP, END_OF_INPUT, INTERRUPT, OUTPUT_LOST };

TEST(ToolEndings, AskedFor) {
    for (const LongTool& tool : LONG_TOOLS) {
        const ToolDirectory directory;
        directory.write("input", tool.input);
        for (const Way way : {QUIT, STOP, END_OF_INPUT, INTERRUPT, OUTPUT_LOST}) {
            SCOPED_TRACE(tool.output + ", way " + std::to_string(way));
            Lines arguments = {"-nolog", "-hash", "1"};
            arguments.insert(arguments.end(), tool.arguments.begin(), tool.arguments.end());
            Process process(arguments, directory.path());
            Lines printed = process.read_to(tool.begun);
            // Other lines are no commands here; "isready" is answered all the same.
            if (way == QUIT) process.send({"position fen 8/8 w - -", "isready", "quit"});
            if (way == STOP) process.send({"stop"});
            if (way == END_OF_INPUT) process.close_input();
            if (way == INTERRUPT) process.signal(SIGINT);
            if (way == OUTPUT_LOST) process.close_output();
            const Ending ending = process.wait();
            if (way == OUTPUT_LOST) {
                EXPECT_EQ(ending.status, 1);
                EXPECT_EQ(ending.errors, "quon: standard output cannot be written\n");
                continue;
            }
            EXPECT_EQ(ending.status, 0);
            EXPECT_EQ(contains(ending.lines, "readyok"), way == QUIT);
            printed.insert(printed.end(), ending.lines.begin(), ending.lines.end());
            std::erase(printed, "readyok");
            EXPECT_EQ(tool.problem(directory.read(tool.output), printed), "");
        }
    }
}

enum Trouble { MISSING, UNREADABLE, IN_THE_WAY, FULL, OWN_INPUT };

TEST(ToolEndings, FilesThatCannotBeUsed) {
    const std::string games = repeated(knights_game(), 40);
    const struct {
        Lines tool;
        std::string input;
        std::string output;
        Trouble trouble;
        int status;
        std::string errors;
    } cases[] = {
        {{"-anepd"}, "", "", MISSING, 0, ""},
        {{"-scan_pgn2"}, "", "", MISSING, 0, ""},
        {{"-tune"}, "", "", MISSING, 1, "input cannot be read"},
        {{"-mktune"}, "", "", MISSING, 1, "input cannot be read"},
        {{"-anepd"}, "", "", UNREADABLE, 1, "input cannot be read"},
        {{"-scan_pgn1"}, "", "", UNREADABLE, 1, "input cannot be read"},
        {{"-tune"}, "", "", UNREADABLE, 1, "input cannot be read"},
        {{"-mktune"}, "", "", UNREADABLE, 1, "input cannot be read"},
        {{"-tune"}, KINGS, "tune.log", IN_THE_WAY, 1, "can't create tune.log"},
        {{"-tune"}, KINGS, "junk.epd", IN_THE_WAY, 1, "can't create junk.epd"},
        {{"-mktune"}, KINGS, "tune_new.epd", IN_THE_WAY, 1, "can't create tune_new.epd"},
        {{"-d", "2", "-anepd"}, OPENING, "unsolved.epd", FULL, 1, "unsolved.epd could not"},
        {{"-scan_pgn3"}, games, "tmp.epd", FULL, 1, "tmp.epd could not be written whole"},
        {{"-tune"}, KINGS, "tune.log", FULL, 1, "tune.log could not be written whole"},
        {{"-mktune"}, KINGS, "tune_new.epd", FULL, 1, "tune_new.epd could not be written whole"},
        {{"-anepd"}, OPENING, "unsolved.epd", OWN_INPUT, 1, "unsolved.epd would be overwritten"},
        {{"-scan_pgn1"}, games, "tmp.pgn", OWN_INPUT, 1, "tmp.pgn would be overwritten"},
    };
    for (const auto& c : cases) {
        const ToolDirectory directory;
        Lines arguments = {"-nolog", "-hash", "1"};
        arguments.insert(arguments.end(), c.tool.begin(), c.tool.end());
        arguments.push_back(c.trouble == OWN_INPUT ? c.output : "input");
        SCOPED_TRACE(c.tool.back() + " " + c.output + ", trouble " + std::to_string(c.trouble));
        if (c.trouble == UNREADABLE) make_pipe(directory.path("input"));
        if (c.trouble > UNREADABLE) directory.write(arguments.back(), c.input);
        if (c.trouble == IN_THE_WAY) std::filesystem::create_directory(directory.path(c.output));
        if (c.trouble == FULL && !directory.make_full(c.output)) continue;
        const Ending ending = directory.run(arguments);
        EXPECT_EQ(ending.status, c.status);
        if (c.errors.empty()) {
            EXPECT_EQ(ending.errors, "");
            EXPECT_EQ(ending.lines, Lines{});
        } else {
            EXPECT_NE(ending.errors.find("quon: " + c.errors), std::string::npos) << ending.errors;
        }
        if (c.trouble == OWN_INPUT) {
            EXPECT_EQ(directory.read(c.output), c.input);
        }
    }
}

}  // namespace
}  // namespace quon::test
