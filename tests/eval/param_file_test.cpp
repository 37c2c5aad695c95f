// Reading parameter files.

#include "eval/param_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "frontend/engine_options.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

constexpr char NO_TABLES[] = "file quon.rc contains invalid PST\n";

// Reads files written to a directory of its own; the settings are put back afterwards.
class ParamFile : public testing::Test {
protected:
    void SetUp() override {
        const testing::TestInfo& info = *testing::UnitTest::GetInstance()->current_test_info();
        directory =
            std::filesystem::path(testing::TempDir()) / (std::string("quon-") + info.name());
        std::filesystem::create_directories(directory);
        path = (directory / "test.rc").string();
        saved = {options.book_file, options.syzygy_path};
        numbers = {options.book_variety, options.book_depth, options.syzygy_probe_depth5,
                   options.syzygy_probe_depth6};
    }
    void TearDown() override {
        std::filesystem::remove_all(directory);
        options.book_file = saved[0];
        options.syzygy_path = saved[1];
        options.book_variety = i16(numbers[0]);
        options.book_depth = u8(numbers[1]);
        options.syzygy_probe_depth5 = i16(numbers[2]);
        options.syzygy_probe_depth6 = i16(numbers[3]);
    }

    // Loads a file with this text; what is printed goes to `printed`.
    bool load(const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
        bool result = false;
        printed = captured_output([&] { result = load_params(path, record); });
        return result;
    }

    std::filesystem::path directory;
    std::string path;
    std::string printed;
    EvalParams record;

private:
    std::vector<std::string> saved;
    std::vector<int> numbers;
};

// Twelve blocks whose entries are first, first + 1, ... in the order of the file.
std::string all_blocks(int first) {
    std::string text;
    for (const char* type : {"pawn", "knight", "bishop", "rook", "queen", "king"}) {
        for (const char* phase : {"op", "en"}) {
            text += std::string("PST_") + type + "_" + phase + "\n";
            for (int rank = 0; rank < 8; ++rank) {
                for (int file = 0; file < 8; ++file) text += std::to_string(first++) + " ";
                text += "\n";
            }
        }
    }
    return text;
}

TEST_F(ParamFile, MissingFileChangesNothing) {
    record.pst[PAWN][A1] = {1, 2};
    bool result = true;
    const std::string out =
        captured_output([&] { result = load_params((directory / "none.rc").string(), record); });
    EXPECT_FALSE(result);
    EXPECT_EQ(out, "");
    EXPECT_EQ(record.pst[PAWN][A1].en, 2);
    EXPECT_EQ(record.contempt, 0);
}

TEST_F(ParamFile, Values) {
    struct Case {
        const char* text;
        int op, en;  // of the pawn value, 90 and 110 by default
    };
    const Case cases[] = {
        {"pawn_value=95,115\n", 95, 115},
        {"pawn_value = 95, 115\n", 95, 115},
        {"  pawn_value 95 115\n", 95, 115},
        {"\tpawn_value\t95\t115\r\n", 95, 115},
        {"pawn_value 95\n", 95, 0},
        {"pawn_value\n", 0, 0},
        {"pawn_value=95,115", 95, 115},  // no line end
        {"pawn_value=-5,+7x 9\n", -5, 7},
        {"pawn_value x 115\n", 0, 115},
        {"pawn_value=65541,115\n", 5, 115},  // 16 bits
        {"#pawn_value=95,115\n", 90, 110},
        {"# a\n\n\r\npawn_value=95,115\n", 95, 115},
        {"Pawn_value=95,115\n", 90, 110},
        {"pawn_values=95,115\npawn_valu 1 2\n", 90, 110},
        {"pawn_value=1,2\npawn_value=95,115\n", 95, 115},
    };
    for (const Case& row : cases) {
        record = {};
        EXPECT_FALSE(load(row.text));
        EXPECT_EQ(record.pawn_value.op, row.op) << row.text;
        EXPECT_EQ(record.pawn_value.en, row.en) << row.text;
        EXPECT_EQ(printed, "loaded parameters from " + path + "\n" + NO_TABLES);
    }
}

TEST_F(ParamFile, EveryKindOfKey) {
    load(
        "contempt=7\nNMP_depth 4\nLMR_strength=101,5\npassed_pawn_rank2=11\npassed_pawn_rank7=77\n"
        "rook_trapped=-30,-9\ntune=300\nBookVariety=12\nBookDepth=300\nSyzygyProbeDepth5=3\n"
        "SyzygyProbeDepth6=4\npassed_pawn_rank8=9\n");
    EXPECT_EQ(record.contempt, 7);
    EXPECT_EQ(record.NMP_depth, 4);
    EXPECT_EQ(record.LMR_strength, 101);
    EXPECT_EQ(record.passed_pawn[1], 11);
    EXPECT_EQ(record.passed_pawn[6], 77);
    EXPECT_EQ(record.passed_pawn[7], 250);
    EXPECT_EQ(record.rook_trapped.op, -30);
    EXPECT_EQ(record.rook_trapped.en, -9);
    EXPECT_EQ(record.tune, 300);
    EXPECT_EQ(options.book_variety, 12);
    EXPECT_EQ(options.book_depth, 300 - 256);
    EXPECT_EQ(options.syzygy_probe_depth5, 3);
    EXPECT_EQ(options.syzygy_probe_depth6, 4);
}

TEST_F(ParamFile, FileNames) {
    struct Case {
        std::string line, book, syzygy;
    };
    const std::string longer(200, 'x');
    const Case cases[] = {
        {"QuonBook=my.opn", "my.opn", "old"},
        {"QuonBook = \"my.opn\" other", "my.opn", "old"},
        {"SyzygyPath=/tb/a:/tb/b", "old", "/tb/a:/tb/b"},
        {"SyzygyPath \"C:\\tb\"", "old", "C:\\tb"},
        {"SyzygyPath a=b", "old", "a"},
        {"SyzygyPath QuonBook", "old", "QuonBook"},
        {"SyzygyPath", "old", "old"},
        {"QuonBook = ", "old", "old"},
        {"QuonBook " + longer, longer.substr(0, 139), "old"},
        {"SyzygyPath " + longer, "old", longer.substr(0, 129)},
    };
    for (const Case& row : cases) {
        options.book_file = options.syzygy_path = "old";
        load(row.line + "\n");
        EXPECT_EQ(options.book_file, row.book) << row.line;
        EXPECT_EQ(options.syzygy_path, row.syzygy) << row.line;
    }
}

TEST_F(ParamFile, SquareTables) {
    ASSERT_TRUE(load(all_blocks(0) + "contempt=3\n"));
    EXPECT_EQ(printed, "loaded parameters from " + path + "\n");
    EXPECT_EQ(record.pst[PAWN][A8].op, 0);
    EXPECT_EQ(record.pst[PAWN][H8].op, 7);
    EXPECT_EQ(record.pst[PAWN][A1].op, 56);
    EXPECT_EQ(record.pst[PAWN][H1].en, 127);
    EXPECT_EQ(record.pst[KING][H1].en, 12 * 64 - 1);
    EXPECT_EQ(record.contempt, 3);
    EXPECT_TRUE(has_square_tables(record));
    // The next file starts with nothing set.
    EXPECT_FALSE(load("contempt=4\n"));
    EXPECT_EQ(record.pst[PAWN][A8].op, -1000);
}

TEST_F(ParamFile, DamagedSquareTables) {
    const std::string good = all_blocks(0);
    std::string short_line = good;
    short_line.replace(short_line.find(" 6 7 "), 5, " ");
    EXPECT_FALSE(load(short_line));
    EXPECT_EQ(printed, "loaded parameters from " + path + "\n" + NO_TABLES);
    EXPECT_EQ(record.pst[PAWN][F8].op, 5);
    EXPECT_EQ(record.pst[PAWN][G8].op, -1000);
    EXPECT_EQ(record.pst[PAWN][H8].op, -1000);
    EXPECT_TRUE(load(short_line + good));

    EXPECT_FALSE(load(good.substr(0, good.find("760"))));  // the last rank is missing
    EXPECT_EQ(record.pst[KING][A1 + 15].en, 759);
    EXPECT_EQ(record.pst[KING][A1].en, -1000);

    // Inside a block every line is a rank, and commas do not separate.
    load("PST_rook_op\n#1 2\n\n3,4 5\n6 7 8 9 10 11 12 13 14\n");
    EXPECT_EQ(record.pst[ROOK][A8].op, 0);
    EXPECT_EQ(record.pst[ROOK][B8].op, 2);
    EXPECT_EQ(record.pst[ROOK][A8 - 8].op, -1000);
    EXPECT_EQ(record.pst[ROOK][A8 - 16].op, 3);
    EXPECT_EQ(record.pst[ROOK][A8 - 15].op, 5);
    EXPECT_EQ(record.pst[ROOK][A8 - 24 + 7].op, 13);
}

TEST_F(ParamFile, LongLines) {
    const std::string blanks(240, ' ');
    load("contempt=5" + blanks + "pawn_value=1,2\n" + "#" + blanks + blanks + "\ntune=9\n");
    EXPECT_EQ(record.contempt, 5);
    EXPECT_EQ(record.pawn_value.op, 90);
    EXPECT_EQ(record.tune, 9);
}

}  // namespace
}  // namespace quon::test
