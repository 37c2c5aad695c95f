#pragma once
// The kings: their safety while the enemy has pieces, their activity in the ending.

namespace quon {

struct EvalInfo;

// Scores both kings from the finished attack maps; notes a threat where a queen can give a safe
// check right beside a king.
void evaluate_kings(EvalInfo& info);

}  // namespace quon
