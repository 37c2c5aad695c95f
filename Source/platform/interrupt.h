#pragma once
// The interrupt key and the system's request to end, for long work that wants to end cleanly.

namespace quon {

// From now on the first Ctrl-C, or request to end, is only noted and wakes the main thread; a
// second one ends the process at once. Main thread, after init_events.
void catch_interrupts();

// True once one has come since then.
bool interrupted();
// From now on the first one ends the process again.
void release_interrupts();

}  // namespace quon
