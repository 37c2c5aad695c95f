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
    init_eval_tables(eval_tables, params);
    apply_search_params(search_params, params);
}

}  // namespace quon::test
