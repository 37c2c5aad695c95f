#pragma once
// The test-suite runner: searches the positions of an EPD file under the limits of the command line
// and counts how often the move found is the one that the file asks for.

#include <string>

namespace quon {

struct Engine;

// Prints the search of each position unless output_delay is NEVER, and the statistics. Positions
// whose line names neither a readable "bm" nor "am" move go to "unsolved.epd". A file that cannot
// be opened ends it silently. False if the file could not be read to its end or is the one that
// would be written, or if "unsolved.epd" could not be written.
bool run_test_suite(Engine& engine, const std::string& path);

}  // namespace quon
