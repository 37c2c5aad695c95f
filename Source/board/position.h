#pragma once
// The board state of one thread, and the record of the moves that led to it.
//
// The representation is redundant on purpose: `board`, `bb`, `plist`, `sig`, `npm`, `key` and
// `pawn_key` always describe the same pieces. The order of a piece list is part of the engine's
// behaviour: the generators walk it.

#include "board/bitboard.h"
#include "board/types.h"

namespace quon {

constexpr char START_FEN[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";

constexpr u8 WHITE_KING_SIDE = 1;
constexpr u8 WHITE_QUEEN_SIDE = 2;
constexpr u8 BLACK_KING_SIDE = 4;
constexpr u8 BLACK_QUEEN_SIDE = 8;

// One way to castle. `path` has to be empty; the king's square halfway is the rook's new one.
struct Castling {
    u8 right;
    u8 color;
    char letter;  // in a FEN
    u8 king_from, king_to;
    u8 rook_from, rook_to;
    Bitboard path;
};
inline constexpr Table<Castling, 4> CASTLINGS = {{
    {WHITE_KING_SIDE, WHITE, 'K', E1, G1, H1, F1, bit(F1) | bit(G1)},
    {WHITE_QUEEN_SIDE, WHITE, 'Q', E1, C1, A1, D1, bit(B1) | bit(C1) | bit(D1)},
    {BLACK_KING_SIDE, BLACK, 'k', E8, G8, H8, F8, bit(F8) | bit(G8)},
    {BLACK_QUEEN_SIDE, BLACK, 'q', E8, C8, A8, D8, bit(B8) | bit(C8) | bit(D8)},
}};
constexpr const Castling& castling(int color, bool king_side) {
    return CASTLINGS[2 * color + (king_side ? 0 : 1)];
}

// Pieces of one code that a position text may hold; promotions can add the side's pawns to them.
constexpr int MAX_PER_CODE = 9;
constexpr int PLIST_SIZE = 2 * MAX_PER_CODE + 2;

// Moves of a game that can be taken back; a longer game forgets its oldest ones.
constexpr int MAX_GAME_PLIES = 4096;
// Deepest search ply (lines hold plies 1..69); lists and records have a little room beyond it.
constexpr int MAX_PLY = 70;

// One played move with everything that takes it back.
struct UndoRecord {
    u64 key;  // of the position before the move
    u64 pawn_key;
    Move move;    // 0 for a null move
    u8 captured;  // type taken on the destination; 0 for none and for en passant
    u8 ep;
    u8 fifty;
    u8 castle;
};

struct GameRecord {
    Table<UndoRecord, MAX_GAME_PLIES + 2 * MAX_PLY> undo;
    i16 game_ply;    // moves made since the position was loaded = index of the next free record
    i16 ply;         // 1 after a load, +1 per move made
    Move last_move;  // 0 after a load and after a null move
};

// What a text said that no position can be; kept so that a search can refuse it by name.
enum class TextFlaw : u8 { NONE, TOO_MANY_PIECES, OUTSIDE_BOARD };

struct Position {
    GameRecord* owner;                       // the record that make_move writes
    Table<u8, 65> board;                     // piece codes; entry NO_SQUARE is always empty
    Table<Table<Bitboard, 8>, 2> bb;         // [colour][0] all pieces, [colour][type]
    Table<Table<u8, PLIST_SIZE>, 16> plist;  // squares per piece code, ended by NO_SQUARE
    u64 key;                                 // placement only: see full_key
    u64 pawn_key;
    Table<u32, 2> sig;  // four-bit counts: pawns, knights, bishops, rooks, queens from bit 0
    Table<u16, 2> npm;  // knight 3, bishop 3, rook 5, queen 10
    u8 side;
    u8 fifty;  // plies since the last capture, pawn move or castling move
    u8 castle;
    u8 ep;  // square passed over by the last double push, NO_SQUARE if none
    TextFlaw flaw;
};

// A position with its own game record: the game on the front end's board, or a search thread's
// copy.
struct Game : GameRecord {
    Position position;  // writes into this very record

    Game();
    Game(const Game& other);
    Game& operator=(const Game& other);
};

inline Bitboard occupied(const Position& p) { return p.bb[WHITE][0] | p.bb[BLACK][0]; }
inline int king_square(const Position& p, int color) { return p.plist[make_piece(color, KING)][0]; }
// A move on the board, not yet ordered.
inline MoveEntry move_entry(const Position& p, Move move) {
    return {move, 0, p.board[move_from(move)], p.board[move_to(move)]};
}
inline int pawn_count(const Position& p, int color) { return int(p.sig[color] & 15); }

// What one piece of a type adds to `sig` and to `npm`.
constexpr Table<u32, 7> SIG_UNIT = {{0, 1, 16, 256, 4096, 65536, 0}};
constexpr Table<u16, 7> NPM_UNIT = {{0, 0, 3, 3, 5, 10, 0}};

// True if any piece of by_side on an `attackers` square attacks the square; the occupancy blocks
// sliders.
[[nodiscard]] bool square_attacked(const Position& p, int square, int by_side, Bitboard occupancy,
                                   Bitboard attackers);
[[nodiscard]] inline bool square_attacked(const Position& p, int square, int by_side) {
    return square_attacked(p, square, by_side, occupied(p), occupied(p));
}
// The colour's sliders that would attack the square on the empty board.
inline Bitboard aligned_sliders(const Position& p, int color, int square) {
    const auto& pieces = p.bb[color];
    return (diag_lines[square] & (pieces[BISHOP] | pieces[QUEEN])) |
           (orth_lines[square] & (pieces[ROOK] | pieces[QUEEN]));
}
[[nodiscard]] inline bool in_check(const Position& p) {
    return square_attacked(p, king_square(p, p.side), p.side ^ 1);
}

// Puts a piece on an empty square or takes one off: board, list, bitboards, sig, npm; not the keys.
void place_piece(Position& p, int piece, int square);
void remove_piece(Position& p, int square);
// The same piece on another, empty square; its place in the list stays.
void move_piece(Position& p, int piece, int from, int to);

// No moves: none to take back, none to play again.
void clear_record(GameRecord& record);

// An empty board with all castling rights and an empty game record; the side to move stays.
void clear_position(Position& p);

// Copies position and game record; the copy's position points at its own record.
void copy_game(Game& to, const Game& from);

// The castling rights that the pieces allow: king and rook at home.
[[nodiscard]] u8 supported_rights(const Position& p);

// True if a pawn of the waiting side has just passed the en-passant square; a position text may
// name any other square.
[[nodiscard]] bool ep_was_passed(const Position& p);

// Why the position cannot be searched, or nullptr if it can: one king a side, no pawns on the end
// ranks, the waiting side not in check, an en-passant square that a pawn has passed.
[[nodiscard]] const char* position_problem(const Position& p);

}  // namespace quon
