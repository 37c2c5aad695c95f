// Published move path counts.

#include "board/perft.h"

#include <gtest/gtest.h>

#include "harness/board_support.h"

namespace quon::test {
namespace {

// Checks those counts of a line "FEN ;D1 n ;D2 n ..." that are at most `bound`; at least one.
void check_counts(const std::string& line, u64 bound) {
    const std::vector<std::string> parts = split(line, ';');
    const auto game = make_game(parts[0]);
    int checked = 0;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        int depth = 0;
        unsigned long long count = 0;
        ASSERT_EQ(std::sscanf(parts[i].c_str(), "D%d %llu", &depth, &count), 2) << line;
        if (count > bound) continue;
        EXPECT_EQ(perft(game->position, depth), count) << parts[0] << "depth " << depth;
        ++checked;
    }
    EXPECT_GT(checked, 0) << line;
    EXPECT_EQ(perft(game->position, 0), 0U);
}

TEST(Perft, KnownPositions) {
    constexpr const char* LINES[] = {
        "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - ;D3 8902 ;D5 4865609",
        "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - ;D3 97862 ;D4 4085603",
        "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - ;D3 2812 ;D4 43238 ;D5 674624",
        "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - ;D3 9467 ;D4 422333",
        "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - ;D3 62379 ;D4 2103487",
        "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - ;D3 89890 ;D4 3894594",
        "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - ;D3 9483 ;D4 182838 ;D5 3605103",
        "5k2/8/8/8/8/8/8/4K2R w K - ;D4 6399 ;D6 661072",
    };
    const u64 bound = u64(std::max(scaled(5000000), 100000));  // one count of each at least
    for (const char* line : LINES) check_counts(line, bound);
}

TEST(Perft, SharedSuites) {
    for (const char* name : {"/data/perft.epd", "/data/perft-special.epd"}) {
        const std::vector<std::string> lines = shared_lines(name);
        ASSERT_GT(lines.size(), 100U) << name;
        for (const std::string& line : lines) check_counts(line, u64(scaled(1000000)));
    }
}

}  // namespace
}  // namespace quon::test
