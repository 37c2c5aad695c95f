#pragma once
// Files that tests write and read whole.

#include <sys/resource.h>

#include <string>

namespace quon::test {

void write_file(const std::string& path, const std::string& bytes);
std::string read_file(const std::string& path);  // empty when it is not there
void make_pipe(const std::string& path);         // whoever opens it waits for the other end

// For its life, and that of a child process started meanwhile, no file can grow beyond so many
// bytes: a full disk, as far as a program can tell.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes);
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk();

private:
    rlimit before_{};
};

}  // namespace quon::test
