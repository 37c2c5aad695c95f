#pragma once
// One search thread's record: everything that a search reads and writes without sharing, but for
// the Relaxed fields, which the time check and the reports of other threads read.

#include <atomic>
#include <functional>

#include "board/position.h"
#include "eval/evaluate.h"
#include "search/run.h"

namespace quon {

// Plies of records and lines: the deepest node, and the two plies behind it that a node touches.
constexpr int PLY_RECORDS = MAX_PLY + 4;

// What the move picker does next.
enum class PickStage : u8 { START, CAPTURES, PICK_CAPTURES, PICK_ALL, REST };

struct Searcher;

// The state of one node on the current path.
struct PlyRecord : EvalNotes {
    int depth;  // remaining at node entry, plies
    int static_eval;
    int alpha;  // window at node entry, after mate-distance clamping
    int beta;
    bool in_iid;     // internal iterative deepening of this node is running
    bool singular;   // the hash move was found singular
    int tb_result;   // of the tablebases; NO_TB_RESULT without one
    int move_count;  // moves searched so far
    Move hash_move;
    Move killer_null;  // killer of nodes reached by a null move
    Move killer1;
    Move killer2;
    Move killer_evasion;  // killer of nodes in check
    PickStage stage;
    MoveEntry* list_start;
    MoveEntry* rest;             // first entry that the picker has not handed out
    const MoveEntry* next_pick;  // the move being searched
};

enum RootState : u8 { ROOT_NORMAL = 0, FAIL_LOW = 1, FAIL_HIGH = 2, ABANDONED = 99 };

enum ThreadWork : int { IDLE = 0, SEARCHING = 1, LEAVE = 99 };

struct ThreadData : Game {
    Searcher* shared;  // the instance that the thread searches for

    Table<PlyRecord, PLY_RECORDS> plies;
    Table<Table<Move, PLY_RECORDS>, PLY_RECORDS> pv;  // pv[ply][ply..]: the line from that node on
    Table<MoveEntry, PLY_RECORDS * MAX_LIST>
        move_buffer;  // the lists of all plies, one behind another

    // Reset at every search start.
    Table<Table<i16, 64>, 16> history;  // [piece][destination], 0..8192
    Table<Table<Move, 64>, 16> counter1;
    Table<Table<Move, 64>, 16> counter2;
    Table<Table<Move, 64>, 16> followup;

    EvalState eval;

    EvalTrace* eval_trace;  // takes the root's evaluation apart; mostly nullptr

    Line root_line;
    int index;                   // 0: the main search thread, which alone publishes and prints
    std::atomic<int> searching;  // ThreadWork
    Relaxed<u8> iteration;
    Relaxed<u8> root_state;
    Relaxed<i16> root_score;
    Relaxed<u8> sel_depth;
    int best_depth;  // iteration of the last new best move
    int root_eval;
    u64 node_limit;
    u64 look_at;     // nodes after which the search looks around: the lesser of the limit and
    u64 keep_on_at;  // the nodes after which keep_on is asked next
    const std::function<bool()>* keep_on;  // of a search on the main thread; false ends it
    Relaxed<u64> nodes;
    Relaxed<u64> tb_hits;
    Relaxed<u64> hash_probes;
    Relaxed<u64> hash_hits;
    int ext_acc;  // sixteenths of a ply of extension gathered along the line
    u32 seed;     // of the root order's jitter
    u32 jitter_range;
};

constexpr u64 NO_NODE_LIMIT = u64{1} << 62;

inline bool is_main(const ThreadData& t) { return t.index == 0; }

// Static evaluation of the thread's position, centipawns for the side to move; clears and refills
// the threats of the ply's record.
inline int evaluate_node(ThreadData& t, int ply, bool in_check) {
    PlyRecord& record = t.plies[ply];
    record.threat = {};
    return evaluate(t.eval, t.position, record,
                    {ply, in_check, t.iteration != 0, ply == 1 ? t.eval_trace : nullptr});
}

}  // namespace quon
