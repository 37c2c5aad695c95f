// Damaged table files: loading and probing must end, in time, with a value or a failure.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "harness/board_support.h"
#include "syzygy/table_writer.h"
#include "syzygy/tbcore.h"
#include "syzygy/tbprobe_material.h"
#include "syzygy/tbprobe_position.h"

namespace quon::test {
namespace {

constexpr size_t CHECKSUM = 16;  // bytes at the end that nobody reads

// Leads a stream nowhere. Its descriptor stays: a sanitizer is still heard.
class Silence {
public:
    explicit Silence(std::FILE*& silenced) : stream(silenced) { std::swap(stream, nowhere); }
    ~Silence() {
        std::swap(stream, nowhere);
        std::fclose(nowhere);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    std::FILE*& stream;
    std::FILE* nowhere = std::fopen("/dev/null", "w");
};

// ---- Positions ----

// Men of a table name on random squares, either colour with those named first; legal.
ProbePosition random_position(const std::string& name, Random& random) {
    while (true) {
        ProbePosition p{};
        p.turn = u8(pick(random, 2));
        p.rule50 = u8(pick(random, 101));
        Bitboard* side = pick(random, 2) ? &p.white : &p.black;
        for (const char letter : name) {
            if (letter == 'v') {
                side = side == &p.white ? &p.black : &p.white;
                continue;
            }
            Bitboard* const sets[] = {&p.kings,   &p.queens,  &p.rooks,
                                      &p.bishops, &p.knights, &p.pawns};
            const Bitboard square = bit(pick(random, 64));
            *side |= square;
            *sets[std::string("KQRBNP").find(letter)] |= square;
        }
        if (popcount64(p.white | p.black) != std::ssize(name) - 1) continue;  // two on a square
        if (well_formed(p) && !waiting_in_check(p)) return p;
    }
}

struct Answers {
    int answered = 0;
    int failed = 0;

    void note(bool success) { ++(success ? answered : failed); }
    Answers& operator+=(const Answers& other) {
        answered += other.answered;
        failed += other.failed;
        return *this;
    }
};

constexpr int MAX_DTZ = 1 + 2 * 0xFFFF;  // plies: a map's largest number, in moves

// All probes of the positions; values that no table can mean fail the test.
Answers probe_all(std::span<const ProbePosition> positions) {
    Answers answers;
    for (const ProbePosition& p : positions) {
        int success = -1;
        const int wdl = tb_probe_wdl(p, success);
        answers.note(success != 0);
        EXPECT_TRUE(0 <= success && success <= 2) << success;
        EXPECT_TRUE(-2 <= wdl && wdl <= 2) << wdl;
        success = -1;
        const int dtz = tb_probe_dtz(p, success);
        answers.note(success != 0);
        EXPECT_TRUE(0 <= success && success <= 2) << success;
        EXPECT_LE(std::abs(dtz), MAX_DTZ + 200);
        u32 results[TB_MAX_MOVES + 1];
        const u32 root = tb_probe_root(p, results);
        answers.note(root != TB_FAILED);
        EXPECT_TRUE(root == TB_FAILED || result_wdl(root) <= 4) << root;
        EXPECT_NE(std::find(std::begin(results), std::end(results), TB_FAILED), std::end(results));
    }
    return answers;
}

// ---- Files ----

struct Original {
    std::string file;  // "KQvK.rtbw"
    std::string bytes;
    const TableDirectory* directory;  // with all tables that the probes need
    std::vector<ProbePosition> positions;
};

std::string file_bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void add_originals(std::vector<Original>& originals, const TableDirectory& directory,
                   const std::string& name, Random& random) {
    constexpr int POSITIONS = 8;
    std::vector<ProbePosition> positions;
    for (int i = 0; i < POSITIONS; ++i) positions.push_back(random_position(name, random));
    for (const char* const suffix : {".rtbw", ".rtbz"}) {
        const std::string bytes = file_bytes(directory.path + "/" + name + suffix);
        if (!bytes.empty()) originals.push_back({name + suffix, bytes, &directory, positions});
    }
}

// A copy of the real tables, but for the large ones; of nothing where they are missing.
void copy_real_tables(const TableDirectory& directory) {
    const std::string shared = QUON_SHARED_DIR "/data/syzygy";
    if (!std::filesystem::exists(shared)) return;
    for (const auto& entry : std::filesystem::directory_iterator(shared)) {
        constexpr size_t LARGE = 320'000;
        const std::string name = entry.path().filename().string();
        if (entry.file_size() < LARGE) directory.write(name, file_bytes(entry.path().string()));
    }
}

constexpr TableForm FORMS[] = {
    {"small", {true, 12, 5, 10}, {"WXB", "BXW"}, {0, 1}, false, DTZ_MAPPED},
    {"deep",
     {false, 90, 8, 16},
     {"BWX", "XBW"},
     {1, 2},
     true,
     DTZ_BLACK | DTZ_MAPPED | DTZ_WIDE | DTZ_LOSS_PLIES},
};

void write_all(const TableDirectory& directory, const TableForm& form) {
    for (const int piece : {PAWN, KNIGHT, BISHOP, ROOK, QUEEN}) {
        directory.write(table_name(piece) + ".rtbw", wdl_table(piece, form));
        directory.write(table_name(piece) + ".rtbz", dtz_table(piece, form));
    }
}

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds LONGEST_CASE(5);

// Everything about the ending with these bytes in the place of the file.
Answers probe_damaged(const Original& original, const std::string& bytes) {
    const auto start = Clock::now();
    original.directory->write(original.file, bytes);
    captured_output([&] { tb_init(original.directory->path); });
    const Answers answers = probe_all(original.positions);
    EXPECT_LT(Clock::now() - start, LONGEST_CASE);
    original.directory->write(original.file, original.bytes);
    return answers;
}

// The bytes as a table in memory, where a sanitizer sees reading behind the end, which it does not
// see in a mapping. nullptr if the table is refused.
struct LooseTable {
    LooseTable(const std::string& file, std::string_view content)
        : kind(file.back() == 'w' ? TableKind::WDL : TableKind::DTZ),
          bytes(std::as_bytes(std::span(content)).begin(), std::as_bytes(std::span(content)).end()),
          table(open_table(bytes, kind, material_of_name(file.substr(0, file.find('.'))))) {}

    TableKind kind;
    std::vector<std::byte> bytes;
    std::unique_ptr<TableFile> table;
};

// The table's own values for the positions.
Answers look_up_all(const LooseTable& loose, std::span<const ProbePosition> positions) {
    Answers answers;
    const u64 key = material_key(loose.table->material.counts, false);
    for (const ProbePosition& p : positions) {
        const bool exchanged = material_key(p, false) != key;
        for (const int wdl : {-2, -1, 1, 2}) {
            const int value = loose.kind == TableKind::WDL
                                  ? look_up_wdl(*loose.table, p, exchanged)
                                  : look_up_dtz(*loose.table, p, exchanged, wdl);
            const bool failed = value == TABLE_DAMAGED || value == OTHER_SIDE_STORED;
            answers.note(!failed);
            if (failed) continue;
            if (loose.kind == TableKind::WDL) {
                EXPECT_TRUE(-2 <= value && value <= 2) << value;
            } else {
                EXPECT_TRUE(1 <= value && value <= MAX_DTZ) << value;
            }
        }
    }
    return answers;
}

// ---- Damage ----

void overwrite(std::string& bytes, size_t at, u64 value, size_t size) {
    for (size_t i = 0; i < size && at + i < bytes.size(); ++i) {
        bytes[at + i] = char(value >> 8 * i & 0xFF);
    }
}

// Half of the places are in the headers at the front.
size_t random_place(const std::string& bytes, Random& random) {
    const int all = int(bytes.size());
    return size_t(pick(random, pick(random, 2) ? std::min(all, 400) : all));
}

std::string garbage(size_t size, Random& random) {
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = char(random());
    return bytes;
}

void flip_bits(std::string& bytes, Random& random) {
    char& byte = bytes[random_place(bytes, random)];
    byte = char(byte ^ 1 << pick(random, 8));
}
void set_byte(std::string& bytes, Random& random) {
    constexpr int EXTREMES[] = {0, 1, 0x0F, 0x1F, 0x20, 0x40, 0x7F, 0x80, 0xFE, 0xFF};
    overwrite(bytes, random_place(bytes, random), u64(EXTREMES[pick(random, 10)]), 1);
}
void set_word(std::string& bytes, Random& random) {
    constexpr u64 EXTREMES[] = {0,      1,      0x7FFF,     0x8000,     0xFFFF,
                                0x0FFF, 0xF000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    overwrite(bytes, random_place(bytes, random) & ~size_t{1}, EXTREMES[pick(random, 10)],
              pick(random, 2) ? 2 : 4);
}
void nudge_word(std::string& bytes, Random& random) {
    const size_t at = random_place(bytes, random) & ~size_t{1};
    const u64 old = u8(bytes[at]) | (at + 1 < bytes.size() ? u64(u8(bytes[at + 1])) << 8 : 0);
    overwrite(bytes, at, old + u64(pick(random, 17)) - 8, 2);
}
void fill(std::string& bytes, Random& random) {
    const size_t at = random_place(bytes, random);
    const size_t rest = bytes.size() - at;
    const size_t size = pick(random, 2) ? rest : std::min<size_t>(rest, 1 + random() % 256);
    std::string filling = garbage(size, random);
    if (pick(random, 3) != 0) filling.assign(size, pick(random, 2) ? '\0' : '\xFF');
    bytes.replace(at, size, filling);
}
void insert_or_erase(std::string& bytes, Random& random) {
    const size_t at = random_place(bytes, random);
    if (pick(random, 2)) {
        bytes.insert(at, garbage(1 + random() % 8, random));
    } else {
        bytes.erase(at, 1 + random() % 8);
    }
}
using Damage = void (*)(std::string&, Random&);
constexpr Damage DAMAGES[] = {flip_bits, set_byte, set_word, nudge_word, fill, insert_or_erase};

std::string damaged(const Original& original, Random& random) {
    std::string bytes = original.bytes;
    for (int left = 1 + pick(random, 4); left > 0 && !bytes.empty(); --left) {
        DAMAGES[pick(random, int(std::size(DAMAGES)))](bytes, random);
    }
    return bytes;
}

// Written tables in both forms, and real ones where they are.
class TableCorruption : public testing::Test {
protected:
    TableCorruption() {
        Random random(1);
        for (size_t i = 0; i < std::size(FORMS); ++i) {
            write_all(written[i], FORMS[i]);
            for (const int piece : {PAWN, ROOK, QUEEN}) {
                add_originals(originals, written[i], table_name(piece), random);
            }
        }
        written_originals = originals.size();
        copy_real_tables(real);
        for (const char* const name : {"KBvK", "KRvK", "KQvK", "KPvK", "KBvKB", "KBvKN", "KNvKN",
                                       "KBvKP", "KPvKP", "KQQvK", "KPPvK", "KQvKQ", "KRvKB"}) {
            add_originals(originals, real, name, random);
        }
    }

    TableDirectory written[std::size(FORMS)];
    TableDirectory real;
    std::vector<Original> originals;
    size_t written_originals = 0;
    Silence complaints{stderr};
};

TEST_F(TableCorruption, DamagedTablesAreSafe) {
    Answers answers;
    int refused = 0;
    const int cases = scaled(10000);
    for (int seed = 0; seed < cases && !HasFailure(); ++seed) {
        Random random{u64(seed)};
        const Original& original = originals[size_t(seed) % originals.size()];
        SCOPED_TRACE(original.file + ", seed " + std::to_string(seed));
        const auto start = Clock::now();
        const LooseTable loose(original.file, damaged(original, random));
        if (loose.table) {
            answers += look_up_all(loose, original.positions);
        } else {
            ++refused;
        }
        EXPECT_LT(Clock::now() - start, LONGEST_CASE);
    }
    // Damage is noticed at once, or at some positions, or not at all.
    EXPECT_GT(refused, cases / 10);
    EXPECT_GT(answers.answered, cases);
    EXPECT_GT(answers.failed, cases / 10);
}

// The same through the registry and all probes.
TEST_F(TableCorruption, DamagedFilesAreSafe) {
    const auto undamaged = [&] {
        Answers answers;
        for (const Original& original : originals) {
            answers += probe_damaged(original, original.bytes);
        }
        return answers;
    };
    const Answers before = undamaged();
    Answers answers;
    const int cases = scaled(300);
    for (int seed = 0; seed < cases && !HasFailure(); ++seed) {
        Random random{u64(seed)};
        const Original& original = originals[size_t(seed) % originals.size()];
        SCOPED_TRACE(original.file + ", seed " + std::to_string(seed));
        answers += probe_damaged(original, damaged(original, random));
    }
    EXPECT_GT(answers.answered, cases);
    EXPECT_GT(answers.failed, cases);
    // Nothing of the damage stays.
    EXPECT_EQ(undamaged().failed, before.failed);
}

// A file that ends too early is refused when it is loaded, whatever it still holds.
TEST_F(TableCorruption, EveryCutIsNoticed) {
    const auto step = size_t(std::max(1, 10 / scaled(10)));
    for (size_t i = 0; i < written_originals; ++i) {
        const std::string& file = originals[i].file;
        const std::string_view bytes = originals[i].bytes;
        const size_t end = bytes.size() - CHECKSUM;
        EXPECT_NE(LooseTable(file, bytes.substr(0, end)).table, nullptr) << file;
        for (size_t size = 0; size < end; size += step) {
            EXPECT_EQ(LooseTable(file, bytes.substr(0, size)).table, nullptr)
                << file << " of " << size << " bytes";
        }
    }
}

// More symbols than twelve bits can name: as one chain, each resolved a pass after the next, they
// would hold the loading up.
TEST(TableValues, TooManySymbolsAreRefused) {
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
