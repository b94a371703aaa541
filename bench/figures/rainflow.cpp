// Filter and rainflow of a long history into a 25 x 25 matrix against the point-by-point statements, and how
// its time grows with the history.
#include "fatigue/rainflow.h"

#include <cmath>
#include <cstdio>

#include "fatigue/reversals.h"
#include "figures/histories.h"
#include "figures/measurements.h"

namespace zentor::bench {
namespace {

constexpr int kBins = 25;
constexpr float kFilterPercent = 2.0F;

struct Count {
  RainflowState state;
  RangeMeanMatrix matrix;
};

void CountByPoint(std::span<const float> history, float filter_percent, std::span<float> reversals,
                  Count& count) {
  const float threshold = FilterThresholdByPoint(history, filter_percent);
  const std::size_t n = ExtractReversalsByPoint(history, threshold, reversals).count;
  CountHistoryByPoint(kBins, kBins, reversals.first(n), count.state, count.matrix);
}

void CountFast(std::span<const float> history, float filter_percent, Count& count) {
  FilterAndCount(kBins, kBins, filter_percent, history, count.state, count.matrix);
}

struct Signal {
  const char* name;
  std::vector<float> (*make)(std::size_t points);
  double goal, stretch;
};
constexpr Signal kSignals[] = {
    {"white noise", WhiteNoise, 2, 3}, {"random walk", RandomWalk, 3, 4.5}, {"smooth", SmoothSignal, 3, 5}};

template <typename... Values>
std::string Text(const char* format, Values... values) {
  char text[200];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

Figure CountOf(const Signal& signal, const std::vector<float>& history, float filter_percent, int rounds) {
  Count statement;
  Count fast;
  std::vector<float> reversals(history.size());
  const Paired paired = TimePaired(
      rounds, [&] { CountByPoint(history, filter_percent, reversals, statement); },
      [&] { CountFast(history, filter_percent, fast); });
  const bool equal = fast.matrix.counts == statement.matrix.counts;
  Figure figure;
  figure.name = Text("filter %g %% + rainflow of %g points, %s", static_cast<double>(filter_percent),
                     static_cast<double>(history.size()), signal.name);
  figure.reference = "point by point";
  figure.measured = equal ? paired.ratio : 0.0;
  figure.goal = signal.goal;
  figure.stretch = signal.stretch;
  figure.note = Text(
      "%.0f million points/s, %lld cycles, %s", static_cast<double>(history.size()) / paired.seconds / 1e6,
      static_cast<long long>(fast.matrix.TotalCycles()), equal ? "every count equal" : "COUNTS DIFFER");
  return figure;
}

// The slope of time over length (both logarithmic) in the last of three decades. Its two lengths are timed in
// turn, the shorter one ten times over.
Figure GrowthOf(std::size_t points, int rounds) {
  const std::vector<float> history = WhiteNoise(points);
  Count state;
  const auto count = [&](std::size_t length, std::size_t times) {
    for (std::size_t k = 0; k < times; ++k)
      CountFast(std::span(history).first(length), kFilterPercent, state);
  };
  Figure figure;
  for (std::size_t share = 1000; share > 1; share /= 10) {
    const std::size_t length = points / share;
    const Paired paired = TimePaired(
        rounds, [&] { count(length * 10, share / 10); }, [&] { count(length, share); });
    figure.measured = std::fabs(std::log10(paired.ratio));
    const double runs = static_cast<double>(share);
    if (share == 1000) figure.note = Text("%.3g ms", 1e3 * paired.seconds / runs);
    figure.note += Text(", %.3g ms", 1e3 * paired.reference_seconds / runs * 10.0);
  }
  figure.name = Text("growth of filter 2 %% + rainflow, %g to %g points", static_cast<double>(points / 1000),
                     static_cast<double>(points));
  figure.reference = "|slope of the last decade - 1|";
  figure.sense = Sense::kAtMost;
  figure.goal = figure.stretch = 0.10;
  figure.unit = "";
  return figure;
}

}  // namespace

std::vector<Figure> MeasureRainflow(const ReportOptions& options) {
  const std::size_t points = options.quick ? 1'000'000 : 10'000'000;
  const int rounds = options.quick ? 25 : 15;
  std::vector<Figure> figures;
  for (const Signal& signal : kSignals) {
    const std::vector<float> history = signal.make(points);
    for (const float filter_percent : {0.0F, kFilterPercent}) {
      figures.push_back(CountOf(signal, history, filter_percent, rounds));
    }
  }
  figures.push_back(GrowthOf(points, rounds));
  return figures;
}

}  // namespace zentor::bench
