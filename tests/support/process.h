#pragma once
// A program as a child process with pipes for its input and output, in a temporary directory of its
// own. Whatever is waited for has a deadline: a child that hangs fails its test.

#include <sys/types.h>

#include <string>
#include <vector>

namespace quon::test {

// How a process looked when it was left alone: everything it had not been read, and its exit status
// (-1 after a signal or a missed deadline).
struct Ending {
    int status = -1;
    std::vector<std::string> lines;
    std::string errors;
};

class Process {
public:
    // Starts QUON_BINARY. The directory, with the files in it, lives until the object is destroyed;
    // `elsewhere` is a directory to start in instead.
    explicit Process(std::vector<std::string> arguments = {}, const std::string& elsewhere = {});
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    // Each line with its line end, in one write.
    void send(const std::vector<std::string>& lines);
    void send_bytes(const std::string& bytes);
    void close_input();
    void close_output();  // the reading end: the child's next write fails

    // Reads lines up to one that begins with the text, and returns all of them; fails the test and
    // returns what there is if the output ends or the deadline passes first.
    std::vector<std::string> read_to(const std::string& beginning);
    // The next line, empty if none comes.
    std::string read_line();
    // True if nothing is written for this long.
    bool silent_for(int ms);

    // Waits for the end of the process, reading what it still writes.
    Ending wait();

    const std::string& directory() const { return directory_; }

private:
    bool fill(int timeout_ms);  // false on the end of the output or the deadline
    bool take_line(std::string& line);
    // Standard error of the ended process; fails the test if a sanitizer speaks there.
    std::string take_errors();

    pid_t child_ = -1;
    int input_ = -1;
    int output_ = -1;
    int errors_ = -1;
    std::string buffer_;
    std::string directory_;
};

// Runs the program with the arguments and the input to its end.
Ending run_to_end(const std::vector<std::string>& arguments, const std::string& input);

// The lines that begin with the text.
std::vector<std::string> lines_with(const std::vector<std::string>& lines,
                                    const std::string& beginning);
bool contains(const std::vector<std::string>& lines, const std::string& line);
bool matches(const std::string& line, const std::string& pattern);  // the whole line

}  // namespace quon::test
