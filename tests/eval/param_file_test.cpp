// Reading parameter files.

#include "engine/param_settings.h"

#include "harness/board_support.h"
#include "harness/engine.h"
#include "harness/files.h"

namespace quon::test {
namespace {

// The options are put back afterwards.
struct ParamFile : testing::Test {
    ~ParamFile() override {
        options = saved;
        settings = saved_settings;
    }

    // Loads a file with this text into a new record; what is printed goes to `printed`.
    bool load(const std::string& text) {
        write_file("my.rc", text);
        record = {};
        bool result = false;
        printed = captured_output([&] { result = load_params(engine, "my.rc", record); });
        return result;
    }

    const Directory directory{true};
    const std::string loaded = "loaded parameters from my.rc\n";
    const std::string no_tables = loaded + "file quon.rc contains invalid PST\n";
    std::string printed;
    EvalParams record;
    const EngineOptions saved = options;
    const SearchSettings saved_settings = settings;
};

TEST_F(ParamFile, MissingFileChangesNothing) {
    record.pst[PAWN][A1] = {1, 2};
    make_pipe("pipe");
    for (const char* file : {"none", "pipe", "/dev/zero"}) {
        EXPECT_EQ(captured_output([&] { EXPECT_FALSE(load_params(engine, file, record)); }), "");
        EXPECT_EQ(record.pst[PAWN][A1].en, 2) << file;
    }
}

TEST_F(ParamFile, Values) {
    const std::string blanks(240, ' ');
    const std::tuple<std::string, int, int> cases[] = {
        // The pawn value is 90 and 110 by default.
        {"pawn_value=95,115\n", 95, 115},
        {"\tpawn_value\t95\t115\r\n", 95, 115},
        {"pawn_value 95\n", 95, 0},
        {"pawn_value=95,115", 95, 115},  // no line end
        {"pawn_value=-5,+7x 9\n", -5, 7},
        {"pawn_value=65541,115\n", 5, 115},  // 16 bits
        {"#pawn_value=95,115\n", 90, 110},
        {"pawn_values=95,115\npawn_valu 1 2\n", 90, 110},
        {"pawn_value=1,2\npawn_value=95,115\n", 95, 115},
        // The end of a long line is lost.
        {"contempt=5" + blanks + "pawn_value=1,2\n", 90, 110},
        {"pawn_value=95,115" + std::string(200000, ' ') + "pawn_value=1,2\nx", 95, 115},
    };
    for (const auto& [text, op, en] : cases) {
        EXPECT_FALSE(load(text));
        EXPECT_EQ(record.pawn_value.op, op) << text;
        EXPECT_EQ(record.pawn_value.en, en) << text;
        EXPECT_EQ(printed, no_tables);
    }
}

TEST_F(ParamFile, EveryKindOfKey) {
    load(
        "contempt=7\nNMP_depth 4\nLMR_strength=101,5\npassed_pawn_rank2=11\npassed_pawn_rank7=77\n"
        "rook_trapped=-30,-9\ntune=300\nBookVariety=12\nBookDepth=300\nSyzygyProbeDepth5=3\n"
        "SyzygyProbeDepth6=4\npassed_pawn_rank8=9\n");
    const EvalParams& r = record;
    EXPECT_EQ(format("%d %d %d %d %d %d %d %d %d", r.contempt, r.NMP_depth, r.LMR_strength,
                     r.passed_pawn[1], r.passed_pawn[6], r.passed_pawn[7], r.rook_trapped.op,
                     r.rook_trapped.en, r.tune),
              "7 4 101 11 77 250 -30 -9 300");
    EXPECT_EQ(format("%d %d %d %d", options.book_variety, options.book_depth,
                     settings.syzygy_probe_depth5.get(), settings.syzygy_probe_depth6.get()),
              "12 255 3 4");
}

TEST_F(ParamFile, Ranges) {
    const std::tuple<std::string, std::string, int, int> cases[] = {
        {"BookVariety=1\nBookDepth=0", "", 1, 0},
        {"BookVariety=0", "info string BookVariety is 1 to 32767: 0 becomes 1\n", 1, 24},
        {"BookVariety=3000000000",
         "info string BookVariety is 1 to 32767: 3000000000 becomes 32767\n", 32767, 24},
        {"BookDepth=256", "info string BookDepth is 0 to 255: 256 becomes 255\n", 30, 255},
    };
    for (const auto& [lines, message, variety, depth] : cases) {
        options.book_variety = 30;
        options.book_depth = 24;
        load(lines + "\n");
        EXPECT_EQ(printed, message + no_tables);
        EXPECT_EQ(options.book_variety, variety) << lines;
        EXPECT_EQ(options.book_depth, depth) << lines;
    }
}

TEST_F(ParamFile, FileNames) {
    const std::string longer(200, 'x');
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"QuonBook = \"my.opn\" other", "my.opn", "old"},
        {"SyzygyPath=/tb/a:/tb/b", "old", "/tb/a:/tb/b"},
        {"SyzygyPath \"C:\\tb\"", "old", "C:\\tb"},
        {"SyzygyPath QuonBook", "old", "QuonBook"},
        {"SyzygyPath", "old", "old"},
        {"QuonBook " + longer, longer.substr(0, 139), "old"},
        {"SyzygyPath " + longer, "old", longer.substr(0, 129)},
    };
    for (const auto& [line, book, syzygy] : cases) {
        options.book_file = options.syzygy_path = "old";
        load(line + "\n");
        EXPECT_EQ(options.book_file, book) << line;
        EXPECT_EQ(options.syzygy_path, syzygy) << line;
    }
}

TEST_F(ParamFile, SquareTables) {
    // Twelve blocks whose entries count up from 0 in the order of the file.
    std::string good;
    int entry = 0;
    for (const char* type : {"pawn", "knight", "bishop", "rook", "queen", "king"}) {
        for (const char* phase : {"_op", "_en"}) {
            good += std::string("PST_") + type + phase;
            for (int i = 0; i < 64; ++i, ++entry) {
                good += i % 8 ? ' ' : '\n';
                good += std::to_string(entry);
            }
            good += "\n";
        }
    }
    ASSERT_TRUE(load(good + "contempt=3\n"));
    EXPECT_EQ(printed, loaded);
    const auto& pst = record.pst;
    EXPECT_EQ(format("%d %d %d %d %d", pst[PAWN][A8].op, pst[PAWN][H8].op, pst[PAWN][A1].op,
                     pst[PAWN][H1].en, pst[KING][H1].en),
              "0 7 56 127 767");
    EXPECT_EQ(record.contempt, 3);
    EXPECT_TRUE(has_square_tables(record));

    std::string short_line = good;
    short_line.replace(short_line.find(" 6 7\n"), 4, "");
    EXPECT_FALSE(load(short_line));
    EXPECT_EQ(printed, no_tables);
    EXPECT_EQ(format("%d %d %d", pst[PAWN][F8].op, pst[PAWN][G8].op, pst[PAWN][H8].op),
              "5 -1000 -1000");

    // Inside a block every line is a rank, and commas do not separate.
    load("PST_rook_op\n#1 2\n\n3,4 5\n6 7 8 9 10 11 12 13 14\n");
    const auto& rook = pst[ROOK];
    EXPECT_EQ(format("%d %d %d %d %d %d", rook[A8].op, rook[B8].op, rook[square_of("a7")].op,
                     rook[square_of("a6")].op, rook[square_of("b6")].op, rook[square_of("h5")].op),
              "0 2 -1000 3 5 13");
}

}  // namespace
}  // namespace quon::test
