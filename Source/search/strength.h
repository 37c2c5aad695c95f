#pragma once
// Strength limiting: a node-rate cap per search thread, tied to Elo by one exponential formula.

namespace quon {

struct ThreadData;

constexpr double MIN_NPS = 21;  // target; the formula has no Elo for 20 and less

double elo_to_nps(double elo);
// nps above 20.
double nps_to_elo(double nps);

// Measures the machine's speed on the start position (0.4 s at most), sets calibration_nps and
// elo_max, and prints them. Thread 0 must be idle.
void calibrate();

// The UCI_Elo option: 1500 at least; 0.99 * elo_max or more lifts the cap. Prints three replies.
void set_elo(int value);

// Waits at a node while the thread is faster than the target.
void throttle(const ThreadData& t);

}  // namespace quon
