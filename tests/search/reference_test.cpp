// Searches against figures of another program: every iteration's score, node count and line.

#include "harness/search_support.h"
#include "tools/bench.h"

namespace quon::test {
namespace {

constexpr int SHARDS = 4;
constexpr int FRESH_DEPTH = 3;  // up to here each depth has a search of its own

using Cells = Lines;

std::string row(int score, u64 nodes, const std::string& line) {
    return std::to_string(score) + " " + std::to_string(nodes) + " " + line;
}

std::string row(const SearchResult& r) { return row(r.score, r.nodes, line_text(r.line)); }

// Compares an iteration: fen, depth, score, nodes so far and line.
void compare_fresh(const Cells& cells) {
    ASSERT_EQ(row(SearchRig::search(cells[0], std::stoi(cells[1]))),
              row(std::stoi(cells[2]), std::stoull(cells[3]), cells[4]));
}

// Compares a whole search to depth 10 with its iterations, the last of which is its end.
void compare_deep(const std::vector<Cells>& iterations) {
    const SearchResult result = SearchRig::search(iterations[0][0], 10);
    const std::size_t done = iterations.size() - 1;
    ASSERT_EQ(run.main_done_depth, int(done));
    for (std::size_t i = 1; i <= done; ++i) {
        const Cells& cells = iterations[i - 1];
        ASSERT_EQ(row(run.score_by_depth[int(i)], run.nodes_by_depth[int(i)],
                      move_to_text(run.move_by_depth[int(i)])),
                  row(std::stoi(cells[2]), std::stoull(cells[3]), split(cells[4], ' ')[0]))
            << "depth " << i;
    }
    ASSERT_EQ(line_text(result.line), iterations[done - 1][4]);
    const Move ponder = result.line.size() > 1 ? result.line[1] : NO_MOVE;
    ASSERT_EQ(format("bestmove %s ponder %s score %d nodes %llu",
                     move_to_text(result.line.at(0)).c_str(), move_to_text(ponder).c_str(),
                     result.score, static_cast<unsigned long long>(result.nodes)),
              iterations[done][2]);
}

class SearchReference : public testing::TestWithParam<int> {};

TEST_P(SearchReference, NoDifference) {
    const Lines lines = shared_lines("/reference/search.csv");
    const SearchRig rig(64);  // the figures depend on it
    std::vector<Cells> iterations;
    int searches = 0;
    for (std::size_t i = 1; i < lines.size() && !HasFailure(); ++i) {
        iterations.push_back(split(lines[i], ';'));
        if (iterations.back()[1] != "end") continue;
        SCOPED_TRACE(iterations[0][0]);
        if (searches++ % SHARDS == GetParam() && searches <= scaled(200)) {
            for (const Cells& cells : iterations) {
                if (cells[1] != "end" && std::stoi(cells[1]) <= FRESH_DEPTH) compare_fresh(cells);
            }
            compare_deep(iterations);
        }
        iterations.clear();
    }
    EXPECT_TRUE(HasFailure() || searches >= 60);
}

INSTANTIATE_TEST_SUITE_P(Shards, SearchReference, testing::Range(0, SHARDS));

TEST(QuiescenceReference, NoDifference) {
    const Lines lines = shared_lines("/reference/evaluation.csv");
    ASSERT_GT(lines.size(), 200U);
    const SearchRig rig(1);
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const Cells cells = split(lines[i], ';');
        set_game(cells[0]);
        SearchRig::search_game(0);
        ASSERT_EQ(std::to_string(thread_data(engine, 0).root_score), cells[2]) << cells[0];
    }
}

// The nodes up to the end of every iteration.
TEST(Bench, EveryPositionAtEveryDepth) {
    const Lines rows = shared_lines("/reference/bench.csv");
    const SearchRig rig(64);
    const int last = scaled(10);
    for (int i = 0; i < BENCH_POSITIONS; ++i) {
        const u64 nodes = SearchRig::search(bench_positions[i], last).nodes;
        for (int depth = 1; depth <= last; ++depth) {
            ASSERT_EQ(std::to_string(depth < last ? run.nodes_by_depth[depth].load() : nodes),
                      split(rows.at(std::size_t(depth)), ';').at(std::size_t(i) + 1))
                << "position " << i << " depth " << depth;
        }
    }
}

}  // namespace
}  // namespace quon::test
