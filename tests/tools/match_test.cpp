// The self-play match: its texts, and a short match whose games are played over from their record.

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <sstream>

#include "board/fen.h"
#include "board/legality.h"
#include "board/make.h"
#include "book/book_record.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "harness/search_support.h"
#include "harness/tool_support.h"
#include "support/text.h"
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
    count_game(score, Outcome::BLACK_WINS, BLACK);
    count_game(score, Outcome::BLACK_WINS, BLACK);
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

// A parameter file that changes nothing but what `more` says.
std::string full_param_file(const std::string& more) {
    std::string text = more;
    const char* const types[] = {"", "pawn", "knight", "bishop", "rook", "queen", "king"};
    for (int type = PAWN; type <= KING; ++type) {
        for (const auto& [name, phase] :
             {std::pair{"_op", &Pair::op}, std::pair{"_en", &Pair::en}}) {
            text += std::string("PST_") + types[type] + name;
            for (int i = 0; i < 64; ++i) {
                text += i % 8 ? ' ' : '\n';
                text += std::to_string(eval_tables.pst[type][i ^ 56].*phase);
            }
            text += '\n';
        }
    }
    return text;
}

// A game as the match file tells it.
struct RecordedGame {
    std::string white, result;
    struct Search {
        std::string move;
        double score;
        int depth;
    };
    std::vector<Search> searches;
};

std::vector<RecordedGame> read_games(const std::string& text) {
    std::vector<RecordedGame> games;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (word == "[Event") games.emplace_back();
        if (word == "[White") words >> games.back().white;
        if (word == "[Result") words >> games.back().result;
        if (word[0] == '[' || word.back() == ']') continue;
        std::string tail;
        words >> tail;
        RecordedGame::Search search{word, 0, 0};
        EXPECT_EQ(std::sscanf(tail.c_str(), "{%lf/%d}", &search.score, &search.depth), 2) << tail;
        games.back().searches.push_back(search);
    }
    return games;
}

// The result that the rules give a search on the board, "" if the game goes on.
std::string expected_result(const RecordedGame::Search& search, const Game& board,
                            int occurrences) {
    const bool white = board.position.side == WHITE;
    const bool movable = has_legal_move(board.position);
    if (board.position.fifty >= 100 && movable) return "1/2-1/2";
    if (occurrences >= 3) return "1/2-1/2";
    if (!movable && !in_check(board.position)) return "1/2-1/2";
    if (search.score < -11) return white ? "0-1" : "1-0";
    if (search.score > 11) return white ? "1-0" : "0-1";
    return "";
}

class Match : public testing::Test {
protected:
    // Searches the board as the match does, with the mover's parameters.
    static RecordedGame::Search search(const EvalParams& player, int depth, Move& move) {
        params = player;
        derive_tables(engine);
        settings.hash_mode = 0;
        const SearchResult result = SearchRig::search_game(depth);
        move = result.line.empty() ? NO_MOVE : result.line[0];
        return {std::string(square_name[move_from(move)]) + square_name[move_to(move)],
                result.score / 100.0, result.depth};
    }

    // Plays the game over; every search is repeated.
    void check(const RecordedGame& game_record, int depth) {
        set_game(START_FEN);
        std::map<std::string, int> seen;
        std::string result;
        for (const auto& recorded : game_record.searches) {
            ASSERT_EQ(result, "") << "moves after the end";
            const bool first =
                (game_record.white == "\"Player1\"]") == (game.position.side == WHITE);
            const std::string fen = position_to_fen(game.position);
            const int occurrences = ++seen[fen.substr(0, fen.find(' ') + 2)];
            const bool drawn = occurrences >= 3 || game.position.fifty >= 100;
            const bool from_book = game.game_ply == 0;
            Move move = make_code(square_of("a2"), square_of("a3"));
            const auto own = drawn       ? RecordedGame::Search{"a1a1", 0, 0}
                             : from_book ? RecordedGame::Search{"a2a3", 0, 0}
                                         : search(first ? player1 : player2, depth, move);
            ASSERT_EQ(recorded.move, own.move) << fen;
            ASSERT_DOUBLE_EQ(recorded.score, own.score) << fen;
            ASSERT_EQ(recorded.depth, own.depth) << fen;
            result = expected_result(recorded, game, occurrences);
            if (!result.empty()) continue;
            make_move(game.position, move);
        }
        EXPECT_EQ(game_record.result, "\"" + result + "\"]");
    }

    EvalParams player1, player2;
};

// Plays at least that many games in the directory; what the program printed.
Lines play_match(const ToolDirectory& directory, int depth, int games) {
    Process match({"-match", "games.txt", "-d", std::to_string(depth), "-nolog"}, directory.path());
    Lines lines = match.read_to(format("%4d games", games));
    match.send({"isready", "quit"});
    const Ending ending = match.wait();
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.errors, "");
    lines.insert(lines.end(), ending.lines.begin(), ending.lines.end());
    EXPECT_TRUE(contains(lines, "Starting match..."));
    return lines;
}

TEST_F(Match, GamesCanBePlayedOver) {
    const ToolDirectory directory(true);
    const SearchRig rig;
    player1.queen_value = {900, 900};
    player1.LMR_strength = 150;
    directory.write("test1.rc", full_param_file("queen_value=900,900\nLMR_strength=150\n"));
    // A book with one move, the first.
    const auto opening = make_game(START_FEN);
    make_move(opening->position, make_code(square_of("a2"), square_of("a3")));
    RecordWriter book = create_records("quon.opn");
    ASSERT_TRUE(book && write_record(book, {record_key(opening->position), 0, 100, 0}));
    ASSERT_TRUE(close_records(book));
    // Games of one depth and colour are all alike.
    for (int depth = 1; depth <= 4; ++depth) {
        const Lines lines = play_match(directory, depth, scaled(4));
        const std::string text = directory.read("games.txt");
        EXPECT_TRUE(text.starts_with("[Event selfplay]\n[Game 1]\n[White \"Player")) << text;
        EXPECT_TRUE(text.ends_with("\n\n"));
        const auto games = read_games(text);
        ASSERT_GE(int(games.size()), scaled(4));
        EXPECT_EQ(lines_with(lines, "   ").size(), games.size());
        for (std::size_t i = 0; i < std::min<std::size_t>(games.size(), 8); ++i) {
            check(games[i], depth);
        }
    }
}

TEST_F(Match, CannotStart) {
    const ToolDirectory directory(true);
    const std::string unchanged = full_param_file("");
    const struct {
        std::string parameters, file;
        int status;
        std::string last_line, errors;
    } cases[] = {
        {"", "games.txt", 0, "Can't open file test1.rc", ""},
        {"pawn_value=90,110\n", "games.txt", 0, "Can't open file test1.rc", ""},
        {unchanged, "no/games.txt", 0, "can't open no/games.txt", ""},
        {unchanged, "test1.rc", 1, "loaded parameters from test1.rc",
         "quon: test1.rc would be overwritten while it is read\n"},
        {unchanged, "/dev/full", 1, "", "quon: /dev/full could not be written whole\n"},
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
        EXPECT_EQ(directory.read("test1.rc"), c.parameters);
    }
}

}  // namespace
}  // namespace quon::test
