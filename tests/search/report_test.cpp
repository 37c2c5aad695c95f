// What a search tells, to the letter.

#include "board/keys.h"
#include "engine/search_report.h"
#include "harness/search_support.h"

namespace quon::test {
namespace {

constexpr Move E2E4 = make_code(12, 28);
constexpr Move E7E5 = make_code(52, 36);
constexpr Move E7E8Q = make_code(52, 60, PROMOTE_QUEEN);

struct ReportTest : testing::Test {
    const SearchRig rig{1, 2};
    Line line{};

    ReportTest() {
        limits.depth_limit = 20;
        begin_search(engine);
        options.output_delay = 0.0;
        run.elapsed = 1.5;
        thread_data(engine, 0).sel_depth = u8{12};
        thread_data(engine, 0).nodes = u64{123000};
        thread_data(engine, 1).nodes = u64{456};
        thread_data(engine, 1).tb_hits = u64{7};
        // Five entries of this generation where the fill is sampled, with locks of their own.
        for (u64 low = 32768; low < 32773; ++low) {
            Position p = game.position;
            p.key ^= (full_key(p) ^ low) & 0xFFFFFFFF;
            p.key ^= low << 40;
            hash_store(engine.hash, p, 1, 3, 0, -1, 1, NO_MOVE);
        }
        set_line({E2E4, E7E5});
    }
    void set_line(const std::vector<Move>& moves) {
        line = {};
        for (std::size_t i = 0; i < moves.size(); ++i) line[int(i) + 1] = moves[i];
        run.shared_line = line;
    }
    std::string info(int thread, int pv_index, int depth, int score) {
        return captured_output([&] {
            SearchReporter(engine).on_line(engine,
                                           {LineKind::BOUND, thread, pv_index, depth, score, line});
        });
    }
};

TEST_F(ReportTest, InfoLine) {
    EXPECT_EQ(info(0, -1, 6, 35),
              "info depth 6 seldepth 11 score cp 35 time 1500 nodes 123456 nps 82304 tbhits 7 "
              "hashfull 0 pv e2e4 e7e5\n");
    run.elapsed = 0.001;
    set_line({E7E8Q});
    EXPECT_EQ(info(0, 0, 7, 0),  // the fill is sampled above depth 6 only
              "info depth 7 seldepth 11 score cp 0 time 1 nodes 123456 nps 0 tbhits 7 hashfull 5 "
              "pv e7e8q\n");
    run.multipv = 3;
    options.uci_extra = true;
    EXPECT_TRUE(info(1, 2, 1, 0).starts_with("info multipv 3 [01.] depth 1 seldepth"));
    // What a search tells has the time of its telling.
    run.start_time -= 7;
    const std::string told = captured_output([&] {
        tell_line(thread_data(engine, 0), {LineKind::BOUND, 0, -1, 6, 0, line});
    });
    EXPECT_NE(told.find(" time 7"), std::string::npos) << told;
}

TEST_F(ReportTest, Scores) {
    const struct {
        int tables, score;  // -1 without tablebases, 0 loss, 2 draw, 4 win
        const char* text;
    } cases[] = {
        {-1, 9899, "cp 9899"},  {-1, 9900, "mate 50"},   {-1, 9998, "mate 1"},
        {-1, 9996, "mate 2"},   {-1, -9900, "cp -9900"}, {-1, -9901, "mate -50"},
        {-1, -9999, "mate -1"}, {4, 9898, "cp 9800"},    {4, 9899, "cp 9899"},
        {0, -9899, "cp -9800"}, {0, -9900, "cp -9900"},  {2, 500, "cp 0"},
        {2, -9997, "cp 0"},     {0, 12, "cp -9800"},
    };
    for (const auto& c : cases) {
        run.root_tb_result = c.tables;
        const std::string text = info(0, 0, 3, c.score);
        EXPECT_NE(text.find(std::string(" score ") + c.text + " time "), std::string::npos) << text;
    }
}

TEST_F(ReportTest, ConsoleLines) {
    options.uci_mode = false;
    EXPECT_EQ(info(0, -1, 5, -35), "00] 05    1.5     123K   -35  e2e4 e7e5\n");
    control.stop_flag = STOP;
    run.root_tb_result = 4;  // the score is shown as the search knows it
    set_line(std::vector<Move>(69, E7E8Q));
    const std::string text = info(1, 0, 15, 9998);
    EXPECT_TRUE(text.starts_with("01] 15.   1.5     123K  9998  e7e8=Q e7e8=Q ")) << text;
    EXPECT_NE(text.find("\n" + std::string(30, ' ') + "e7e8=Q"), std::string::npos) << text;
}

TEST_F(ReportTest, FinalReport) {
    const struct {
        bool stopped;
        double elapsed, delay;
        int depth;
        bool line, printed;
    } cases[] = {{false, 1, 0, 9, true, true},        {false, 1, 2, 9, true, false},
                 {true, 1, 2, 9, true, true},         {true, 1, 0, 0, true, false},
                 {true, 9999, NEVER, 9, true, false}, {true, 1, 0, 9, false, false},
                 {false, 2, 2, 9, true, true}};
    for (const auto& c : cases) {
        run.finished = !c.stopped;
        run.elapsed = c.elapsed;
        run.shared_depth = i8(c.depth);
        options.output_delay = c.delay;
        set_line(c.line ? std::vector<Move>{E2E4, E7E5} : std::vector<Move>{});
        const std::string text = captured_output([] { final_report(engine, 77); });
        EXPECT_EQ(text.starts_with("info depth 9 seldepth 11 score cp 77 "), c.printed)
            << &c - cases;
        EXPECT_EQ(text.empty(), !c.printed) << &c - cases;
    }
}

TEST_F(ReportTest, ConsoleStatistics) {
    run.shared_score = i16{-35};
    options.uci_mode = false;
    ThreadData& t = thread_data(engine, 0);
    t.hash_probes = u64{199};
    t.hash_hits = u64{50};
    t.eval.evaluations = u64{999};
    t.eval.eval_hits = u64{125};
    thread_data(engine, 1).eval.pawn_probes = u64{9};
    thread_data(engine, 1).eval.pawn_hits = u64{9};
    thread_data(engine, 1).tb_hits = u64{1499};
    collect_stats(engine);
    const struct {
        int done;
        u64 earlier, last;
        const char* growth;
    } cases[] = {
        {5, 10, 160, "2.00"}, {6, 10, 810, "3.00"}, {9, 0, 506, "2.00"}, {9, 100, 0, "2.00"}};
    for (const auto& c : cases) {
        run.main_done_depth = i8(c.done);
        run.nodes_by_depth[c.done] = c.last;
        run.nodes_by_depth[c.done - 4] = c.earlier;
        EXPECT_EQ(captured_output([] { print_console_statistics(engine); }),
                  format("move= e2e4, time= 1.500, score= -35, nodes= 123456, nps= 82K ebf= %s\n"
                         "Hash fill= 0.5%%, Hash hits: main= 25.0%%, pawn= 90.0%%, eval= 12.5%%, "
                         "TB=1K\n\n",
                         c.growth));
    }
}

}  // namespace
}  // namespace quon::test
