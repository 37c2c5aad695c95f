// Standard output and the log file.

#include "frontend/output.h"

#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <mutex>

#include "frontend/engine_options.h"
#include "platform/clock.h"
#include "platform/relaxed.h"
#include "platform/standard_output.h"

namespace quon {

namespace {

constexpr char LOG_NAME[] = "quon.log";

std::mutex print_mutex;  // guards both streams: a line appears whole in each
std::FILE* log_file = nullptr;
Relaxed<bool> lost = false;
Relaxed<bool (*)()> leave_test = nullptr;
bool status_shown = false;  // guarded by print_mutex

constexpr char REWRITE_LINE[] = "\r\x1b[K";

void erase_status() {
    if (status_shown) std::fputs(REWRITE_LINE, stderr);
    status_shown = false;
}

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
    erase_status();
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
    if (!options.log_enabled || !log_file) return;
    const bool written = std::fwrite(line.data(), 1, line.size(), log_file) == line.size();
    if (std::fflush(log_file) == 0 && written) return;
    std::fprintf(stderr, "quon: %s could not be written whole\n", LOG_NAME);
    std::fclose(log_file);
    log_file = nullptr;
}

}  // namespace

void engine_print(std::string_view text) {
    const std::string line = std::string(text) + "\n";
    const std::lock_guard lock(print_mutex);
    write_output(line);
    write_log(line);
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

const char* message_prefix() { return options.uci_mode ? "info string " : ""; }

void show_status_line(std::string_view text) {
    const std::lock_guard lock(print_mutex);
    erase_status();
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
    status_shown = !text.empty();
}

std::string format(const char* pattern, ...) {
    std::va_list arguments;
    va_start(arguments, pattern);
    std::va_list again;
    va_copy(again, arguments);
    const int size = std::vsnprintf(nullptr, 0, pattern, arguments);
    va_end(arguments);
    std::string text(size > 0 ? std::size_t(size) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, pattern, again);
    va_end(again);
    return text;
}

void open_log_file() {
    std::error_code error;
    if (std::filesystem::exists(LOG_NAME, error) &&
        (!std::filesystem::is_regular_file(LOG_NAME, error) ||
         !std::filesystem::remove(LOG_NAME, error))) {
        engine_print("log file in use.");
        return;
    }
    log_file = std::fopen(LOG_NAME, "w");
}

void close_log_file() {
    const std::lock_guard lock(print_mutex);
    if (log_file) std::fclose(log_file);
    log_file = nullptr;
}

void leave_output_if(bool (*test)()) { leave_test = test; }

bool output_lost() { return lost; }

}  // namespace quon
