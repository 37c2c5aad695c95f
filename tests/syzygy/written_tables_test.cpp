// Tables written for the purpose, in many forms, must give back the solved endings.

#include <gtest/gtest.h>

#include <algorithm>
#include <span>

#include "harness/board_support.h"
#include "syzygy/table_writer.h"
#include "syzygy/tbprobe_material.h"

namespace quon::test {
namespace {

constexpr int PIECES[] = {PAWN, KNIGHT, BISHOP, ROOK, QUEEN};

constexpr TableForm FORMS[] = {
    {"one value where possible, plain symbols in small blocks, wins in moves",
     {true, 0, 5, 6},
     {"WXB", "WXB"},
     {0, 0},
     false,
     0},
    {"pairs, the orders differ, losses in plies through a map",
     {false, 60, 6, 12},
     {"BWX", "XBW"},
     {1, 2},
     true,
     DTZ_BLACK | DTZ_MAPPED | DTZ_LOSS_PLIES},
    {"pairs of pairs in one or two blocks, wins in plies through a wide map",
     {true, 300, 12, 15},
     {"XWB", "BXW"},
     {2, 0},
     true,
     DTZ_MAPPED | DTZ_WIDE | DTZ_WIN_PLIES},
    {"few pairs, an index entry beyond the end, losses in moves",
     {true, 7, 7, 18},
     {"WBX", "WBX"},
     {2, 1},
     false,
     DTZ_BLACK},
    {"wins spoiled, in moves whatever the flags say, and captures saving",
     {true, 60, 8, 10},
     {"WXB", "BXW"},
     {1, 0},
     true,
     DTZ_MAPPED | DTZ_WIN_PLIES | DTZ_LOSS_PLIES,
     true},
};

// One position in `stride`; all of them from a scale of 40 up.
TEST(WrittenTables, GiveBackTheSolution) {
    const int stride = std::max(1, 4000 / scaled(100));
    for (const TableForm& form : FORMS) {
        SCOPED_TRACE(form.name);
        const TableDirectory directory;
        for (const int piece : PIECES) {
            directory.write(table_name(piece) + ".rtbw", wdl_table(piece, form));
            directory.write(table_name(piece) + ".rtbz", dtz_table(piece, form));
        }
        directory.load();
        int passed = 0;
        for (const int piece : PIECES) {
            const Solution& s = solution(piece);
            for (const int strong : {WHITE, BLACK}) {
                for (const int side : {WHITE, BLACK}) {
                    each_position(s, side, [&](int king, int at, int enemy) {
                        if (passed++ % stride != 0 || HasFailure()) return;
                        const int dtz = stored_dtz(s.dtz[side][king][at][enemy], form);
                        // Tables know no mate that the rule spoils, and no mate in one.
                        if (form.spoiled && std::abs(dtz) == 101 && piece != PAWN) return;
                        const int won = form.spoiled ? 1 : 2;
                        const ProbePosition p =
                            probe_position(piece, strong, side, king, at, enemy);
                        int success = 0;
                        EXPECT_EQ(tb_probe_wdl(p, success), dtz > 0 ? won : dtz < 0 ? -won : 0);
                        EXPECT_NE(success, 0);
                        EXPECT_EQ(tb_probe_dtz(p, success), dtz);
                        EXPECT_NE(success, 0);
                        if (HasFailure()) {
                            ADD_FAILURE() << table_name(piece) << " strong " << strong << " side "
                                          << side << " on " << king << ' ' << at << ' ' << enemy;
                        }
                    });
                }
            }
        }
    }
}

// Each outcome has a list of its own; only true wins and losses can be in plies.
TEST(WrittenTables, AListForEachOutcome) {
    for (const TableForm& form : FORMS) {
        if ((form.dtz_flags & DTZ_MAPPED) == 0) continue;
        SCOPED_TRACE(form.name);
        const int side = form.dtz_flags & DTZ_BLACK ? BLACK : WHITE;
        const std::string bytes = dtz_table(ROOK, form);
        const auto table = open_table(std::as_bytes(std::span(bytes)), TableKind::DTZ,
                                      material_of_name(table_name(ROOK)));
        ASSERT_NE(table, nullptr);
        const Solution& s = solution(ROOK);
        const bool plies = !form.spoiled;  // as the forms are, in the ending's own list
        const int own_list = (side == BLACK ? 1 : 0) + (form.spoiled ? 2 : 0);
        const struct {
            int wdl, list, unit;  // the list's place; plies of a number in it
        } outcomes[] = {{2, 0, form.dtz_flags & DTZ_WIN_PLIES ? 1 : 2},
                        {-2, 1, form.dtz_flags & DTZ_LOSS_PLIES ? 1 : 2},
                        {1, 2, 2},
                        {-1, 3, 2}};
        int passed = 0;
        each_position(s, side, [&](int king, int at, int enemy) {
            const int dtz = std::abs(s.dtz[side][king][at][enemy]);
            if (dtz == 0 || passed++ % 1000 != 0) return;
            const ProbePosition p = probe_position(ROOK, WHITE, side, king, at, enemy);
            for (const auto& o : outcomes) {
                const int step = (o.list - own_list + 4) % 4 * list_step(form.dtz_flags);
                const int number = (dtz - 1) / (plies ? 1 : 2) + step;
                ASSERT_EQ(look_up_dtz(*table, p, false, o.wdl), 1 + o.unit * number) << o.wdl;
            }
        });
        EXPECT_GT(passed, 100'000);
    }
}

}  // namespace
}  // namespace quon::test
