#include "syzygy/table_writer.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <queue>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "harness/board_support.h"
#include "syzygy/tbprobe_material.h"

namespace quon::test {
namespace {

using Values = std::vector<int>;
constexpr int ANY = -1;  // a value that no reader asks for

void put(std::string& bytes, int size, u64 value) {
    for (int i = 0; i < size; ++i) bytes += char(value >> 8 * i & 0xFF);
}

void pad_to(std::string& bytes, size_t unit) {
    while (bytes.size() % unit != 0) bytes += '\0';
}

// ---- The number of a position in its table ----

constexpr int BELOW = 28;  // squares below the long diagonal
constexpr int FIRST_OFF = 6 * 63 * 62;
constexpr int SECOND_OFF = 4 * BELOW * 62;  // the first man on the diagonal
constexpr int THIRD_OFF = 4 * 7 * BELOW;    // the first two
constexpr int NONE_OFF = 4 * 7 * 6;
constexpr int TRIPLES = FIRST_OFF + SECOND_OFF + THIRD_OFF + NONE_OFF;
constexpr int PAWN_TRIPLES = 6 * 63 * 62;  // with the pawn on one file

// Squares below the diagonal from a1 are counted rank by rank, `width` of them on the first.
int below_number(int square, int width) {
    const int rank = rank_of(square);
    return width * rank - rank * (rank - 1) / 2 + file_of(square) - rank - 1;
}

// The place of a square, or a rank, among those that earlier men leave free.
int free_number(int square, std::initializer_list<int> earlier) {
    return square - int(std::count_if(earlier.begin(), earlier.end(),
                                      [&](int other) { return other < square; }));
}

// Three different men without pawns. Reflections bring the first man to the triangle a1-d1-d4 and
// the first one off the diagonal below it.
int piece_index(std::array<int, 3> men) {
    const int flip = (file_of(men[0]) > 3 ? 7 : 0) | (rank_of(men[0]) > 3 ? 56 : 0);
    for (int& square : men) square ^= flip;
    const auto* const off = std::find_if(
        men.begin(), men.end(), [](int square) { return file_of(square) != rank_of(square); });
    if (off != men.end() && rank_of(*off) > file_of(*off)) {
        for (int& square : men) square = make_square(rank_of(square), file_of(square));
    }
    const auto [a, b, c] = men;
    const int c_number = free_number(c, {a, b});
    const int a_rank = rank_of(a);
    const int b_rank = free_number(rank_of(b), {a_rank});
    const int c_rank = free_number(rank_of(c), {a_rank, rank_of(b)});
    switch (off - men.begin()) {
        case 0: return (below_number(a, 3) * 63 + free_number(b, {a})) * 62 + c_number;
        case 1: return FIRST_OFF + (a_rank * BELOW + below_number(b, 7)) * 62 + c_number;
        case 2: return FIRST_OFF + SECOND_OFF + (a_rank * 7 + b_rank) * BELOW + below_number(c, 7);
        default: return FIRST_OFF + SECOND_OFF + THIRD_OFF + (a_rank * 7 + b_rank) * 6 + c_rank;
    }
}

// A pawn and two kings, the pawn on the left half of the board; `place` of the kings vary faster
// than the pawn.
int pawn_index(int pawn, int first, int second, int place) {
    struct Digit {
        int value, range;
    };
    std::vector<Digit> digits = {{free_number(first, {pawn}), 63},
                                 {free_number(second, {pawn, first}), 62}};
    digits.insert(digits.begin() + place, {rank_of(pawn) - 1, 6});
    int index = 0;
    int factor = 1;
    for (const Digit& digit : digits) {
        index += digit.value * factor;
        factor *= digit.range;
    }
    return index;
}

// ---- Packing of values ----

struct Symbol {
    int left;  // a symbol; a value if `right` is LEAF
    int right;
    int length;  // values that it stands for
};
constexpr int LEAF = 0xFFF;
constexpr int MAX_SYMBOLS = 0xFFF;
constexpr int MAX_SYMBOL_LENGTH = 256;
constexpr int MAX_BLOCK_LENGTH = 0x10000;

// Values nobody asks for repeat the one before.
Values filled(Values values) {
    const auto asked = std::find_if(values.begin(), values.end(), [](int v) { return v != ANY; });
    int last = asked == values.end() ? 0 : *asked;
    for (int& value : values) last = value = value == ANY ? last : value;
    return values;
}

// Turns values into numbers of new symbols.
std::vector<Symbol> leaf_symbols(Values& text) {
    std::vector<Symbol> symbols;
    for (const int value : std::set<int>(text.begin(), text.end())) {
        symbols.push_back({value, LEAF, 1});
    }
    for (int& item : text) {
        item = int(std::find_if(symbols.begin(), symbols.end(),
                                [&](const Symbol& s) { return s.left == item; }) -
                   symbols.begin());
    }
    return symbols;
}

// Replaces the commonest pair of neighbours by a new symbol, again and again.
void join_pairs(std::vector<Symbol>& symbols, Values& text, int pairs) {
    for (; pairs > 0 && symbols.size() < MAX_SYMBOLS; --pairs) {
        const size_t size = symbols.size();
        std::vector<int> counts(size * size);
        for (size_t i = 1; i < text.size(); ++i) {
            if (symbols[size_t(text[i - 1])].length + symbols[size_t(text[i])].length <=
                MAX_SYMBOL_LENGTH) {
                ++counts[size_t(text[i - 1]) * size + size_t(text[i])];
            }
        }
        const auto best = std::max_element(counts.begin(), counts.end());
        if (*best < 2) return;
        const int left = int(size_t(best - counts.begin()) / size);
        const int right = int(size_t(best - counts.begin()) % size);
        symbols.push_back(
            {left, right, symbols[size_t(left)].length + symbols[size_t(right)].length});
        Values shorter;
        for (size_t i = 0; i < text.size(); ++i) {
            const bool joined = i + 1 < text.size() && text[i] == left && text[i + 1] == right;
            shorter.push_back(joined ? int(size) : text[i]);
            i += joined;
        }
        text = shorter;
    }
}

// Huffman code lengths, 0 for symbols that occur only inside others.
std::vector<int> code_lengths(size_t symbol_count, const Values& text) {
    std::vector<int> weights(symbol_count);
    for (const int symbol : text) ++weights[size_t(symbol)];

    struct Node {
        int weight;
        std::vector<int> symbols;
        bool operator>(const Node& other) const { return weight > other.weight; }
    };
    std::priority_queue<Node, std::vector<Node>, std::greater<>> nodes;
    for (int symbol = 0; symbol < int(symbol_count); ++symbol) {
        if (weights[size_t(symbol)]) nodes.push({weights[size_t(symbol)], {symbol}});
    }
    std::vector<int> lengths(symbol_count);
    if (nodes.size() == 1) lengths[size_t(nodes.top().symbols[0])] = 1;
    while (nodes.size() > 1) {
        Node joined = nodes.top();
        nodes.pop();
        joined.weight += nodes.top().weight;
        joined.symbols.insert(joined.symbols.end(), nodes.top().symbols.begin(),
                              nodes.top().symbols.end());
        nodes.pop();
        for (const int symbol : joined.symbols) ++lengths[size_t(symbol)];
        nodes.push(joined);
    }
    return lengths;
}

// Symbols in the order of the file: longest codes first, those without code last.
void sort_by_length(std::vector<Symbol>& symbols, Values& text, std::vector<int>& lengths) {
    std::vector<int> order(symbols.size());
    for (int i = 0; i < int(order.size()); ++i) order[size_t(i)] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return lengths[size_t(a)] > lengths[size_t(b)]; });
    std::vector<int> number(symbols.size());
    std::vector<Symbol> sorted;
    std::vector<int> sorted_lengths;
    for (const int old : order) {
        number[size_t(old)] = int(sorted.size());
        sorted.push_back(symbols[size_t(old)]);
        sorted_lengths.push_back(lengths[size_t(old)]);
    }
    for (Symbol& symbol : sorted) {
        if (symbol.right == LEAF) continue;
        symbol.left = number[size_t(symbol.left)];
        symbol.right = number[size_t(symbol.right)];
    }
    for (int& item : text) item = number[size_t(item)];
    symbols = sorted;
    lengths = sorted_lengths;
}

struct Code {
    int shortest, longest;
    std::vector<int> first_symbol;  // by length, from the shortest
    std::vector<u32> first_code;
};

// Codes of one length ascend with the symbol, and a shorter code is above the longer ones.
Code make_code(const std::vector<int>& lengths) {
    const int coded = int(lengths.size() - size_t(std::count(lengths.begin(), lengths.end(), 0)));
    Code code{lengths[size_t(coded - 1)], lengths[0], {}, {}};
    u32 next = 0;
    int symbol = 0;
    for (int length = code.longest; length >= code.shortest; --length) {
        code.first_symbol.insert(code.first_symbol.begin(), symbol);
        code.first_code.insert(code.first_code.begin(), next);
        for (; symbol < coded && lengths[size_t(symbol)] == length; ++symbol) ++next;
        next /= 2;
    }
    return code;
}

// The four places of a file where a table leaves something.
struct Packed {
    std::string header, index, lengths, blocks;
};

struct BlockWriter {
    Packed& out;
    int bits;                       // of a block
    std::vector<int> starts = {0};  // first value of each block, and the end
    int used = 0;                   // bits and values of the open block
    int count = 0;

    void add(u32 code, int code_length, int values) {
        if (used + code_length > bits || count + values > MAX_BLOCK_LENGTH) close();
        count += values;
        while (code_length-- > 0) {
            if (used % 8 == 0) out.blocks += '\0';
            const u32 one = code >> code_length & 1;
            out.blocks.back() = char(u8(out.blocks.back()) | one << (7 - used % 8));
            ++used;
        }
    }
    void close() {
        put(out.lengths, 2, u64(count - 1));
        starts.push_back(starts.back() + count);
        pad_to(out.blocks, size_t(bits / 8));
        used = count = 0;
    }
};

// For the middle of each span the block and the place in it. A last middle beyond the end falls in
// blocks that exist only in the list of lengths. Returns how many of these there are.
int write_index(Packed& out, const std::vector<int>& starts, int span_bits) {
    const int span = 1 << span_bits;
    const int size = starts.back();
    int extra = 0;
    for (int middle = span / 2; middle - span / 2 < size; middle += span) {
        const int block =
            int(std::upper_bound(starts.begin(), starts.end(), middle) - starts.begin()) - 1;
        const int beyond = (middle - starts[size_t(block)]) / MAX_BLOCK_LENGTH;
        put(out.index, 4, u64(block + beyond));
        put(out.index, 2, u64(middle - starts[size_t(block)] - beyond * MAX_BLOCK_LENGTH));
        if (middle >= size) extra = beyond + 1;
    }
    for (int i = 0; i < extra; ++i) put(out.lengths, 2, MAX_BLOCK_LENGTH - 1);
    return extra;
}

Packed pack(const Values& values, const Packing& packing, u8 flags) {
    Packed out;
    Values text = filled(values);
    if (packing.single && std::count(text.begin(), text.end(), text[0]) == std::ssize(text)) {
        put(out.header, 1, SINGLE_VALUE | (flags & DTZ_BLACK));
        put(out.header, 1, u64(text[0]));
        return out;
    }
    std::vector<Symbol> symbols = leaf_symbols(text);
    join_pairs(symbols, text, packing.pairs);
    std::vector<int> lengths = code_lengths(symbols.size(), text);
    sort_by_length(symbols, text, lengths);
    const Code code = make_code(lengths);

    BlockWriter writer{out, 8 << packing.block_bits};
    for (const int symbol : text) {
        const int length = lengths[size_t(symbol)];
        const size_t row = size_t(length - code.shortest);
        writer.add(code.first_code[row] + u32(symbol - code.first_symbol[row]), length,
                   symbols[size_t(symbol)].length);
    }
    writer.close();
    const int extra = write_index(out, writer.starts, packing.span_bits);

    put(out.header, 1, flags);
    put(out.header, 1, u64(packing.block_bits));
    put(out.header, 1, u64(packing.span_bits));
    put(out.header, 1, u64(extra));
    put(out.header, 4, writer.starts.size() - 1);
    put(out.header, 1, u64(code.longest));
    put(out.header, 1, u64(code.shortest));
    for (const int symbol : code.first_symbol) put(out.header, 2, u64(symbol));
    put(out.header, 2, symbols.size());
    for (const Symbol& symbol : symbols) put(out.header, 3, u64(symbol.left | symbol.right << 12));
    pad_to(out.header, 2);
    return out;
}

// ---- Files ----

constexpr u32 WDL_MAGIC = 0x5D23E871;
constexpr int TWO_SIDED = 1;     // material differs
constexpr size_t CHECKSUM = 16;  // at the end, which no reader verifies

// The positions with one side to move and, with a pawn, the pawn on one file.
struct Section {
    int side;
    Values values;  // by position number
    u8 flags = 0;
    std::string map = {};
};

// The sections of a side by file of the pawn, with value(king, at, enemy) of every legal position.
template <typename Value>
std::vector<Section> make_sections(const Solution& s, const TableForm& form, int side,
                                   const Value& value) {
    const std::string_view men = form.men[size_t(side)];
    if (s.piece != PAWN) {
        std::vector<Section> sections = {{side, Values(TRIPLES, ANY)}};
        each_position(s, side, [&](int king, int at, int enemy) {
            std::array<int, 3> squares;
            for (size_t i = 0; i < 3; ++i) {
                squares[i] = men[i] == 'W' ? king : men[i] == 'B' ? enemy : at;
            }
            sections[0].values[size_t(piece_index(squares))] = value(king, at, enemy);
        });
        return sections;
    }
    std::vector<Section> sections(4, {side, Values(PAWN_TRIPLES, ANY)});
    const bool white_first = men.find('W') < men.find('B');
    each_position(s, side, [&](int king, int at, int enemy) {
        if (file_of(at) > 3) return;  // the mirror of another
        const int index = pawn_index(at, white_first ? king : enemy, white_first ? enemy : king,
                                     form.pawn_place[size_t(side)]);
        sections[size_t(file_of(at))].values[size_t(index)] = value(king, at, enemy);
    });
    return sections;
}

int man_code(char man, int piece) {
    return man == 'W'   ? make_piece(WHITE, KING)
           : man == 'B' ? make_piece(BLACK, KING)
                        : make_piece(WHITE, piece);
}

// The men of a side in order, preceded by the place of the leading group.
std::vector<int> order_codes(int piece, const TableForm& form, int side) {
    std::vector<int> codes = {piece == PAWN ? form.pawn_place[size_t(side)] : 0};
    if (piece == PAWN) codes.push_back(make_piece(WHITE, PAWN));
    for (const char man : std::string_view(form.men[size_t(side)])) {
        if (piece != PAWN || man != 'X') codes.push_back(man_code(man, piece));
    }
    return codes;
}

// `sides` holds the sections of the sides in the file, one or two; each for all files of the pawn.
std::string table_file(u32 magic, int piece, const TableForm& form,
                       const std::vector<std::vector<Section>>& sides) {
    constexpr int WITH_PAWNS = 2;
    constexpr int MEN = 3;
    std::string bytes;
    put(bytes, 4, magic);
    put(bytes, 1, MEN << 4 | TWO_SIDED | (piece == PAWN ? WITH_PAWNS : 0));
    for (size_t file = 0; file < sides[0].size(); ++file) {
        std::vector<int> codes = order_codes(piece, form, sides[0][0].side);
        if (sides.size() == 2) {
            const std::vector<int> high = order_codes(piece, form, sides[1][0].side);
            for (size_t i = 0; i < codes.size(); ++i) codes[i] |= high[i] << 4;
        }
        for (const int code : codes) put(bytes, 1, u64(code));
    }
    pad_to(bytes, 2);

    std::vector<Packed> tables;
    for (size_t file = 0; file < sides[0].size(); ++file) {
        for (const auto& sections : sides) {
            tables.push_back(pack(sections[file].values, form.packing, sections[file].flags));
            bytes += tables.back().header;
        }
    }
    for (const Section& section : sides[0]) {
        if (section.flags & DTZ_WIDE) pad_to(bytes, 2);
        bytes += section.map;
    }
    pad_to(bytes, 2);
    for (const Packed& table : tables) bytes += table.index;
    for (const Packed& table : tables) bytes += table.lengths;
    for (const Packed& table : tables) {
        pad_to(bytes, 64);
        bytes += table.blocks;
    }
    return bytes + std::string(CHECKSUM, '\xC5');
}

// Distances through a list of those that occur, the longest first.
void map_values(Section& section, bool spoiled) {
    std::set<int, std::greater<>> distinct(section.values.begin(), section.values.end());
    distinct.erase(ANY);
    const Values list(distinct.begin(), distinct.end());
    const int size = section.flags & DTZ_WIDE ? 2 : 1;
    const int used = (section.side == BLACK ? 1 : 0) + (spoiled ? 2 : 0);
    for (int outcome = 0; outcome < 4; ++outcome) {
        const int more = (outcome - used + 4) % 4 * list_step(section.flags);
        put(section.map, size, list.size());
        for (const int value : list) put(section.map, size, u64(value + more));
    }
    for (int& value : section.values) {
        if (value == ANY) continue;
        value = int(std::find(list.begin(), list.end(), value) - list.begin());
    }
}

bool in_plies(const TableForm& form) {
    return !form.spoiled &&
           (form.dtz_flags & (form.dtz_flags & DTZ_BLACK ? DTZ_LOSS_PLIES : DTZ_WIN_PLIES)) != 0;
}

}  // namespace

std::string table_name(int piece) { return std::string("K") + ".PNBRQ"[piece] + "vK"; }

std::string wdl_table(int piece, const TableForm& form) {
    const Solution& s = solution(piece);
    std::vector<std::vector<Section>> sides;
    for (const int side : {WHITE, BLACK}) {
        sides.push_back(make_sections(s, form, side, [&](int king, int at, int enemy) {
            constexpr int DRAW = 2;
            const int loss = form.spoiled ? 1 : 0;
            const int win = form.spoiled ? 3 : 4;
            if (has(s.won[side][king][at], enemy)) return side == WHITE ? win : loss;
            const bool by_capture = side == BLACK && black_takes(king, at, enemy);
            return by_capture && form.loose ? loss : DRAW;
        }));
    }
    return table_file(WDL_MAGIC, piece, form, sides);
}

std::string constant_wdl_table(std::string_view name, int outcome) {
    const TableMaterial material = material_of_name(name);
    std::vector<int> men;  // those that occur once come first
    for (const bool single : {true, false}) {
        for (int code = 0; code < 16; ++code) {
            const int count = material.counts[code];
            if ((count == 1) == single) men.insert(men.end(), size_t(count), code);
        }
    }
    std::string bytes;
    put(bytes, 4, WDL_MAGIC);
    put(bytes, 1, men.size() << 4 | (material.symmetric ? 0 : TWO_SIDED));
    put(bytes, 1, 0);  // the place of the leading group
    for (const int code : men) put(bytes, 1, u64(code << 4 | code));
    pad_to(bytes, 2);
    for (int side = 0; side < (material.symmetric ? 1 : 2); ++side) {
        put(bytes, 1, SINGLE_VALUE);
        put(bytes, 1, u64(outcome));
    }
    return bytes + std::string(CHECKSUM, '\xC5');
}

std::string dtz_table(int piece, const TableForm& form) {
    const Solution& s = solution(piece);
    const int side = form.dtz_flags & DTZ_BLACK ? BLACK : WHITE;
    std::vector<Section> sections = make_sections(s, form, side, [&](int king, int at, int enemy) {
        const int plies = std::abs(s.dtz[side][king][at][enemy]);
        // A pawn move at hand that wins needs no table.
        if (plies == 0 || (piece == PAWN && side == WHITE && plies == 1)) return ANY;
        return (plies - 1) / (in_plies(form) ? 1 : 2);
    });
    for (Section& section : sections) {
        section.flags = form.dtz_flags;
        if (form.dtz_flags & DTZ_MAPPED) map_values(section, form.spoiled);
    }
    return table_file(0xA50C66D7, piece, form, {sections});
}

int stored_dtz(int dtz, const TableForm& form) {
    const int sign = dtz > 0 ? 1 : dtz < 0 ? -1 : 0;
    const bool rounded = !in_plies(form) && (form.dtz_flags & DTZ_BLACK) && std::abs(dtz) > 1;
    return dtz + sign * ((form.spoiled ? 100 : 0) - (rounded ? 1 : 0));
}

TableDirectory::TableDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "quon-tables-XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    path = name;
}

TableDirectory::~TableDirectory() {
    tb_init("");
    std::filesystem::remove_all(path);
}

void TableDirectory::write(const std::string& name, std::string_view bytes) const {
    std::filesystem::remove(path + "/" + name);  // far quicker than writing over it
    std::ofstream file(path + "/" + name, std::ios::binary);
    file.write(bytes.data(), std::streamsize(bytes.size()));
    EXPECT_TRUE(file.good()) << name;
}

void TableDirectory::load() const {
    captured_output([&] { tb_init(path); });
}

}  // namespace quon::test
