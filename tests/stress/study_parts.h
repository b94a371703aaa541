// Pieces of a study state for the tests of the evaluation.
#pragma once

#include <cmath>
#include <initializer_list>
#include <utility>

#include "study/study_state.h"

namespace zentor::test {

// A curve from its (N, S) points.
inline SnCurve MakeCurve(int interpolation, float ratio,
                         std::initializer_list<std::pair<double, double>> points) {
  SnCurve curve;
  curve.number = 1;
  curve.interpolation = interpolation;
  curve.ratio = ratio;
  for (const auto& [n, s] : points) {
    curve.x.push_back(interpolation == 2 ? n : std::log10(n));
    curve.y.push_back(interpolation == 0 ? std::log10(s) : s);
  }
  curve.first_cycles = points.begin()->first;
  curve.first_stress = points.begin()->second;
  curve.last_cycles = (points.end() - 1)->first;
  curve.last_stress = (points.end() - 1)->second;
  return curve;
}

// A study whose only material set holds these curves.
inline StudyState StudyWithCurves(const std::vector<SnCurve>& curves) {
  StudyState study;
  study.definition.event_count = 1;
  study.sn_curves.sets.PushBack(curves);
  study.sn_curves.point_count = 3;
  return study;
}

inline void SetEvent(StudyState& study, int event, int cycles) {
  study.definition.events[event].defined = true;
  study.definition.events[event].number = event;
  study.definition.events[event].cycles = cycles;
}

inline void SetLoading(StudyState& study, int loading, int event) {
  study.definition.loadings[loading].load_case = loading;
  study.definition.loadings[loading].event = event;
}

}  // namespace zentor::test
