#include "harness/book_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "board/fen.h"
#include "board/make.h"
#include "board/move_text.h"
#include "book/book.h"
#include "engine/report.h"
#include "harness/engine.h"
#include "support/text.h"

namespace quon::test {

namespace {

std::string new_directory() {
    std::string name = testing::TempDir() + "quon-book-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) std::abort();
    return name;
}

}  // namespace

BookDirectory::BookDirectory()
    : path(new_directory()), left(std::filesystem::current_path()), saved(options) {
    std::filesystem::current_path(path);
    book_close(engine.book);
}

BookDirectory::~BookDirectory() {
    book_close(engine.book);
    options = saved;
    std::filesystem::current_path(left);
    std::error_code error;
    std::filesystem::remove_all(path, error);
}

Records in_order(Records records) {
    std::sort(records.begin(), records.end(), [](const BookRecord& a, const BookRecord& b) {
        return std::pair(a.key.key16, a.key.key32) > std::pair(b.key.key16, b.key.key32);
    });
    return records;
}

std::string bytes_of(const Records& records) {
    std::string bytes;
    const auto put = [&](u32 value, int size) {
        for (int i = 0; i < size; ++i) bytes += char(value >> 8 * i);
    };
    for (const BookRecord& r : records) {
        put(r.key.key16, 2);
        put(r.key.key32, 4);
        put(r.losses, 2);
        put(r.wins, 2);
        put(r.draws, 2);
        put(0, 2);
    }
    return bytes;
}

Records records_of(const std::string& bytes) {
    EXPECT_EQ(bytes.size() % 14, 0U);
    Records records;
    for (std::size_t start = 0; start + 14 <= bytes.size(); start += 14) {
        const auto get = [&](std::size_t offset, std::size_t size) {
            u32 value = 0;
            for (std::size_t i = size; i-- > 0;) {
                value = value << 8 | static_cast<unsigned char>(bytes[start + offset + i]);
            }
            return value;
        };
        EXPECT_EQ(get(12, 2), 0U);
        records.push_back(
            {{u16(get(0, 2)), get(2, 4)}, u16(get(6, 2)), u16(get(8, 2)), u16(get(10, 2))});
    }
    return records;
}

std::string open_book(const std::string& path) {
    options.book_file = path;
    return captured_output([] { load_book(engine); });
}

std::unique_ptr<Game> game_after(const std::string& moves, std::string_view fen) {
    auto made = make_game(fen);
    for (const std::string& text : split(moves, ' ')) {
        const Move move = parse_coordinates(made->position, text);
        if (move != NO_MOVE) make_move(made->position, move);
    }
    return made;
}

BookRecord record_of(const Position& p, int losses, int wins, int draws) {
    return {record_key(p), u16(losses), u16(wins), u16(draws)};
}

std::string identity(const Position& p) {
    std::vector<std::string> fields = split(position_to_fen(p), ' ');
    return fields[0] + " " + fields[1] + " - " + fields[3];
}

void count_position(GameCount& count, const Position& p, const std::string& result) {
    Outcomes& outcomes = count[identity(p)];
    const std::string won = p.side == BLACK ? "1-0" : "0-1";
    const std::string lost = p.side == BLACK ? "0-1" : "1-0";
    ++(result == won ? outcomes.wins : result == lost ? outcomes.losses : outcomes.draws);
}

void expect_book(const std::string& path, const GameCount& count) {
    const Records records = records_of(read_file(path));
    EXPECT_EQ(records, in_order(records));
    EXPECT_EQ(open_book(path), "");
    std::size_t frequent = 0;
    int differences = 0;
    for (const auto& [fen, outcomes] : count) {
        const bool kept = outcomes.losses + outcomes.wins + outcomes.draws >= 9;
        if (kept) ++frequent;
        const auto made = make_game(fen);
        const BookRecord own =
            record_of(made->position, outcomes.losses, outcomes.wins, outcomes.draws);
        const std::optional<BookRecord> found = book_find(engine.book, own.key);
        if ((kept ? found == own : !found) || differences++ > 0) continue;
        ADD_FAILURE() << fen << format(" %d %d %d", own.losses, own.wins, own.draws);
    }
    EXPECT_EQ(differences, 0) << path;
    EXPECT_EQ(records.size(), frequent);
}

}  // namespace quon::test
