// Merging runs against a sorted map.

#include "book/book_merge.h"

#include <gtest/gtest.h>

#include <algorithm>
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
    Records random_run(int count) { return without_doubles(in_order(random_records(count))); }
};

GameCount count_of(const Records& a, const Records& b) {
    GameCount count;
    for (const BookRecord& r : a) add(count, r);
    for (const BookRecord& r : b) add(count, r);
    return count;
}

TEST_F(BookMerge, AgainstSortedMap) {
    for (int round = 0; round < scaled(40); ++round) {
        const Records a = random_run(round * 10);
        const Records b = random_run(pick(random, 300));
        const Records merged = records_of(count_of(a, b), 0);
        write_file("a.opn", bytes_of(a));
        write_file("b.opn", bytes_of(b));
        ASSERT_TRUE(merge_runs("a.opn", "b.opn", "c.opn", WORK));
        ASSERT_EQ(records_of(read_file("c.opn")), merged);
        ASSERT_TRUE(merge_runs("a.opn", b, "c.opn", WORK));
        ASSERT_EQ(records_of(read_file("c.opn")), merged);
        ASSERT_TRUE(merge_runs("none.opn", b, "c.opn", WORK));
        ASSERT_EQ(read_file("c.opn"), bytes_of(b));
        ASSERT_TRUE(merge_runs("a.opn", "none.opn", "c.opn", WORK));
        ASSERT_EQ(read_file("c.opn"), bytes_of(a));

        Records single = random_records(round * 20);
        for (BookRecord& r : single) {
            r = {r.key, u16(r.losses % 2), u16(r.wins % 2), u16(r.draws % 2)};
        }
        const Records sum = records_of(count_of(single, {}), 0);
        sort_into_run(single);
        ASSERT_EQ(single, sum);
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
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 12) << output;
    EXPECT_TRUE(output.ends_with("\ncannot write folder: Is a directory\n")) << output;
}

}  // namespace
}  // namespace quon::test
