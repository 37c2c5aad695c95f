// Whole searches: mates, draws, limits, threads, stops.

#include <gtest/gtest.h>

#include <algorithm>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "frontend/output.h"
#include "platform/clock.h"
#include "search/control.h"
#include "search/hash.h"
#include "support/board_support.h"
#include "support/search_support.h"

namespace quon::test {
namespace {

constexpr const char* POSITIONS[] = {
    "r1bqkb1r/pp1ppppp/2n2n2/8/3NP3/2N5/PPP2PPP/R1BQKB1R b KQkq -",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "4rrk1/ppqn1pp1/2pb4/3p2Qp/N2P2bP/1P1B1N2/P1P2PP1/3R1RK1 w - -",
    "8/4k2p/4p3/2P5/1r2P1K1/6P1/5p1P/5R2 w - -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "8/4q1k1/8/8/8/1P6/P4R2/K7 w - -",
};

constexpr struct {
    const char* fen;
    int moves;  // to checkmate
} MATES[] = {
    {"6k1/5ppp/8/8/8/8/8/R5K1 w - -", 1},
    {"k7/8/1K6/8/8/8/8/7R w - -", 1},
    {"r1bqkb1r/pppp1ppp/2n2n2/4p2Q/2B1P3/8/PPPP1PPP/RNB1K1NR w KQkq -", 1},
    {"rnbqkbnr/pppp1ppp/8/4p3/6P1/5P2/PPPPP2P/RNBQKBNR b KQkq -", 1},
    {"kbK5/pp6/1P6/8/8/8/8/R7 w - -", 2},
    {"r2qkb1r/pp2nppp/3p4/2pNN1B1/2BnP3/3P4/PPP2PPP/R2bK2R w KQkq -", 2},
    {"6k1/pp4p1/2p5/2bp4/8/P5Pb/1P3rrP/2BRRN1K b - -", 2},
    {"r1bq2r1/b4pk1/p1pp1p2/1p2pP2/1P2P1PB/3P4/1PPQ2P1/R3K2R w KQ -", 2},
    {"r5rk/5p1p/5R2/4B3/8/8/7P/7K w - -", 3},
    {"3k4/8/8/3K4/8/8/8/7R w - -", 3},
    {"2k5/8/8/8/2K5/8/8/7Q w - -", 4},
    {"6k1/8/Q7/3K4/8/8/8/8 w - -", 4},
    {"8/8/6k1/8/6K1/8/7Q/8 w - -", 5},
    {"8/8/8/5K2/1Q6/6k1/8/8 w - -", 5},
};

TEST(Search, Mates) {
    const SearchRig rig(4);
    for (const auto& c : MATES) {
        SCOPED_TRACE(c.fen);
        const int plies = 2 * c.moves - 1;
        EXPECT_TRUE(c.moves > 3 || plies_to_mate(c.fen, plies) == plies);
        const SearchResult result = SearchRig::search(c.fen, 14);
        EXPECT_EQ(result.score, 10000 - 2 * c.moves);
        EXPECT_EQ(result.line.size(), std::size_t(plies));
        EXPECT_EQ(line_problem(c.fen, result.line, true), "");
        // The same for the side that gets mated, one ply later.
        const auto game_before = make_game(c.fen);
        make_move(game_before->position, result.line.at(0));
        const std::string defended = position_to_fen(game_before->position);
        const SearchResult defence = SearchRig::search(defended, 14);
        EXPECT_EQ(defence.score, c.moves == 1 ? -9999 : 2 * c.moves - 1 - 10000);
        EXPECT_EQ(line_problem(defended, defence.line, true), "");
    }
}

TEST(Search, RootsWithoutMoves) {
    const SearchRig rig;
    const struct {
        const char* fen;
        int score;
    } cases[] = {{"7k/5Q2/6K1/8/8/8/8/8 b - -", 0},
                 {"R5k1/5ppp/8/8/8/8/8/6K1 b - -", -9999},
                 {"8/8/8/8/8/6k1/5q2/7K w - -", 0}};
    for (const auto& c : cases) {
        for (const int depth : {0, 5}) {
            const SearchResult result = SearchRig::search(c.fen, depth);
            EXPECT_EQ(result.score, c.score) << c.fen;
            EXPECT_EQ(result.line.size(), 0U);
            EXPECT_EQ(control.stop_flag, NO_LEGAL_MOVE);
        }
    }
}

TEST(Search, DepthZeroIsQuiescence) {
    const SearchRig rig;
    const struct {
        const char* fen;
        int least, most;
    } cases[] = {{"4k3/8/8/3q4/4P3/8/4P3/4K3 w - -", 50, 500},     // the queen falls
                 {"4k3/8/8/3q4/4P3/8/4P3/4K3 b - -", 500, 1500},   // she need not
                 {"4k3/8/8/8/8/8/8/q3K3 w - -", -10000, -10000}};  // in check: no score
    for (const auto& c : cases) {
        const SearchResult result = SearchRig::search(c.fen, 0);
        EXPECT_GE(thread_data(0).root_score, c.least) << c.fen;
        EXPECT_LE(thread_data(0).root_score, c.most) << c.fen;
        EXPECT_EQ(result.line.size(), 0U);
        EXPECT_EQ(result.depth, 0);
    }
}

TEST(Search, Draws) {
    constexpr const char* LOST = "3q3k/8/8/8/8/8/8/K7 w - -";
    constexpr const char* SHUFFLE = "a1a2 h8g8 a2a1 g8h8";
    constexpr const char* TWICE = "a1a2 h8g8 a2a1 g8h8 a1a2 h8g8 a2a1 g8h8";
    constexpr const char* WON = "k7/8/1K6/8/8/8/8/7R w - -";
    constexpr const char* WON_LATER = "8/8/8/3k4/8/8/8/K5Q1 w - -";
    constexpr const char* PAWN = "8/8/8/3k4/8/8/P7/K5Q1 w - -";
    const struct {
        const char* fen;
        const char* moves;
        int fifty;  // set by hand unless 0
        int least, most;
        const char* best;  // if it matters
    } cases[] = {
        {LOST, "", 0, -9000, -500, ""},
        {LOST, SHUFFLE, 0, -9000, -500, ""},  // once before is not enough next to the root
        {LOST, TWICE, 0, 0, 0, "a1a2"},
        {WON, "", 99, 9998, 9998, "h1h8"},  // mate comes before the draw
        {WON_LATER, "", 99, 0, 0, ""},
        {WON_LATER, "", 90, 0, 10000, ""},
        {PAWN, "", 99, 500, 10000, "a2"},  // a pawn move starts the count afresh
    };
    const SearchRig rig;
    for (const auto& c : cases) {
        hash_clear();
        set_game(c.fen, c.moves);
        if (c.fifty != 0) game.position.fifty = u8(c.fifty);
        const SearchResult result = SearchRig::search_game(5);
        EXPECT_GE(result.score, c.least) << c.fen << " " << c.moves << c.fifty;
        EXPECT_LE(result.score, c.most) << c.fen << " " << c.moves << c.fifty;
        EXPECT_TRUE(line_text(result.line).starts_with(c.best)) << line_text(result.line);
    }
}

TEST(Search, NodeLimit) {
    const SearchRig rig;
    for (const char* const fen : POSITIONS) {
        const u64 depth_2 = SearchRig::search(fen, 2).nodes;
        for (const u64 limit : {u64{1}, depth_2 + 100, u64{5000}, u64{20000}}) {
            limits.max_nodes = i64(limit);
            const SearchResult result = SearchRig::search(fen, 60);
            // A result of two plies is always awaited; nodes on the way back are few.
            EXPECT_GT(result.nodes, limit) << fen;
            EXPECT_LE(result.nodes, std::max(limit, depth_2) + 16) << fen << " " << limit;
            EXPECT_GE(result.depth, 2);
            EXPECT_EQ(copy_problem(thread_data(0)), "");
        }
        limits.max_nodes = 0;
    }
}

TEST(Search, IsReproducible) {
    const SearchRig rig;
    for (const char* const fen : POSITIONS) {
        const SearchResult first = SearchRig::search(fen, 7);
        SearchRig::search(POSITIONS[2], 5);
        const SearchResult second = SearchRig::search(fen, 7);
        EXPECT_EQ(first.nodes, second.nodes) << fen;
        EXPECT_EQ(line_text(first.line), line_text(second.line));
        EXPECT_EQ(first.score, second.score);
        EXPECT_EQ(line_problem(fen, second.line), "");
    }
}

TEST(Search, WorksWithoutTable) {
    const SearchRig rig(0);
    for (const char* const fen : POSITIONS) {
        const SearchResult result = SearchRig::search(fen, 5);
        EXPECT_EQ(result.depth, 5);
        EXPECT_EQ(line_problem(fen, result.line), "");
        EXPECT_EQ(thread_data(0).hash_hits, 0U);
    }
}

// The last iteration's lines: one for each of the best moves, in the order of their scores.
TEST(Search, MultiPv) {
    const SearchRig rig;
    options.output_delay = 0.0;
    const struct {
        const char* fen;
        int wanted, lines;
    } cases[] = {{"8/4q1k1/8/8/8/1P6/P4R2/K7 w - -", 3, 3},
                 {POSITIONS[3], 5, 5},
                 {"7k/8/8/8/8/8/r7/K7 w - -", 4, 2},
                 {"k7/8/8/8/8/8/5PPP/6K1 w - -", 255, 11}};
    for (const auto& c : cases) {
        options.multipv = i16(c.wanted);
        set_game(c.fen);
        const std::size_t moves = legal_moves(game.position).size();
        const std::string text = captured_output([&] { SearchRig::search_game(5); });
        std::vector<std::string> lines = split(text, '\n');
        lines.pop_back();
        const std::size_t count = std::min(moves, std::size_t(c.wanted));
        ASSERT_EQ(lines.size(), count * 5) << c.fen;
        std::vector<std::string> firsts;
        int previous = 10000;
        for (std::size_t i = 0; i < count; ++i) {
            const std::string& line = lines[4 * count + i];
            EXPECT_TRUE(line.starts_with(format("info multipv %zu depth 5 ", i + 1))) << line;
            int score = 0;
            ASSERT_EQ(std::sscanf(line.c_str() + line.find("cp "), "cp %d", &score), 1);
            EXPECT_LE(score, previous) << line;
            previous = score;
            firsts.push_back(split(line.substr(line.find(" pv ") + 4), ' ')[0]);
        }
        std::sort(firsts.begin(), firsts.end());
        EXPECT_EQ(std::unique(firsts.begin(), firsts.end()), firsts.end()) << c.fen;
    }
}

TEST(Search, SelectivityParameters) {
    using P = EvalParams;
    struct Case {
        const char* name;
        void (*set)(P&);
        bool changed = false;  // some search took another course
    } cases[] = {
        {"singular", [](P& p) { p.SingularExtension = 1; }},
        {"no null move", [](P& p) { p.NMP_depth = 99; }},
        {"null move everywhere", [](P& p) { p.NMP_depth = 0; }},
        {"no late pruning", [](P& p) { p.LMP_depth = 0; }},
        {"late pruning everywhere", [](P& p) { p.LMP_depth = 99, p.LMP_count = 0; }},
        {"no moves before late pruning", [](P& p) { p.LMP_count = -50; }},
        {"no razoring", [](P& p) { p.FP_depth = 0; }},
        {"razoring everywhere", [](P& p) { p.FP_depth = 99, p.FP_margin = -200; }},
        {"no static pruning", [](P& p) { p.SEP_depth = 0; }},
        {"static pruning everywhere", [](P& p) { p.SEP_depth = 99, p.SEP_margin = -200; }},
        {"huge margins", [](P& p) { p.SEP_margin = p.FP_margin = 32767; }},
        {"no reductions", [](P& p) { p.LMR_depth = 99; }},
        {"reductions everywhere", [](P& p) { p.LMR_depth = 0, p.LMR_strength = 32767; }},
        {"negative",
         [](P& p) { p.NMP_depth = p.LMR_depth = p.LMP_depth = -5, p.LMR_strength = -100; }},
        {"extreme", [](P& p) { p.NMP_depth = p.LMR_depth = p.LMP_depth = p.FP_depth = -32768; }},
    };
    const SearchRig rig;
    const EvalParams standard = params;
    limits.max_nodes = 30000;
    for (const char* const fen : POSITIONS) {
        params = standard;
        const SearchResult before = SearchRig::search(fen, 9);
        for (Case& c : cases) {
            params = standard;
            c.set(params);
            const SearchResult result = SearchRig::search(fen, 9);
            c.changed |=
                before.nodes != result.nodes || line_text(before.line) != line_text(result.line);
            EXPECT_GE(result.depth, 2) << c.name << " " << fen;
            EXPECT_FALSE(result.line.empty());
            EXPECT_EQ(line_problem(fen, result.line), "") << c.name << " " << fen;
            EXPECT_EQ(copy_problem(thread_data(0)), "") << c.name << " " << fen;
        }
    }
    for (const Case& c : cases) EXPECT_TRUE(c.changed) << c.name;
}

// A search that is cut short keeps the last finished result or has one of the iteration under way.
// In lost positions a score made up for the move under way would be better than all of them.
TEST(Search, InterruptedScores) {
    const SearchRig rig;
    Random random(7);
    constexpr int DEPTH = 8;
    for (const char* const fen : {"8/4q1k1/8/8/8/1P6/P4R2/K7 w - -", "3q3k/8/8/8/8/8/8/K7 w - -",
                                  "r3k2r/pppq1ppp/2n2n2/8/8/8/PPP2PPP/R3K2R w KQkq -"}) {
        limits.max_nodes = 0;
        const SearchResult full = SearchRig::search(fen, DEPTH);
        int scores[DEPTH + 1];
        Move moves[DEPTH + 1];
        u64 ends[DEPTH + 1];
        for (int depth = 2; depth <= DEPTH; ++depth) {
            scores[depth] = run.score_by_depth[depth];
            moves[depth] = run.move_by_depth[depth];
            ends[depth] = run.nodes_by_depth[depth];
            EXPECT_LT(scores[depth], -200);
        }
        const int count = scaled(150);
        for (int i = 0; i < count; ++i) {
            const u64 limit = ends[2] + random() % (full.nodes - ends[2]);
            limits.max_nodes = i64(limit);
            const SearchResult result = SearchRig::search(fen, DEPTH);
            const int under_way = int(std::upper_bound(ends + 2, ends + DEPTH, limit) - ends);
            ASSERT_TRUE(result.depth == under_way || result.depth == under_way - 1) << fen << limit;
            ASSERT_EQ(line_problem(fen, result.line), "");
            if (result.depth < under_way) {
                ASSERT_EQ(result.score, scores[result.depth]) << fen << " " << limit;
                ASSERT_EQ(result.line.at(0), moves[result.depth]);
            } else {
                ASSERT_LE(result.score, std::max(scores[under_way], scores[under_way - 1]) + 50)
                    << fen << " " << limit;
            }
        }
    }
}

class Threads : public testing::TestWithParam<int> {};

TEST_P(Threads, FindMatesAndLegalLines) {
    const SearchRig rig(4, GetParam());
    for (const auto& c : MATES) {
        if (c.moves > 3) continue;
        const SearchResult result = SearchRig::search(c.fen, 12);
        EXPECT_EQ(result.score, 10000 - 2 * c.moves) << c.fen;
        EXPECT_EQ(line_problem(c.fen, result.line, true), "") << c.fen;
    }
    const int depth = scaled(6) + 2;
    for (const char* const fen : POSITIONS) {
        const SearchResult result = SearchRig::search(fen, depth);
        EXPECT_EQ(result.depth, depth);
        EXPECT_FALSE(result.line.empty());
        EXPECT_EQ(line_problem(fen, result.line), "");
        for (int i = 0; i < GetParam(); ++i) EXPECT_EQ(copy_problem(thread_data(i)), "") << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Counts, Threads, testing::Values(1, 2, 8));

TEST(ThreadPool, StopsAtAnyMoment) {
    Random random(11);
    for (const int threads : {2, 8}) {
        const SearchRig rig(1, threads);
        for (int round = 0; round < scaled(30); ++round) {
            const char* const fen = POSITIONS[pick(random, int(std::size(POSITIONS)))];
            set_game(fen);
            SearchRig::start(60);
            sleep_ms(pick(random, 25));
            const double before = monotonic_seconds();
            control.stop_flag = round % 2 ? STOP : ABORT;
            const SearchResult result = SearchRig::result();
            EXPECT_LT(monotonic_seconds() - before, 5);
            EXPECT_EQ(result.line.empty(), result.depth == 0);
            EXPECT_EQ(line_problem(fen, result.line), "") << fen;
            EXPECT_EQ(position_to_fen(game.position), fen);
            for (int i = 0; i < threads; ++i) EXPECT_EQ(copy_problem(thread_data(i)), "") << i;
        }
    }
}

TEST(ThreadPool, ComesAndGoes) {
    const SearchRig rig(1, 1);
    for (int round = 0; round < scaled(10); ++round) {
        for (const int count : {3, 1, 8}) {
            destroy_threads();
            EXPECT_EQ(thread_total(), 0);
            ASSERT_TRUE(create_threads(count));
            EXPECT_EQ(thread_total(), count);
            EXPECT_EQ(busy_threads(), 0);
            for (int i = 0; i < count; ++i) {
                EXPECT_EQ(thread_data(i).index, i);
                EXPECT_EQ(thread_data(i).seed, u32(i) * 123);
                EXPECT_EQ(thread_data(i).jitter_range, i < 8 ? 12U : 24U);
            }
            EXPECT_EQ(SearchRig::search(POSITIONS[0], 3).depth, 3);
            if (count > 1) SearchRig::start(60);  // and they leave in the middle of a search
        }
    }
}

}  // namespace
}  // namespace quon::test
