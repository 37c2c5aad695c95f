// The settings of a parameter file.

#include "engine/param_settings.h"

#include <algorithm>
#include <limits>

#include "engine/output.h"
#include "eval/param_file.h"
#include "support/text.h"

namespace quon {

namespace {

// A key whose line names a file or a path, wherever it stands in the line.
struct TextKey {
    std::string_view name;
    std::string EngineOptions::*field;
    std::size_t max_length;
};
constexpr TextKey TEXT_KEYS[] = {
    {"SyzygyPath", &EngineOptions::syzygy_path, MAX_SYZYGY_PATH},
    {"QuonBook", &EngineOptions::book_file, MAX_FILE_NAME},
};

// A key in front of a number. What it says is clamped, with a message.
struct NumberKey {
    std::string_view name;
    void (*set)(Engine& engine, i64 value);
    i64 low = std::numeric_limits<i64>::min();
    i64 high = std::numeric_limits<i64>::max();
};
constexpr NumberKey NUMBER_KEYS[] = {
    {"BookVariety", [](Engine& e, i64 value) { e.options.book_variety = i16(value); }, 1,
     std::numeric_limits<i16>::max()},
    {"BookDepth", [](Engine& e, i64 value) { e.options.book_depth = u8(value); }, 0,
     std::numeric_limits<u8>::max()},
    {"SyzygyProbeDepth5",
     [](Engine& e, i64 value) { e.settings.syzygy_probe_depth5 = i16(value); }},
    {"SyzygyProbeDepth6",
     [](Engine& e, i64 value) { e.settings.syzygy_probe_depth6 = i16(value); }},
};

// True if the line belongs to one of the text keys. Without a value the setting stays.
bool take_text(Engine& engine, std::string_view line) {
    for (const TextKey& key : TEXT_KEYS) {
        const std::size_t found = line.find(key.name);
        if (found == std::string_view::npos) continue;
        std::string_view rest = line.substr(found + key.name.size());
        const std::string_view value = take_token(rest, " \t\"");
        if (!value.empty()) engine.options.*key.field = value.substr(0, key.max_length);
        return true;
    }
    return false;
}

bool take_number(Engine& engine, std::string_view line) {
    const std::string_view name = take_token(line, " \t\r\n");
    for (const NumberKey& key : NUMBER_KEYS) {
        if (key.name != name) continue;
        const i64 value = to_integer(take_token(line, " \t\r\n"));
        const i64 used = std::clamp(value, key.low, key.high);
        if (used != value) {
            engine_print(format("%s%s is %d to %d: %s becomes %d", message_prefix(engine),
                                std::string(name).c_str(), int(key.low), int(key.high),
                                std::to_string(value).c_str(), int(used)));
        }
        key.set(engine, used);
        return true;
    }
    return false;
}

}  // namespace

bool load_params(Engine& engine, const std::string& path, EvalParams& record) {
    const ParamFile read = read_params(path, record, [&](std::string_view line) {
        return take_text(engine, line) || take_number(engine, line);
    });
    if (read == ParamFile::NOT_OPENED) return false;
    engine_print(format("loaded parameters from %s", path.c_str()));
    if (read == ParamFile::WHOLE) return true;
    engine_print("file quon.rc contains invalid PST");
    return false;
}

}  // namespace quon
