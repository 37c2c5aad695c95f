// Standard output and the log file.

#include "engine/output.h"

#include <filesystem>
#include <mutex>

#include "platform/clock.h"
#include "platform/standard_output.h"
#include "support/output_file.h"
#include "support/relaxed.h"
#include "support/status_line.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr char LOG_NAME[] = "quon.log";

std::mutex print_mutex;  // guards both streams: a line appears whole in each
File log_file;
Relaxed<bool> lost = false;
Relaxed<bool> log_wanted = true;
Relaxed<bool (*)()> leave_test = nullptr;

bool leaving() {
    bool (*const test)() = leave_test;
    return test && test();
}

// A line that its reader lets wait.
struct Stall {
    std::size_t unread = 0;  // bytes of this and earlier lines
    double since = 0;        // when the reader last took some, or nobody wanted to leave
};

// Waits for the reader; gives the output up when the program is to end and nothing is read.
void wait_for_reader(Stall& stall, std::size_t unwritten) {
    constexpr int LISTEN_MS = 20;
    constexpr double PATIENCE = 0.5;  // seconds
    const std::size_t unread = unwritten + std::size_t(unread_output());
    const double now = monotonic_seconds();
    if (unread != stall.unread) {
        stall = {unread, now};
    } else {
        sleep_ms(1);  // some terminals report room and take nothing
    }
    if (!leaving()) stall.since = now;
    lost = now - stall.since > PATIENCE;
    if (!lost) wait_for_room(LISTEN_MS);
}

void write_output(std::string_view text) {
    erase_status_line();
    Stall stall;
    while (!lost && !text.empty()) {
        if (offer_output(text) == OutputState::LOST) {
            lost = true;
        } else if (!text.empty()) {
            wait_for_reader(stall, text.size());
        }
    }
}

void write_log(std::string_view line) {
    if (!log_wanted || !log_file.is_open()) return;
    log_file.write(line);
    log_file.flush();
    if (!log_file.failed()) return;
    report_incomplete(LOG_NAME);
    log_file.close();
}

}  // namespace

void engine_print(std::string_view text) {
    const std::string line = std::string(text) + "\n";
    const std::lock_guard lock(print_mutex);
    write_output(line);
    write_log(line);
}

void print_command(std::string_view line) {
    if (log_enabled()) engine_print("CMD: " + std::string(line));
}

void print_unlogged(std::string_view text) {
    const std::lock_guard lock(print_mutex);
    write_output(text);
}

void log_line(std::string_view text) {
    const std::string line = std::string(text) + "\n";
    const std::lock_guard lock(print_mutex);
    write_log(line);
}

void set_log_enabled(bool enabled) { log_wanted = enabled; }

bool log_enabled() { return log_wanted; }

void open_log_file() {
    std::error_code error;
    if (std::filesystem::exists(LOG_NAME, error) &&
        (!std::filesystem::is_regular_file(LOG_NAME, error) ||
         !std::filesystem::remove(LOG_NAME, error))) {
        engine_print("log file in use.");
        return;
    }
    static_cast<void>(log_file.open(LOG_NAME, FileMode::WRITE));
}

void close_log_file() {
    const std::lock_guard lock(print_mutex);
    if (log_file.is_open()) log_file.close();
}

void leave_output_if(bool (*test)()) { leave_test = test; }

bool output_lost() { return lost; }

}  // namespace quon
