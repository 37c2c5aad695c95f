// Look-ups. Records whose key16 begins with the same ten bits form a bucket; the index tells where
// each bucket starts, and the bucket of the latest look-up stays in memory.

#include "book/book.h"

#include <algorithm>
#include <filesystem>
#include <vector>

namespace quon {

namespace {

constexpr int NO_RECORD = -1;
constexpr int NO_BUCKET = -1;
constexpr std::size_t MAX_CACHED = 2048;

constexpr int bucket_of(BookKey key) { return key.key16 >> 6; }

// Numbers the records; false if they are out of order.
bool read_index(Book& book, RecordReader& file) {
    bool sorted = true;
    BookRecord record{};
    for (BookRecord last{}; read_record(file, record); last = record) {
        int& first = book.index[bucket_of(record.key)];
        if (first == NO_RECORD) first = book.count;
        if (book.count > 0 && !stands_before(last, record)) sorted = false;
        ++book.count;
    }
    return sorted;
}

// Fills the cache with the bucket; leaves it empty if the file does not hold one.
void load_bucket(Book& book, int bucket) {
    book.cache.clear();
    book.cached_bucket = NO_BUCKET;
    const int start = book.index[bucket];
    if (start == NO_RECORD) return;
    RecordReader file = open_records(book.path, start);
    if (!file) return;
    BookRecord record{};
    while (book.cache.size() < MAX_CACHED && read_record(file, record) &&
           bucket_of(record.key) >= bucket) {
        book.cache.push_back(record);
    }
    book.cached_bucket = bucket;
}

}  // namespace

void book_close(Book& book) {
    book = {};
    std::fill(book.index.begin(), book.index.end(), NO_RECORD);
}

std::vector<std::string> book_open(Book& book, const std::string& path) {
    book_close(book);
    if (path.empty()) return {};
    std::error_code unknown;
    if (path == DEFAULT_BOOK && !std::filesystem::exists(path, unknown)) return {};
    book.path = path;
    RecordReader file = open_records(path);
    const bool sorted = file && read_index(book, file);
    if (!file || read_failed(file)) {
        book_close(book);
        return {"cannot be read"};
    }
    std::vector<std::string> problems;
    if (!sorted) problems.emplace_back("is not sorted: positions will be missed");
    const auto size = std::filesystem::file_size(path, unknown);
    if (!unknown && size % RECORD_SIZE != 0) {
        problems.emplace_back("is cut short: its end is missing");
    }
    return problems;
}

bool book_in_use(const Book& book) { return book.count > 0; }

std::optional<BookRecord> book_find(Book& book, BookKey key) {
    if (!book_in_use(book)) return std::nullopt;
    if (bucket_of(key) != book.cached_bucket) load_bucket(book, bucket_of(key));
    const BookRecord wanted{key, 0, 0, 0};
    const auto found =
        std::lower_bound(book.cache.begin(), book.cache.end(), wanted, stands_before);
    if (found == book.cache.end() || found->key != key) return std::nullopt;
    return *found;
}

}  // namespace quon
