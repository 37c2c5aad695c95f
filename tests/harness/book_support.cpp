#include "harness/book_support.h"

namespace quon::test {

Records in_order(Records records) {
    const auto key = [](const BookRecord& r) { return std::pair(r.key.key16, r.key.key32); };
    std::stable_sort(records.begin(), records.end(),
                     [&](const BookRecord& a, const BookRecord& b) { return key(a) > key(b); });
    const auto same = [&](const BookRecord& a, const BookRecord& b) { return key(a) == key(b); };
    records.erase(std::unique(records.begin(), records.end(), same), records.end());
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

std::unique_ptr<Game> game_after(const std::string& moves, std::string_view fen) {
    auto made = make_game(fen);
    for (const std::string& text : split(moves, ' ')) {
        const Move move = parse_coordinates(made->position, text);
        if (move != NO_MOVE) make_move(made->position, move);
    }
    return made;
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
