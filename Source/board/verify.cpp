// Every field once more, from the board alone.

#include "board/verify.h"

#include <algorithm>

#include "board/keys.h"

namespace quon {

namespace {

// What a list must hold: each of the squares once and then its end.
bool lists_squares(const Table<u8, PLIST_SIZE>& list, Bitboard squares) {
    for (const u8 square : list) {
        if (square == NO_SQUARE) return squares == 0;
        if (square > NO_SQUARE || !has(squares, square)) return false;
        squares ^= bit(square);
    }
    return false;
}

template <typename T, int N>
bool equal(const Table<T, N>& a, const Table<T, N>& b) {
    return std::equal(a.begin(), a.end(), b.begin());
}

}  // namespace

std::string_view verify(const Position& p) {
    Position fresh{};
    Table<Bitboard, 16> squares{};
    for (int square = 0; square < 64; ++square) {
        const int piece = p.board[square];
        if (piece == 0) continue;
        const int color = color_of(piece);
        const int type = type_of(piece);
        if (piece > make_piece(BLACK, KING) || type < PAWN || type > KING) return "board";
        fresh.bb[color][0] |= bit(square);
        fresh.bb[color][type] |= bit(square);
        fresh.sig[color] += SIG_UNIT[type];
        fresh.npm[color] = u16(fresh.npm[color] + NPM_UNIT[type]);
        toggle_key(fresh, piece, square);
        squares[piece] |= bit(square);
    }
    if (p.board[NO_SQUARE] != 0) return "board[NO_SQUARE]";
    for (int piece = 0; piece < 16; ++piece) {
        if (!lists_squares(p.plist[piece], squares[piece])) return "plist";
    }
    for (const int color : {WHITE, BLACK}) {
        if (!equal(p.bb[color], fresh.bb[color])) return "bb";
    }
    if (!equal(p.sig, fresh.sig)) return "sig";
    if (!equal(p.npm, fresh.npm)) return "npm";
    if (p.key != fresh.key) return "key";
    if (p.pawn_key != fresh.pawn_key) return "pawn_key";
    if (p.side > BLACK) return "side";
    if (p.ep > NO_SQUARE) return "ep";
    return (p.castle & ~supported_rights(p)) == 0 ? "" : "castle";
}

}  // namespace quon
