// The options of UCI: one table, from which the announcement is printed and settings are handled.

#include "frontend/uci_options.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

#include "eval/eval_params.h"
#include "frontend/engine_options.h"
#include "frontend/output.h"
#include "frontend/search_session.h"
#include "frontend/words.h"
#include "search/hash.h"
#include "search/strength.h"
#include "search/tablebases.h"
#include "search/threads.h"

namespace quon {

namespace {

constexpr int OUT_OF_MEMORY = -1;  // exit status

const char* check_text(bool on) { return on ? "true" : "false"; }
bool is_true(std::string_view value) { return value == "true"; }

int to_spin(std::string_view value, int low, int high) {
    return int(std::clamp<i64>(to_integer(value), low, high));
}

// Search threads may exist and look at globals: nothing may be torn down.
[[noreturn]] void end_without_memory(const std::string& purpose) {
    engine_print(message_prefix() + ("not enough memory for " + purpose));
    std::_Exit(OUT_OF_MEMORY);
}

void set_hash(std::string_view value) {
    finish_search();
    options.hash_mb = i16(to_spin(value, 0, MAX_HASH_MB));
    if (!hash_alloc()) {
        end_without_memory(format("a hash table of %dM bytes", options.hash_mb));
    }
    engine_print(format("info string Hash size set to %dM bytes", options.hash_mb));
}

void set_threads(std::string_view value) {
    const int count = to_spin(value, 1, MAX_THREADS);
    if (count != options.threads) {
        finish_search();
        destroy_threads();
        options.threads = u8(count);
        if (!create_threads(count)) end_without_memory("the search threads");
    }
    engine_print(format("info string Threads set to %d", options.threads));
}

void set_ponder(std::string_view value) {
    options.ponder_option = is_true(value);
    engine_print(format("info string Ponder set to %s", check_text(options.ponder_option != 0)));
}

void set_contempt(std::string_view value) {
    params.contempt = i16(to_spin(value, -150, 150));
    engine_print(format("info string Contempt set to %d", params.contempt));
}

void set_limit_strength(std::string_view value) {
    params.limit_strength = is_true(value);
    engine_print(
        format("info string UCI_LimitStrength set to %s", check_text(params.limit_strength != 0)));
}

void set_uci_elo(std::string_view value) {
    set_elo(to_spin(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

void set_multipv(std::string_view value) {
    options.multipv = i16(to_spin(value, 1, MAX_MULTIPV));
    engine_print(format("info string MultiPV set to %d", options.multipv));
}

void clear_hash(std::string_view) {
    if (options.hash_mode == 0) return;
    finish_search();
    hash_clear();
    engine_print("info string Hash table cleared");
}

void set_move_overhead(std::string_view value) {
    const int ms = to_spin(value, 0, 5000);
    limits.move_overhead = ms * 0.001;
    engine_print(format("info string MoveOverhead set to %d ms", ms));
}

void set_own_book(std::string_view value) {
    options.own_book = is_true(value);
    engine_print(format("info string OwnBook set to %s", check_text(options.own_book)));
}

void set_log(std::string_view value) {
    options.log_enabled = is_true(value);
    engine_print(format("info string Log set to %s", check_text(options.log_enabled)));
}

void set_syzygy_path(std::string_view value) {
    finish_search();
    tb_set_path(std::string(value.substr(0, MAX_SYZYGY_PATH)));
}

void set_probe_depth(Relaxed<i16>& depth, std::string_view value, const char* name) {
    depth = i16(to_spin(value, 1, 100));
    engine_print(format("info string %s set to %d", name, depth.get()));
}

std::string check(bool on) { return std::string("check default ") + check_text(on); }

std::string spin(int value, int low, int high) {
    return format("spin default %d min %d max %d", value, low, high);
}

struct UciOption {
    std::string_view name;
    std::string (*declare)();  // type, current value, range
    void (*set)(std::string_view value);
};

constexpr UciOption OPTIONS[] = {
    {"Hash", [] { return spin(options.hash_mb, 0, MAX_HASH_MB); }, set_hash},
    {"Threads", [] { return spin(options.threads, 1, MAX_THREADS); }, set_threads},
    {"Ponder", [] { return check(options.ponder_option != 0); }, set_ponder},
    {"Contempt", [] { return spin(params.contempt, -150, 150); }, set_contempt},
    {"UCI_LimitStrength", [] { return check(params.limit_strength != 0); }, set_limit_strength},
    {"UCI_Elo",
     [] { return format("spin default %.0f min 1500 max %.0f", options.elo_max, options.elo_max); },
     set_uci_elo},
    {"MultiPV", [] { return spin(options.multipv, 1, MAX_MULTIPV); }, set_multipv},
    {"Clear Hash", [] { return std::string("button"); }, clear_hash},
    {"MoveOverhead",
     [] { return format("spin default %.0f min 0 max 5000", limits.move_overhead * 1000); },
     set_move_overhead},
    {"OwnBook", [] { return check(options.own_book); }, set_own_book},
    {"Log", [] { return check(options.log_enabled); }, set_log},
    {"SyzygyPath", [] { return "string default " + options.syzygy_path; }, set_syzygy_path},
    {"SyzygyProbeDepth5", [] { return spin(options.syzygy_probe_depth5, 1, 100); },
     [](std::string_view value) {
         set_probe_depth(options.syzygy_probe_depth5, value, "SyzygyProbeDepth5");
     }},
    {"SyzygyProbeDepth6", [] { return spin(options.syzygy_probe_depth6, 1, 100); },
     [](std::string_view value) {
         set_probe_depth(options.syzygy_probe_depth6, value, "SyzygyProbeDepth6");
     }},
};

}  // namespace

void print_uci_options() {
    for (const UciOption& option : OPTIONS) {
        engine_print("option name " + std::string(option.name) + " type " + option.declare());
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

void setoption_command(std::string_view rest) {
    const OptionText text = parse_option(rest);
    for (const UciOption& option : OPTIONS) {
        if (option.name == text.name) option.set(text.value);
    }
}

}  // namespace quon
