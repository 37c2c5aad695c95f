#include "support/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <thread>

namespace quon::test {

namespace {

// Far beyond any healthy wait, also with a sanitizer on a loaded machine.
constexpr int DEADLINE_MS = 120000;

struct Pipe {
    int read_end = -1;
    int write_end = -1;

    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) std::abort();
        read_end = ends[0];
        write_end = ends[1];
    }
};

void close_end(int& descriptor) {
    if (descriptor >= 0) close(descriptor);
    descriptor = -1;
}

int ms_since(std::chrono::steady_clock::time_point start) {
    const auto passed = std::chrono::steady_clock::now() - start;
    return int(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
}

std::string make_directory() {
    std::string name = (std::filesystem::temp_directory_path() / "quon-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort();
    return name;
}

}  // namespace

Process::Process(std::vector<std::string> arguments, const std::string& elsewhere)
    : directory_(make_directory()) {
    std::signal(SIGPIPE, SIG_IGN);
    arguments.insert(arguments.begin(), QUON_BINARY);
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);

    const std::string& start = elsewhere.empty() ? directory_ : elsewhere;
    const Pipe input;
    const Pipe output;
    const Pipe errors;
    child_ = fork();
    if (child_ == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        dup2(input.read_end, STDIN_FILENO);
        dup2(output.write_end, STDOUT_FILENO);
        dup2(errors.write_end, STDERR_FILENO);
        if (chdir(start.c_str()) == 0) execv(words[0], words.data());
        _exit(127);
    }
    close(input.read_end);
    close(output.write_end);
    close(errors.write_end);
    input_ = input.write_end;
    output_ = output.read_end;
    errors_ = errors.read_end;
}

Process::~Process() {
    if (child_ > 0) {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
        take_errors();
    }
    close_end(input_);
    close_end(output_);
    close_end(errors_);
    std::error_code error;
    std::filesystem::remove_all(directory_, error);
}

void Process::send(const std::vector<std::string>& lines) {
    std::string bytes;
    for (const std::string& line : lines) bytes += line + "\n";
    send_bytes(bytes);
}

void Process::send_bytes(const std::string& bytes) {
    for (std::size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = write(input_, bytes.data() + sent, bytes.size() - sent);
        if (count <= 0) return;
        sent += std::size_t(count);
    }
}

void Process::close_input() { close_end(input_); }
void Process::close_output() { close_end(output_); }

bool Process::fill(int timeout_ms) {
    pollfd watched{output_, POLLIN, 0};
    if (output_ < 0 || poll(&watched, 1, timeout_ms) <= 0) return false;
    char bytes[4096];
    const ssize_t count = read(output_, bytes, sizeof bytes);
    if (count <= 0) return false;
    buffer_.append(bytes, std::size_t(count));
    return true;
}

bool Process::take_line(std::string& line) {
    const std::size_t end = buffer_.find('\n');
    if (end == std::string::npos) return false;
    line = buffer_.substr(0, end);
    buffer_.erase(0, end + 1);
    return true;
}

std::string Process::read_line() {
    std::string line;
    while (!take_line(line)) {
        if (!fill(DEADLINE_MS)) {
            ADD_FAILURE() << "no more output";
            return {};
        }
    }
    return line;
}

std::vector<std::string> Process::read_to(const std::string& beginning) {
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::string> lines;
    for (std::string line;;) {
        while (take_line(line)) {
            lines.push_back(line);
            if (line.starts_with(beginning)) return lines;
        }
        const int left = DEADLINE_MS - ms_since(start);
        if (left <= 0 || !fill(left)) {
            ADD_FAILURE() << "never came: " << beginning
                          << "\nlast line: " << (lines.empty() ? std::string() : lines.back());
            return lines;
        }
    }
}

bool Process::silent_for(int ms) { return buffer_.empty() && !fill(ms); }

std::string Process::take_errors() {
    char bytes[65536];
    const ssize_t count = read(errors_, bytes, sizeof bytes);
    const std::string text(bytes, count > 0 ? std::size_t(count) : 0);
    EXPECT_EQ(text.find("Sanitizer"), std::string::npos) << text;
    return text;
}

Ending Process::wait() {
    Ending ending;
    const auto start = std::chrono::steady_clock::now();
    while (ms_since(start) < DEADLINE_MS && fill(DEADLINE_MS)) {
    }
    for (std::string line; take_line(line);) ending.lines.push_back(line);
    int status = 0;
    while (waitpid(child_, &status, WNOHANG) == 0) {
        if (ms_since(start) > DEADLINE_MS) {
            ADD_FAILURE() << "the program did not end";
            return ending;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    child_ = -1;
    ending.errors = take_errors();
    if (WIFEXITED(status)) ending.status = WEXITSTATUS(status);
    return ending;
}

Ending run_to_end(const std::vector<std::string>& arguments, const std::string& input) {
    Process process(arguments);
    process.send_bytes(input);
    process.close_input();
    return process.wait();
}

std::vector<std::string> lines_with(const std::vector<std::string>& lines,
                                    const std::string& beginning) {
    std::vector<std::string> found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
                 [&](const std::string& line) { return line.starts_with(beginning); });
    return found;
}

bool contains(const std::vector<std::string>& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

bool matches(const std::string& line, const std::string& pattern) {
    return std::regex_match(line, std::regex(pattern));
}

}  // namespace quon::test
