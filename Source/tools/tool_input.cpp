// The ear of a running tool.

#include "tools/tool_input.h"

#include "frontend/input.h"
#include "frontend/output.h"
#include "frontend/uci.h"
#include "frontend/words.h"
#include "platform/events.h"
#include "platform/interrupt.h"
#include "search/control.h"

namespace quon {

namespace {

// Commands read in one call: a flood of lines must not hold the tool up.
constexpr int COMMANDS_PER_CALL = 64;
// Enough to hear all that a closed pipe still holds.
constexpr int CALLS_AT_START = 1024;

struct Heard {
    std::string_view word;
    StopFlag wish;
};

constexpr Heard HEARD[] = {{"isready", RUN}, {"stop", STOP}, {"quit", ABORT}};

StopFlag wish = RUN;      // the first that was heard
bool listening = false;   // standard input carries commands, and its end is one of them
bool in_console = false;  // what standard input carries is the console's

void raise_wish(StopFlag next) {
    if (wish == RUN) wish = next;
}

void obey(const std::string& command) {
    for (const Heard& heard : HEARD) {
        if (heard.word != first_word(command)) continue;
        handle_uci_command(command);
        raise_wish(heard.wish);
    }
}

bool console_wishes_end() {
    return withdraw_command("stop") || withdraw_command(".") || command_waits("quit");
}

void hear() {
    std::string command;
    for (int i = 0; i < COMMANDS_PER_CALL && listening && next_command(command); ++i) obey(command);
    if (in_console && console_wishes_end()) raise_wish(STOP);
    if (interrupted()) raise_wish(STOP);
}

bool all_heard() { return input_ended() && !command_pending(); }

}  // namespace

void start_tool_input(const std::string& file) {
    wish = RUN;
    in_console = false;
    listening = !is_standard_input(file);
    catch_interrupts();
    for (int i = 0; i < CALLS_AT_START && listening && !all_heard(); ++i) hear();
    if (all_heard()) listening = false;
}

void start_command_input() {
    wish = RUN;
    in_console = true;
    listening = false;
    catch_interrupts();
}

void end_tool_input() {
    listening = in_console = false;
    release_interrupts();
}

bool end_wished(int wait_ms) {
    if (wait_ms > 0) wait_for_event(wait_ms, listening && !input_ended());
    hear();
    if (output_lost() || (listening && all_heard())) raise_wish(ABORT);
    if (wish != RUN && !stopped()) control.stop_flag = wish;
    return wish != RUN;
}

}  // namespace quon
