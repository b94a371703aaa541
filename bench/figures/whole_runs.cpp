// Whole all-nodes runs: two threads against one, the run against its parts, its memory, and how its time
// grows.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "figures/child_run.h"
#include "figures/measurements.h"
#include "figures/run_parts.h"
#include "figures/solid_study.h"
#include "support/temp_folder.h"

namespace zentor::bench {
namespace {

constexpr int kThreads = 2;
constexpr int kLoadings = 10;
constexpr double kMebibyte = 1048576.0;

class Study {
 public:
  Study(int nodes, int loadings) : nodes_(nodes), loadings_(loadings) {
    Announce("all-nodes run, " + std::to_string(nodes) + " nodes, " + std::to_string(loadings) + " loadings");
    WriteSolidStudy(Base(), nodes, loadings);
    Run(kThreads);  // fills the disk cache
  }
  std::string Base() const { return folder_.Path("solids"); }
  ChildRun Run(int threads) const { return RunInChild(Base(), threads); }
  int nodes() const { return nodes_; }
  int loadings() const { return loadings_; }
  double Pairs() const { return loadings_ * (loadings_ - 1) / 2.0; }

 private:
  int nodes_, loadings_;
  test::TempFolder folder_;
};

std::string Sized(const char* what, const Study& study) {
  return Formatted("%s, %g nodes, %d loadings", what, static_cast<double>(study.nodes()), study.loadings());
}

// The best run with either number of threads.
struct BestRuns {
  ChildRun one{.seconds = 1e30, .processor_seconds = 1e30}, two = one;
};

Figure TwoThreads(const Study& study, int rounds, BestRuns& best) {
  const auto keep = [](ChildRun& kept, const ChildRun& run) {
    const double processor = std::min(kept.processor_seconds, run.processor_seconds);
    if (run.seconds < kept.seconds) kept = run;
    kept.processor_seconds = processor;
  };
  const Paired paired = TimePaired(
      rounds, [&] { keep(best.one, study.Run(1)); }, [&] { keep(best.two, study.Run(kThreads)); });
  return {.name = Sized("all-nodes run on two threads", study),
          .reference = "the same run on one thread",
          .measured = paired.ratio,
          .goal = 1.6,
          .stretch = 1.8,
          .note = Formatted("%.0f nodes/s, one thread %.0f; processor time %.2f s, one thread %.2f s",
                            study.nodes() / paired.seconds, study.nodes() / paired.reference_seconds,
                            best.two.processor_seconds, best.one.processor_seconds)};
}

Figure AgainstParts(const Study& study, int rounds, const ChildRun& best) {
  const PartSeconds parts = MeasureParts(study.Base(), kThreads, rounds);
  return {.name = Sized("whole all-nodes run, two threads", study),
          .reference = "sum of its parts at their best: reading, evaluating, formatting, writing",
          .measured = best.seconds / parts.Sum(),
          .sense = Sense::kAtMost,
          .goal = 2,
          .stretch = 1.3,
          .note = Formatted("%.2f s (%.2f s to the first node); sum of %.2f + %.2f + %.2f + %.2f s",
                            best.seconds, best.store_seconds, parts.reading, parts.evaluating,
                            parts.formatting, parts.writing)};
}

// The bars are sizes: how far each lies above the store is part of the note.
Figure PeakMemory(const Study& study, const ChildRun& run) {
  const double store = 24.0 * study.nodes() * study.loadings() / kMebibyte;
  return {.name = Sized("peak memory of that run", study),
          .reference = Formatted("store of %.1f MiB", store),
          .measured = static_cast<double>(run.peak_bytes) / kMebibyte,
          .sense = Sense::kAtMost,
          .goal = store * 1.15 + 64,
          .stretch = store * 1.05 + 32,
          .unit = "MiB",
          .note = "goal: store + 15 % + 64 MiB, stretch: store + 5 % + 32 MiB"};
}

// The processor time of a run, and the size it is to be proportional to.
struct Point {
  double size, seconds;
};

double LastSlope(const std::vector<Point>& points) {
  const Point& last = points[points.size() - 1];
  const Point& before = points[points.size() - 2];
  return std::log(last.seconds / before.seconds) / std::log(last.size / before.size);
}

std::string Listed(const std::vector<Point>& points) {
  std::string list;
  for (const Point& point : points) list += Formatted(", %.3g in %.3g s", point.size, point.seconds);
  return list;
}

// Best of some runs on one thread.
template <typename Seconds>
double Best(const Study& study, int rounds, Seconds seconds) {
  double best = 1e30;
  for (int round = 0; round < rounds; ++round) best = std::min(best, seconds(study.Run(1)));
  return best;
}

Figure GrowthWithNodes(int most, double seconds_of_most) {
  std::vector<Point> points;
  for (const int nodes : {most / 100, most / 10}) {
    const Study study(nodes, kLoadings);
    points.push_back(
        {static_cast<double>(nodes), Best(study, 7, [](const ChildRun& r) { return r.processor_seconds; })});
  }
  points.push_back({static_cast<double>(most), seconds_of_most});
  const double slope = LastSlope(points);
  return {.name = Formatted("growth of the run with its nodes, %d loadings, one thread", kLoadings),
          .reference = "|slope of the last decade - 1|, processor time",
          .measured = std::fabs(slope - 1.0),
          .sense = Sense::kAtMost,
          .goal = 0.1,
          .stretch = 0.05,
          .unit = "",
          .note = Formatted("slope %.3f%s", slope, Listed(points).c_str())};
}

// The work at a node grows with the pairs of its loadings, that is with their square; linear is a run that
// takes the same time for a pair, whatever their number. Less than that is no fault.
Figure GrowthWithPairs(int nodes) {
  std::vector<Point> points;
  for (const int loadings : {2, 10, 40}) {
    const Study study(nodes, loadings);
    points.push_back(
        {study.Pairs(), Best(study, 3, [](const ChildRun& r) { return r.node_processor_seconds; })});
  }
  return {.name = Formatted("growth of the work at the nodes with the loading pairs, %d nodes", nodes),
          .reference = "slope from 10 to 40 loadings, processor time; 1: the same time for every pair",
          .measured = LastSlope(points),
          .sense = Sense::kAtMost,
          .goal = 1.1,
          .stretch = 1.05,
          .unit = "",
          .note = "pairs" + Listed(points)};
}

}  // namespace

std::vector<Figure> MeasureWholeRuns(const ReportOptions& options) {
  const int nodes = options.quick ? 100'000 : 1'000'000;
  const int rounds = 5;
  std::vector<Figure> figures;
  BestRuns best;
  {
    const Study study(nodes, kLoadings);
    figures.push_back(TwoThreads(study, rounds, best));
    figures.push_back(AgainstParts(study, rounds, best.two));
    figures.push_back(PeakMemory(study, best.two));
  }
  figures.push_back(GrowthWithNodes(nodes, best.one.processor_seconds));
  figures.push_back(GrowthWithPairs(options.quick ? 10'000 : 100'000));
  return figures;
}

}  // namespace zentor::bench
