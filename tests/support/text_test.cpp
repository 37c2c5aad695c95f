#include "support/text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace quon::test {
namespace {

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
