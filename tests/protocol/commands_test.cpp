// Identity, options, the reading of lines, and what is written to the log.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

#include "protocol/session.h"

namespace quon::test {
namespace {

Lines option_list(const std::string& elo) {
    return {
        "id name Quon 3.60",
        "id author Marovel",
        "option name Hash type spin default 64 min 0 max 8192",
        "option name Threads type spin default 1 min 1 max 80",
        "option name Ponder type check default true",
        "option name Contempt type spin default 0 min -150 max 150",
        "option name UCI_LimitStrength type check default false",
        "option name UCI_Elo type spin default " + elo + " min 1500 max " + elo,
        "option name MultiPV type spin default 1 min 1 max 255",
        "option name Clear Hash type button",
        "option name MoveOverhead type spin default 50 min 0 max 5000",
        "option name OwnBook type check default false",
        "option name Log type check default true",
        "option name SyzygyPath type string default ",
        "option name SyzygyProbeDepth5 type spin default 1 min 1 max 100",
        "option name SyzygyProbeDepth6 type spin default 2 min 1 max 100",
        "uciok",
    };
}

// The upper end of UCI_Elo in the "uci" reply.
std::string announced_elo(const Lines& lines) {
    const Lines found = lines_with(lines, "option name UCI_Elo");
    return found.empty() ? std::string() : found[0].substr(found[0].rfind(' ') + 1);
}

double announced_nps(const std::string& line) { return std::stod(line.substr(line.rfind(' '))); }

TEST(Protocol, Identity) {
    Session session(Lines{});
    const std::string speed = session.read_line();
    EXPECT_TRUE(matches(speed, R"(info string et= \d\.\d{3}, nodes= \d+, nps= \d+)")) << speed;
    Lines lines = session.answers({"uci"});
    // The most the engine can do, by the formula from its speed.
    const std::string elo = announced_elo(lines);
    EXPECT_NEAR(std::stod(elo), 111 * std::log(announced_nps(speed) - 20) + 1337, 1.0);
    Lines expected = option_list(elo);
    expected.insert(expected.begin(), "CMD: uci");
    expected.emplace_back("CMD: isready");
    EXPECT_EQ(lines, expected);
    session.send({"quit"});
    EXPECT_EQ(session.wait().status, 0);
}

TEST(Protocol, OptionRepliesAndNewValues) {
    Session session;
    const std::string speed = session.read_line();
    const struct {
        std::string option;
        Lines replies;
    } cases[] = {
        {"Hash value 8", {"info string Hash size set to 8M bytes"}},
        {"Hash value -7", {"info string Hash size set to 0M bytes"}},
        {"Hash value 3", {"info string Hash size set to 3M bytes"}},
        {"Threads value 81", {"info string Threads set to 80"}},
        {"Threads value 80", {"info string Threads set to 80"}},
        {"Threads value no", {"info string Threads set to 1"}},
        {"Threads value 2", {"info string Threads set to 2"}},
        {"Ponder value false", {"info string Ponder set to false"}},
        {"Contempt value 21", {"info string Contempt set to 21"}},
        {"UCI_LimitStrength value true", {"info string UCI_LimitStrength set to true"}},
        {"MultiPV value 4", {"info string MultiPV set to 4"}},
        {"Clear Hash", {"info string Hash table cleared"}},
        {"clear hash", {}},
        {"clear hash value true", {}},
        {"MoveOverhead value 120", {"info string MoveOverhead set to 120 ms"}},
        {"OwnBook value true", {"info string OwnBook set to true"}},
        {"SyzygyProbeDepth5 value 9", {"info string SyzygyProbeDepth5 set to 9"}},
        {"SyzygyProbeDepth6 value 8", {"info string SyzygyProbeDepth6 set to 8"}},
        {"No such option value 1", {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(session.answers({"setoption name " + c.option}), c.replies) << c.option;
    }

    Lines replies = session.answers({"setoption name UCI_Elo value 1000"});
    ASSERT_EQ(replies.size(), 3U);
    EXPECT_EQ(replies[0], "info string UCI_Elo set to 1500");
    EXPECT_EQ(replies[1].substr(0, 32),
              "info string calibration nps = " + speed.substr(speed.rfind(' ') + 1, 2));
    EXPECT_EQ(replies[2], "info string target nps = 24");

    EXPECT_EQ(session.answers({"setoption name SyzygyPath value /no/such"})[0],
              "info string SyzygyPath set to '/no/such'");

    replies = session.answers({"uci"});
    Lines expected = option_list(announced_elo(replies));
    const struct {
        std::size_t line;
        std::string text;
    } changed[] = {
        {2, "option name Hash type spin default 3 min 0 max 8192"},
        {3, "option name Threads type spin default 2 min 1 max 80"},
        {4, "option name Ponder type check default false"},
        {5, "option name Contempt type spin default 21 min -150 max 150"},
        {6, "option name UCI_LimitStrength type check default true"},
        {8, "option name MultiPV type spin default 4 min 1 max 255"},
        {10, "option name MoveOverhead type spin default 120 min 0 max 5000"},
        {11, "option name OwnBook type check default true"},
        {12, "option name Log type check default false"},
        {13, "option name SyzygyPath type string default /no/such"},
        {14, "option name SyzygyProbeDepth5 type spin default 9 min 1 max 100"},
        {15, "option name SyzygyProbeDepth6 type spin default 8 min 1 max 100"},
    };
    for (const auto& change : changed) expected[change.line] = change.text;
    EXPECT_EQ(replies, expected);

    replies = session.answers({"setoption name UCI_Elo value 999999"});
    ASSERT_EQ(replies.size(), 3U);
    const double elo = std::stod(announced_elo(session.answers({"uci"})));
    EXPECT_NEAR(std::stod(replies[0].substr(replies[0].rfind(' '))), elo, 1.0);
    EXPECT_EQ(replies[2], "info string target nps = 1000000000");
}

TEST(Protocol, WordsThatMeanNothing) {
    Session session;
    EXPECT_EQ(session.answers({"", "   ", "hello", "UCI", "GO depth 1", "perft 3", "xyzzy uci",
                               "\x01\x02\xff\xfe", "\tisready", "debug on", "register later"}),
              Lines{});
}

TEST(Protocol, LineEnds) {
    Session session;
    session.read_line();
    // Two commands in a line, carriage returns, zero bytes, and a line that arrives in pieces.
    const std::string zero(1, '\0');
    session.send_bytes("isready@isready\nisready\r\nisready" + zero + "isready\n\n\r\n@@\n" + zero +
                       "isre");
    for (int i = 0; i < 5; ++i) EXPECT_EQ(session.read_line(), "readyok");
    EXPECT_TRUE(session.silent_for(50));
    session.send_bytes("ady");
    EXPECT_TRUE(session.silent_for(50));
    session.send_bytes("\n");
    EXPECT_EQ(session.read_line(), "readyok");
}

TEST(Protocol, LongLines) {
    Session session;
    session.read_line();
    const std::string remark = "info string long line of ";
    EXPECT_EQ(session.answers({std::string(4095, 'x')}), Lines{});
    EXPECT_EQ(session.answers({std::string(4096, 'x')}), Lines{remark + "4096 characters"});
    EXPECT_EQ(session.answers({"setoption name " + std::string(9981, 'n') + " value"}),
              Lines{remark + "10002 characters"});
    EXPECT_EQ(session.answers({"go " + std::string(10000, ' ') + "infinite", "stop"})[0],
              remark + "10011 characters");
    EXPECT_EQ(session.answers({std::string(70000, 'x')}),
              Lines{"info string line cut at 65535 characters"});
    // A game of more moves than the record holds is followed to its end.
    std::string game = "position startpos moves";
    for (int i = 0; i < 1250; ++i) game += " g1f3 g8f6 f3g1 f6g8";
    EXPECT_EQ(session.answers({game + " e2e4 e7e5", "position"}),
              Lines{remark + "25033 characters"});
    EXPECT_EQ(session.answers({game + " e2e4 e2e5"})[1], "info string illegal move e2e5");
    EXPECT_TRUE(names_move(session.best_move({"position startpos moves e2e4", "go depth 2"})));
}

Lines file_lines(const std::string& path) {
    Lines lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

TEST(Protocol, LogHoldsWhatIsPrinted) {
    Session session(Lines{});
    session.send({"isready", "position startpos moves e2e4", "go depth 4"});
    Lines printed = session.read_to("bestmove");
    for (const Lines& more :
         {session.answers({"setoption name Log value false"}), session.answers({"unlogged"}),
          session.answers({"setoption name Log value true"})}) {
        printed.insert(printed.end(), more.begin(), more.end());
    }
    Lines logged = file_lines(session.directory() + "/quon.log");
    const Lines own = lines_with(logged, "info string fen ");
    EXPECT_EQ(own,
              Lines{"info string fen rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3"});
    EXPECT_EQ(lines_with(logged, "info string ply= 1, trg_time= ").size(), 1U);
    EXPECT_TRUE(contains(logged, "CMD: go depth 4"));
    EXPECT_TRUE(contains(logged, "info string Log set to true"));
    EXPECT_FALSE(contains(logged, "info string Log set to false"));
    EXPECT_FALSE(contains(printed, "CMD: unlogged"));
    for (const std::string& line : lines_with(printed, "info depth")) {
        EXPECT_TRUE(contains(logged, line)) << line;
    }
    EXPECT_EQ(lines_with(logged, "bestmove"), lines_with(printed, "bestmove"));
}

TEST(Protocol, LogStartsAfresh) {
    Session session(Lines{});
    const std::string log = session.directory() + "/quon.log";
    session.send({"quit"});
    EXPECT_EQ(session.wait().status, 0);
    const Lines first = file_lines(log);
    EXPECT_EQ(first.size(), 2U);
    Process quiet({"-nolog"}, session.directory());
    quiet.send({"isready", "quit"});
    EXPECT_EQ(quiet.wait().status, 0);
    ASSERT_TRUE(std::ifstream(log).good());
    EXPECT_EQ(file_lines(log), Lines{});
}

}  // namespace
}  // namespace quon::test
