#pragma once
// The search's use of the endgame tablebases: when they are asked, and what becomes of the answers.

#include "search/settings.h"
#include "search/thread_data.h"
#include "syzygy/tbprobe.h"

namespace quon {

// `fifty` in plies.
ProbePosition probe_position(const Position& p, int fifty);

// TB_LOSS..TB_WIN by the win/draw/loss tables, the fifty-move count left aside; NO_TB_RESULT when
// the depth (plies), the material, castling rights or missing tables forbid it.
int tb_wdl(const SearchSettings& settings, const Position& p, int depth);

// The root probe: the result under the fifty-move rule (returned and in out_wdl), the plies to the
// next capture or pawn move, and a move that keeps the result. NO_TB_RESULT when there is none.
int tb_root(const Position& p, int& out_wdl, int& out_dtz, Move& out_move);

// The main search thread's decision before it iterates: publishes the root's result; true when the
// tables' move is played without a search.
bool decide_root(ThreadData& t);

// The probes of a node below the root. True if they settle it, with `score`.
bool tb_probe(ThreadData& t, int ply, int depth, int alpha, int beta, int& score);
inline bool tb_probe_node(ThreadData& t, int ply, int depth, int alpha, int beta, int& score) {
    return tb_largest != 0 && tb_probe(t, ply, depth, alpha, beta, score);
}

}  // namespace quon
