// The opening book in a game, and the console's commands for it.

#include <gtest/gtest.h>

#include "harness/book_support.h"
#include "protocol/session.h"

namespace quon::test {
namespace {

struct BookSession : testing::Test {
    BookDirectory directory;

    // A book in which White opens e2e4 and Black answers c7c5, without chance.
    void small_book() const {
        Records records;
        for (const char* moves : {"e2e4", "e2e4 c7c5"}) {
            records.push_back(record_of(game_after(moves)->position, 0, 9, 0));
        }
        write_file("quon.opn", bytes_of(in_order(records)));
    }
};

const Lines E4_LINES = {"info string   move  result    wins losses  draws",
                        "info string   e2e4   100.0%       9      0      0",
                        "info string book move is e2e4", "bestmove e2e4"};

TEST_F(BookSession, OwnBook) {
    small_book();
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
    session.read_to("info string book move is e2e4");
    EXPECT_TRUE(session.silent_for(50));
    EXPECT_EQ(session.best_move({"ponderhit"}), "bestmove e2e4");
}

TEST_F(BookSession, Depth) {
    const std::string shuffle = "g1f3 g8f6 f3g1 f6g8 ";
    write_file("quon.rc", "BookDepth = 4\nBookVariety = 1\n");
    Records records;
    for (const char* moves : {"", "e2e4", "g1f3"}) {
        records.push_back(record_of(game_after(moves)->position, 0, 9, 0));
    }
    records.push_back(record_of(game_after("g1f3 g8f6")->position, 0, 9, 0));
    write_file("quon.opn", bytes_of(in_order(records)));
    Session session({"-nolog"}, directory.path());
    session.send({"setoption name OwnBook value true"});
    for (const auto& [game, book] : std::initializer_list<std::pair<std::string, bool>>{
             {shuffle, true}, {shuffle + "g1f3", false}}) {
        session.send({"position startpos moves " + game, "go depth 1"});
        EXPECT_EQ(lines_with(session.read_to("bestmove"), "info string book move").empty(), !book);
    }
}

TEST_F(BookSession, BookThatCannotBeRead) {
    write_file("quon.rc", "QuonBook = mine.opn\n");
    Session session({"-nolog"}, directory.path());
    const Lines lines = session.answers({"setoption name OwnBook value true"});
    EXPECT_TRUE(contains(lines, "info string book file mine.opn cannot be read"));
    EXPECT_TRUE(names_move(session.best_move({"go depth 1"})));
}

TEST_F(BookSession, Console) {
    small_book();
    Session session({"-c", "-nolog"}, directory.path());
    session.read_to("info string et=");
    session.send({"book", "quit"});
    const Lines lines = session.wait().lines;
    const Lines expected = {"   move  result    wins losses  draws",
                            "   e2e4   100.0%       9      0      0", "book move is e2e4", "", ""};
    ASSERT_GE(lines.size(), expected.size());
    EXPECT_EQ(Lines(lines.end() - 5, lines.end()), expected);
}

}  // namespace
}  // namespace quon::test
