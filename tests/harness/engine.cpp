// The tests' engine.

#include "harness/engine.h"

#include "engine/search_report.h"

namespace quon::test {

Engine engine;

namespace {

SearchReporter reporter(engine);

}  // namespace

void derive_parameters() {
    engine.listener = &reporter;
    derive_tables(engine);
}

}  // namespace quon::test
