// How soon the program answers, whatever it is doing. The best of three tries counts: the machine
// may be busy with other work.

#include "harness/process.h"
#include "platform/clock.h"

namespace quon::test {
namespace {

constexpr double ANSWER = 0.05 * SLOWNESS;  // seconds
constexpr double END = 1.0 * SLOWNESS;

void expect_within(double least, double most, const std::string& what,
                   const std::function<double()>& seconds) {
    double found = seconds();
    for (int more = 2; more > 0 && (found < least || found > most); --more) found = seconds();
    EXPECT_GE(found, least) << what;
    EXPECT_LE(found, most) << what;
}

struct State {
    const char* name;
    Lines options, go;
    const char* sign;  // of the state: a line that begins so
    bool endless;      // only a command ends it, or the end of the input
};

const State STATES[] = {
    {"idle", {}, {}, "", true},
    {"infinite", {}, {"go infinite"}, "info depth 4", true},
    {"pondering", {}, {"go ponder wtime 90000 btime 90000"}, "info depth 4", true},
    {"ponder finished", {}, {"go ponder depth 2"}, "info depth 2", true},
    {"timed", {}, {"go movetime 90000"}, "info depth 4", false},
    {"under a clock", {}, {"go wtime 9000000 btime 9000000"}, "info depth 4", false},
    {"depth-limited", {}, {"go depth 60"}, "info depth 4", false},
    {"MultiPV",
     {"setoption name MultiPV value 4"},
     {"go infinite"},
     "info multipv 4 depth 3",
     true},
    {"two threads", {"setoption name Threads value 2"}, {"go infinite"}, "info depth 5", true},
    {"no table", {"setoption name Hash value 0"}, {"go infinite"}, "info depth 4", true},
    {"limited strength",
     {"setoption name UCI_LimitStrength value true", "setoption name UCI_Elo value 1600"},
     {"go infinite"},
     "info depth 1",
     true},
};

// Its lines up to the sign are read.
void enter(Session& session, const State& state) {
    session.send({"position startpos"});
    session.answers(state.options);
    session.send(state.go);
    if (!state.go.empty()) session.read_to(state.sign);
}

TEST(Deadlines, Answers) {
    const std::pair<const char*, const char*> events[] = {
        {"isready", "readyok"},
        {"stop", "bestmove"},
        {"go depth 1", "bestmove"},
        {"setoption name Contempt value 1", "info string Contempt set"},
        {"setoption name Hash value 2", "info string Hash size set"},
    };
    for (const State& state : STATES) {
        Session session({"-nolog", "-hash", "1"});
        for (const auto& [command, answer] : events) {
            const auto attempt = [&, command = command, answer = answer] {
                enter(session, state);
                const double start = monotonic_seconds();
                session.send({command});
                session.read_to(answer);
                const double seconds = monotonic_seconds() - start;
                session.answers({"stop", "go infinite", "stop"});  // no limit stays
                return seconds;
            };
            expect_within(0, ANSWER, std::string(state.name) + ": " + command, attempt);
        }
    }
}

TEST(Deadlines, Ends) {
    for (const State& state : STATES) {
        for (const bool quit : {true, false}) {
            if (!quit && !state.endless) continue;  // that search is finished first
            expect_within(0, END, std::string(state.name) + (quit ? ": quit" : ": end of input"),
                          [&] {
                              Session session({"-nolog", "-hash", "1"});
                              enter(session, state);
                              const double start = monotonic_seconds();
                              quit ? session.send({"quit"}) : session.close_input();
                              EXPECT_EQ(session.wait().status, 0) << state.name;
                              return monotonic_seconds() - start;
                          });
        }
    }
}

TEST(Deadlines, Tools) {
    Process bench({"-nolog", "-bench", "-d", "40"});
    bench.read_to("Quon");
    for (const auto& [command, answer] : {std::pair{"isready", "readyok"}, {"stop", "pos "}}) {
        expect_within(0, ANSWER, command, [&, command = command, answer = answer] {
            sleep_ms(100);
            const double start = monotonic_seconds();
            bench.send({command});
            bench.read_to(answer);
            return monotonic_seconds() - start;
        });
    }
}

TEST(Deadlines, TimeIsUsedAndKept) {
    Session session({"-nolog", "-hash", "1"});
    session.answers({"setoption name MoveOverhead value 0"});
    const struct {
        const char* go;
        double least, most;  // seconds
    } cases[] = {
        {"go movetime 100", 0.1, 0.1},
        {"go movetime 330", 0.33, 0.33},
        {"go wtime 0 btime 0 winc 0 binc 0 movestogo 0", 0, 0},
        {"go wtime -100 btime -100", 0, 0},
        {"go movetime -1", 0, 0},
        {"go wtime 60 btime 60 movestogo 1", 0.001, 0.06},
    };
    for (const auto& c : cases) {
        expect_within(c.least, c.most + ANSWER, c.go, [&] {
            session.answers({"position startpos moves d2d4 d7d5"});
            const double start = monotonic_seconds();
            EXPECT_TRUE(names_move(session.best_move({c.go}))) << c.go;
            return monotonic_seconds() - start;
        });
    }
}

// ---- The opponent's time: hits, misses, and what the time before the hit counts for.

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
