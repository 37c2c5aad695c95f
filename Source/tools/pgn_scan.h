#pragma once
// The PGN scanner: replays games whose comments carry engine scores and writes their positions.

#include <string>

namespace quon {

struct Engine;

// Writes "tmp.pgn" (variant 1) or "tmp.epd" (2 to 4), and "tmpX.epd", and prints how many games
// were read and positions written. A file that cannot be opened ends it silently. False if the
// file could not be read to its end or is one that would be written, or if output could not be
// written.
bool scan_pgn(Engine& engine, const std::string& path, int variant);

}  // namespace quon
