#pragma once
// Strength limiting: a node-rate cap per search thread, tied to Elo by one exponential formula.

#include "support/integers.h"

namespace quon {

struct Searcher;
struct ThreadData;

constexpr int MIN_ELO = 1500;   // of the UCI_Elo option
constexpr double MIN_NPS = 21;  // target; the formula has no Elo for 20 and less

double elo_to_nps(double elo);
// nps above 20.
double nps_to_elo(double nps);

struct Calibration {
    double seconds;
    u64 nodes;
    double nps;
};
// Measures the machine's speed on the start position, which it leaves on the board; 0.4 s at most.
// Thread 0 must be idle.
Calibration calibrate(Searcher& s);

// Waits at a node while the thread is faster than the target, in a search that began with a limit;
// not while time is up and no move of depth 2 is there.
void throttle(const ThreadData& t);

}  // namespace quon
