#pragma once
// The number of a position within its table.
//
// A table knows its pieces in an order of its own. The first few are the lead: three pieces that
// occur once, or both kings, or all pawns of one colour. Board symmetry brings the lead into few
// placements, which are numbered first; every further group of equal pieces is numbered by which of
// the squares that are left it stands on. The position's number combines the groups' numbers like
// digits, each group with its own weight.

#include <span>

#include "board/types.h"
#include "syzygy/tbprobe.h"

namespace quon {

enum class Lead : u8 { THREE_PIECES, KINGS, PAWNS };

struct IndexGroup {
    int size;    // pieces
    bool pawns;  // a group of pawns behind the lead
    u64 weight;
};

struct IndexLayout {
    Lead lead;
    int pieces;
    Table<u8, TB_MAX_PIECES> codes;  // piece codes in index order
    int groups;
    Table<IndexGroup, TB_MAX_PIECES> group;  // the first is the lead
    u64 positions;                           // numbers are below this
};

// How a table's header describes the order: the codes, and each at which place among the digits the
// lead and, with pawns on both sides, the second pawns come (0: the lowest).
struct IndexOrder {
    std::span<const u8> codes;
    int lead_place;
    int second_place;
    int file;  // of the leading pawn, 0 (a or h) to 3
};

// Checks the order against the number of pieces of each code; false if it contradicts them.
bool make_layout(IndexLayout& layout, const IndexOrder& order, const Table<u8, 16>& counts);

using PieceSquares = Table<int, TB_MAX_PIECES>;

// The pawn, of all of one colour, that stands nearest to the edge and to its base rank.
int leading_pawn(Bitboard pawns);

// The number of the position with these squares, in the order of `codes`; with pawns, the leading
// one first. All squares are different. Changes the squares.
u64 position_index(const IndexLayout& layout, PieceSquares& squares);

}  // namespace quon
