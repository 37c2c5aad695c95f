// The transposition table, with position keys set by hand: high half the lock, low half the slot.

#include "board/keys.h"
#include "harness/search_support.h"
#include "search/score.h"

namespace quon::test {
namespace {

// What a probe's depth says when it found the lock but not the position.
constexpr int FOREIGN = -98;
constexpr int NOT_FOUND = -99;

struct HashTest : testing::Test {
    std::unique_ptr<Game> white = make_game("4k3/8/8/8/8/8/4R3/4K3 w - -");
    std::unique_ptr<Game> black = make_game("4k3/4r3/8/8/8/8/8/4K3 b - -");
    const SearchSettings saved = settings;

    HashTest() { allocate(1); }
    ~HashTest() override {
        hash_free(engine.hash);
        settings = saved;
    }
    static void allocate(int megabytes) {
        settings.hash_mb = i16(megabytes);
        ASSERT_TRUE(hash_alloc(engine.hash, settings.hash_mb));
        hash_start_search(engine.hash, 1, true);
    }
    Position& at(u32 lock, u32 low, int side = WHITE) {
        Position& p = (side == WHITE ? white : black)->position;
        p.key ^= full_key(p) ^ (u64{lock} << 32 | low);
        return p;
    }
    void store(u32 lock, u32 low, int depth, int side = WHITE) {
        hash_store(engine.hash, at(lock, low, side), 1, depth, 10, 0, 20, NO_MOVE);
    }
    int depth_at(u32 lock, u32 low, int side = WHITE) {
        return hash_probe(engine.hash, at(lock, low, side)).depth;
    }
};

TEST_F(HashTest, BoundsAndMateDistances) {
    const struct {
        int score;  // between 0 and 100
        Bound bound;
        int stored_at, stored, read_at, read;
    } cases[] = {{100, LOWER_BOUND, 1, 100, 9, 100},      {1, EXACT_BOUND, 1, 1, 9, 1},
                 {9990, LOWER_BOUND, 5, 9995, 3, 9992},   {9697, LOWER_BOUND, 5, 9702, 5, 9697},
                 {9696, LOWER_BOUND, 5, 9696, 5, 9696},   {-9698, UPPER_BOUND, 5, -9703, 5, -9698},
                 {-9697, UPPER_BOUND, 5, -9697, 5, -9697}};
    for (const auto& c : cases) {
        hash_clear(engine.hash);
        hash_store(engine.hash, at(7, 100), c.stored_at, 4, c.score, 0, 100, make_code(12, 20));
        const HashEntry entry = hash_probe(engine.hash, at(7, 100));
        EXPECT_EQ(entry.move, make_code(12, 20));
        EXPECT_EQ(entry.bound, c.bound) << c.score;
        EXPECT_EQ(entry.depth, 4);
        EXPECT_EQ(entry.score, c.stored) << c.score;
        EXPECT_EQ(score_from_tt(entry.score, c.read_at), c.read) << c.score;
    }
}

TEST_F(HashTest, SamePositionKeepsMuchDeeperEntries) {
    const struct {
        int old_depth, depth;
        bool replaced;
    } cases[] = {{10, 7, false}, {10, 8, true}, {10, 12, true}, {1, 0, true}, {3, 0, false}};
    for (const auto& c : cases) {
        hash_clear(engine.hash);
        hash_store(engine.hash, at(7, 100), 1, c.old_depth, 10, 0, 20, make_code(12, 28));
        hash_start_search(engine.hash, 9, true);  // the age does not matter here
        hash_store(engine.hash, at(7, 100), 1, c.depth, -5, 0, 20, NO_MOVE);
        const HashEntry entry = hash_probe(engine.hash, at(7, 100));
        EXPECT_EQ(entry.depth, c.replaced ? c.depth : c.old_depth) << c.old_depth << " " << c.depth;
        EXPECT_EQ(entry.score, c.replaced ? -5 : 10);
        EXPECT_EQ(entry.move, c.replaced ? NO_MOVE : make_code(12, 28));
    }
}

TEST_F(HashTest, VictimIsOldestAndShallowest) {
    const struct {
        int ages[4], depths[4], age, depth, victim;  // -1: nothing is replaced
    } cases[] = {
        {{5, 5, 5, 5}, {10, 8, 9, 11}, 5, 1, 1}, {{5, 5, 5, 5}, {10, 8, 9, 11}, 5, 0, -1},
        {{5, 5, 4, 5}, {1, 1, 16, 1}, 5, 9, 2},  {{5, 5, 4, 5}, {1, 1, 16, 1}, 5, 8, -1},
        {{5, 5, 4, 5}, {1, 1, 17, 1}, 5, 0, 0},  {{2, 3, 4, 1}, {9, 0, 0, 20}, 6, 13, 3},
        {{2, 3, 4, 1}, {4, 0, 0, 21}, 6, 0, 0},
    };
    for (const auto& c : cases) {
        hash_clear(engine.hash);
        for (u32 i = 0; i < 4; ++i) {  // empty entries are taken from the first on
            hash_start_search(engine.hash, c.ages[i], true);
            store(1 + i, 100, c.depths[i]);
        }
        hash_start_search(engine.hash, c.age, true);
        store(9, 100, c.depth);
        EXPECT_EQ(depth_at(9, 100) == c.depth, c.victim >= 0);
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(depth_at(u32(1 + i), 100) == c.depths[i], i != c.victim)
                << "case " << &c - cases << ", entry " << i;
        }
    }
}

TEST_F(HashTest, ImplausibleMovesAreMisses) {
    const std::pair<const char*, bool> cases[] = {
        {"4k3/8/8/8/8/8/4R3/4K3 w - -", true},
        {"4k3/8/8/8/8/8/8/4K3 w - -", false},      // nothing stands there
        {"4k3/8/8/8/8/8/4r3/4K3 w - -", false},    // not the mover's piece
        {"4k3/8/8/4N3/8/8/4R3/4K3 w - -", false},  // takes an own piece
    };
    hash_store(engine.hash, at(7, 100), 1, 4, 10, 0, 20, make_code(12, 36));
    for (const auto& [fen, hit] : cases) {
        white = make_game(fen);
        EXPECT_EQ(hash_probe(engine.hash, at(7, 100)).hit(), hit) << fen;
    }
}

TEST_F(HashTest, CheckWordExposesForeignEntries) {
    store(7, 100, 4);
    // Same lock, another low half: in the same slot (the bits beyond the table) or a neighbour's.
    for (const u32 low : {100U + 65536U, 100U + 0x80000000U, 99U, 97U}) {
        EXPECT_EQ(depth_at(7, low), FOREIGN) << low;
    }
    for (const u32 low : {96U, 101U}) EXPECT_EQ(depth_at(7, low), NOT_FOUND) << low;
    EXPECT_EQ(depth_at(8, 100), NOT_FOUND);
}

TEST_F(HashTest, NoTableNoEntries) {
    store(7, 100, 4);
    hash_start_search(engine.hash, 2, false);
    EXPECT_EQ(depth_at(7, 100), NOT_FOUND);
    allocate(0);
    store(7, 0xFFFFFFFF, 4);
    hash_prefetch(engine.hash, at(7, 0xFFFFFFFF));
    EXPECT_EQ(depth_at(7, 0xFFFFFFFF), NOT_FOUND);
}

// White's slots count from the bottom, Black's from the top: entry i and entry `entries` - j. A
// position of the other side with the same lock is seen as foreign exactly where they meet.
TEST_F(HashTest, BothColoursCoverTheBlock) {
    const struct {
        int megabytes;
        u32 entries, mask;
    } sizes[] = {{1, 65536, 65535}, {3, 196608, 131071}, {100, 6553600, 4194303}};
    for (const auto& size : sizes) {
        allocate(size.megabytes);
        for (const int side : {WHITE, BLACK}) {
            for (const u32 low : {0U, size.mask}) store(5, low, 3, side);
            EXPECT_EQ(depth_at(5, 0, side) + depth_at(5, size.mask, side), 6);
        }
        const u32 low = size.mask - 100;
        store(77, low, 3);
        const u32 meeting = size.entries - low;  // Black's slot with the same first entry
        EXPECT_EQ(depth_at(77, meeting - 1, BLACK), NOT_FOUND);
        for (const u32 above : {0U, 3U}) EXPECT_EQ(depth_at(77, meeting + above, BLACK), FOREIGN);
        EXPECT_EQ(depth_at(77, meeting + 4, BLACK), NOT_FOUND);
    }
}

// A large table is filled by several threads, to its last slot.
TEST_F(HashTest, FilledInParts) {
    for (const int threads : {1, 2, 7}) {
        ASSERT_TRUE(hash_alloc(engine.hash, 64, threads));
        hash_start_search(engine.hash, 1, true);
        for (const bool cleared : {false, true}) {
            for (u32 low = 0; low < 64 << 16; low += 9999) {
                EXPECT_EQ(depth_at(low + 1, low), NOT_FOUND) << threads << ' ' << low;
                store(low + 1, low, -9);  // an empty slot takes any depth, a zeroed one not this
                EXPECT_EQ(depth_at(low + 1, low), -9);
            }
            if (!cleared) hash_clear(engine.hash, threads);
        }
    }
}

// Of a thousand entries in the middle.
TEST_F(HashTest, FillCountsTheCurrentGeneration) {
    for (const u32 low : {32267U, 32268U, 33267U, 33268U}) store(7, low, 4);
    hash_update_fill(engine.hash);
    EXPECT_DOUBLE_EQ(engine.hash.fill, 0.002);
    hash_start_search(engine.hash, 2, true);
    EXPECT_EQ(depth_at(7, 32268), 4);  // a hit makes the entry current
    hash_update_fill(engine.hash);
    EXPECT_DOUBLE_EQ(engine.hash.fill, 0.001);
    hash_clear(engine.hash);
    EXPECT_EQ(engine.hash.fill, 0);
    EXPECT_EQ(depth_at(7, 32268), NOT_FOUND);
}

TEST_F(HashTest, LineFollowsTheTable) {
    const struct {
        const char* stored;  // with depth 1; a move after "0:" with depth 0
        int ply;             // of the first
        Move given;          // what the line holds already
        const char* expected;
    } cases[] = {
        {"e2e4 e7e5 g1f3", 1, NO_MOVE, "e2e4 e7e5 g1f3"},
        {"e2e4 0:e7e5 g1f3", 1, NO_MOVE, "e2e4"},
        {"0:e2e4 e7e5 g1f3", 1, make_code(12, 28), "e2e4 e7e5 g1f3"},
        {"g1f3 g8f6 f3g1 f6g8", 1, NO_MOVE, "g1f3 g8f6 f3g1 f6g8"},  // the repetition ends it
        {"e2e4 e7e5", 1, make_code(12, 36), "e2e5"},                 // an impossible one ends it
        {"a2a3 a7a6 b2b3 b7b6", 64, NO_MOVE, "a2a3 a7a6 b2b3"},      // entry 66 is the last
    };
    for (const auto& c : cases) {
        hash_clear(engine.hash);
        const auto source = make_game(START_FEN);
        for (const std::string& text : split(c.stored, ' ')) {
            const bool shallow = text.starts_with("0:");
            const Move move = parse_coordinates(source->position, text.substr(shallow ? 2 : 0));
            hash_store(engine.hash, source->position, 1, shallow ? 0 : 1, 0, -50, 50, move);
            make_move(source->position, move);
        }
        const auto game = make_game(START_FEN);
        Table<Move, MAX_PLY> line{};
        line[c.ply] = c.given;
        hash_line(engine.hash, game->position, c.ply, line);
        std::vector<Move> found;
        for (int i = c.ply; line[i] != NO_MOVE; ++i) found.push_back(line[i]);
        EXPECT_EQ(line_text(found), c.expected) << c.stored;
        EXPECT_EQ(full_key(game->position), full_key(make_game(START_FEN)->position));
    }
}

}  // namespace
}  // namespace quon::test
