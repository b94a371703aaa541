#include "stress/sn_lookup.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "stress/exact_lanes.h"

namespace zentor {
namespace {

// Interpolation codes of a curve; any other code is linear.
constexpr int kLogLog = 0;
constexpr int kSemiLog = 1;

constexpr double kSmallestStress = 1e-20;
constexpr double kNoDistance = 1e20;  // farther than any stress ratio a curve is chosen for

bool LogCycles(const SnCurve& curve) {
  return curve.interpolation == kLogLog || curve.interpolation == kSemiLog;
}

enum class Range { kBelow, kInside, kAbove };

struct CurvePoint {
  double cycles = 0.0;
  Range range = Range::kInside;
};

// N at a stress of at least kSmallestStress; above the curve its first N.
CurvePoint CyclesAt(const SnCurve& curve, double stress, float infinite_life) {
  const std::vector<double>& x = curve.x;
  const std::vector<double>& y = curve.y;
  if (y.empty()) return {curve.last_cycles, Range::kBelow};
  const double s = curve.interpolation == kLogLog ? std::log10(stress) : stress;
  if (y.back() >= s) {
    const bool infinite = infinite_life > 1e-8F;
    return {infinite ? static_cast<double>(infinite_life) : curve.last_cycles, Range::kBelow};
  }
  if (s >= y.front()) return {curve.first_cycles, Range::kAbove};
  // The first point is above s and the last below, so the search ends at an index 1 .. last with
  // y[k - 1] > s >= y[k]: the two stresses differ. Two equal N make the slope infinite and the result x[k -
  // 1]. (NaN passes every point and comes back as NaN.)
  const std::size_t last = y.size() - 1;
  std::size_t k = std::min<std::size_t>(1, last);
  while (k < last && !(y[k] <= s)) ++k;
  if (k == 0) return {std::nan(""), Range::kInside};
  const double position = x[k - 1] + (s - y[k - 1]) / ((y[k] - y[k - 1]) / (x[k] - x[k - 1]));
  return {LogCycles(curve) ? std::pow(10.0, position) : position, Range::kInside};
}

// The stress that the curve allows at `cycles` > 0.
double StressAt(const SnCurve& curve, double cycles) {
  const std::vector<double>& x = curve.x;
  const std::vector<double>& y = curve.y;
  const double position = LogCycles(curve) ? std::log10(cycles) : cycles;
  if (x.empty() || position > x.back()) return curve.last_stress;
  if (x.front() >= position) return curve.first_stress;
  const auto after = std::find_if(x.begin(), x.end(), [position](double point) { return point > position; });
  if (after == x.end()) return curve.last_stress;  // exactly at the last point
  // x[k - 1] <= position < x[k], also where the points are not in the order of N.
  const auto k = static_cast<std::size_t>(after - x.begin());
  const double stress = y[k - 1] + (position - x[k - 1]) * (y[k] - y[k - 1]) / (x[k] - x[k - 1]);
  return curve.interpolation == kLogLog ? std::pow(10.0, stress) : stress;
}

// The curves next to a stress ratio, nullptr where there is none; both the same at a curve's own ratio.
struct Neighbours {
  const SnCurve* lower = nullptr;
  const SnCurve* upper = nullptr;
};

Neighbours NeighboursOf(const std::vector<SnCurve>& curves, double ratio) {
  Neighbours found;
  double below = kNoDistance;
  double above = kNoDistance;
  for (const SnCurve& curve : curves) {
    const double distance = ratio - static_cast<double>(curve.ratio);
    if (distance >= 0.0 && distance < below) {
      below = distance;
      found.lower = &curve;
    }
    if (-distance >= 0.0 && -distance < above) {
      above = -distance;
      found.upper = &curve;
    }
  }
  return found;
}

// N between two curves, linear in the stress ratio; a stress above a curve takes its first N without asking.
double CyclesBetween(const Neighbours& curves, double stress, double ratio, float infinite_life) {
  const auto cycles_of = [&](const SnCurve& curve) { return CyclesAt(curve, stress, infinite_life).cycles; };
  if (curves.upper == nullptr || curves.lower == curves.upper) return cycles_of(*curves.lower);
  if (curves.lower == nullptr) return cycles_of(*curves.upper);
  const double lower = cycles_of(*curves.lower);
  const double upper = cycles_of(*curves.upper);
  const double lower_ratio = curves.lower->ratio;
  const double upper_ratio = curves.upper->ratio;
  return lower + (upper - lower) * (ratio - lower_ratio) / (upper_ratio - lower_ratio);
}

}  // namespace

SnCurveChoice CurvesOfMaterial(const StudyState& study, int material) {
  SnCurveChoice choice;
  int set = material;
  if (study.sn_curves.study_wide_set >= 1) set = study.sn_curves.study_wide_set;
  if (UsesBuiltInCurve(study.properties)) set = 1;
  if (set < 1) {
    choice.condition = LocationCondition::kNoMaterialSet;
  } else if (!study.sn_curves.sets.Holds(set) || study.sn_curves.sets[set].empty()) {
    choice.condition = LocationCondition::kNoCurveInSet;
    choice.argument = set;
  } else {
    choice.curves = &study.sn_curves.sets[set];
  }
  return choice;
}

bool IsBelowCurve(const SnCurve& curve, double alternating) {
  if (curve.y.empty()) return false;
  const double stress = std::max(alternating, kSmallestStress);
  return curve.y.back() >= (curve.interpolation == kLogLog ? std::log10(stress) : stress);
}

SnLookup LookUpInCurves(const std::vector<SnCurve>& curves, const SnLookupOptions& options,
                        double& alternating, double ratio, double used_cycles) {
  SnLookup result;
  if (alternating < kSmallestStress) alternating = kSmallestStress;
  const SnCurve* governing = curves.data();
  if (curves.size() == 1) {
    const CurvePoint point = CyclesAt(*governing, alternating, options.infinite_life);
    result.allowed = point.cycles;
    if (point.range == Range::kAbove && !options.above_answered) {
      result.condition = LocationCondition::kAboveCurve;
    }
  } else {
    const Neighbours neighbours = NeighboursOf(curves, ratio);
    governing = neighbours.lower != nullptr ? neighbours.lower : neighbours.upper;
    if (governing == nullptr) {
      result.condition = LocationCondition::kNoCurveForRatio;
      return result;
    }
    result.allowed = CyclesBetween(neighbours, alternating, ratio, options.infinite_life);
  }
  if (options.stress_factor && used_cycles > 0.0) {
    result.stress_factor = StressAt(*governing, used_cycles) / alternating;
  }
  return result;
}

SnLookupOptions LookupOptionsOf(const StudyState& study, bool above_answered) {
  // What single precision of the components leaves of a largest stress of 0 would decide which curve counts.
  return {study.properties.InfiniteLifeValue, study.definition.event_count <= 1, above_answered,
          study.properties.ExactPrincipalStresses ? kEqualTension : 0.0};
}

double StressRatio(const SnLookupOptions& options, double alternating, double mean) {
  const double largest = mean + alternating;
  return largest <= std::max(1e-20, options.zero_part * alternating) ? 0.0 : (mean - alternating) / largest;
}

SnLookup LookUpAllowedCycles(const StudyState& study, int material, double& alternating, double ratio,
                             double used_cycles, bool above_answered) {
  const SnCurveChoice choice = CurvesOfMaterial(study, material);
  if (choice.curves == nullptr) return {0.0, 0.0, choice.condition, choice.argument};
  return LookUpInCurves(*choice.curves, LookupOptionsOf(study, above_answered), alternating, ratio,
                        used_cycles);
}

}  // namespace zentor
