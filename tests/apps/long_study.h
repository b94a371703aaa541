// A study whose run takes long enough to be watched, held and aborted.
#pragma once

#include <cmath>
#include <string>
#include <utility>

#include "authoring/study_writer.h"
#include "platform/files.h"

namespace zentor::test {

// Counted anew at every node: half a millisecond each, and not much more in a build for debugging.
#ifdef NDEBUG
inline constexpr int kHistoryPoints = 30000;
#else
inline constexpr int kHistoryPoints = 4000;
#endif

struct LongStudyOptions {
  int nodes = 40000;
  int history_points = kHistoryPoints;
  // From this node on the stress lies above the S-N curve, so that the run asks whether to go on.
  int above_curve_from = 1000000;
};

// All nodes of plane elements that share no node, one stored stress case under one load history.
inline void WriteLongStudy(const std::string& base, const LongStudyOptions& options = {}) {
  StudyDefinition study;
  study.title = "long run";
  study.options.load_amplitude_type = 1;
  study.options.alternating_stress_type = 1;
  StressField field;
  for (int n = 1; n <= options.nodes; ++n) {
    study.model.nodes.push_back({n, {static_cast<float>(n), 0.0F, 0.0F}, 0});
    study.model.element_nodes.push_back(n);
    const float stress = n < options.above_curve_from ? 90.0F : 900.0F;  // the curve begins at 400
    field.values.insert(field.values.end(), {stress, 20.0F, 0.0F, 5.0F, 0.0F, 0.0F});
  }
  for (int e = 0; e < options.nodes / 4; ++e) {
    study.model.elements.push_back({e + 1, 42, 1, 1, 4, static_cast<std::uint32_t>(4 * e)});
  }
  study.model.groups = {{1, 42}};
  study.stress_cases.push_back({"a", 1, {std::move(field)}, {}});
  AuthoredHistory history{1, {}, {}};
  for (int i = 0; i < options.history_points; ++i) {
    history.times.push_back(static_cast<float>(i));
    history.values.push_back(static_cast<float>(std::sin(2.1 * i) * std::cos(0.013 * i)));
  }
  study.histories.push_back(std::move(history));
  AuthoredEvent event{1, 1, {{1, 1, 1, 1.0F}}};
  event.history = 1;
  study.events.push_back(std::move(event));
  study.sn_curves.push_back({1, -1.0F, 0, {{1e3F, 400.0F}, {1e7F, 10.0F}}});
  WriteStudy(study, base, platform::NativeFileSystem());
}

}  // namespace zentor::test
