// The benchmark.

#include "tools/bench.h"

#include "board/fen.h"
#include "engine/engine.h"
#include "engine/input.h"
#include "engine/output.h"
#include "engine/search_report.h"
#include "platform/events.h"
#include "search/control.h"
#include "search/hash.h"
#include "search/run.h"
#include "support/text.h"

namespace quon {

const char* const bench_positions[BENCH_POSITIONS] = {
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

namespace {

constexpr u8 BENCH_DEPTH = 17;
constexpr u8 DEEPEST_REQUEST = 40;  // a deeper one means the bench depth
constexpr double SECONDS_PER_POSITION = 99;

constexpr int SHORT_RUN = 10;

}  // namespace

void run_bench(Engine& engine, int variant, bool single_thread, void (*on_input)(Engine&)) {
    leave_output_if(quit_comes);
    engine.limits.fixed_time = SECONDS_PER_POSITION;
    engine.options.output_delay = NEVER;
    if (single_thread || engine.limits.depth_limit > DEEPEST_REQUEST)
        engine.limits.depth_limit = BENCH_DEPTH;
    engine_print(
        format("%s running benchmark using %d threads", ENGINE_NAME, engine.settings.threads));
    const std::function<bool()> on_tick = [&] {
        if (single_thread) return true;
        on_input(engine);
        wait_for_event(1, !input_ended());
        return true;
    };
    double total_time = 0.01;
    double total_nodes = 0;
    const int count = variant == 1 ? SHORT_RUN : BENCH_POSITIONS;
    for (int i = 0; i < count && !output_lost(); ++i) {
        (void)position_from_fen(engine.game.position, bench_positions[i]);
        hash_clear(engine.hash, engine.settings.threads);
        begin_search(engine);
        search_and_wait(engine, on_tick,
                        single_thread ? SearchOn::THIS_THREAD : SearchOn::ALL_THREADS);
        const double elapsed = engine.run.elapsed;
        total_nodes += double(engine.totals.nodes);
        total_time += elapsed;
        engine_print(format("pos %2d: %6.2f seconds", i, elapsed));
    }
    engine_print(format("total time= %0.2f seconds, nodes= %.0f, nps= %.0f", total_time,
                        total_nodes, total_nodes / total_time));
    engine.control.quit_requested = true;
}

}  // namespace quon
