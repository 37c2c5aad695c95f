#pragma once
// Text files of any size and any content, piece by piece in bounded memory. A line longer than the
// reader's limit comes in several pieces.

#include <string>
#include <string_view>
#include <vector>

#include "support/file.h"
#include "support/integers.h"

namespace quon {

// Where a line longer than the limit is cut.
enum class LongLine {
    AT_LIMIT,
    AT_BLANK,  // behind the last blank within the limit, so that no word is torn; else at the limit
};

struct LinePiece {
    std::string_view text;  // without "\n" or "\r\n"; NUL bytes stay; valid until the next piece
    bool starts_line;
    bool ends_line;  // true for a last line without a line end as well
};

struct LineReader {
    File file;
    std::size_t limit = 0;  // characters of a piece
    LongLine long_line = LongLine::AT_LIMIT;
    std::vector<char> buffer;
    std::size_t begin = 0, end = 0;  // the part of the buffer not handed out yet
    bool at_line_start = true;
    bool file_ended = false;
    i64 bytes_read = 0;  // handed out so far, line ends and byte-order mark included
    i64 file_size = 0;   // 0 when it is not known
};

// Whether standard input is read when the path names it, whatever kind of file it is.
enum class StandardInput { REFUSED, TAKEN };

// False if the file cannot be opened, or is none: a pipe or a device could hold the program up, or
// never end. A byte-order mark is skipped. limit: 1 or more.
[[nodiscard]] bool open_lines(LineReader& reader, const std::string& path, std::size_t limit,
                              LongLine long_line = LongLine::AT_LIMIT,
                              StandardInput input = StandardInput::REFUSED);
// True if something else than a file has the name: a directory, a pipe, a device.
[[nodiscard]] bool is_no_file(const std::string& path);

// False at the end of the file. A read error ends the file too and makes read_failed true.
[[nodiscard]] bool next_piece(LineReader& reader, LinePiece& piece);
[[nodiscard]] bool read_failed(const LineReader& reader);

}  // namespace quon
