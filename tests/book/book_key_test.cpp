// The book's key against a second computation and against another program's.

#include "book/book_key.h"

#include <gtest/gtest.h>

#include "harness/board_support.h"
#include "harness/engine.h"
#include "support/text.h"

namespace quon::test {
namespace {

// By way of the list of men, with the numbers drawn anew for every one.
u32 number(u32 index) {
    u32 x = 77;
    for (u32 i = 0; i <= index; ++i) x = x * 33 + 12345;
    return x % 65536;
}

BookKey second_key(const Position& p) {
    constexpr u32 BASE[] = {0, 0, 128, 256, 384, 512, 640};
    u32 low = 0;
    u32 high = 0;
    for (u32 square = 0; square < 64; ++square) {
        const int piece = p.board[int(square)];
        if (piece == 0) continue;
        const bool black = piece > 8;
        const u32 i = BASE[black ? piece - 8 : piece] + square + (black ? 64 : 0);
        high ^= number(i + 1) * 65536 + number(i + 2);
        if (black == (p.side == BLACK)) low ^= number(i);
    }
    return {u16(low), high + p.ep};
}

TEST(BookKey, SecondComputation) {
    visit_random_positions(scaled(400), 41, [](Game& game) {
        const Position& p = game.position;
        const BookKey expected = second_key(p);
        ASSERT_EQ(book_key(p), expected);
        const int side_bit = p.side == WHITE ? 32768 : 0;
        ASSERT_EQ(record_key(p), (BookKey{u16(expected.key16 % 32768 + side_bit), expected.key32}));
    });
}

TEST(BookKey, Reference) {
    expect_reference("keys", [](const Position& p) {
        const BookKey key = book_key(p);
        return std::vector<std::string>{"*", "*", "*", format("%04x", key.key16),
                                        format("%08x", key.key32)};
    });
}

}  // namespace
}  // namespace quon::test
