// Rainflow counts of standards' examples.
#include <algorithm>
#include <map>

#include "validation/published_case.h"
#include "validation/whole_run.h"

namespace zentor::validation {

namespace {

// Whole numbers as history, followed by a uniaxial stress of 1 per unit of load; a bin per unit of range and
// of mean / 2.
RunResults RunHistory(const std::vector<float>& values) {
  StudyDefinition study = PointStudy({{{1.0}}});
  const auto [low, high] = std::minmax_element(values.begin(), values.end());
  study.options.load_amplitude_type = 1;
  study.options.shared_history = true;
  study.options.range_bins = static_cast<int>(*high - *low) + 1;
  study.options.mean_bins = 2 * study.options.range_bins - 1;
  study.histories = {{1, {}, values}};
  AddEvent(study, kUnitCycles, {1});
  study.events[0].history = 1;
  return RunStudy(study);
}

// The counts by range, the number of cycles, and what they add up to as damage.
std::vector<Comparison> CompareCounts(const std::vector<float>& values, const std::map<int, int>& published) {
  const RunResults results = RunHistory(values);
  const companion::RangeMeanBlock& counts = results.first_count.value();
  std::vector<Comparison> comparisons;
  double cycles = 0, half_ranges = 0, all = 0;
  for (const double count : counts.values) all += count;
  for (const auto& [range, number] : published) {
    double counted = 0;
    for (int j = 1; j <= counts.mean_bins; ++j) counted += counts.At(range + 1, j);
    comparisons.push_back(
        {"cycles of range " + std::to_string(range), static_cast<double>(number), counted, 0.0});
    cycles += number;
    half_ranges += 0.5 * number * range;
  }
  comparisons.push_back({"cycles in all", cycles, all, 0.0});
  comparisons.push_back(
      {"usage factor with N = 1e6 / S, repeated 1e6 times", half_ranges, results.Usage(1), 1e-6});
  return comparisons;
}

std::vector<Comparison> AstmRepeating() {
  return CompareCounts({-2, 1, -3, 5, -1, 3, -4, 4, -2}, {{3, 1}, {4, 1}, {7, 1}, {9, 1}});
}

std::vector<Comparison> IsoExample() {
  return CompareCounts({4, 7, 2, 10, 5, 9, 3, 4, 2, 12, 5, 11, 1, 4, 3, 10, 6, 12, 4, 8, 1, 9, 4, 6},
                       {{1, 2}, {2, 1}, {3, 1}, {4, 3}, {6, 1}, {7, 1}, {8, 1}, {11, 2}});
}

}  // namespace

std::vector<PublishedCase> CountedHistories() {
  return {
      {"Rainflow count of a short history",
       "ASTM E1049-85 (2017), Standard Practices for Cycle Counting in Fatigue Analysis, 5.4.5 (repeating "
       "histories), the "
       "history of figures 6 and 7",
       "The loads -2, 1, -3, 5, -1, 3, -4, 4, -2 as a shared history.",
       "Figure 6 reads the same history once and leaves half cycles: 0.5 of range 3, 1.5 of 4, 0.5 of 6, 1 "
       "of 8, 0.5 of 9. "
       "They are the residue. Here a history is always taken as repeated, as in figure 7: the residue is "
       "read a second time "
       "and closes to whole cycles.",
       AstmRepeating},
      {"Rainflow count with a residue of eight values",
       "ISO 12110-2:2013, Metallic materials - Fatigue testing - Variable amplitude fatigue testing - Part "
       "2, the example of "
       "the rainflow method, in load classes 1 to 12",
       "The 24 turning points 4, 7, 2, 10, 5, 9, 3, 4, 2, 12, 5, 11, 1, 4, 3, 10, 6, 12, 4, 8, 1, 9, 4, 6 as "
       "a shared history.",
       "Eight cycles close while the history is read; the residue 4, 7, 2, 12, 1, 9, 4, 6, read once more "
       "behind itself, closes "
       "to four more. Both are counted here.",
       IsoExample},
  };
}

}  // namespace zentor::validation
