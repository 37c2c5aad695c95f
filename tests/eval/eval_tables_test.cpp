// Tables derived from the parameters: worked figures and their print.

#include "eval/eval_tables.h"

#include <gtest/gtest.h>

#include "eval/eval_print.h"
#include "eval/tunables.h"
#include "support/board_support.h"
#include "support/eval_support.h"

namespace quon::test {
namespace {

template <typename Entry>
std::vector<int> first(const Entry& entry, int count) {
    std::vector<int> values;
    for (int i = 0; i < count; ++i) values.push_back(entry(i));
    return values;
}

TEST(EvalTables, MobilityOfTheDefaults) {
    const EvalTables& t = eval_tables;
    const auto knight_op = [&](int n) { return t.knight_mobility[n].op; };
    const auto knight_en = [&](int n) { return t.knight_mobility[n].en; };
    const auto bishop_op = [&](int n) { return t.bishop_mobility[n].op; };
    const auto rook_op = [&](int n) { return t.rook_mobility[n].op; };
    EXPECT_EQ(first(knight_op, 10), (std::vector<int>{-23, -12, -6, 0, 5, 10, 15, 19, 23, 0}));
    EXPECT_EQ(first(knight_en, 10), (std::vector<int>{-27, -14, -7, 0, 6, 12, 17, 22, 27, 0}));
    EXPECT_EQ(first(bishop_op, 16),
              (std::vector<int>{-18, -11, -7, -3, 1, 4, 7, 10, 13, 15, 18, 20, 23, 25, 28, 0}));
    EXPECT_EQ(first(rook_op, 16),
              (std::vector<int>{-14, -8, -5, -2, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 20, 0}));
    EXPECT_EQ(t.queen_mobility[0].en, -36);
    EXPECT_EQ(t.queen_mobility[6].en, 0);
    EXPECT_EQ(t.queen_mobility[28].en, 54);
    EXPECT_EQ(t.queen_mobility[29].en, 0);
}

TEST(EvalTables, PassedPawnsAndKingDangerOfTheDefaults) {
    const EvalTables& t = eval_tables;
    EXPECT_EQ(first([&](int k) { return t.ppawn[k]; }, 8),
              (std::vector<int>{0, 6, 6, 18, 38, 78, 138, 275}));
    EXPECT_EQ(first([&](int k) { return t.ppawnx[k]; }, 7),
              (std::vector<int>{4, 0, 7, 12, 24, 36, 82}));
    EXPECT_EQ(first([&](int i) { return t.KingDanger[i]; }, 26),
              (std::vector<int>{0,  1,  2,   5,   8,   13,  18,  25,  32,  41,  50,  61,  72,
                                85, 98, 113, 128, 145, 162, 181, 200, 221, 242, 262, 282, 301}));
    EXPECT_EQ(t.KingDanger[61], 714);
    EXPECT_EQ(t.KingDanger[62], 722);
    EXPECT_EQ(t.KingDanger[63], 729);
}

TEST(EvalTables, SquareTablesOfTheDefaults) {
    const auto& pst = eval_tables.pst;
    const struct {
        int type;
        const char* name;  // of the square
        int op, en;
    } cases[] = {
        {PAWN, "a2", -7, 0},  {PAWN, "d4", 8, 4},       {PAWN, "e4", 8, 4},
        {PAWN, "h7", 0, 8},   {KNIGHT, "b1", -24, -24}, {KNIGHT, "f3", 0, 0},
        {KNIGHT, "e5", 7, 7}, {BISHOP, "b2", 0, 0},     {BISHOP, "h8", -12, -12},
        {ROOK, "a5", -8, 0},  {ROOK, "e1", 2, 0},       {QUEEN, "a1", -12, -25},
        {QUEEN, "d4", 2, 4},  {QUEEN, "d5", -2, 4},     {QUEEN, "h8", -16, -25},
        {KING, "g1", 7, -35}, {KING, "e4", -29, 10},    {KING, "h6", -21, -25},
    };
    for (const auto& row : cases) {
        const Pair entry = pst[row.type][make_square(row.name[0] - 'a', row.name[1] - '1')];
        EXPECT_EQ(entry.op, row.op) << row.type << ' ' << row.name;
        EXPECT_EQ(entry.en, row.en) << row.type << ' ' << row.name;
    }
}

TEST(EvalTables, ParametersReachTheTables) {
    const RestoreParams restore;
    params.pst_scale[KNIGHT] = {21, 84};
    params.king_safety.op = 0;
    params.passed_pawn[1] = -10;  // 0.6 * 16 = 9.6
    params.rook_trapped = {-31, 99};
    params.queen_rank7 = {99, 11};
    params.knight_mobility = {100, -100};
    init_eval_tables();
    EXPECT_EQ(eval_tables.pst[KNIGHT][A1].op, -17);  // truncated
    EXPECT_EQ(eval_tables.pst[KNIGHT][A1].en, -70);
    EXPECT_EQ(eval_tables.KingDanger[63], 0);
    EXPECT_EQ(eval_tables.ppawnx[0], -6);
    EXPECT_EQ(eval_tables.ppawnx[1], 10);
    EXPECT_EQ(eval_tables.rook_trapped, -31);
    EXPECT_EQ(eval_tables.queen_rank7, 11);
    EXPECT_EQ(eval_tables.knight_mobility[8].op, 50);
    EXPECT_EQ(eval_tables.knight_mobility[8].en, -50);
}

TEST(EvalTables, OwnSquareTablesReplaceTheBuiltInOnesOnlyWhenComplete) {
    const RestoreParams restore;
    for (auto& table : params.pst) {
        for (int square = 0; square < 64; ++square) table[square] = {i16(square), i16(-square)};
    }
    init_eval_tables();
    EXPECT_EQ(eval_tables.pst[KING][E8].op, E8);
    EXPECT_EQ(eval_tables.pst[PAWN][B1].en, -B1);
    params.pst[QUEEN][C8].en = UNSET;
    init_eval_tables();
    EXPECT_EQ(eval_tables.pst[KNIGHT][A1].op, -35);
    EXPECT_EQ(eval_tables.pst[PAWN][make_square(0, 1)].op, -7);
}

TEST(EvalTables, FileMasks) {
    for (int files = 0; files < 256; ++files) {
        int lowest = 8;
        int highest = -1;
        for (int file = 0; file < 8; ++file) {
            if (!(files >> file & 1)) continue;
            if (lowest == 8) lowest = file;
            highest = file;
        }
        EXPECT_EQ(file_mask_tables.lowest[files], lowest);
        EXPECT_EQ(file_mask_tables.highest[files], highest);
    }
}

TEST(EvalTables, Print) {
    const std::vector<std::string> lines = split(captured_output(print_eval_tables), '\n');
    const struct {
        std::size_t line;
        const char* text;
    } cases[] = {
        {0, "piece values=  90/110  380/350  390/360  530/630  1180/1180"},
        {1, "bishop_pair= 30 , 50"},
        {2, ""},
        {3, "KingDanger[]="},
        {4, " 0:      0     1     2     5     8    13    18    25    32    41 "},
        {5, "10:     50    61    72    85    98   113   128   145   162   181 "},
        {11, ""},
        {12, "  0  nmob= -23/-27  bmob=-18/-22  rmob=-14/-18  qmob= -16/-36"},
        {26, " 14  nmob=   0/  0  bmob= 28/ 32  rmob= 20/ 26  qmob=  10/ 23"},
        {27, "queen_mob[28] = 24/54"},
        {28, "rank=2,  ppawn=  6, ppawnx=  0"},
        {33, "rank=7,  ppawn=138, ppawnx= 82"},
        {34, "pawn_shield= 60"},
        {35, "pawn_storm= -10"},
        {36, "hung= -24/-24"},
        {37, "pinned= -18/-18"},
        {38, "knight_outpost= 16"},
        {39, "PawnOpening"},
        {46, "   -7     0     0    -4    -4     0     0    -7 "},  // rank 2
        {48, ""},
        {49, "PawnEnding"},
        {149, "KingEnding"},
        {150, "  -50   -35   -25   -20   -20   -25   -35   -50 "},
    };
    ASSERT_GT(lines.size(), 160U);
    for (const auto& row : cases) EXPECT_EQ(lines[row.line], row.text) << row.line;
}

TEST(Tunables, Registry) {
    register_tunables();
    const std::size_t count = tunables.size();
    register_tunables();
    EXPECT_EQ(count, 114U);
    EXPECT_EQ(tunables.size(), count);
    const struct {
        int index;
        const char* name;
        const i16* field;
        int step;
    } cases[] = {
        {0, "pawn_value_op", &params.pawn_value.op, 100},
        {9, "queen_value_en", &params.queen_value.en, 900},
        {11, "bishop_pair_en", &params.bishop_pair.en, 40},
        {19, "queen_mobility_en", &params.queen_mobility.en, 50},
        {20, "ppawn_r2", &params.passed_pawn[1], 10},
        {25, "ppawn_r7", &params.passed_pawn[6], 60},
        {26, "pawn_candidate", &params.pawn_candidate.en, 50},
        {27, "pawn_doubled_op", &params.pawn_doubled.op, 10},
        {35, "knight_outpost", &params.knight_outpost.op, 15},
        {37, "rook_open_file_en", &params.rook_open_file.en, 15},
        {38, "rook_half_open_file_op", &params.rook_half_open_file.op, 10},
        {42, "rook_trapped", &params.rook_trapped.op, 20},
        {45, "king_safety", &params.king_safety.op, 100},
        {51, "pinned_en", &params.pinned.en, 20},
        {52, "PST_P_op", &params.pst_scale[PAWN].op, 10},
        {63, "PST_K_en", &params.pst_scale[KING].en, 10},
        {64, "positional_bonus_op", &params.positional_bonus.op, 20},
        {66, "pst_a1_op", &params.pst_squares_op[0], 20},
        {70, "pst_a2_op", &params.pst_squares_op[4], 20},
        {97, "pst_d8_op", &params.pst_squares_op[31], 20},
        {98, "p1", &params.p[0], 10},
        {112, "p15", &params.p[14], 10},
        {113, "tune", &params.tune, 100},
    };
    for (const auto& row : cases) {
        const TunableParam& record = tunables[std::size_t(row.index)];
        EXPECT_EQ(record.name, row.name);
        EXPECT_EQ(record.field, row.field) << row.name;
        EXPECT_EQ(record.step, row.step) << row.name;
        EXPECT_EQ(record.value, *row.field) << row.name;
        EXPECT_EQ(record.active, 0) << row.name;
    }
}

}  // namespace
}  // namespace quon::test
