// What a new game and changed options leave behind: nothing. Searches are compared with those of a
// process that has done nothing else.

#include <regex>

#include "harness/process.h"

namespace quon::test {
namespace {

// The lines of a search, but for times and speeds.
Lines search(Session& session, const std::string& position, const std::string& go) {
    session.answers({"position " + position});
    session.send({go});
    static const std::regex varying(" (time|nps|hashfull) [0-9]+");
    Lines lines = session.read_to("bestmove");
    for (std::string& line : lines) line = std::regex_replace(line, varying, "");
    return lines;
}

constexpr const char* GAMES[] = {
    "startpos moves e2e4 e7e5 g1f3",
    "fen r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
    "fen 8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
    "fen 8/4k2p/4p3/2P5/1r2P1K1/6P1/5p1P/5R2 w - - moves f1f2",
};

TEST(NewGame, IsAFreshStart) {
    const std::pair<const char*, Lines> fresh_starts[] = {
        {"ucinewgame", {"ucinewgame"}},
        {"Clear Hash", {"setoption name Clear Hash"}},
        {"Hash", {"setoption name Hash value 2", "setoption name Hash value 1"}},
        {"Threads",
         {"setoption name Threads value 3", "setoption name Threads value 1", "ucinewgame"}},
    };
    Session old({"-nolog", "-hash", "1"});
    const std::string limits[] = {"depth 4 nodes 0", "depth 7 nodes 0", "depth 66 nodes 300",
                                  "depth 66 nodes 5000", "depth 66 nodes 20000"};
    for (const char* game : GAMES) {
        for (const std::string& limit : limits) {
            Session fresh({"-nolog", "-hash", "1"});
            const Lines expected = search(fresh, game, "go " + limit);
            bool differs = false;
            for (const auto& [name, commands] : fresh_starts) {
                search(old, game, "go depth 8 nodes 0");
                differs |= search(old, game, "go " + limit) != expected;
                old.answers(commands);
                ASSERT_EQ(search(old, game, "go " + limit), expected)
                    << game << ", " << limit << ", " << name;
            }
            EXPECT_TRUE(differs) << "without a fresh start it would be the same: " << game << limit;
        }
    }
}

// Every option, while the engine searches. The next search is that of a fresh process with the same
// options.
TEST(NewGame, BurstsOfOptions) {
    const std::pair<const char*, const char*> values[] = {
        {"Hash", "1 3 2 0"},
        {"Threads", "2 8 3 8"},
        {"Ponder", "true false"},
        {"Contempt", "-150 0 30 150"},
        {"UCI_LimitStrength", "true false"},
        {"UCI_Elo", "1500 2500 9999"},
        {"MultiPV", "1 4 255"},
        {"Clear Hash", "x"},
        {"MoveOverhead", "0 5000 50"},
        {"OwnBook", "true false"},
        {"Log", "true false"},
        {"SyzygyPath", "<empty> /no/such"},
        {"SyzygyProbeDepth5", "1 100"},
        {"SyzygyProbeDepth6", "100 2"},
    };
    const Lines finally = split(
        "Hash value 1|Threads value 1|Ponder value true|Contempt value 21|"
        "UCI_LimitStrength value false|MultiPV value 2|MoveOverhead value 7|OwnBook value false|"
        "Log value false|SyzygyPath value <empty>",
        '|');
    const auto settle = [&](Session& session) {
        Lines lines = {"stop", "ucinewgame"};
        for (const std::string& option : finally) lines.push_back("setoption name " + option);
        session.answers(lines);
        return search(session, GAMES[1], "go depth 6 nodes 0");
    };
    Session fresh({"-nolog"});
    const Lines expected = settle(fresh);
    Random random(17);
    for (const char* threads : {"2", "8"}) {
        Session session({"-nolog", "-hash", "1", "-threads", threads});
        const Lines known = lines_with(session.answers({"uci"}), "option name ");
        EXPECT_EQ(known.size(), std::size(values)) << "every option";
        for (int round = 0; round < scaled(12); ++round) {
            Lines burst = {std::string("position ") + pick_from(random, GAMES),
                           std::string("setoption name Threads value ") + threads, "go infinite"};
            for (const auto& [name, all] : values) {
                const Lines some = split(all, ' ');
                const bool ends = pick(random, 4) == 0;
                const std::string word = name;
                // Some end the search: mostly the others meet it.
                if (!ends && contains({"Hash", "Threads", "Clear Hash", "SyzygyPath"}, word))
                    continue;
                burst.push_back("setoption name " + word + " value " + pick_from(random, some));
                if (ends) burst.push_back("go infinite");
            }
            session.answers(burst);
            EXPECT_TRUE(names_move(session.best_move({"stop"}))) << testing::PrintToString(burst);
        }
        EXPECT_EQ(settle(session), expected) << threads;
    }
}

}  // namespace
}  // namespace quon::test
