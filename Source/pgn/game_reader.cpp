// Reading games.

#include "pgn/game_reader.h"

#include <algorithm>
#include <limits>

#include "support/text.h"

namespace quon {

namespace {

constexpr std::size_t MAX_COMMENT = 65536;  // characters that are looked at for a score
constexpr i16 MATE_SCORE = 9000;

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

std::string_view quoted_value(std::string_view line) {
    const std::size_t open = line.find('"');
    if (open == std::string_view::npos) return {};
    const std::string_view value = line.substr(open + 1);
    return value.substr(0, value.find('"'));
}

// Truncated. Of a number beyond the range, as engines write for tablebase wins, the low 16 bits
// remain.
i16 to_score(double centipawns) {
    constexpr double LARGEST = std::numeric_limits<int>::max();
    return i16(int(std::clamp(centipawns, -LARGEST, LARGEST)));
}

// Centipawns from White's view, up to the next comma.
i16 white_view_score(std::string_view text, int mover) {
    const std::string_view number = text.substr(0, text.find(','));
    const int score = number.empty() ? UNREADABLE_SCORE : to_score(double(to_integer(number)));
    return i16(mover == WHITE ? score : -score);
}

// Pawns, or a mate, behind the last blank.
i16 mover_view_score(std::string_view text) {
    const std::size_t blank = text.find_last_of(' ');
    const std::string_view number = blank == std::string_view::npos ? text : text.substr(blank + 1);
    if (contains(number, "-M")) return -MATE_SCORE;
    if (contains(number, "+M")) return MATE_SCORE;
    return to_score(to_real(number) * 100);
}

}  // namespace

i16 comment_score(std::string_view comment, int mover) {
    constexpr std::string_view EVAL = "eval ";
    if (contains(comment, "book")) return 0;
    const std::size_t eval = comment.find(EVAL);
    if (eval != std::string_view::npos) {
        return white_view_score(comment.substr(eval + EVAL.size()), mover);
    }
    const std::size_t slash = comment.find('/');
    return slash == std::string_view::npos ? UNREADABLE_SCORE
                                           : mover_view_score(comment.substr(0, slash));
}

void read_tag(GameReader& reader, std::string_view line) {
    if (contains(line, "Event ")) ++reader.games;
    if (contains(line, "Result ")) {
        const std::string_view value = quoted_value(line);
        reader.result = contains(value, "1-0")   ? GameResult::WHITE_WINS
                        : contains(value, "0-1") ? GameResult::BLACK_WINS
                                                 : GameResult::DRAW;
    }
}

namespace {

void add_to_comment(GameReader& reader, std::string_view text) {
    const std::size_t room = MAX_COMMENT - reader.comment.size();
    reader.comment += text.substr(0, room);
}

void close_comment(GameReader& reader) {
    if (reader.moves.empty() || reader.cut) return;
    const int mover = reader.moves.size() % 2 == 1 ? WHITE : BLACK;
    reader.moves.back().score = comment_score(reader.comment, mover);
}

void add_move(GameReader& reader, std::string_view text) {
    reader.comment.clear();
    if (reader.moves.size() == MAX_SCAN_MOVES) {
        reader.cut = true;
        return;
    }
    const i16 score = reader.moves.empty() ? FIRST_UNSCORED : UNSCORED;
    reader.moves.push_back({std::string(text), score});
}

}  // namespace

void read_move_text(GameReader& reader, const LinePiece& piece) {
    std::string_view rest = piece.text;
    while (const std::optional<PgnToken> token = next_token(reader.pgn, rest)) {
        switch (token->kind) {
            case PgnToken::MOVE: add_move(reader, token->text); break;
            case PgnToken::COMMENT: add_to_comment(reader, token->text); break;
            case PgnToken::COMMENT_END: close_comment(reader); break;
        }
    }
    if (reader.pgn.comment_depth > 0 && piece.ends_line) add_to_comment(reader, " ");
}

void next_game(GameReader& reader) {
    reader.moves.clear();
    reader.cut = false;
}

}  // namespace quon
