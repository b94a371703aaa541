// Filtering and counting of a long history into a 25 x 25 matrix, beside one plain pass over the same array
// (sum of absolute differences) in the same run. Prints points per second, the ratio to the plain pass and
// the memory that the count takes per point beyond the history itself.
//
// Usage: bench_rainflow [points]      (default 10000000)
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <random>
#include <vector>

#include "fatigue/node_stress_history.h"
#include "fatigue/rainflow.h"
#include "fatigue/reversals.h"

namespace {

using Clock = std::chrono::steady_clock;
using Values = std::vector<float>;
constexpr int kBins = 25;
constexpr int kRuns = 9;

Values WhiteNoise(std::size_t n) {
  std::mt19937_64 random(1);
  std::normal_distribution<float> normal;
  Values v(n);
  for (float& x : v) x = normal(random);
  return v;
}

Values RandomWalk(std::size_t n) {
  std::mt19937_64 random(2);
  std::normal_distribution<float> normal;
  Values v(n);
  double sum = 0.0;
  for (float& x : v) x = static_cast<float>(sum += normal(random));
  return v;
}

// A narrow-band signal with about 40 samples between turns.
Values SmoothSignal(std::size_t n) {
  Values v(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double t = static_cast<double>(i) * 2.0 * std::numbers::pi / 80.0;
    v[i] = static_cast<float>(std::sin(t) * (1.0 + 0.5 * std::sin(t * 0.0137)) +
                              0.4 * std::sin(t * 0.0313 + 1.0));
  }
  return v;
}

template <typename Work>
void KeepBest(double& best, Work work) {
  const auto start = Clock::now();
  work();
  best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
}

float PlainPass(const Values& v) {
  float sum = 0.0F;
  for (std::size_t i = 1; i < v.size(); ++i) sum += std::fabs(v[i] - v[i - 1]);
  return sum;
}

struct Goal {
  double goal, stretch;
};

bool Measure(const char* name, const Values& history, float filter_percent, const Goal& goal) {
  volatile float sink = 0.0F;
  zentor::RainflowState state;
  zentor::RangeMeanMatrix matrix;
  zentor::RangeMeanMatrix reference;
  Values reversals(history.size());
  const auto count = [&](auto reduce, auto count_reversals, zentor::RangeMeanMatrix& out) {
    const float threshold = zentor::FilterThreshold(history, filter_percent);
    const std::size_t n = reduce(history, threshold, reversals).count;
    count_reversals(kBins, kBins, std::span<const float>(reversals).first(n), state, out);
  };
  double plain = 1e30;
  double statement = 1e30;
  double fast = 1e30;
  for (int k = 0; k < kRuns; ++k) {  // in turn, so that a busy machine disturbs all three alike
    KeepBest(plain, [&] { sink = PlainPass(history); });
    KeepBest(statement,
             [&] { count(zentor::ExtractReversalsByPoint, zentor::CountHistoryByPoint, reference); });
    KeepBest(fast, [&] { count(zentor::ExtractReversals, zentor::CountHistory, matrix); });
  }
  const bool equal = matrix.counts == reference.counts;
  const double points = static_cast<double>(history.size());
  // Beyond the history: the reversals and the stack.
  const double floats = static_cast<double>(reversals.size() + state.stack.size()) / points;
  std::printf("%-14s %4.1f %%  %9.1f %9.1f %9.1f  %6.2f %6.2f  %4.1f / %3.1f  %10lld  %5.2f  %s\n", name,
              static_cast<double>(filter_percent), points / plain / 1e6, points / statement / 1e6,
              points / fast / 1e6, fast / plain, statement / fast, goal.goal, goal.stretch,
              static_cast<long long>(matrix.TotalCycles()), floats, equal ? "equal" : "DIFFERENT");
  return equal;
}

}  // namespace

int main(int argc, char** argv) {
  const std::size_t points = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 10'000'000;
  if (points < 3) {
    std::fprintf(stderr, "usage: bench_rainflow [points], at least 3\n");
    return 2;
  }
  std::printf("%zu points, %d x %d bins, best of %d, one thread\n", points, kBins, kBins, kRuns);
  std::printf("%-21s  %9s %9s %9s  %6s %6s  %9s  %10s  %5s  %s\n", "history, filter", "plain", "statement",
              "fast", "/plain", "gain", "goal", "cycles", "f/pt", "counts");
  const Values noise = WhiteNoise(points);
  const Values walk = RandomWalk(points);
  const Values smooth = SmoothSignal(points);
  bool equal = true;
  for (const float filter : {0.0F, 2.0F}) {
    equal &= Measure("white noise", noise, filter, {2.0, 3.0});
    equal &= Measure("random walk", walk, filter, {3.0, 4.5});
    equal &= Measure("smooth signal", smooth, filter, {3.0, 5.0});
  }
  return equal ? 0 : 1;
}
