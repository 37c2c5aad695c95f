// Moves, keys, move texts and exchange values against figures of another program.

#include "board/keys.h"
#include "board/see.h"
#include "harness/board_support.h"
#include "harness/engine.h"

namespace quon::test {
namespace {

// The texts of all moves in one cell.
Lines moves_cell(const Position& p, std::string (*text)(const Position&, const MoveEntry&)) {
    MoveEntry list[MAX_LIST];
    std::string row;
    for (const MoveEntry *entry = list, *end = gen_all(p, list); entry != end; ++entry) {
        const std::string move = text(p, *entry);
        if (!row.empty() && !move.empty()) row += ' ';
        row += move;
    }
    return {row};
}

TEST(BoardReference, Moves) {
    options.uci_mode = true;
    // The file leaves discovered checks unmarked.
    expect_reference("moves", [](const Position& p) {
        return moves_cell(p, [](const Position& q, const MoveEntry& entry) {
            return move_to_text(entry.move) + (is_legal(q, entry.move) ? "" : "!") +
                   (gives_check(q, entry) == 1 ? "+" : "");
        });
    });
    expect_reference("san", [](const Position& p) {
        return moves_cell(p, [](const Position& q, const MoveEntry& entry) {
            const MoveForms f = move_forms(q, entry);
            const bool legal = is_legal(q, entry.move);
            return legal ? f.coord + "|" + f.san + "|" + f.file + "|" + f.rank : "";
        });
    });
}

TEST(BoardReference, Keys) {
    expect_reference("keys", [](const Position& p) {
        Lines cells;
        for (const unsigned long long key : {p.key, p.pawn_key, full_key(p)}) {
            cells.push_back(format("%016llx", key));
        }
        return cells;
    });
}

TEST(BoardReference, Exchanges) {
    expect_reference("exchange", [](const Position& p) {
        std::string row;
        for (int square = 0; square < 64; ++square) {
            if (p.board[square] == 0) continue;
            const int value = see(p, color_of(p.board[square]) ^ 1, NO_SQUARE, square);
            if (value == 0) continue;
            row += format(row.empty() ? "%s=%d" : " %s=%d", square_name[square], value);
        }
        return Lines{row};
    });
}

}  // namespace
}  // namespace quon::test
