// The search with tablebases.

#include "search/tablebases.h"

#include "engine/search_report.h"
#include "harness/search_support.h"
#include "search/score.h"
#include "syzygy/reference_tables.h"
#include "syzygy/table_writer.h"

namespace quon::test {
namespace {

class TablebaseSearch : public testing::Test {
protected:
    const SearchRig rig{1, 2};
    const LoadedTables tables;
};

// The counters of a position text are not read: the count is set on the board.
SearchResult search_with_fifty(const std::string& fen, int fifty, int depth) {
    set_game(fen);
    game.position.fifty = u8(fifty);
    return SearchRig::search_game(depth);
}

constexpr struct {
    const char* fen;
    int result;
} ROOTS[] = {
    {"8/8/8/3k4/8/8/8/KR6 w - -", TB_WIN},    {"8/8/8/3k4/8/8/8/KR6 b - -", TB_LOSS},
    {"8/8/8/3k4/8/8/8/KB6 w - -", 2},         {"8/8/4k3/8/8/2K5/3Q4/8 w - -", TB_WIN},
    {"8/4k3/8/8/2Q5/8/8/1K6 b - -", TB_LOSS}, {"8/2k5/8/8/8/3n4/3B4/3K4 w - -", 2},
};

int bound_of(int result) { return result == TB_WIN ? 9799 : result == TB_LOSS ? -9800 : 0; }

TEST_F(TablebaseSearch, TableMoveIsPlayedLateInTheCount) {
    for (const auto& c : ROOTS) {
        for (const int fifty : {3, 6, 7, 10}) {
            SCOPED_TRACE(c.fen);
            const SearchResult result = search_with_fifty(c.fen, fifty, 4);
            EXPECT_EQ(run.root_tb_result, c.result);
            if (fifty > 6) {
                EXPECT_EQ(result.score, bound_of(c.result));
                EXPECT_EQ(result.nodes, 0U);
                EXPECT_EQ(totals.tb_hits, 1U);
                EXPECT_EQ(result.line.size(), 1U);
                EXPECT_EQ(line_problem(c.fen, result.line), "");
            } else {
                EXPECT_GT(result.nodes, 0U);
                EXPECT_EQ(thread_data(engine, 1).nodes, 0U) << "workers rest";
            }
        }
    }
}

TEST_F(TablebaseSearch, WhenTablesAreAsked) {
    const std::string rook = "8/8/8/3k4/8/8/8/R3K3 w - -";
    const std::string castling = "8/8/8/3k4/8/8/8/R3K3 w Q -";
    const struct {
        std::string fen;
        int depth5, depth6, largest, depth, result;
    } cases[] = {
        {rook, 1, 2, 5, 1, TB_WIN},           {rook, 1, 2, 5, 0, NO_TB_RESULT},
        {rook, 5, 2, 5, 4, NO_TB_RESULT},     {rook, 5, 9, 5, 5, TB_WIN},
        {castling, 1, 2, 5, 9, NO_TB_RESULT}, {rook, 1, 2, 2, 9, NO_TB_RESULT},
    };
    for (const auto& c : cases) {
        settings.syzygy_probe_depth5 = i16(c.depth5);
        settings.syzygy_probe_depth6 = i16(c.depth6);
        tb_largest = c.largest;
        EXPECT_EQ(tb_wdl(settings, make_game(c.fen)->position, c.depth), c.result) << c.fen;
    }
}

// Six pieces have a depth of their own. A table that is asked is found to be empty.
TEST(TablebaseDepths, SixPieces) {
    const SearchRig rig;
    const TableDirectory directory;
    directory.write("KQNvKRB.rtbw", "");
    settings.syzygy_probe_depth5 = 2;
    settings.syzygy_probe_depth6 = 5;
    for (const int depth : {4, 5}) {
        directory.load();
        testing::internal::CaptureStderr();
        tb_wdl(settings, make_game("8/2q5/8/3k4/8/2n5/8/RBK5 w - -")->position, depth);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), depth == 5 ? "Corrupted table.\n" : "");
    }
}

TEST_F(TablebaseSearch, RootResult) {
    const std::string rook = "8/8/8/3k4/8/8/8/KR6 w - -";
    const struct {
        std::string fen;
        int fifty, depth5, result;
    } cases[] = {{rook, 10, 70, TB_WIN},
                 {rook, 10, 71, NO_TB_RESULT},
                 {"8/8/8/3k4/8/8/8/R3K3 w Q -", 10, 1, NO_TB_RESULT},
                 {rook, 90, 1, 3}};  // too late to win: a draw
    for (const auto& c : cases) {
        settings.syzygy_probe_depth5 = i16(c.depth5);
        const SearchResult result = search_with_fifty(c.fen, c.fifty, 3);
        EXPECT_EQ(run.root_tb_result, c.result) << c.fen << c.fifty;
        EXPECT_TRUE(c.result != 3 || result.score == 0);
    }
}

// Below a root with a result, moves that give it away are cut; without one, captures and pawn moves
// into the tables are scored at once.
TEST_F(TablebaseSearch, ProbesInTheTree) {
    SearchRig::search("8/8/8/3k4/8/8/8/KR6 w - -", 3);
    EXPECT_GT(totals.tb_hits, 0U) << "below a known root";
    const struct {
        const char* fen;
        int score;
    } cases[] = {
        {"8/8/3k4/7n/8/8/8/4K2R w K -", 9798},  // takes the knight, and gives up castling
        {"k7/1R6/8/8/8/8/8/K6R b - -", -9797},  // must take the rook
        {"k6n/1Q6/8/8/8/B7/8/K7 b - -", 0},     // must take the queen
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SearchRig::search(c.fen, 4).score, c.score) << c.fen;
        EXPECT_EQ(run.root_tb_result, NO_TB_RESULT) << "no table";
        EXPECT_GT(totals.tb_hits, 0U);
    }
}

// Won, drawn and lost positions of all endings: the search that plays on below a known root keeps
// the result in its move.
TEST_F(TablebaseSearch, KeepsTheResult) {
    const std::vector<ReferenceRow> rows = reference_rows();
    int kept = 0;
    for (std::size_t i = 0; i < rows.size(); i += 1 + rows.size() / std::size_t(58 * scaled(1))) {
        const ReferenceRow& row = rows[i];
        const SearchResult result = SearchRig::search(row.fen, 5);
        if (result.line.empty()) continue;
        const auto played = make_game(row.fen);
        make_move(played->position, result.line[0]);
        int success = 0;
        const int after = tb_probe_wdl(probe_position(played->position, 0), success);
        if (success == 0) continue;
        ++kept;
        EXPECT_EQ(-after, row.wdl) << row.fen << " " << line_text(result.line);
    }
    EXPECT_GT(kept, 40);
}

}  // namespace
}  // namespace quon::test
