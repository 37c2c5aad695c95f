// Every term of many positions against figures of another program.

#include <gtest/gtest.h>

#include <map>

#include "frontend/output.h"
#include "support/board_support.h"
#include "support/eval_support.h"

namespace quon::test {
namespace {

std::string squares_row(const Position& p, const EvalTrace& trace) {
    std::string row;
    for (int square = 0; square < 64; ++square) {
        if (square > 0) row += ',';
        if (p.board[square] != 0) row += std::to_string(trace.square[square]);
    }
    return row;
}

// Our value for each column of the file that the evaluation alone decides.
std::map<std::string, std::string> columns_of(const Position& p, const Evaluation& e) {
    std::map<std::string, std::string> columns = {
        {"eval", std::to_string(e.score)},
        {"stage", std::to_string(e.trace.stage)},
        {"draw_adj", format("%0.2f", e.trace.factor)},
        {"hung", square_list(e.trace.hung)},
        {"pinned", square_list(e.trace.pinned)},
        {"squares", squares_row(p, e.trace)},
    };
    const struct {
        const char* name;
        TraceTerm term;
    } totals[] = {
        {"mtl", TRACE_MATERIAL},    {"pos", TRACE_POSITIONAL},  {"pawns", TRACE_PAWNS},
        {"knights", TRACE_KNIGHTS}, {"bishops", TRACE_BISHOPS}, {"rooks", TRACE_ROOKS},
        {"queens", TRACE_QUEENS},   {"kings", TRACE_KINGS},     {"passers", TRACE_PASSERS}};
    for (const auto& total : totals) {
        const auto& sides = e.trace.total[total.term];
        columns[total.name] = format("%d,%d", sides[WHITE], sides[BLACK]);
    }
    return columns;
}

TEST(EvalReference, NoDifference) {
    const std::vector<std::string> lines = shared_lines("/reference/evaluation.csv");
    if (lines.empty()) GTEST_SKIP() << "evaluation.csv is not there";
    ASSERT_GT(lines.size(), 1000U);
    const std::vector<std::string> names = split(lines[0], ';');
    const auto state = make_eval_state();
    std::map<std::string, int> differences;
    std::size_t compared = 0;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> cells = split(lines[i], ';');
        ASSERT_EQ(cells.size(), names.size()) << lines[i];
        const auto game = make_game(cells[0]);
        const auto columns = columns_of(game->position, evaluate_traced(*state, game->position));
        for (std::size_t c = 0; c < names.size(); ++c) {
            const auto own = columns.find(names[c]);
            if (own == columns.end()) continue;
            ++compared;
            if (own->second == cells[c] || differences[names[c]]++ > 0) continue;
            ADD_FAILURE() << names[c] << " in " << cells[0] << "\n  found    " << own->second
                          << "\n  expected " << cells[c];
        }
    }
    EXPECT_EQ(compared, (lines.size() - 1) * 15);
    for (const auto& [name, count] : differences) EXPECT_EQ(count, 0) << name;
}

}  // namespace
}  // namespace quon::test
