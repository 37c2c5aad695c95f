#include "harness/board_support.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unordered_set>

namespace quon::test {

int scaled(double count) {
    const char* const text = std::getenv("QUON_TEST_SCALE");
    const double scale = text ? std::atof(text) : 1.0;
    return std::max(1, int(count * scale));
}

std::unique_ptr<Game> make_game(std::string_view fen) {
    auto made = std::make_unique<Game>();
    (void)position_from_fen(made->position, fen);
    return made;
}

std::vector<Move> legal_moves(const Position& p) {
    MoveEntry list[MAX_LIST];
    std::vector<Move> moves;
    for (const MoveEntry *entry = list, *end = gen_all(p, list); entry != end; ++entry) {
        if (is_legal(p, entry->move)) moves.push_back(entry->move);
    }
    return moves;
}

int play_random(Game& g, Random& random, int plies) {
    for (int made = 0; made < plies; ++made) {
        const std::vector<Move> moves = legal_moves(g.position);
        if (moves.empty()) return made;
        make_move(g.position, moves[random() % moves.size()]);
    }
    return plies;
}

void visit_random_positions(int count, unsigned seed, const std::function<void(Game&)>& visit) {
    constexpr const char* STARTS[] = {
        START_FEN,
        "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -",
        "r3k2r/1pp3p1/8/p2PpP1p/P2pPp1P/8/1PP3P1/R3K2R b KQkq e3",
        "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - -",
        "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - -",
        "3qk3/8/1b1r1n2/8/8/1B1R1N2/8/3QK3 w - -",
        "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -",
    };
    Random random(seed);
    // Short runs reach every start too.
    const int length = std::clamp(count / int(std::size(STARTS)), 1, 80);
    for (std::size_t visited = 0, start = 0; visited < std::size_t(count); ++start) {
        const auto made = make_game(STARTS[start % std::size(STARTS)]);
        for (int ply = 0; ply < length && visited < std::size_t(count); ++ply, ++visited) {
            visit(*made);
            if (play_random(*made, random, 1) == 0) break;
        }
    }
}

Bitboard reach_by_steps(int type, int from, Bitboard occupancy) {
    Bitboard reached = 0;
    const int limit = type == KNIGHT || type == KING ? 1 : 7;
    for (int step = 0; step < 25; ++step) {
        const int files = step % 5 - 2;
        const int ranks = step / 5 - 2;
        const int size = files * files + ranks * ranks;
        const bool straight = size == 1 && type != BISHOP;
        const bool diagonal = size == 2 && type != ROOK;
        if (type == KNIGHT ? size != 5 : !straight && !diagonal) continue;
        for (int n = 1; n <= limit; ++n) {
            const int file = file_of(from) + n * files;
            const int rank = rank_of(from) + n * ranks;
            if (file < 0 || file > 7 || rank < 0 || rank > 7) break;
            reached |= bit(make_square(file, rank));
            if (has(occupancy, make_square(file, rank))) break;
        }
    }
    return reached;
}

Bitboard attackers_by_steps(const Position& p, int square, int by_side) {
    Bitboard attackers = 0;
    for (int from = 0; from < 64; ++from) {
        const int piece = p.board[from];
        if (piece == 0 || color_of(piece) != by_side) continue;
        const int ranks = rank_of(square) - rank_of(from);
        const bool hits = type_of(piece) == PAWN
                              ? std::abs(file_of(square) - file_of(from)) == 1 &&
                                    ranks == (by_side == WHITE ? 1 : -1)
                              : has(reach_by_steps(type_of(piece), from, occupied(p)), square);
        if (hits) attackers |= bit(from);
    }
    return attackers;
}

std::string captured_output(const std::function<void()>& call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

std::string data_file(const std::string& name) {
    const std::string own =
        QUON_SOURCE_DIR "/tests/data" + name.substr(name.starts_with("/data/") ? 5 : 0);
    if (std::filesystem::exists(own)) return own;
    const std::string shared = QUON_SHARED_DIR + name;
    return std::filesystem::exists(shared) ? shared : "";
}

Lines shared_lines(const std::string& name) {
    Lines lines;
    std::unordered_set<std::string> own;
    for (const std::string& path : {data_file(name), QUON_SHARED_DIR + name}) {
        std::ifstream file(path);
        own.insert(lines.begin(), lines.end());
        for (std::string line; std::getline(file, line);) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (!own.contains(line)) lines.push_back(line);
        }
    }
    return lines;
}

void expect_reference(const std::string& name, const std::function<Lines(const Position&)>& row) {
    const Lines lines = shared_lines("/reference/" + name + ".csv");
    ASSERT_GT(lines.size(), 100U) << name;
    int differences = 0;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const Lines cells = split(lines[i], ';');
        const Lines own = row(make_game(cells[0])->position);
        ASSERT_GT(cells.size(), own.size()) << lines[i];
        for (std::size_t c = 0; c < own.size(); ++c) {
            if (own[c] == "*" || own[c] == cells[c + 1] || differences++ > 0) continue;
            ADD_FAILURE() << split(lines[0], ';')[c + 1] << " of " << cells[0] << "\n  found    "
                          << own[c] << "\n  expected " << cells[c + 1];
        }
    }
    EXPECT_EQ(differences, 0) << name;
}

Lines split(std::string_view text, char separator) {
    Lines parts;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find(separator, start);
        parts.emplace_back(text.substr(start, end - start));
        if (end == std::string_view::npos) return parts;
        start = end + 1;
    }
}

}  // namespace quon::test
