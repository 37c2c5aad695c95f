// Helpers of the search tests.

#include "support/search_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "board/fen.h"
#include "board/keys.h"
#include "board/legality.h"
#include "board/make.h"
#include "board/move_text.h"
#include "platform/clock.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/report.h"
#include "search/search.h"
#include "search/search_params.h"
#include "search/time.h"
#include "support/board_support.h"

namespace quon::test {

SearchRig::SearchRig(int hash_mb, int threads)
    : saved_options(options), saved_limits(limits), saved_params(params) {
    options.hash_mb = i16(hash_mb);
    options.log_enabled = false;
    options.output_delay = NEVER;
    limits.time_mode = 1;
    limits.fixed_time = 10000000;
    limits.max_nodes = 0;
    game.position.owner = &game;
    set_game(START_FEN);
    apply_search_params();
    if (!hash_alloc() || !create_threads(threads)) ADD_FAILURE() << "no memory, or no threads";
}

SearchRig::~SearchRig() {
    destroy_threads();
    hash_free();
    options = saved_options;
    limits = saved_limits;
    params = saved_params;
    control.go_request = NO_SEARCH;
    control.search_mode = NO_SEARCH;
    control.stop_flag = RUN;
}

SearchResult SearchRig::search(std::string_view fen, int depth) {
    set_game(fen);
    hash_clear();
    return search_game(depth);
}

SearchResult SearchRig::search_game(int depth) {
    start(depth);
    while (busy_threads() != 0) {
        time_check();
        sleep_ms(1);
    }
    return result();
}

void SearchRig::start(int depth) {
    limits.depth_limit = u8(depth);
    control.go_request = GO_PLAY;
    time_setup();
    if (thread_total() > 1) {
        start_search_threads();
        return;
    }
    thread_prepare(thread_data(0));
    iterate(thread_data(0));
}

SearchResult SearchRig::result() {
    wait_for_idle_threads();
    collect_stats();
    SearchResult result{run.shared_score, run.shared_depth, totals.nodes, {}};
    for (int i = 1; i < MAX_PLY && run.shared_line[i] != NO_MOVE; ++i) {
        result.line.push_back(run.shared_line[i]);
    }
    return result;
}

void set_game(std::string_view fen, std::string_view moves) {
    position_from_fen(game.position, fen);
    ASSERT_EQ(position_problem(game.position), nullptr) << fen;
    if (moves.empty()) return;
    for (const std::string& text : split(moves, ' ')) {
        const Move move = parse_coordinates(game.position, text);
        ASSERT_NE(move, NO_MOVE) << text << " in " << fen;
        make_move(game.position, move);
    }
}

const char* const benchmark[20] = {
    "r1bqkb1r/pp1ppppp/2n2n2/8/3NP3/2N5/PPP2PPP/R1BQKB1R b KQkq -",
    "1n5k/3q3p/pp1p2pB/5r2/1PP1Qp2/P6P/6P1/2R3K1 w - -",
    "1r1qbr1k/4bp1p/p3p2Q/3pP3/2pP4/P1N1PN2/1PR2RP1/6K1 b - -",
    "2r1q2k/7p/p1np1P1P/8/1pP2R2/8/PP1Q4/R1KN2r1 b - -",
    "r2r2k1/5pp1/2bPp3/p1N4p/1qQ5/2P2P2/BP4PP/1K1R4 b - -",
    "5r1k/5rp1/p1n1p1qp/2P1p3/P7/4QN1P/5PP1/2R1R2K w - -",
    "2r3k1/1pq1b1p1/p1b1pr1p/8/PP2pP2/2P1B3/4B1PP/RQR4K w - -",
    "1r3b2/3R2pk/6q1/3Q1p2/p6P/4B2P/1P3P1K/8 w - -",
    "r2r2k1/6bp/1P2q1p1/4pp2/p1N5/2Q5/PPR3PP/4R2K b - -",
    "2r1q2k/7p/p1np1P1P/8/1pP2R2/8/PP1Q4/R1KN2r1 b - -",
    "r1bq1r1k/p1pnbpp1/1p2p3/6p1/3PB3/5N2/PPPQ1PPP/2KR3R w - - ",
    "r1b2rk1/1p1nbppp/pq1p4/3B4/P2NP3/2N1p3/1PP3PP/R2Q1R1K w - -",
    "r3r1kb/1npb1p1p/2q2np1/4p1B1/ppP1P2Q/1P2RNNP/P1B2PP1/3R2K1 w - -",
    "2rr3k/2qnbppp/p1n1p3/1p1pP3/3P1N2/1Q1BBP2/PP3P1P/1KR3R1 w - -",
    "3q1r1k/1b3ppp/p1n5/1p1pPB2/2rP4/P6N/1P2Q1PP/R4RK1 w - -",
    "r1b1k2r/1p1pppb1/p5pp/3P4/q2p1B2/3P1Q2/PPP2PPP/R3R1K1 w kq -",
    "R4bk1/2Bbp2p/2p2pp1/1rPp4/3P4/4P2P/4BPPK/1q1Q4 w - -",
    "r2q1rk1/5ppp/3b4/1nnP2P1/1Q3BbP/Pp4N1/1P4B1/1KN2R1R b - -",
    "r7/5pk1/5p2/2p5/pp6/1P1B1KPN/P6P/8 b - -",
    "r2q3r/1p1bbQ2/4p1Bk/3pP3/1n1P1P1p/pP6/Pn4PP/R1B1R1K1 w - -",
};

std::string line_text(const std::vector<Move>& line) {
    std::string text;
    for (const Move move : line) {
        if (!text.empty()) text += ' ';
        text += move_to_text(move);
    }
    return text;
}

std::string line_problem(std::string_view fen, const std::vector<Move>& line, bool mate) {
    const auto played = make_game(fen);
    for (const Move move : line) {
        if (!is_pseudo_legal(played->position, move) || !is_legal(played->position, move)) {
            return move_to_text(move) + " is not legal in " + line_text(line);
        }
        make_move(played->position, move);
    }
    const bool mated = in_check(played->position) && !has_legal_move(played->position);
    return mate && !mated ? "no mate: " + line_text(line) : "";
}

namespace {

// By position and plies left: whether the side to move mates in time.
using Solved = std::map<std::pair<u64, int>, bool>;

bool mates_within(Position& p, int plies, Solved& solved);

bool is_lost_within(Position& p, int plies, Solved& solved) {
    const std::vector<Move> replies = legal_moves(p);
    if (replies.empty()) return in_check(p);
    if (plies < 2) return false;
    for (const Move reply : replies) {
        make_move(p, reply);
        const bool mated = mates_within(p, plies - 1, solved);
        unmake_move(p);
        if (!mated) return false;
    }
    return true;
}

bool mates_within(Position& p, int plies, Solved& solved) {
    const auto key = std::make_pair(full_key(p), plies);
    const auto known = solved.find(key);
    if (known != solved.end()) return known->second;
    bool mates = false;
    for (const Move move : legal_moves(p)) {
        make_move(p, move);
        mates = is_lost_within(p, plies - 1, solved);
        unmake_move(p);
        if (mates) break;
    }
    return solved[key] = mates;
}

}  // namespace

int plies_to_mate(std::string_view fen, int limit) {
    const auto played = make_game(fen);
    Solved solved;
    for (int plies = 1; plies <= limit; plies += 2) {
        if (mates_within(played->position, plies, solved)) return plies;
    }
    return 0;
}

std::string copy_problem(const ThreadData& t) {
    const Position& own = t.position;
    const Position& master = game.position;
    if (own.owner != &t) return "owner";
    if (!std::equal(own.board.begin(), own.board.end(), master.board.begin())) return "board";
    if (full_key(own) != full_key(master) || own.pawn_key != master.pawn_key) return "keys";
    if (own.fifty != master.fifty) return "fifty";
    if (t.game_ply != game.game_ply || t.last_move != game.last_move) return "record";
    if (t.ply != 1 || t.ext_acc % 16 != t.ext_acc) return "ply";
    return inconsistency(own);
}

}  // namespace quon::test
