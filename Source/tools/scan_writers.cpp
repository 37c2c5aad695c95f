// The four variants. A writer walks the game on the board: at each move it sees the position before
// the move, and says whether the walk goes on.

#include "tools/scan_writers.h"

#include <cstdlib>

#include "board/fen.h"
#include "board/make.h"
#include "board/move_text.h"
#include "engine/engine.h"
#include "engine/report.h"
#include "search/run.h"
#include "support/text.h"

namespace quon {

namespace {

// Calls visit(i) for each move that can be read, until it returns false.
template <typename Visit>
void walk(Engine& engine, const GameReader& game_text, Visit visit) {
    set_start_position(engine.game.position);
    for (std::size_t i = 0; i < game_text.moves.size(); ++i) {
        Move move;
        if (!read_move(engine.game.position, game_text.moves[i].text, move)) return;
        if (!visit(int(i))) return;
        make_game_move(engine.game, move);
    }
}

std::string move_spelling(const GameReader& g, int i) {
    return normalized_san(g.moves[std::size_t(i)].text);
}

int score_at(const GameReader& g, int i) { return g.moves[std::size_t(i)].score; }

// "FEN bm Nf3;", or with another opcode.
std::string position_record(Engine& engine, const GameReader& g, int i, const char* opcode) {
    return format("%s %s %s;", position_to_fen(engine.game.position).c_str(), opcode,
                  move_spelling(g, i).c_str());
}

std::string scored_record(Engine& engine, const GameReader& g, int i) {
    return position_record(engine, g, i, "bm") + format(" ce %d;", score_at(g, i));
}

void write_position(ScanOutput& output, const std::string& record) {
    output.main.write(record + "\n");
    ++output.positions;
}

constexpr int BLUNDER_FIRST = 13;       // moves before it are opening
constexpr int BLUNDER_LAST_MOVES = 10;  // at the end are not judged

// The opponent's scores before and after the move tell: it thought little of its position, and
// then clearly more, and went on to do so.
bool is_blunder(const GameReader& g, int i) {
    if (i < BLUNDER_FIRST || i >= int(g.moves.size()) - BLUNDER_LAST_MOVES) return false;
    const int before = score_at(g, i - 1);
    const int later = score_at(g, i + 7);
    const int margin = std::abs(before) / 10;
    return before >= -999 && before < 250 && later >= -999 &&
           score_at(g, i + 1) > before + margin + 30 && score_at(g, i + 3) > before + margin + 30 &&
           later > before + margin + 50;
}

void write_listing(Engine& engine, ScanOutput& output, const GameReader& g) {
    bool refutes = false;  // the move before was a blunder
    walk(engine, g, [&](int i) {
        const bool white = i % 2 == 0;
        const int score = score_at(g, i);
        const std::string prefix = white ? format("%3d. ", i / 2 + 1) : "     ";
        std::string remark;
        if (score >= LEAST_SCORE) {
            remark = format("%6.2f", (white ? score : -score) / 100.0);
            if (refutes) {
                const std::string record = position_record(engine, g, i, "bm");
                remark += " ! " + record;
                output.blunders.write(record + "\n");
            }
        }
        refutes = is_blunder(g, i);
        if (refutes) remark += " ? " + position_record(engine, g, i, "am");
        output.main.write(
            format("%s %-6s  {%s}\n", prefix.c_str(), move_spelling(g, i).c_str(), remark.c_str()));
        return true;
    });
    output.main.write("\n");
}

const char* result_text(GameResult result) {
    constexpr const char* TEXTS[] = {"1-0", "0-1", "1/2-1/2"};
    return TEXTS[int(result)];
}

// Positions of the middle game with the game's result.
void write_results(Engine& engine, ScanOutput& output, const GameReader& g) {
    constexpr int FIRST = 16;
    constexpr int LAST = 250;
    constexpr int LAST_MOVES = 6;  // at the end are left out
    constexpr int DECIDED = 900;
    const int end = int(g.moves.size()) - LAST_MOVES;
    if (end <= 0) return;
    walk(engine, g, [&](int i) {
        if (i >= end || i > LAST) return false;
        const bool open = std::abs(score_at(g, i)) < DECIDED;
        if (i >= FIRST && open && !in_check(engine.game.position)) {
            write_position(
                output, scored_record(engine, g, i) + format(" c9 \"%s\";", result_text(g.result)));
        }
        return true;
    });
}

// Positions up to the one that decides the game.
void write_openings(Engine& engine, ScanOutput& output, const GameReader& g) {
    constexpr int LAST = 200;
    constexpr int DECISIVE = 500;
    walk(engine, g, [&](int i) {
        if (i <= LAST && !in_check(engine.game.position))
            write_position(output, scored_record(engine, g, i));
        return std::abs(score_at(g, i)) <= DECISIVE;
    });
}

// What the game was worth to a side: 1, 0.5 or 0.
double game_value(GameResult result, int side) {
    if (result == GameResult::DRAW) return 0.5;
    return int(result) == side ? 1.0 : 0.0;
}

// Rook endings with one pawn.
void write_rook_endings(Engine& engine, ScanOutput& output, const GameReader& g) {
    const u16 rook = NPM_UNIT[ROOK];
    walk(engine, g, [&](int i) {
        const Position& p = engine.game.position;
        const bool wanted = p.npm[WHITE] == rook && p.npm[BLACK] == rook &&
                            pawn_count(p, WHITE) + pawn_count(p, BLACK) == 1;
        if (wanted) {
            write_position(output, scored_record(engine, g, i) +
                                       format(" tune %0.5f;", game_value(g.result, p.side)));
        }
        return true;
    });
}

}  // namespace

const ScanVariant scan_variants[SCAN_VARIANTS] = {
    {"tmp.pgn", true, write_listing},
    {"tmp.epd", false, write_results},
    {"tmp.epd", false, write_openings},
    {"tmp.epd", false, write_rook_endings},
};

}  // namespace quon
