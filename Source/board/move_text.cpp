// Move text. The SAN reader does not parse: it writes the moves that the text may mean in all forms
// and looks for the text.

#include "board/move_text.h"

#include <cctype>

#include "board/fen.h"
#include "board/legality.h"
#include "board/movegen.h"

namespace quon {

namespace {

constexpr char UCI_PROMOTION_LETTERS[] = "  nbrq ";

std::string squares_text(Move move) {
    return std::string(square_name[move_from(move)]) + square_name[move_to(move)];
}

std::string promotion_suffix(Move move) {
    const int type = promotion_type(move);
    return type ? std::string("=") + PIECE_LETTERS[type] : std::string();
}

}  // namespace

std::string move_to_text(Move move, MoveStyle style) {
    if (move == NO_MOVE) return "null";
    const int type = promotion_type(move);
    if (type == NO_TYPE) return squares_text(move);
    return style == MoveStyle::UCI ? squares_text(move) + UCI_PROMOTION_LETTERS[type]
                                   : squares_text(move) + promotion_suffix(move);
}

namespace {

void pawn_forms(const Position& p, Move move, MoveForms& forms) {
    const int to = move_to(move);
    if (p.board[to] != 0 || to == p.ep) {
        forms.san = std::string(1, forms.coord[0]) + "x" + square_name[to];
        forms.file = {forms.coord[0], forms.coord[2]};
    } else {
        forms.san = square_name[to];
    }
    const std::string suffix = promotion_suffix(move);
    forms.coord += suffix;
    forms.san += suffix;
    forms.file += suffix;
}

// Other pieces of the mover's kind that attack the destination, pinned or not.
Bitboard rivals(const Position& p, int piece, int from, int to) {
    const Bitboard occupancy = occupied(p) | bit(to);
    Bitboard reach = 0;
    switch (type_of(piece)) {
        case KNIGHT: reach = knight_attacks[to]; break;
        case BISHOP: reach = bishop_attacks(to, occupancy); break;
        case ROOK: reach = rook_attacks(to, occupancy); break;
        case QUEEN: reach = bishop_attacks(to, occupancy) | rook_attacks(to, occupancy); break;
        default: break;
    }
    return reach & p.bb[color_of(piece)][type_of(piece)] & ~bit(from);
}

void piece_forms(const Position& p, const MoveEntry& entry, MoveForms& forms) {
    const int from = move_from(entry.move);
    const int to = move_to(entry.move);
    const std::string letter(1, PIECE_LETTERS[type_of(entry.piece)]);
    forms.san = letter;
    forms.file = letter + square_name[from][0];
    forms.rank = letter + square_name[from][1];
    const Bitboard others = rivals(p, entry.piece, from, to);
    if (others & file_mask(file_of(from))) {
        forms.san = forms.rank;
    } else if (others & rank_mask(rank_of(from))) {
        forms.san = forms.file;
    }
    const std::string end = std::string(p.board[to] ? "x" : "") + square_name[to];
    forms.san += end;
    forms.file += end;
    forms.rank += end;
    if (type_of(entry.piece) == KING && to == from + 2) {
        forms.san = "o-o";
        forms.file = "O-O";
        forms.rank = "0-0";
    } else if (type_of(entry.piece) == KING && to == from - 2) {
        forms.san = "o-o-o";
        forms.file = "O-O-O";
        forms.rank = "0-0-0";
    }
}

MoveForms forms_without_check(const Position& p, const MoveEntry& entry) {
    MoveForms forms;
    forms.coord = squares_text(entry.move);
    if (type_of(entry.piece) == PAWN) {
        pawn_forms(p, entry.move, forms);
    } else {
        piece_forms(p, entry, forms);
    }
    return forms;
}

}  // namespace

MoveForms move_forms(const Position& p, const MoveEntry& entry) {
    MoveForms forms;
    if (entry.move == NO_MOVE) {
        forms.coord = "null";
        return forms;
    }
    forms = forms_without_check(p, entry);
    if (gives_check(p, entry)) {
        for (std::string* form : {&forms.coord, &forms.san, &forms.file, &forms.rank}) *form += '+';
    }
    return forms;
}

std::string normalized_san(std::string_view input) {
    std::string text(input.substr(0, input.find('+')));
    while (!text.empty() && text.back() == '#') text.pop_back();
    if (text.empty()) return text;
    const char last = char(std::toupper(static_cast<unsigned char>(text.back())));
    if (std::string_view("NBQR").find(last) != std::string_view::npos) {
        text.pop_back();
        if (text.empty() || text.back() != '=') text += '=';
        text += last;
    }
    for (char& c : text) {
        if (c == 'O' || c == '0') c = 'o';
    }
    return text;
}

namespace {

// What a text tells of its move before any move is written out.
struct Clues {
    int type;         // NO_TYPE when the text does not begin with a piece's letter
    int destination;  // NO_SQUARE when it does not end with one: a pawn's two files, castling
};

int ending_square(std::string_view body) {
    if (body.size() < 2) return NO_SQUARE;
    const int file = body[body.size() - 2] - 'a';
    const int rank = body[body.size() - 1] - '1';
    const bool on_board = 0 <= file && file < 8 && 0 <= rank && rank < 8;
    return on_board ? make_square(file, rank) : NO_SQUARE;
}

Clues clues_of(std::string_view text) {
    const std::size_t letter = std::string_view(PIECE_LETTERS).find(text[0], KNIGHT);
    return {letter == std::string_view::npos ? NO_TYPE : int(letter),
            ending_square(text.substr(0, text.find('=')))};
}

// False only if no form of the move can be a text with these clues.
bool may_match(const MoveEntry& entry, const Clues& clues) {
    const int type = type_of(entry.piece);
    if (clues.destination == NO_SQUARE) return type == PAWN || type == KING;
    return move_to(entry.move) == clues.destination &&
           (clues.type == NO_TYPE || clues.type == type);
}

bool matches(const MoveForms& forms, std::string_view text) {
    return forms.coord == text || forms.san == text || forms.file == text || forms.rank == text;
}

// How many legal moves the text names, and the last of them.
int count_moves_named(const Position& p, std::string_view input, Move& found) {
    const std::string text = normalized_san(input);
    if (text.empty()) return 0;
    const Clues clues = clues_of(text);
    MoveEntry list[MAX_LIST];
    const MoveEntry* end = gen_all(p, list);
    const KingGuard guard = king_guard(p);
    int count = 0;
    for (const MoveEntry* entry = list; entry != end; ++entry) {
        if (may_match(*entry, clues) && matches(forms_without_check(p, *entry), text) &&
            is_legal(p, entry->move, guard)) {
            ++count;
            found = entry->move;
        }
    }
    return count;
}

}  // namespace

std::string readable_san(const Position& p, const MoveEntry& entry) {
    const MoveForms forms = move_forms(p, entry);
    for (const std::string* form : {&forms.san, &forms.file, &forms.rank}) {
        Move found = NO_MOVE;
        if (count_moves_named(p, *form, found) == 1) return *form;
    }
    return forms.coord;
}

int parse_san(const Position& p, std::string_view input, Move& out_move) {
    out_move = NO_MOVE;
    Move found = NO_MOVE;
    const int count = count_moves_named(p, input, found);
    if (count == 1) out_move = found;
    return count;
}

namespace {

// make_move takes every pawn's move to the en-passant square for an en-passant capture, which it is
// only behind a pawn that has passed the square.
bool false_en_passant(const Position& p, int from, int to) {
    return to == p.ep && type_of(p.board[from]) == PAWN && !ep_was_passed(p);
}

}  // namespace

Move parse_coordinates(const Position& p, std::string_view text) {
    if (text.size() < 4) return NO_MOVE;
    for (const std::size_t i : {0U, 2U}) {
        if (text[i] < 'a' || text[i] > 'h' || text[i + 1] < '1' || text[i + 1] > '8')
            return NO_MOVE;
    }
    const int from = make_square(text[0] - 'a', text[1] - '1');
    const int to = make_square(text[2] - 'a', text[3] - '1');
    Move promotion = 0;
    switch (text.size() > 4 ? text[4] : '\0') {
        case 'q': promotion = PROMOTE_QUEEN; break;
        case 'n': promotion = PROMOTE_KNIGHT; break;
        case 'b': promotion = PROMOTE_BISHOP; break;
        case 'r': promotion = PROMOTE_ROOK; break;
        default: break;
    }
    const Move move = make_code(from, to, promotion);
    const bool refused =
        !is_pseudo_legal(p, move) || type_of(p.board[to]) == KING || false_en_passant(p, from, to);
    return refused ? NO_MOVE : move;
}

}  // namespace quon
