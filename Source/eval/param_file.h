#pragma once
// The parameter file "quon.rc": one setting a line, "key = value" or "key = opening, ending", and
// square tables as blocks of eight lines. Tested in tests/eval/param_file_test.cpp.

#include <string>

#include "eval/eval_params.h"

namespace quon {

// Reads the file into the record, and its book and tablebase settings into `options`. False when
// the file cannot be opened (nothing is changed) or does not set all twelve square tables;
// everything else it says holds even then.
bool load_params(const std::string& path, EvalParams& record);

}  // namespace quon
