// Searches as a front end asks for them: "stop", commands meanwhile, games, garbage.

#include <set>

#include "harness/engine.h"
#include "harness/process.h"
#include "platform/clock.h"

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
        }
    }
}

TEST(SearchSession, StopAtOnceAndBeforeAnySearch) {
    Session session;
    EXPECT_EQ(session.best_move({"stop"}), "bestmove null");
    std::string best;
    for (int i = 0; i < 20; ++i) {
        best = session.best_move({"position startpos", "go infinite", "stop"});
        EXPECT_TRUE(names_move(best)) << best;
    }
    expect_idle(session);
    EXPECT_EQ(session.best_move({"stop"}), best) << "the last result once more";
    expect_idle(session);
}

// Commands that end a search: each search is reported once, and the engine goes on.
TEST(SearchSession, CommandsThatEndIt) {
    Session session({"-nolog", "-hash", "8", "-threads", "2"});
    const struct {
        std::string command, reply;
    } cases[] = {
        {"go depth 3", ""},
        {"ucinewgame", ""},
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
    const Lines replies =
        session.answers({"position fen 8/8/8/8/8/8/k6K/8 w - -", "uci", "gibberish", "ponderhit"});
    EXPECT_EQ(lines_with(replies, "bestmove"), Lines{});
    EXPECT_TRUE(contains(replies, "uciok"));
    // The move is of the position that the search began with.
    const std::string best = session.best_move({"stop"});
    EXPECT_TRUE(matches(best, "bestmove ([a-h]2.*|[bg]1.*)")) << best;
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

// Plays a game of the engine against itself; `think` gives the answer to a position. Every move
// must be legal.
void play_game(int moves, const std::function<std::string(const std::string& position)>& think) {
    const auto board = make_game(START_FEN);
    std::string played = "position startpos moves";
    for (int i = 0; i < moves && !legal_moves(board->position).empty(); ++i) {
        const std::string best = think(played);
        ASSERT_TRUE(names_move(best)) << best << " after " << played;
        const std::string move = split(best, ' ')[1];
        const Move code = parse_coordinates(board->position, move);
        ASSERT_TRUE(code != NO_MOVE && is_legal(board->position, code)) << move << " in " << played;
        make_game_move(*board, code);
        played += " " + move;
    }
}

TEST(SearchSession, Games) {
    const struct {
        const char *threads, *hash;
        int moves;
        const char* go;
    } cases[] = {{"1", "1", 30, "go movetime 10"},
                 {"2", "1", 20, "go depth 5"},
                 {"8", "1", 12, "go nodes 3000"},
                 {"1", "0", 6, "go depth 4"}};
    for (const auto& c : cases) {
        Session session({"-nolog", "-hash", c.hash, "-threads", c.threads});
        for (int game = 0; game < 2; ++game) {
            session.answers({"ucinewgame"});
            play_game(c.moves, [&](const auto& p) { return session.best_move({p, c.go}); });
        }
    }
}

TEST(SearchSession, PositionsWithoutAMove) {
    Session session;
    const std::pair<std::string, std::string> cases[] = {
        {"fen R5k1/5ppp/8/8/8/8/8/6K1 b - -", ""},  // mated
        {"fen k7/2Q5/8/8/8/8/8/6K1 b - -", ""},     // stalemate
        {"fen 4k3/8/8/8/8/8/8/4K3 w - e6", "en passant without a pawn that passed"},
        {"fen", "White needs one king"},
    };
    for (const auto& [position, problem] : cases) {
        session.send({"position " + position, "go depth 5"});
        const Lines lines = session.read_to("bestmove");
        EXPECT_EQ(lines.back(), "bestmove null") << position;
        EXPECT_EQ(contains(lines, "info string illegal position: " + problem), !problem.empty());
    }
    // A hundred quiet plies are a draw that is still searched, a hundred and one are not.
    std::string game = "position fen 4k3/8/8/8/8/8/7R/4K3 w - - moves";
    const Lines cycle = {" h2h3", " e8f8", " h3h2", " f8e8"};
    for (int ply = 0; ply < 101; ++ply) game += cycle[std::size_t(ply) % 4];
    EXPECT_EQ(session.best_move({game, "go depth 3"}), "bestmove null");
    game.resize(game.rfind(' '));
    EXPECT_TRUE(names_move(session.best_move({game, "go depth 3"})));
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
    int moves = 0;
    for (int block = 0; block < scaled(100); ++block) {
        Lines lines;
        for (int i = 0; i < 20; ++i) {
            lines.push_back(pick_from(random, commands));
            for (int left = pick(random, 8); left >= 0; --left) {
                lines.back() += " " + pick_from(random, words);
            }
        }
        for (const std::string& reply : session.answers(lines)) moves += names_move(reply);
        ASSERT_FALSE(HasFailure()) << testing::PrintToString(lines);
    }
    EXPECT_GT(moves, scaled(100)) << "the garbage should lead to searches";
}

}  // namespace
}  // namespace quon::test
