#pragma once
// The parameter file as start-up and the match read it: parameters of the evaluation and the
// search, and settings of the book and the tablebases beside them.

#include <string>

#include "engine/engine.h"

namespace quon {

// Reads the file into the record, and its settings into the engine's. Tells what it has read. False
// when the file cannot be opened (nothing is changed) or does not set all twelve square tables;
// everything else it says holds even then.
bool load_params(Engine& engine, const std::string& path, EvalParams& record);

}  // namespace quon
