// The book's own key.

#include "book/book_key.h"

namespace quon {

namespace {

constexpr int NUMBERS = 772;
constexpr u16 WHITE_TO_MOVE = 0x8000;

constexpr Table<u16, NUMBERS> make_numbers() {
    Table<u16, NUMBERS> numbers{};
    u32 x = 77;
    for (u16& number : numbers) {
        x = x * 33 + 12345;
        number = u16(x);
    }
    return numbers;
}
constexpr Table<u16, NUMBERS> NUMBER = make_numbers();

// 128 numbers a type: White's squares, then Black's.
constexpr int number_index(int type, int color, int square) {
    return 128 * (type - PAWN) + 64 * color + square;
}

}  // namespace

BookKey book_key(const Position& p) {
    BookKey key{0, 0};
    for (Bitboard rest = occupied(p); rest;) {
        const int square = pop_square(rest);
        const int piece = p.board[square];
        const int i = number_index(type_of(piece), color_of(piece), square);
        key.key32 ^= u32{NUMBER[i + 1]} << 16 | NUMBER[i + 2];
        if (color_of(piece) == p.side) key.key16 ^= NUMBER[i];
    }
    key.key32 += p.ep;
    return key;
}

BookKey record_key(const Position& p) {
    const BookKey key = book_key(p);
    const int side_bit = p.side == WHITE ? WHITE_TO_MOVE : 0;
    return {u16((key.key16 & ~WHITE_TO_MOVE) | side_bit), key.key32};
}

}  // namespace quon
