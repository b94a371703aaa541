// Counting by the definition, without a stack: the history as one period of a periodic loading, rotated to
// its largest value and closed there; then the smallest inner range is a cycle, is taken out, and so on until
// the largest range is left. Slow on purpose; what the fast count is compared with.
#pragma once

#include <cmath>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace zentor::test {

using Cycles = std::map<std::pair<float, float>, int>;  // (range, mean) -> number

inline std::vector<float> TurningPoints(const std::vector<float>& closed) {
  std::vector<float> turns;
  for (const float v : closed) {
    if (!turns.empty() && turns.back() == v) continue;
    const std::size_t n = turns.size();
    if (n >= 2 && (turns[n - 1] - turns[n - 2] > 0) == (v - turns[n - 1] > 0)) turns.pop_back();
    turns.push_back(v);
  }
  return turns;
}

inline std::vector<float> RotatedToLargest(const std::vector<float>& history) {
  std::size_t top = 0;
  for (std::size_t i = 1; i < history.size(); ++i) top = history[i] > history[top] ? i : top;
  std::vector<float> closed(history.begin() + static_cast<std::ptrdiff_t>(top), history.end());
  closed.insert(closed.end(), history.begin(), history.begin() + static_cast<std::ptrdiff_t>(top));
  closed.push_back(history[top]);
  return closed;
}

// REQUIRES: at least two different values.
inline Cycles CyclesByDefinition(const std::vector<float>& history) {
  std::vector<float> z = TurningPoints(RotatedToLargest(history));
  Cycles cycles;
  const auto take = [&](std::size_t i) {
    ++cycles[{std::fabs(z[i + 1] - z[i]), (z[i] + z[i + 1]) / 2}];
    z.erase(z.begin() + static_cast<std::ptrdiff_t>(i), z.begin() + static_cast<std::ptrdiff_t>(i) + 2);
  };
  while (z.size() > 3) {
    std::size_t smallest = 1;
    for (std::size_t i = 2; i + 2 < z.size(); ++i) {
      if (std::fabs(z[i + 1] - z[i]) < std::fabs(z[smallest + 1] - z[smallest])) smallest = i;
    }
    take(smallest);
  }
  take(0);
  return cycles;
}

}  // namespace zentor::test
