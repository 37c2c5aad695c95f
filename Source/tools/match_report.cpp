// Texts of the self-play match.

#include "tools/match_report.h"

#include <cmath>

#include "board/fen.h"
#include "engine/engine.h"
#include "support/text.h"

namespace quon {

namespace {

constexpr int FEW_GAMES = 200;  // too few to call a winner

const char* result_text(Outcome outcome) {
    switch (outcome) {
        case Outcome::WHITE_WINS: return "1-0";
        case Outcome::BLACK_WINS: return "0-1";
        default: return "1/2-1/2";
    }
}

const char* player_name(const MatchGame& game, int color) {
    return color == game.first_player_color ? "Player1" : "Player2";
}

std::string move_text(const SearchedMove& m) {
    return format("%s%s {%0.2f/%d}", square_name[move_from(m.move)], square_name[move_to(m.move)],
                  m.score / 100.0, m.depth);
}

}  // namespace

void count_game(MatchScore& score, Outcome outcome, int first_player_color) {
    if (outcome == Outcome::DRAW) {
        ++score.draws;
    } else if ((outcome == Outcome::WHITE_WINS) == (first_player_color == WHITE)) {
        ++score.wins;
    } else {
        ++score.losses;
    }
}

std::string statistics_line(const MatchScore& s) {
    const int games = s.wins + s.losses + s.draws;
    const double share = (s.wins + s.draws / 2.0) / games;
    const double margin = 1.5 * std::sqrt(games + 10.0) / (games + 1);
    const bool clear = games > FEW_GAMES && (share > 0.5 + margin || share < 0.5 - margin);
    return format("%4d games,  %3d %3d %3d  %0.3f (+/- %0.3f) %c", games, s.wins, s.losses, s.draws,
                  share, margin, clear ? '*' : ' ');
}

std::string game_text(const MatchGame& game) {
    std::string text = format(
        "[Event selfplay]\n[Game %d]\n[White \"%s\"]\n[Black \"%s\"]\n[Result \"%s\"]\n",
        game.number, player_name(game, WHITE), player_name(game, BLACK), result_text(game.outcome));
    for (std::size_t i = 0; i < game.moves.size(); ++i) {
        if (i % 2 == 1) text += "   ";
        text += move_text(game.moves[i]);
        if (i % 2 == 1) text += '\n';
    }
    return text + "\n\n";
}

}  // namespace quon
