// The transposition table.

#include "search/hash.h"

#include <atomic>
#include <bit>
#include <new>

#include "board/draw.h"
#include "board/keys.h"
#include "board/legality.h"
#include "board/make.h"
#include "frontend/engine_options.h"
#include "platform/memory.h"
#include "platform/prefetch.h"
#include "search/score.h"

namespace quon {

namespace {

constexpr int BUCKET = 4;
constexpr int SPARE_ENTRIES = 32;  // Black's buckets reach beyond the last slot
constexpr int EMPTY_DEPTH = -50;
constexpr int TORN_DEPTH = -98;
constexpr int IMPLAUSIBLE_DEPTH = -97;
constexpr u64 FILL_SAMPLE = 1000;

// An entry's fields outside the table, and their place in the two words:
//   identity: lock 0-31, check 32-63;  content: move 0-15, score 16-31, age 32-47, bound 48-55,
//   depth 56-63.
struct Content {
    Move move;
    i16 score;
    i16 age;
    u8 bound;
    i8 depth;

    [[nodiscard]] constexpr u64 pack() const {
        return u64{move} | u64{u16(score)} << 16 | u64{u16(age)} << 32 | u64{bound} << 48 |
               u64{u8(depth)} << 56;
    }
    static Content unpack(u64 word) {
        return {Move(word), i16(word >> 16), i16(word >> 32), u8(word >> 48), i8(word >> 56)};
    }
    // Low key half as the check word hides it.
    [[nodiscard]] u32 check(u32 low_key) const {
        return low_key ^ u32(score + 15000) ^ u32 { move } << 16;
    }
};

constexpr Content EMPTY = {NO_MOVE, 0, 0, 0, EMPTY_DEPTH};

// Starts its life empty.
struct Slot {
    std::atomic<u64> identity{0};
    std::atomic<u64> content{EMPTY.pack()};

    [[nodiscard]] u64 load_identity() const { return identity.load(std::memory_order_relaxed); }
    [[nodiscard]] Content load() const {
        return Content::unpack(content.load(std::memory_order_relaxed));
    }
    void store(const Content& c) { content.store(c.pack(), std::memory_order_relaxed); }
    void store(u32 lock, u32 check, const Content& c) {
        identity.store(u64{lock} | u64{check} << 32, std::memory_order_relaxed);
        store(c);
    }
};
static_assert(sizeof(Slot) == 16);

struct MainHash {
    Slot* slots = nullptr;  // entries + SPARE_ENTRIES
    u64 entries = 0;
    u64 mask = 0;
    i16 age = 0;
    bool used = false;  // by the current search
    double fill = 0;
};
MainHash main_hash;

bool usable() { return options.hash_mode != 0 && main_hash.entries > 0; }

Slot* bucket_of(u64 key, int side) {
    const u64 slot = u32(key) & main_hash.mask;
    return &main_hash.slots[side == WHITE ? slot : main_hash.entries - slot];
}

Slot* find_lock(Slot* bucket, u32 lock) {
    for (int i = 0; i < BUCKET; ++i) {
        if (u32(bucket[i].load_identity()) == lock) return &bucket[i];
    }
    return nullptr;
}

Slot* weakest(Slot* bucket) {
    Slot* victim = bucket;
    int least = 0;
    for (int i = 0; i < BUCKET; ++i) {
        const Content c = bucket[i].load();
        const int value = c.age * 16 + c.depth;
        if (i == 0 || value < least) {
            least = value;
            victim = &bucket[i];
        }
    }
    return victim;
}

std::size_t block_bytes(u64 entries) { return (entries + SPARE_ENTRIES) * sizeof(Slot); }

}  // namespace

bool hash_alloc() {
    init_keys();
    hash_free();
    const u64 entries = u64(options.hash_mb) * 65536;
    void* block = allocate_pages(block_bytes(entries));
    if (!block) return false;
    main_hash.slots = new (block) Slot[entries + SPARE_ENTRIES];
    main_hash.entries = entries;
    main_hash.mask = std::bit_floor(entries) - (entries ? 1 : 0);
    return true;
}

void hash_free() {
    release_pages(main_hash.slots, block_bytes(main_hash.entries));
    main_hash = {};
}

void hash_clear() {
    const u64 count = main_hash.slots ? main_hash.entries + SPARE_ENTRIES : 0;
    for (u64 i = 0; i < count; ++i) main_hash.slots[i].store(0, 0, EMPTY);
    main_hash.age = 0;
    main_hash.fill = 0;
}

void hash_start_search(int age) {
    main_hash.age = i16(age);
    main_hash.used = usable();
}

HashEntry hash_probe(const Position& p) {
    HashEntry out;
    if (!main_hash.used) return out;
    const u64 key = full_key(p);
    Slot* slot = find_lock(bucket_of(key, p.side), u32(key >> 32));
    if (!slot) return out;

    const u32 check = u32(slot->load_identity() >> 32);
    Content found = slot->load();
    if (found.age != main_hash.age) {
        found.age = main_hash.age;
        slot->store(found);
    }
    out = {found.move, found.score, found.bound, found.depth};
    if (check != found.check(u32(key))) {
        out.depth = TORN_DEPTH;
    } else if (found.move != NO_MOVE) {
        const Bitboard own = p.bb[p.side][0];
        const bool plausible = has(own, move_from(found.move)) && !has(own, move_to(found.move));
        if (!plausible) out.depth = IMPLAUSIBLE_DEPTH;
    }
    return out;
}

void hash_store(const Position& p, int ply, int depth, int score, int alpha, int beta,
                Move best_move) {
    if (!main_hash.used) return;
    const u8 bound = score >= beta ? LOWER_BOUND : score > alpha ? EXACT_BOUND : UPPER_BOUND;
    const u64 key = full_key(p);
    const u32 lock = u32(key >> 32);
    Slot* bucket = bucket_of(key, p.side);
    Slot* slot = find_lock(bucket, lock);
    const int margin = slot ? 2 : 7;
    if (!slot) slot = weakest(bucket);
    if (depth < slot->load().depth - margin) return;

    const Content next{best_move, i16(score_to_table(score, ply)), main_hash.age, bound, i8(depth)};
    slot->store(lock, next.check(u32(key)), next);
}

void hash_prefetch(const Position& p) {
    if (!main_hash.used) return;
    const Slot* bucket = bucket_of(full_key(p), p.side);
    prefetch(bucket);
    prefetch(bucket + BUCKET - 1);
}

void hash_update_fill() {
    main_hash.fill = 0;
    if (main_hash.entries <= 2999) return;
    const Slot* sample = &main_hash.slots[main_hash.entries / 2 - FILL_SAMPLE / 2];
    int current = 0;
    for (u64 i = 0; i < FILL_SAMPLE; ++i) current += sample[i].load().age == main_hash.age;
    main_hash.fill = current * 0.001;
}

double hash_fill() { return main_hash.fill; }

void hash_line(Position& p, int ply, Table<Move, MAX_PLY>& line) {
    Move move = line[ply];
    if (move == NO_MOVE) {
        const HashEntry entry = hash_probe(p);
        if (entry.depth >= 1) move = entry.move;
        line[ply + 1] = NO_MOVE;
    }
    if (move == NO_MOVE || is_draw(p, 2) || !is_pseudo_legal(p, move) || !is_legal(p, move)) return;
    line[ply] = move;
    if (ply + 1 > LAST_LINE_PLY) return;
    make_move(p, move);
    hash_line(p, ply + 1, line);
    unmake_move(p);
}

}  // namespace quon
