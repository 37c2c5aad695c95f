#pragma once
// Files that tests write and read whole, and directories for them.

#include <sys/resource.h>

#include <filesystem>
#include <string>

namespace quon::test {

void write_file(const std::string& path, const std::string& bytes);
std::string read_file(const std::string& path);  // empty when it is not there
void make_pipe(const std::string& path);         // whoever opens it waits for the other end

// A temporary directory that goes with everything in it. When it is `entered`, it is the working
// directory for its life.
class Directory {
public:
    explicit Directory(bool entered = false);
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;
    ~Directory();

    const std::string& path() const { return path_; }
    std::string path(const std::string& name) const { return path_ + "/" + name; }
    void write(const std::string& name, const std::string& bytes) const {
        write_file(path(name), bytes);
    }
    std::string read(const std::string& name) const { return read_file(path(name)); }

private:
    std::string path_;
    std::filesystem::path left_;  // the working directory before; empty if it was not entered
};

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
