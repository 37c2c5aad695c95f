// Tablebases at the root and in the tree.
//
// While the root's own result is unknown, a node is probed when it has just been reached by a
// capture, a pawn move or castling, and its result is its score. Once a result is known, the nodes
// below are probed for moves that give it away; which of the moves that keep it is best stays the
// search's business.

#include "search/tablebases.h"

#include <algorithm>

#include "board/legality.h"
#include "search/depths.h"
#include "search/run.h"
#include "search/score.h"
#include "search/searcher.h"

namespace quon {

namespace {

constexpr int LARGE_TABLE = 6;            // pieces from which syzygy_probe_depth6 counts
constexpr int PLAY_TABLE_MOVE_AFTER = 6;  // fifty-move count up to which a search chooses the move

bool probing_allowed(const Position& p) {
    return popcount64(occupied(p)) <= tb_largest && p.castle == 0;
}

// Less a ply for each step from the root, so that near wins are worth more.
int score_of_result(int result, int ply) {
    if (result == TB_LOSS) return TB_LOSS_SCORE + ply;
    return result == TB_WIN ? TB_WIN_SCORE - ply : DRAW_SCORE;
}

Move move_of_result(u32 result) {
    constexpr Move PROMOTIONS[] = {0, PROMOTE_QUEEN, PROMOTE_ROOK, PROMOTE_BISHOP, PROMOTE_KNIGHT};
    return make_code(result_from(result), result_to(result), PROMOTIONS[result_promotion(result)]);
}

int probe_at(ThreadData& t, int ply, int depth) {
    const int result = tb_wdl(t.shared->settings, t.position, depth);
    t.plies[ply].tb_result = result;
    if (result != NO_TB_RESULT) t.tb_hits.add(1);
    return result;
}

void publish_table_move(ThreadData& t, Move move) {
    auto& run = t.shared->run;
    t.tb_hits.add(1);
    t.root_line = {};
    t.root_line[1] = move;
    t.root_score = i16(score_of_result(run.root_tb_result, 0));
    t.best_depth = TB_RESULT_DEPTH;
    t.iteration = u8{1};
    t.sel_depth = u8{2};
    publish_result(t);
    run.finished = true;
    if (!stopped(t)) t.shared->control.stop_flag = STOP;
}

}  // namespace

ProbePosition probe_position(const Position& p, int fifty) {
    const auto both = [&p](int type) { return p.bb[WHITE][type] | p.bb[BLACK][type]; };
    return {.white = p.bb[WHITE][0],
            .black = p.bb[BLACK][0],
            .kings = both(KING),
            .queens = both(QUEEN),
            .rooks = both(ROOK),
            .bishops = both(BISHOP),
            .knights = both(KNIGHT),
            .pawns = both(PAWN),
            .rule50 = u8(fifty),
            .ep = p.ep == NO_SQUARE ? u8{0} : p.ep,
            .turn = p.side == WHITE ? u8{1} : u8{0}};
}

int tb_wdl(const SearchSettings& settings, const Position& p, int depth) {
    if (depth < settings.syzygy_probe_depth5 || !probing_allowed(p)) return NO_TB_RESULT;
    if (popcount64(occupied(p)) == LARGE_TABLE && depth < settings.syzygy_probe_depth6) {
        return NO_TB_RESULT;
    }
    int success = 0;
    const int value = tb_probe_wdl(probe_position(p, 0), success);
    return success ? value + 2 : NO_TB_RESULT;
}

int tb_root(const Position& p, int& out_wdl, int& out_dtz, Move& out_move) {
    const u32 result = tb_probe_root(probe_position(p, p.fifty), nullptr);
    if (result == TB_FAILED || result == TB_CHECKMATE || result == TB_STALEMATE) {
        return NO_TB_RESULT;
    }
    out_wdl = result_wdl(result);
    out_dtz = result_dtz(result);
    out_move = move_of_result(result);
    return out_wdl;
}

bool decide_root(ThreadData& t) {
    auto& run = t.shared->run;
    const Position& p = t.position;
    Move root_tb_move = NO_MOVE;
    int result = NO_TB_RESULT;
    if (t.shared->settings.syzygy_probe_depth5 <= TB_ROOT_DEPTH && probing_allowed(p)) {
        int wdl = 0;
        int dtz = 0;
        result = tb_root(p, wdl, dtz, root_tb_move);
    }
    // Of a few root moves none need keep the result; one that the tables play does.
    const std::vector<Move>& named = run.root_moves;
    const bool in_reach =
        named.empty() || std::find(named.begin(), named.end(), root_tb_move) != named.end();
    if (!in_reach) {
        result = NO_TB_RESULT;
        root_tb_move = NO_MOVE;
    } else if (result == NO_TB_RESULT) {
        result = tb_wdl(t.shared->settings, p, TB_ROOT_DEPTH);
    }
    run.root_tb_result = result;
    run.root_decided.store(true, std::memory_order_release);
    t.plies[1].tb_result = result;
    const bool play =
        root_tb_move != NO_MOVE && p.fifty > PLAY_TABLE_MOVE_AFTER && is_legal(p, root_tb_move);
    if (play) publish_table_move(t, root_tb_move);
    return play;
}

bool tb_probe(ThreadData& t, int ply, int depth, int alpha, int beta, int& score) {
    const int parent = t.plies[ply - 1].tb_result;
    if (parent != NO_TB_RESULT) {
        const int result = probe_at(t, ply, depth);
        if (result != NO_TB_RESULT && result > TB_WIN - parent) {
            score = beta;
            return true;
        }
    }
    if (t.position.fifty == 0 && t.shared->run.root_tb_result == NO_TB_RESULT) {
        const int result = probe_at(t, ply, depth);
        if (result != NO_TB_RESULT) {
            score = std::max(alpha, score_of_result(result, ply));
            return true;
        }
    }
    return false;
}

}  // namespace quon
