#include "stress/exact_stress.h"

#include <cmath>

#include "stress/exact_lanes.h"

namespace zentor {
namespace {

LaneTensor Lane(const StressTensor& s) { return {s[0], s[1], s[2], s[3], s[4], s[5]}; }

// A second principal value of less than this part of the first is a rounding error of 0.
constexpr double kRounding = 0x1p-46;

ZENTOR_LANES bool IsLarger(double other, double first) {
  return std::abs(other) > std::abs(first) * (1.0 + kEqualTension);
}

ZENTOR_LANES double Biaxiality(const LaneTensor& difference) {
  const auto [largest, middle, smallest] = ExactPrincipals(difference);
  const bool compression = IsLarger(smallest, largest);
  const double first = compression ? smallest : largest;
  const double high = compression ? largest : middle;
  const double low = compression ? middle : smallest;
  const double second = IsLarger(low, high) ? low : high;
  return std::abs(second) <= kRounding * std::abs(first) ? 0.0 : second / first;
}

}  // namespace

PrincipalValues PrincipalExact(const StressTensor& s) {
  const LanePrincipals p = ExactPrincipals(Lane(s));
  return {p.first, p.second, p.third};
}

double SizeOf(const StressTensor& s) { return SizeOf(Lane(s)); }

double ExactAlternating(int alternating_type, const StressTensor& difference, double kt) {
  const LaneTensor s = Lane(difference);
  if (alternating_type == kVonMises) return 0.5 / kt * ExactRange<kVonMises>(s);
  if (alternating_type == kMaximumPrincipal) return 0.5 / kt * ExactRange<kMaximumPrincipal>(s);
  return 0.5 / kt * ExactRange<kStressIntensity>(s);
}

// What the measure and the ratio have in common is computed once.
ExactMeasures ExactMeasuresOf(int alternating_type, const StressTensor& difference, double kt) {
  const LaneTensor s = Lane(difference);
  if (alternating_type == kVonMises) return {0.5 / kt * ExactRange<kVonMises>(s), Biaxiality(s)};
  if (alternating_type == kMaximumPrincipal)
    return {0.5 / kt * ExactRange<kMaximumPrincipal>(s), Biaxiality(s)};
  return {0.5 / kt * ExactRange<kStressIntensity>(s), Biaxiality(s)};
}

double ExactBiaxiality(const StressTensor& difference) { return Biaxiality(Lane(difference)); }

double ExactSignedStress(const StressTensor& s, double size) { return ExactSignedVonMises(Lane(s), size); }

}  // namespace zentor
