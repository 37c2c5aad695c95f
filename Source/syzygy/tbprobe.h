#pragma once
// Endgame tablebases: what the tables know about positions of at most six pieces.

#include <optional>
#include <string>

#include "board/types.h"
#include "support/relaxed.h"

namespace quon {

struct ProbePosition {
    u64 white, black;                                   // all pieces of each colour
    u64 kings, queens, rooks, bishops, knights, pawns;  // of both colours
    u8 rule50;                                          // plies since the last capture or pawn move
    u8 ep;    // square passed over by the last double push, 0 if none
    u8 turn;  // 1: White to move
};

constexpr int TB_MAX_PIECES = 6;
// More legal moves than any position of six pieces has.
constexpr int TB_MAX_MOVES = 192;

// The answer of the root probe, packed: win/draw/loss 0 (loss) to 4 (win) in bits 0-3, destination
// in 4-9, origin in 10-15, promotion in 16-18 (1 queen, 2 rook, 3 bishop, 4 knight), en passant in
// 19, absolute distance to zeroing from 20 on. With both squares 0, 4 is checkmate and 2 stalemate.
constexpr u32 TB_FAILED = 0xFFFFFFFF;
constexpr u32 TB_CHECKMATE = 4;
constexpr u32 TB_STALEMATE = 2;
constexpr int result_wdl(u32 result) { return int(result & 15); }
constexpr int result_to(u32 result) { return int(result >> 4 & 63); }
constexpr int result_from(u32 result) { return int(result >> 10 & 63); }
constexpr int result_promotion(u32 result) { return int(result >> 16 & 7); }
constexpr bool result_en_passant(u32 result) { return (result >> 19 & 1) != 0; }
constexpr int result_dtz(u32 result) { return int(result >> 20); }

// Most pieces, kings included, of any table that is registered; 0 without tables.
extern Relaxed<int> tb_largest;

// Releases all tables, then registers those in the directories of the path (split at ";") and
// returns their number. An empty path or "<empty>" asks for none. No thread may be probing.
std::optional<int> tb_init(const std::string& path);

// Win/draw/loss for the side to move, -2 (loss), -1 (loss saved by the fifty-move rule), 0, 1 (win
// spoiled by it), 2 (win). The position is legal and has no castling rights. out_success becomes 0
// when a table that is needed is missing or unusable. Any number of threads may probe at once.
int tb_probe_wdl(const ProbePosition& position, int& out_success);

// Plies to the next capture, pawn move or mate for the side to move: positive won, negative lost,
// beyond 100 when the fifty-move rule spoils it. May be rounded by one ply towards zero. Both
// probes of distances belong to one thread at a time.
int tb_probe_dtz(const ProbePosition& position, int& out_success);

// The move that keeps the best outcome under the fifty-move rule, packed as above; TB_FAILED when
// the position is invalid or a table is missing. out_results may be null, else has room for
// TB_MAX_MOVES + 1 entries and receives all legal moves, ended by TB_FAILED.
u32 tb_probe_root(const ProbePosition& position, u32* out_results);

}  // namespace quon
