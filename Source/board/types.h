#pragma once
// The vocabulary of the board: squares, colours, pieces, moves.
//
// Squares are 0..63, rank by rank from White's side (a1 = 0, h1 = 7, h8 = 63); 64 is NO_SQUARE.
// A piece code is colour * 8 + type, 0 is an empty square.

#include <initializer_list>

#include "support/integers.h"
#include "support/table.h"

namespace quon {

// Bit n stands for square n.
using Bitboard = u64;

constexpr int WHITE = 0;
constexpr int BLACK = 1;

enum PieceType : int { NO_TYPE, PAWN, KNIGHT, BISHOP, ROOK, QUEEN, KING };

constexpr int NO_SQUARE = 64;
// clang-format off
enum Square : int {
    A1, B1, C1, D1, E1, F1, G1, H1,
    A8 = 56, B8, C8, D8, E8, F8, G8, H8,
};
// clang-format on

constexpr int make_piece(int color, int type) { return color * 8 + type; }
constexpr int type_of(int piece) { return piece & 7; }
constexpr int color_of(int piece) { return (piece >> 3) & 1; }

constexpr int file_of(int square) { return square & 7; }
constexpr int rank_of(int square) { return square >> 3; }
constexpr int make_square(int file, int rank) { return rank * 8 + file; }
constexpr Bitboard bit(int square) { return u64{1} << square; }

// The square, or the rank, as its owner sees it from his side of the board.
constexpr int relative_square(int color, int square) {
    return color == WHITE ? square : square ^ 56;
}
constexpr int relative_rank(int color, int square) {
    return rank_of(relative_square(color, square));
}
// One step towards the other side's back rank.
constexpr int forward(int color) { return color == WHITE ? 8 : -8; }

constexpr Bitboard FILE_A = 0x0101010101010101;
constexpr Bitboard FILE_H = FILE_A << 7;
constexpr Bitboard RANK_1 = 0xFF;
constexpr Bitboard RANK_8 = RANK_1 << 56;
constexpr Bitboard LIGHT_SQUARES = 0x55AA55AA55AA55AA;
constexpr Bitboard file_mask(int file) { return FILE_A << file; }
constexpr Bitboard rank_mask(int rank) { return RANK_1 << (8 * rank); }
constexpr Bitboard relative_rank_mask(int color, int rank) {
    return rank_mask(color == WHITE ? rank : 7 - rank);
}

// A move: destination in bits 0-5, origin in bits 8-13, at most one promotion bit. Castling is the
// king's two-file move and en passant the pawn's move to the `ep` square; neither has a flag.
using Move = u16;
constexpr Move NO_MOVE = 0;
constexpr Move LIST_END = 0xFFFF;
constexpr Move PROMOTE_QUEEN = 0x40;
constexpr Move PROMOTE_KNIGHT = 0x80;
constexpr Move PROMOTE_BISHOP = 0x4000;
constexpr Move PROMOTE_ROOK = 0x8000;
constexpr Move PROMOTION_MASK = 0xC0C0;
constexpr Move UNDERPROMOTION_MASK = 0xC080;

constexpr int move_to(Move move) { return move & 63; }
constexpr int move_from(Move move) { return (move >> 8) & 63; }
constexpr Move make_code(int from, int to, Move promotion = 0) {
    return Move(to | from << 8 | promotion);
}
constexpr Table<Move, 7> PROMOTION_CODE = {
    {0, 0, PROMOTE_KNIGHT, PROMOTE_BISHOP, PROMOTE_ROOK, PROMOTE_QUEEN, 0}};  // [type]
// The promoted piece's type, NO_TYPE when the move is no promotion.
constexpr int promotion_type(Move move) {
    if ((move & PROMOTION_MASK) == 0) return NO_TYPE;
    if (move & PROMOTE_KNIGHT) return KNIGHT;
    if (move & PROMOTE_BISHOP) return BISHOP;
    return move & PROMOTE_ROOK ? ROOK : QUEEN;
}

// A king's move by two files castles.
constexpr bool is_castling(int type, int from, int to) {
    return type == KING && (to == from + 2 || to == from - 2);
}

struct MoveEntry {
    Move move;
    i16 order;    // ordering score, written by the picker
    u8 piece;     // code of the moving piece
    u8 captured;  // code on the destination; 0 for quiet moves, castling and en passant
};
static_assert(sizeof(MoveEntry) == 6);

// More than any list can hold: nine pieces of every kind and nine promoting pawns make 676 moves.
constexpr int MAX_LIST = 700;

}  // namespace quon
