#pragma once
// The prober's own small chess: moves of a ProbePosition, made on copies.

#include "board/bitboard.h"
#include "syzygy/tbprobe.h"

namespace quon {

struct ProbeMove {
    u8 from;
    u8 to;
    u8 promotion;  // 0 none, 1 queen, 2 rook, 3 bishop, 4 knight
    bool en_passant;
};

struct ProbeMoves {
    ProbeMove moves[TB_MAX_MOVES];
    int count = 0;

    [[nodiscard]] const ProbeMove* begin() const { return moves; }
    [[nodiscard]] const ProbeMove* end() const { return moves + count; }
};

inline Bitboard occupied(const ProbePosition& p) { return p.white | p.black; }
inline Bitboard mover_pieces(const ProbePosition& p) { return p.turn ? p.white : p.black; }
inline Bitboard waiting_pieces(const ProbePosition& p) { return p.turn ? p.black : p.white; }

// One king a side, each square of one colour and one type, no pawns on the end ranks.
bool well_formed(const ProbePosition& p);
// Whether the king of the side to move, or of the side that waits, is attacked.
bool mover_in_check(const ProbePosition& p);
bool waiting_in_check(const ProbePosition& p);

enum class MoveKind : u8 { CAPTURES, EN_PASSANT, ALL };
// Pseudo-legal moves. CAPTURES are those without en passant, promotions on capture included. The
// position has at most TB_MAX_PIECES pieces.
void list_moves(const ProbePosition& p, MoveKind kind, ProbeMoves& list);

// Plays the move on `child`; false if it leaves the king attacked. `ep` is set behind a double
// push only where a pawn stands to take.
bool play(const ProbePosition& p, const ProbeMove& move, ProbePosition& child);

// The move captures or moves a pawn: the fifty-move count starts again.
inline bool resets_count(const ProbePosition& p, const ProbeMove& move) {
    return has(p.pawns, move.from) || has(waiting_pieces(p), move.to);
}

bool has_legal_move(const ProbePosition& p);

}  // namespace quon
