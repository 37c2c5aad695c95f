#pragma once
// The evaluation tables as text, for the console.

#include <string>

#include "eval/eval_tables.h"

namespace quon {

std::string eval_tables_text(const EvalTables& tables);

}  // namespace quon
