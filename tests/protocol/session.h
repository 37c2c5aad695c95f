#pragma once
// A UCI session with the program, as a front end leads it.

#include "harness/process.h"

namespace quon::test {

struct Session : Process {
    // Without the log there is no echo of the commands. `elsewhere`: see Process.
    explicit Session(const Lines& arguments = {"-nolog"}, const std::string& elsewhere = {})
        : Process(arguments, elsewhere) {}

    // What is answered to the lines, but for the start-up's line about speed.
    Lines answers(Lines lines) {
        lines.emplace_back("isready");
        send(lines);
        Lines replies = read_to("readyok");
        replies.pop_back();
        std::erase_if(replies,
                      [](const auto& reply) { return reply.starts_with("info string et="); });
        return replies;
    }
    // Sends the lines and reads up to "bestmove"; its whole line.
    std::string best_move(const Lines& lines) {
        send(lines);
        return read_to("bestmove").back();
    }
};

// True for "bestmove" with a move, and perhaps the reply to it.
inline bool names_move(const std::string& line) {
    const std::string move = "[a-h][1-8][a-h][1-8][nbrq]?";
    return matches(line, "bestmove " + move + "( ponder " + move + ")?");
}

}  // namespace quon::test
