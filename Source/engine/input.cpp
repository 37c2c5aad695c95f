// Bytes to lines to commands. '@' ends a command just as a line end does; a tab is a blank.

#include "engine/input.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "engine/engine.h"
#include "engine/output.h"
#include "platform/events.h"
#include "platform/interrupt.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr std::size_t USUAL_LINE = 4095;  // longer ones are worth a remark: some games need them
constexpr std::size_t MAX_LINE = 65535;
constexpr char SEPARATOR = '@';
// No more is read ahead while commands wait: their sender is held up instead.
constexpr std::size_t READ_AHEAD = 65536;
constexpr int READS_AT_ONCE = 64;  // a flood of empty lines must not hold the program up

// Guards all below. A thread that prints takes it too: under it nothing may be printed.
std::mutex input_mutex;
std::string partial_line;          // bytes since the last line end
bool partial_line_cut = false;     // more than MAX_LINE of them came
std::string pending_input;         // whole lines, a SEPARATOR behind each
std::vector<std::string> remarks;  // on long lines, for the main thread to print
bool first_line = true;            // it may begin with a byte-order mark
bool ended = false;
bool quit_taken = false;

void end_line() {
    if (std::exchange(first_line, false) && partial_line.starts_with(BYTE_ORDER_MARK)) {
        partial_line.erase(0, BYTE_ORDER_MARK.size());
    }
    if (partial_line.size() > USUAL_LINE) {
        remarks.push_back(format("%s %d characters",
                                 partial_line_cut ? "line cut at" : "long line of",
                                 int(partial_line.size())));
    }
    if (!partial_line.empty()) pending_input += partial_line + SEPARATOR;
    partial_line.clear();
    partial_line_cut = false;
}

// False when nothing has come.
bool read_lines() {
    if (ended || pending_input.size() >= READ_AHEAD) return false;
    std::string bytes;
    ended = read_input(bytes) == InputState::ENDED;
    for (const char byte : bytes) {
        if (byte == '\n' || byte == '\0') {
            end_line();
        } else if (partial_line.size() < MAX_LINE) {
            partial_line += byte == '\t' ? ' ' : byte;
        } else {
            partial_line_cut = true;
        }
    }
    if (ended) end_line();
    return !bytes.empty();
}

// Where the first waiting command with this first word begins; npos if there is none.
std::size_t find_command(std::string_view word, std::size_t behind) {
    const std::string_view pending = pending_input;
    for (std::size_t start = behind; start < pending.size();
         start = pending.find(SEPARATOR, start) + 1) {
        const std::string_view line = pending.substr(start, pending.find(SEPARATOR, start) - start);
        if (first_word(line) == word) return start;
    }
    return std::string::npos;
}

std::string first_command() {
    std::string command = pending_input.substr(0, pending_input.find(SEPARATOR));
    command.erase(std::min(command.find_first_of("\r\n"), command.size()));
    return command;
}

std::string take_command() {
    std::string command = first_command();
    pending_input.erase(0, pending_input.find(SEPARATOR) + 1);
    quit_taken |= first_word(command) == "quit";
    return command;
}

}  // namespace

bool command_pending() {
    const std::lock_guard lock(input_mutex);
    return !pending_input.empty();
}

std::size_t waiting_length() {
    const std::lock_guard lock(input_mutex);
    return pending_input.size();
}

bool command_waits(std::string_view word, std::size_t behind) {
    const std::lock_guard lock(input_mutex);
    return find_command(word, behind) != std::string::npos;
}

bool withdraw_command(std::string_view word, std::size_t behind) {
    const std::lock_guard lock(input_mutex);
    const std::size_t start = find_command(word, behind);
    if (start == std::string::npos) return false;
    pending_input.erase(start, pending_input.find(SEPARATOR, start) + 1 - start);
    return true;
}

bool input_ended() {
    const std::lock_guard lock(input_mutex);
    return ended;
}

bool input_at_end() {
    const std::lock_guard lock(input_mutex);
    for (int reads = 0; reads < READS_AT_ONCE && read_lines(); ++reads) {
    }
    return ended;
}

bool quit_comes() {
    input_at_end();
    const std::lock_guard lock(input_mutex);
    return quit_taken || find_command("quit", 0) != std::string::npos;
}

bool quit_or_end_comes() { return quit_comes() || input_ended(); }

bool next_input_line(Engine& engine, std::string& line) {
    while (interruption() == Interruption::NONE) {
        if (next_command(engine, line)) return true;
        if (input_ended()) return false;
        wait_for_event(-1, true);
    }
    return false;
}

bool peek_command(std::string& command) {
    const std::lock_guard lock(input_mutex);
    read_lines();
    if (pending_input.empty()) return false;
    command = first_command();
    return true;
}

bool next_command(Engine& engine, std::string& command) {
    std::unique_lock lock(input_mutex);
    read_lines();
    const bool found = !pending_input.empty();
    if (found) command = take_command();
    const std::vector<std::string> told = std::exchange(remarks, {});
    lock.unlock();
    for (const std::string& remark : told) engine_print(message_prefix(engine) + remark);
    return found;
}

}  // namespace quon
