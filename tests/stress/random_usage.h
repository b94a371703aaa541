// Studies and stress states of every kind that the evaluation of a node tells apart, by seed.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>

#include "stress/pair_evaluation.h"
#include "stress/study_parts.h"

namespace zentor::test {

class RandomUsage {
 public:
  explicit RandomUsage(unsigned seed) : random_(seed) {}

  // A study with up to 40 loadings in up to 20 events and one or several curves.
  StudyState Study() {
    StudyState study = StudyWithCurves(Curves());
    FatigueProperties& properties = study.properties;
    properties.AlternatingStressType = Pick(0, 2);
    properties.MeanStressCorrection = Pick(0, 3);
    properties.ExactPrincipalStresses = Pick(0, 2) == 0;
    properties.EventInteraction = Pick(0, 3) == 0 ? 1 : 0;
    properties.FatigueStrengthReductionFactor = OneOf<float>({1.0F, 1.0F, 1.2F, 2.0F, 0.01F, 35.0F});
    properties.InfiniteLifeValue = OneOf<float>({0.0F, 1e11F});
    if (Pick(0, 9) == 0) study.sn_curves.study_wide_set = Pick(1, 2);  // set 2 has no curve
    study.materials.strength.Assign(Pick(1, 2), OneOf({900.0, 900.0, 150.0, 60.0, 1e-3, 0.0, 1e30}));
    const int events = OneOf({1, 2, 2, 3, 5, 5, 8, 20});
    study.definition.event_count = events;
    for (int e = 1; e <= events; ++e) {
      SetEvent(study, e, OneOf({0, 1, 100, 100, 250, Pick(1, 5000), Pick(1, 5000), Pick(-1, 1 << 30)}));
    }
    loadings_ = Pick(0, 2) == 0 ? Pick(1, kMaxLoadings) : Pick(2, 12);
    const bool gaps = Pick(0, 3) == 0;
    for (int k = 1; k <= loadings_; ++k) SetLoading(study, k, Pick(gaps ? 0 : 1, events));
    return study;
  }

  // Stresses of one kind or a mixture of all.
  LoadingStates States() {
    LoadingStates states;
    const int kind = Pick(0, kKinds);
    const double size = OneOf({60.0, 60.0, 60.0, 300.0, 1.0, 6e7, 1e-3, 1e-12, 1e45});
    const StressTensor base = Tensor(Pick(0, 4));
    general_ = Tensor(0);
    plane_ = Pick(0, 1) == 0;
    for (int k = 1; k <= loadings_; ++k) {
      states.stress[k] = Of(kind == kKinds ? Pick(0, kKinds - 1) : kind, base, states, k);
      for (double& c : states.stress[k]) c *= size / 60.0;
    }
    if (Pick(0, 40) == 0) Spoil(states);
    return states;
  }

  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

 private:
  static constexpr int kKinds = 11;

  template <typename T, std::size_t kCount>
  T OneOf(const T (&values)[kCount]) {
    return values[Pick(0, static_cast<int>(kCount) - 1)];
  }
  double Normal() { return std::normal_distribution<double>(0.0, 60.0)(random_); }

  std::vector<SnCurve> Curves() {
    const int interpolation = Pick(0, 2);
    const auto curve = [&](float ratio, double top) {
      return MakeCurve(interpolation, ratio,
                       {{100, top}, {1e3, 0.5 * top}, {1e4, 0.2 * top}, {1e6, 0.08 * top}});
    };
    if (Pick(0, 2) != 0) return {curve(-1.0F, OneOf({1500.0, 90.0}))};
    return {curve(-1.0F, 700), curve(0.1F, 500), curve(0.1F, 450), curve(0.5F, 300)};
  }

  // General, plane, uniaxial along X, pure shear, hydrostatic.
  StressTensor Tensor(int shape) {
    const double s = Normal();
    switch (shape) {
      case 0:
        return {s, Normal(), Normal(), Normal(), Normal(), Normal()};
      case 1:
        return {s, Normal(), Normal(), Normal(), 0, 0};
      case 2:
        return {s, 0, 0, 0, 0, 0};
      case 3:
        return {0, 0, 0, 0, s, 0};
      default:
        return {s, s, s, 0, 0, 0};
    }
  }
  // Tension along a random direction: repeated principal values, a discriminant of rounding errors.
  StressTensor TurnedTension(double s) {
    double x = Normal(), y = Normal(), z = Normal();
    const double length = std::sqrt(x * x + y * y + z * z);
    x /= length, y /= length, z /= length;
    return {s * x * x, s * y * y, s * z * z, s * x * y, s * x * z, s * y * z};
  }

  StressTensor Of(int kind, const StressTensor& base, const LoadingStates& states, int k) {
    const StressTensor earlier = k > 1 ? states.stress[Pick(1, k - 1)] : StressTensor{};
    switch (kind) {
      case 0:
        return Tensor(0);
      case 1:
        return Tensor(1);
      case 2:
        return Tensor(Pick(0, 4));
      case 3:
        return Scaled(base, Pick(-3, 3));  // proportional loads: fully reversed, repeated, ties
      case 4:
        return Scaled(base, Normal() / 60.0);
      case 5:  // a loading again, reversed, or reversed but for a trifle
        if (k == 1 || Pick(0, 2) == 0) return Tensor(plane_ ? 1 : 0);
        return Scaled(earlier, Pick(0, 2) == 0 ? 1.0 : -1.0 - Pick(0, 1) * std::ldexp(1.0, -Pick(20, 50)));
      case 6: {  // near ties
        StressTensor s = Pick(0, 2) == 0 ? Tensor(0) : base;
        for (double& c : s) c *= 1.0 + Pick(-3, 3) * 0x1p-50;
        return s;
      }
      case 7:
        return TurnedTension(Normal());
      case 8: {  // single precision, as stores hold it, around one per cent of each other
        StressTensor s = base;
        for (double& c : s) c = static_cast<float>(c * (1.0 + 0.01 * Pick(-2, 2)));
        return s;
      }
      case 9:  // one per cent below each other, or a few units of the last place off
        return Scaled(general_, std::pow(0.99F, Pick(0, 3)) * (1.0 + Pick(-2, 2) * 0x1p-52) * Pick(0, 1));
      default: {  // a shear and a pressure of other sizes
        StressTensor s = Tensor(0);
        for (std::size_t c = 0; c < 3; ++c) s[c] += OneOf({0.0, 1e3, 1e6, 1e9, 1e12});
        for (std::size_t c = 3; c < 6; ++c) s[c] *= OneOf({1.0, 1e-6, 1e-14, 1e-16, 1e-18});
        return s;
      }
    }
  }
  static StressTensor Scaled(StressTensor s, double factor) {
    for (double& c : s) c *= factor;
    return s;
  }
  void Spoil(LoadingStates& states) {
    const double bad[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                          1e300, 1e160};
    states.stress[Pick(1, loadings_)][static_cast<std::size_t>(Pick(0, 5))] = OneOf(bad);
  }

  std::mt19937 random_;
  int loadings_ = 0;
  StressTensor general_{};
  bool plane_ = false;
};

}  // namespace zentor::test
