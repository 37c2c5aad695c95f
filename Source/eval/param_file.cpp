// The parameter file's keys and its reader.

#include "eval/param_file.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

#include "frontend/engine_options.h"
#include "frontend/line_reader.h"
#include "frontend/output.h"
#include "frontend/words.h"

namespace quon {

namespace {

constexpr std::size_t MAX_LINE = 254;
constexpr std::string_view BLANKS = " \t\r\n";

struct Range {
    i64 low;
    i64 high;
};
constexpr Range ANY_NUMBER = {std::numeric_limits<i64>::min(), std::numeric_limits<i64>::max()};

// A key and the field it sets: one value, or a term's opening and ending half.
struct Key {
    std::string_view name;
    i16* value = nullptr;
    Pair* pair = nullptr;
    u8* byte = nullptr;
    Range range = ANY_NUMBER;  // of a single value
    Relaxed<i16>* shared = nullptr;

    Key(std::string_view key, i16& field, Range allowed = ANY_NUMBER)
        : name(key), value(&field), range(allowed) {}
    Key(std::string_view key, Pair& field) : name(key), pair(&field) {}
    Key(std::string_view key, u8& field, Range allowed) : name(key), byte(&field), range(allowed) {}
    Key(std::string_view key, Relaxed<i16>& field) : name(key), shared(&field) {}

    void set(i64 first, i64 second) const {
        const i64 used = std::clamp(first, range.low, range.high);
        if (used != first) {
            engine_print(format("%s%s is %d to %d: %s becomes %d", message_prefix(),
                                std::string(name).c_str(), int(range.low), int(range.high),
                                std::to_string(first).c_str(), int(used)));
        }
        if (value) *value = i16(used);
        if (pair) *pair = {i16(first), i16(second)};
        if (byte) *byte = u8(used);
        if (shared) *shared = i16(used);
    }
};

std::vector<Key> keys_of(EvalParams& e) {
    return {
        {"contempt", e.contempt},
        {"positional_bonus", e.positional_bonus},
        {"SingularExtension", e.SingularExtension},
        {"SEP_depth", e.SEP_depth},
        {"NMP_depth", e.NMP_depth},
        {"FP_depth", e.FP_depth},
        {"LMP_depth", e.LMP_depth},
        {"LMR_depth", e.LMR_depth},
        {"LMP_count", e.LMP_count},
        {"LMR_strength", e.LMR_strength},
        {"SEP_margin", e.SEP_margin},
        {"FP_margin", e.FP_margin},
        {"pawn_value", e.pawn_value},
        {"knight_value", e.knight_value},
        {"bishop_value", e.bishop_value},
        {"rook_value", e.rook_value},
        {"queen_value", e.queen_value},
        {"bishop_pair", e.bishop_pair},
        {"passed_pawn_rank2", e.passed_pawn[1]},
        {"passed_pawn_rank3", e.passed_pawn[2]},
        {"passed_pawn_rank4", e.passed_pawn[3]},
        {"passed_pawn_rank5", e.passed_pawn[4]},
        {"passed_pawn_rank6", e.passed_pawn[5]},
        {"passed_pawn_rank7", e.passed_pawn[6]},
        {"pawn_candidate", e.pawn_candidate},
        {"pawn_isolated", e.pawn_isolated},
        {"pawn_backward", e.pawn_backward},
        {"pawn_doubled", e.pawn_doubled},
        {"pawn_weak", e.pawn_weak},
        {"knight_mobility", e.knight_mobility},
        {"knight_outpost", e.knight_outpost},
        {"bishop_mobility", e.bishop_mobility},
        {"rook_mobility", e.rook_mobility},
        {"rook_open_file", e.rook_open_file},
        {"rook_half_open_file", e.rook_half_open_file},
        {"rook_rank7", e.rook_rank7},
        {"rook_trapped", e.rook_trapped},
        {"queen_mobility", e.queen_mobility},
        {"queen_rank7", e.queen_rank7},
        {"pawn_shield", e.pawn_shield},
        {"pawn_storm", e.pawn_storm},
        {"king_safety", e.king_safety},
        {"hung", e.hung},
        {"pinned", e.pinned},
        {"tune", e.tune},
        {"BookVariety", options.book_variety, {1, std::numeric_limits<i16>::max()}},
        {"BookDepth", options.book_depth, {0, std::numeric_limits<u8>::max()}},
        {"SyzygyProbeDepth5", options.syzygy_probe_depth5},
        {"SyzygyProbeDepth6", options.syzygy_probe_depth6},
    };
}

// A key that starts a square table of eight lines, rank 8 first.
struct BlockKey {
    std::string_view name;
    PieceType type;
    i16 Pair::*phase;
};
constexpr BlockKey BLOCK_KEYS[] = {
    {"PST_pawn_op", PAWN, &Pair::op},     {"PST_pawn_en", PAWN, &Pair::en},
    {"PST_knight_op", KNIGHT, &Pair::op}, {"PST_knight_en", KNIGHT, &Pair::en},
    {"PST_bishop_op", BISHOP, &Pair::op}, {"PST_bishop_en", BISHOP, &Pair::en},
    {"PST_rook_op", ROOK, &Pair::op},     {"PST_rook_en", ROOK, &Pair::en},
    {"PST_queen_op", QUEEN, &Pair::op},   {"PST_queen_en", QUEEN, &Pair::en},
    {"PST_king_op", KING, &Pair::op},     {"PST_king_en", KING, &Pair::en},
};

// A key whose line names a file or a path.
struct TextKey {
    std::string_view name;
    std::string EngineOptions::*field;
    std::size_t max_length;
};
constexpr TextKey TEXT_KEYS[] = {
    {"SyzygyPath", &EngineOptions::syzygy_path, MAX_SYZYGY_PATH},
    {"QuonBook", &EngineOptions::book_file, MAX_FILE_NAME},
};

// The next line without its end, cut at the longest length; false at the end of the file.
bool read_line(LineReader& file, std::string& line) {
    LinePiece piece;
    if (!next_piece(file, piece)) return false;
    line = piece.text;
    if (line.ends_with('\r')) line.pop_back();
    while (!piece.ends_line && next_piece(file, piece)) {
    }
    return true;
}

// True if the line belongs to one of the text keys. Without a value the setting stays.
bool set_text(std::string_view line) {
    for (const TextKey& key : TEXT_KEYS) {
        const std::size_t found = line.find(key.name);
        if (found == std::string_view::npos) continue;
        std::string_view rest = line.substr(found + key.name.size());
        const std::string_view value = take_token(rest, " \t\"");
        if (!value.empty()) options.*key.field = value.substr(0, key.max_length);
        return true;
    }
    return false;
}

void read_block(LineReader& file, Table<Pair, 64>& table, i16 Pair::*phase) {
    std::string line;
    for (int rank = 7; rank >= 0 && read_line(file, line); --rank) {
        std::string_view rest = line;
        for (int f = 0; f < 8; ++f) {
            const std::string_view token = take_token(rest, BLANKS);
            if (token.empty()) break;
            table[make_square(f, rank)].*phase = i16(to_integer(token));
        }
    }
}

void read_setting(LineReader& file, std::string_view line, const std::vector<Key>& keys,
                  EvalParams& record) {
    const std::string_view name = take_token(line, BLANKS);
    for (const BlockKey& block : BLOCK_KEYS) {
        if (block.name == name) return read_block(file, record.pst[block.type], block.phase);
    }
    const i64 first = to_integer(take_token(line, BLANKS));
    const i64 second = to_integer(take_token(line, BLANKS));
    for (const Key& key : keys) {
        if (key.name == name) key.set(first, second);
    }
}

}  // namespace

bool load_params(const std::string& path, EvalParams& record) {
    LineReader file;
    if (!open_lines(file, path, MAX_LINE)) return false;
    record.pst = unset_square_tables();
    const std::vector<Key> keys = keys_of(record);
    std::string line;
    while (read_line(file, line)) {
        if (line.empty() || line[0] == '#') continue;
        for (char& c : line) {
            if (c == '=' || c == ',') c = ' ';
        }
        if (!set_text(line)) read_setting(file, line, keys, record);
    }
    engine_print(format("loaded parameters from %s", path.c_str()));
    if (has_square_tables(record)) return true;
    engine_print("file quon.rc contains invalid PST");
    return false;
}

}  // namespace quon
