#include "stress/pair_stress.h"

#include <algorithm>
#include <cstddef>

#include "stress/equivalent_stress.h"
#include "stress/exact_stress.h"
#include "stress/lost_stress.h"
#include "stress/principal_stress.h"

namespace zentor {
namespace {

PrincipalValues Principal(bool general, const StressTensor& s) {
  return general ? PrincipalGeneral(s) : PrincipalPlane(s[0], s[1], s[2], s[3]);
}

StressTensor Difference(const StressTensor& first, const StressTensor& second) {
  StressTensor out;
  for (std::size_t c = 0; c < out.size(); ++c) out[c] = first[c] - second[c];
  return out;
}

PairStress EvaluatePairExactly(const FatigueProperties& properties, const StressTensor& first,
                               const StressTensor& second) {
  const StressTensor difference = Difference(first, second);
  StressTensor mean;
  for (std::size_t c = 0; c < mean.size(); ++c) mean[c] = (first[c] + second[c]) * 0.5;
  const ExactMeasures measures = ExactMeasuresOf(properties.AlternatingStressType, difference,
                                                 properties.FatigueStrengthReductionFactor);
  return {measures.alternating, ExactSignedStress(mean, std::max(SizeOf(first), SizeOf(second))),
          measures.biaxiality};
}

}  // namespace

PairTensors TensorsOfPair(const StressTensor& first, const StressTensor& second, double kt) {
  PairTensors out;
  for (std::size_t c = 0; c < 6; ++c) {
    out.difference[c] = (first[c] - second[c]) / kt;
    out.mean[c] = (first[c] + second[c]) * 0.5;
  }
  return out;
}

PairStress EvaluatePairStress(int alternating_type, const StressTensor& difference,
                              const StressTensor& mean) {
  // The difference alone decides the form, for both tensors: a mean tensor's out-of-plane shear is then lost,
  // as when two loadings carry the same one.
  const bool general = NeedsGeneralForm(difference);
  const PrincipalValues ranges = Principal(general, difference);
  const PrincipalValues means = Principal(general, mean);
  auto [d1, d2, d3] = ranges;
  OrderByMagnitude(d1, d2, d3);
  PairStress stress = {AlternatingStressOf(alternating_type, d1, d2, d3), SignedVonMises(means),
                       BiaxialityOf(d1, d2)};
  if (general && MayBeLost(ranges)) stress.lost_alternating = 0.5 * LostStressOf(difference, ranges);
  if (general && MayBeLost(means)) stress.lost_mean = LostStressOf(mean, means);
  return stress;
}

PairStress EvaluatePair(const FatigueProperties& properties, const StressTensor& first,
                        const StressTensor& second) {
  if (properties.ExactPrincipalStresses) return EvaluatePairExactly(properties, first, second);
  const PairTensors tensors = TensorsOfPair(first, second, properties.FatigueStrengthReductionFactor);
  return EvaluatePairStress(properties.AlternatingStressType, tensors.difference, tensors.mean);
}

double BiaxialityOfPair(const FatigueProperties& properties, const StressTensor& first,
                        const StressTensor& second) {
  if (properties.ExactPrincipalStresses) return ExactBiaxiality(Difference(first, second));
  const StressTensor difference =
      TensorsOfPair(first, second, properties.FatigueStrengthReductionFactor).difference;
  auto [d1, d2, d3] = Principal(NeedsGeneralForm(difference), difference);
  OrderByMagnitude(d1, d2, d3);
  return BiaxialityOf(d1, d2);
}

double SignedStressOf(const FatigueProperties& properties, const StressTensor& s) {
  if (properties.ExactPrincipalStresses) return ExactSignedStress(s, SizeOf(s));
  return SignedVonMises(Principal(NeedsGeneralForm(s), s));
}

}  // namespace zentor
