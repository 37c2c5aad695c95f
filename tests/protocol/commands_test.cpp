// Identity, options, the reading of lines, and what is written to the log.

#include "harness/process.h"
#include "syzygy/table_writer.h"

namespace quon::test {
namespace {

TEST(Protocol, Identity) {
    Session session(Lines{});
    EXPECT_EQ(session.read_line(), "info string et= 0.000, nodes= 0, nps= 1000000");
    const Lines lines = session.answers({"uci"});
    const Lines expected = {
        "CMD: uci",
        "id name Quon 3.60",
        "id author Marovel",
        "option name Hash type spin default 64 min 0 max 8192",
        "option name Threads type spin default 1 min 1 max 80",
        "option name Ponder type check default true",
        "option name Contempt type spin default 0 min -150 max 150",
        "option name UCI_LimitStrength type check default false",
        // The most that the engine can do: 111 * log(1000000 - 20) + 1337, rounded.
        "option name UCI_Elo type spin default 2871 min 1500 max 2871",
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
    const std::string long_path(129, 'p');
    const std::string elo = "UCI_Elo set to %\ncalibration nps = 1000000\ntarget nps = ";
    const std::string no_tables = "\nfound 0 tablebases";
    const struct {
        std::string name, value, reply;  // "" if there is none; % stands for the value
        std::string listed = "";         // the value that "uci" tells at the end
    } cases[] = {
        {"Hash", "-7", "Hash size set to 0M bytes"},
        {"Hash", "3", "Hash size set to %M bytes", "3"},
        {"Threads", "81", "Threads set to 80"},
        {"Threads", "no", "Threads set to 1"},
        {"Threads", "2", "Threads set to %", "2"},
        {"Ponder", "True", "Ponder set to false", "false"},
        {"Contempt", "-151", "Contempt set to -150"},
        {"Contempt", "999999999999999999999", "Contempt set to 150"},
        {"Contempt", "21", "Contempt set to %", "21"},
        {"UCI_LimitStrength", "true", "UCI_LimitStrength set to %", "true"},
        {"UCI_Elo", "1500", elo + "24"},
        {"UCI_Elo", "2841", elo + "766489"},  // below 0.99 of the most
        {"UCI_Elo", "2842",
         "UCI_Elo set to 2870" + elo.substr(elo.find('\n')) + "1000000000"},  // above it: no limit
        {"MultiPV", "256", "MultiPV set to 255"},
        {"MultiPV", "4", "MultiPV set to %", "4"},
        {"Clear Hash", "", "Hash table cleared"},
        {"clear hash", "true", ""},
        {"MoveOverhead", "5001", "MoveOverhead set to 5000 ms"},
        {"MoveOverhead", "120", "MoveOverhead set to % ms", "120"},
        {"OwnBook", "true", "OwnBook set to %", "true"},
        {"SyzygyPath", "", "SyzygyPath set to '.'" + no_tables},
        {"SyzygyPath", long_path + "q", "SyzygyPath set to '" + long_path + "'" + no_tables},
        {"SyzygyPath", "<empty>", "SyzygyPath set to '%'", "<empty>"},
        {"SyzygyProbeDepth5", "0", "SyzygyProbeDepth5 set to 1", "1"},
        {"SyzygyProbeDepth6", "101", "SyzygyProbeDepth6 set to 100", "100"},
        {std::string(4000, 'n'), "1", ""},
    };
    for (const auto& c : cases) {
        Lines expected = split(c.reply, '\n');
        if (c.reply.empty()) expected.clear();
        for (std::string& line : expected) {
            const std::size_t place = line.find('%');
            if (place != std::string::npos) line.replace(place, 1, c.value);
            line.insert(0, "info string ");
        }
        EXPECT_EQ(session.answers({"setoption name " + c.name + " value " + c.value}), expected);
    }
    const Lines listed = session.answers({"uci"});
    for (const auto& c : cases) {
        if (c.listed.empty()) continue;
        const Lines line = lines_with(listed, "option name " + c.name + " type ");
        ASSERT_EQ(line.size(), 1U);
        EXPECT_NE((line[0] + " ").find(" default " + c.listed + " "), std::string::npos) << line[0];
    }
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
    EXPECT_EQ(session.answers({"", "   ", "UCI", "xyzzy uci", "\x01\xff", "debug on"}), Lines{});
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
    EXPECT_TRUE(names_move(session.best_move({"position startpos moves e2e4", "go depth 2"})));
}

TEST(Protocol, LogHoldsWhatIsPrinted) {
    Session session(Lines{});
    session.send({"isready", "position startpos moves e2e4", "go depth 4"});
    const Lines printed = session.read_to("bestmove");
    session.answers({"setoption name Log value false"});
    EXPECT_EQ(session.answers({"unlogged"}), Lines{});
    session.answers({"setoption name Log value true"});
    const std::string log = session.directory() + "/quon.log";
    const Lines logged = split(read_file(log), '\n');
    for (const char* line :
         {"info string fen rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3",
          "CMD: go depth 4", "info string Log set to true"}) {
        EXPECT_EQ(lines_with(logged, line), Lines{line});
    }
    EXPECT_EQ(lines_with(logged, "info string ply= 1, trg_time= ").size(), 1U);
    EXPECT_FALSE(contains(logged, "info string Log set to false"));
    for (const char* kind : {"info depth", "bestmove"}) {
        EXPECT_EQ(lines_with(logged, kind), lines_with(printed, kind));
    }
    session.send({"quit"});
    session.wait();
    // Every start begins it afresh.
    Process quiet({"-nolog"}, session.directory());
    quiet.send({"quit"});
    EXPECT_EQ(quiet.wait().status, 0);
    EXPECT_TRUE(std::filesystem::is_empty(log));
}

}  // namespace
}  // namespace quon::test
