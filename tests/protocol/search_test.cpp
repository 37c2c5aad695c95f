// Searches as a front end asks for them: every form of "go", "stop", pondering, several threads.

#include <gtest/gtest.h>

#include <set>

#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "platform/clock.h"
#include "protocol/session.h"
#include "support/text.h"

namespace quon::test {
namespace {

constexpr char INFO_LINE[] =
    R"(info (multipv \d+ )?depth \d+ seldepth \d+ score (cp -?\d+|mate -?\d+) time \d+ nodes \d+ )"
    R"(nps \d+ tbhits \d+ hashfull \d+ pv( [a-h][1-8][a-h][1-8][nbrq]?)+)";

// Exactly one "bestmove" was printed: none is left.
void expect_idle(Session& session) { EXPECT_EQ(session.answers({}), Lines{}); }

TEST(SearchSession, InfoLinesAndBestMove) {
    Session session;
    session.send({"position startpos moves e2e4", "go depth 8"});
    const Lines lines = session.read_to("bestmove");
    const Lines infos = lines_with(lines, "info depth");
    ASSERT_GE(infos.size(), 7U);
    for (const std::string& info : infos) EXPECT_TRUE(matches(info, INFO_LINE)) << info;
    EXPECT_TRUE(infos.back().starts_with("info depth 8 ")) << infos.back();
    EXPECT_TRUE(names_move(lines.back())) << lines.back();
    // The best move and the expected reply begin the last line.
    const std::string line = infos.back().substr(infos.back().find(" pv ") + 4) + " ";
    const std::string best = lines.back().substr(9, 4);
    EXPECT_TRUE(line.starts_with(best)) << line << lines.back();
    EXPECT_TRUE(lines.back().ends_with("ponder " + line.substr(5, 4))) << line << lines.back();
    expect_idle(session);
}

TEST(SearchSession, FormsOfGo) {
    Session session;
    const std::string forms =
        "go depth 5|go nodes 20000|go movetime 50|go depth 66 movetime 50|go depth 100 movetime 50|"
        "go depth 300 nodes 5000|go wtime 300 btime 300|go wtime 300 btime 300 winc 10 binc 10|"
        "go wtime 500 btime 500 movestogo 5|go wtime -100 btime -100|"
        "go wtime 0 btime 0 winc 0 binc 0 movestogo 0|go movetime -1|go movetime 0|"
        "go wtime 200 btime 200 searchmoves e2e4|go depth 3 nonsense nodes|go wtime 100 btime 100|"
        "go";  // as the clocks stand
    for (const std::string& go : split(forms, '|')) {
        const std::string best = session.best_move({"position startpos", go});
        EXPECT_TRUE(names_move(best)) << go << ": " << best;
    }
    // The depth limit stays.
    session.best_move({"go depth 5"});
    session.send({"go wtime 600000 btime 600000"});
    const Lines infos = lines_with(session.read_to("bestmove"), "info depth");
    ASSERT_FALSE(infos.empty());
    EXPECT_TRUE(infos.back().starts_with("info depth 5 ")) << infos.back();

    session.best_move({"go depth 66 movetime 1"});
    const double start = monotonic_seconds();
    session.best_move({"go movetime 300"});
    EXPECT_GE(monotonic_seconds() - start, 0.29);
    EXPECT_LT(monotonic_seconds() - start, 20);
    expect_idle(session);
}

// Full boards face to face: the first iteration's captures alone would take minutes.
TEST(SearchSession, AnswersInTimeWhereCapturesExplode) {
    constexpr const char* positions[] = {
        "8/8/rnbqkbnr/pppppppp/PPPPPPPP/RNBQKBNR/8/8 w - -",
        "rnbqkbnr/rrrrrrr1/8/8/8/8/RRRRRRR1/RNBQKBNR w KQkq -",
    };
    for (const std::string threads : {"1", "2"}) {
        Session session;
        session.send({"setoption name Threads value " + threads});
        for (const std::string position : positions) {
            for (const char* go : {"go movetime 100", "go wtime 5000 btime 5000",
                                   "go wtime 100 btime 100", "go infinite"}) {
                session.send({"position fen " + position, go});
                if (std::string_view(go) == "go infinite") session.send({"stop"});
                const double start = monotonic_seconds();
                const std::string best = session.read_to("bestmove").back();
                EXPECT_TRUE(names_move(best)) << position << " " << go << ": " << best;
                EXPECT_LT(monotonic_seconds() - start, 3) << position << " " << go;
            }
            EXPECT_TRUE(names_move(session.best_move({"go nodes 1000"})));
            session.send({"ucinewgame"});  // ends the node limit
        }
    }
}

TEST(SearchSession, IsReadyAndStopWhileSearching) {
    Session session;
    session.send({"go infinite"});
    session.read_to("info depth 4");
    for (int i = 0; i < 3; ++i) {
        session.send({"isready"});
        EXPECT_EQ(lines_with(session.read_to("readyok"), "bestmove"), Lines{});
    }
    const std::string best = session.best_move({"stop"});
    EXPECT_TRUE(names_move(best)) << best;
    expect_idle(session);
    // The last result once more, its closing line with it.
    EXPECT_EQ(session.best_move({"stop"}), best);
    expect_idle(session);
}

TEST(SearchSession, StopAtOnceAndBeforeAnySearch) {
    Session session;
    EXPECT_EQ(session.best_move({"stop"}), "bestmove null");
    for (int i = 0; i < 20; ++i) {
        const std::string best = session.best_move({"position startpos", "go infinite", "stop"});
        EXPECT_TRUE(names_move(best)) << best;
    }
    expect_idle(session);
}

TEST(SearchSession, PonderIsHeldBack) {
    Session session;
    session.answers({});
    // The search is over in no time; its report waits.
    session.send({"go ponder depth 3"});
    session.read_to("info depth 3");
    EXPECT_EQ(lines_with(session.answers({}), "bestmove"), Lines{});
    EXPECT_TRUE(session.silent_for(100));
    EXPECT_TRUE(names_move(session.best_move({"ponderhit"})));
    session.send({"go ponder depth 3"});
    session.read_to("info depth 3");
    EXPECT_TRUE(names_move(session.best_move({"stop"})));
    // Time does not count before the hit, and all of it does after.
    session.send({"go ponder movetime 100 depth 60"});
    session.read_to("info depth 2 ");
    sleep_ms(150);
    EXPECT_EQ(lines_with(session.answers({}), "bestmove"), Lines{});
    EXPECT_TRUE(names_move(session.best_move({"ponderhit"})));
    expect_idle(session);
    // Without a ponder search it means nothing.
    EXPECT_EQ(session.answers({"ponderhit"}), Lines{});
}

// Commands that end a search: each search is reported once, and the engine goes on.
TEST(SearchSession, CommandsThatEndIt) {
    Session session({"-nolog", "-hash", "8", "-threads", "2"});
    const struct {
        std::string command, reply;
    } cases[] = {
        {"go depth 3", ""},
        {"ucinewgame", ""},
        {"setoption name Hash value 4", "info string Hash size set to 4M bytes"},
        {"setoption name Threads value 3", "info string Threads set to 3"},
        {"setoption name Threads value 1", "info string Threads set to 1"},
        {"setoption name Clear Hash", "info string Hash table cleared"},
        {"setoption name SyzygyPath value <empty>", "info string SyzygyPath set to '<empty>'"},
    };
    for (const char* go : {"go infinite", "go ponder"}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(go) + ", " + c.command);
            session.send({"position startpos moves d2d4", go});
            session.read_to("info depth 3 ");
            session.send({c.command});
            EXPECT_TRUE(names_move(session.read_to("bestmove").back()));
            if (c.command.starts_with("go")) {
                EXPECT_TRUE(names_move(session.read_to("bestmove").back()));
            }
            const Lines rest = session.answers({});
            EXPECT_EQ(lines_with(rest, "bestmove"), Lines{});
            EXPECT_TRUE(c.reply.empty() || contains(rest, c.reply));
            EXPECT_TRUE(names_move(session.best_move({"go depth 4"})));
        }
    }
}

TEST(SearchSession, CommandsThatDoNotEndIt) {
    Session session;
    session.send({"go infinite"});
    session.read_to("info depth 3 ");
    const Lines replies = session.answers({"position fen 8/8/8/8/8/8/k6K/8 w - -", "uci",
                                           "setoption name MultiPV value 3", "gibberish",
                                           "setoption name Contempt value 20", "ponderhit"});
    EXPECT_EQ(lines_with(replies, "bestmove"), Lines{});
    EXPECT_TRUE(contains(replies, "uciok"));
    // The move is of the position that the search began with.
    const std::string best = session.best_move({"stop"});
    EXPECT_TRUE(matches(best, "bestmove ([a-h]2.*|[bg]1.*)")) << best;
    session.send({"quit"});
    EXPECT_EQ(session.wait().status, 0);
}

TEST(SearchSession, MultiPv) {
    Session session;
    session.answers({"setoption name MultiPV value 3"});
    session.send({"go depth 6"});
    const Lines lines = session.read_to("bestmove");
    for (int depth = 1; depth <= 6; ++depth) {
        std::set<std::string> first_moves;
        for (int pv = 1; pv <= 3; ++pv) {
            const Lines found = lines_with(lines, format("info multipv %d depth %d ", pv, depth));
            ASSERT_FALSE(found.empty()) << depth << ' ' << pv;
            EXPECT_TRUE(matches(found[0], INFO_LINE)) << found[0];
            first_moves.insert(found[0].substr(found[0].find(" pv ") + 4, 4));
        }
        EXPECT_EQ(first_moves.size(), 3U) << depth;
    }
    EXPECT_TRUE(names_move(lines.back()));
    // More lines than moves.
    session.answers({"setoption name MultiPV value 255"});
    EXPECT_TRUE(
        names_move(session.best_move({"position fen 8/8/8/8/8/6k1/8/7K w - -", "go depth 4"})));
}

TEST(SearchSession, LimitedStrengthIsSlow) {
    Session session;
    session.answers(
        {"setoption name UCI_LimitStrength value true", "setoption name UCI_Elo value 1600"});
    session.send({"go movetime 700"});
    const Lines infos = lines_with(session.read_to("bestmove"), "info depth");
    ASSERT_FALSE(infos.empty());
    // About 31 nodes a second; the first iteration is not limited.
    EXPECT_LT(std::stol(infos.back().substr(infos.back().find(" nodes ") + 7)), 500);
}

// Plays a game of the engine against itself through the session; every move must be legal.
void play_game(Session& session, int moves, const std::string& go) {
    const auto board = make_game(START_FEN);
    std::string played = "position startpos moves";
    session.answers({"ucinewgame"});
    for (int i = 0; i < moves && !legal_moves(board->position).empty(); ++i) {
        const std::string best = session.best_move({played, go});
        ASSERT_TRUE(names_move(best)) << best << " after " << played;
        const std::string move = split(best, ' ')[1];
        const Move code = parse_coordinates(board->position, move);
        ASSERT_TRUE(code != NO_MOVE && is_legal(board->position, code)) << move << " in " << played;
        make_move(board->position, code);
        played += " " + move;
    }
}

TEST(SearchSession, TwoGames) {
    const struct {
        const char* threads;
        int moves;
        const char *first, *second;
    } cases[] = {
        {"1", 30, "go movetime 10", "go wtime 1000 btime 1000 winc 10 binc 10"},
        {"2", 20, "go movetime 10", "go depth 5"},
        {"8", 12, "go movetime 20", "go nodes 3000"},
    };
    for (const auto& c : cases) {
        Session session({"-nolog", "-hash", "1", "-threads", c.threads});
        play_game(session, c.moves, c.first);
        play_game(session, c.moves, c.second);
    }
    Session without_table({"-nolog", "-hash", "0"});
    play_game(without_table, 4, "go depth 4");
    EXPECT_EQ(without_table.answers({"setoption name Hash value 4"}),
              Lines{"info string Hash size set to 4M bytes"});
    EXPECT_TRUE(names_move(without_table.best_move({"go depth 5"})));
}

TEST(SearchSession, PositionsWithoutAMove) {
    Session session;
    const struct {
        std::string position, problem;
    } cases[] = {
        {"fen R5k1/5ppp/8/8/8/8/8/6K1 b - -", ""},  // mated
        {"fen k7/2Q5/8/8/8/8/8/6K1 b - -", ""},     // stalemate
        {"fen 8/8/8/8/8/8/8/8 w - -", "White needs one king"},
        {"fen k6k/8/8/8/8/8/8/6K1 b - -", "Black needs one king"},
        {"fen P5k1/8/8/8/8/8/8/6K1 b - -", "pawn on an end rank"},
        {"fen 4k3/4Q3/8/8/8/8/8/4K3 w - -", "king can be taken"},
        {"fen qqqqqqqq/qqqq4/8/8/8/8/k7/6K1 w - -", "more than nine pieces of a kind"},
        {"fen 4k3/8/8/8/8/8/8/4K3 w - e6", "en passant without a pawn that passed"},
        {"fen", "White needs one king"},
    };
    for (const auto& c : cases) {
        session.send({"position " + c.position, "go depth 5"});
        const Lines lines = session.read_to("bestmove");
        EXPECT_EQ(lines.back(), "bestmove null") << c.position;
        EXPECT_EQ(contains(lines, "info string illegal position: " + c.problem), !c.problem.empty())
            << c.position;
    }
    // A hundred quiet plies are a draw that is still searched, a hundred and one are not.
    std::string game = "position fen 4k3/8/8/8/8/8/7R/4K3 w - - moves";
    const Lines cycle = {" h2h3", " e8f8", " h3h2", " f8e8"};
    for (int ply = 0; ply < 101; ++ply) game += cycle[std::size_t(ply) % 4];
    EXPECT_EQ(session.best_move({game, "go depth 3"}), "bestmove null");
    game.resize(game.rfind(' '));
    EXPECT_TRUE(names_move(session.best_move({game, "go depth 3"})));
    // The report of a ponder search on such a position is held back as well.
    session.send({"position fen 8/8/8/8/8/8/8/8 w - -", "go ponder"});
    EXPECT_EQ(lines_with(session.answers({}), "bestmove"), Lines{});
    EXPECT_EQ(session.best_move({"stop"}), "bestmove null");
    // Moves before an illegal one stand: White moves next.
    EXPECT_EQ(session.answers({"position startpos moves e2e4 e7e5 e1e3 g1f3"}),
              Lines{"info string illegal move e1e3"});
    const std::string best = session.best_move({"go depth 4"});
    EXPECT_TRUE(matches(best, "bestmove [a-h][1-4].*")) << best;
}

// Lines thrown together from words of the protocol and bytes that are none.
TEST(SearchSession, Garbage) {
    Session session({"-nolog", "-hash", "1"});
    const Lines commands = split(
        "position startpos|position startpos moves|position fen|go|go infinite|go movetime 5|"
        "go depth|setoption name|stop|ponderhit|ucinewgame|uci|",
        '|');
    const Lines words = split(
        "startpos|fen|moves|e2e4|e7e5|e1e8|a7a8q|depth|3|nodes|500|wtime|100|btime|movetime|"
        "ponder|infinite|@|@stop@|MultiPV|Contempt|value|Clear Hash|-1||\x80\xff|\t|w|KQkq|"
        "8/8/8/8/8/8/8/8|k7/8/8/8/8/8/8/K7|rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR|"
        "99999999999999999999",
        '|');
    Random random(20260101);
    const int blocks = scaled(100);
    int moves = 0;
    for (int block = 0; block < blocks; ++block) {
        Lines lines;
        for (int i = 0; i < 20; ++i) {
            std::string line = commands[std::size_t(pick(random, int(commands.size())))] + " ";
            for (int words_left = pick(random, 8); words_left >= 0; --words_left) {
                line += words[std::size_t(pick(random, int(words.size())))] + " ";
            }
            lines.push_back(line);
        }
        for (const std::string& reply : session.answers(lines)) moves += names_move(reply);
        ASSERT_FALSE(HasFailure()) << testing::PrintToString(lines);
    }
    EXPECT_GT(moves, blocks) << "the garbage should lead to searches";
    session.best_move({"stop"});
    session.answers({"setoption name MultiPV value 1"});
    EXPECT_TRUE(names_move(session.best_move({"position startpos", "go infinite", "stop"})));
}

}  // namespace
}  // namespace quon::test
