// Tables of made-up values: each position gives back what was written for it.

#include <gtest/gtest.h>

#include <span>

#include "harness/board_support.h"
#include "syzygy/reference_tables.h"
#include "syzygy/table_writer.h"
#include "syzygy/tbprobe_material.h"

namespace quon::test {
namespace {

constexpr TableForm FORMS[] = {
    {"small blocks, wins and losses in moves", 0, 5, 6},
    {"losses in plies, Black to move, through a map", DTZ_BLACK | DTZ_MAPPED | DTZ_LOSS_PLIES, 6,
     12},
    {"wins in plies through a wide map", DTZ_MAPPED | DTZ_WIDE | DTZ_WIN_PLIES, 12, 15},
    {"an index entry beyond the end", DTZ_BLACK | DTZ_WIN_PLIES, 7, 18},
};

// The value that the part holds for the position; White has the rook.
int value_of(const TablePart& part, const ProbePosition& p) {
    PieceSquares squares{};
    for (int i = 0; i < 3; ++i) {
        const int code = part.layout.codes[i];
        Bitboard man = (color_of(code) == WHITE ? p.white : p.black) &
                       (type_of(code) == ROOK ? p.rooks : p.kings);
        squares[i] = pop_square(man);
    }
    return stored_value(p.turn ? WHITE : BLACK, position_index(part.layout, squares));
}

TEST(WrittenTables, GiveBackTheirValues) {
    for (const TableForm& form : FORMS) {
        SCOPED_TRACE(form.name);
        const TableMaterial material = material_of_name("KRvK");
        const std::string wdl_bytes = written_table(TableKind::WDL, form);
        const std::string dtz_bytes = written_table(TableKind::DTZ, form);
        const auto wdl = open_table(std::as_bytes(std::span(wdl_bytes)), TableKind::WDL, material);
        const auto dtz = open_table(std::as_bytes(std::span(dtz_bytes)), TableKind::DTZ, material);
        ASSERT_TRUE(wdl && dtz);
        Random random(1);
        for (int n = 0; n < scaled(3000); ++n) {
            const ProbePosition p = random_position("KRvK", random);
            const bool exchanged = (p.rooks & p.black) != 0;
            const ProbePosition seen = exchanged ? colors_exchanged(p) : p;
            ASSERT_EQ(look_up_wdl(*wdl, p, exchanged),
                      value_of(wdl->parts[0][seen.turn ? 0 : 1], seen) % 5 - 2);
            const bool stored = (seen.turn == 0) == ((form.dtz_flags & DTZ_BLACK) != 0);
            const int value = stored ? value_of(dtz->parts[0][0], seen) : 0;
            const struct {
                int wdl;
                bool plies;
            } lists[] = {{2, (form.dtz_flags & DTZ_WIN_PLIES) != 0},
                         {-2, (form.dtz_flags & DTZ_LOSS_PLIES) != 0},
                         {1, false},
                         {-1, false}};
            for (int list = 0; list < 4; ++list) {
                const bool mapped = form.dtz_flags & DTZ_MAPPED;
                const int number = mapped ? map_entry(form.dtz_flags, list, value) : value;
                ASSERT_EQ(
                    look_up_dtz(*dtz, p, exchanged, lists[list].wdl),
                    stored ? 1 + (lists[list].plies ? number : 2 * number) : OTHER_SIDE_STORED);
            }
        }
    }
}

}  // namespace
}  // namespace quon::test
