// Identity, options, the reading of lines, and what is written to the log.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

#include "protocol/session.h"
#include "syzygy/table_writer.h"

namespace quon::test {
namespace {

std::string last_word(const std::string& line) { return line.substr(line.rfind(' ') + 1); }

TEST(Protocol, Identity) {
    Session session(Lines{});
    const std::string speed = session.read_line();
    EXPECT_TRUE(matches(speed, R"(info string et= \d\.\d{3}, nodes= \d+, nps= \d+)")) << speed;
    // The most the engine can do, by the formula from its speed.
    const Lines lines = session.answers({"uci"});
    const Lines elo_line = lines_with(lines, "option name UCI_Elo");
    ASSERT_EQ(elo_line.size(), 1U);
    const std::string elo = last_word(elo_line[0]);
    EXPECT_NEAR(std::stod(elo), 111 * std::log(std::stod(last_word(speed)) - 20) + 1337, 1.0);
    const Lines expected = {
        "CMD: uci",
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
        "CMD: isready",
    };
    EXPECT_EQ(lines, expected);
    session.send({"quit"});
    EXPECT_EQ(session.wait().status, 0);
}

TEST(Protocol, TablebasesOfTheParameterFile) {
    const TableDirectory directory;
    directory.write("KQvK.rtbw", "");
    for (const bool named : {true, false}) {
        directory.write("quon.rc", named ? "SyzygyPath " + directory.path() + "\n" : "");
        Session session({"-nolog"}, directory.path());
        session.read_to("info string et=");
        EXPECT_EQ(session.answers({}), named ? Lines{"info string found 1 tablebases"} : Lines{});
        EXPECT_TRUE(contains(
            session.answers({"uci"}),
            "option name SyzygyPath type string default " + (named ? directory.path() : "")));
    }
}

TEST(Protocol, OptionRepliesAndNewValues) {
    Session session;
    const std::string speed = last_word(session.read_line());
    const struct {
        std::string name, value, reply, listed;  // listed: the value that "uci" tells at the end
    } cases[] = {
        {"Hash", "8", "Hash size set to 8M bytes", ""},
        {"Hash", "-7", "Hash size set to 0M bytes", ""},
        {"Hash", "3", "Hash size set to 3M bytes", "3"},
        {"Threads", "81", "Threads set to 80", ""},
        {"Threads", "no", "Threads set to 1", ""},
        {"Threads", "2", "Threads set to 2", "2"},
        {"Ponder", "false", "Ponder set to false", "false"},
        {"Contempt", "21", "Contempt set to 21", "21"},
        {"UCI_LimitStrength", "true", "UCI_LimitStrength set to true", "true"},
        {"MultiPV", "4", "MultiPV set to 4", "4"},
        {"Clear Hash", "", "Hash table cleared", ""},
        {"clear hash", "true", "", ""},
        {"MoveOverhead", "120", "MoveOverhead set to 120 ms", "120"},
        {"OwnBook", "true", "OwnBook set to true", "true"},
        {"SyzygyProbeDepth5", "9", "SyzygyProbeDepth5 set to 9", "9"},
        {"SyzygyProbeDepth6", "8", "SyzygyProbeDepth6 set to 8", "8"},
        {"No such option", "1", "", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(session.answers({"setoption name " + c.name + " value " + c.value}),
                  c.reply.empty() ? Lines{} : Lines{"info string " + c.reply});
    }
    EXPECT_EQ(session.answers({"setoption name SyzygyPath value /no/such"})[0],
              "info string SyzygyPath set to '/no/such'");
    const Lines listed = session.answers({"uci"});
    for (const auto& c : cases) {
        if (c.listed.empty()) continue;
        const Lines line = lines_with(listed, "option name " + c.name + " type ");
        ASSERT_EQ(line.size(), 1U);
        EXPECT_NE((line[0] + " ").find(" default " + c.listed + " "), std::string::npos) << line[0];
    }
    EXPECT_TRUE(contains(listed, "option name SyzygyPath type string default /no/such"));
    EXPECT_TRUE(contains(listed, "option name Log type check default false"));

    Lines replies = session.answers({"setoption name UCI_Elo value 1000"});
    ASSERT_EQ(replies.size(), 3U);
    EXPECT_EQ(replies[0], "info string UCI_Elo set to 1500");
    EXPECT_TRUE(replies[1].starts_with("info string calibration nps = " + speed.substr(0, 2)));
    EXPECT_EQ(replies[2], "info string target nps = 24");
    replies = session.answers({"setoption name UCI_Elo value 999999"});
    ASSERT_EQ(replies.size(), 3U);
    const std::string most = lines_with(session.answers({"uci"}), "option name UCI_Elo").at(0);
    EXPECT_NEAR(std::stod(last_word(replies[0])), std::stod(last_word(most)), 1.0);
    EXPECT_EQ(replies[2], "info string target nps = 1000000000");
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
    // Words that mean nothing.
    EXPECT_EQ(session.answers({"", "   ", "hello", "UCI", "GO depth 1", "perft 3", "xyzzy uci",
                               "\x01\x02\xff\xfe", "\tisready", "debug on", "register later"}),
              Lines{});
}

TEST(Protocol, LongLines) {
    Session session;
    session.read_line();
    const std::string remark = "info string long line of ";
    EXPECT_EQ(session.answers({std::string(4095, 'x')}), Lines{});
    EXPECT_EQ(session.answers({std::string(4096, 'x')}), Lines{remark + "4096 characters"});
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
    const Lines printed = session.read_to("bestmove");
    session.answers({"setoption name Log value false"});
    EXPECT_EQ(session.answers({"unlogged"}), Lines{});
    session.answers({"setoption name Log value true"});
    const std::string log = session.directory() + "/quon.log";
    const Lines logged = file_lines(log);
    EXPECT_EQ(lines_with(logged, "info string fen "),
              Lines{"info string fen rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3"});
    EXPECT_EQ(lines_with(logged, "info string ply= 1, trg_time= ").size(), 1U);
    EXPECT_TRUE(contains(logged, "CMD: go depth 4"));
    EXPECT_TRUE(contains(logged, "info string Log set to true"));
    EXPECT_FALSE(contains(logged, "info string Log set to false"));
    for (const std::string& line : lines_with(printed, "info depth")) {
        EXPECT_TRUE(contains(logged, line)) << line;
    }
    EXPECT_EQ(lines_with(logged, "bestmove"), lines_with(printed, "bestmove"));
    session.send({"quit"});
    session.wait();
    // Every start begins it afresh.
    Process quiet({"-nolog"}, session.directory());
    quiet.send({"isready", "quit"});
    EXPECT_EQ(quiet.wait().status, 0);
    ASSERT_TRUE(std::ifstream(log).good());
    EXPECT_EQ(file_lines(log), Lines{});
}

}  // namespace
}  // namespace quon::test
