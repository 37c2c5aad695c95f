#pragma once
// MainHash, the transposition table that all search threads share without a lock.
//
// Invariants:
// - An entry is two 64-bit words, each read and written atomically; together they may be torn. The
//   check word (low key half mixed with score and move) exposes a torn entry on probing.
// - White's positions index from the bottom, Black's from the top: with a size that is no power of
//   two both together cover the whole block.
// - A bucket is the four consecutive entries from the slot; neighbouring buckets overlap.

#include "board/position.h"
#include "search/score.h"

namespace quon {

enum Bound : u8 { UPPER_BOUND = 1, LOWER_BOUND = 2, EXACT_BOUND = 3 };

// What a probe hands out; depth below -10 means no usable entry.
struct HashEntry {
    Move move = NO_MOVE;
    i16 score = NO_SCORE;
    u8 bound = 0;
    i8 depth = -99;

    [[nodiscard]] bool hit() const { return depth >= -10; }
};

// A new table of options.hash_mb megabytes; false if memory is short (then there is no table). The
// first call also makes the position keys. No search may be running.
[[nodiscard]] bool hash_alloc();
void hash_free();
// Empties the table and restarts its generations. No search may be running.
void hash_clear();
// At every search start: the generation that stores and hits are marked with from now on. A table
// of size 0, or hash mode 0, is not used during the search.
void hash_start_search(int age);

// Scores in the table count mates from the node: see score_from_table.
HashEntry hash_probe(const Position& p);
// `score` and the bounds as the search knows them; `ply` is the node's, 1 at the root.
void hash_store(const Position& p, int ply, int depth, int score, int alpha, int beta,
                Move best_move);
void hash_prefetch(const Position& p);

// Takes a fresh sample of the current generation's share, 0..1; hash_fill is the last sample.
void hash_update_fill();
double hash_fill();

// Extends line[ply..] with table moves from the position on while they are legal and no draw; moves
// that the line already has are followed. Entries are read as the last search saw them.
constexpr int LAST_LINE_PLY = 66;
void hash_line(Position& p, int ply, Table<Move, MAX_PLY>& line);

}  // namespace quon
