// The options of UCI: one row each, from which the announcement, the reading and clamping of values
// and the reply come.

#include "frontend/uci.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "engine/engine.h"
#include "engine/output.h"
#include "eval/eval_params.h"
#include "frontend/search_session.h"
#include "search/hash.h"
#include "search/strength.h"
#include "search/threads.h"
#include "support/text.h"
#include "syzygy/tbprobe.h"

namespace quon {

namespace {

constexpr int OUT_OF_MEMORY = -1;  // exit status

// Search threads may exist and look at the engine: nothing may be torn down.
[[noreturn]] void end_without_memory(Engine& engine, const std::string& purpose) {
    engine_print(message_prefix(engine) + ("not enough memory for " + purpose));
    std::_Exit(OUT_OF_MEMORY);
}

void set_hash(Engine& engine, int megabytes) {
    finish_search(engine);
    engine.settings.hash_mb = i16(megabytes);
    if (!hash_alloc(engine.hash, megabytes, engine.settings.threads)) {
        end_without_memory(engine, format("a hash table of %dM bytes", megabytes));
    }
}

void set_threads(Engine& engine, int count) {
    if (count == engine.settings.threads) return;
    finish_search(engine);
    destroy_threads(engine);
    engine.settings.threads = u8(count);
    if (!create_threads(engine, count)) end_without_memory(engine, "the search threads");
}

void set_uci_elo(Engine& engine, int value) {
    const int elo = set_elo(engine, value);
    engine_print(format("info string UCI_Elo set to %d", elo));
    engine_print(format("info string calibration nps = %.0f", engine.options.calibration_nps));
    engine_print(format("info string target nps = %.0f", engine.settings.target_nps.get()));
}

void clear_hash(Engine& engine, int) {
    if (engine.settings.hash_mode == 0) return;
    finish_search(engine);
    hash_clear(engine.hash, engine.settings.threads);
    engine_print("info string Hash table cleared");
}

void set_syzygy_path(Engine& engine, std::string_view value) {
    finish_search(engine);
    const std::string path(value.substr(0, MAX_SYZYGY_PATH));
    engine.options.syzygy_path = path.empty() ? "." : path;
    engine_print("info string SyzygyPath set to '" + engine.options.syzygy_path + "'");
    load_tablebases(engine);
}

enum class Kind { CHECK, SPIN, BUTTON, TEXT };

struct UciOption {
    std::string_view name;
    Kind kind;
    int low = 0, high = 0;                      // of a spin; what is beyond becomes the nearest
    int (*get)(const Engine&) = nullptr;        // live value; of a check 0 or 1
    void (*set)(Engine&, int value) = nullptr;  // of a button: presses it
    const char* reply = nullptr;                // in front of the value; without one `set` tells
    const char* unit = "";                      // behind it
    int (*live_high)(const Engine&) = nullptr;  // announced in place of `high`
    const std::string& (*get_text)(const Engine&) = nullptr;
    void (*set_text)(Engine&, std::string_view value) = nullptr;
};

int elo_max(const Engine& e) { return int(std::nearbyint(e.options.elo_max)); }

constexpr UciOption OPTIONS[] = {
    {.name = "Hash",
     .kind = Kind::SPIN,
     .low = 0,
     .high = MAX_HASH_MB,
     .get = [](const Engine& e) { return int(e.settings.hash_mb); },
     .set = set_hash,
     .reply = "Hash size set to ",
     .unit = "M bytes"},
    {.name = "Threads",
     .kind = Kind::SPIN,
     .low = 1,
     .high = MAX_THREADS,
     .get = [](const Engine& e) { return int(e.settings.threads); },
     .set = set_threads,
     .reply = "Threads set to "},
    {.name = "Ponder",
     .kind = Kind::CHECK,
     .get = [](const Engine& e) { return int(e.settings.ponder_option != 0); },
     .set = [](Engine& e, int on) { e.settings.ponder_option = i16(on); },
     .reply = "Ponder set to "},
    {.name = "Contempt",
     .kind = Kind::SPIN,
     .low = -150,
     .high = 150,
     .get = [](const Engine& e) { return int(e.params.contempt); },
     .set = [](Engine& e, int centipawns) { e.params.contempt = i16(centipawns); },
     .reply = "Contempt set to "},
    {.name = "UCI_LimitStrength",
     .kind = Kind::CHECK,
     .get = [](const Engine& e) { return int(e.params.limit_strength != 0); },
     .set = [](Engine& e, int on) { e.params.limit_strength = i16(on); },
     .reply = "UCI_LimitStrength set to "},
    // Any number is taken: what is too low or too high for the machine is set_elo's business.
    {.name = "UCI_Elo",
     .kind = Kind::SPIN,
     .low = MIN_ELO,
     .high = std::numeric_limits<int>::max(),
     .get = elo_max,
     .set = set_uci_elo,
     .live_high = elo_max},
    {.name = "MultiPV",
     .kind = Kind::SPIN,
     .low = 1,
     .high = MAX_MULTIPV,
     .get = [](const Engine& e) { return int(e.settings.multipv); },
     .set = [](Engine& e, int lines) { e.settings.multipv = i16(lines); },
     .reply = "MultiPV set to "},
    {.name = "Clear Hash", .kind = Kind::BUTTON, .set = clear_hash},
    {.name = "MoveOverhead",
     .kind = Kind::SPIN,
     .low = 0,
     .high = 5000,
     .get = [](const Engine& e) { return int(std::nearbyint(e.limits.move_overhead * 1000)); },
     .set = [](Engine& e, int ms) { e.limits.move_overhead = ms * 0.001; },
     .reply = "MoveOverhead set to ",
     .unit = " ms"},
    {.name = "OwnBook",
     .kind = Kind::CHECK,
     .get = [](const Engine& e) { return int(e.options.own_book); },
     .set = [](Engine& e, int on) { e.options.own_book = on != 0; },
     .reply = "OwnBook set to "},
    {.name = "Log",
     .kind = Kind::CHECK,
     .get = [](const Engine&) { return int(log_enabled()); },
     .set = [](Engine&, int on) { set_log_enabled(on != 0); },
     .reply = "Log set to "},
    {.name = "SyzygyPath",
     .kind = Kind::TEXT,
     .get_text = [](const Engine& e) -> const std::string& { return e.options.syzygy_path; },
     .set_text = set_syzygy_path},
    {.name = "SyzygyProbeDepth5",
     .kind = Kind::SPIN,
     .low = 1,
     .high = 100,
     .get = [](const Engine& e) { return int(e.settings.syzygy_probe_depth5); },
     .set = [](Engine& e, int plies) { e.settings.syzygy_probe_depth5 = i16(plies); },
     .reply = "SyzygyProbeDepth5 set to "},
    {.name = "SyzygyProbeDepth6",
     .kind = Kind::SPIN,
     .low = 1,
     .high = 100,
     .get = [](const Engine& e) { return int(e.settings.syzygy_probe_depth6); },
     .set = [](Engine& e, int plies) { e.settings.syzygy_probe_depth6 = i16(plies); },
     .reply = "SyzygyProbeDepth6 set to "},
};

std::string value_text(const Engine& engine, const UciOption& option) {
    const int value = option.get(engine);
    if (option.kind == Kind::CHECK) return value != 0 ? "true" : "false";
    return std::to_string(value);
}

// Type, current value and range.
std::string declaration(const Engine& engine, const UciOption& option) {
    switch (option.kind) {
        case Kind::BUTTON: return "button";
        case Kind::TEXT: return "string default " + option.get_text(engine);
        case Kind::CHECK: return "check default " + value_text(engine, option);
        case Kind::SPIN: break;
    }
    const int high = option.live_high ? option.live_high(engine) : option.high;
    return format("spin default %d min %d max %d", option.get(engine), option.low, high);
}

void set_option(Engine& engine, const UciOption& option, std::string_view value) {
    switch (option.kind) {
        case Kind::BUTTON: return option.set(engine, 0);
        case Kind::TEXT: return option.set_text(engine, value);
        case Kind::CHECK: option.set(engine, value == "true"); break;
        case Kind::SPIN:
            option.set(engine, int(std::clamp<i64>(to_integer(value), option.low, option.high)));
            break;
    }
    if (!option.reply) return;
    engine_print(std::string("info string ") + option.reply + value_text(engine, option) +
                 option.unit);
}

}  // namespace

void load_tablebases(Engine& engine) {
    if (const auto found = tb_init(engine.options.syzygy_path)) {
        print_unlogged(format("info string found %d tablebases\n", *found));
    }
}

void print_uci_options(const Engine& engine) {
    for (const UciOption& option : OPTIONS) {
        engine_print("option name " + std::string(option.name) + " type " +
                     declaration(engine, option));
    }
}

OptionText parse_option(std::string_view rest) {
    constexpr std::size_t NONE = std::string_view::npos;
    const std::size_t name = rest.find("name");
    const std::size_t value = rest.find("value");
    if (name == NONE || value < name) return {};
    // A blank or any other character parts "name" from a name that has a value.
    const std::size_t start = std::min(name + (value == NONE ? 4 : 5), rest.size());
    const std::size_t end = std::max(std::min(value, rest.size()), start);
    OptionText text;
    text.name = without_trailing_blanks(without_leading_blanks(rest.substr(start, end - start)));
    if (value != NONE) {
        const std::string_view word = without_leading_blanks(text_from(rest, value + 5));
        text.value = word.substr(0, word.find(' '));
    }
    return text;
}

void setoption_command(Engine& engine, std::string_view rest) {
    const OptionText text = parse_option(rest);
    for (const UciOption& option : OPTIONS) {
        if (option.name == text.name) set_option(engine, option, text.value);
    }
}

}  // namespace quon
