// The ear of a running tool.

#include "tools/tool_input.h"

#include <algorithm>
#include <string>

#include "frontend/input.h"
#include "frontend/words.h"
#include "platform/events.h"
#include "platform/interrupt.h"

namespace quon {

namespace {

// Commands read in one call: a flood of lines must not hold the tool up.
constexpr int COMMANDS_PER_CALL = 64;

ToolWish wish = ToolWish::NONE;
bool listening = true;  // the input was open when the tool started

void raise_wish(ToolWish next) { wish = std::max(wish, next); }

void hear() {
    std::string command;
    for (int i = 0; i < COMMANDS_PER_CALL && next_command(command); ++i) {
        const std::string_view word = first_word(command);
        if (word == "quit") raise_wish(ToolWish::FINISH);
        if (word == "stop") raise_wish(ToolWish::STOP);
    }
    if (interrupted()) raise_wish(ToolWish::STOP);
}

}  // namespace

void start_tool_input() {
    wish = ToolWish::NONE;
    catch_interrupts();
    hear();
    listening = !input_ended();
}

void end_tool_input() { release_interrupts(); }

ToolWish tool_wish(int wait_ms) {
    if (wait_ms > 0) wait_for_event(wait_ms, !input_ended());
    hear();
    if (listening && input_ended() && !command_pending()) raise_wish(ToolWish::FINISH);
    return wish;
}

}  // namespace quon
