// Look-ups in books, also in such as no book should be.

#include "book/book.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "harness/book_support.h"
#include "harness/engine.h"

namespace quon::test {
namespace {

struct Book : testing::Test {
    BookDirectory directory;
};

// Distinct keys, many of them in few buckets.
Records random_records(int count, Random& random) {
    Records records;
    while (int(records.size()) < count) {
        const u64 bits = random();
        const u16 key16 = u16(bits % 4 ? bits >> 8 & 0x8FC3 : bits >> 8);
        records.push_back({{key16, u32(bits >> 32)}, u16(random()), u16(random()), u16(random())});
    }
    records = in_order(records);
    const auto same = [](const BookRecord& a, const BookRecord& b) { return a.key == b.key; };
    records.erase(std::unique(records.begin(), records.end(), same), records.end());
    return records;
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
    }
}

TEST_F(Book, EdgesOfTheKey) {
    const Records records = {
        {{0xFFFF, 0xFFFFFFFF}, 1, 2, 3}, {{0xFFFF, 0}, 4, 5, 6}, {{0x8000, 7}, 7, 8, 9},
        {{0x7FFF, 7}, 1, 1, 1},          {{0, 1}, 2, 2, 2},      {{0, 0}, 60000, 65535, 0}};
    write_file("a.opn", bytes_of(records));
    open_book("a.opn");
    Random random(2);
    expect_lookups(records, random);
}

TEST_F(Book, NoBook) {
    std::filesystem::create_directory("folder");
    write_file("empty.opn", "");
    make_pipe("pipe");
    write_file("huge.opn", "");
    std::filesystem::resize_file("huge.opn", RECORD_SIZE << 31);  // more than can be numbered
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"quon.opn", ""},  // the default need not be there
        {"empty.opn", ""},
        {"none.opn", "cannot be read"},
        {"folder", "cannot be read"},
        {"pipe", "cannot be read"},
        {"/dev/zero", "cannot be read"},
        {"/dev/stdin", "cannot be read"},
        {"huge.opn", "cannot be read"},
    };
    for (const bool uci : {true, false}) {
        options.uci_mode = uci;
        const std::string start = uci ? "info string " : "";
        for (const auto& [path, problem] : cases) {
            const std::string line = start + "book file " + path + " " + problem + "\n";
            EXPECT_EQ(open_book(path), problem.empty() ? "" : line);
            EXPECT_FALSE(book_in_use(engine.book)) << path;
            EXPECT_EQ(book_find(engine.book, {0x8000, 1}), std::nullopt);
        }
    }
    std::filesystem::create_directory("quon.opn");
    EXPECT_NE(open_book("quon.opn"), "");
}

TEST_F(Book, CutShort) {
    Random random(3);
    Records records = random_records(40, random);
    std::string bytes = bytes_of(records);
    for (const int missing : {1, 13}) {
        write_file("a.opn", bytes.substr(0, bytes.size() - std::size_t(missing)));
        EXPECT_NE(open_book("a.opn").find("cut short"), std::string::npos);
        const Records whole(records.begin(), records.end() - 1);
        expect_lookups(whole, random);
        EXPECT_EQ(book_find(engine.book, records.back().key), std::nullopt);
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

TEST_F(Book, Unsorted) {
    Random random(4);
    for (int round = 0; round < scaled(10); ++round) {
        Records records = random_records(3000, random);
        std::shuffle(records.begin(), records.end(), random);
        write_file("a.opn", bytes_of(records));
        EXPECT_NE(open_book("a.opn").find("not sorted"), std::string::npos);
        expect_no_inventions(records, {records.begin(), records.begin() + 300});
    }
}

TEST_F(Book, ReplacedWhileInUse) {
    Random random(5);
    const Records before = random_records(1000, random);
    Records after = random_records(300, random);
    after.insert(after.end(), before.begin() + 500, before.end());
    after = in_order(after);
    Records all = before;
    all.insert(all.end(), after.begin(), after.end());
    const std::string replacements[] = {bytes_of(after), bytes_of(before).substr(0, 700), "",
                                        "not a book"};
    for (const std::string& replacement : replacements) {
        write_file("a.opn", bytes_of(before));
        open_book("a.opn");
        EXPECT_EQ(book_find(engine.book, before[3].key), before[3]);
        write_file("a.opn", replacement);
        expect_no_inventions(all, before);
    }
    std::filesystem::remove("a.opn");
    expect_no_inventions(all, before);
    std::filesystem::create_directory("a.opn");
    expect_no_inventions(all, before);
}

}  // namespace
}  // namespace quon::test
