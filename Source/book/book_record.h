#pragma once
// One position of a book: how often the side that moved into it went on to win, lose or draw.
// On disk 14 bytes, little-endian: key16, key32, losses, wins, draws, and two zero bytes.

#include <cstdio>
#include <memory>
#include <string>

#include "book/book_key.h"

namespace quon {

constexpr int RECORD_SIZE = 14;

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
    return rank_of_key(a.key) > rank_of_key(b.key);
}

struct CloseBookFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using BookFile = std::unique_ptr<std::FILE, CloseBookFile>;

// Both open in binary mode; empty on failure, with the reason in errno.
BookFile open_for_reading(const std::string& path);
BookFile open_for_writing(const std::string& path);

// False at the end of the file, in front of a cut record, and after an error.
bool read_record(std::FILE* file, BookRecord& record);
bool write_record(std::FILE* file, const BookRecord& record);

}  // namespace quon
