// Numbering of placements: from the squares of the pieces to the number of the position.
//
// Symmetry first. Without pawns the first piece is brought into the triangle a1-d1-d4, and if it
// stands on the diagonal the first lead piece off it goes below; with pawns the leading pawn, that
// nearest to the edge and to its base rank, is brought to the files a to d. What is left of the
// lead has 31332 placements for three pieces, those whose first, first two and all three pieces
// stand on the diagonal behind the others; 462 for kings; for pawns a table per file.
//
// k equal pieces on squares s1 < s2 < ... < sk, counted without those that pieces before them
// occupy, have the number C(s1, 1) + C(s2, 2) + ... + C(sk, k), which takes each value below C(n,
// k) once if n squares are free. Pawns behind the lead are counted from a2 on, hence the 8, and
// those of the lead behind the first in an order of their own (pawn_order).
//
// The groups' numbers make one like digits: make_layout gives each the product of the ranges of
// those below as its weight. Where the lead and the other side's pawns come among the digits is up
// to the table. The product of all ranges is the number of positions.

#include "syzygy/tbcore_index.h"

#include <algorithm>

#include "board/bitboard.h"

namespace quon {

namespace {

constexpr int OTHER_SIDE = 8;  // exchanges the colour of a piece code
constexpr int PAWN_SQUARES = 48;
constexpr int MIRROR_FILES = 7;
constexpr int MIRROR_RANKS = 56;

// Ways to choose k of n.
constexpr int CHOSEN = 6;
constexpr Table<Table<u64, CHOSEN>, 64> make_binomials() {
    Table<Table<u64, CHOSEN>, 64> table{};
    for (int n = 0; n < 64; ++n) {
        table[n][0] = 1;
        for (int k = 1; k < CHOSEN && n > 0; ++k)
            table[n][k] = table[n - 1][k - 1] + table[n - 1][k];
    }
    return table;
}
constexpr auto BINOMIALS = make_binomials();
constexpr u64 choose(int n, int k) { return BINOMIALS[n][k]; }

// Squares seen from the diagonal a1-h8: 0 on it, positive above.
constexpr int above_diagonal(int square) { return rank_of(square) - file_of(square); }
constexpr int transpose(int square) { return make_square(rank_of(square), file_of(square)); }

constexpr int TRIANGLE_SQUARES = 6;  // b1 c1 d1 c2 d2 d3
constexpr int QUARTER_DIAGONAL = 4;  // a1 to d4
constexpr int BELOW_SQUARES = 28;    // all below the long diagonal

// Squares below the diagonal, rank by rank: within the triangle a1-d1-d4, and on the whole board.
constexpr Table<int, 64> number_below(int files) {
    Table<int, 64> numbers{};
    int next = 0;
    for (int square = 0; square < 64; ++square) {
        if (above_diagonal(square) < 0 && file_of(square) < files) numbers[square] = next++;
    }
    return numbers;
}
constexpr auto IN_TRIANGLE = number_below(4);
constexpr auto BELOW_DIAGONAL = number_below(8);

constexpr u64 FROM_TRIANGLE = u64{TRIANGLE_SQUARES} * 63 * 62;
constexpr u64 FIRST_ON_DIAGONAL = u64{QUARTER_DIAGONAL} * BELOW_SQUARES * 62;
constexpr u64 TWO_ON_DIAGONAL = u64{QUARTER_DIAGONAL} * 7 * BELOW_SQUARES;
constexpr u64 ALL_ON_DIAGONAL = u64{QUARTER_DIAGONAL} * 7 * 6;
constexpr u64 THREE_PIECE_PLACEMENTS =
    FROM_TRIANGLE + FIRST_ON_DIAGONAL + TWO_ON_DIAGONAL + ALL_ON_DIAGONAL;
static_assert(THREE_PIECE_PLACEMENTS == 31332);

u64 three_pieces_index(int first, int second, int third) {
    const int second_left = second - (first < second);
    const int third_left = third - (first < third) - (second < third);
    if (above_diagonal(first) != 0) {
        return (u64(IN_TRIANGLE[first]) * 63 + u64(second_left)) * 62 + u64(third_left);
    }
    u64 start = FROM_TRIANGLE;
    const u64 first_rank = u64(rank_of(first));
    if (above_diagonal(second) != 0) {
        return start + (first_rank * BELOW_SQUARES + u64(BELOW_DIAGONAL[second])) * 62 +
               u64(third_left);
    }
    start += FIRST_ON_DIAGONAL;
    const u64 second_rank = u64(rank_of(second) - (first < second));
    if (above_diagonal(third) != 0) {
        return start + (first_rank * 7 + second_rank) * BELOW_SQUARES + u64(BELOW_DIAGONAL[third]);
    }
    start += TWO_ON_DIAGONAL;
    const u64 third_rank = u64(rank_of(third) - (first < third) - (second < third));
    return start + (first_rank * 7 + second_rank) * 6 + third_rank;
}

// Kings that do not touch, the first within the triangle a1-d1-d4; pairs on the diagonal come last.
constexpr int KING_PLACEMENTS = 462;
struct KingNumbers {
    Table<Table<u16, 64>, 64> number{};
    int count = 0;
};
constexpr bool kings_touch(int a, int b) {
    const int files = file_of(a) - file_of(b);
    const int ranks = rank_of(a) - rank_of(b);
    return files >= -1 && files <= 1 && ranks >= -1 && ranks <= 1;
}
constexpr void number_kings(KingNumbers& kings, int first, bool both_on_diagonal) {
    const bool first_on_diagonal = above_diagonal(first) == 0;
    for (int second = 0; second < 64; ++second) {
        if (kings_touch(first, second)) continue;
        if (first_on_diagonal && above_diagonal(second) > 0) continue;
        const bool both = first_on_diagonal && above_diagonal(second) == 0;
        if (both == both_on_diagonal) kings.number[first][second] = u16(kings.count++);
    }
}
constexpr KingNumbers make_king_numbers() {
    KingNumbers kings;
    for (int square = 0; square < 64; ++square) {
        const bool inside = file_of(square) < 4 && above_diagonal(square) < 0;
        if (inside) number_kings(kings, square, false);
    }
    for (const bool both_on_diagonal : {false, true}) {
        for (int i = 0; i < QUARTER_DIAGONAL; ++i) {
            number_kings(kings, make_square(i, i), both_on_diagonal);
        }
    }
    return kings;
}
constexpr KingNumbers KINGS = make_king_numbers();
static_assert(KINGS.count == KING_PLACEMENTS);

// Pawn squares from 47 (a2) downwards: file by file from the edge, each from its base rank on, the
// mirrored square behind each.
constexpr int pawn_order(int square) {
    const bool right = file_of(square) > 3;
    const int file = right ? 7 - file_of(square) : file_of(square);
    return PAWN_SQUARES - 1 - 12 * file - 2 * (rank_of(square) - 1) - (right ? 1 : 0);
}

// Placements of n pawns of one colour: the leading one stands on one of the six squares of a file,
// the others on squares of lower order.
constexpr int MAX_LEADING = 4;
struct LeadPawnNumbers {
    Table<Table<u64, 64>, MAX_LEADING + 1> start{};  // [pawns][leading pawn's square]
    Table<Table<u64, 4>, MAX_LEADING + 1> count{};   // [pawns][file]
};
constexpr LeadPawnNumbers make_lead_pawn_numbers() {
    LeadPawnNumbers numbers;
    for (int pawns = 1; pawns <= MAX_LEADING; ++pawns) {
        for (int file = 0; file < 4; ++file) {
            u64& next = numbers.count[pawns][file];
            for (int rank = 1; rank < 7; ++rank) {
                const int square = make_square(file, rank);
                numbers.start[pawns][square] = next;
                next += choose(pawn_order(square), pawns - 1);
            }
        }
    }
    return numbers;
}
constexpr LeadPawnNumbers LEAD_PAWNS = make_lead_pawn_numbers();

// Insertion: no group has more than a few pieces.
void sort_few(int* values, int count) {
    for (int i = 1; i < count; ++i) {
        const int value = values[i];
        int at = i;
        for (; at > 0 && values[at - 1] > value; --at) values[at] = values[at - 1];
        values[at] = value;
    }
}

u64 lead_pawns_index(const int* squares, int count) {
    u64 index = LEAD_PAWNS.start[count][squares[0]];
    int orders[MAX_LEADING] = {};
    for (int i = 1; i < count; ++i) orders[i] = pawn_order(squares[i]);
    sort_few(orders + 1, count - 1);
    for (int i = 1; i < count; ++i) index += choose(orders[i], i);
    return index;
}

void mirror_all(PieceSquares& squares, int pieces, int mirror) {
    for (int i = 0; i < pieces; ++i) squares[i] ^= mirror;
}

// Brings the first piece into a1-d1-d4, and the first lead piece off the diagonal below it.
void normalise(PieceSquares& squares, int pieces, int lead) {
    if (file_of(squares[0]) > 3) mirror_all(squares, pieces, MIRROR_FILES);
    if (rank_of(squares[0]) > 3) mirror_all(squares, pieces, MIRROR_RANKS);
    int i = 0;
    while (i < lead && above_diagonal(squares[i]) == 0) ++i;
    if (i == lead || above_diagonal(squares[i]) < 0) return;
    for (i = 0; i < pieces; ++i) squares[i] = transpose(squares[i]);
}

u64 lead_index(const IndexLayout& layout, PieceSquares& squares) {
    const int count = layout.group[0].size;
    if (layout.lead == Lead::PAWNS) {
        if (file_of(squares[0]) > 3) mirror_all(squares, layout.pieces, MIRROR_FILES);
        return lead_pawns_index(squares.begin(), count);
    }
    normalise(squares, layout.pieces, count);
    if (layout.lead == Lead::KINGS) return KINGS.number[squares[0]][squares[1]];
    return three_pieces_index(squares[0], squares[1], squares[2]);
}

// Which of the squares that the pieces before it leave free a group stands on.
u64 group_index(const IndexGroup& group, PieceSquares& squares, int first) {
    int* const own = squares.begin() + first;
    sort_few(own, group.size);
    u64 index = 0;
    for (int i = 0; i < group.size; ++i) {
        const auto before = std::count_if(squares.begin(), own, [&](int s) { return s < own[i]; });
        const int square = own[i] - int(before) - (group.pawns ? 8 : 0);
        index += choose(square, i + 1);
    }
    return index;
}

// The lead's kind and size; false if the first pieces cannot lead.
bool find_lead(IndexLayout& layout, const Table<u8, 16>& counts) {
    const int first = layout.codes[0];
    IndexGroup& lead = layout.group[0];
    if (counts[PAWN] + counts[PAWN + OTHER_SIDE] > 0) {
        layout.lead = Lead::PAWNS;
        lead.size = counts[first];
        return type_of(first) == PAWN;
    }
    const auto singles = std::count(counts.begin(), counts.end(), 1);
    layout.lead = singles > 2 ? Lead::THREE_PIECES : Lead::KINGS;
    lead.size = singles > 2 ? 3 : 2;
    return std::all_of(layout.codes.begin(), layout.codes.begin() + lead.size,
                       [&](u8 code) { return counts[code] == 1; });
}

u64 lead_placements(const IndexLayout& layout, int file) {
    switch (layout.lead) {
        case Lead::THREE_PIECES: return THREE_PIECE_PLACEMENTS;
        case Lead::KINGS: return KING_PLACEMENTS;
        case Lead::PAWNS: break;
    }
    return LEAD_PAWNS.count[layout.group[0].size][file];
}

// Equal pieces stand side by side in the order, and are all there.
bool find_groups(IndexLayout& layout, const Table<u8, 16>& counts) {
    const int lead = layout.group[0].size;
    layout.groups = 1;
    for (int i = layout.lead == Lead::PAWNS ? 0 : lead; i < layout.pieces;) {
        const u8 code = layout.codes[i];
        const int size = counts[code];
        if (size == 0 || i + size > layout.pieces) return false;
        const bool together = std::all_of(layout.codes.begin() + i, layout.codes.begin() + i + size,
                                          [&](u8 other) { return other == code; });
        if (!together) return false;
        const bool is_lead = layout.lead == Lead::PAWNS && i == 0;
        if (!is_lead) layout.group[layout.groups++] = {size, type_of(code) == PAWN, 0};
        i += size;
    }
    // A code that came twice would have taken another one's place.
    Table<u8, 16> seen{};
    for (int i = 0; i < layout.pieces; ++i) ++seen[layout.codes[i]];
    return std::equal(seen.begin(), seen.end(), counts.begin());
}

// The group at each place, from the lowest digit up, and how many numbers it has.
bool weigh_groups(IndexLayout& layout, const IndexOrder& order, bool second_pawns) {
    const int lead = layout.group[0].size;
    const int second = second_pawns ? layout.group[1].size : 0;
    if (order.lead_place >= layout.groups) return false;
    if (second_pawns) {
        if (!layout.group[1].pawns || order.second_place >= layout.groups) return false;
        if (order.second_place == order.lead_place) return false;
    }
    int free_squares = 64 - lead - second;
    int next = second_pawns ? 2 : 1;
    u64 weight = 1;
    for (int place = 0; place < layout.groups; ++place) {
        if (place == order.lead_place) {
            layout.group[0].weight = weight;
            weight *= lead_placements(layout, order.file);
        } else if (second_pawns && place == order.second_place) {
            layout.group[1].weight = weight;
            weight *= choose(PAWN_SQUARES - lead, second);
        } else {
            IndexGroup& group = layout.group[next++];
            group.weight = weight;
            weight *= choose(free_squares, group.size);
            free_squares -= group.size;
        }
    }
    layout.positions = weight;
    return true;
}

}  // namespace

bool make_layout(IndexLayout& layout, const IndexOrder& order, const Table<u8, 16>& counts) {
    layout.pieces = int(order.codes.size());
    std::copy(order.codes.begin(), order.codes.end(), layout.codes.begin());
    const bool second_pawns = counts[PAWN] > 0 && counts[PAWN + OTHER_SIDE] > 0;
    return find_lead(layout, counts) && find_groups(layout, counts) &&
           weigh_groups(layout, order, second_pawns);
}

int leading_pawn(Bitboard pawns) {
    int leader = pop_square(pawns);
    while (pawns) {
        const int square = pop_square(pawns);
        if (pawn_order(square) > pawn_order(leader)) leader = square;
    }
    return leader;
}

u64 position_index(const IndexLayout& layout, PieceSquares& squares) {
    u64 index = lead_index(layout, squares) * layout.group[0].weight;
    int first = layout.group[0].size;
    for (int i = 1; i < layout.groups; ++i) {
        const IndexGroup& group = layout.group[i];
        index += group_index(group, squares, first) * group.weight;
        first += group.size;
    }
    return index;
}

}  // namespace quon
