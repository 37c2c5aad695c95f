#pragma once
// The front end's own settings. The main thread writes them; the Relaxed fields are also read by
// searching threads.

#include <string>

#include "support/integers.h"
#include "support/relaxed.h"

namespace quon {

constexpr char ENGINE_NAME[] = "Quon 3.60";
constexpr char ENGINE_AUTHOR[] = "Marovel";

constexpr double NEVER = 9999;  // output_delay that silences progress lines
constexpr std::size_t MAX_FILE_NAME = 139;
constexpr std::size_t MAX_TOOL_FILE_NAME = 140;
constexpr std::size_t MAX_SYZYGY_PATH = 129;

struct EngineOptions {
    Relaxed<bool> uci_mode = true;    // false: console mode
    Relaxed<bool> uci_extra = false;  // thread tag in info lines
    bool own_book = false;
    std::string book_file = "quon.opn";  // empty: no book
    u8 book_depth = 24;                  // plies
    i16 book_variety = 30;               // 1 or more
    std::string syzygy_path;             // at most MAX_SYZYGY_PATH characters
    Relaxed<double> output_delay = 0.0;  // seconds of search before progress lines
    double calibration_nps = 0.0;        // 0 until start-up measures it, unless it is given
    double elo_max = 0.0;                // Elo of the unthrottled engine, from the calibration
    i16 debug = 0;                       // not 0: the console shows evaluations in place of boards
    bool self_play = false;              // every move found is played, and the next search follows
    bool self_play_alone = false;  // its input was at the end when it began: nobody will end it
    std::string tune_file;         // positions of the tuners and of the test-suite runner
    std::string match_file;        // games of the self-play match
    u32 timer_resolution = 0;      // ms; 0 where the system has no such setting
};

}  // namespace quon
