#include "pgn/pgn_token.h"

#include <gtest/gtest.h>

namespace quon::test {
namespace {

TEST(PgnToken, Lines) {
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"   ", ""},
        {"1. e4 e5", "1.|e4|e5|"},
        {"  12.Nf3   $1 ", "12.Nf3|$1|"},
        {"e4{best}(d4 d5)) e5", "e4|{|best|}|(|d4|d5|)|)|e5|"},
        {"{{}}", "{|{|}|}|"},
        {"Nf\t3 e\r5\x1f", "Nf3|e5|"},
        {std::string("a\0b", 3), "ab|"},
        {"Gr\xC3\xBC\xC3\x9F"
         "e",
         "Gr\xC3\xBC\xC3\x9F"
         "e|"},
        {"\x01 e4", "|e4|"},
    };
    for (const auto& [line, expected] : cases) {
        std::string found;
        std::string_view rest = line;
        for (std::string token; next_pgn_token(rest, token);) found += token + "|";
        EXPECT_EQ(found, expected) << line;
        EXPECT_TRUE(rest.empty());
    }
}

}  // namespace
}  // namespace quon::test
