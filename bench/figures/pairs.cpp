// Constant-amplitude evaluation of nodes against its scalar statement: von Mises stress, Goodman correction,
// one log-log S-N curve, five events with different numbers of cycles, random interaction.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "figures/measurements.h"
#include "stress/node_usage.h"
#include "stress/pair_evaluation.h"

namespace zentor::bench {
namespace {

SnCurve MakeLogLogCurve() {
  SnCurve curve;
  const std::vector<std::pair<double, double>> points = {
      {1e2, 1500}, {1e3, 800}, {1e4, 400}, {1e5, 220}, {1e6, 150}};
  for (const auto& [n, s] : points) {
    curve.x.push_back(std::log10(n));
    curve.y.push_back(std::log10(s));
  }
  curve.first_cycles = points.front().first;
  curve.last_cycles = points.back().first;
  curve.first_stress = points.front().second;
  curve.last_stress = points.back().second;
  return curve;
}

StudyState MakeStudy(int loadings, bool exact) {
  constexpr int kEvents = 5;
  StudyState study;
  study.properties.ExactPrincipalStresses = exact;
  study.properties.AlternatingStressType = kVonMises;
  study.properties.MeanStressCorrection = kGoodman;
  study.properties.FatigueStrengthReductionFactor = 1.2F;
  study.materials.strength.Assign(1, 900.0);
  study.sn_curves.sets.PushBack({MakeLogLogCurve()});
  study.sn_curves.point_count = 5;
  study.definition.event_count = kEvents;
  for (int e = 1; e <= kEvents; ++e) study.definition.events[e].cycles = 1000 * e;
  for (int k = 1; k <= loadings; ++k) study.definition.loadings[k].event = 1 + k % kEvents;
  return study;
}

std::vector<LoadingStates> MakeNodes(int loadings, int count) {
  std::mt19937 random(45);
  std::normal_distribution<double> stress(0.0, 60.0);
  std::vector<LoadingStates> nodes(static_cast<std::size_t>(count));
  for (LoadingStates& node : nodes) {
    for (int k = 1; k <= loadings; ++k) {
      for (double& component : node.stress[k]) component = stress(random);
    }
  }
  return nodes;
}

// Bars: one direction at a node, along which every loading pulls or pushes; stored in single precision.
std::vector<LoadingStates> MakeBars(int loadings, int count) {
  std::mt19937 random(45);
  std::normal_distribution<double> normal(0.0, 1.0);
  std::vector<LoadingStates> nodes(static_cast<std::size_t>(count));
  for (LoadingStates& node : nodes) {
    double x = normal(random), y = normal(random), z = normal(random);
    const double length = std::sqrt(x * x + y * y + z * z);
    x /= length, y /= length, z /= length;
    for (int k = 1; k <= loadings; ++k) {
      const double s = 120.0 * normal(random);
      node.stress[k] = {s * x * x, s * y * y, s * z * z, s * x * y, s * x * z, s * y * z};
      for (double& component : node.stress[k]) component = static_cast<float>(component);
    }
  }
  return nodes;
}

struct Bar {
  double goal, stretch;
};

// The nodes' stresses stay in the second-level cache, so that the figure is that of the evaluation.
constexpr int kNodes = 100;

// Nodes are evaluated so many times in a round that both sides take about as long: what else the machine does
// then falls on both alike.
struct Repeats {
  int reference, fast;
};

struct Case {
  int loadings = 0;
  bool exact = false;  // principal stresses
  bool bars = false;
};

Figure MeasureNodes(const Case& of, Repeats repeats, int rounds, Bar bar) {
  const StudyState study = MakeStudy(of.loadings, of.exact);
  const UsagePlan plan = MakeUsagePlan(study);
  const std::vector<LoadingStates> nodes =
      of.bars ? MakeBars(of.loadings, kNodes) : MakeNodes(of.loadings, kNodes);
  const auto pairs = std::make_unique<PairArrays>();
  const auto work = std::make_unique<UsageWorkspace>();
  double expected = 0.0;
  double usage = 0.0;
  const Paired paired = TimePaired(
      rounds,
      [&] {
        for (int k = 0; k < repeats.reference; ++k) {
          expected = 0.0;
          for (const LoadingStates& states : nodes) {
            EvaluatePairs(study, states, 1, *pairs);
            expected += ConsumePairs(study, states, 1, true, *pairs).usage;
          }
        }
      },
      [&] {
        for (int k = 0; k < repeats.fast; ++k) {
          usage = 0.0;
          for (const LoadingStates& states : nodes) {
            GatherStresses(plan, states, work->stress);
            usage += EvaluateUsage(study, plan, 1, true, *work).usage;
          }
        }
      });
  if (usage != expected) {
    std::fputs("pairs: the evaluation differs from its scalar statement\n", stderr);
    std::exit(1);
  }

  Figure figure;
  char text[120];
  std::snprintf(text, sizeof(text),
                "usage factor of a node%s, %d loadings = %zu pairs, principal stresses %s",
                of.bars ? " of oblique bars" : "", of.loadings, plan.pairs, of.exact ? "exact" : "as stated");
  figure.name = text;
  figure.reference = "scalar statement";
  figure.measured = paired.ratio * repeats.fast / repeats.reference;
  figure.goal = bar.goal;
  figure.stretch = bar.stretch;
  std::snprintf(text, sizeof(text), "%.0f nodes/s, scalar %.0f", kNodes * repeats.fast / paired.seconds,
                kNodes * repeats.reference / paired.reference_seconds);
  figure.note = text;
  return figure;
}

}  // namespace

std::vector<Figure> MeasurePairs(const ReportOptions& options) {
  const int rounds = options.quick ? 25 : 101;
  return {MeasureNodes({10, true}, {8, 40}, rounds, {4, 8}),
          MeasureNodes({40, true}, {1, 16}, rounds / 2, {6, 12}),
          MeasureNodes({10, true, true}, {8, 40}, rounds, {5, 8}),
          MeasureNodes({40, true, true}, {1, 16}, rounds / 2, {5, 12}),
          MeasureNodes({10, false}, {8, 40}, rounds, {4, 8}),
          MeasureNodes({40, false}, {1, 16}, rounds / 2, {6, 12}),
          MeasureNodes({10, false, true}, {8, 12}, rounds, {1, 5})};
}

}  // namespace zentor::bench
