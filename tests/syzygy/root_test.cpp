// The root probe: its moves, its choice, and the fifty-move rule.

#include "syzygy/reference_tables.h"

namespace quon::test {
namespace {

constexpr int LONGEST_GAME = 400;  // plies, far beyond any ending of the data

Move move_of(u32 result) {
    constexpr Move PROMOTIONS[] = {0, PROMOTE_QUEEN, PROMOTE_ROOK, PROMOTE_BISHOP, PROMOTE_KNIGHT};
    return make_code(result_from(result), result_to(result), PROMOTIONS[result_promotion(result)]);
}

u32 result_of(const ProbeMove& move) {
    return u32(move.to) << 4 | u32(move.from) << 10 | u32(move.promotion) << 16;
}

// The fields of a prober's position, without the ep square if that is of no use to `like`.
auto fields(const ProbePosition& p, const ProbePosition& like) {
    return std::tuple(p.white, p.black, p.kings, p.queens, p.rooks, p.bishops, p.knights, p.pawns,
                      p.turn, p.rule50, like.ep == 0 ? 0 : p.ep);
}

// Small positions rich in pawns, with promotions, pins and en passant.
constexpr const char* SMALL_POSITIONS[] = {
    "8/2P5/8/k2pP3/8/8/5p2/K5r1 w - d6", "3n4/2P1P3/8/1k6/8/8/3pp3/K1N5 w - -",
    "8/8/8/8/k2Pp2R/8/8/4K3 b - d3",     "7k/8/8/3Pp3/8/8/1b6/K6B w - e6",
    "8/8/1q6/8/3Pp3/4k3/8/6K1 b - d3",   "4k3/8/8/8/8/8/3PPP2/4K1b1 w - -",
};

TEST(ProberMoves, AgreeWithTheBoard) {
    Random random(1);
    for (int round = 0; round < scaled(400); ++round) {
        const auto played = make_game(SMALL_POSITIONS[round % int(std::size(SMALL_POSITIONS))]);
        Position& p = played->position;
        for (int ply = 0; ply < 12; ++ply) {
            std::vector<Move> moves = legal_moves(p);
            if (moves.empty()) break;
            const Move next = moves[std::size_t(pick(random, int(moves.size())))];
            const ProbePosition position = probe_position(p, p.fifty);
            std::vector<Move> own;
            ProbeMoves list;
            ProbePosition child{};
            ProbePosition after_next{};
            list_moves(position, MoveKind::ALL, list);
            for (const ProbeMove& move : list) {
                if (!play(position, move, child)) continue;
                own.push_back(move_of(result_of(move)));
                if (own.back() == next) after_next = child;
            }
            std::sort(own.begin(), own.end());
            std::sort(moves.begin(), moves.end());
            ASSERT_EQ(own, moves);
            make_move(p, next);
            ASSERT_EQ(fields(after_next, after_next),
                      fields(probe_position(p, p.fifty), after_next));
        }
    }
}

class RootProbe : public testing::Test {
protected:
    const std::vector<ReferenceRow> rows = reference_rows();
    const LoadedTables tables;
};

// Both sides play the prober's moves: the win lasts until mate, and each stretch up to a capture or
// a pawn move is no longer than announced (a ply of rounding aside).
void play_out(const std::string& fen) {
    const auto played = make_game(fen);
    Position& p = played->position;
    bool winner_moves = true;
    int left = 0;  // plies of the stretch
    for (int ply = 0; ply < LONGEST_GAME; ++ply, winner_moves = !winner_moves) {
        const u32 result = tb_probe_root(probe_position(p, p.fifty), nullptr);
        if (result == TB_CHECKMATE) {
            ASSERT_FALSE(winner_moves);
            return;
        }
        ASSERT_NE(result, TB_FAILED) << "ply " << ply;
        ASSERT_EQ(result_wdl(result), winner_moves ? TB_WIN : TB_LOSS) << "ply " << ply;
        if (p.fifty == 0) left = result_dtz(result) + 1;
        ASSERT_GE(left--, 0) << "ply " << ply;
        make_move(p, move_of(result));
    }
    FAIL() << "no end";
}

// Endings all of whose promotions and captures have tables here.
bool is_closed(const ProbePosition& p) {
    return popcount64(p.white | p.black) <= 4 && !more_than_one(p.pawns & p.white) &&
           !more_than_one(p.pawns & p.black);
}

TEST_F(RootProbe, WonPositionsAreWon) {
    int won = 0;
    for (const ReferenceRow& row : rows) {
        if (row.wdl != 2 || !is_closed(probe_of(row.fen))) continue;
        if (++won > 50 && won % 8 >= scaled(1)) continue;
        SCOPED_TRACE(row.fen);
        play_out(row.fen);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(won, 40);
}

// The choice is one of the listed moves, none of which does better; those en passant are marked.
TEST_F(RootProbe, ChoosesTheBestListedMove) {
    const std::size_t stride = 1 + rows.size() / std::size_t(scaled(1500));
    std::size_t passed = 0;
    int compared = 0;
    for (const ReferenceRow& row : rows) {
        const ProbePosition p = probe_of(row.fen);
        if (p.ep == 0 && passed++ % stride != 0) continue;
        SCOPED_TRACE(row.fen);
        const u32 chosen = tb_probe_root(p, nullptr);
        std::vector<u32> results(TB_MAX_MOVES + 1);
        tb_probe_root(p, results.data());
        results.erase(std::find(results.begin(), results.end(), TB_FAILED), results.end());
        if (chosen == TB_FAILED || results.empty()) continue;
        ++compared;
        ASSERT_EQ(results.size(), legal_moves(make_game(row.fen)->position).size());
        int best = 0;
        bool listed = false;
        for (const u32 result : results) {
            best = std::max(best, result_wdl(result));
            constexpr u32 MOVE_BITS = 0xFFFF0;
            listed |=
                ((result ^ chosen) & MOVE_BITS) == 0 && result_wdl(result) == result_wdl(chosen);
            const bool en_passant = has(p.pawns, result_from(result)) &&
                                    file_of(result_from(result)) != file_of(result_to(result)) &&
                                    !has(occupied(p), result_to(result));
            ASSERT_EQ(result_en_passant(result), en_passant);
        }
        ASSERT_TRUE(listed);
        ASSERT_EQ(result_wdl(chosen), best);
    }
    EXPECT_GT(compared, scaled(200));
}

// A win that needs d plies counts while d more fit below the hundred.
TEST_F(RootProbe, FiftyMoveRule) {
    int tried = 0;
    for (std::size_t i = 0; i < rows.size(); i += 1 + rows.size() / std::size_t(scaled(2000))) {
        const ReferenceRow& row = rows[i];
        if (!row.dtz || std::abs(row.wdl) != 2) continue;
        ProbePosition position = probe_of(row.fen);
        const u32 fresh = tb_probe_root(position, nullptr);
        if (fresh == TB_FAILED || fresh == TB_CHECKMATE) continue;
        SCOPED_TRACE(row.fen);
        ++tried;
        const int distance = std::abs(*row.dtz);
        ASSERT_EQ(result_dtz(fresh), distance);
        for (const auto& [rule50, in_time] :
             {std::pair{100 - distance, true}, {101 - distance, false}}) {
            position.rule50 = u8(rule50);
            const u32 result = tb_probe_root(position, nullptr);
            const int won = in_time ? 4 : 3;
            ASSERT_EQ(result_wdl(result), row.wdl > 0 ? won : 4 - won);
            ASSERT_EQ(result_dtz(result), distance);
        }
    }
    EXPECT_GT(tried, scaled(50));
}

TEST_F(RootProbe, PositionsWithoutAnAnswer) {
    const struct {
        const char* fen;
        u32 result;
    } cases[] = {
        {"k7/1Q6/1K6/8/8/8/8/8 b - -", TB_CHECKMATE},
        {"k7/2Q5/1K6/8/8/8/8/8 b - -", TB_STALEMATE},
        {"8/8/8/8/8/5k2/5p2/5K2 w - -", TB_STALEMATE},
        {"k7/1Q6/1K6/8/8/8/8/8 w - -", TB_FAILED},  // Black is in check
        {"8/8/8/8/8/8/8/kRK3 w - -", TB_FAILED},
        {"8/8/8/8/2kK4/8/8/Q7 w - -", TB_FAILED},  // kings touch
    };
    for (const auto& c : cases)
        EXPECT_EQ(tb_probe_root(probe_of(c.fen), nullptr), c.result) << c.fen;

    // Sets that contradict each other.
    const ProbePosition good = probe_of("8/8/8/3k4/8/8/1P6/K7 w - -");
    ASSERT_NE(tb_probe_root(good, nullptr), TB_FAILED);
    for (const auto set : {&ProbePosition::kings, &ProbePosition::white, &ProbePosition::queens}) {
        for (const Bitboard change : {good.pawns, good.black, bit(H8)}) {
            ProbePosition damaged = good;
            damaged.*set ^= change;
            EXPECT_EQ(tb_probe_root(damaged, nullptr), TB_FAILED);
        }
    }
}

}  // namespace
}  // namespace quon::test
