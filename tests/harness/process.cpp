#include "harness/process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <regex>

namespace quon::test {

namespace {

// Far beyond any healthy session, also with a sanitizer on a loaded machine.
constexpr unsigned LIFETIME_SECONDS = 600;
constexpr int PATIENCE_MS = 120000;
constexpr int NARROW_SIZE = 4096;
constexpr int LONGEST_LINE = 500;

void close_end(int& descriptor) {
    if (descriptor >= 0) close(descriptor);
    descriptor = -1;
}

}  // namespace

Process::Process(Lines arguments, const std::string& elsewhere, const std::string* whole_input,
                 OutputPipe output) {
    std::signal(SIGPIPE, SIG_IGN);
    arguments.insert(arguments.begin(), {QUON_BINARY, "-calibration", "1000000"});
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);

    int pipes[3][2];
    for (auto& ends : pipes) {
        if (pipe2(ends, O_CLOEXEC) != 0) std::abort();
    }
    if (output != OutputPipe::USUAL) fcntl(pipes[1][1], F_SETPIPE_SZ, NARROW_SIZE);
    if (output == OutputPipe::NARROW_NONBLOCKING) fcntl(pipes[1][1], F_SETFL, O_NONBLOCK);
    input_ = pipes[0][1];
    if (whole_input) {
        send_bytes(*whole_input);
        close_input();
    }
    const std::string& start = elsewhere.empty() ? directory() : elsewhere;
    child_ = fork();
    if (child_ == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        alarm(LIFETIME_SECONDS);
        dup2(pipes[0][0], STDIN_FILENO);
        dup2(pipes[1][1], STDOUT_FILENO);
        dup2(pipes[2][1], STDERR_FILENO);
        if (chdir(start.c_str()) == 0) execv(words[0], words.data());
        _exit(127);
    }
    for (const int end : {pipes[0][0], pipes[1][1], pipes[2][1]}) close(end);
    output_ = pipes[1][0];
    errors_ = pipes[2][0];
}

Process::~Process() {
    if (child_ > 0) {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
        take_errors();
    }
    for (int* const end : {&input_, &output_, &errors_}) close_end(*end);
}

void Process::send(const Lines& lines) {
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

void Process::signal(int number) { kill(child_, number); }
void Process::close_input() { close_end(input_); }
void Process::close_output() { close_end(output_); }

bool Process::fill() {
    char bytes[4096];
    const ssize_t count = read(output_, bytes, sizeof bytes);
    if (count > 0) buffer_.append(bytes, std::size_t(count));
    return count > 0;
}

bool Process::take_line(std::string& line) {
    const std::size_t end = buffer_.find('\n');
    if (end == std::string::npos) return false;
    line = buffer_.substr(0, end);
    buffer_.erase(0, end + 1);
    return true;
}

Lines Process::read_to(const std::string& beginning) {
    Lines lines;
    for (std::string line;;) {
        while (take_line(line)) {
            lines.push_back(line);
            if (line.starts_with(beginning)) return lines;
        }
        pollfd watched{output_, POLLIN, 0};
        if (poll(&watched, 1, PATIENCE_MS) == 0 || !fill()) {
            ADD_FAILURE() << "never came: " << beginning << "\nlast line: " << line;
            lines.emplace_back();
            return lines;
        }
    }
}

bool Process::silent_for(int ms) {
    pollfd watched{output_, POLLIN, 0};
    return buffer_.empty() && poll(&watched, 1, ms) == 0;
}

std::string Process::take_errors() {
    char bytes[65536];
    const ssize_t count = read(errors_, bytes, sizeof bytes);
    const std::string text(bytes, count > 0 ? std::size_t(count) : 0);
    EXPECT_EQ(text.find("Sanitizer"), std::string::npos) << text;
    return text;
}

void Process::await_full_output() {
    int unread = 0;
    for (int ms = 0; unread < NARROW_SIZE - LONGEST_LINE && ms < PATIENCE_MS; ++ms) {
        usleep(1000);
        if (ioctl(output_, FIONREAD, &unread) != 0) std::abort();
    }
    EXPECT_GE(unread, NARROW_SIZE - LONGEST_LINE);
}

bool Process::ends_unread(int ms) {
    while (waitpid(child_, nullptr, WNOHANG) == 0) {
        if (--ms < 0) return false;
        usleep(1000);
    }
    child_ = -1;
    take_errors();
    return true;
}

Ending Process::wait() {
    while (fill()) {
    }
    Ending ending;
    for (std::string line; take_line(line);) ending.lines.push_back(line);
    int status = 0;
    waitpid(child_, &status, 0);
    child_ = -1;
    ending.errors = take_errors();
    if (WIFEXITED(status)) ending.status = WEXITSTATUS(status);
    return ending;
}

Ending run_to_end(const Lines& arguments, const std::string& input) {
    Process process(arguments);
    process.send_bytes(input);
    process.close_input();
    return process.wait();
}

Lines Session::answers(Lines lines) {
    lines.emplace_back("isready");
    send(lines);
    Lines replies = read_to("readyok");
    replies.pop_back();
    std::erase_if(replies, [](const auto& line) { return line.starts_with("info string et="); });
    return replies;
}

std::string Session::best_move(const Lines& lines) {
    send(lines);
    return read_to("bestmove").back();
}

Lines lines_with(const Lines& lines, const std::string& beginning) {
    Lines found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
                 [&](const std::string& line) { return line.starts_with(beginning); });
    return found;
}

bool contains(const Lines& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

bool matches(const std::string& line, const std::string& pattern) {
    return std::regex_match(line, std::regex(pattern));
}

bool names_move(const std::string& line) {
    const std::string move = "[a-h][1-8][a-h][1-8][nbrq]?";
    return matches(line, "bestmove " + move + "( ponder " + move + ")?");
}

}  // namespace quon::test
