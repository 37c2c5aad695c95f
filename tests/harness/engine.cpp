#include "harness/engine.h"

#include "engine/search_report.h"

namespace quon::test {

Engine engine;

void derive_parameters() {
    static SearchReporter reporter(engine);
    engine.listener = &reporter;
    derive_tables(engine);
}

}  // namespace quon::test
