#include "harness/book_support.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "board/make.h"
#include "board/move_text.h"
#include "book/book.h"
#include "engine/report.h"
#include "harness/engine.h"

namespace quon::test {

BookDirectory::BookDirectory() : Directory(true), saved(options) { book_close(engine.book); }

BookDirectory::~BookDirectory() {
    book_close(engine.book);
    options = saved;
}

Records in_order(Records records) {
    std::sort(records.begin(), records.end(), [](const BookRecord& a, const BookRecord& b) {
        return std::pair(a.key.key16, a.key.key32) > std::pair(b.key.key16, b.key.key32);
    });
    return records;
}

Records without_doubles(Records ordered) {
    const auto same = [](const BookRecord& a, const BookRecord& b) { return a.key == b.key; };
    ordered.erase(std::unique(ordered.begin(), ordered.end(), same), ordered.end());
    return ordered;
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

void add(GameCount& count, const BookRecord& record) {
    auto& counters = count[{record.key.key16, record.key.key32}];
    counters = {counters[0] + record.losses, counters[1] + record.wins, counters[2] + record.draws};
}

Records records_of(const GameCount& count, int least) {
    Records records;
    const auto limit = [](i64 counter) { return u16(std::min<i64>(counter, 60000)); };
    for (const auto& [key, counters] : count) {
        const auto [losses, wins, draws] = counters;
        if (losses + wins + draws < least) continue;
        records.push_back({{key.first, key.second}, limit(losses), limit(wins), limit(draws)});
    }
    return records;
}

}  // namespace quon::test
