// Merging runs against a sorted map.

#include "book/book_merge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "engine/output.h"
#include "harness/book_support.h"
#include "harness/engine.h"

namespace quon::test {
namespace {

const BookWork WORK{print_unlogged, engine_print, {}};

struct BookMerge : testing::Test {
    BookDirectory directory;
    Random random{7};

    // Few keys, so that they meet; counters up to far beyond the limit of a sum.
    Records random_records(int count) {
        Records records;
        for (int i = 0; i < count; ++i) {
            const BookKey key = {u16(random() % 64 * 1000), u32(random() % 8 * 600000000)};
            const int limit = pick(random, 2) ? 60001 : 20;
            records.push_back({key, u16(pick(random, limit)), u16(pick(random, limit)),
                               u16(pick(random, limit))});
        }
        return records;
    }
    // One of each key, in the order of a book.
    Records random_run(int count) {
        Records run = in_order(random_records(count));
        const auto same = [](const BookRecord& a, const BookRecord& b) { return a.key == b.key; };
        run.erase(std::unique(run.begin(), run.end(), same), run.end());
        return run;
    }
};

using Model = std::map<std::pair<int, u32>, std::array<i64, 3>, std::greater<>>;

void add(Model& model, const Records& records) {
    for (const BookRecord& r : records) {
        auto& counters = model[{r.key.key16, r.key.key32}];
        counters = {counters[0] + r.losses, counters[1] + r.wins, counters[2] + r.draws};
    }
}

Records limited(const Model& model) {
    Records records;
    const auto limit = [](i64 counter) { return u16(std::min<i64>(counter, 60000)); };
    for (const auto& [key, counters] : model) {
        records.push_back({{u16(key.first), key.second},
                           limit(counters[0]),
                           limit(counters[1]),
                           limit(counters[2])});
    }
    return records;
}

TEST_F(BookMerge, AgainstSortedMap) {
    for (int round = 0; round < scaled(40); ++round) {
        const Records a = random_run(round * 10);
        const Records b = random_run(pick(random, 300));
        Model model;
        add(model, a);
        add(model, b);
        write_file("a.opn", bytes_of(a));
        write_file("b.opn", bytes_of(b));
        ASSERT_TRUE(merge_runs("a.opn", "b.opn", "c.opn", WORK));
        ASSERT_EQ(records_of(read_file("c.opn")), limited(model));
        ASSERT_TRUE(merge_runs("a.opn", b, "c.opn", WORK));
        ASSERT_EQ(records_of(read_file("c.opn")), limited(model));
        ASSERT_TRUE(merge_runs("none.opn", b, "c.opn", WORK));
        ASSERT_EQ(read_file("c.opn"), bytes_of(b));
        ASSERT_TRUE(merge_runs("a.opn", "none.opn", "c.opn", WORK));
        ASSERT_EQ(read_file("c.opn"), bytes_of(a));
    }
}

TEST_F(BookMerge, Saturation) {
    const BookKey key = {0x8001, 5};
    write_file("a.opn", bytes_of({{key, 59999, 40000, 60000}}));
    ASSERT_TRUE(merge_runs("a.opn", Records{{key, 1, 20001, 1}}, "c.opn", WORK));
    EXPECT_EQ(records_of(read_file("c.opn")), (Records{{key, 60000, 60000, 60000}}));
}

TEST_F(BookMerge, SortIntoRun) {
    for (const int count : {0, 1, 2, 100, 2000}) {
        Records records;
        for (const BookRecord& r : random_records(count)) {
            records.push_back({r.key, u16(r.losses % 2), u16(r.wins % 2), u16(r.draws % 2)});
        }
        Model model;
        add(model, records);
        sort_into_run(records);
        EXPECT_EQ(records, limited(model));
    }
}

TEST_F(BookMerge, CopyFrequent) {
    const auto record = [](u16 key16, int losses, int wins, int draws) {
        return BookRecord{{key16, 1}, u16(losses), u16(wins), u16(draws)};
    };
    const Records records = {record(9, 9, 0, 0),
                             record(8, 3, 3, 2),
                             record(7, 3, 3, 3),
                             record(6, 0, 0, 8),
                             record(5, 60000, 60000, 60000),
                             record(4, 0, 0, 0)};
    write_file("a.opn", bytes_of(records));
    EXPECT_EQ(copy_frequent("a.opn", 9, "c.opn", WORK), 3);
    EXPECT_EQ(records_of(read_file("c.opn")), (Records{records[0], records[2], records[4]}));
}

TEST_F(BookMerge, Failures) {
    write_file("a.opn", bytes_of(random_run(10)));
    std::filesystem::create_directory("folder");
    const std::string output = captured_output([] {
        EXPECT_FALSE(merge_runs("a.opn", Records{}, "folder", WORK));
        EXPECT_FALSE(merge_runs("folder", Records{}, "c.opn", WORK));
        EXPECT_FALSE(merge_runs("a.opn", "folder", "c.opn", WORK));
        EXPECT_EQ(copy_frequent("a.opn", 9, "nowhere/c.opn", WORK), std::nullopt);
        EXPECT_EQ(copy_frequent("none.opn", 9, "c.opn", WORK), std::nullopt);
        EXPECT_FALSE(rename_run("a.opn", "folder", WORK));
    });
    EXPECT_EQ(output,
              "\ncannot write folder: Is a directory\n"
              "\ncannot read folder\n"
              "\ncannot read folder\n"
              "\ncannot write nowhere/c.opn: No such file or directory\n"
              "\ncannot read none.opn\n"
              "\ncannot write folder: Is a directory\n");
}

}  // namespace
}  // namespace quon::test
