// The opening book in a game.

#include "harness/book_support.h"
#include "harness/process.h"

namespace quon::test {
namespace {

struct BookSession : testing::Test {
    BookDirectory directory;

    // A book of the positions after these moves, good for who has made the last.
    static void write_book(const Lines& games) {
        Records records;
        for (const auto& g : games) records.push_back(record_of(game_after(g)->position, 0, 9, 0));
        write_file("quon.opn", bytes_of(in_order(records)));
    }
};

const Lines E4_LINES = {"info string   move  result    wins losses  draws",
                        "info string   e2e4   100.0%       9      0      0",
                        "info string book move is e2e4", "info pv e2e4 string book weight 2.20",
                        "bestmove e2e4"};

TEST_F(BookSession, OwnBook) {
    write_book({"e2e4", "e2e4 c7c5"});
    Session session({"-nolog"}, directory.path());
    EXPECT_TRUE(names_move(session.best_move({"go depth 2"})));  // it is off
    EXPECT_EQ(session.answers({"setoption name OwnBook value true"}),
              Lines{"info string OwnBook set to true"});
    session.send({"go infinite"});
    EXPECT_EQ(session.read_to("bestmove"), E4_LINES);
    session.send({"position startpos moves e2e4", "go wtime 1000 btime 1000"});
    EXPECT_TRUE(contains(session.read_to("bestmove"), "info string book move is c7c5"));
    // Off the book it searches, and says nothing of the book.
    session.send({"position startpos moves e2e4 c7c6", "go depth 2"});
    Lines lines = session.read_to("bestmove");
    EXPECT_TRUE(names_move(lines.back())) << lines.back();
    EXPECT_EQ(lines_with(lines, "info string"), Lines{});
    // A ponder search is answered when it is asked for.
    session.send({"position startpos", "go ponder"});
    session.read_to("info pv e2e4");
    EXPECT_TRUE(session.silent_for(50));
    EXPECT_EQ(session.best_move({"ponderhit"}), "bestmove e2e4");
}

TEST_F(BookSession, Depth) {
    const std::string shuffle = "g1f3 g8f6 f3g1 f6g8 ";
    write_file("quon.rc", "BookDepth = 4\nBookVariety = 1\n");
    write_book({"", "e2e4", "g1f3", "g1f3 g8f6"});
    Session session({"-nolog"}, directory.path());
    session.send({"setoption name OwnBook value true"});
    for (const auto& [game, book] : std::initializer_list<std::pair<std::string, bool>>{
             {shuffle, true}, {shuffle + "g1f3", false}}) {
        session.send({"position startpos moves " + game, "go depth 1"});
        EXPECT_EQ(lines_with(session.read_to("bestmove"), "info string book move").empty(), !book);
    }
}

}  // namespace
}  // namespace quon::test
