// The self-play match: its texts, and the games of short matches.

#include "harness/book_support.h"
#include "harness/process.h"
#include "tools/match_report.h"

namespace quon::test {
namespace {

TEST(MatchReport, Statistics) {
    const struct {
        MatchScore score;
        const char* line;
    } cases[] = {
        {{1, 0, 0}, "   1 games,    1   0   0  1.000 (+/- 2.487)  "},
        {{3, 2, 4}, "   9 games,    3   2   4  0.556 (+/- 0.654)  "},
        {{200, 0, 0}, " 200 games,  200   0   0  1.000 (+/- 0.108)  "},
        {{201, 0, 0}, " 201 games,  201   0   0  1.000 (+/- 0.108) *"},
        // Of 390 games, 0.5 and 1.5 * 20 / 391 is 0.5767: 224.9 points.
        {{220, 161, 9}, " 390 games,  220 161   9  0.576 (+/- 0.077)  "},
        {{220, 160, 10}, " 390 games,  220 160  10  0.577 (+/- 0.077) *"},
        {{0, 0, 8000}, "8000 games,    0   0 8000  0.500 (+/- 0.017)  "},
    };
    for (const auto& [score, line] : cases) EXPECT_EQ(statistics_line(score), line);
}

TEST(MatchReport, GamesCountFromPlayerOne) {
    MatchScore score;
    count_game(score, Outcome::WHITE_WINS, WHITE);
    for (int i = 0; i < 2; ++i) count_game(score, Outcome::BLACK_WINS, BLACK);
    count_game(score, Outcome::WHITE_WINS, BLACK);
    for (int i = 0; i < 5; ++i) count_game(score, Outcome::DRAW, i % 2);
    EXPECT_EQ(statistics_line(score), "   9 games,    3   1   5  0.611 (+/- 0.654)  ");
}

TEST(MatchReport, GameText) {
    const Move e4 = make_code(square_of("e2"), square_of("e4"));
    const Move promotion = make_code(square_of("e7"), square_of("e8"), PROMOTE_ROOK);
    EXPECT_EQ(game_text({8000,
                         WHITE,
                         Outcome::WHITE_WINS,
                         {{e4, -7, 1}, {NO_MOVE, 0, 0}, {promotion, 9999, 12}}}),
              "[Event selfplay]\n[Game 8000]\n[White \"Player1\"]\n[Black \"Player2\"]\n"
              "[Result \"1-0\"]\ne2e4 {-0.07/1}   a1a1 {0.00/0}\ne7e8 {99.99/12}\n\n");
}

// All parameters but the square tables as they are, and Player1's contempt.
std::string param_file() {
    std::string text = "contempt=-100\n";
    for (const std::string type : {"pawn", "knight", "bishop", "rook", "queen", "king"}) {
        for (const char* phase : {"_op\n", "_en\n"}) {
            text += "PST_" + type + phase;
            for (int rank = 0; rank < 8; ++rank) text += "0 0 0 0 0 0 0 0\n";
        }
    }
    return text;
}

// With a book of one move, the first. The file was written by this program after a test had played
// such games over, searched every move again, and judged every end.
TEST(Match, Games) {
    const BookDirectory directory;
    directory.write("test1.rc", param_file());
    directory.write("quon.opn", bytes_of({record_of(game_after("a2a3")->position, 0, 100, 0)}));
    const std::pair<const char*, std::string> cases[] = {{"1", "    0   3   0  0.000"},
                                                         {"2", "    0   1   2  0.333"},
                                                         {"3", "    2   1   0  0.667"}};
    std::string games;
    for (const auto& [depth, score] : cases) {
        Process match({"-match", "games.txt", "-d", depth, "-nolog", "-seed", "1"},
                      directory.path());
        const Lines lines = match.read_to("   3 games,");
        EXPECT_TRUE(contains(lines, "Starting match..."));
        EXPECT_TRUE(lines.back().starts_with("   3 games," + score)) << lines.back();
        match.send({"quit"});
        EXPECT_EQ(match.wait().status, 0);
        const std::string text = directory.read("games.txt");
        EXPECT_TRUE(text.ends_with("\n\n")) << "the last game is whole";
        games += text.substr(0, text.find("[Event selfplay]\n[Game 4]"));
    }
    EXPECT_EQ(games, read_file(data_file("/data/match.txt")));
}

TEST(Match, CannotStart) {
    const ToolDirectory directory(true);
    const std::string good = param_file();
    const struct {
        std::string parameters, file;
        int status;
        std::string last_line, errors;
    } cases[] = {
        {"", "games.txt", 0, "Can't open file test1.rc", ""},
        {"pawn_value=90,110\n", "games.txt", 0, "Can't open file test1.rc", ""},
        {good, "no/games.txt", 0, "can't open no/games.txt", ""},
        {good, "test1.rc", 1, "loaded parameters from test1.rc",
         "quon: test1.rc would be overwritten while it is read\n"},
        {good, "/dev/full", 1, "", "quon: /dev/full could not be written whole\n"},
    };
    for (const auto& c : cases) {
        if (!c.parameters.empty()) directory.write("test1.rc", c.parameters);
        const Ending ending = directory.run({"-match", c.file, "-d", "1", "-nolog"});
        EXPECT_EQ(ending.status, c.status) << c.file;
        EXPECT_EQ(ending.errors, c.errors);
        if (!c.last_line.empty()) {
            EXPECT_EQ(ending.lines.back(), c.last_line);
        }
        EXPECT_FALSE(std::filesystem::exists("games.txt"));
    }
}

}  // namespace
}  // namespace quon::test
