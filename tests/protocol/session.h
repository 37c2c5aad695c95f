#pragma once
// A UCI session with the program, as a front end leads it.

#include "support/process.h"

namespace quon::test {

constexpr char INFO_LINE[] =
    R"(info (multipv \d+ )?depth \d+ seldepth \d+ score (cp -?\d+|mate -?\d+) time \d+ nodes \d+ )"
    R"(nps \d+ tbhits \d+ hashfull \d+ pv( [a-h][1-8][a-h][1-8][nbrq]?)+)";
constexpr char MOVE[] = "[a-h][1-8][a-h][1-8][nbrq]?";

struct Session : Process {
    // Without the log there is no echo of the commands.
    explicit Session(const std::vector<std::string>& arguments = {"-nolog"}) : Process(arguments) {}

    // What is answered to the lines, but for the start-up's line about speed.
    std::vector<std::string> answers(std::vector<std::string> lines) {
        lines.emplace_back("isready");
        send(lines);
        std::vector<std::string> replies = read_to("readyok");
        replies.pop_back();
        std::erase_if(replies,
                      [](const std::string& r) { return r.starts_with("info string et="); });
        return replies;
    }
    // Sends the lines and reads up to "bestmove"; its whole line.
    std::string best_move(const std::vector<std::string>& lines) {
        send(lines);
        return read_to("bestmove").back();
    }
};

// True for "bestmove" with a move, and perhaps the reply to it.
inline bool names_move(const std::string& line) {
    return matches(line, std::string("bestmove ") + MOVE + "( ponder " + MOVE + ")?");
}

using Lines = std::vector<std::string>;

}  // namespace quon::test
