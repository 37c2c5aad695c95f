// The PGN scanner: what it reads from comments and move text, and its files, small ones by hand and
// large ones against another program's.

#include <cstdio>

#include "harness/process.h"
#include "pgn/game_reader.h"

namespace quon::test {
namespace {

Lines scan_arguments(int variant, const std::string& file) {
    return {"-nolog", "-hash", "1", format("-scan_pgn%d", variant), file};
}

TEST(PgnScan, CommentScores) {
    const struct {
        const char* comment;
        int white, black;
    } cases[] = {
        {"book", 0, 0},
        {"+1.50/18 0.5s", 150, 150},
        {"-1.50/18 0.5s", -150, -150},
        {"0.00/30 9.9s, some text", 0, 0},
        // The nearest double to 0.29 is below it, and so is 0.29 * 100 below 29.
        {"+0.35/12", 35, 35},
        {"+0.29/12", 28, 28},
        {"+M5/20", 9000, 9000},
        {"-M5/20", -9000, -9000},
        {" (Nf3) +0.12/14 3", 12, 12},
        {"text/+0.50", 0, 0},
        {"(Nf3 d5)+0.12/14", 0, 0},
        {"eval 20, depth 12", 20, -20},
        {"eval -20", -20, 20},
        {"eval 1/2", 1, -1},
        {"[%eval 0.57] [%clk 0:01:02]", 0, 0},
        {"eval ", -29999, 29999},
        {"eval x, 7", 0, 0},
        {"eval", -29999, -29999},
        {"", -29999, -29999},
        {"Book", -29999, -29999},
        // Sixteen bits.
        {"-320.00/1", -32000, -32000},
        {"+777.77/1", 12241, 12241},
        {"eval 32769", -32767, 32767},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(comment_score(c.comment, WHITE), c.white) << c.comment;
        EXPECT_EQ(comment_score(c.comment, BLACK), c.black) << c.comment;
    }
}

void read_line(GameReader& reader, std::string_view text) {
    read_move_text(reader, {.text = text, .starts_line = true, .ends_line = true});
}

// The moves with their scores, "e4 35, e5 -10", read from lines of text.
std::string moves_of(const std::string& text) {
    GameReader reader;
    for (const std::string& line : split(text, '\n')) read_line(reader, line);
    std::string all;
    for (const ScanMove& move : reader.moves) {
        all += format("%s%s %d", all.empty() ? "" : ", ", move.text.c_str(), move.score);
    }
    return all;
}

TEST(PgnScan, MoveText) {
    const struct {
        std::string text, moves;
    } cases[] = {
        {"", ""},
        {"1. e4 {+0.20/1} e5 {-0.10/1} 2. Nf3 1-0", "e4 20, e5 -10, Nf3 -30000"},
        {"1.e4 1...e5 $1 ! ?! 0-0 1/2-1/2 * e8=Q+", "e4 -10000, e5 -30000, e8=Q+ -30000"},
        {"{+0.50/1} e4 {+0.20/1}", "e4 20"},
        {"e4 {+0.20\n/1 two lines} e5", "e4 0, e5 -30000"},
        {"e4 {outer {+0.20/1} tail} e5", "e4 20, e5 -30000"},
        {"e4 {a} {+0.20/1} e5", "e4 0, e5 -30000"},
        {"e4 {text } {+0.20/1} e5", "e4 20, e5 -30000"},
        {"e4 } {+0.20/1} } e5", "e4 20, e5 -30000"},
        {"e4 {+0.20/1 e5 Nf3", "e4 -10000"},
        {"1.e4{+0.20/1} e5 {-0.10/1}", "e4{+0.2 -10000, e5 -10"},
        {"longtokenhere {+0.20/1}", "longtok 20"},
        {"e4\t{+0.20/1}\te5" + std::string(3, '\0') + "Nf3", "e4 20, e5 -30000, Nf3 -30000"},
        {"[%evp 3] e4", "evp -10000, e4 -30000"},
    };
    for (const auto& c : cases) EXPECT_EQ(moves_of(c.text), c.moves) << c.text;
}

// However long the game and its comments are.
TEST(PgnScan, Bounds) {
    GameReader reader;
    const std::string text = "Nf3 {+0.20/1 " + std::string(100, 'x') + "} Nf6 {book} Ng1 Ng8 ";
    for (int i = 0; i < 2000; ++i) read_line(reader, text);
    EXPECT_EQ(reader.moves.size(), MAX_SCAN_MOVES);
    EXPECT_TRUE(reader.cut);
    EXPECT_EQ(reader.moves.back().score, UNSCORED) << "not that of a move passed over";
    next_game(reader);
    read_line(reader, "e4 {+0.20/1 never closed");
    for (int i = 0; i < 2000; ++i) read_line(reader, text.substr(13, 100));
    EXPECT_LE(reader.comment.size(), 65536U);
    read_line(reader, "}");
    EXPECT_EQ(reader.moves.back().score, 20);
}

// The checksum of a file as a program of the system tells it; "" where there is none.
std::string sha256(const std::string& path) {
    char text[65] = {};
    std::FILE* const pipe = popen(("sha256sum " + path + " 2>/dev/null").c_str(), "r");
    const bool told = pipe && std::fread(text, 1, 64, pipe) == 64;
    if (pipe) pclose(pipe);
    return told ? text : "";
}

TEST(PgnScan, Reference) {
    const Lines rows = shared_lines("/reference/tools/scan.csv");
    ASSERT_GT(rows.size(), 10U);
    std::string done, last;
    const ToolDirectory directory;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const Lines cells = split(rows[i], ';');
        const std::string input = data_file("/data/" + cells[1]);
        if (done != cells[0] + input) {
            const Ending ending = directory.run(scan_arguments(std::stoi(cells[0]), input));
            EXPECT_EQ(ending.status, 0);
            last = ending.lines.at(ending.lines.size() - 1);
            done = cells[0] + input;
        }
        EXPECT_EQ(last, cells[2]) << rows[i];
        const std::string content = directory.read(cells[3]);
        EXPECT_EQ(std::to_string(std::count(content.begin(), content.end(), '\n')), cells[4])
            << rows[i];
        EXPECT_EQ(std::to_string(content.size()), cells[5]) << rows[i];
        const std::string sum = sha256(directory.path(cells[3]));
        EXPECT_TRUE(sum.empty() || sum == cells[6]) << rows[i];
    }
}

// A game of knights going to and fro, with a comment for each move.
std::string shuttle(int moves, const std::function<std::string(int i)>& comment) {
    constexpr const char* TEXTS[] = {"Nf3", "Nf6", "Ng1", "Ng8"};
    std::string text;
    for (int i = 0; i < moves; ++i) text += TEXTS[i % 4] + comment(i) + "\n";
    return text;
}

// The boards of such a game come back every four plies.
const std::string BOARDS[] = {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm Nf3;",
                              "rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R b KQkq - bm Nf6;",
                              "rnbqkb1r/pppppppp/5n2/8/8/5N2/PPPPPPPP/RNBQKB1R w KQkq - bm Ng1;",
                              "rnbqkb1r/pppppppp/5n2/8/8/8/PPPPPPPP/RNBQKBNR b KQkq - bm Ng8;"};

// White errs at its eighth move: Black thinks better of its position from then on.
TEST(PgnScan, Blunders) {
    const ToolDirectory directory;
    for (const int after : {51, 50}) {  // Black's score from its reply on, in centipawns
        const bool blunder = after > 50;
        const auto comment = [&](int i) {
            return format(" {0.%02d/9}", i >= 14 && i % 2 == 1 ? after : 0);
        };
        directory.write("games", "[Event \"a\"]\n[Round \"1\"]\n" + shuttle(30, comment));
        const Ending ending = directory.run(scan_arguments(1, "games"));
        EXPECT_EQ(ending.lines, Lines{"games= 1, positions= 0"});
        const Lines lines = split(directory.read("tmp.pgn"), '\n');
        ASSERT_GT(lines.size(), 18U);
        EXPECT_EQ(lines[2], "[Tag \"game_1\"]");
        std::string am = BOARDS[2];
        am[am.find(" bm") + 1] = 'a';
        EXPECT_EQ(lines[3 + 14], "  8.  Ng1     {  0.00" + (blunder ? " ? " + am : "") + "}");
        EXPECT_EQ(lines[3 + 15], format("      Ng8     { %5.2f", -after / 100.0) +
                                     (blunder ? " ! " + BOARDS[3] : "") + "}");
        EXPECT_EQ(directory.read("tmpX.epd"), blunder ? BOARDS[3] + "\n" : "");
    }
}

TEST(PgnScan, Records) {
    const struct {
        int variant, moves;
        const char* tags;
        int special, pawns;  // the score of this move, in whole pawns; the others have 0
        int first, last;     // moves whose positions are written, but for the one left out
        int left_out;
        const char* tail;
    } cases[] = {
        {2, 30, "[Result \"1-0\"]\n", 18, 8, 16, 23, -1, " c9 \"1-0\";"},
        {2, 30, "[Result \"0-1\"]\n", 18, -9, 16, 23, 18, " c9 \"0-1\";"},
        {2, 22, "", -1, 0, 0, -1, -1, ""},
        {2, 300, "", -1, 0, 16, 250, -1, " c9 \"1/2-1/2\";"},
        {3, 30, "", 9, 5, 0, 29, -1, ""},
        {3, 30, "", 9, -6, 0, 9, -1, ""},
        {3, 300, "", 205, 9, 0, 200, -1, ""},
        {4, 30, "", -1, 0, 0, -1, -1, ""},
    };
    const ToolDirectory directory;
    for (const auto& c : cases) {
        const auto score = [&](int i) { return i == c.special ? c.pawns : 0; };
        const std::string game =
            shuttle(c.moves, [&](int i) { return format(" {%d/9}", score(i)); });
        directory.write("games", std::string("[Event \"a\"]\n") + c.tags + game);
        std::string expected;
        int count = 0;
        for (int i = c.first; i <= c.last; ++i) {
            if (i == c.left_out) continue;
            expected += BOARDS[i % 4] + format(" ce %d;", 100 * score(i)) + c.tail + "\n";
            ++count;
        }
        const Ending ending = directory.run(scan_arguments(c.variant, "games"));
        EXPECT_EQ(ending.lines, Lines{format("games= 1, positions= %d", count)});
        EXPECT_EQ(directory.read("tmp.epd"), expected + "\n") << c.variant << ' ' << c.moves;
    }
}

// Nothing is refused, whatever the file is like, and every game is counted.
TEST(PgnScan, OddFiles) {
    const ToolDirectory directory;
    for (const auto& entry : std::filesystem::directory_iterator(data_file("/data/pgn/odd"))) {
        const std::string file = entry.path();
        const std::string content = read_file(file);
        int games = 0;
        for (const std::string& line : split(content, '\n')) {
            games += line.find("[Event ") <= 3;  // behind a byte order mark, too
        }
        const Ending ending = directory.run(scan_arguments(1, file));
        EXPECT_EQ(ending.status, 0) << file;
        ASSERT_FALSE(ending.lines.empty());
        EXPECT_EQ(ending.lines.back(), format("games= %d, positions= 0", games)) << file;
    }
}

}  // namespace
}  // namespace quon::test
