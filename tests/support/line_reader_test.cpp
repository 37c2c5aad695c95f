#include "support/line_reader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace quon::test {
namespace {

std::string temporary_path() {
    return (std::filesystem::temp_directory_path() /
            (std::string("quon-lines-") +
             testing::UnitTest::GetInstance()->current_test_info()->name()))
        .string();
}

// The pieces of a file, "|" before the start of a line and "$" behind its end.
std::string pieces_of(const std::string& content, std::size_t limit, LongLine long_line) {
    const std::string path = temporary_path();
    std::ofstream(path, std::ios::binary) << content;
    LineReader reader;
    EXPECT_TRUE(open_lines(reader, path, limit, long_line));
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
    std::filesystem::remove(path);
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
    std::mt19937 random(7);
    std::string content, expected;
    while (content.size() < 400000) {
        const std::string line(random() % 300, char('a' + random() % 26));
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

}  // namespace
}  // namespace quon::test
