// How soon the program answers, whatever it is doing. The best of three tries counts: the machine
// may be busy with other work.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "board/make.h"
#include "board/move_text.h"
#include "harness/board_support.h"
#include "harness/engine.h"
#include "platform/clock.h"
#include "protocol/session.h"

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
    const auto answered = [&](const char* command, const char* answer) {
        expect_within(0, ANSWER, command, [&] {
            sleep_ms(100);
            const double start = monotonic_seconds();
            bench.send({command});
            bench.read_to(answer);
            return monotonic_seconds() - start;
        });
    };
    answered("isready", "readyok");
    answered("stop", "pos ");
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
        {"go wtime 0 btime 0", 0, 0},
        {"go wtime 60 btime 60 movestogo 1", 0.02, 0.06},
    };
    for (const auto& c : cases) {
        expect_within(c.least, c.most + ANSWER, c.go, [&] {
            session.answers({"position startpos moves d2d4 d7d5"});
            const double start = monotonic_seconds();
            session.best_move({c.go});
            return monotonic_seconds() - start;
        });
    }
}

// The clocks fall as they do in a game.
TEST(Deadlines, GameWithFallingClocks) {
    constexpr double INCREMENT = 0.005 * SLOWNESS;
    Session session({"-nolog", "-hash", "1"});
    session.answers({"setoption name MoveOverhead value 10"});
    expect_within(0.001, 1000, "least time on a clock", [&] {
        double clock[2] = {0.3 * SLOWNESS, 0.3 * SLOWNESS};
        double least = clock[0];
        const auto board = make_game(START_FEN);
        std::string position = "position startpos moves";
        for (int ply = 0; ply < 60 && !legal_moves(board->position).empty(); ++ply) {
            const int side = ply % 2;
            const auto ms = [](double seconds) { return std::to_string(int(seconds * 1000)); };
            session.answers({position});
            const double start = monotonic_seconds();
            const std::string best =
                session.best_move({"go wtime " + ms(clock[WHITE]) + " btime " + ms(clock[BLACK]) +
                                   " winc " + ms(INCREMENT) + " binc " + ms(INCREMENT)});
            clock[side] -= monotonic_seconds() - start;
            least = std::min(least, clock[side]);
            clock[side] += INCREMENT;
            const std::string move = split(best, ' ')[1];
            make_game_move(*board, parse_coordinates(board->position, move));
            position += " " + move;
        }
        return least;
    });
}

}  // namespace
}  // namespace quon::test
