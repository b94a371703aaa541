#include <array>
#include <cmath>
#include <cstddef>

#include "stress/sn_lookup.h"

namespace zentor {
namespace {

constexpr std::size_t kPoints = 13;
constexpr std::array<float, kPoints> kCycles = {100.0F,    200.0F,    500.0F,    1000.0F,  2000.0F,
                                                5000.0F,   10000.0F,  20000.0F,  50000.0F, 100000.0F,
                                                200000.0F, 500000.0F, 1000000.0F};

// Alternating stress in ksi, single precision, and the modulus it belongs to.
struct DesignCurve {
  double modulus;
  std::array<float, kPoints> stress;
};
constexpr DesignCurve kCarbonSteel = {
    30000.0, {205.0F, 155.0F, 105.0F, 83.0F, 64.0F, 48.0F, 38.0F, 31.0F, 23.0F, 20.0F, 16.5F, 13.5F, 12.5F}};
constexpr DesignCurve kAusteniticSteel = {
    28300.0, {261.0F, 201.0F, 148.0F, 119.0F, 97.0F, 76.0F, 64.0F, 55.5F, 46.3F, 40.8F, 35.9F, 31.0F, 28.3F}};

constexpr double kPsiPerKsi = 1000.0;
constexpr double kPascalPerKsi = 6894757.3;

}  // namespace

void PrepareBuiltInCurve(int option, double modulus, bool multi_study, int interpolation,
                         SnCurveStore& store) {
  const DesignCurve& design = option == -2 ? kAusteniticSteel : kCarbonSteel;
  // The unit cancels; it is kept because it takes part in the rounding of the scaled stresses.
  const double unit = multi_study ? kPascalPerKsi : kPsiPerKsi;

  SnCurve curve;
  curve.number = 1;
  curve.interpolation = interpolation;
  curve.x.reserve(kPoints);
  curve.y.reserve(kPoints);
  for (std::size_t k = 0; k < kPoints; ++k) {
    const double cycles = kCycles[k];
    const double stress = design.stress[k] * unit * modulus / (design.modulus * unit);
    curve.x.push_back(interpolation == 0 || interpolation == 1 ? std::log10(cycles) : cycles);
    curve.y.push_back(interpolation == 0 ? std::log10(stress) : stress);
    if (k == 0) curve.first_stress = stress;
    curve.last_stress = stress;
  }
  curve.first_cycles = kCycles.front();
  curve.last_cycles = kCycles.back();

  if (store.sets.empty()) store.sets.Assign(1);
  store.sets[1].assign(1, curve);
  store.point_count = static_cast<int>(kPoints);
}

}  // namespace zentor
