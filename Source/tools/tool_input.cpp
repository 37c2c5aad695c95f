// The ear of running work.

#include "tools/tool_input.h"

#include "engine/engine.h"
#include "engine/input.h"
#include "engine/output.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/file_map.h"
#include "platform/interrupt.h"
#include "search/control.h"
#include "support/status_line.h"
#include "support/text.h"

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

constexpr double LOOK_PERIOD = 0.01;  // seconds between two looks

Relaxed<StopFlag> wish = RUN;  // the first that was heard
bool listening = false;        // standard input carries commands, and its end is one of them
bool in_console = false;       // what standard input carries is the console's
double looked_at = 0;          // monotonic seconds
// Of a console command:
bool first_look = false;
bool heeds_waiting = false;      // the lines that waited at the first look
std::size_t waiting_before = 0;  // their length, if not
bool awaits_end = false;         // the end of the input was still to come

void raise_wish(StopFlag next) {
    if (wish == RUN) wish = next;
}

void obey(Engine& engine, const std::string& command) {
    for (const Heard& heard : HEARD) {
        if (heard.word != first_word(command)) continue;
        print_command(command);
        if (heard.wish == RUN) engine_print("readyok");
        if (heard.wish == ABORT) engine.control.quit_requested = true;
        raise_wish(heard.wish);
    }
}

// Most commands are over before the first look and never touch the input.
bool console_wishes_end() {
    const bool at_end = input_at_end();
    if (first_look) {
        awaits_end = !at_end;
        waiting_before = heeds_waiting ? 0 : waiting_length();
        first_look = false;
    }
    return withdraw_command("stop", waiting_before) || withdraw_command(".", waiting_before) ||
           command_waits("quit", waiting_before) || (awaits_end && at_end);
}

bool interrupted() { return interruption() != Interruption::NONE; }

void hear(Engine& engine) {
    std::string command;
    for (int i = 0; i < COMMANDS_PER_CALL && listening && next_command(engine, command); ++i)
        obey(engine, command);
    if (in_console && console_wishes_end()) raise_wish(STOP);
    looked_at = monotonic_seconds();
}

bool look_due() { return interrupted() || monotonic_seconds() - looked_at >= LOOK_PERIOD; }

// Whether the output of the tool may be given up. The input may be data, or long at its end.
bool broken_off() { return wish == ABORT || interrupted(); }
bool listener_leaves() { return broken_off() || quit_or_end_comes(); }
bool console_leaves() { return interrupted() || quit_comes(); }

bool all_heard() { return input_ended() && !command_pending(); }

}  // namespace

bool open_tool_file(LineReader& reader, const std::string& path, std::size_t limit,
                    LongLine long_line) {
    const auto input = in_console ? StandardInput::REFUSED : StandardInput::TAKEN;
    return open_lines(reader, path, limit, long_line, input);
}

bool can_be_read(const std::string& path) {
    if (readable_file(path) || (!in_console && is_standard_input(path))) return true;
    report_unreadable_file(path);
    return false;
}

bool read_well(const LineReader& reader, const std::string& path) {
    if (!read_failed(reader)) return true;
    report_unreadable_file(path);
    return false;
}

void report_unreadable_file(const std::string& path) {
    error_line(format("quon: %s cannot be read", path.c_str()));
}

void start_tool_input(Engine& engine, const std::string& file) {
    wish = RUN;
    in_console = false;
    listening = !is_standard_input(file);
    catch_interrupts();
    for (int i = 0; i < CALLS_AT_START && listening && !all_heard(); ++i) hear(engine);
    if (all_heard()) listening = false;
    leave_output_if(listening ? listener_leaves : broken_off);
}

void start_command_input() {
    wish = RUN;
    in_console = first_look = true;
    listening = heeds_waiting = false;
    looked_at = monotonic_seconds();
    catch_interrupts();
    leave_output_if(console_leaves);
}

void heed_waiting_lines() { heeds_waiting = true; }

void end_tool_input(Engine& engine) {
    if (in_console) {
        if (interruption() == Interruption::REQUEST) engine.control.quit_requested = true;
        leave_output_if(quit_or_end_comes);
    }
    wish = RUN;
    listening = in_console = false;
    release_interrupts();
}

bool end_wished(Engine& engine, int wait_ms) {
    if (wait_ms > 0) wait_for_event(wait_ms, listening && !input_ended());
    if (wait_ms > 0 || look_due()) hear(engine);
    if (interrupted()) raise_wish(STOP);
    if (output_lost() || (listening && all_heard())) raise_wish(ABORT);
    if (wish != RUN && !stopped(engine)) engine.control.stop_flag = wish;
    return wish != RUN;
}

}  // namespace quon
