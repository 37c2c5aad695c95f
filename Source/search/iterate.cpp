// Iterative deepening, and parallel search (lazy SMP).
//
// The main search thread searches the root to depth 1, 2, 3 ... until a limit, a mate or the stop
// ends it. Each iteration costs little beside the next one, and leaves behind what makes that fast:
// the best move to try first, the score to build a window around, the transposition table, the
// history of quiet moves.
//
// Workers run the same iterations over the same position and share nothing but the transposition
// table, without a lock: what one has stored another need not search. They gain by not doing the
// same at the same time: their root order is jittered, and where more than about two thirds of the
// threads are at a depth already the next one goes a ply deeper. Only the main search thread
// publishes; a worker at a depth that it has completed gives up its iteration (root.cpp).

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <type_traits>

#include "board/legality.h"
#include "board/movegen.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "search/history.h"
#include "search/picker.h"
#include "search/run.h"
#include "search/score.h"
#include "search/search.h"
#include "search/searcher.h"
#include "search/tablebases.h"

namespace quon {

namespace {

constexpr double CONTEMPT_TIME = 6000;  // seconds; contempt acts in games, not in analysis

// What the caches hold is worth nothing once the tables, or what contempt goes by, have changed.
void prepare_evaluation(EvalState& state, const EvalTables& tables, bool contempt_active,
                        int root_side) {
    static_assert(std::has_unique_object_representations_v<EvalTables>);
    const bool same_tables = std::memcmp(&state.tables, &tables, sizeof tables) == 0;
    const bool same_contempt =
        tables.terms.contempt == 0 ||
        (state.contempt_active == contempt_active && state.root_side == root_side);
    if (!same_tables || !same_contempt) {
        state.pawn_hash = {};
        state.eval_hash = {};
    }
    state.tables = tables;
    state.contempt_active = contempt_active;
    state.root_side = root_side;
}

}  // namespace

void thread_prepare(ThreadData& t) {
    auto& limits = t.shared->limits;
    copy_game(t, t.shared->game);
    t.ply = 1;
    prepare_evaluation(t.eval, t.shared->eval_tables, t.shared->run.target_time < CONTEMPT_TIME,
                       t.position.side);
    t.node_limit = limits.max_nodes > 0 ? u64(limits.max_nodes) : NO_NODE_LIMIT;
    t.plies[1].list_start = t.move_buffer.begin();
    t.iteration = u8{0};
    t.root_state = u8{ROOT_NORMAL};
    t.root_score = i16{0};
    t.root_line = {};
    t.sel_depth = u8{0};
    t.best_depth = 0;
    t.ext_acc = 0;
    t.keep_on = nullptr;
    for (Relaxed<u64>* counter :
         {&t.nodes, &t.tb_hits, &t.hash_probes, &t.hash_hits, &t.eval.evaluations,
          &t.eval.eval_hits, &t.eval.pawn_probes, &t.eval.pawn_hits}) {
        *counter = u64{0};
    }
    schedule_look(t);
}

namespace {

// Keeps what the search was told to search; everything if none of that is there.
MoveEntry* keep_named_moves(MoveEntry* start, MoveEntry* end, const std::vector<Move>& named) {
    const auto is_named = [&](const MoveEntry& entry) {
        return std::find(named.begin(), named.end(), entry.move) != named.end();
    };
    if (std::none_of(start, end, is_named)) return end;
    return std::remove_if(start, end, std::not_fn(is_named));
}

MoveEntry* list_legal_moves(ThreadData& t) {
    MoveEntry* start = t.plies[1].list_start;
    MoveEntry* kept = start;
    const KingGuard guard = king_guard(t.position);
    for (MoveEntry *entry = start, *end = gen_all(t.position, start); entry != end; ++entry) {
        if (is_legal(t.position, entry->move, guard)) *kept++ = *entry;
    }
    kept = keep_named_moves(start, kept, t.shared->run.root_moves);
    finish_list(t, 1, kept);
    return kept;
}

// Tables, root evaluation and root moves; false when there is nothing to iterate on.
bool prepare_root(ThreadData& t) {
    auto& run = t.shared->run;
    reset_ordering(t);
    const bool checked = in_check(t.position);
    t.root_eval = evaluate_node(t, 1, checked);
    t.root_score = i16(t.root_eval);
    t.plies[1].static_eval = t.root_eval;
    t.plies[0].static_eval = -t.root_eval;
    t.plies[1].depth = 0;
    t.plies[1].hash_move = NO_MOVE;
    t.plies[1].move_count = 0;
    t.plies[1].tb_result = NO_TB_RESULT;

    if (!has_legal_move(t.position)) {
        t.root_score = i16(checked ? mated_in(1) : DRAW_SCORE);
        t.iteration = u8{1};
        t.sel_depth = u8{1};
        t.best_depth = 1;
        if (is_main(t)) publish_result(t);
        t.shared->control.stop_flag = NO_LEGAL_MOVE;
        return false;
    }
    if (run.depth_limit < 1) {
        if (is_main(t) && !checked) {
            t.root_score = i16(qsearch(t, 1, 0, -MATE, MATE, 0));
            run.shared_score = t.root_score;
        }
        return false;
    }
    list_legal_moves(t);
    score_moves(t, t.plies[1].list_start);
    return true;
}

// A search that is stopped within its first iteration answers with the move that it tries first.
void publish_first_guess(const ThreadData& t) {
    auto& run = t.shared->run;
    const MoveEntry* best = t.plies[1].list_start;
    for (const MoveEntry* entry = best; entry->move != LIST_END; ++entry) {
        if (entry->order > best->order) best = entry;
    }
    run.shared_line[1] = best->move;
    run.shared_score = i16(t.root_eval);
}

bool root_move_at(const ThreadData& t, int position) {
    const MoveEntry* entry = t.plies[1].list_start;
    for (int i = 0; i < position; ++i, ++entry) {
        if (entry->move == LIST_END) return false;
    }
    return entry->move != LIST_END;
}

// The search was to find a mate, and has one that is short enough.
bool mate_found(const SearchRun& run) {
    const int plies = 2 * run.mate_moves;
    return plies > 0 &&
           (run.shared_score >= mate_in(plies) || run.shared_score <= mated_in(plies + 1));
}

// A mate within the depth is found, or the limit is reached.
bool iterations_done(const SearchRun& run, int depth) {
    return mate_found(run) || run.shared_score >= MATE - 1 - depth ||
           run.shared_score < depth - (MATE - 1) || depth >= run.depth_limit;
}

}  // namespace

void iterate(ThreadData& t) {
    auto& run = t.shared->run;
    if (!prepare_root(t) || decide_root(t)) return;
    publish_first_guess(t);
    SearchListener* const listener = t.shared->listener;
    for (int depth = 1; depth <= MAX_ITERATION; ++depth) {
        t.iteration = u8(depth);
        run.current_depth = i8(depth);
        run.second_score = NO_SCORE;
        const bool tell_lines = depth == 1 || run.multipv > 1;
        const int lines = depth == 1 ? run.multipv : std::max(run.multipv, 1);
        for (int i = 0; i < lines && root_move_at(t, i); ++i) {
            root_search(t, depth, i);
            if (stopped(t)) break;
            if (tell_lines && t.root_line[1] != NO_MOVE) {
                tell_line(t, {LineKind::ITERATION, t.index, i, depth, t.root_score, t.root_line});
            }
        }
        if (run.multipv >= 2 && listener) listener->on_lines_end(*t.shared);
        run.nodes_by_depth[depth].fetch_add(t.nodes, std::memory_order_relaxed);
        if (stopped(t)) return;
        run.main_done_depth = i8(depth);
        if (depth == FIRST_RESULT_DEPTH) wake_main_thread();  // it may wait for no more than that
        if (iterations_done(run, depth)) break;
    }
    run.finished = true;
    if (!stopped(t)) t.shared->control.stop_flag = STOP;
}

namespace {

constexpr int CROWDED_DEPTH = 6;        // above
constexpr double CROWDED_SHARE = 0.65;  // of all threads

// With most threads at this depth or beyond, another one helps more a ply deeper.
bool depth_is_crowded(const Searcher& s, int depth) {
    const SearchRun& run = s.run;
    if (depth <= CROWDED_DEPTH || depth >= run.depth_limit || run.multipv != 1) return false;
    int there = 0;
    for (int i = 0; i < thread_total(s); ++i) there += thread_data(s, i).iteration >= depth;
    return there >= int(std::round(CROWDED_SHARE * thread_total(s) + 1));
}

// Worker threads see the root moves in slightly different orders.
void jitter_root_order(ThreadData& t) {
    MoveEntry* entry = t.plies[1].list_start;
    for (++entry; entry->move != LIST_END; ++entry) {
        t.seed = t.seed * 63 + 0x3ADE68B1;
        entry->order = i16(entry->order - int(t.seed % t.jitter_range));
    }
}

// The main search thread has decided about tablebases and is past the first iteration.
bool main_thread_ahead(const SearchRun& run) {
    return run.root_decided.load(std::memory_order_acquire) && run.current_depth > 1;
}

}  // namespace

void iterate_worker(ThreadData& t) {
    auto& run = t.shared->run;
    if (!prepare_root(t)) return;
    while (!main_thread_ahead(run) && !stopped(t)) sleep_ms(1);
    if (run.root_tb_result != NO_TB_RESULT) return;
    for (int depth = 1; depth <= MAX_ITERATION && !stopped(t); ++depth) {
        if (depth_is_crowded(*t.shared, depth)) ++depth;
        t.iteration = u8(depth);
        jitter_root_order(t);
        for (int i = 0; i < run.multipv && root_move_at(t, i) && !stopped(t); ++i) {
            root_search(t, depth, i);
        }
        run.nodes_by_depth[depth].fetch_add(t.nodes, std::memory_order_relaxed);
        if (t.root_state != ABANDONED && iterations_done(run, depth)) return;
    }
}

}  // namespace quon
