// Tables derived from the parameters: worked figures, their print, the list of parameters.

#include "eval/eval_tables.h"

#include <gtest/gtest.h>

#include "eval/eval_params.h"
#include "eval/tunables.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "support/text.h"

namespace quon::test {
namespace {

using Values = std::vector<int>;

template <typename Entry>
Values first(int count, const Entry& entry) {
    Values values;
    for (int i = 0; i < count; ++i) values.push_back(entry(i));
    return values;
}

TEST(EvalTables, Defaults) {
    const EvalTables& t = eval_tables;
    EXPECT_EQ(first(10, [&](int n) { return t.knight_mobility[n].op; }),
              (Values{-23, -12, -6, 0, 5, 10, 15, 19, 23, 0}));
    EXPECT_EQ(first(10, [&](int n) { return t.knight_mobility[n].en; }),
              (Values{-27, -14, -7, 0, 6, 12, 17, 22, 27, 0}));
    EXPECT_EQ(first(16, [&](int n) { return t.bishop_mobility[n].op; }),
              (Values{-18, -11, -7, -3, 1, 4, 7, 10, 13, 15, 18, 20, 23, 25, 28, 0}));
    EXPECT_EQ(first(16, [&](int n) { return t.rook_mobility[n].op; }),
              (Values{-14, -8, -5, -2, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 20, 0}));
    EXPECT_EQ(format("%d %d %d %d", t.queen_mobility[0].en, t.queen_mobility[6].en,
                     t.queen_mobility[28].en, t.queen_mobility[29].en),
              "-36 0 54 0");
    EXPECT_EQ(first(8, [&](int k) { return t.ppawn[k]; }), (Values{0, 6, 6, 18, 38, 78, 138, 275}));
    EXPECT_EQ(first(7, [&](int k) { return t.ppawnx[k]; }), (Values{4, 0, 7, 12, 24, 36, 82}));
    EXPECT_EQ(first(26, [&](int i) { return t.KingDanger[i]; }),
              (Values{0,  1,  2,   5,   8,   13,  18,  25,  32,  41,  50,  61,  72,
                      85, 98, 113, 128, 145, 162, 181, 200, 221, 242, 262, 282, 301}));
    EXPECT_EQ(first(3, [&](int i) { return t.KingDanger[61 + i]; }), (Values{714, 722, 729}));
}

TEST(EvalTables, ParametersReachTheTables) {
    const EvalParams saved = params;
    params.pst_scale[KNIGHT] = {21, 84};
    params.king_safety.op = 0;
    params.passed_pawn[1] = -10;  // 0.6 * 16 = 9.6
    params.knight_mobility = {100, -100};
    init_eval_tables(eval_tables, params);
    const EvalTables& t = eval_tables;
    EXPECT_EQ(format("%d %d", t.pst[KNIGHT][A1].op, t.pst[KNIGHT][A1].en), "-17 -70");  // truncated
    EXPECT_EQ(format("%d %d %d", t.KingDanger[63], t.ppawnx[0], t.ppawnx[1]), "0 -6 10");
    EXPECT_EQ(format("%d %d", t.knight_mobility[8].op, t.knight_mobility[8].en), "50 -50");

    // Own square tables replace the built-in ones only when complete.
    params = saved;
    for (auto& table : params.pst) {
        for (int square = 0; square < 64; ++square) table[square] = {i16(square), i16(-square)};
    }
    init_eval_tables(eval_tables, params);
    EXPECT_EQ(eval_tables.pst[KING][E8].op, E8);
    EXPECT_EQ(eval_tables.pst[PAWN][B1].en, -B1);
    params.pst[QUEEN][C8].en = UNSET;
    init_eval_tables(eval_tables, params);
    EXPECT_EQ(eval_tables.pst[KNIGHT][A1].op, -35);
    EXPECT_EQ(eval_tables.pst[PAWN][square_of("a2")].op, -7);
    params = saved;
    init_eval_tables(eval_tables, params);
}

TEST(EvalTables, Print) {
    const std::vector<std::string> lines = split(eval_tables_text(eval_tables), '\n');
    const std::pair<std::size_t, const char*> cases[] = {
        {0, "piece values=  90/110  380/350  390/360  530/630  1180/1180"},
        {3, "KingDanger[]="},
        {4, " 0:      0     1     2     5     8    13    18    25    32    41 "},
        {11, ""},
        {12, "  0  nmob= -23/-27  bmob=-18/-22  rmob=-14/-18  qmob= -16/-36"},
        {26, " 14  nmob=   0/  0  bmob= 28/ 32  rmob= 20/ 26  qmob=  10/ 23"},
        {27, "queen_mob[28] = 24/54"},
        {28, "rank=2,  ppawn=  6, ppawnx=  0"},
        {33, "rank=7,  ppawn=138, ppawnx= 82"},
        {34, "pawn_shield= 60"},
        {36, "hung= -24/-24"},
        {38, "knight_outpost= 16"},
        {39, "PawnOpening"},
        {46, "   -7     0     0    -4    -4     0     0    -7 "},  // rank 2
        {149, "KingEnding"},
        {150, "  -50   -35   -25   -20   -20   -25   -35   -50 "},
    };
    ASSERT_GT(lines.size(), 160U);
    for (const auto& [line, text] : cases) EXPECT_EQ(lines[line], text) << line;
}

TEST(Tunables, Registry) {
    register_tunables(engine.tunables, params);
    register_tunables(engine.tunables, params);
    EXPECT_EQ(tunables.size(), 114U);
    const std::tuple<std::size_t, const char*, const i16*, int> cases[] = {
        {0, "pawn_value_op", &params.pawn_value.op, 100},
        {20, "ppawn_r2", &params.passed_pawn[1], 10},
        {25, "ppawn_r7", &params.passed_pawn[6], 60},
        {26, "pawn_candidate", &params.pawn_candidate.en, 50},
        {42, "rook_trapped", &params.rook_trapped.op, 20},
        {52, "PST_P_op", &params.pst_scale[PAWN].op, 10},
        {63, "PST_K_en", &params.pst_scale[KING].en, 10},
        {70, "pst_a2_op", &params.pst_squares_op[4], 20},
        {97, "pst_d8_op", &params.pst_squares_op[31], 20},
        {112, "p15", &params.p[14], 10},
        {113, "tune", &params.tune, 100},
    };
    for (const auto& [index, name, field, step] : cases) {
        const TunableParam& record = tunables[index];
        EXPECT_EQ(record.name, name);
        EXPECT_EQ(record.field, field) << name;
        EXPECT_EQ(record.step, step) << name;
        EXPECT_EQ(record.value, *field) << name;
        EXPECT_EQ(record.active, 0) << name;
    }
}

}  // namespace
}  // namespace quon::test
