// Console mode as a person leads it: searches, commands while one runs, self-play, files.

#include "harness/process.h"

namespace quon::test {
namespace {

constexpr char START[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";

struct ConsoleSession : Process {
    explicit ConsoleSession(const Lines& more = {}) : Process(arguments(more)) {
        EXPECT_TRUE(read_line().starts_with("info string et= "));
        EXPECT_EQ(read_board()[0], START);
    }
    static Lines arguments(const Lines& more) {
        Lines words = {"-c", "-hash", "1"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    // The next lines up to the end of a board.
    Lines read_board() {
        Lines lines;
        do lines.push_back(read_line());
        while (lines.back() != "white" && lines.back() != "black");
        EXPECT_EQ(read_line(), "");
        return lines;
    }
    // The next lines up to the end of a search's statistics; the line of the move.
    std::string read_summary() {
        const std::string move = read_to("move= ").back();
        const std::string number = R"(-?\d+\.?\d*)";
        EXPECT_TRUE(matches(move, "move= \\S+, time= " + number + ", score= " + number +
                                      ", nodes= \\d+, nps= \\d+K ebf= " + number))
            << move;
        const std::string hits = read_line();
        EXPECT_TRUE(matches(hits, "Hash fill= " + number + "%, Hash hits: main= " + number +
                                      "%, pawn= " + number + "%, eval= " + number + "%, TB=0K"))
            << hits;
        EXPECT_EQ(read_line(), "");
        return move;
    }
    int finish() {
        send({"quit"});
        return wait().status;
    }
};

bool names_move_played(const std::string& summary) {
    return matches(summary, "move= [a-h][1-8][a-h][1-8](=[QRBN])?, .*");
}

TEST(ConsoleSession, SearchesReportAndPlayNothing) {
    ConsoleSession session({"-nolog"});
    session.send({"go 4"});
    const Lines lines = session.read_to("Hash fill= ");
    EXPECT_EQ(lines[0], std::string("fen ") + START);
    EXPECT_EQ(lines[1], "Ply= 0, Clock= 99999.00s  Target time= 99999.00s");
    EXPECT_TRUE(matches(lines[2], R"(00\] 01\. +\d+\.\d +\d+K +-?\d+  [a-h].*)")) << lines[2];
    EXPECT_TRUE(lines[lines.size() - 3].starts_with("00] 04. ")) << lines[lines.size() - 3];
    session.send({"depth 3", "level 1 60 0", "mv"});
    EXPECT_TRUE(names_move_played(session.read_summary()));
    session.send({"go 0", "."});
    EXPECT_TRUE(names_move_played(session.read_summary())) << "analysis without a limit, ended";
    session.send({".", "bd"});
    EXPECT_EQ(session.read_line(), START) << "nothing was played, nothing is left to end";
    EXPECT_EQ(session.finish(), 0);
}

TEST(ConsoleSession, CommandsDuringASearch) {
    const struct {
        const char* line;
        bool ends;         // the search
        const char* next;  // the beginning of what follows
    } cases[] = {
        {"bd", false, "rnbqkbnr/"},
        {"sp", false, "piece values="},
        {"pv", false, "PV: "},
        {"new", true, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w"},
        {"fen 4k3/8/8/8/8/8/4P3/4K3 w - -", true, "4k3/8/"},
        {"e4", true, "2. move e4"},
        {"ev", true, "eval= "},
        {"perft 1", true, "visited "},
        {"go 1", true, "move= "},
    };
    ConsoleSession session({"-nolog", "-threads", "2"});
    for (const auto& c : cases) {
        session.send({"noise 9999", "level 1 60", "new", "d4", "d5", "c4", "undo", "go"});
        session.read_to("set level");
        for (int boards = 0; boards < 5; ++boards) session.read_board();
        session.send({c.line});
        if (!c.ends) {
            session.send({"level 9 9:09 9"});
            const Lines lines = session.read_to("set level");
            EXPECT_TRUE(lines[0].starts_with(c.next)) << c.line;
            for (const std::string& line : lines)
                EXPECT_FALSE(line.starts_with("move= ")) << c.line;
            session.send({"."});
            session.read_summary();
        } else {
            EXPECT_TRUE(names_move_played(session.read_summary())) << c.line;
            EXPECT_TRUE(session.read_line().starts_with(c.next)) << c.line;
        }
        session.send({".", "noise 9999", "level 9 9:09 9"});
        session.read_to("set level to 9 moves in 549.00 seconds, inc 9.00");
    }
    EXPECT_EQ(session.finish(), 0);
}

TEST(ConsoleSession, PlaysItself) {
    ConsoleSession session({"-nolog"});
    session.send(
        {"fen 7k/8/5K2/8/8/8/8/6R1 w - -", "level 0 100 1", "depth 6", "noise 9999", "self"});
    session.read_board();
    EXPECT_EQ(session.read_line(), "set level to 0 moves in 100.00 seconds, inc 1.00");
    // One board after every move, and a search that finds nothing at the end.
    int moves = 0;
    while (names_move_played(session.read_summary())) {
        session.read_board();
        ASSERT_LT(++moves, 60);
    }
    session.send({"ev"});
    EXPECT_TRUE(session.read_to("eval= ").back().starts_with("eval= -10000, qscore= -9999,"))
        << "mate";

    // A person who takes the board ends it.
    session.send({"new", "level 1 60", "self"});
    session.read_summary();
    session.send({"new", "depth 1", "bd"});
    session.read_to(START);
    session.send({"depth 66", "self"});
    session.send({".", "quit"});
    EXPECT_TRUE(names_move_played(session.read_summary())) << "it plays on";
    EXPECT_EQ(session.wait().status, 0);
}

TEST(ConsoleSession, TraceAndLog) {
    ConsoleSession session({"-threads", "2"});
    session.send({"trace 2", "go 3"});
    session.read_summary();
    const auto trace = [&] { return read_file(session.directory() + "/trace.txt"); };
    const std::string text = trace();
    EXPECT_TRUE(text.starts_with("\n\nSEARCH DEPTH= 1\n( 1)")) << text.substr(0, 100);
    int root_moves = 0;
    for (const std::string& line : split(text.substr(0, text.find("DEPTH= 2")), '\n')) {
        root_moves += line.starts_with("( 1)");
    }
    EXPECT_EQ(root_moves, 20);
    // Every search has its headings, the evaluation has none.
    session.send({"e4", "d5", "go 2"});
    session.read_summary();
    const std::string two = trace();
    EXPECT_NE(two.find("\n\nSEARCH DEPTH= 1\n", text.size()), std::string::npos);
    session.send({"ev"});
    session.read_to("eval= ");
    EXPECT_TRUE(trace().starts_with(two + "\n(")) << "the captures";
    // What is printed is logged, but for what was typed and for tables.
    session.send({"sp", "lmr", "pv", "level 1 1", "uci"});
    session.read_to("uciok");
    EXPECT_EQ(session.finish(), 0);
    const std::string log = "\n" + read_file(session.directory() + "/quon.log");
    const std::pair<const char*, bool> cases[] = {{"\n1. move e4\n", true},
                                                  {"\nset level to 1 moves", true},
                                                  {"\nuciok\n", true},
                                                  {"\ne4\n", false},
                                                  {"piece values", false},
                                                  {"LMR table", false},
                                                  {"PV:", false}};
    for (const auto& [line, logged] : cases) {
        EXPECT_EQ(log.find(line) != std::string::npos, logged) << line;
    }
}

// Each file is told of once, and nothing else changes; also when "quit" breaks the search off.
TEST(ConsoleSession, DiskFull) {
    for (const bool broken_off : {false, true}) {
        auto full = std::make_unique<FullDisk>(0);
        Process session({"-c"});
        full.reset();
        session.send({"save", "trace 2"});
        for (int search = 0; search < 2 && !broken_off; ++search) {
            session.send({"e4", "go 3"});
            session.read_to("Hash fill");
        }
        if (broken_off) session.send({"go"});
        session.send({"quit"});
        const Ending ending = session.wait();
        EXPECT_EQ(ending.status, 0);
        std::string expected;
        for (const char* name : {"quon.log", "tmp.pgn", "trace.txt"}) {
            expected += std::string("quon: ") + name + " could not be written whole\n";
        }
        EXPECT_EQ(ending.errors, expected) << broken_off;
    }
}

TEST(ConsoleSession, GoesOverToUci) {
    ConsoleSession session({"-nolog"});
    session.send({"isready", "e4", "uci", "isready", "e5", "perft 3", "go depth 2"});
    EXPECT_EQ(session.read_line(), "1. move e4") << "no readyok before";
    session.read_to("uciok");
    EXPECT_EQ(session.read_line(), "readyok");
    EXPECT_TRUE(names_move(session.read_to("bestmove").back()));
    EXPECT_EQ(session.finish(), 0);
}

}  // namespace
}  // namespace quon::test
