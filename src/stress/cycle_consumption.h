// Consumption of the events' cycles by one loading pair after the other, largest alternating stress first.
#pragma once

#include <cstdint>

#include "stress/pair_evaluation.h"
#include "stress/sn_lookup.h"

namespace zentor {

// A pair whose turn it is.
struct PairTurn {
  int first_event = 0, second_event = 0;
  double alternating = 0.0;  // in: corrected and times Ke; out: raised to 1e-20 when smaller
  double mean_stress = 0.0;
  double biaxiality = 0.0;
  double allowed = 0.0, partial_usage = 0.0;  // out
  std::int32_t used = 0;                      // out
};

class CycleConsumption {
 public:
  CycleConsumption(const StudyState& study, int material, bool above_answered);

  // A negative number of cycles, which only a damaged study has, counts as none.
  bool HasCycles(int event) const { return remaining_[event] > 0; }
  // One S-N curve, whatever the stress ratio.
  bool HasOneCurve() const { return choice_.curves != nullptr && choice_.curves->size() == 1; }
  // Whether stresses that differ from this one by 1e-7 of it at most, of any stress ratio, are all at or
  // below the lowest point of the one curve, so that Consume gives the same for all of them.
  bool BelowCurve(double alternating) const;
  // The pair takes what the poorer of its events has left, from both. False when a condition ends the
  // evaluation here. REQUIRES: HasCycles of both events.
  bool Consume(PairTurn& pair);
  LocationResult Result() const;

 private:
  OneBasedArray<std::int32_t, kMaxEvents> remaining_;
  SnCurveChoice choice_;
  SnLookupOptions options_;
  // Sums over the pairs that use cycles, in pair order: the order is part of the digits.
  double weighted_biaxiality_ = 0.0;
  double cycles_ = 0.0;
  bool ended_ = false;
  LocationResult result_;
};

}  // namespace zentor
