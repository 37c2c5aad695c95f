#pragma once
// The program as a child process with pipes for its input and output, in a temporary directory of
// its own; a million positions a second are given for its speed. It may live for ten minutes: a
// child that hangs fails its test.

#include <sys/types.h>

#include "harness/board_support.h"
#include "harness/files.h"

namespace quon::test {

// How much slower than usual the program may be.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double SLOWNESS = 20;
#elif defined(__has_feature)
constexpr double SLOWNESS =
    __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) ? 20 : 1;
#else
constexpr double SLOWNESS = 1;
#endif

// How a process looked when it was left alone: everything it had not been read, and its exit status
// (-1 after a signal).
struct Ending {
    int status = -1;
    Lines lines;
    std::string errors;
};

// A narrow pipe holds 4 KB; a nonblocking one refuses what it cannot hold.
enum class OutputPipe { USUAL, NARROW, NARROW_NONBLOCKING };

class Process {
public:
    // The directory, with the files in it, lives until the object is destroyed; `elsewhere` is a
    // directory to start in instead. `whole_input`: what the program finds on its input, which has
    // ended before it starts.
    explicit Process(Lines arguments = {}, const std::string& elsewhere = {},
                     const std::string* whole_input = nullptr,
                     OutputPipe output = OutputPipe::USUAL);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    // Each line with its line end, in one write.
    void send(const Lines& lines);
    void send_bytes(const std::string& bytes);
    void close_input();
    void signal(int number);
    void close_output();  // the reading end: the child's next write fails

    // Reads lines up to one that begins with the text, and returns all of them. Fails the test and
    // ends with an empty line if the output ends first, or pauses for two minutes.
    Lines read_to(const std::string& beginning);
    std::string read_line() { return read_to("").back(); }
    // True if nothing is written for this long.
    bool silent_for(int ms);

    // Waits until a narrow pipe takes no more lines.
    void await_full_output();
    // Waits for the end of the process, reading what it still writes.
    Ending wait();
    // The same without reading; false if it takes longer.
    bool ends_unread(int ms);

    const std::string& directory() const { return directory_.path(); }

private:
    bool fill();  // false at the end of the output
    bool take_line(std::string& line);
    // Standard error of the ended process; fails the test if a sanitizer speaks there.
    std::string take_errors();

    const Directory directory_;
    pid_t child_ = -1;
    int input_ = -1;
    int output_ = -1;
    int errors_ = -1;
    std::string buffer_;
};

// Runs the program with the arguments and the input to its end.
Ending run_to_end(const Lines& arguments, const std::string& input);

// A UCI session with the program, as a front end leads it.
struct Session : Process {
    // Without the log there is no echo of the commands. `elsewhere`: see Process.
    explicit Session(const Lines& arguments = {"-nolog"}, const std::string& elsewhere = {})
        : Process(arguments, elsewhere) {}

    // What is answered to the lines, but for the start-up's line about speed.
    Lines answers(Lines lines);
    // Sends the lines and reads up to "bestmove"; its whole line.
    std::string best_move(const Lines& lines);
};

// A directory in which a tool of the program reads and writes files.
struct ToolDirectory : Directory {
    using Directory::Directory;

    // The program, with a standard input that stays open.
    Ending run(const Lines& arguments) const { return Process(arguments, path()).wait(); }
};

// The lines that begin with the text.
Lines lines_with(const Lines& lines, const std::string& beginning);
bool contains(const Lines& lines, const std::string& line);
bool matches(const std::string& line, const std::string& pattern);  // the whole line
// True for "bestmove" with a move, and perhaps the reply to it.
bool names_move(const std::string& line);

}  // namespace quon::test
