// What chess programs and libraries rely on beyond the letter of a single command.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "harness/board_support.h"
#include "harness/process.h"
#include "platform/clock.h"

namespace quon::test {
namespace {

std::string word_behind(const std::string& line, const std::string& word) {
    const std::size_t at = line.find(" " + word + " ");
    return at == std::string::npos ? "" : split(line.substr(at + word.size() + 2), ' ')[0];
}

// The moves that a front end shows in the end, by line.
std::map<std::string, std::string> shown_moves(const Lines& lines) {
    std::map<std::string, std::string> shown;
    for (const std::string& line : lines_with(lines, "info multipv")) {
        shown[word_behind(line, "multipv")] = word_behind(line, "pv");
    }
    return shown;
}

constexpr char QUEENS[] = "position fen 6k1/5ppp/8/8/8/8/1Q3PPP/R5K1 w - -";  // mates with Ra8, Qb8

TEST(Clients, NamedRootMoves) {
    Session session;
    const struct {
        std::string position, go, best;  // best: a pattern
    } cases[] = {
        {"position startpos", "go searchmoves a2a3 h2h4 depth 6", "a2a3|h2h4"},
        {"position startpos", "go depth 6 searchmoves h2h4", "h2h4"},
        {QUEENS, "go searchmoves g2g3 b2b8 depth 5", "b2b8"},
        {QUEENS, "go searchmoves e2e4 g2g3 depth 12", "g2g3"},  // one of them is no move
        {QUEENS, "go depth 5", "a1a8|b2b8"},                    // the list is for one search
        {"position fen 4k3/8/8/8/8/8/8/4K2R w K -", "go searchmoves e1h1 depth 3", "e1g1"},
        {"position startpos moves e2e4", "go ponder searchmoves h7h5 depth 4\nponderhit", "h7h5"},
    };
    for (const char* threads : {"1", "3"}) {
        session.answers({std::string("setoption name Threads value ") + threads});
        for (const auto& c : cases) {
            const std::string best = session.best_move({c.position, c.go});
            EXPECT_TRUE(matches(best, "bestmove (" + c.best + ")( ponder .*)?")) << c.go << best;
        }
    }
    session.send({"position startpos", "go searchmoves e2e5 hello nodes 100"});
    EXPECT_TRUE(contains(session.read_to("bestmove"),
                         "info string no legal move in searchmoves e2e5 hello"));
    // A single move named is not the only one there is: its analysis goes on.
    session.send({"go searchmoves e2e4 infinite"});
    session.read_to("info depth 9 ");
    EXPECT_TRUE(session.best_move({"stop"}).starts_with("bestmove e2e4"));
    session.answers({"setoption name MultiPV value 3"});
    session.send({"go depth 5 searchmoves a2a3 b2b3"});
    std::set<std::string> moves;
    for (const auto& [place, move] : shown_moves(session.read_to("bestmove"))) moves.insert(move);
    EXPECT_EQ(moves, (std::set<std::string>{"a2a3", "b2b3"}));
}

TEST(Clients, MateInSoManyMoves) {
    Session session;
    const struct {
        std::string fen, go, score;  // score: of the closing line, a pattern
        int most_depth;
    } cases[] = {
        {"6k1/5ppp/8/8/8/8/8/R5K1 w - -", "go mate 1", "mate 1", 3},
        {"k7/8/8/2K5/8/8/8/7R w - -", "go mate 3", "mate 2", 7},
        {"8/8/8/5K2/1Q6/6k1/8/8 w - -", "go mate 5 movetime 100000", "mate 5", 11},
        {"8/8/8/5K2/1Q6/6k1/8/8 w - -", "go mate 2", "cp \\d+", 5},      // there is none
        {"k7/8/1K6/8/8/8/8/7R b - -", "go mate 1", "mate -2", 3},        // the other side's
        {"4k3/8/8/8/8/8/8/4K3 w - -", "go mate -7 wtime 1", "cp 0", 3},  // taken as 1
    };
    // What stands from before plays no part.
    session.best_move({"go depth 1"});
    session.best_move({"go movetime 1"});
    for (const auto& c : cases) {
        session.send({"position fen " + c.fen, c.go});
        const Lines infos = lines_with(session.read_to("bestmove"), "info depth");
        ASSERT_FALSE(infos.empty()) << c.fen;
        EXPECT_TRUE(matches(infos.back(), "info .* score " + c.score + " .*")) << infos.back();
        EXPECT_LE(std::stoi(word_behind(infos.back(), "depth")), c.most_depth) << infos.back();
    }
    // Nor does it leave anything behind.
    session.send({"position startpos", "go movetime 300"});
    EXPECT_FALSE(lines_with(session.read_to("bestmove"), "info depth 6 ").empty());
}

TEST(Clients, SeveralLinesStayDistinct) {
    Session session;
    session.answers({"setoption name MultiPV value 3"});
    for (int i = 0; i < 12; ++i) {
        const std::string fen = split(shared_lines("/data/perft.epd")[std::size_t(i) * 7], ';')[0];
        session.send({"ucinewgame", "position fen " + fen, "go depth 7"});
        const auto shown = shown_moves(session.read_to("bestmove"));
        std::set<std::string> moves;
        for (const auto& [place, move] : shown) moves.insert(move);
        EXPECT_EQ(moves.size(), shown.size()) << fen;
    }
}

TEST(Clients, WhatIsSaidInPlaceOfAMove) {
    Session session;
    session.read_line();
    const std::pair<std::string, Lines> cases[] = {
        {"R5k1/5ppp/8/8/8/8/8/6K1 b - -", {"info string checkmate", "bestmove null"}},
        {"k7/2Q5/8/8/8/8/8/6K1 b - -", {"info string stalemate", "bestmove null"}},
    };
    for (const auto& [fen, lines] : cases) {
        session.send({"position fen " + fen, "go depth 5"});
        EXPECT_EQ(session.read_to("bestmove"), lines);
    }
    session.send({"go movestogo -1 depth 1"});
    EXPECT_EQ(session.read_line(), "info string movestogo below 0 is ignored");
    session.read_to("bestmove");
}

TEST(Clients, TabsAndAByteOrderMark) {
    const Ending ending =
        run_to_end({"-nolog"},
                   "\xEF\xBB\xBFisready\n\tisready\nposition\tstartpos\tmoves\te2e4\n"
                   "go\tdepth\t1\n\xEF\xBB\xBFisready\n");
    EXPECT_EQ(lines_with(ending.lines, "readyok").size(), 2U);
    EXPECT_TRUE(matches(ending.lines.back(), "bestmove [a-h][78].*")) << ending.lines.back();
}

TEST(Clients, ReadyWithoutAFirstMove) {
    Session session;
    session.answers({});
    double least = 10;
    for (int i = 0; i < 3; ++i) {
        // The first move takes its time here.
        session.send({"position fen 8/8/rnbqkbnr/pppppppp/PPPPPPPP/RNBQKBNR/8/8 w - -",
                      "go infinite", "xyzzy", "isready"});
        const double start = monotonic_seconds();
        session.read_to("readyok");
        least = std::min(least, monotonic_seconds() - start);
        EXPECT_TRUE(names_move(session.best_move({"stop"})));
    }
    EXPECT_LT(least, 0.3);
}

TEST(Clients, LimitsOfAnAnalysisEndWithTheGame) {
    for (const bool given : {false, true}) {
        Session session(given ? Lines{"-nolog", "-d", "4"} : Lines{"-nolog"});
        session.best_move({"go depth 2"});
        session.best_move({"go nodes 50"});
        session.send({"ucinewgame", "go movetime 200"});
        const Lines infos = lines_with(session.read_to("bestmove"), "info depth");
        ASSERT_FALSE(infos.empty());
        const int depth = std::stoi(word_behind(infos.back(), "depth"));
        EXPECT_TRUE(given ? depth == 4 : depth > 4) << infos.back();
    }
}

TEST(Clients, WeakLevelsKeepTime) {
    Session session;
    session.send({"go infinite"});
    session.read_to("info depth 2 ");
    // The level acts only while the limit is on.
    session.send({"setoption name UCI_Elo value 1500"});
    session.read_to("info depth 7 ");
    session.best_move({"stop"});
    session.send(
        {"setoption name UCI_LimitStrength value true", "setoption name UCI_Elo value 1500"});
    session.answers({});
    for (const char* go : {"go movetime 100", "go wtime 400 btime 400 winc 20 binc 20"}) {
        for (std::size_t i = 0; i < 40; i += 10) {
            const std::string fen = split(shared_lines("/data/perft.epd")[i], ';')[0];
            session.send({"position fen " + fen, go});
            const double start = monotonic_seconds();
            const Lines lines = session.read_to("bestmove");
            EXPECT_LT(monotonic_seconds() - start, 0.4 * SLOWNESS) << fen << go;
            EXPECT_EQ(word_behind(lines_with(lines, "info depth").back(), "depth"), "2") << fen;
        }
    }
}

// Both sides of a game, with a clock as an arbiter keeps it; the plies until a flag falls.
int plies_in_time(Session& session, int most) {
    const auto board = make_game(START_FEN);
    std::string played = "position startpos moves";
    double clock[] = {0.2, 0.2};
    for (int ply = 0; ply < most && !legal_moves(board->position).empty(); ++ply) {
        const auto ms = [&](int side) { return std::to_string(int(clock[side] * 1000)); };
        const double start = monotonic_seconds();
        const std::string best =
            session.best_move({played, "go wtime " + ms(0) + " btime " + ms(1) + " winc 2 binc 2"});
        clock[ply % 2] -= monotonic_seconds() - start;
        if (clock[ply % 2] < 0) return ply;
        clock[ply % 2] += 0.002;
        const std::string move = split(best, ' ')[1];
        played += " " + move;
        make_move(board->position, parse_coordinates(board->position, move));
    }
    return most;
}

// A busy machine can take the time from one game, hardly from three.
TEST(Clients, ShortClocks) {
    const int plies = scaled(80);
    Session session({"-nolog", "-hash", "4"});
    session.answers({"setoption name MoveOverhead value 0"});
    int most = 0;
    for (int i = 0; i < 3 && most < plies; ++i) most = plies_in_time(session, plies);
    EXPECT_EQ(most, plies);
}

TEST(Clients, ConsoleLinesBelowOne) {
    Session console({"-c", "-nolog"});
    for (const char* lines : {"0", "-3"}) {
        console.send({std::string("multipv ") + lines, "go 4"});
        const std::string result = console.read_to("move= ").back();
        EXPECT_FALSE(result.starts_with("move= null")) << result;
        EXPECT_EQ(result.find("nodes= 0,"), std::string::npos) << result;
    }
}

}  // namespace
}  // namespace quon::test
