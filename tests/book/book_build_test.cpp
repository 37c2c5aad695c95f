// Building books: games of the test's own making in every spelling, real games, and what can go
// wrong.

#include "book/book_build.h"

#include "book/book_merge.h"
#include "engine/output.h"
#include "harness/book_support.h"

namespace quon::test {
namespace {

struct BookBuild : testing::Test {
    BookDirectory directory;

    // Builds a book from the text; returns what is printed.
    static std::string build(const std::string& pgn) {
        write_file("book.pgn", pgn);
        return build();
    }
    static std::string build() {
        const auto game = game_after("d2d4");
        const std::string printed = captured_output([&] {
            build_book(game->position, {print_unlogged, engine_print, {}});
        });
        const bool begun = std::filesystem::is_regular_file("book.pgn");
        EXPECT_EQ(position_to_fen(game->position) == START_FEN, begun);
        EXPECT_EQ(game->game_ply, begun ? 0 : 1);
        for (const char* path : {"tmp.opn", "tmp__0.opn", "tmp__1.opn"}) {
            EXPECT_FALSE(std::filesystem::is_regular_file(path)) << path;
        }
        return printed;
    }
    // The same text nine times, so that all of it is kept; the records with a ninth of the
    // counters.
    static Records build_nine(const std::string& pgn) {
        std::string text;
        for (int i = 0; i < 9; ++i) text += pgn;
        build(text);
        Records records = records_of(read_file("book.opn"));
        for (BookRecord& r : records) {
            EXPECT_EQ(r.losses % 9 + r.wins % 9 + r.draws % 9, 0);
            r = {r.key, u16(r.losses / 9), u16(r.wins / 9), u16(r.draws / 9)};
        }
        return records;
    }
};

// What a game with this result did to the position that its last move led to.
BookRecord outcome(const Position& p, const std::string& result) {
    const bool won = result == (p.side == BLACK ? "1-0" : "0-1");
    const bool lost = result == (p.side == BLACK ? "0-1" : "1-0");
    return record_of(p, lost, won, !won && !lost);
}

// The records of one game's first moves (coordinates).
Records records_along(const std::string& moves, const std::string& result) {
    const auto game = make_game(START_FEN);
    Records records;
    for (const std::string& text : split(moves, ' ')) {
        make_move(game->position, parse_coordinates(game->position, text));
        records.push_back(outcome(game->position, result));
    }
    return in_order(records);
}

TEST_F(BookBuild, Spellings) {
    const std::string open = "e2e4 e7e5 g1f3 b8c6";
    const std::string castled = "e2e4 e7e5 g1f3 b8c6 f1c4 f8c5 e1g1 g8f6 d2d3 e8g8";
    const std::string long_comment(600, 'x');
    const std::string fifty = [] {
        std::string moves;
        for (int i = 0; i < 15; ++i) moves += "Nf3 Nf6 Ng1 Ng8 ";
        return moves;
    }();
    const struct {
        std::string text, moves;
    } cases[] = {
        {"1. e4 e5 2. Nf3 Nc6 *", open},
        {"e2e4 e7e5 Ng1f3? Nf3 Nc6", "e2e4 e7e5"},  // what cannot be read ends the game
        {"1. e4 $1 {King's pawn} e5 $146 2. Nf3 (2. d4 exd4 (2... d5)) 2... Nc6", open},
        {"1. e4{a}e5 2. Nf3(2. d4)Nc6", open},
        {"1. e4 {[%eval 0.3]\n[%clk 1] ; d5\n(x {nested} y)} e5 2. Nf3 {" + long_comment +
             " d5} Nc6",
         open},
        {"1. e4 e5\n; 2. d4 d5\n[Remark \"2. d4\"]\n;" + long_comment + " d4 d5\n2. Nf3 Nc6", open},
        {"1. e4 e5 2. Nf3+ Nc6# 3. Qh9 Bb5 1-0", open},
        {"1. e4 e5 2. Nf3 Nc6 0-1", open},  // "0-1" is no move
        {"1.e4 e5 2.Nf3 Nc6 3.Bc4 Bc5 4.0-0 Nf6 5.d3 O-O", castled},
        {"1.e4 e5 2.Nf3 Nc6 3.Bc4 Bc5 4.O-O Nf6 5.d3 5...0-0", castled},
    };
    for (const std::string result : {"1-0", "0-1", "1/2-1/2", "*"}) {
        for (const auto& c : cases) {
            const std::string pgn = "[Event \"x\"]\n[Result \"" + result + "\"]\n\n" + c.text;
            EXPECT_EQ(build_nine(pgn + "\n\n"), records_along(c.moves, result)) << pgn;
        }
    }
    // Fifty plies are recorded of sixty; four positions occur again and again.
    const Records records = build_nine("[Result \"1-0\"]\n" + fifty + "\n");
    ASSERT_EQ(records.size(), 4U);
    int plies = 0;
    for (const BookRecord& r : records) plies += game_count(r);
    EXPECT_EQ(plies, 50);
}

// Moves without a tag are a drawn game from the start position; with the next tag a new game
// begins.
TEST_F(BookBuild, WhatStandsBeforeTheFirstResult) {
    std::string pgn = "1. e4 e5\n";
    for (int i = 0; i < 9; ++i) pgn += "[Result \"0-1\"]\n1. e4 c5\n";
    build(pgn);
    const Records records = in_order({record_of(game_after("e2e4")->position, 9, 0, 1),
                                      record_of(game_after("e2e4 c7c5")->position, 0, 9, 0)});
    EXPECT_EQ(records_of(read_file("book.opn")), records);
}

// The ways of writing a move are tried above.
TEST_F(BookBuild, RandomGamesAgainstMap) {
    const int games = 5200;  // more than one merge
    Random random(11);
    GameCount count;
    std::string pgn;
    for (int n = 0; n < games; ++n) {
        const std::string result = pick_from(random, Lines{"1-0", "0-1", "1/2-1/2", "*"});
        const auto game = make_game(START_FEN);
        const Position& p = game->position;
        pgn += "[Event \"?\"]\n[Result \"" + result + "\"]\n\n";
        const int plies = n % 50 == 0 ? 60 : 4 + pick(random, 3);
        for (int ply = 0; ply < plies; ++ply) {
            std::vector<Move> moves = legal_moves(p);
            if (moves.empty()) break;
            if (ply < 5) moves.resize(std::min<std::size_t>(3, moves.size()));
            const Move move = pick_from(random, moves);
            pgn += move_forms(p, {move, 0, p.board[move_from(move)], 0}).coord;
            pgn += pick_from(random, Lines{" ", "\n", " {e4 (d4)} ", "(1. d4 d5) ", " $12\n"});
            make_move(game->position, move);
            if (ply < 50) add(count, outcome(p, result));
        }
        pgn += result + "\n\n";
    }
    const std::string dots(25, '.');  // every 200 games, the 5,000th included
    EXPECT_EQ(build(pgn), dots + "\nmerging...\n..\nmerging...\npruning...\ndone\n");
    EXPECT_EQ(records_of(read_file("book.opn")), records_of(count, 9));
}

// Real games, and the records that another program made of them; the two large collections only
// where they are at hand.
TEST_F(BookBuild, RealGames) {
    for (const std::string name : {"engine-openings", "engine-games", "master-games"}) {
        const std::string games = data_file("/data/pgn/" + name + ".pgn");
        if (games.empty() && name != "engine-openings") continue;
        EXPECT_TRUE(build(read_file(games)).ends_with("\npruning...\ndone\n"));
        Lines own;
        for (const BookRecord& r : records_of(read_file("book.opn"))) {
            own.push_back(
                format("%04x %08x %d %d %d", r.key.key16, r.key.key32, r.losses, r.wins, r.draws));
        }
        EXPECT_EQ(own, shared_lines("/reference/tools/book-" + name + ".txt")) << name;
    }
}

TEST_F(BookBuild, NoGames) {
    write_file("book.opn", "old");
    write_file("quon.opn", bytes_of({{{0x8000, 1}, 1, 2, 3}}));
    open_book("quon.opn");
    EXPECT_EQ(build(), "");  // no book.pgn
    EXPECT_EQ(read_file("book.opn"), "old");

    write_file("tmp.opn", bytes_of({{{0x8000, 1}, 9, 9, 9}}));  // left by one that was killed
    EXPECT_EQ(build("no games\n"), ".\nmerging...\npruning...\ndone\n");
    EXPECT_EQ(read_file("book.opn"), "");
}

TEST_F(BookBuild, FailuresLeaveTheOldBook) {
    const std::string pgn = read_file(data_file("/data/pgn/engine-openings.pgn"));
    write_file("book.opn", "old");
    for (const auto& [in_the_way, told] :
         {std::pair{"tmp__0.opn", "\ncannot write tmp__0.opn: Is a directory\n"},
          {"tmp.opn", "\ncannot read tmp.opn\n"}}) {
        std::filesystem::create_directories(in_the_way + std::string("/full"));
        EXPECT_EQ(build(pgn), told);
        std::filesystem::remove_all(in_the_way);
    }
    for (const rlim_t bytes : {rlim_t{5000}, rlim_t{10000}}) {
        const FullDisk full(bytes);
        EXPECT_EQ(build(), "\ncannot write tmp__0.opn: File too large\n");
    }
    void (*const makers[])() = {[] { std::filesystem::create_directory("book.pgn"); },
                                [] { make_pipe("book.pgn"); }};
    for (const auto& make : makers) {
        std::filesystem::remove("book.pgn");
        make();
        EXPECT_EQ(build(), "\ncannot read book.pgn\n");
    }
    EXPECT_EQ(read_file("book.opn"), "old");
    for (const char* file : {"book.pgn", "book.opn"}) std::filesystem::remove(file);
    std::filesystem::create_directory("book.opn");
    EXPECT_TRUE(build(pgn).ends_with("pruning...\ncannot write book.opn: Is a directory\n"));
}

// ---- Merging runs.

const BookWork WORK{print_unlogged, engine_print, {}};

struct BookMerge : testing::Test {
    BookDirectory directory;
    Random random{7};

    // Few keys, so that they meet; counters up to far beyond the limit of a sum.
    Records random_records(int count) {
        Records records;
        for (int i = 0; i < count; ++i) {
            const BookKey key = {u16(random() % 64 * 1000), u32(random() % 8 * 600000000)};
            const int limit = pick(random, 2) ? 60001 : 20;
            records.push_back({key, u16(pick(random, limit)), u16(pick(random, limit)),
                               u16(pick(random, limit))});
        }
        return records;
    }
    Records random_run(int count) { return in_order(random_records(count)); }
};

GameCount count_of(const Records& a, const Records& b) {
    GameCount count;
    for (const BookRecord& r : a) add(count, r);
    for (const BookRecord& r : b) add(count, r);
    return count;
}

TEST_F(BookMerge, AgainstSortedMap) {
    for (int round = 0; round < scaled(40); ++round) {
        const Records a = random_run(round * 10);
        const Records b = random_run(pick(random, 300));
        const Records merged = records_of(count_of(a, b), 0);
        write_file("a.opn", bytes_of(a));
        write_file("b.opn", bytes_of(b));
        ASSERT_TRUE(merge_runs("a.opn", "b.opn", "c.opn", WORK));
        ASSERT_EQ(records_of(read_file("c.opn")), merged);
        ASSERT_TRUE(merge_runs("a.opn", b, "c.opn", WORK));
        ASSERT_EQ(records_of(read_file("c.opn")), merged);
        ASSERT_TRUE(merge_runs("none.opn", b, "c.opn", WORK));
        ASSERT_EQ(read_file("c.opn"), bytes_of(b));
        ASSERT_TRUE(merge_runs("a.opn", "none.opn", "c.opn", WORK));
        ASSERT_EQ(read_file("c.opn"), bytes_of(a));

        Records single = random_records(round * 20);
        for (BookRecord& r : single) {
            r = {r.key, u16(r.losses % 2), u16(r.wins % 2), u16(r.draws % 2)};
        }
        const Records sum = records_of(count_of(single, {}), 0);
        sort_into_run(single);
        ASSERT_EQ(single, sum);
    }
}

TEST_F(BookMerge, CopyFrequent) {
    const Records records = {{{9, 1}, 9, 0, 0},
                             {{8, 1}, 3, 3, 2},
                             {{7, 1}, 3, 3, 3},
                             {{6, 1}, 0, 0, 8},
                             {{5, 1}, 60000, 60000, 60000},
                             {{4, 1}, 0, 0, 0}};
    write_file("a.opn", bytes_of(records));
    EXPECT_EQ(copy_frequent("a.opn", 9, "c.opn", WORK), 3);
    EXPECT_EQ(records_of(read_file("c.opn")), (Records{records[0], records[2], records[4]}));
}

}  // namespace
}  // namespace quon::test
