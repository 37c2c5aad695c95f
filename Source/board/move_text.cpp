// Move text. The SAN reader does not parse: it writes the moves that the text may mean in all forms
// and looks for the text.

#include "board/move_text.h"

#include <cctype>

#include "board/fen.h"
#include "board/legality.h"
#include "board/movegen.h"

namespace quon {

namespace {

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
    return style == MoveStyle::UCI ? squares_text(move) + PIECE_LETTERS[make_piece(BLACK, type)]
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
    const int type = type_of(piece);
    if (type == KING) return 0;
    return attacks_from(type, to, occupied(p)) & p.bb[color_of(piece)][type] & ~bit(from);
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
    if (is_castling(type_of(entry.piece), from, to)) {
        const bool king_side = to > from;
        forms.san = king_side ? "o-o" : "o-o-o";
        forms.file = king_side ? "O-O" : "O-O-O";
        forms.rank = king_side ? "0-0" : "0-0-0";
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
    if (PROMOTION_CODE[type_of_letter(last)] != 0) {
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

Clues clues_of(std::string_view text) {
    const std::string_view body = text.substr(0, text.find('='));
    return {type_of_letter(text[0]),
            body.size() < 2 ? NO_SQUARE : square_named(body.substr(body.size() - 2))};
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

// Where the king goes when he is said to take his own rook at home; any other move ends where it
// says.
int castling_destination(const Position& p, int from, int to) {
    for (const Castling& way : CASTLINGS) {
        const bool takes_rook = from == way.king_from && to == way.rook_from &&
                                p.board[from] == make_piece(p.side, KING) &&
                                p.board[to] == make_piece(p.side, ROOK);
        if (takes_rook) return way.king_to;
    }
    return to;
}

}  // namespace

Move parse_coordinates(const Position& p, std::string_view text) {
    if (text.size() < 4) return NO_MOVE;
    const int from = square_named(text);
    const int named = square_named(text.substr(2));
    if (from == NO_SQUARE || named == NO_SQUARE) return NO_MOVE;
    const int to = castling_destination(p, from, named);
    const int promoted = text.size() > 4 ? type_of_letter(text[4], BLACK) : NO_TYPE;
    const Move move = make_code(from, to, PROMOTION_CODE[promoted]);
    const bool refused =
        !is_pseudo_legal(p, move) || type_of(p.board[to]) == KING || false_en_passant(p, from, to);
    return refused ? NO_MOVE : move;
}

}  // namespace quon
