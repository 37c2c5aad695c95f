// Searches on the opponent's time: hits, misses, and what the time before the hit counts for.

#include <gtest/gtest.h>

#include "platform/clock.h"
#include "protocol/session.h"

namespace quon::test {
namespace {

struct Pondering : testing::Test {
    Session session{{"-nolog", "-hash", "4"}};

    Pondering() { session.answers({"setoption name MoveOverhead value 0"}); }

    // Seconds from "ponderhit", sent so long after "go", to the move.
    double thinks_on(const std::string& go, int ponder_ms) {
        session.send({"ucinewgame", "position startpos", go});
        session.read_to("info depth 3");
        sleep_ms(ponder_ms);
        EXPECT_EQ(lines_with(session.answers({}), "bestmove"), Lines{}) << go;
        const double start = monotonic_seconds();
        EXPECT_TRUE(names_move(session.best_move({"ponderhit"})));
        return monotonic_seconds() - start;
    }
};

// Of eight seconds 0.27 are for this move, shortened by 15 % where nothing is in doubt; at most a
// fifth of the clock comes on top.
TEST_F(Pondering, HitUnderAClock) {
    const struct {
        const char* go;
        int ponder_ms;
        double least, most;
    } cases[] = {
        {"go ponder wtime 8000 btime 8000", 0, 0.15, 2.5},
        {"go ponder wtime 8000 btime 8000", 2500, 0, 0.1},
        {"go ponder movetime 300", 0, 0.2, 0.35},
        {"go ponder movetime 300", 400, 0, 0.05},
        {"go ponder wtime 40 btime 40", 200, 0, 0.05},
    };
    for (const auto& c : cases) {
        const double seconds = thinks_on(c.go, c.ponder_ms);
        EXPECT_GE(seconds, c.least) << c.go << " after " << c.ponder_ms;
        EXPECT_LE(seconds, c.most * SLOWNESS) << c.go << " after " << c.ponder_ms;
    }
}

// The moves of White and of Black tell which position was answered.
TEST_F(Pondering, MissIsAnsweredForTheRightPosition) {
    const std::string white = "bestmove [a-h][12].*", black = "bestmove [a-h][78].*";
    const Lines misses[] = {
        {"stop", "position startpos moves e2e4", "go depth 3"},
        {"position startpos moves e2e4", "stop", "go wtime 500 btime 500"},
        {"position startpos moves e2e4", "go movetime 20"},
    };
    for (const char* ponder : {"go ponder wtime 9000 btime 9000", "go ponder depth 2"}) {
        for (const Lines& miss : misses) {
            session.send({"position startpos", ponder});
            session.read_to("info depth 2");
            session.send(miss);
            for (const std::string& side : {white, black}) {
                const std::string best = session.read_to("bestmove").back();
                EXPECT_TRUE(names_move(best) && matches(best, side)) << ponder << ": " << best;
            }
            EXPECT_EQ(session.answers({}), Lines{}) << "one move each";
        }
    }
}

TEST_F(Pondering, ReportIsHeldBackUntilTheHit) {
    const struct {
        const char *position, *go, *sign, *best;
    } cases[] = {
        {"startpos", "go ponder depth 3", "info depth 3 ", "bestmove .*"},
        {"fen 6k1/5ppp/8/8/8/8/8/R5K1 w - -", "go ponder wtime 60000 btime 60000", "info depth 1",
         "bestmove a1a8"},  // a mate
        {"fen 8/8/8/8/8/8/8/8 w - -", "go ponder", "info string illegal", "bestmove null"},
    };
    for (const auto& c : cases) {
        for (const char* end : {"ponderhit", "stop"}) {
            session.send({std::string("position ") + c.position, c.go});
            session.read_to(c.sign);
            session.answers({});
            EXPECT_TRUE(session.silent_for(100)) << c.position;
            const double start = monotonic_seconds();
            const std::string best = session.best_move({end});
            EXPECT_TRUE(matches(best, c.best)) << best;
            EXPECT_LE(monotonic_seconds() - start, 0.1 * SLOWNESS) << c.position << end;
            EXPECT_EQ(session.answers({"ponderhit"}), Lines{}) << "there is nothing to hit";
        }
    }
}

}  // namespace
}  // namespace quon::test
