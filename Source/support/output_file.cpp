#include "support/output_file.h"

#include <filesystem>

#include "support/status_line.h"
#include "support/text.h"

namespace quon {

bool overwrites_input(const std::string& input, const std::string& output) {
    std::error_code unknown;
    const bool same = std::filesystem::equivalent(input, output, unknown);
    if (same) {
        error_line(format("quon: %s would be overwritten while it is read", input.c_str()));
    }
    return same;
}

void report_incomplete(const std::string& path) {
    error_line(format("quon: %s could not be written whole", path.c_str()));
}

bool close_output(File& output) {
    output.close();
    if (output.failed()) report_incomplete(output.path());
    return !output.failed();
}

}  // namespace quon
