#pragma once
// The self-play match, which measures a change of parameters.

namespace quon {

struct Engine;

// Plays up to 8000 games between the start-up parameters changed by "test1.rc" (player 1) and the
// start-up parameters as they are (player 2), about 75000 nodes or the depth of the command line a
// move. Each game goes to options.match_file as soon as it ends, and the score so far is printed. A
// game that is broken off is not recorded. The searches' settings and the last mover's parameters
// stay. False if the games would go over "test1.rc" or could not be written; other reasons why the
// match cannot start are printed and no failure in this sense.
bool run_match(Engine& engine);

}  // namespace quon
