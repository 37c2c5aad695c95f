#pragma once
// How the opening book identifies a position: 48 bits from pieces, side to move and en-passant
// square. Castling rights are not part of it.

#include "board/position.h"

namespace quon {

struct BookKey {
    u16 key16;
    u32 key32;

    bool operator==(const BookKey&) const = default;
};

// The order of records in a book is descending in this number.
constexpr u64 sort_number(BookKey key) { return u64{key.key16} << 32 | key.key32; }

// The key of the pieces; the top bit of key16 is whatever came out.
BookKey book_key(const Position& p);

// The key as records hold it: the top bit of key16 tells White to move.
BookKey record_key(const Position& p);

}  // namespace quon
