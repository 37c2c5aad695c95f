// Moves, keys, move texts and exchange values against figures of another program.

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/keys.h"
#include "board/legality.h"
#include "board/move_text.h"
#include "board/movegen.h"
#include "board/see.h"
#include "frontend/engine_options.h"
#include "frontend/output.h"
#include "support/board_support.h"

namespace quon::test {
namespace {

std::string moves_row(const Position& p) {
    options.uci_mode = true;
    MoveEntry list[MAX_LIST];
    std::string row;
    for (const MoveEntry *entry = list, *end = gen_all(p, list); entry != end; ++entry) {
        if (!row.empty()) row += ' ';
        row += move_to_text(entry->move);
        if (!is_legal(p, entry->move)) row += '!';
        if (gives_check(p, *entry) == 1) row += '+';  // the file leaves discovered checks unmarked
    }
    return row;
}

std::string keys_row(const Position& p) {
    return format("%016llx;%016llx;%016llx", static_cast<unsigned long long>(p.key),
                  static_cast<unsigned long long>(p.pawn_key),
                  static_cast<unsigned long long>(full_key(p)));
}

std::string san_row(const Position& p) {
    MoveEntry list[MAX_LIST];
    std::string row;
    for (const MoveEntry *entry = list, *end = gen_all(p, list); entry != end; ++entry) {
        if (!is_legal(p, entry->move)) continue;
        const MoveForms forms = move_forms(p, *entry);
        if (!row.empty()) row += ' ';
        row += forms.coord + "|" + forms.san + "|" + forms.file + "|" + forms.rank;
    }
    return row;
}

std::string exchange_row(const Position& p) {
    std::string row;
    for (int square = 0; square < 64; ++square) {
        if (p.board[square] == 0) continue;
        const int value = see(p, color_of(p.board[square]) ^ 1, NO_SQUARE, square);
        if (value == 0) continue;
        if (!row.empty()) row += ' ';
        row += format("%s=%d", square_name[square], value);
    }
    return row;
}

struct File {
    const char* name;
    std::string (*row)(const Position&);
    std::size_t columns;  // compared, after the position
};

class BoardReference : public testing::TestWithParam<File> {};

TEST_P(BoardReference, NoDifference) {
    const std::vector<std::string> lines =
        shared_lines(std::string("/reference/") + GetParam().name);
    if (lines.empty()) GTEST_SKIP() << GetParam().name << " is not there";
    ASSERT_GT(lines.size(), 100U);
    int differences = 0;
    std::string first;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> parts = split(lines[i], ';');
        ASSERT_GT(parts.size(), GetParam().columns) << lines[i];
        std::string expected = parts[1];
        for (std::size_t column = 2; column <= GetParam().columns; ++column) {
            expected += ";" + parts[column];
        }
        const std::string row = GetParam().row(make_game(parts[0])->position);
        if (row == expected) continue;
        if (++differences == 1)
            first = parts[0] + "\n  found    " + row + "\n  expected " + expected;
    }
    EXPECT_EQ(differences, 0) << GetParam().name << ", first: " << first;
}

INSTANTIATE_TEST_SUITE_P(Files, BoardReference,
                         testing::Values(File{"moves.csv", moves_row, 1},
                                         File{"keys.csv", keys_row, 3}, File{"san.csv", san_row, 1},
                                         File{"exchange.csv", exchange_row, 1}),
                         [](const testing::TestParamInfo<File>& file) {
                             const std::string name = file.param.name;
                             return name.substr(0, name.find('.'));
                         });

}  // namespace
}  // namespace quon::test
