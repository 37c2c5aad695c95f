// Searches against figures of another program: every iteration's score, node count and line.

#include <gtest/gtest.h>

#include <map>

#include "board/move_text.h"
#include "frontend/output.h"
#include "support/board_support.h"
#include "support/search_support.h"

namespace quon::test {
namespace {

constexpr int SHARDS = 4;
constexpr int FRESH_DEPTH = 6;  // up to here each depth has a search of its own

struct Iteration {
    int score;
    u64 nodes;
    std::string line;
};

struct ReferenceSearch {
    std::string fen;
    std::map<int, Iteration> iterations;
    std::string end;
};

std::vector<ReferenceSearch> read_searches() {
    std::vector<ReferenceSearch> searches;
    const std::vector<std::string> lines = shared_lines("/reference/search.csv");
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> cells = split(lines[i], ';');
        if (searches.empty() || searches.back().fen != cells[0])
            searches.push_back({cells[0], {}, ""});
        ReferenceSearch& search = searches.back();
        if (cells[1] == "end") {
            search.end = cells[2];
        } else {
            search.iterations[std::stoi(cells[1])] = {std::stoi(cells[2]), std::stoull(cells[3]),
                                                      cells[4]};
        }
    }
    return searches;
}

std::string full_row(const SearchResult& r) {
    return format("%d;%llu;%s", r.score, static_cast<unsigned long long>(r.nodes),
                  line_text(r.line).c_str());
}

std::string full_row(const Iteration& r) {
    return format("%d;%llu;%s", r.score, static_cast<unsigned long long>(r.nodes), r.line.c_str());
}

// What the record of a finished search says about one of its iterations.
std::string recorded_row(int depth) {
    return format("%d;%llu;%s", int(run.score_by_depth[depth]),
                  static_cast<unsigned long long>(run.nodes_by_depth[depth].load()),
                  move_to_text(run.move_by_depth[depth]).c_str());
}

std::string recorded_row(const Iteration& r) {
    return full_row({r.score, r.nodes, r.line.substr(0, r.line.find(' '))});
}

std::string end_row(const SearchResult& r) {
    return format("bestmove %s ponder %s score %d nodes %llu", move_to_text(r.line.at(0)).c_str(),
                  move_to_text(r.line.size() > 1 ? r.line[1] : NO_MOVE).c_str(), r.score,
                  static_cast<unsigned long long>(r.nodes));
}

class SearchReference : public testing::TestWithParam<int> {
protected:
    // Calls `compare` on this shard's searches.
    void for_each(void (*compare)(const ReferenceSearch&)) {
        const std::vector<ReferenceSearch> searches = read_searches();
        if (searches.empty()) GTEST_SKIP() << "search.csv is not there";
        ASSERT_GE(searches.size(), 100U);
        const int count = scaled(double(searches.size()) / SHARDS);
        for (int i = 0; i < count && !HasFailure(); ++i) {
            const ReferenceSearch& search = searches[std::size_t(i * SHARDS + GetParam())];
            SCOPED_TRACE(search.fen);
            compare(search);
        }
    }
};

TEST_P(SearchReference, FreshSearchForEachDepth) {
    const SearchRig rig(4);
    for_each([](const ReferenceSearch& reference) {
        for (const auto& [depth, iteration] : reference.iterations) {
            if (depth > FRESH_DEPTH) break;
            ASSERT_EQ(full_row(SearchRig::search(reference.fen, depth)), full_row(iteration))
                << "depth " << depth;
        }
    });
}

TEST_P(SearchReference, DeepSearch) {
    const SearchRig rig(64);  // the figures depend on it
    for_each([](const ReferenceSearch& reference) {
        const SearchResult result = SearchRig::search(reference.fen, 10);
        EXPECT_EQ(run.main_done_depth, reference.iterations.rbegin()->first);
        for (const auto& [depth, iteration] : reference.iterations) {
            ASSERT_EQ(recorded_row(depth), recorded_row(iteration)) << "depth " << depth;
        }
        ASSERT_EQ(full_row(result), full_row(reference.iterations.rbegin()->second));
        ASSERT_EQ(end_row(result), reference.end);
    });
}

INSTANTIATE_TEST_SUITE_P(Shards, SearchReference, testing::Range(0, SHARDS));

TEST(BenchmarkReference, NoDifference) {
    const std::vector<std::string> lines = shared_lines("/reference/bench.csv");
    if (lines.empty()) GTEST_SKIP() << "bench.csv is not there";
    ASSERT_GT(lines.size(), 10U);
    const SearchRig rig(64);
    const int count = scaled(20);
    for (int position = 0; position < count; ++position) {
        if (position == 9) continue;  // the same as position 3
        SearchRig::search(benchmark[position], 10);
        for (int depth = 1; depth <= 10; ++depth) {
            const std::vector<std::string> cells = split(lines[std::size_t(depth)], ';');
            ASSERT_EQ(std::to_string(run.nodes_by_depth[depth].load()),
                      cells[std::size_t(position) + 1])
                << "position " << position << ", depth " << depth;
        }
    }
}

TEST(QuiescenceReference, NoDifference) {
    const std::vector<std::string> lines = shared_lines("/reference/evaluation.csv");
    if (lines.empty()) GTEST_SKIP() << "evaluation.csv is not there";
    ASSERT_GT(lines.size(), 1000U);
    const SearchRig rig(1);
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> cells = split(lines[i], ';');
        set_game(cells[0]);
        SearchRig::search_game(0);
        ASSERT_EQ(std::to_string(thread_data(0).root_score), cells[2]) << cells[0];
    }
}

// The same other program's totals, for where its files are missing.
TEST(BenchmarkSignature, Depth6) {
    const SearchRig rig(64);
    u64 total = 0;
    for (const char* const fen : benchmark) total += SearchRig::search(fen, 6).nodes;
    EXPECT_EQ(total, 245952U);
}

}  // namespace
}  // namespace quon::test
