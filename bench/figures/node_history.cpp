// A node of a variable-amplitude study whose events act together: stress history, filter, count and damage
// against the point-by-point statements.
#include <cmath>
#include <cstdio>
#include <random>

#include "fatigue/node_stress_history.h"
#include "fatigue/variable_amplitude.h"
#include "figures/histories.h"
#include "figures/measurements.h"
#include "stress/study_parts.h"

namespace zentor::bench {
namespace {

constexpr int kLoadings = 5;
constexpr std::size_t kPoints = 1000;
constexpr int kBins = 25;

StudyState Study(bool exact) {
  StudyState study = test::StudyWithCurves({test::MakeCurve(0, 0, {{10, 4000}, {1e4, 600}, {1e7, 60}})});
  study.sn_curves.study_wide_set = 1;
  study.properties.AlternatingStressType = kVonMises;
  study.properties.ExactPrincipalStresses = exact;
  study.properties.RangeBinCount = study.properties.MeanBinCount = kBins;
  study.properties.FilterPercent = 2.0F;
  study.definition.events[1].repetitions = 1;
  return study;
}

std::vector<LoadingStates> Nodes(std::size_t count, bool plane) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> stress(-100, 100);
  std::vector<LoadingStates> nodes(count);
  for (LoadingStates& states : nodes) {
    for (int e = 1; e <= kLoadings; ++e) {
      for (double& s : states.stress[e]) s = stress(random);
      if (plane) states.stress[e][2] = states.stress[e][4] = states.stress[e][5] = 0.0;
    }
  }
  return nodes;
}

double UsageByPoint(const StudyState& study, const CombinedLoadTable& table, const LoadingStates& states,
                    VariableWorkspace& work) {
  NodeStressHistoryByPoint(study.properties, table, states, work.history);
  const float threshold = FilterThresholdByPoint(work.history, study.properties.FilterPercent);
  const std::size_t n = ExtractReversalsByPoint(work.history, threshold, work.history).count;
  CountHistoryByPoint(kBins, kBins, std::span<const float>(work.history).first(n), work.rainflow,
                      work.matrix);
  BinsToStressClasses(study.properties, work.matrix, StrengthOf(study, 0), work.classes);
  return SumUsage(study, 0, true, work.classes).usage;
}

// The usage factors of both forms may differ by the rounding of a stress at the edge of a bin.
bool Agree(double a, double b) { return std::fabs(a - b) <= 1e-3 * b; }

struct NodeTimes {
  Paired paired;
  double nodes_per_second = 0.0;
  bool agree = false;
};

NodeTimes TimeNodes(bool exact, bool plane, const ReportOptions& options) {
  const StudyState study = Study(exact);
  VariableAmplitude variable;
  variable.table.points = kPoints;
  for (unsigned e = 1; e <= kLoadings; ++e) variable.table.loads.PushBack(ColouredNoise(kPoints, e));
  variable.counted.counts.resize(std::size_t{kBins} * kBins);
  VariableWorkspace work = MakeVariableWorkspace(study, variable);
  const std::vector<LoadingStates> nodes = Nodes(options.quick ? 50 : 300, plane);
  const auto sum = [&nodes](auto usage) {
    double total = 0.0;
    for (const LoadingStates& states : nodes) total += usage(states);
    return total;
  };
  double by_point = 0.0;
  double fast = 0.0;
  NodeTimes times;
  times.paired = TimePaired(
      options.quick ? 9 : 15,
      [&] {
        by_point = sum([&](const LoadingStates& s) { return UsageByPoint(study, variable.table, s, work); });
      },
      [&] {
        fast = sum([&](const LoadingStates& s) {
          return EvaluateVariableNode(study, variable, s, 0, true, work).usage;
        });
      });
  times.nodes_per_second = static_cast<double>(nodes.size()) / times.paired.seconds;
  times.agree = Agree(fast, by_point);
  return times;
}

}  // namespace

namespace {

Figure MeasureHistory(bool exact, const ReportOptions& options) {
  const NodeTimes general = TimeNodes(exact, false, options);
  const NodeTimes plane = TimeNodes(exact, true, options);
  const bool agree = general.agree && plane.agree;
  Figure figure;
  figure.name = std::string("variable amplitude at a node, 5 loadings, 1000 points, principal stresses ") +
                (exact ? "exact" : "as stated");
  figure.reference = "point by point";
  figure.measured = agree ? general.paired.ratio : 0.0;
  figure.goal = 4;
  figure.stretch = 7;
  char note[160];
  std::snprintf(note, sizeof note, "%.0f thousand nodes/s (plane stress states: %.0f, %.1f x), %s",
                general.nodes_per_second / 1e3, plane.nodes_per_second / 1e3, plane.paired.ratio,
                agree ? "usage factors agree" : "USAGE FACTORS DIFFER");
  figure.note = note;
  return figure;
}

}  // namespace

std::vector<Figure> MeasureNodeHistory(const ReportOptions& options) {
  return {MeasureHistory(true, options), MeasureHistory(false, options)};
}

}  // namespace zentor::bench
