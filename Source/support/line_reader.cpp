// Lines from a buffer that is refilled when it holds no whole piece.

#include "support/line_reader.h"

#include <algorithm>
#include <filesystem>

#include "platform/events.h"
#include "platform/file_map.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr std::size_t BUFFER_SIZE = 65536;

std::string_view unread(const LineReader& reader) {
    return {reader.buffer.data() + reader.begin, reader.end - reader.begin};
}

void skip(LineReader& reader, std::size_t count) {
    reader.begin += count;
    reader.bytes_read += i64(count);
}

// Moves what is left to the front and reads until the buffer is full or the file ends.
void refill(LineReader& reader) {
    std::copy(reader.buffer.begin() + std::ptrdiff_t(reader.begin),
              reader.buffer.begin() + std::ptrdiff_t(reader.end), reader.buffer.begin());
    reader.end -= reader.begin;
    reader.begin = 0;
    const std::size_t room = reader.buffer.size() - reader.end;
    const std::size_t count = reader.file.read(reader.buffer.data() + reader.end, room);
    reader.end += count;
    reader.file_ended = count < room;
}

// Characters of the unread text that the next piece takes, its line end not counted, when the line
// is longer than the limit.
std::size_t cut_length(const LineReader& reader, std::string_view text) {
    if (reader.long_line == LongLine::AT_LIMIT) return reader.limit;
    const std::size_t blank = text.substr(0, reader.limit).find_last_of(" \t");
    return blank == std::string_view::npos ? reader.limit : blank + 1;
}

}  // namespace

bool open_lines(LineReader& reader, const std::string& path, std::size_t limit, LongLine long_line,
                StandardInput input) {
    reader = {};
    const bool taken = input == StandardInput::TAKEN && is_standard_input(path);
    if (!taken && !readable_file(path)) return false;
    if (!reader.file.open(path, FileMode::READ)) return false;
    std::error_code unknown;
    const auto size = std::filesystem::file_size(path, unknown);
    reader.file_size = unknown ? 0 : i64(size);
    reader.limit = limit;
    reader.long_line = long_line;
    reader.buffer.resize(std::max(BUFFER_SIZE, 2 * limit));
    refill(reader);
    if (unread(reader).starts_with(BYTE_ORDER_MARK)) skip(reader, BYTE_ORDER_MARK.size());
    return true;
}

bool is_no_file(const std::string& path) {
    std::error_code unknown;
    const auto status = std::filesystem::status(path, unknown);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

bool next_piece(LineReader& reader, LinePiece& piece) {
    // A piece and its line end must be in the buffer.
    if (reader.end - reader.begin < reader.limit + 2 && !reader.file_ended) refill(reader);
    const std::string_view text = unread(reader);
    if (text.empty()) return false;
    piece.starts_line = reader.at_line_start;
    std::size_t length = text.substr(0, reader.limit + 2).find('\n');
    if (length != std::string_view::npos) {
        const bool carriage_return = length > 0 && text[length - 1] == '\r';
        piece.text = text.substr(0, carriage_return ? length - 1 : length);
        piece.ends_line = piece.text.size() <= reader.limit;
        if (piece.ends_line) skip(reader, length + 1);
    } else {
        piece.text = text;
        piece.ends_line = text.size() <= reader.limit && reader.file_ended;
        if (piece.ends_line) skip(reader, text.size());
    }
    if (!piece.ends_line) {
        length = cut_length(reader, text);
        piece.text = text.substr(0, length);
        skip(reader, length);
    }
    reader.at_line_start = piece.ends_line;
    return true;
}

bool read_failed(const LineReader& reader) { return reader.file.failed(); }

}  // namespace quon
