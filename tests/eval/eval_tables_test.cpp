// Tables derived from the parameters, and the list of parameters.

#include "eval/eval_tables.h"

#include <set>

#include "eval/eval_params.h"
#include "eval/tunables.h"
#include "harness/board_support.h"
#include "harness/engine.h"

namespace quon::test {
namespace {

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

TEST(Tunables, Registry) {
    register_tunables(engine.tunables, params);
    register_tunables(engine.tunables, params);
    EXPECT_EQ(tunables.size(), 114U);
    std::set<std::string> names;
    std::set<const i16*> fields;
    for (std::size_t i = 0; i < tunables.size(); ++i) {
        const TunableParam& record = tunables[i];
        names.insert(record.name);
        fields.insert(record.field);
        EXPECT_GT(record.step, 0) << record.name;
        EXPECT_EQ(record.value, *record.field) << record.name;
        EXPECT_EQ(record.active, 0) << record.name;
    }
    EXPECT_EQ(names.size(), tunables.size());
    EXPECT_EQ(fields.size(), tunables.size());
    const std::tuple<std::size_t, const char*, const i16*> cases[] = {
        {25, "ppawn_r7", &params.passed_pawn[6]},
        {70, "pst_a2_op", &params.pst_squares_op[4]},
        {97, "pst_d8_op", &params.pst_squares_op[31]},
        {113, "tune", &params.tune},
    };
    for (const auto& [index, name, field] : cases) {
        EXPECT_EQ(tunables[index].name, name);
        EXPECT_EQ(tunables[index].field, field) << name;
    }
}

}  // namespace
}  // namespace quon::test
