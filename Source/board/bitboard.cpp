// The attack tables. Everything but the slider tables is computed by the compiler.

#include "board/bitboard.h"

#include <cstddef>

namespace quon {

namespace {

struct Step {
    int file;
    int rank;
};
constexpr Step STRAIGHT[] = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};
constexpr Step DIAGONAL[] = {{1, 1}, {-1, 1}, {-1, -1}, {1, -1}};
constexpr Step KNIGHT_STEPS[] = {{1, 2},   {2, 1},   {2, -1}, {1, -2},
                                 {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};

constexpr bool on_board(int file, int rank) {
    return file >= 0 && file < 8 && rank >= 0 && rank < 8;
}

template <std::size_t N>
constexpr Bitboard steps_from(int square, const Step (&steps)[N]) {
    Bitboard result = 0;
    for (const Step step : steps) {
        const int file = file_of(square) + step.file;
        const int rank = rank_of(square) + step.rank;
        if (on_board(file, rank)) result |= bit(make_square(file, rank));
    }
    return result;
}

// Squares from the origin, exclusive, to the first blocker, inclusive, or the edge.
constexpr Bitboard ray(int square, Step step, Bitboard occupancy) {
    Bitboard result = 0;
    int file = file_of(square) + step.file;
    int rank = rank_of(square) + step.rank;
    for (; on_board(file, rank); file += step.file, rank += step.rank) {
        const Bitboard here = bit(make_square(file, rank));
        result |= here;
        if (occupancy & here) break;
    }
    return result;
}

constexpr Bitboard rays(int square, const Step (&steps)[4], Bitboard occupancy) {
    Bitboard result = 0;
    for (const Step step : steps) result |= ray(square, step, occupancy);
    return result;
}

template <typename Function>
constexpr Table<Bitboard, 64> each_square(Function function) {
    Table<Bitboard, 64> table{};
    for (int square = 0; square < 64; ++square) table[square] = function(square);
    return table;
}

constexpr Table<Table<Bitboard, 64>, 2> make_pawn_attacks() {
    constexpr Step white[] = {{-1, 1}, {1, 1}};
    constexpr Step black[] = {{-1, -1}, {1, -1}};
    return {{each_square([&](int s) { return steps_from(s, white); }),
             each_square([&](int s) { return steps_from(s, black); })}};
}

constexpr Table<Table<Bitboard, 64>, 7> make_open_attacks() {
    const auto diagonal = each_square([](int s) { return rays(s, DIAGONAL, 0); });
    const auto straight = each_square([](int s) { return rays(s, STRAIGHT, 0); });
    const auto queen = each_square([&](int s) { return diagonal[s] | straight[s]; });
    const auto knight = each_square([](int s) { return steps_from(s, KNIGHT_STEPS); });
    const auto king =
        each_square([](int s) { return steps_from(s, STRAIGHT) | steps_from(s, DIAGONAL); });
    return {{{}, {}, knight, diagonal, straight, queen, king}};
}

constexpr Table<Table<Bitboard, 64>, 64> make_between() {
    Table<Table<Bitboard, 64>, 64> table{};
    for (int from = 0; from < 64; ++from) {
        for (const auto& steps : {STRAIGHT, DIAGONAL}) {
            for (int i = 0; i < 4; ++i) {
                Bitboard passed = 0;
                int file = file_of(from) + steps[i].file;
                int rank = rank_of(from) + steps[i].rank;
                for (; on_board(file, rank); file += steps[i].file, rank += steps[i].rank) {
                    table[from][make_square(file, rank)] = passed;
                    passed |= bit(make_square(file, rank));
                }
            }
        }
    }
    return table;
}

constexpr Table<Table<u8, 64>, 64> make_distances() {
    Table<Table<u8, 64>, 64> table{};
    for (int a = 0; a < 64; ++a) {
        for (int b = 0; b < 64; ++b) {
            const int files =
                file_of(a) > file_of(b) ? file_of(a) - file_of(b) : file_of(b) - file_of(a);
            const int ranks =
                rank_of(a) > rank_of(b) ? rank_of(a) - rank_of(b) : rank_of(b) - rank_of(a);
            table[a][b] = u8(files > ranks ? files : ranks);
        }
    }
    return table;
}

}  // namespace

constinit const Table<Table<Bitboard, 64>, 2> pawn_attacks = make_pawn_attacks();
constinit const Table<Table<Bitboard, 64>, 7> open_attacks = make_open_attacks();
constinit const Table<Table<Bitboard, 64>, 64> between = make_between();
constinit const Table<Table<u8, 64>, 64> king_distance = make_distances();

Table<Slider, 64> rook_sliders;
Table<Slider, 64> bishop_sliders;

namespace {

// Factors that map every relevant occupancy of a square to an index without a harmful collision;
// found by trying sparse random numbers.
constexpr Table<u64, 64> ROOK_FACTORS = {{
    0x2080002080400010, 0x00C0002001401000, 0x2100110008402002, 0x0880080081041000,
    0x0200020020041008, 0x2300040008010012, 0x0C00283004008201, 0x0180010000407A80,
    0x0168800080400020, 0x0010400040201000, 0x1001002001001048, 0x1001002408100100,
    0x0801000408010012, 0x4001000209000400, 0x08A20004C8020001, 0x2002801145002280,
    0x0080860021004200, 0x001000C009402002, 0x00B0002004002800, 0x100A808010020800,
    0x8101010008000410, 0x0244008002000480, 0x0000040010810208, 0x2000020000448534,
    0x4104400480008033, 0x0000810100204000, 0x0440430900200010, 0x4600240900100100,
    0x0060080080040080, 0x0001000300080400, 0x0004084400011002, 0x0023040200008041,
    0x0580050043002080, 0x0400804002802008, 0x0001002001004010, 0x1000200901001000,
    0x4410800801800C00, 0xA012003806001004, 0x0020100104008802, 0x0004808402000041,
    0x0010400170898000, 0x0080500020004004, 0x1040408012020020, 0x8010040008004040,
    0x2001080100110004, 0x0000020004008080, 0x0021010810040002, 0x0800008C43020024,
    0x0000800021005100, 0x0070201040008080, 0x0000D04282006A00, 0x0010014400080240,
    0x0001080110050100, 0x0012000810240600, 0x0402000801040200, 0x028100108A004100,
    0x0050800300102045, 0x8208210040120882, 0x8010600101183441, 0x020B000910006045,
    0x0241001002480005, 0x0081000400880241, 0x0000009008024124, 0x0048122980410402,
}};
constexpr Table<u64, 64> BISHOP_FACTORS = {{
    0x0848020822040013, 0x8010A40085821200, 0x0008008430840822, 0x0808048108040000,
    0x1304042100008104, 0x5001012010204023, 0x81048801B8200420, 0x200A008084012000,
    0x0040102001042084, 0x840A505042428020, 0x0000700102202920, 0x44101C0C10800002,
    0x0040040422000000, 0x0180020802090202, 0x4020020811041202, 0x000104308C042000,
    0x4140661002424400, 0x0028012008010460, 0x0188062102002A00, 0x0014004840102008,
    0x0105000290400002, 0x8001022200410400, 0x104A041918013446, 0x008A000082008238,
    0x04A0060008100430, 0x0008220008820801, 0x2508041208005010, 0x4008080200202020,
    0x2441001013004000, 0x0030008060407000, 0x4008108000420800, 0x0012021050290100,
    0x0210080482200500, 0xCC01112048100480, 0x0020402806500440, 0x00048E0080580080,
    0x0040102020020080, 0x0028010440080807, 0x4601041108008800, 0x8040810E04104200,
    0x901210110400088A, 0xA003080212081050, 0x00C1004048401004, 0x900000A014400800,
    0x0008021040405401, 0x4020008206002090, 0x0004190424030100, 0x0424008A02026250,
    0x8004088250900040, 0x1C00430088A04200, 0x0001020094040001, 0x8040210020880061,
    0x2010040450442032, 0x0800840850044001, 0x0004040802140004, 0x0004080A04222020,
    0x8088802110022000, 0x1081A10416114400, 0x0205010A24060820, 0x0000000720411080,
    0x1008000208430400, 0x580C026028810840, 0x802020441020A110, 0x12C0022401020018,
}};

// One slice per square, of as many entries as its relevant occupancies have subsets.
Slider::Entry rook_slices[102400];
Slider::Entry bishop_slices[5248];

// Squares whose occupancy can change the attacks: the rays without their last squares.
Bitboard relevant_squares(int square, const Step (&steps)[4]) {
    const Bitboard rank_ends = (RANK_1 | RANK_8) & ~rank_mask(rank_of(square));
    const Bitboard file_ends = (FILE_A | FILE_H) & ~file_mask(file_of(square));
    return rays(square, steps, 0) & ~(rank_ends | file_ends);
}

void fill_slices(Table<Slider, 64>& sliders, const Table<u64, 64>& factors, const Step (&steps)[4],
                 Slider::Entry* slice) {
    for (int square = 0; square < 64; ++square) {
        const Bitboard mask = relevant_squares(square, steps);
        const Slider slider = Slider::make(mask, rays(square, steps, 0), factors[square], slice);
        sliders[square] = slider;
        Bitboard subset = 0;
        do {
            slice[slider.index(subset)] = slider.pack(rays(square, steps, subset));
            subset = (subset - mask) & mask;
        } while (subset);
        slice += std::size_t{1} << popcount64(mask);
    }
}

}  // namespace

void init_attack_tables() {
    fill_slices(rook_sliders, ROOK_FACTORS, STRAIGHT, rook_slices);
    fill_slices(bishop_sliders, BISHOP_FACTORS, DIAGONAL, bishop_slices);
}

}  // namespace quon
