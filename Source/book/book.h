#pragma once
// An opening book in use: an index in memory, the records in their file.

#include <optional>
#include <string>
#include <vector>

#include "book/book_record.h"
#include "support/table.h"

namespace quon {

// The book of someone who names none.
constexpr char DEFAULT_BOOK[] = "quon.opn";

constexpr int BOOK_BUCKETS = 1024;

struct Book {
    std::string path;
    Table<int, BOOK_BUCKETS> index{};  // number of the bucket's first record, or -1
    int count = 0;                     // records in the file; 0: no book
    std::vector<BookRecord> cache;     // the bucket of the latest look-up
    int cached_bucket = -1;
};

// Opens the file in place of the book before. Returns what is wrong with it, a sentence each, when
// it cannot be read or is damaged; a damaged book is used as far as it goes. An empty path is no
// book; that the default book is not there is no news.
[[nodiscard]] std::vector<std::string> book_open(Book& book, const std::string& path);
// From here on there is no book.
void book_close(Book& book);
bool book_in_use(const Book& book);

// The record of a key, as record_key makes it. A file that has vanished or changed since yields
// nothing, or what it now says of this very key.
std::optional<BookRecord> book_find(Book& book, BookKey key);

}  // namespace quon
