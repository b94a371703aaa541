#include <algorithm>
#include <cstddef>

#include "stress/pair_steps.h"

namespace zentor {
namespace {

void FormSectionValues(const LoadingStates& states, int first, int second, double kt, std::size_t p,
                       PairArrays& pairs) {
  const LinearisedStress& v1 = states.linearised[first];
  const LinearisedStress& v2 = states.linearised[second];
  for (std::size_t c = 0; c < 4; ++c) pairs.section[c][p] = (v1[c] - v2[c]) / kt;
  pairs.temperature[p] = std::max(states.temperature[first], states.temperature[second]);
}

}  // namespace

void FormPairs(const StudyState& study, const LoadingStates& states, PairArrays& pairs) {
  const auto& loadings = study.definition.loadings;
  const bool same_event_only = study.properties.EventInteraction == 1;
  const double kt = study.properties.FatigueStrengthReductionFactor;
  pairs.count = 0;
  for (int i = 1; i <= kMaxLoadings; ++i) {
    if (loadings[i].event < 1) continue;
    for (int j = i + 1; j <= kMaxLoadings; ++j) {
      if (loadings[j].event < 1) continue;
      if (same_event_only && loadings[i].event != loadings[j].event) continue;
      const auto p = static_cast<std::size_t>(pairs.count++);
      pairs.first_loading[p] = i;
      pairs.second_loading[p] = j;
      pairs.first_event[p] = loadings[i].event;
      pairs.second_event[p] = loadings[j].event;
      if (states.section_mode) FormSectionValues(states, i, j, kt, p, pairs);
    }
  }
}

}  // namespace zentor
