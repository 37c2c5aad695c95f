// Finding and opening table files, and what is said about them.

#include "syzygy/reference_tables.h"
#include "syzygy/table_writer.h"

namespace quon::test {
namespace {

Lines sides_of(int pieces) {
    Lines sides = {"K"};
    for (; pieces > 0; --pieces) {
        Lines longer;
        for (const std::string& side : sides) {
            const std::string letters = "QRBNP";
            const auto last = side.size() == 1 ? 0 : letters.find(side.back());
            for (const char letter : letters.substr(last)) longer.push_back(side + letter);
        }
        sides = longer;
    }
    return sides;
}

TEST(TableFiles, EveryNameIsRegistered) {
    const TableDirectory directory;
    int names = 0;
    for (int strong = 1; strong <= 4; ++strong) {
        for (int weak = 0; weak <= std::min(strong, 4 - strong); ++weak) {
            for (const std::string& first : sides_of(strong)) {
                bool before = strong == weak;  // in a pair the stronger side is named first
                for (const std::string& second : sides_of(weak)) {
                    before &= second != first;
                    if (before) continue;
                    directory.write(first + "v" + second + ".rtbw", "");
                    ++names;
                }
            }
        }
    }
    ASSERT_EQ(names, 5 + 15 + 15 + 75 + 35 + 120 + 175 + 70);
    EXPECT_EQ(tb_init(directory.path()), names);
    EXPECT_EQ(tb_largest, 6);
    for (const char* none : {"", "<empty>"}) {
        EXPECT_EQ(tb_init(none), std::nullopt);
        EXPECT_EQ(tb_largest, 0);
    }
}

TEST(TableFiles, DirectoriesInOrder) {
    const TableDirectory odd;  // with one name of a table
    for (const char* name : {"KQvK.rtbw", "KvKQ.rtbw", "KRvKQ.rtbw", "KNQvK.rtbw", "KQvK.rtbz",
                             "KRvK.rtbz", "KQQQQQvK.rtbw", "KRvK.rtbw.txt"}) {
        odd.write(name, "");
    }
    std::filesystem::create_directory(odd.path("KBvK.rtbw"));
    const TableDirectory second;
    for (const char* name : {"KQvK.rtbw", "KRvKP.rtbw"}) second.write(name, "");
    const std::string too_long(255, 'd');
    const struct {
        std::string path;
        int tables, largest;
    } cases[] = {
        {odd.path(), 1, 3},
        {odd.path() + ";" + second.path(), 2, 4},
        {";" + second.path() + ";;" + odd.path() + ";", 2, 4},
        {"/no/such;" + odd.path(), 1, 3},
        {odd.path() + ":" + second.path(), 0, 0},
        {odd.path() + ";" + too_long + ";" + second.path(), 1, 3},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(tb_init(c.path), c.tables) << c.path;
        EXPECT_EQ(tb_largest, c.largest) << c.path;
    }
}

TEST(TableFiles, FailuresAreReportedOnce) {
    const TableDirectory directory;
    for (const char* name : {"KQvK.rtbw", "KRvK.rtbw", "KNvKP.rtbw"}) directory.write(name, "");
    directory.write("KBvK.rtbw", "not a table");
    directory.load();
    for (const char* gone : {"KQvK.rtbw", "KNvKP.rtbw"}) {
        std::filesystem::remove(directory.path(gone));
    }
    const std::pair<const char*, const char*> cases[] = {
        {"8/8/8/3k4/8/8/8/KQ6 w - -", "Could not find KQvK.rtbw\n"},
        {"7K/8/8/8/8/8/8/kr6 b - -", "Corrupted table.\n"},
        {"8/8/8/3k4/8/8/8/K1B5 w - -", "Corrupted table.\n"},
        {"6n1/8/1P6/3k4/8/8/8/K7 w - -", "Could not find KNvKP.rtbw\n"},  // the stronger side's
        {"8/8/8/3k4/8/8/8/KN6 w - -", ""},                                // never registered
    };
    for (const auto& [fen, complaint] : cases) {
        testing::internal::CaptureStderr();
        for (int i = 0; i < 3; ++i) {
            int success = 1;
            tb_probe_wdl(probe_of(fen), success);
            EXPECT_EQ(success, 0);
            EXPECT_EQ(tb_probe_root(probe_of(fen), nullptr), TB_FAILED);
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), complaint) << fen;
    }
}

// The 64 distance tables used last are kept, here with the knowledge that they are damaged.
TEST(TableFiles, DistanceTablesInTurn) {
    constexpr std::size_t KEPT = 64;
    const TableDirectory directory;
    std::vector<ProbePosition> positions;
    for (int pieces = 1; pieces <= 4; ++pieces) {
        for (const std::string& side : sides_of(pieces)) {
            if (side.find('P') != std::string::npos) continue;
            directory.write(side + "vK.rtbw", constant_wdl_table(side + "vK", 4));
            directory.write(side + "vK.rtbz", "");
            positions.push_back(
                probe_of("7k/8/8/8/8/8/8/" + side + std::to_string(7 - pieces) + " w - -"));
        }
    }
    ASSERT_GT(positions.size(), KEPT);
    directory.load();
    const auto loaded = [&](std::size_t i) {
        testing::internal::CaptureStderr();
        int success = 1;
        tb_probe_dtz(positions[i], success);
        EXPECT_EQ(success, 0);
        return testing::internal::GetCapturedStderr() == "Corrupted table.\n";
    };
    for (std::size_t i = 0; i < KEPT; ++i) EXPECT_TRUE(loaded(i)) << i;
    EXPECT_FALSE(loaded(0));
    EXPECT_TRUE(loaded(KEPT));
    EXPECT_FALSE(loaded(0)) << "used later than the one that went";
    EXPECT_FALSE(loaded(2));
    EXPECT_TRUE(loaded(1));
}

}  // namespace
}  // namespace quon::test
