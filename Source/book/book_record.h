#pragma once
// One position of a book: how often the side that moved into it went on to win, lose or draw.
// On disk 14 bytes, little-endian: key16, key32, losses, wins, draws, and two zero bytes.

#include <string>
#include <vector>

#include "book/book_key.h"
#include "support/file.h"

namespace quon {

constexpr std::size_t RECORD_SIZE = 14;

struct BookRecord {
    BookKey key;
    u16 losses;
    u16 wins;
    u16 draws;

    bool operator==(const BookRecord&) const = default;
};

constexpr int game_count(const BookRecord& r) { return r.losses + r.wins + r.draws; }

// True if `a` stands before `b` in a book.
constexpr bool stands_before(const BookRecord& a, const BookRecord& b) {
    return sort_number(a.key) > sort_number(b.key);
}

// A book file read or written from front to back, many records at a time. Both are false if
// the file could not be opened.
struct RecordReader {
    File file;
    std::vector<u8> block;
    std::size_t next = 0;  // first byte of the block not handed out

    explicit operator bool() const { return file.is_open(); }
};
struct RecordWriter {
    File file;
    std::vector<u8> block;

    explicit operator bool() const { return file.is_open(); }
};

// Starts at the record of that number. What is no file, or has more records than can be counted, is
// not opened.
[[nodiscard]] RecordReader open_records(const std::string& path, int first = 0);
// False at the end of the file, in front of a cut record, and after an error.
[[nodiscard]] bool read_record(RecordReader& reader, BookRecord& record);
[[nodiscard]] bool read_failed(const RecordReader& reader);

// Empties a file that is there.
[[nodiscard]] RecordWriter create_records(const std::string& path);
// Both are false once something could not be written; the file has the reason.
[[nodiscard]] bool write_record(RecordWriter& writer, const BookRecord& record);
[[nodiscard]] bool close_records(RecordWriter& writer);

}  // namespace quon
