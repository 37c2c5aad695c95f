// The printed breakdown of the evaluation: read back, checked against its own sums, the other side
// of the board, and figures of another program.

#include "frontend/console_commands.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <sstream>

#include "board/fen.h"
#include "board/legality.h"
#include "harness/board_support.h"
#include "harness/console_support.h"
#include "harness/engine.h"
#include "search/hash.h"
#include "search/run.h"
#include "support/text.h"

namespace quon::test {
namespace {

enum Row { MATERIAL, POSITIONAL, PAWNS, KINGS = PAWNS + 5, PASSERS, ROWS };
constexpr const char* NAMES[] = {"mtl",   "pos",    "pawns", "knights", "bishops",
                                 "rooks", "queens", "kings", "passers"};

struct Breakdown {
    int eval = 0, captures = 0, stage = 0;
    std::string factor, hung, pinned;
    int total[ROWS][2] = {};
    std::string more[2];  // pieces that a side has more of
    std::string pieces[64], values[64];
    std::string side;
};

std::string joined(std::istringstream& words) {
    std::string text;
    for (std::string word; words >> word;) text += (text.empty() ? "" : " ") + word;
    return text;
}

// Reads the text and fails the test where its form is not as it should be.
Breakdown read_breakdown(const std::string& text) {
    Breakdown b;
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    char factor[16] = "";
    std::sscanf(line.c_str(), "eval= %d, qscore= %d, stage= %d, draw_adj= %15s", &b.eval,
                &b.captures, &b.stage, factor);
    b.factor = factor;
    EXPECT_EQ(line, format("eval= %d, qscore= %d, stage= %d, draw_adj= %s", b.eval, b.captures,
                           b.stage, factor));
    std::getline(lines, line);
    EXPECT_EQ(line, "");
    for (std::getline(lines, line); line.starts_with("hung") || line.starts_with("pinned");
         std::getline(lines, line)) {
        const std::string title =
            line.starts_with("hung") ? "hung pieces on: " : "pinned pieces on :";
        EXPECT_TRUE(line.starts_with(title + "  ")) << line;
        std::istringstream words(line.substr(title.size()));
        (line.starts_with("hung") ? b.hung : b.pinned) = joined(words);
    }
    EXPECT_EQ(line, "           white    black     diff");
    for (int row = 0; row < ROWS; ++row) {
        std::getline(lines, line);
        const std::string name = format("%-11s", (std::string(NAMES[row]) + "=").c_str());
        EXPECT_TRUE(line.starts_with(name)) << line;
        int& white = b.total[row][WHITE];
        int& black = b.total[row][BLACK];
        std::sscanf(line.c_str() + name.size(), "%d %d", &white, &black);
        std::string wanted = name + format("%5d    %5d    %5d", white, black, white - black);
        if (row == MATERIAL) {
            const std::size_t colon = line.find(" :: ");
            b.more[WHITE] = line.substr(wanted.size() + 4, colon - wanted.size() - 4);
            b.more[BLACK] = line.substr(colon + 4, line.size() - colon - 5);
            wanted += "   (" + b.more[WHITE] + " :: " + b.more[BLACK] + ")";
        }
        EXPECT_EQ(line, wanted);
    }
    for (int rank = 7; rank >= 0; --rank) {
        std::getline(lines, line);
        EXPECT_EQ(line.size(), 8U * 2 + 4 + 8 * 5) << line;
        for (int file = 0; file < 8; ++file) {
            const auto at = std::size_t(make_square(file, rank));
            b.pieces[at] = line.substr(std::size_t(2 * file), 2);
            b.values[at] = line.substr(std::size_t(20 + 5 * file), 5);
        }
    }
    std::getline(lines, b.side);
    std::getline(lines, line);
    EXPECT_EQ(line, "");
    return b;
}

Breakdown breakdown(const std::string& fen) {
    (void)position_from_fen(game.position, fen);
    return read_breakdown(console("ev"));
}

struct EvalCommand : testing::Test {
    const ConsoleRig rig;
};

TEST_F(EvalCommand, SpecialPositions) {
    // The king in the middle of an edge, far from the corners of the bishop's colour:
    // 4 * (2 * 12 + 0 + 200 - 2 * 7).
    const Breakdown b = breakdown("4k3/8/8/8/8/8/8/4KB1N w - -");
    EXPECT_EQ(b.eval, 840);
    EXPECT_EQ(b.total[KINGS][WHITE], 840);
    EXPECT_EQ(b.values[E1], "  840");
    EXPECT_EQ(b.values[F1], "    0");
    EXPECT_EQ(b.more[WHITE] + "/" + b.more[BLACK], "BN/");

    console("fen 8/8/8/8/8/8/8/4K3 w - -");
    EXPECT_EQ(console("ev"), "illegal position: Black needs one king\n");
    // In check there is no evaluation.
    const Breakdown checked = breakdown("4k3/4R3/8/8/8/8/PP6/4K3 b - -");
    EXPECT_EQ(checked.eval, -10000);
    EXPECT_EQ(checked.captures, -10000);
    for (const auto& sides : checked.total) EXPECT_EQ(sides[WHITE] | sides[BLACK], 0);
    EXPECT_EQ(checked.more[WHITE], "RPP");
    EXPECT_EQ(checked.pieces[E8], " k");
    EXPECT_EQ(checked.pieces[A1], " +");
    EXPECT_EQ(checked.pieces[A8], " -");
    EXPECT_EQ(checked.values[A8], "    -");
    EXPECT_EQ(checked.side, "black");
}

TEST_F(EvalCommand, NumbersAddUp) {
    visit_random_positions(scaled(3000), 21, [&](Game& visited) {
        const Position& p = visited.position;
        const std::string fen = position_to_fen(p);
        const Breakdown b = breakdown(fen);
        if (in_check(p)) return;
        const bool lone = p.sig[WHITE] == 0 || p.sig[BLACK] == 0;
        if (!lone) {
            const int material = b.total[MATERIAL][WHITE] - b.total[MATERIAL][BLACK];
            const int positional = b.total[POSITIONAL][WHITE] - b.total[POSITIONAL][BLACK];
            const double factor = std::stod(b.factor);
            const double score = (material + positional * 154 / 128.0) * factor;
            // Each of the four totals is truncated, and so are the two halves, their blend and the
            // scaled score; the factor is printed with two digits.
            const double slack = 7 * factor + 1 + std::abs(score) / factor * 0.005;
            EXPECT_NEAR(p.side == WHITE ? b.eval : -b.eval, score, slack) << fen;
        }
        int sums[2] = {};
        for (int square = 0; square < 64; ++square) {
            const int piece = p.board[square];
            const auto at = std::size_t(square);
            EXPECT_EQ(b.values[at] == "    -", piece == 0) << fen;
            if (piece) sums[color_of(piece)] += std::atoi(b.values[at].c_str());
        }
        for (const int color : {WHITE, BLACK}) {
            int wanted = 0;
            for (int row = PAWNS; row < ROWS; ++row) wanted += b.total[row][color];
            EXPECT_EQ(sums[color], wanted) << fen;
        }
    });
}

TEST_F(EvalCommand, SameFromTheOtherSide) {
    int different = 0;
    const int count = scaled(2000);
    visit_random_positions(count, 22, [&](Game& visited) {
        const Breakdown a = breakdown(position_to_fen(visited.position));
        hash_clear(engine.hash);
        const Breakdown b = breakdown(flip_colors(visited.position));
        bool same = a.eval == b.eval && a.stage == b.stage && a.factor == b.factor;
        for (int row = 0; row < ROWS; ++row) {
            same &= a.total[row][WHITE] == b.total[row][BLACK];
            same &= a.total[row][BLACK] == b.total[row][WHITE];
        }
        for (int square = 0; square < 64; ++square) {
            same &= a.values[square] == b.values[square ^ 56];
        }
        same &= a.more[WHITE] == b.more[BLACK] && a.more[BLACK] == b.more[WHITE];
        same &= a.side != b.side;
        different += !same;
    });
    // Exchanges may choose among equal attackers by their squares.
    EXPECT_LE(different, count / 1000 + 1);
}

TEST_F(EvalCommand, FiguresOfAnotherProgram) {
    expect_reference("evaluation", [&](const Position& p) {
        hash_clear(engine.hash);
        const Breakdown b = breakdown(position_to_fen(p));
        std::vector<std::string> cells = {std::to_string(b.eval),
                                          std::to_string(b.captures),
                                          std::to_string(b.stage),
                                          b.factor,
                                          b.hung,
                                          b.pinned};
        for (const auto& sides : b.total) {
            cells.push_back(format("%d,%d", sides[WHITE], sides[BLACK]));
        }
        std::string squares;
        for (std::size_t square = 0; square < 64; ++square) {
            if (square > 0) squares += ',';
            if (b.values[square] != "    -") squares += std::to_string(std::stoi(b.values[square]));
        }
        cells.push_back(squares);
        return cells;
    });
}

}  // namespace
}  // namespace quon::test
