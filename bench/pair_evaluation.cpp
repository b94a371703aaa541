// Nodes per second of the constant-amplitude evaluation, one thread: forming, evaluating and sorting the
// pairs and consuming the cycles, von Mises stress, Goodman correction, one log-log S-N curve.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "stress/equivalent_stress.h"
#include "stress/pair_evaluation.h"
#include "stress/pair_steps.h"

namespace {

using namespace zentor;

StudyState MakeStudy(int loadings) {
  StudyState study;
  study.properties.AlternatingStressType = kVonMises;
  study.properties.MeanStressCorrection = kGoodman;
  study.properties.FatigueStrengthReductionFactor = 1.2F;
  study.materials.strength.Assign(1, 900.0);
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
  study.sn_curves.sets.PushBack({curve});
  study.sn_curves.point_count = static_cast<int>(points.size());
  study.definition.event_count = 5;  // each with its share of the loadings
  for (int e = 1; e <= 5; ++e) study.definition.events[e].cycles = 1000 * e;
  for (int k = 1; k <= loadings; ++k) study.definition.loadings[k].event = 1 + k % 5;
  return study;
}

std::vector<LoadingStates> MakeStates(int loadings, bool plane) {
  std::mt19937 random(45);
  std::normal_distribution<double> stress(0.0, 60.0);
  std::vector<LoadingStates> nodes(64);
  for (LoadingStates& node : nodes) {
    for (int k = 1; k <= loadings; ++k) {
      for (std::size_t c = 0; c < (plane ? 4U : 6U); ++c) node.stress[k][c] = stress(random);
    }
  }
  return nodes;
}

// Arguments: loadings, 1 for plane stress states.
void EvaluateNodes(benchmark::State& state) {
  const auto loadings = static_cast<int>(state.range(0));
  const StudyState study = MakeStudy(loadings);
  const std::vector<LoadingStates> nodes = MakeStates(loadings, state.range(1) == 1);
  const auto pairs = std::make_unique<PairArrays>();
  std::size_t node = 0;
  double usage = 0.0;
  for ([[maybe_unused]] auto _ : state) {
    const LoadingStates& states = nodes[node++ % nodes.size()];
    EvaluatePairs(study, states, 1, *pairs);
    usage += ConsumePairs(study, states, 1, true, *pairs).usage;
  }
  benchmark::DoNotOptimize(usage);
  state.counters["pairs"] = pairs->count;
  state.counters["nodes/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(EvaluateNodes)->ArgNames({"loadings", "plane"})->ArgsProduct({{10, 40}, {0, 1}});

// The steps on their own, with the pairs of one node, to show where the time goes.
void Forming(benchmark::State& state) {
  const auto loadings = static_cast<int>(state.range(0));
  const StudyState study = MakeStudy(loadings);
  const std::vector<LoadingStates> nodes = MakeStates(loadings, false);
  const auto pairs = std::make_unique<PairArrays>();
  for ([[maybe_unused]] auto _ : state) FormPairs(study, nodes[0], *pairs);
}
BENCHMARK(Forming)->ArgName("loadings")->Arg(10)->Arg(40);

void Stresses(benchmark::State& state) {
  const auto loadings = static_cast<int>(state.range(0));
  const StudyState study = MakeStudy(loadings);
  const std::vector<LoadingStates> nodes = MakeStates(loadings, state.range(1) == 1);
  const auto pairs = std::make_unique<PairArrays>();
  FormPairs(study, nodes[0], *pairs);
  for ([[maybe_unused]] auto _ : state) EvaluatePairStresses(kVonMises, false, *pairs);
}
BENCHMARK(Stresses)->ArgNames({"loadings", "plane"})->ArgsProduct({{10, 40}, {0, 1}});

// The same, one pair after the other: the reference of the loops over arrays.
void StressesPairByPair(benchmark::State& state) {
  const auto loadings = static_cast<int>(state.range(0));
  const StudyState study = MakeStudy(loadings);
  const std::vector<LoadingStates> nodes = MakeStates(loadings, state.range(1) == 1);
  const auto pairs = std::make_unique<PairArrays>();
  FormPairs(study, nodes[0], *pairs);
  for ([[maybe_unused]] auto _ : state) {
    for (std::size_t p = 0; p < static_cast<std::size_t>(pairs->count); ++p) {
      StressTensor difference;
      StressTensor mean;
      for (std::size_t c = 0; c < 6; ++c) {
        difference[c] = pairs->difference[c][p];
        mean[c] = pairs->mean[c][p];
      }
      const PairStress stress = EvaluatePairStress(kVonMises, difference, mean);
      pairs->alternating[p] = stress.alternating;
      pairs->mean_stress[p] = stress.mean;
      pairs->biaxiality[p] = stress.biaxiality;
    }
    benchmark::ClobberMemory();
  }
}
BENCHMARK(StressesPairByPair)->ArgNames({"loadings", "plane"})->ArgsProduct({{10, 40}, {0, 1}});

// Sorting needs unsorted stresses anew each time, so their copy is part of the figure.
void Sorting(benchmark::State& state) {
  const auto loadings = static_cast<int>(state.range(0));
  const StudyState study = MakeStudy(loadings);
  const std::vector<LoadingStates> nodes = MakeStates(loadings, false);
  const auto pairs = std::make_unique<PairArrays>();
  FormPairs(study, nodes[0], *pairs);
  EvaluatePairStresses(kVonMises, false, *pairs);
  const auto unsorted = pairs->alternating;
  for ([[maybe_unused]] auto _ : state) {
    pairs->alternating = unsorted;
    SortPairs(true, false, *pairs);
  }
}
BENCHMARK(Sorting)->ArgName("loadings")->Arg(10)->Arg(40);

}  // namespace

BENCHMARK_MAIN();
