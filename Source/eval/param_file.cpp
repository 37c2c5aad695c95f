// The parameter file's keys and its reader.

#include "eval/param_file.h"

#include <string_view>

#include "eval/parameters.h"
#include "support/line_reader.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr std::size_t MAX_LINE = 254;
constexpr std::string_view BLANKS = " \t\r\n";

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

void read_setting(LineReader& file, std::string_view line, EvalParams& record) {
    const std::string_view name = take_token(line, BLANKS);
    for (const BlockKey& block : BLOCK_KEYS) {
        if (block.name == name) return read_block(file, record.pst[block.type], block.phase);
    }
    const i64 first = to_integer(take_token(line, BLANKS));
    const i64 second = to_integer(take_token(line, BLANKS));
    for (const Parameter& parameter : parameters()) {
        if (parameter.key != name) continue;
        if (parameter.pair) {
            record.*parameter.pair = {i16(first), i16(second)};
        } else {
            number_of(parameter, record) = i16(first);
        }
    }
}

}  // namespace

ParamFile read_params(const std::string& path, EvalParams& record,
                      const std::function<bool(std::string_view)>& take_line) {
    LineReader file;
    if (!open_lines(file, path, MAX_LINE)) return ParamFile::NOT_OPENED;
    record.pst = unset_square_tables();
    std::string line;
    while (read_line(file, line)) {
        if (line.empty() || line[0] == '#') continue;
        for (char& c : line) {
            if (c == '=' || c == ',') c = ' ';
        }
        if (!take_line(line)) read_setting(file, line, record);
    }
    return has_square_tables(record) ? ParamFile::WHOLE : ParamFile::NO_SQUARE_TABLES;
}

}  // namespace quon
