#pragma once
// The interrupt key and the system's request to end, for long work that wants to end cleanly.

namespace quon {

// From now on the first Ctrl-C, or request to end, is only noted and wakes the main thread; a
// second one ends the process at once. One that the process was started to ignore, as in the
// background of a shell, stays ignored. Main thread, after init_events.
void catch_interrupts();

// True once one has come since then.
bool interrupted();

// What they did before catch_interrupts they do again.
void release_interrupts();

}  // namespace quon
