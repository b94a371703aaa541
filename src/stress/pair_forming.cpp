#include <algorithm>
#include <cstddef>

#include "stress/pair_steps.h"

namespace zentor {
namespace {

// The loadings that belong to an event, in list order, one array per component.
struct ActiveLoadings {
  int count = 0;
  std::array<std::array<double, kMaxLoadings>, 6> stress;
  std::array<std::array<double, kMaxLoadings>, 4> linearised;
  std::array<double, kMaxLoadings> temperature;
  std::array<std::int32_t, kMaxLoadings> loading, event;
};

void GatherActive(const StudyState& study, const LoadingStates& states, ActiveLoadings& active) {
  active.count = 0;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int event = study.definition.loadings[k].event;
    if (event < 1) continue;
    const auto at = static_cast<std::size_t>(active.count++);
    active.loading[at] = k;
    active.event[at] = event;
    for (std::size_t c = 0; c < 6; ++c) active.stress[c][at] = states.stress[k][c];
    if (!states.section_mode) continue;
    for (std::size_t c = 0; c < 4; ++c) active.linearised[c][at] = states.linearised[k][c];
    active.temperature[at] = states.temperature[k];
  }
}

// Positions of each pair's two loadings among the active ones.
using Positions = std::array<std::int32_t, kMaxPairs>;

int NumberPairs(const ActiveLoadings& active, bool same_event_only, Positions& first, Positions& second) {
  std::size_t count = 0;
  for (int i = 0; i < active.count; ++i) {
    for (int j = i + 1; j < active.count; ++j) {
      if (same_event_only &&
          active.event[static_cast<std::size_t>(i)] != active.event[static_cast<std::size_t>(j)]) {
        continue;
      }
      first[count] = i;
      second[count] = j;
      ++count;
    }
  }
  return static_cast<int>(count);
}

}  // namespace

void FormPairs(const StudyState& study, const LoadingStates& states, PairArrays& pairs) {
  ActiveLoadings active;
  GatherActive(study, states, active);
  Positions first;
  Positions second;
  pairs.count = NumberPairs(active, study.properties.EventInteraction == 1, first, second);
  const auto count = static_cast<std::size_t>(pairs.count);
  const double kt = study.properties.FatigueStrengthReductionFactor;

  for (std::size_t p = 0; p < count; ++p) {
    const auto i = static_cast<std::size_t>(first[p]);
    const auto j = static_cast<std::size_t>(second[p]);
    pairs.first_loading[p] = active.loading[i];
    pairs.second_loading[p] = active.loading[j];
    pairs.first_event[p] = active.event[i];
    pairs.second_event[p] = active.event[j];
  }
  for (std::size_t c = 0; c < 6; ++c) {
    const auto& stress = active.stress[c];
    for (std::size_t p = 0; p < count; ++p) {
      const double s1 = stress[static_cast<std::size_t>(first[p])];
      const double s2 = stress[static_cast<std::size_t>(second[p])];
      pairs.difference[c][p] = (s1 - s2) / kt;
      pairs.mean[c][p] = (s1 + s2) * 0.5;
    }
  }
  if (!states.section_mode) return;
  for (std::size_t c = 0; c < 4; ++c) {
    const auto& value = active.linearised[c];
    for (std::size_t p = 0; p < count; ++p) {
      pairs.section[c][p] =
          (value[static_cast<std::size_t>(first[p])] - value[static_cast<std::size_t>(second[p])]) / kt;
    }
  }
  for (std::size_t p = 0; p < count; ++p) {
    pairs.temperature[p] = std::max(active.temperature[static_cast<std::size_t>(first[p])],
                                    active.temperature[static_cast<std::size_t>(second[p])]);
  }
}

}  // namespace zentor
