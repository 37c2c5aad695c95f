// Lines of files, and words and numbers of lines.

#include <limits>

#include "harness/board_support.h"
#include "harness/files.h"
#include "support/line_reader.h"

namespace quon::test {
namespace {

// The pieces of a file, "|" before the start of a line and "$" behind its end.
std::string pieces_of(const std::string& content, std::size_t limit, LongLine long_line) {
    const Directory directory;
    directory.write("lines", content);
    LineReader reader;
    EXPECT_TRUE(open_lines(reader, directory.path("lines"), limit, long_line));
    EXPECT_EQ(reader.file_size, i64(content.size()));
    std::string all;
    LinePiece piece;
    while (next_piece(reader, piece)) {
        EXPECT_LE(piece.text.size(), limit);
        all += std::string(piece.starts_line ? "|" : "") + std::string(piece.text) +
               (piece.ends_line ? "$" : "~");
    }
    EXPECT_EQ(reader.bytes_read, i64(content.size()));
    EXPECT_FALSE(read_failed(reader));
    return all;
}

TEST(LineReader, Pieces) {
    const struct {
        std::string content, at_limit, at_blank;
    } cases[] = {
        {"", "", ""},
        {"\n\r\n", "|$|$", "|$|$"},
        {"ab\r\ncd\n", "|ab$|cd$", "|ab$|cd$"},
        {"last", "|last$", "|last$"},
        {"\xEF\xBB\xBFmark\n", "|mark$", "|mark$"},
        {"exactly6\n12345678\r\nx", "|exactly6$|12345678$|x$", "|exactly6$|12345678$|x$"},
        {"abcdefgh\r", "|abcdefgh~\r$", "|abcdefgh~\r$"},
        {"123456789\n", "|12345678~9$", "|12345678~9$"},
        {"e4 e5 Nf3 Nc6\n", "|e4 e5 Nf~3 Nc6$", "|e4 e5 ~Nf3 Nc6$"},
        {std::string("a\0b\n", 4), std::string("|a\0b$", 5), std::string("|a\0b$", 5)},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(pieces_of(c.content, 8, LongLine::AT_LIMIT), c.at_limit) << c.content;
        EXPECT_EQ(pieces_of(c.content, 8, LongLine::AT_BLANK), c.at_blank) << c.content;
    }
}

// Whatever the buffer's borders fall on, the pieces put together are the file.
TEST(LineReader, ManyBuffers) {
    Random random(7);
    std::string content, expected;
    while (content.size() < 400000) {
        const std::string line(random() % 300, char('a' + pick(random, 26)));
        content += line + (random() % 4 == 0 ? "\r\n" : "\n");
        for (std::size_t at = 0; at == 0 || at < line.size(); at += 254) {
            const bool last = at + 254 >= line.size();
            if (at == 0) expected += '|';
            expected += line.substr(at, 254);
            expected += last ? '$' : '~';
        }
    }
    EXPECT_TRUE(pieces_of(content, 254, LongLine::AT_LIMIT) == expected);
}

TEST(LineReader, NoFile) {
    LineReader reader;
    for (const char* path : {"missing", ".", "/dev/zero"}) {
        EXPECT_FALSE(open_lines(reader, path, 100)) << path;
    }
    // A file that can be opened and not be read.
    if (!open_lines(reader, "/proc/self/mem", 100)) GTEST_SKIP() << "there is none";
    LinePiece piece;
    EXPECT_FALSE(next_piece(reader, piece));
    EXPECT_TRUE(read_failed(reader));
}

TEST(Words, FirstWord) {
    const std::string cut(128, 'x');
    const struct {
        std::string text, word;
    } cases[] = {{"", ""},        {"   ", ""},  {"  go depth", "go"}, {"go\rx", "go"},
                 {"go\nx", "go"}, {"\rgo", ""}, {"a\tb c", "a\tb"},   {cut + "xx y", cut}};
    for (const auto& c : cases) EXPECT_EQ(first_word(c.text), c.word) << c.text;
}

TEST(Words, Numbers) {
    for (const char* text : {"", "x7", "-", "+", "+-3", "--3", "nan", "inf", "-inf", "0x10"}) {
        EXPECT_EQ(to_integer(text), 0) << text;
        EXPECT_EQ(to_real(text), 0.0) << text;
    }
    for (const char* text : {"12", " 12", "+12", "12x", "12.0"}) {
        EXPECT_EQ(to_integer(text), 12) << text;
        EXPECT_EQ(to_real(text), 12.0) << text;
    }
    EXPECT_EQ(to_integer("-12.9"), -12);
    EXPECT_EQ(to_integer("1e3"), 1);
    EXPECT_EQ(to_integer("99999999999999999999"), std::numeric_limits<i64>::max());
    EXPECT_EQ(to_integer("-99999999999999999999x"), std::numeric_limits<i64>::min());
    EXPECT_EQ(to_real("-2.5"), -2.5);
    EXPECT_EQ(to_real("+.5s"), 0.5);
    EXPECT_EQ(to_real(" 1e3x"), 1000);
    EXPECT_EQ(to_real("1e999"), std::numeric_limits<double>::max());
    EXPECT_EQ(to_real("-1e999"), std::numeric_limits<double>::lowest());
}

TEST(Words, FromFirstLetter) {
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},    {"12.", ""},   {"1/2-1/2", ""}, {"e4", "e4"},       {"12...Nf6+", "Nf6+"},
        {"[z", "z"}, {"@Z1", "Z1"}, {"{`A", "A"},    {"1.\xC3\xA9", ""}, {"0-0", ""}};
    for (const auto& [text, expected] : cases) EXPECT_EQ(from_first_letter(text), expected) << text;
}

}  // namespace
}  // namespace quon::test
