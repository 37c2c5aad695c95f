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

namespace {

bool open_output(OutputFile& output, const std::string& name, const char* mode) {
    output = {name, nullptr};
    output.file.reset(std::fopen(name.c_str(), mode));
    return output.file != nullptr;
}

}  // namespace

bool create_output(OutputFile& output, const std::string& name) {
    return open_output(output, name, "wb");
}

bool append_to_output(OutputFile& output, const std::string& name) {
    return open_output(output, name, "a");
}

void write_text(OutputFile& output, std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), output.file.get()) != text.size()) {
        output.failed = true;
    }
}

void flush_output(OutputFile& output) {
    if (std::fflush(output.file.get()) != 0) output.failed = true;
}

bool close_output(OutputFile& output) {
    if (std::fclose(output.file.release()) != 0) output.failed = true;
    if (output.failed) {
        error_line(format("quon: %s could not be written whole", output.name.c_str()));
    }
    return !output.failed;
}

}  // namespace quon
