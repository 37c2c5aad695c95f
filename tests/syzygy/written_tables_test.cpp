// Tables written for the purpose, in many forms, must give back the solved endings; the solution
// itself must agree with published values.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>

#include "support/board_support.h"
#include "syzygy/table_writer.h"

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
};

struct Tally {
    int positions = 0;
    int wrong = 0;
    std::string first;

    void check(bool right, const std::string& what, const ProbePosition& p, int got, int wanted) {
        if (right) return;
        if (wrong++ == 0) {
            std::ostringstream text;
            text << what << ' ' << got << ", not " << wanted << std::hex << ": white " << p.white
                 << " black " << p.black << " kings " << p.kings << " turn " << int(p.turn);
            first = text.str();
        }
    }
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
        Tally tally;
        int passed = 0;
        for (const int piece : PIECES) {
            const Solution& s = solution(piece);
            for (const int strong : {WHITE, BLACK}) {
                for (const int side : {WHITE, BLACK}) {
                    each_position(s, side, [&](int king, int at, int enemy) {
                        if (passed++ % stride != 0) return;
                        const ProbePosition p =
                            probe_position(piece, strong, side, king, at, enemy);
                        const int dtz = stored_dtz(s.dtz[side][king][at][enemy], form);
                        const int wdl = dtz > 0 ? 2 : dtz < 0 ? -2 : 0;
                        int success = 1;
                        int got = tb_probe_wdl(p, success);
                        ++tally.positions;
                        tally.check(success && got == wdl, "wdl", p, success ? got : -99, wdl);
                        got = tb_probe_dtz(p, success);
                        tally.check(success && got == dtz, "dtz", p, success ? got : -99, dtz);
                    });
                }
            }
        }
        EXPECT_EQ(tally.wrong, 0) << " of " << tally.positions << ", first " << tally.first;
    }
}

// The published values of these endings are exact.
TEST(WrittenTables, SolutionAgreesWithPublishedValues) {
    const std::vector<std::string> lines = shared_lines("/data/syzygy/reference.csv");
    if (lines.empty()) GTEST_SKIP() << "no reference.csv";
    int rows = 0;
    for (const std::string& line : std::vector(lines.begin() + 1, lines.end())) {
        const std::vector<std::string> cells = split(line, ';');
        const std::string men = cells[0].substr(0, cells[0].find(' '));
        if (std::count_if(men.begin(), men.end(), isalpha) != 3) continue;
        const auto game = make_game(cells[0]);
        const Position& p = game->position;
        for (const int strong : {WHITE, BLACK}) {
            for (const int piece : PIECES) {
                const std::vector<int> at = piece_squares(p, make_piece(strong, piece));
                if (at.empty()) continue;
                const auto seen = [&](int square) { return relative_square(strong, square); };
                const int dtz =
                    solution(piece)
                        .dtz[p.side ^ strong][seen(piece_squares(p, make_piece(strong, KING))[0])]
                            [seen(at[0])][seen(piece_squares(p, make_piece(strong ^ 1, KING))[0])];
                EXPECT_EQ(std::to_string(dtz), cells[2]) << line;
                ++rows;
            }
        }
    }
    EXPECT_EQ(rows, 5 * 320);
}

}  // namespace
}  // namespace quon::test
