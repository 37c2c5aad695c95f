// Console commands that set up positions, walk through the game, and keep it in files.

#include "engine/report.h"
#include "harness/console_support.h"

namespace quon::test {
namespace {

constexpr char AFTER_E4[] = "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3";
constexpr char AFTER_E5[] = "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6";
constexpr char AFTER_NF3[] = "rnbqkbnr/pppp1ppp/8/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq -";
constexpr char ENDING[] = "8/P7/8/8/8/8/k6K/8 w - -";

struct ConsoleGame : testing::Test {
    const ConsoleRig rig;
};

// The command prints the text and then the board that it leaves.
void expect_board(const std::string& line, const std::string& text = "") {
    const std::string output = console(line);
    EXPECT_EQ(output, text + board_text()) << line;
}

TEST_F(ConsoleGame, MovesAndPositions) {
    const struct {
        const char *line, *first, *fen;  // what is printed before the board; the position then
    } cases[] = {
        {"e4", "1. move e4\n", AFTER_E4},
        {"e5", "1. move e5\n", AFTER_E5},
        {"move g1f3+", "2. move g1f3\n", AFTER_NF3},
        {"undo", "", AFTER_E5},
        {"[", "", AFTER_E4},
        {"]", "1... move e7e5\n", AFTER_E5},
        {"]", "2. move g1f3\n", AFTER_NF3},
        {"jump", "", START_FEN},
        {"jump 2", "", AFTER_E5},
        {"jump 99999999999", "", AFTER_NF3},
        {"jump 1x", "", AFTER_E4},
        {"new", "", START_FEN},
        {"fen 8/P7/8/8/8/8/k6K/8 w - - 0 1", "", ENDING},
        {"  fen   8/P7/8/8/8/8/k6K/8 w - -", "", ENDING},
        {"fen", "", ENDING},
        {"a8n", "1. move a8=N\n", "N7/8/8/8/8/8/k6K/8 b - -"},
    };
    for (const auto& c : cases) {
        expect_board(c.line, c.first);
        EXPECT_EQ(game_fen(), c.fen) << c.line;
    }
    console("new");
    for (const char* line : {"undo", "[", "]"}) EXPECT_EQ(console(line), "") << line;
    // The evaluation in place of the board, where a board is not asked for.
    console("debug 1");
    for (const char* line : {"e4", "undo", "]", "bd"}) {
        EXPECT_NE(console(line).find("eval= "), std::string::npos) << line;
    }
    for (const char* line : {"jump 1", "new", "fen"}) expect_board(line);
}

TEST_F(ConsoleGame, ReplayOfMovesThatNoLongerFit) {
    for (const char* line : {"e4", "e5", "Bc4", "undo", "undo", "undo", "d4"}) console(line);
    EXPECT_TRUE(console("]").starts_with("1... move e7e5\n")) << "left from before, and possible";
    EXPECT_EQ(console("]"), "") << "f1 is shut in";
    console("jump 3");
    EXPECT_EQ(game.game_ply, 2);
    EXPECT_EQ(verify(game.position), "");
}

TEST_F(ConsoleGame, WalksToAndFro) {
    Random random(5);
    constexpr const char* STARTS[] = {START_FEN,
                                      "r3k2r/1pp3p1/8/p2PpP1p/P2pPp1P/8/1PP3P1/R3K2R b KQkq e3",
                                      "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -"};
    for (int round = 0; round < scaled(15); ++round) {
        console(std::string("fen ") + STARTS[round % 3]);
        std::vector<std::unique_ptr<Game>> after;  // [plies]
        after.push_back(std::make_unique<Game>(game));
        while (after.size() < 60 && play_random(game, random, 1) == 1) {
            after.push_back(std::make_unique<Game>(game));
        }
        const int last = game.game_ply;
        for (int step = 0; step < 100; ++step) {
            const int ply = game.game_ply;
            const int target = pick(random, last + 3);
            const struct {
                std::string line;
                int ply;
            } moves[] = {{"undo", std::max(ply - 1, 0)},
                         {"]", std::min(ply + 1, last)},
                         {"jump " + std::to_string(target), std::min(target, last)}};
            const auto& move = moves[pick(random, 3)];
            console(move.line);
            ASSERT_EQ(game.game_ply, move.ply) << move.line;
            ASSERT_EQ(game_difference(game, *after[std::size_t(move.ply)]), "") << move.line;
        }
    }
}

TEST_F(ConsoleGame, SavedGamesComeBack) {
    Random random(11);
    std::vector<std::unique_ptr<Game>> games;
    const int count = scaled(300);
    for (int i = 0; i < count; ++i) {
        console("new");
        play_random(game, random, pick(random, 130));
        games.push_back(std::make_unique<Game>(game));
        EXPECT_EQ(console("save"), "");
        ASSERT_EQ(game_difference(game, *games.back()), "") << "saving changes nothing";
    }
    console("fen r1bqkb1r/pppn1ppp/5n2/8/8/5B2/PPPP1PPP/RNBQK2R w KQkq -");
    console("O-O");
    console("save");
    const std::string text = read_file("tmp.pgn");
    EXPECT_TRUE(text.ends_with("[Event \"Unknown\"]\no-o \n\n")) << "neither numbers nor tags";
    for (int i = 0; i < count; ++i) {
        console("load tmp.pgn " + std::to_string(i + 1));
        ASSERT_EQ(game_difference(game, *games[std::size_t(i)]), "") << i;
        EXPECT_EQ(console("]"), "") << "nothing to replay";
    }
}

TEST_F(ConsoleGame, LoadForms) {
    const std::string e4 = "[Event \"one\"]\n1. e4 *\n\n";
    const std::string e5 = "[Event \"two\"]\n[White \"Xavier\"]\n1.e4 e5 1/2-1/2\n";
    const std::string nf3 = "\n[Event \"three\"]\n\n1. e4 e5 { later } 2. Nf3 0-1\n";
    const std::string three = e4 + e5 + nf3;
    const std::string filler = "{" + std::string(1500, 'x') + " } ";
    std::string words;
    while (words.size() < 3000) words += "{a comment} ";
    const struct {
        std::string file, tag, fen, message;
    } cases[] = {
        {three, "", AFTER_E4, ""},
        {three, "2", AFTER_E5, ""},
        {three, "3", AFTER_NF3, ""},
        {three, "2000", AFTER_E4, ""},
        {three, "-2", START_FEN, ""},  // a text
        {three, "Xavier", AFTER_E5, ""},
        {three, "nowhere", START_FEN, ""},
        {"1. e4 e5\n", "", START_FEN, ""},  // no game has begun
        {"[Event \"x\"]\r\n\r\n1. e4\r\ne5\r\n", "", AFTER_E5, ""},
        {"[Event \"x\"]\n1.e4{good}1...e5} 2.Nf3", "", AFTER_NF3, ""},
        {"[Event \"x\"]\n1. e4 Ke7+ e5\n", "", AFTER_E4, "can't parse move 'Ke7+'\n"},
        {"[Event \"x\"]\ne4 " + std::string(50, 'z'), "", AFTER_E4,
         "can't parse move '" + std::string(32, 'z') + "'\n"},
        {"[Event \"x\"]\n" + filler + "1. e4 " + filler + "e5 " + words + "Nf3\n", "", AFTER_NF3,
         ""},
        {"\xEF\xBB\xBF[Event \"x\"]\n[Site \"" + std::string(3000, 's') + " e4\"]\ne4", "",
         AFTER_E4, ""},
    };
    for (const auto& c : cases) {
        write_file("games.pgn", c.file);
        limits.fixed_time = 7;
        expect_board("load games.pgn " + c.tag,
                     "loading games.pgn, tag " + c.tag + "\n\n" + c.message);
        EXPECT_EQ(game_fen(), c.fen) << c.file.substr(0, 200) << c.tag;
        EXPECT_EQ(limits.clock[BLACK], 7);
        EXPECT_EQ(console("]"), "");
    }
}

TEST_F(ConsoleGame, FilesThatAreNoGames) {
    console("e4");
    limits.clock = {{1, 1}};
    limits.fixed_time = 3;
    make_pipe("pipe");
    for (const std::string name : {"missing", ".", "pipe", "/dev/null"}) {
        EXPECT_EQ(console("load " + name + " 1"), "loading " + name + ", tag 1\n\n");
    }
    EXPECT_EQ(limits.clock[WHITE], 3) << "the clocks alone";
    EXPECT_EQ(game_fen(), AFTER_E4);

    for (const std::string& text : {std::string(5000000, 'e'), std::string()}) {
        write_file("junk", text);
        console("load junk");
        EXPECT_EQ(game_fen(), START_FEN);
    }
    std::filesystem::create_directory("tmp.pgn");
    EXPECT_EQ(console("save"), "");
}

TEST_F(ConsoleGame, PositionsById) {
    console("e4");
    expect_board("get 1", "get\n");
    make_pipe("test.epd");
    expect_board("get 1", "get\n");
    std::filesystem::remove("test.epd");
    const std::string ending = "8/P7/8/8/8/8/k6K/8 w - - bm a8=Q; id \"7\"; c0 \"x\";";
    write_file("test.epd", " " + ending + "\n;" + ending + "\nid \"s\"\r\n" + ending + "\r\n" +
                               std::string(250, '-') + " id \"long\";\n");
    expect_board("get 8", "\n");
    expect_board("get long", "\n");
    expect_board("get s", "id \"s\"\n");  // too short for a position
    EXPECT_EQ(game_fen(), AFTER_E4);
    expect_board("get 7", ending + "\n");
    EXPECT_EQ(game_fen(), ENDING);
}

constexpr char EDIT_HELP[] =
    "\n\n.                    end edit\n#                    clear board\n"
    "w  Pa2 Pb2 Kc2       white, pieces\nb  Pa7 Pb7 Kc7       black, pieces\n";

TEST_F(ConsoleGame, Edit) {
    const struct {
        const char *lines, *fen, *message;
    } cases[] = {
        {"", START_FEN, ""},
        {"#", "8/8/8/8/8/8/8/8 w - -", ""},
        {"#\nw Ke1 Rh1 ra1 pa2\nb Ke8 Ra8 Pb7", "r3k3/1p6/8/8/8/8/P7/R3K2R b KQq -", ""},
        {"w Qa1 \n\nhello\n# no", "8/8/8/8/8/8/8/8 w - -", ""},
        {"w Na1 Xb4 4 Qd4", "rnbqkbnr/pppppppp/8/8/3Q4/8/PPPPPPPP/NNBQKBNR w Kkq -", ""},
        {"white Qa9 Qa4\nblack Qh5 Q Qa5", "rnbqkbnr/pppppppp/8/7q/8/8/PPPPPPPP/RNBQKBNR b KQkq -",
         ""},
        {"#\nw Kh1                                                                  Na1 Nb1",
         "8/8/8/8/8/8/8/N6K w - -", ""},
    };
    for (const auto& c : cases) {
        console("new");
        const std::string output = rig.edit(c.lines);
        EXPECT_EQ(output, std::string(EDIT_HELP) + c.message + board_text()) << c.lines;
        EXPECT_EQ(game_fen(), c.fen) << c.lines;
        EXPECT_EQ(game.game_ply, 0);
        EXPECT_EQ(verify(game.position), "");
        EXPECT_EQ(console("]"), "") << "the record is empty";
    }
    // The en-passant square and the fifty-move counter stay.
    console("fen rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq e3");
    game.position.fifty = 33;
    rig.edit("w Na3");
    EXPECT_EQ(game.position.fifty, 33);
    EXPECT_TRUE(game_fen().ends_with(" w KQkq e3"));
}

TEST_F(ConsoleGame, EditOfABoardWithTenQueens) {
    console("fen 6nk/P5pp/8/8/1QQQ4/1QQQ4/1QQQ4/K7 w - -");
    console("a8=Q");
    const auto refused = [](const std::string& output) {
        return output.find("more than nine pieces of a kind") != std::string::npos;
    };
    EXPECT_TRUE(refused(rig.edit("w Qa8 Qg1 Pa2")));
    EXPECT_EQ(game_fen(), "Q5nk/6pp/8/8/1QQQ4/1QQQ4/PQQQ4/K7 w - -");
    EXPECT_TRUE(refused(console("ev")));
    EXPECT_FALSE(refused(rig.edit("w Na8 Pg3")));
    EXPECT_EQ(game_fen(), "N5nk/6pp/8/8/1QQQ4/1QQQ2P1/PQQQ4/K7 w - -");
    EXPECT_FALSE(refused(console("ev")));
    EXPECT_EQ(verify(game.position), "");
}

}  // namespace
}  // namespace quon::test
