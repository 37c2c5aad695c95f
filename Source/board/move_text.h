#pragma once
// Moves as text: coordinate notation out, SAN out and in.

#include <string>
#include <string_view>

#include "board/position.h"

namespace quon {

enum class MoveStyle : u8 {
    UCI,   // e7e8q
    LONG,  // e7e8=Q
};
// e2e4, a promotion in the style; "null" for NO_MOVE.
std::string move_to_text(Move move, MoveStyle style);

// The ways a move of the side to move may be written, each with "+" when it gives check. Forms that
// a move does not have are empty.
struct MoveForms {
    std::string coord;  // e2e4, e7e8=Q
    std::string san;    // Nf3, exd5, o-o
    std::string file;   // Ngf3, ed, O-O
    std::string rank;   // N1f3, 0-0
};
MoveForms move_forms(const Position& p, const MoveEntry& entry);

// The SAN of a legal move. Where parse_san could not tell it from another, as of two knights that
// share neither file nor rank, the next form that it can read.
[[nodiscard]] std::string readable_san(const Position& p, const MoveEntry& entry);

// Finds the one legal move that the text names in any of the forms; "e8q", "O-O" and "0-0" are
// understood, a trailing "+" or "#" is not needed. Returns the number of moves that match; unless
// it is 1, out_move becomes NO_MOVE.
[[nodiscard]] int parse_san(const Position& p, std::string_view text, Move& out_move);

// The text as parse_san compares it: check and mate signs off, "e8Q" as "e8=Q", "O-O" and "0-0" as
// "o-o".
std::string normalized_san(std::string_view text);

// Coordinate text as front ends write it: e2e4, e7e8q, castling as e1g1 or e1h1. Returns NO_MOVE
// unless the text names a pseudo-legal move of the side to move that takes no king and moves no
// pawn to an en-passant square that none has passed: what make_move can make and take back in any
// position.
[[nodiscard]] Move parse_coordinates(const Position& p, std::string_view text);

}  // namespace quon
