// Damaged table files: loading and looking up must end, in time, with a value or a failure.

#include <span>

#include "platform/clock.h"
#include "syzygy/reference_tables.h"
#include "syzygy/table_writer.h"
#include "syzygy/tbprobe_material.h"

namespace quon::test {
namespace {

constexpr size_t CHECKSUM = 16;          // bytes at the end that nobody reads
constexpr int MAX_DTZ = 1 + 2 * 0xFFFF;  // plies: a map's largest number, in moves

struct Original {
    std::string name;  // "KQvK"
    TableKind kind;
    std::string bytes;
};

std::vector<Original> written_originals() {
    constexpr u8 WIDE_FLAGS = DTZ_BLACK | DTZ_MAPPED | DTZ_WIDE | DTZ_LOSS_PLIES;
    return {{"KRvK", TableKind::DTZ, written_table({DTZ_MAPPED, 5, 10})},
            {"KRvK", TableKind::DTZ, written_table({WIDE_FLAGS, 8, 16})}};
}

// Bytes as a table in memory, where a sanitizer sees reading behind the end, which it does not see
// in a mapping. Without `table` if it is refused.
struct LooseTable {
    LooseTable(const Original& original, std::string_view content)
        : bytes(std::as_bytes(std::span(content)).begin(), std::as_bytes(std::span(content)).end()),
          table(open_table(bytes, original.kind, material_of_name(original.name))) {}

    std::vector<std::byte> bytes;
    std::unique_ptr<TableFile> table;
};

// The table's own values for random positions, counted by success; those that no table can mean
// fail the test.
void look_up_all(const Original& original, const TableFile& table, Random& random,
                 int (&counts)[2]) {
    const u64 key = material_key(table.material.counts, false);
    for (int i = 0; i < 8; ++i) {
        const ProbePosition p = random_position(original.name, random);
        const bool exchanged = material_key(p, false) != key;
        for (const int wdl : {-2, -1, 1, 2}) {
            const bool outcomes = original.kind == TableKind::WDL;
            const int value =
                outcomes ? look_up_wdl(table, p, exchanged) : look_up_dtz(table, p, exchanged, wdl);
            const bool failed = value == TABLE_DAMAGED || value == OTHER_SIDE_STORED;
            ++counts[failed ? 0 : 1];
            if (failed) continue;
            EXPECT_LE(outcomes ? -2 : 1, value);
            EXPECT_LE(value, outcomes ? 2 : MAX_DTZ);
        }
    }
}

void overwrite(std::string& bytes, size_t at, u64 value, size_t size) {
    for (size_t i = 0; i < size && at + i < bytes.size(); ++i) {
        bytes[at + i] = char(value >> 8 * i & 0xFF);
    }
}

// One to four changes, half of them in the headers at the front.
std::string damaged(std::string bytes, Random& random) {
    constexpr u64 EXTREMES[] = {0, 1, 0x40, 0x80, 0xFE, 0x0FFF, 0xF000, 0x7FFFFFFF, 0xFFFFFFFF};
    for (int left = 1 + pick(random, 4); left > 0 && !bytes.empty(); --left) {
        const int all = int(bytes.size());
        const auto at = size_t(pick(random, pick(random, 2) ? std::min(all, 400) : all));
        switch (pick(random, 4)) {
            case 0: bytes[at] = char(bytes[at] ^ 1 << pick(random, 8)); break;
            case 1: overwrite(bytes, at, pick_from(random, EXTREMES), 1U << pick(random, 3)); break;
            case 2: bytes[at] = char(bytes[at] + pick(random, 17) - 8); break;
            default: bytes.replace(at, size_t(pick(random, 9)), size_t(pick(random, 9)), '\xFF');
        }
    }
    return bytes;
}

TEST(TableCorruption, DamagedTablesAreSafe) {
    std::vector<Original> originals = written_originals();
    for (const char* name : {"KBvK", "KRvK", "KQvK", "KPvK", "KBvKB", "KBvKN", "KNvKN"}) {
        const std::string file = data_file("/data/syzygy/") + name;
        originals.push_back({name, TableKind::WDL, read_file(file + ".rtbw")});
        originals.push_back({name, TableKind::DTZ, read_file(file + ".rtbz")});
    }
    int refused = 0;
    int counts[2] = {};
    const int cases = scaled(10000);
    for (int seed = 0; seed < cases && !HasFailure(); ++seed) {
        Random random{u64(seed)};
        const Original& original = originals[size_t(seed) % originals.size()];
        SCOPED_TRACE(original.name + ", seed " + std::to_string(seed));
        const double start = monotonic_seconds();
        const LooseTable loose(original, damaged(original.bytes, random));
        if (loose.table) look_up_all(original, *loose.table, random, counts);
        refused += loose.table == nullptr;
        EXPECT_LT(monotonic_seconds() - start, 5);
    }
    // Damage is noticed at once, or at some positions, or not at all.
    EXPECT_GT(refused, cases / 10);
    EXPECT_GT(counts[true], cases);
    EXPECT_GT(counts[false], cases / 10);
}

// A file that ends too early is refused when it is loaded, whatever it still holds.
TEST(TableCorruption, EveryCutIsNoticed) {
    for (const Original& original : written_originals()) {
        const std::string_view bytes = original.bytes;
        const size_t end = bytes.size() - CHECKSUM;
        EXPECT_NE(LooseTable(original, bytes.substr(0, end)).table, nullptr);
        for (size_t size = 0; size < end; size += size < 2000 ? 1 : 41) {
            EXPECT_EQ(LooseTable(original, bytes.substr(0, size)).table, nullptr) << size;
        }
        EXPECT_EQ(LooseTable(original, bytes.substr(0, end - 1)).table, nullptr);
    }
}

// More symbols than twelve bits can name: as one chain, each resolved a pass after the next, they
// would hold the loading up.
TEST(TableCorruption, TooManySymbolsAreRefused) {
    constexpr u32 SYMBOLS = 0xFFFF;
    std::string header = {0, 6, 15, 0, 1, 0, 0, 0, 1, 1, 0, 0};
    header.resize(header.size() + 2 + 3 * SYMBOLS + 1);
    overwrite(header, 12, SYMBOLS, 2);
    for (u32 symbol = 0; symbol < SYMBOLS; ++symbol) {
        const u64 left = std::min<u64>(symbol + 1, 0xFFE);
        overwrite(header, 14 + 3 * symbol, symbol == 0xFFE ? 0xFFF000 : left | 0xFFE000, 3);
    }
    TableCursor cursor{std::as_bytes(std::span(header))};
    TableValues values;
    EXPECT_FALSE(read_values_header(values, cursor, 1000));
}

}  // namespace
}  // namespace quon::test
