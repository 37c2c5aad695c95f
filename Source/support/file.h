#pragma once
// A file that is read or written from front to back. Failures add up: the first one is remembered
// with its reason, so that a caller can ask once, behind many steps. Closed when its owner goes.

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace quon {

enum class FileMode {
    READ,
    WRITE,   // an empty file in place of an older one
    APPEND,  // behind what is in the file, if there is one
};

class File {
public:
    // Closes the file before and forgets its failures. False if this one cannot be opened.
    [[nodiscard]] bool open(const std::string& path, FileMode mode);
    [[nodiscard]] bool is_open() const { return stream_ != nullptr; }
    [[nodiscard]] const std::string& path() const { return path_; }

    // The rest is for an open file.
    // Bytes read: less than `count` at the end of the file and after a failure.
    std::size_t read(void* bytes, std::size_t count);
    // The next read begins so many bytes behind the start of the file.
    void seek(long offset);
    void write(const void* bytes, std::size_t count);
    void write(std::string_view text) { write(text.data(), text.size()); }
    // Hands everything to the system: what is written survives the end of the process.
    void flush();
    void close();

    [[nodiscard]] bool failed() const { return bool(error_); }
    // Why the first step failed that did.
    [[nodiscard]] const std::error_code& error() const { return error_; }

private:
    struct Close {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    void check(bool done);

    std::unique_ptr<std::FILE, Close> stream_;
    std::string path_;
    std::error_code error_;
};

}  // namespace quon
