// A node of a variable-amplitude study without a shared history: 5 loadings, 10,000 combined points. Prints
// points per second of the equivalent stress history (point by point through the principal values, and as
// loops over points) and of filtering and counting it, and the share of the stress history in the node's
// evaluation. Then a node under a shared history, whose evaluation must not depend on the history's length.
//
// Usage: bench_node_history [points]      (default 10000)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "fatigue/cycle_classes.h"
#include "fatigue/node_stress_history.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kLoadings = 5;
constexpr int kBins = 25;
constexpr int kRuns = 9;

template <typename Work>
double Seconds(int repetitions, Work work) {
  const auto start = Clock::now();
  for (int k = 0; k < repetitions; ++k) work();
  return std::chrono::duration<double>(Clock::now() - start).count() / repetitions;
}

std::vector<float> Walk(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<float> normal;
  std::vector<float> v(n);
  float x = 0.0F;
  for (float& out : v) out = x = 0.95F * x + normal(random);
  return v;
}

zentor::CombinedLoadTable Table(std::size_t points) {
  zentor::CombinedLoadTable table;
  table.points = points;
  for (unsigned e = 1; e <= kLoadings; ++e) table.loads.PushBack(Walk(points, e));
  return table;
}

zentor::LoadingStates States(bool plane) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> stress(-100, 100);
  zentor::LoadingStates states;
  for (int e = 1; e <= kLoadings; ++e) {
    for (double& s : states.stress[e]) s = stress(random);
    if (plane) states.stress[e][2] = states.stress[e][4] = states.stress[e][5] = 0.0;
  }
  return states;
}

zentor::FatigueProperties Properties() {
  zentor::FatigueProperties p;
  p.RangeBinCount = p.MeanBinCount = kBins;
  p.AlternatingStressType = zentor::kVonMises;
  return p;
}

void MeasureOwnHistory(const char* name, const zentor::CombinedLoadTable& table, bool plane) {
  const zentor::LoadingStates states = States(plane);
  const zentor::FatigueProperties properties = Properties();
  std::vector<float> w(table.points);
  std::vector<float> copy(table.points);
  zentor::RainflowState state;
  zentor::RangeMeanMatrix matrix;
  const int repetitions = static_cast<int>(std::max<std::size_t>(1, 300000 / table.points));
  double by_point = 1e30;
  double loops = 1e30;
  double count = 1e30;
  for (int k = 0; k < kRuns; ++k) {  // in turn, so that a busy machine disturbs all three alike
    by_point =
        std::min(by_point, Seconds(repetitions, [&] { zentor::NodeStressHistoryByPoint(table, states, w); }));
    loops = std::min(loops, Seconds(repetitions, [&] { zentor::NodeStressHistory(table, states, w); }));
    count = std::min(count, Seconds(repetitions, [&] {
                       copy = w;
                       zentor::FilterAndCount(properties, copy, state, matrix);
                     }));
  }
  const double points = static_cast<double>(table.points);
  std::printf("%-22s %9.1f %9.1f %6.2f   %9.1f %9.1f   %4.0f %%\n", name, points / by_point / 1e6,
              points / loops / 1e6, by_point / loops, points / count / 1e6, points / (loops + count) / 1e6,
              100.0 * loops / (loops + count));
}

void MeasureSharedHistory(std::size_t points) {
  std::vector<float> reversals = Walk(points, 3);
  zentor::RainflowState state;
  zentor::RangeMeanMatrix matrix;
  const zentor::FatigueProperties properties = Properties();
  zentor::FilterAndCount(properties, reversals, state, matrix);
  matrix.first_mean = 1;
  matrix.last_mean = kBins;
  zentor::CycleClasses classes;
  classes.Allocate(kBins, kBins);
  zentor::BinsToLoadClasses(matrix, classes);
  const zentor::StressTensor unit = States(false).stress[1];
  zentor::StressScales scales;
  double best = 1e30;
  for (int k = 0; k < kRuns; ++k) {
    best = std::min(
        best, Seconds(2000, [&] { zentor::EvaluateLoadClasses(properties, unit, {}, classes, scales); }));
  }
  std::printf("%9zu points: %4d classes, %7.1f ns a node, %5.2f ns a class\n", points, classes.count,
              best * 1e9, best * 1e9 / std::max(classes.count, 1));
}

}  // namespace

int main(int argc, char** argv) {
  const std::size_t points = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 10000;
  if (points < 10) {
    std::fprintf(stderr, "usage: bench_node_history [points], at least 10\n");
    return 2;
  }
  std::printf("%d loadings, %zu combined points, one thread; million points per second\n", kLoadings, points);
  std::printf("%-22s %9s %9s %6s   %9s %9s   %s\n", "stress history", "by point", "loops", "gain", "count",
              "node", "share of history");
  const zentor::CombinedLoadTable table = Table(points);
  MeasureOwnHistory("general stress states", table, false);
  MeasureOwnHistory("plane stress states", table, true);
  std::printf("shared history\n");
  for (const std::size_t length : {points, 10 * points, 100 * points}) MeasureSharedHistory(length);
  return 0;
}
