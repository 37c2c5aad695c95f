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
#include "search/depths.h"
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

struct HashSlot;

struct MainHash {
    HashSlot* slots = nullptr;  // entries and some spare ones
    u64 entries = 0;
    u64 mask = 0;
    i16 age = 0;
    bool used = false;  // by the current search
    double fill = 0;    // the current generation's share, 0..1, as of the last hash_update_fill

    MainHash() = default;
    MainHash(const MainHash&) = delete;
    MainHash& operator=(const MainHash&) = delete;
    ~MainHash();
};

// A new table of 0..8192 megabytes, filled by so many threads; false if memory is short (then there
// is no table). The first call also makes the position keys. No search may be running.
[[nodiscard]] bool hash_alloc(MainHash& hash, int megabytes, int threads = 1);
void hash_free(MainHash& hash);
// Empties the table and restarts its generations. No search may be running.
void hash_clear(MainHash& hash, int threads = 1);
// At every search start: the generation that stores and hits are marked with from now on. A table
// of size 0, or one that is not wanted, is not used during the search.
void hash_start_search(MainHash& hash, int age, bool wanted);

// Scores in the table count mates from the node: see score_from_tt.
HashEntry hash_probe(const MainHash& hash, const Position& p);
// `score` and the bounds as the search knows them; `ply` is the node's, 1 at the root.
void hash_store(const MainHash& hash, const Position& p, int ply, int depth, int score, int alpha,
                int beta, Move best_move);
void hash_prefetch(const MainHash& hash, const Position& p);

// Takes a fresh sample of the current generation's share.
void hash_update_fill(MainHash& hash);

// Extends line[ply..] with table moves from the position on while they are legal and no draw; moves
// that the line already has are followed. Entries are read as the last search saw them.
void hash_line(const MainHash& hash, Position& p, int ply, Table<Move, MAX_PLY>& line);

}  // namespace quon
