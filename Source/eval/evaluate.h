#pragma once
// The static evaluation.
//
// Every term has an opening and an ending value; what they add up to for each colour is blended by
// the game stage (24 without pieces, 0 with all of them) and scaled down in endings that are hard
// to win. A pawn is worth 90 in the opening and 110 in the ending. Tested in tests/eval/.

#include "board/keys.h"
#include "board/position.h"
#include "eval/eval_tables.h"
#include "eval/terms.h"
#include "platform/memory.h"
#include "support/relaxed.h"

namespace quon {

// What an evaluation tells the search beside the score. The caller clears the threats
// before every call; eval_final is only ever set.
struct EvalNotes {
    Table<i16, 2> threat;  // centipawns that White and Black stand to lose
    u16 eval_final;        // 1: dead-drawn material, nothing to search
};

struct EvalHashEntry {
    u64 key;
    Table<i16, 2> threat;
    i16 score;  // side to move's view
};
static_assert(sizeof(EvalHashEntry) == 16);

constexpr int PAWN_HASH_SIZE = 8192;
constexpr int EVAL_HASH_SIZE = 16384;

constexpr int pawn_hash_index(u64 pawn_key) { return int(pawn_key & (PAWN_HASH_SIZE - 1)); }
// Of the full key; the two sides to move never share an entry.
constexpr int eval_hash_index(u64 key, int side) { return int(key & (EVAL_HASH_SIZE - 2)) + side; }

// A thread's own part of the evaluation: large, to be allocated once and zeroed. The caches are
// never cleared; outside an iteration they are written but not read.
struct EvalState {
    EvalTables tables;  // copy of the master, made when a search is prepared
    Table<PawnEntry, PAWN_HASH_SIZE> pawn_hash;
    Table<EvalHashEntry, EVAL_HASH_SIZE> eval_hash;
    Relaxed<u64> evaluations;
    Relaxed<u64> eval_hits;
    Relaxed<u64> pawn_probes;
    Relaxed<u64> pawn_hits;
    bool contempt_active;  // the search's target time is below 6000 seconds
    int root_side;         // side to move at the root of the search
};

struct EvalTrace;

struct EvalCall {
    int ply;           // 1 at the root
    bool in_check;     // the side to move is in check
    bool iterating;    // an iteration of the thread's deepening is under way
    EvalTrace* trace;  // takes the score apart (eval_trace.h); mostly nullptr
};

// Has the memory fetch the position's entries of both caches.
inline void prefetch_evaluation(const EvalState& state, const Position& p) {
    prefetch(&state.eval_hash[eval_hash_index(full_key(p), p.side)]);
    prefetch(&state.pawn_hash[pawn_hash_index(p.pawn_key)]);
}

// Returned instead of a score when the side to move is in check.
constexpr int EVAL_IN_CHECK = -10000;

// Centipawns from the side to move's point of view; the position must be one that can be searched.
[[nodiscard]] int evaluate(EvalState& state, const Position& p, EvalNotes& notes,
                           const EvalCall& call);

}  // namespace quon
