#pragma once
// The parameter file "quon.rc": one setting a line, "key = value" or "key = opening, ending", and
// square tables as blocks of eight lines. Tested in tests/eval/param_file_test.cpp.

#include <functional>
#include <string>
#include <string_view>

#include "eval/eval_params.h"

namespace quon {

enum class ParamFile {
    NOT_OPENED,        // nothing is changed
    NO_SQUARE_TABLES,  // not all twelve; everything else holds
    WHOLE,
};

// Reads the file into the record. Each line goes to `take_line` first, with blanks in place of '='
// and ','; true from there means that the line is somebody else's.
ParamFile read_params(const std::string& path, EvalParams& record,
                      const std::function<bool(std::string_view)>& take_line);

}  // namespace quon
