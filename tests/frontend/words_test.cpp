#include "frontend/words.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace quon::test {
namespace {

TEST(Words, FirstWord) {
    const struct {
        std::string text, word;
    } cases[] = {
        {"", ""},
        {"   ", ""},
        {"go", "go"},
        {"  go depth", "go"},
        {"go\rx", "go"},
        {"go\nx", "go"},
        {"\rgo", ""},
        {"a\tb c", "a\tb"},
        {std::string(200, 'x') + " y", std::string(128, 'x')},
    };
    for (const auto& c : cases) EXPECT_EQ(first_word(c.text), c.word) << c.text;
}

TEST(Words, Integers) {
    constexpr i64 LARGEST = std::numeric_limits<i64>::max();
    constexpr i64 LOWEST = std::numeric_limits<i64>::min();
    const struct {
        std::string text;
        i64 value;
    } cases[] = {
        {"", 0},
        {"x7", 0},
        {"-", 0},
        {"+", 0},
        {"+-3", 0},
        {"--3", 0},
        {"12", 12},
        {" 12", 12},
        {"-12", -12},
        {"+12", 12},
        {"12x", 12},
        {"12.9", 12},
        {"0x10", 0},
        {"1e3", 1},
        {"99999999999999999999", LARGEST},
        {"-99999999999999999999x", LOWEST},
    };
    for (const auto& c : cases) EXPECT_EQ(to_integer(c.text), c.value) << c.text;
}

TEST(Words, Reals) {
    constexpr double LARGEST = std::numeric_limits<double>::max();
    const struct {
        std::string text;
        double value;
    } cases[] = {
        {"", 0},         {"x", 0},     {"nan", 0},         {"inf", 0},           {"-inf", 0},
        {"-", 0},        {"2.5", 2.5}, {"-2.5", -2.5},     {".5", 0.5},          {"+.5s", 0.5},
        {" 1e3x", 1000}, {"--1", 0},   {"1e999", LARGEST}, {"-1e999", -LARGEST},
    };
    for (const auto& c : cases) EXPECT_EQ(to_real(c.text), c.value) << c.text;
}

TEST(Words, Blanks) {
    EXPECT_EQ(without_leading_blanks("  a b "), "a b ");
    EXPECT_EQ(without_trailing_blanks("  a b "), "  a b");
    EXPECT_EQ(without_leading_blanks("   "), "");
    EXPECT_EQ(without_trailing_blanks("   "), "");
    EXPECT_EQ(text_from("abc", 2), "c");
    EXPECT_EQ(text_from("abc", 4), "");
}

}  // namespace
}  // namespace quon::test
