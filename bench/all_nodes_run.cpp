// A whole all-nodes run of a constant-amplitude study: nodes per second and where the time goes.
//   bench_all_nodes_run [NODES] [LOADINGS]      defaults: 100000 10
// Builds a study of four-node elements in a folder of its own, runs it with the solver's driver, then
// measures in the same process the parts of the run alone: building the stress store, evaluating the nodes,
// formatting the listing lines, writing the result records. Prints the peak memory beside the size of the
// store. OMP_NUM_THREADS applies.
#include <sys/resource.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "authoring/study_writer.h"
#include "fatigue/fatigue_driver.h"
#include "fatigue/input_steps.h"
#include "fatigue/loading_states.h"
#include "fatigue/node_evaluator.h"
#include "fatigue/node_result_file.h"
#include "stress/pair_listing.h"
#include "study/read_study.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// A strip of quadrilaterals whose stresses vary from node to node, so that every node sorts its own pairs.
StudyDefinition MakeStudy(int nodes, int loadings) {
  StudyDefinition study;
  study.title = "all-nodes bench";
  study.options.alternating_stress_type = 1;
  study.options.mean_stress_correction = 2;
  study.materials.push_back({1, 206000.0F, 355.0F, 470.0F});
  const int columns = nodes / 2;
  for (int n = 1; n <= 2 * columns; ++n) {
    study.model.nodes.push_back({n, {static_cast<float>(n / 2), static_cast<float>(n % 2), 0.0F}, 0});
  }
  for (int e = 1; e < columns; ++e) {
    const int first = 2 * e - 1;
    study.model.elements.push_back(
        {e, 42, 1, 1, 4, static_cast<std::uint32_t>(study.model.element_nodes.size())});
    for (const int n : {first, first + 2, first + 3, first + 1}) study.model.element_nodes.push_back(n);
  }
  study.model.groups = {{1, 42}};
  for (int k = 1; k <= loadings; ++k) {
    StressField field;
    std::mt19937 random(static_cast<unsigned>(k));
    std::uniform_real_distribution<float> stress(-60.0F, 60.0F);
    for (std::size_t i = 0; i < study.model.element_nodes.size(); ++i) {
      for (int c = 0; c < 6; ++c) field.values.push_back(c == 2 || c > 3 ? 0.0F : stress(random));
    }
    study.stress_cases.push_back({"case " + std::to_string(k), k, {std::move(field)}, {}});
  }
  constexpr int kEvents = 5;
  for (int j = 1; j <= kEvents; ++j) {
    AuthoredEvent event{j, 10000 * j, {}};
    for (int k = j; k <= loadings; k += kEvents) event.loadings.push_back({k, k, 1, 1.0F});
    study.events.push_back(std::move(event));
  }
  study.sn_curves.push_back(
      {1, -1.0F, 0, {{1e2F, 2000.0F}, {1e4F, 467.8F}, {1e5F, 217.2F}, {2e6F, 80.0F}, {1e8F, 32.4F}}});
  return study;
}

double PeakMebibytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// The parts of the run one after the other, on one thread, as shares of their sum.
void MeasureParts(const std::string& base) {
  test::RecordingServices services(base);
  FatigueRun run(platform::NativeFileSystem(), services);
  InputSteps steps(run);
  run.study.start = {2000, 1, 1, 0, 0, 0};
  auto start = Clock::now();
  ReadStudy(run.context, run.study, steps);
  const double input = SecondsSince(start);

  std::vector<StoreLoading> loadings;
  for (const Loading& loading : run.study.definition.loadings) {
    loadings.push_back({loading.load_case, loading.time_step});
  }
  start = Clock::now();
  run.store = BuildNodalStressStore(run.context, run.study, loadings);
  const double store = SecondsSince(start);

  const auto evaluator = MakeConstantAmplitudeEvaluator(run, 1);
  const int nodes = run.study.sizes.highest_node;
  std::vector<LocationResult> results(static_cast<std::size_t>(nodes));
  start = Clock::now();
  for (int n = 1; n <= nodes; ++n) results[static_cast<std::size_t>(n - 1)] = evaluator->Evaluate(n, true, 0);
  const double evaluation = SecondsSince(start);

  std::string lines;
  start = Clock::now();
  for (int n = 1; n <= nodes; ++n)
    AppendAllNodesLine(lines, n, results[static_cast<std::size_t>(n - 1)].usage);
  run.context.listing.Append(lines);
  run.context.listing.Flush();
  const double listing = SecondsSince(start);

  start = Clock::now();
  NodeResultFile file(run.context);
  for (int n = 1; n <= nodes; ++n)
    file.Add({n, 0.0, results[static_cast<std::size_t>(n - 1)].usage, 0.0, 0.0});
  file.Finish(run.study);
  const double records = SecondsSince(start);

  const double sum = input + store + evaluation + listing + records;
  std::printf(
      "parts, one thread: input %.0f %%, store %.0f %%, evaluation %.0f %%, listing %.0f %%, .FTR %.0f %%\n",
      100 * input / sum, 100 * store / sum, 100 * evaluation / sum, 100 * listing / sum, 100 * records / sum);
  std::printf("evaluation alone, one thread: %.0f nodes/s\n", nodes / evaluation);
}

int Main(int nodes, int loadings) {
  test::TempFolder folder;
  const std::string base = folder.Path("bench");
  WriteStudy(MakeStudy(nodes, loadings), base, platform::NativeFileSystem());
  const double before = PeakMebibytes();

  test::RecordingServices services(base);
  services.largest_block = std::uint64_t{1} << 34U;
  const auto start = Clock::now();
  FatigueDriver(platform::NativeFileSystem(), services);
  const double whole = SecondsSince(start);
  std::printf("%d nodes, %d loadings: whole run %.2f s, %.0f nodes/s\n", nodes, loadings, whole,
              nodes / whole);
  std::printf(
      "store %.0f MiB; peak memory of building the study %.0f MiB, of building and running %.0f MiB\n",
      24.0 * nodes * loadings / 1048576.0, before, PeakMebibytes());
  MeasureParts(base);
  return 0;
}

}  // namespace
}  // namespace zentor

int main(int argc, char** argv) {
  const int nodes = argc > 1 ? std::atoi(argv[1]) : 100000;
  const int loadings = argc > 2 ? std::atoi(argv[2]) : 10;
  if (nodes < 4 || loadings < 2 || loadings > zentor::kMaxLoadings) {
    std::fprintf(stderr, "usage: bench_all_nodes_run [NODES] [LOADINGS]\n");
    return 2;
  }
  return zentor::Main(nodes, loadings);
}
