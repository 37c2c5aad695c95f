// Words, numbers and formatted text.

#include "support/text.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

namespace quon {

namespace {

constexpr std::size_t MAX_WORD = 128;

// A leading plus, which from_chars does not know; a sign after it is no number.
std::string_view without_plus(std::string_view text) {
    if (text.size() < 2 || text[0] != '+' || text[1] == '-') return text;
    return text.substr(1);
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::string_view without_leading_blanks(std::string_view text) {
    return text_from(text, text.find_first_not_of(' '));
}

std::string_view without_trailing_blanks(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view from_first_letter(std::string_view text) {
    const auto* const letter = std::find_if(text.begin(), text.end(), is_letter);
    return text.substr(std::size_t(letter - text.begin()));
}

std::string_view take_token(std::string_view& rest, std::string_view delimiters) {
    const std::size_t start = std::min(rest.find_first_not_of(delimiters), rest.size());
    const std::size_t end = std::min(rest.find_first_of(delimiters, start), rest.size());
    const std::string_view token = rest.substr(start, end - start);
    rest.remove_prefix(end);
    return token;
}

std::string_view first_word(std::string_view text) {
    const std::string_view start = without_leading_blanks(text);
    const std::size_t end = std::min(start.find_first_of(" \r\n"), start.size());
    return start.substr(0, std::min(end, MAX_WORD));
}

i64 to_integer(std::string_view text) {
    const std::string_view number = without_plus(without_leading_blanks(text));
    i64 value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec != std::errc::result_out_of_range) return value;
    return number[0] == '-' ? std::numeric_limits<i64>::min() : std::numeric_limits<i64>::max();
}

double to_real(std::string_view text) {
    const std::string_view number = without_plus(without_leading_blanks(text));
    const std::size_t sign = !number.empty() && number[0] == '-' ? 1 : 0;
    const std::string_view digits = text_from(number, sign);
    // Neither "inf" nor "nan" is a number here.
    if (digits.empty() || !(is_digit(digits[0]) || digits[0] == '.')) return 0;
    double value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        value = std::min(std::strtod(std::string(digits).c_str(), nullptr),
                         std::numeric_limits<double>::max());
    }
    return sign ? -value : value;
}

std::string format(const char* pattern, ...) {
    std::va_list arguments;
    va_start(arguments, pattern);
    std::va_list again;
    va_copy(again, arguments);
    const int size = std::vsnprintf(nullptr, 0, pattern, arguments);
    va_end(arguments);
    std::string text(size > 0 ? std::size_t(size) : 0, '\0');
    // va_copy has set it, which the analyser does not see.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    std::vsnprintf(text.data(), text.size() + 1, pattern, again);
    va_end(again);
    return text;
}

}  // namespace quon
