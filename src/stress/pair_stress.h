// The stresses of one pair of loadings: the scalar statement, whose bits decide.
#pragma once

#include "study/fatigue_properties.h"
#include "study/stress_tensor.h"

namespace zentor {

struct PairStress {
  double alternating = 0.0;  // half range, before any mean stress correction
  double mean = 0.0;         // signed von Mises stress of the mean tensor
  double biaxiality = 0.0;
  // What the formulas for repeated principal values lost (stress/lost_stress.h): the alternating stress, and
  // the von Mises stress of the mean tensor. 0 as a rule, and always with exact principal stresses.
  double lost_alternating = 0.0, lost_mean = 0.0;
};

// As the study asks: by the formulas as stated or by exact principal values.
PairStress EvaluatePair(const FatigueProperties& properties, const StressTensor& first,
                        const StressTensor& second);
// Its biaxiality alone.
double BiaxialityOfPair(const FatigueProperties& properties, const StressTensor& first,
                        const StressTensor& second);

// What a pair of loadings is evaluated from as stated: (S_first - S_second) / Kt and (S_first + S_second) *
// 0.5.
struct PairTensors {
  StressTensor difference;
  StressTensor mean;
};
PairTensors TensorsOfPair(const StressTensor& first, const StressTensor& second, double kt);

// As stated: a difference that was divided by Kt, and a mean tensor.
PairStress EvaluatePairStress(int alternating_type, const StressTensor& difference, const StressTensor& mean);

// The signed von Mises stress of a tensor on its own.
double SignedStressOf(const FatigueProperties& properties, const StressTensor& s);

}  // namespace zentor
