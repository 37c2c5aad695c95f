#pragma once
// Bit operations and precomputed attack tables.
//
// Sliding attacks use one lookup per piece in the square's slice of a table of ready-made attack
// sets. Its index is the occupancy of the squares that matter: gathered by one instruction where
// the processor has it (PEXT; the set is then kept gathered as well, in a quarter of the memory),
// else by a multiplication with a constant that brings them to the top bits ("magic bitboards").
// Tested against ray walks in tests/board/movegen_test.cpp.

#include <bit>

#include "board/types.h"
#include "platform/bits.h"

namespace quon {

extern const Table<Table<Bitboard, 64>, 2> pawn_attacks;
// Attacks of a piece on the empty board, [type][square], knight to king.
extern const Table<Table<Bitboard, 64>, 7> open_attacks;
inline constexpr const Table<Bitboard, 64>& knight_attacks = open_attacks[KNIGHT];
inline constexpr const Table<Bitboard, 64>& king_attacks = open_attacks[KING];
// Rank and file, or both diagonals, of a square, without the square.
inline constexpr const Table<Bitboard, 64>& orth_lines = open_attacks[ROOK];
inline constexpr const Table<Bitboard, 64>& diag_lines = open_attacks[BISHOP];
// Squares strictly between two squares of one line, empty when they share none.
extern const Table<Table<Bitboard, 64>, 64> between;
// Larger of the file and rank differences.
extern const Table<Table<u8, 64>, 64> king_distance;

// Builds the slider tables; call once before the first position is loaded.
void init_attack_tables();

inline int popcount64(Bitboard b) { return std::popcount(b); }
// Index of the lowest set bit; b must not be 0.
inline int lsb_index(Bitboard b) { return std::countr_zero(b); }
inline bool more_than_one(Bitboard b) { return (b & (b - 1)) != 0; }
inline bool has(Bitboard b, int square) { return (b >> square & 1) != 0; }

// Takes the lowest square out of b.
inline int pop_square(Bitboard& b) {
    const int square = lsb_index(b);
    b &= b - 1;
    return square;
}

#if QUON_GATHERS_BITS
struct Slider {
    using Entry = u16;
    Bitboard mask;  // squares whose occupancy matters
    Bitboard open;  // attacks on the empty board
    const Entry* slice;

    static Slider make(Bitboard mask, Bitboard open, u64 /*factor*/, const Entry* slice) {
        return {mask, open, slice};
    }
    [[nodiscard]] u64 index(Bitboard occupancy) const { return gather_bits(occupancy, mask); }
    [[nodiscard]] Entry pack(Bitboard attacks) const { return Entry(gather_bits(attacks, open)); }
    [[nodiscard]] Bitboard attacks(Bitboard occupancy) const {
        return scatter_bits(slice[index(occupancy)], open);
    }
};
#else
struct Slider {
    using Entry = Bitboard;
    Bitboard mask;  // squares whose occupancy matters
    u64 factor;
    const Entry* slice;
    int shift;

    static Slider make(Bitboard mask, Bitboard /*open*/, u64 factor, const Entry* slice) {
        return {mask, factor, slice, 64 - std::popcount(mask)};
    }
    [[nodiscard]] u64 index(Bitboard occupancy) const {
        return (occupancy & mask) * factor >> shift;
    }
    [[nodiscard]] Entry pack(Bitboard attacks) const { return attacks; }
    [[nodiscard]] Bitboard attacks(Bitboard occupancy) const { return slice[index(occupancy)]; }
};
#endif
extern Table<Slider, 64> rook_sliders;
extern Table<Slider, 64> bishop_sliders;

// Attacked squares, the first blocker of either colour in each direction included.
inline Bitboard rook_attacks(int square, Bitboard occupancy) {
    return rook_sliders[square].attacks(occupancy);
}
inline Bitboard bishop_attacks(int square, Bitboard occupancy) {
    return bishop_sliders[square].attacks(occupancy);
}

// The same for any piece but a pawn.
inline Bitboard attacks_from(int type, int square, Bitboard occupancy) {
    switch (type) {
        case KNIGHT: return knight_attacks[square];
        case BISHOP: return bishop_attacks(square, occupancy);
        case ROOK: return rook_attacks(square, occupancy);
        case QUEEN: return bishop_attacks(square, occupancy) | rook_attacks(square, occupancy);
        default: return king_attacks[square];
    }
}
// True if `to` is one of them; cheaper than the whole set.
inline bool attacks_square(int type, int from, int to, Bitboard occupancy) {
    return has(open_attacks[type][from], to) && (between[from][to] & occupancy) == 0;
}

// Squares that alone stand between the square and one of the sliders, which share lines with it.
inline Bitboard lone_blockers(int square, Bitboard sliders, Bitboard occupancy) {
    Bitboard blockers = 0;
    while (sliders) {
        const Bitboard in_between = between[square][pop_square(sliders)] & occupancy;
        if (!more_than_one(in_between)) blockers |= in_between;
    }
    return blockers;
}

// The set moved one file towards h or a, or one rank; squares that leave the board are lost.
constexpr Bitboard shift_east(Bitboard b) { return (b & ~FILE_H) << 1; }
constexpr Bitboard shift_west(Bitboard b) { return (b & ~FILE_A) >> 1; }
template <int Color>
constexpr Bitboard shift_forward(Bitboard b) {
    return Color == WHITE ? b << 8 : b >> 8;
}
// Squares attacked by a set of pawns.
template <int Color>
constexpr Bitboard pawn_set_attacks(Bitboard pawns) {
    const Bitboard ahead = shift_forward<Color>(pawns);
    return shift_east(ahead) | shift_west(ahead);
}
// Every square of the set and all squares ahead of it.
template <int Color>
constexpr Bitboard fill_forward(Bitboard b) {
    b |= shift_forward<Color>(b);
    b |= Color == WHITE ? b << 16 : b >> 16;
    b |= Color == WHITE ? b << 32 : b >> 32;
    return b;
}

}  // namespace quon
