// FEN and EPD reading and writing.

#include "board/fen.h"

#include "board/keys.h"
#include "support/text.h"

namespace quon {

const char* const square_name[64] = {
    "a1", "b1", "c1", "d1", "e1", "f1", "g1", "h1", "a2", "b2", "c2", "d2", "e2", "f2", "g2", "h2",
    "a3", "b3", "c3", "d3", "e3", "f3", "g3", "h3", "a4", "b4", "c4", "d4", "e4", "f4", "g4", "h4",
    "a5", "b5", "c5", "d5", "e5", "f5", "g5", "h5", "a6", "b6", "c6", "d6", "e6", "f6", "g6", "h6",
    "a7", "b7", "c7", "d7", "e7", "f7", "g7", "h7", "a8", "b8", "c8", "d8", "e8", "f8", "g8", "h8",
};

int square_named(std::string_view text) {
    if (text.size() < 2 || text[0] < 'a' || text[0] > 'h' || text[1] < '1' || text[1] > '8')
        return NO_SQUARE;
    return make_square(text[0] - 'a', text[1] - '1');
}

int type_of_letter(char letter, int color) {
    for (int type = PAWN; type <= KING; ++type) {
        if (PIECE_LETTERS[make_piece(color, type)] == letter) return type;
    }
    return NO_TYPE;
}

namespace {

// Hands out a text character by character; 0 at its end.
struct Reader {
    std::string_view text;
    std::size_t at = 0;

    char next() { return at < text.size() ? text[at++] : '\0'; }
    // The next blank-free run, its leading blanks skipped.
    std::string_view field() {
        while (at < text.size() && text[at] == ' ') ++at;
        const std::size_t start = at;
        while (at < text.size() && text[at] != ' ') ++at;
        return text.substr(start, at - start);
    }
};

void put(Position& p, int piece, int square) {
    int count = 0;
    while (p.plist[piece][count] != NO_SQUARE) ++count;
    if (square < 0 || p.board[square] != 0) {
        p.flaw = TextFlaw::OUTSIDE_BOARD;
    } else if (count == MAX_PER_CODE) {
        p.flaw = TextFlaw::TOO_MANY_PIECES;
    } else {
        place_piece(p, piece, square);
    }
}

// Squares are negative after too many '/'; nothing is placed there.
void read_board(Position& p, Reader& reader) {
    int square = A8;
    for (char c = reader.next(); c != '\0' && c != ' '; c = reader.next()) {
        const int h_file = square | 7;
        if (c >= '0' && c <= '9') {
            square = square + (c - '0') <= h_file ? square + (c - '0') : h_file;
        } else if (c == '/') {
            square = (square & ~7) - 8;
        } else if (is_letter(c)) {
            for (const int color : {WHITE, BLACK}) {
                const int type = type_of_letter(c, color);
                if (type != NO_TYPE) put(p, make_piece(color, type), square);
            }
            if (square < h_file) ++square;
        }
    }
}

// A text without this field claims every right that the pieces support.
void read_castling(Position& p, std::string_view field) {
    if (field.empty()) return;
    p.castle = 0;
    for (const char c : field) {
        for (const Castling& way : CASTLINGS) {
            if (c == way.letter) p.castle |= way.right;
        }
    }
}

void read_ep(Position& p, std::string_view field) {
    int square = NO_SQUARE;
    for (const char c : field) {
        if (c >= 'a' && c <= 'h') square = c - 'a';
        if (c >= '1' && c <= '8' && square + (c - '1') * 8 < NO_SQUARE) square += (c - '1') * 8;
    }
    p.ep = u8(square);
}

}  // namespace

bool complete_position(Position& p) {
    p.key = p.pawn_key = 0;
    for (int square = 0; square < 64; ++square) {
        if (p.board[square]) toggle_key(p, p.board[square], square);
    }
    const u8 claimed = p.castle;
    p.castle &= supported_rights(p);
    return p.castle != claimed;
}

void set_start_position(Position& p) { (void)position_from_fen(p, START_FEN); }

bool position_from_fen(Position& p, std::string_view text) {
    clear_position(p);
    Reader reader{text};
    read_board(p, reader);
    const char side = reader.next();
    if (side == 'w') p.side = WHITE;
    if (side == 'b') p.side = BLACK;
    read_castling(p, reader.field());
    read_ep(p, reader.field());
    return !complete_position(p);
}

std::string position_to_fen(const Position& p) {
    std::string text;
    for (int rank = 7; rank >= 0; --rank) {
        int empty = 0;
        const auto flush_empty = [&] {
            if (empty) text += char('0' + empty);
            empty = 0;
        };
        for (int file = 0; file < 8; ++file) {
            const int piece = p.board[make_square(file, rank)];
            if (piece == 0) {
                ++empty;
                continue;
            }
            flush_empty();
            text += PIECE_LETTERS[piece];
        }
        flush_empty();
        if (rank > 0) text += '/';
    }
    text += p.side == WHITE ? " w " : " b ";
    for (const Castling& way : CASTLINGS) {
        if (p.castle & way.right) text += way.letter;
    }
    if (p.castle == 0) text += '-';
    text += ' ';
    text += p.ep == NO_SQUARE ? "-" : square_name[p.ep];
    return text;
}

char diagram_character(const Position& p, int square) {
    const int piece = p.board[square];
    const char empty = (rank_of(square) + file_of(square)) % 2 == 0 ? '+' : '-';
    if (piece == make_piece(BLACK, PAWN)) return 'o';
    return piece ? PIECE_LETTERS[piece] : empty;
}

std::string board_text(const Position& p) {
    std::string text = position_to_fen(p) + "\n";
    for (int rank = 7; rank >= 0; --rank) {
        for (int file = 0; file < 8; ++file) {
            text += ' ';
            text += diagram_character(p, make_square(file, rank));
        }
        text += '\n';
    }
    return text + (p.side == WHITE ? "white\n" : "black\n");
}

namespace {

constexpr std::size_t MAX_EPD_LINE = 511;

}  // namespace

bool parse_epd_line(std::string_view line, EpdRecord& out) {
    out = {};
    std::string_view rest = line.substr(0, MAX_EPD_LINE);
    for (int field = 0; field < 4; ++field) {
        const std::string_view token = take_token(rest, " \r\n");
        if (token.empty()) return out = {}, false;
        if (field > 0) out.fen += ' ';
        out.fen += token;
    }
    const struct {
        std::string_view opcode;
        std::string& operand;
    } opcodes[] = {{"bm", out.bm}, {"am", out.am}, {"id", out.id}, {"ce", out.ce}, {"c0", out.c0}};
    while (!rest.empty()) {
        const std::string_view token = take_token(rest, " ;\r\n");
        for (const auto& row : opcodes) {
            if (token != row.opcode) continue;
            // An opcode that is closed at once has no operand.
            const std::size_t start = rest.find_first_not_of(' ');
            const bool closed =
                start == std::string_view::npos ||
                std::string_view(";\r\n").find(rest[start]) != std::string_view::npos;
            if (!closed) row.operand = take_token(rest, " ;\r\n");
            break;
        }
    }
    return true;
}

}  // namespace quon
