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
constexpr int kRuns = 5;

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
double BestSeconds(Work work) {
  double best = 1e30;
  for (int k = 0; k < kRuns; ++k) {
    const auto start = Clock::now();
    work();
    best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
  }
  return best;
}

float PlainPass(const Values& v) {
  float sum = 0.0F;
  for (std::size_t i = 1; i < v.size(); ++i) sum += std::fabs(v[i] - v[i - 1]);
  return sum;
}

void Measure(const char* name, const Values& history, float filter_percent) {
  volatile float sink = 0.0F;
  const double plain = BestSeconds([&] { sink = PlainPass(history); });
  zentor::RainflowState state;
  zentor::RangeMeanMatrix matrix;
  Values reversals(history.size());
  std::size_t count = 0;
  const double counted = BestSeconds([&] {
    const float threshold = zentor::FilterThreshold(history, filter_percent);
    count = zentor::ExtractReversals(history, threshold, reversals).count;
    zentor::CountHistory(kBins, kBins, std::span(reversals).first(count), state, matrix);
  });
  const double points = static_cast<double>(history.size());
  const double floats = static_cast<double>(reversals.size() + state.stack.size()) / points;
  std::printf(
      "%-14s filter %4.1f %%  %9.2f Mpoint/s  plain pass %8.2f Mpoint/s  ratio %5.1f  %10lld cycles  %.2f "
      "floats/point\n",
      name, static_cast<double>(filter_percent), points / counted / 1e6, points / plain / 1e6,
      counted / plain, static_cast<long long>(matrix.TotalCycles()), floats);
}

}  // namespace

int main(int argc, char** argv) {
  const std::size_t points = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 10'000'000;
  if (points < 3) {
    std::fprintf(stderr, "usage: bench_rainflow [points], at least 3\n");
    return 2;
  }
  std::printf("%zu points, %d x %d bins, best of %d, one thread\n", points, kBins, kBins, kRuns);
  for (const float filter : {0.0F, 2.0F}) {
    Measure("white noise", WhiteNoise(points), filter);
    Measure("random walk", RandomWalk(points), filter);
    Measure("smooth signal", SmoothSignal(points), filter);
  }
  return 0;
}
