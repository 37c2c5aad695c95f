// The table print.

#include "eval/eval_tables.h"

#include "support/text.h"

namespace quon {

namespace {

// The titles of each type's opening and ending table.
constexpr const char* TYPE_NAMES[] = {"", "Pawn", "Knight", "Bishop", "Rook", "Queen", "King"};

std::string values_text(const EvalTerms& terms) {
    std::string text = "piece values=";
    for (const Pair value : {terms.pawn_value, terms.knight_value, terms.bishop_value,
                             terms.rook_value, terms.queen_value}) {
        text += format("  %d/%d", value.op, value.en);
    }
    return text + format("\nbishop_pair= %d , %d\n\n", terms.bishop_pair.op, terms.bishop_pair.en);
}

std::string danger_text(const EvalTables& t) {
    std::string text = "KingDanger[]=";
    for (int i = 0; i < t.KingDanger.size(); ++i) {
        if (i % 10 == 0) text += format("\n%2d:  ", i);
        text += format("  %3d ", t.KingDanger[i]);
    }
    return text + "\n\n";
}

std::string mobility_text(const EvalTables& t) {
    std::string text;
    for (int n = 0; n <= 14; ++n) {
        const Pair& knight = t.knight_mobility[n];
        const Pair& bishop = t.bishop_mobility[n];
        const Pair& rook = t.rook_mobility[n];
        const Pair& queen = t.queen_mobility[n];
        text +=
            format("%3d  nmob= %3d/%3d  bmob=%3d/%3d  rmob=%3d/%3d  qmob= %3d/%3d\n", n, knight.op,
                   knight.en, bishop.op, bishop.en, rook.op, rook.en, queen.op, queen.en);
    }
    return text +
           format("queen_mob[28] = %d/%d\n", t.queen_mobility[28].op, t.queen_mobility[28].en);
}

std::string terms_text(const EvalTables& t) {
    std::string text;
    for (int rank = 1; rank < 7; ++rank) {
        text +=
            format("rank=%d,  ppawn=%3d, ppawnx=%3d\n", rank + 1, t.ppawn[rank], t.ppawnx[rank]);
    }
    const EvalTerms& terms = t.terms;
    text += format("pawn_shield= %d\n", terms.pawn_shield.op);
    text += format("pawn_storm= %d\n", terms.pawn_storm.op);
    text += format("hung= %d/%d\n", terms.hung.op, terms.hung.en);
    text += format("pinned= %d/%d\n", terms.pinned.op, terms.pinned.en);
    return text + format("knight_outpost= %d\n", terms.knight_outpost.op);
}

std::string square_table_text(const Table<Pair, 64>& table, i16 Pair::*phase) {
    std::string text;
    for (int rank = 7; rank >= 0; --rank) {
        for (int file = 0; file < 8; ++file) {
            text += format("  %3d ", table[make_square(file, rank)].*phase);
        }
        text += '\n';
    }
    return text + '\n';
}

}  // namespace

std::string eval_tables_text(const EvalTables& t) {
    std::string text = values_text(t.terms) + danger_text(t) + mobility_text(t) + terms_text(t);
    for (int type = PAWN; type <= KING; ++type) {
        const std::string name = TYPE_NAMES[type];
        text += name + "Opening\n" + square_table_text(t.pst[type], &Pair::op);
        text += name + "Ending\n" + square_table_text(t.pst[type], &Pair::en);
    }
    return text + "\n\n";
}

}  // namespace quon
