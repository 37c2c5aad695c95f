// Keys, and look-ups in books, also in such as no book should be.

#include "harness/book_support.h"

namespace quon::test {
namespace {

struct Book : testing::Test {
    BookDirectory directory;
};

// Distinct keys, many of them in few buckets, and those at the edges.
Records random_records(int count, Random& random) {
    Records records = {
        {{0xFFFF, 0xFFFFFFFF}, 1, 2, 3}, {{0xFFFF, 0}, 4, 5, 6}, {{0x8000, 7}, 7, 8, 9},
        {{0x7FFF, 7}, 1, 1, 1},          {{0, 1}, 2, 2, 2},      {{0, 0}, 60000, 65535, 0}};
    records.resize(std::size_t(std::min(count, 6)));
    while (int(records.size()) < count) {
        const u64 bits = random();
        const u16 key16 = u16(bits % 4 ? bits >> 8 & 0x8FC3 : bits >> 8);
        records.push_back({{key16, u32(bits >> 32)}, u16(random()), u16(random()), u16(random())});
    }
    return in_order(records);
}

// Looks the records up in random order, and neighbours of theirs that are not in the book.
void expect_lookups(const Records& book, Random& random) {
    Records wanted = book;
    std::shuffle(wanted.begin(), wanted.end(), random);
    for (const BookRecord& record : wanted) {
        ASSERT_EQ(book_find(engine.book, record.key), record);
        const BookKey other = {record.key.key16, record.key.key32 + 1};
        const bool present = std::any_of(book.begin(), book.end(),
                                         [&](const BookRecord& r) { return r.key == other; });
        ASSERT_EQ(book_find(engine.book, other).has_value(), present);
    }
}

TEST_F(Book, EveryRecordIsFound) {
    Random random(1);
    for (const int count : {1, 2, 50, scaled(2000)}) {
        const Records records = random_records(count, random);
        write_file("a.opn", bytes_of(records));
        EXPECT_EQ(open_book("a.opn"), "");
        ASSERT_TRUE(book_in_use(engine.book));
        expect_lookups(records, random);
        // Cut short, what is whole stays.
        write_file("a.opn", bytes_of(records).substr(
                                0, records.size() * 14 - std::size_t(pick(random, 13) + 1)));
        EXPECT_NE(open_book("a.opn").find("cut short"), std::string::npos);
        expect_lookups({records.begin(), records.end() - 1}, random);
    }
}

TEST_F(Book, NoBook) {
    std::filesystem::create_directory("folder");
    write_file("empty.opn", "");
    make_pipe("pipe");
    write_file("huge.opn", "");
    std::filesystem::resize_file("huge.opn", RECORD_SIZE << 31);  // more than can be numbered
    options.uci_mode = true;
    for (const char* path : {"", "quon.opn", "empty.opn"}) {  // the default need not be there
        EXPECT_EQ(open_book(path), "");
        EXPECT_FALSE(book_in_use(engine.book)) << path;
    }
    std::filesystem::create_directory("quon.opn");
    for (const std::string path :
         {"none.opn", "folder", "pipe", "/dev/zero", "/dev/stdin", "huge.opn", "quon.opn"}) {
        EXPECT_EQ(open_book(path), "info string book file " + path + " cannot be read\n");
        EXPECT_FALSE(book_in_use(engine.book)) << path;
        EXPECT_EQ(book_find(engine.book, {0x8000, 1}), std::nullopt);
    }
}

// Whatever is found carries the wanted key and counters of the file.
void expect_no_inventions(const Records& file, const Records& wanted) {
    for (const BookRecord& record : wanted) {
        const std::optional<BookRecord> found = book_find(engine.book, record.key);
        if (!found) continue;
        ASSERT_EQ(found->key, record.key);
        ASSERT_NE(std::find(file.begin(), file.end(), *found), file.end());
    }
}

TEST_F(Book, UnsortedOrReplacedWhileInUse) {
    Random random(5);
    const Records before = random_records(1000, random);
    Records unsorted = before;
    std::shuffle(unsorted.begin(), unsorted.end(), random);
    Records after = random_records(300, random);
    after.insert(after.end(), before.begin() + 500, before.end());
    after = in_order(after);
    Records all = before;
    all.insert(all.end(), after.begin(), after.end());
    for (const std::string& replacement : {bytes_of(after), bytes_of(before).substr(0, 700),
                                           std::string("not a book"), std::string()}) {
        write_file("a.opn", bytes_of(unsorted));
        EXPECT_NE(open_book("a.opn").find("not sorted"), std::string::npos);
        expect_no_inventions(before, before);
        write_file("a.opn", bytes_of(before));
        open_book("a.opn");
        EXPECT_EQ(book_find(engine.book, before[3].key), before[3]);
        write_file("a.opn", replacement);
        expect_no_inventions(all, before);
    }
    std::filesystem::remove("a.opn");
    expect_no_inventions(all, before);
}

TEST(BookKey, Reference) {
    expect_reference("keys", [](const Position& p) {
        const BookKey key = book_key(p);
        return Lines{"*", "*", "*", format("%04x", key.key16), format("%08x", key.key32)};
    });
}

}  // namespace
}  // namespace quon::test
