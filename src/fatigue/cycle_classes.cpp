#include "fatigue/cycle_classes.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "stress/exact_stress.h"
#include "stress/pair_stress.h"
#include "stress/sn_lookup.h"

namespace zentor {
namespace {

// Every bin with cycles becomes a class, except those of range 0.
void CollectBins(const RangeMeanMatrix& matrix, int first_mean, int last_mean, CycleClasses& classes) {
  std::size_t k = 0;
  for (int i = 1; i <= matrix.range_bins; ++i) {
    const float range = matrix.range_centres[static_cast<std::size_t>(i - 1)];
    if (range == 0.0F) continue;
    for (int j = std::max(first_mean, 1); j <= last_mean; ++j) {
      const std::int32_t count = matrix.Count(i, j);
      if (count < 1) continue;
      classes.cycles[k] = static_cast<float>(count);
      classes.load_range[k] = range;
      classes.load_mean[k] = matrix.mean_centres[static_cast<std::size_t>(j - 1)];
      classes.range_bin[k] = i;
      classes.mean_bin[k] = j;
      ++k;
    }
  }
  classes.count = static_cast<int>(k);
}

LocationCondition CorrectClasses(int correction, const MaterialStrength& strength, CycleClasses& classes) {
  if (correction == kNoCorrection) return LocationCondition::kNone;
  for (std::size_t k = 0; k < static_cast<std::size_t>(classes.count); ++k) {
    const CorrectionOutcome outcome =
        CorrectMeanStress(correction, strength, classes.alternating[k], classes.mean[k]);
    if (outcome == CorrectionOutcome::kBadStrength) {
      return correction == kSoderberg ? LocationCondition::kNoYieldStrength
                                      : LocationCondition::kNoUltimateStrength;
    }
  }
  return LocationCondition::kNone;
}

StressTensor Times(const StressTensor& state, double factor, double divisor) {
  StressTensor out{};
  for (std::size_t c = 0; c < out.size(); ++c) out[c] = state[c] * factor / divisor;
  return out;
}

// The first class of a shared history at a node, as a pair of loadings with the difference and the mean of
// its loads.
PairStress EvaluateLoads(const FatigueProperties& properties, const StressTensor& unit_state, float range,
                         float mean) {
  const float kt = properties.FatigueStrengthReductionFactor;
  const StressTensor mean_state = Times(unit_state, mean, 1.0);
  if (!properties.ExactPrincipalStresses) {
    return EvaluatePairStress(properties.AlternatingStressType, Times(unit_state, range, kt), mean_state);
  }
  return {ExactAlternating(properties.AlternatingStressType, Times(unit_state, range, 1.0), kt),
          ExactSignedStress(mean_state, SizeOf(mean_state)), ExactBiaxiality(unit_state)};
}

PairStress Widest(const PairStress& first, const CycleClasses& classes) {
  const auto begin = classes.load_range.begin();
  const double factor = *std::max_element(begin, begin + classes.count) / *begin;
  PairStress widest = first;
  for (double* stress : {&widest.alternating, &widest.lost_alternating}) *stress *= factor;
  return widest;
}

// The repetitions of the first event multiply every count; 0 or less leaves the counts as they are.
int RepetitionsOf(const StudyState& study) {
  return study.definition.event_count >= 1 ? study.definition.events[1].repetitions : 0;
}

// Looks a class up unless it is as good as the one before: the classes of a range differ in their mean stress
// only, which a single curve leaves alone.
class ClassLookup {
 public:
  ClassLookup(const std::vector<SnCurve>* curves, const SnLookupOptions& options)
      : curves_(curves), options_(options) {}

  // REQUIRES: there are curves. As LookUpInCurves, without the stress factor.
  const SnLookup& At(double& alternating, double mean) {
    const double ratio = curves_->size() > 1 ? StressRatio(options_, alternating, mean) : 0.0;
    if (!known_ || alternating != given_ || ratio != ratio_) {
      known_ = true;
      given_ = taken_ = alternating;
      ratio_ = ratio;
      lookup_ = LookUpInCurves(*curves_, options_, taken_, ratio, 0.0);
    }
    alternating = taken_;
    return lookup_;
  }

 private:
  const std::vector<SnCurve>* curves_;
  SnLookupOptions options_;
  bool known_ = false;
  double given_ = 0.0, taken_ = 0.0, ratio_ = 0.0;  // of the last class; taken_: as the lookup left it
  SnLookup lookup_;
};

std::int32_t Truncated(double cycles) {
  constexpr double kMost = std::numeric_limits<std::int32_t>::max();
  return cycles >= kMost ? std::numeric_limits<std::int32_t>::max() : static_cast<std::int32_t>(cycles);
}

}  // namespace

void CycleClasses::Allocate(int range_bins, int mean_bins) {
  const std::size_t n = static_cast<std::size_t>(range_bins) * static_cast<std::size_t>(mean_bins);
  count = 0;
  for (auto* field : {&alternating, &mean, &allowed, &partial_usage}) field->assign(n, 0.0);
  for (auto* field : {&cycles, &load_range, &load_mean}) field->assign(n, 0.0F);
  for (auto* field : {&range_bin, &mean_bin, &used}) field->assign(n, 0);
}

void BinsToLoadClasses(const RangeMeanMatrix& matrix, CycleClasses& classes) {
  CollectBins(matrix, matrix.first_mean, matrix.last_mean, classes);
}

LocationCondition BinsToStressClasses(const FatigueProperties& properties, const RangeMeanMatrix& matrix,
                                      const MaterialStrength& strength, CycleClasses& classes) {
  CollectBins(matrix, 1, matrix.mean_bins, classes);
  classes.biaxiality = 0.0;
  const double kt = properties.FatigueStrengthReductionFactor;
  for (std::size_t k = 0; k < static_cast<std::size_t>(classes.count); ++k) {
    classes.alternating[k] = static_cast<double>(classes.load_range[k]) * 0.5 / kt;
    classes.mean[k] = classes.load_mean[k];
  }
  return CorrectClasses(properties.MeanStressCorrection, strength, classes);
}

LocationCondition EvaluateLoadClasses(const FatigueProperties& properties, const StressTensor& unit_state,
                                      const MaterialStrength& strength, CycleClasses& classes,
                                      StressScales& scales) {
  scales = StressScales();
  if (classes.count == 0) return LocationCondition::kNone;
  const float kt = properties.FatigueStrengthReductionFactor;
  const float g1 = classes.load_range[0];
  const float h1 = classes.load_mean[0];
  const PairStress first = EvaluateLoads(properties, unit_state, g1, h1);
  classes.biaxiality = first.biaxiality;
  classes.strongest = Widest(first, classes);
  // From here on single precision, in this order of operations.
  const auto alternating = static_cast<float>(first.alternating);
  const auto mean = static_cast<float>(first.mean);
  const bool proportional = h1 != 0.0F;
  scales.range = alternating * 2.0F * kt / g1;
  scales.mean = proportional ? mean / h1 : static_cast<float>(SignedStressOf(properties, unit_state));
  classes.alternating[0] = first.alternating;
  classes.mean[0] = first.mean;
  for (std::size_t k = 1; k < static_cast<std::size_t>(classes.count); ++k) {
    classes.alternating[k] = alternating * classes.load_range[k] / g1;
    classes.mean[k] = proportional ? mean * classes.load_mean[k] / h1 : scales.mean * classes.load_mean[k];
  }
  return CorrectClasses(properties.MeanStressCorrection, strength, classes);
}

LocationResult SumUsage(const StudyState& study, int material, bool above_answered, CycleClasses& classes) {
  LocationResult result;
  const SnCurveChoice choice = CurvesOfMaterial(study, material);
  if (choice.curves == nullptr && classes.count > 0) {
    result.condition = choice.condition;
    result.argument = choice.argument;
    return result;
  }
  SnLookupOptions options = LookupOptionsOf(study, above_answered);
  options.stress_factor = false;
  const int repetitions = RepetitionsOf(study);
  double used_cycles = 0.0;
  ClassLookup looked_up(choice.curves, options);
  for (std::size_t k = 0; k < static_cast<std::size_t>(classes.count); ++k) {
    double n = classes.cycles[k];
    if (repetitions > 0) n *= repetitions;
    const SnLookup& lookup = looked_up.At(classes.alternating[k], classes.mean[k]);
    if (lookup.condition != LocationCondition::kNone) result.condition = lookup.condition;
    if (lookup.condition == LocationCondition::kNoCurveForRatio) return result;
    classes.allowed[k] = lookup.allowed;
    classes.partial_usage[k] = n / lookup.allowed;
    classes.used[k] = Truncated(n);
    used_cycles += classes.used[k];
    result.usage += classes.partial_usage[k];
  }
  result.any_used = used_cycles > 0.0;
  // The ratio is the same for every class, so its mean weighted by cycles is the ratio itself.
  if (result.any_used) result.biaxiality = classes.biaxiality;
  return result;
}

void NodeMatrices(const CycleClasses& classes, int range_bins, std::span<float> damage,
                  std::span<std::int32_t> cycles) {
  std::fill(damage.begin(), damage.end(), 0.0F);
  std::fill(cycles.begin(), cycles.end(), 0);
  for (std::size_t k = 0; k < static_cast<std::size_t>(classes.count); ++k) {
    const std::size_t bin =
        static_cast<std::size_t>(classes.mean_bin[k] - 1) * static_cast<std::size_t>(range_bins) +
        static_cast<std::size_t>(classes.range_bin[k] - 1);
    damage[bin] = static_cast<float>(classes.partial_usage[k]);
    cycles[bin] = classes.used[k];
  }
}

}  // namespace zentor
