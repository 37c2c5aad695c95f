// The transposition table.

#include "search/hash.h"

#include <atomic>
#include <bit>
#include <exception>
#include <memory>
#include <thread>
#include <vector>

#include "board/draw.h"
#include "board/keys.h"
#include "board/legality.h"
#include "board/make.h"
#include "platform/memory.h"
#include "search/score.h"

namespace quon {

namespace {

constexpr int BUCKET = 4;
constexpr int SPARE_ENTRIES = 32;                // Black's buckets reach beyond the last slot
constexpr u64 PARALLEL_ENTRIES = u64{64} << 16;  // 64 MB: tables from this size on are large
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

}  // namespace

// Starts its life empty.
struct HashSlot {
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
static_assert(sizeof(HashSlot) == 16);

namespace {

HashSlot* bucket_of(const MainHash& hash, u64 key, int side) {
    const u64 slot = u32(key) & hash.mask;
    return &hash.slots[side == WHITE ? slot : hash.entries - slot];
}

HashSlot* find_lock(HashSlot* bucket, u32 lock) {
    for (int i = 0; i < BUCKET; ++i) {
        if (u32(bucket[i].load_identity()) == lock) return &bucket[i];
    }
    return nullptr;
}

HashSlot* weakest(HashSlot* bucket) {
    HashSlot* victim = bucket;
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

std::size_t block_bytes(u64 entries) { return (entries + SPARE_ENTRIES) * sizeof(HashSlot); }

// All slots empty. The system makes a page when it is first touched, which takes far longer than
// the writing: the parts of a large table are filled side by side.
void fill_empty(HashSlot* slots, u64 count, int threads) {
    const u64 parts = count < PARALLEL_ENTRIES ? 1 : u64(threads);
    const auto fill_part = [=](u64 part) {
        const u64 begin = count * part / parts;
        std::uninitialized_default_construct_n(slots + begin, count * (part + 1) / parts - begin);
    };
    std::vector<std::thread> helpers;
    for (u64 part = 1; part < parts; ++part) {
        try {
            helpers.emplace_back(fill_part, part);
        } catch (const std::exception&) {
            fill_part(part);
        }
    }
    fill_part(0);
    for (std::thread& helper : helpers) helper.join();
}

}  // namespace

MainHash::~MainHash() { hash_free(*this); }

bool hash_alloc(MainHash& hash, int megabytes, int threads) {
    init_keys();
    hash_free(hash);
    const u64 entries = u64(megabytes) * 65536;
    void* block = allocate_pages(block_bytes(entries));
    if (!block) return false;
    hash.slots = static_cast<HashSlot*>(block);
    fill_empty(hash.slots, entries + SPARE_ENTRIES, threads);
    hash.entries = entries;
    hash.mask = std::bit_floor(entries) - (entries ? 1 : 0);
    return true;
}

void hash_free(MainHash& hash) {
    release_pages(hash.slots, block_bytes(hash.entries));
    hash.slots = nullptr;
    hash.entries = 0;
    hash.mask = 0;
    hash.age = 0;
    hash.used = false;
    hash.fill = 0;
}

void hash_clear(MainHash& hash, int threads) {
    if (hash.slots) fill_empty(hash.slots, hash.entries + SPARE_ENTRIES, threads);
    hash.age = 0;
    hash.fill = 0;
}

void hash_start_search(MainHash& hash, int age, bool wanted) {
    hash.age = i16(age);
    hash.used = wanted && hash.entries > 0;
}

HashEntry hash_probe(const MainHash& hash, const Position& p) {
    HashEntry out;
    if (!hash.used) return out;
    const u64 key = full_key(p);
    HashSlot* slot = find_lock(bucket_of(hash, key, p.side), u32(key >> 32));
    if (!slot) return out;

    const u32 check = u32(slot->load_identity() >> 32);
    Content found = slot->load();
    if (found.age != hash.age) {
        found.age = hash.age;
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

void hash_store(const MainHash& hash, const Position& p, int ply, int depth, int score, int alpha,
                int beta, Move best_move) {
    if (!hash.used) return;
    const u8 bound = score >= beta ? LOWER_BOUND : score > alpha ? EXACT_BOUND : UPPER_BOUND;
    const u64 key = full_key(p);
    const u32 lock = u32(key >> 32);
    HashSlot* bucket = bucket_of(hash, key, p.side);
    HashSlot* slot = find_lock(bucket, lock);
    const int margin = slot ? 2 : 7;
    if (!slot) slot = weakest(bucket);
    if (depth < slot->load().depth - margin) return;

    const Content next{best_move, i16(score_to_tt(score, ply)), hash.age, bound, i8(depth)};
    slot->store(lock, next.check(u32(key)), next);
}

void hash_prefetch(const MainHash& hash, const Position& p) {
    if (!hash.used) return;
    const HashSlot* bucket = bucket_of(hash, full_key(p), p.side);
    prefetch(bucket);
    prefetch(bucket + BUCKET - 1);
}

void hash_update_fill(MainHash& hash) {
    hash.fill = 0;
    if (hash.entries <= 2999) return;
    const HashSlot* sample = &hash.slots[hash.entries / 2 - FILL_SAMPLE / 2];
    int current = 0;
    for (u64 i = 0; i < FILL_SAMPLE; ++i) current += sample[i].load().age == hash.age;
    hash.fill = current * 0.001;
}

void hash_line(const MainHash& hash, Position& p, int ply, Table<Move, MAX_PLY>& line) {
    Move move = line[ply];
    if (move == NO_MOVE) {
        const HashEntry entry = hash_probe(hash, p);
        if (entry.depth >= 1) move = entry.move;
        line[ply + 1] = NO_MOVE;
    }
    if (move == NO_MOVE || is_draw(p, 2) || !is_pseudo_legal(p, move) || !is_legal(p, move)) return;
    line[ply] = move;
    if (ply + 1 > LAST_LINE_PLY) return;
    make_move(p, move);
    hash_line(hash, p, ply + 1, line);
    unmake_move(p);
}

}  // namespace quon
