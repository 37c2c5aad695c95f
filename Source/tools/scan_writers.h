#pragma once
// What the PGN scanner makes of a game, one writer per variant. Games are replayed from the usual
// start position, up to the first move text that names no legal move.

#include "pgn/game_reader.h"
#include "support/output_file.h"

namespace quon {

struct Engine;

struct ScanOutput {
    File main;
    File blunders;      // written by variant 1 alone
    i64 positions = 0;  // written so far by variants 2 to 4
};

struct ScanVariant {
    const char* main_name;
    bool copies_tags;  // the main output gets the tag lines too
    void (*write_game)(Engine& engine, ScanOutput& output, const GameReader& game);
};

constexpr int SCAN_VARIANTS = 4;
extern const ScanVariant scan_variants[SCAN_VARIANTS];  // variant 1 first

}  // namespace quon
