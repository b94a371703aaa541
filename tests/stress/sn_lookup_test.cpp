#include "stress/sn_lookup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "stress/elastic_plastic.h"
#include "stress/mean_stress_correction.h"
#include "stress/study_parts.h"

namespace zentor {
namespace {

using test::MakeCurve;
using test::StudyWithCurves;

double Cycles(const StudyState& study, double stress, double ratio = -1.0, int material = 1) {
  return LookUpAllowedCycles(study, material, stress, ratio, 0.0, true).allowed;
}

TEST(SnLookup, ThreeInterpolationsBetweenTwoPoints) {
  struct Case {
    int interpolation;
    double stress, cycles;
  };
  const Case cases[] = {
      {0, std::sqrt(400.0 * 100.0), std::sqrt(1e3 * 1e5)},  // half way in log S is half way in log N
      {1, 250.0, 1e4},                                      // half way in S is half way in log N
      {2, 250.0, 50500},                                    // half way in both
  };
  for (const Case& c : cases) {
    const StudyState study =
        StudyWithCurves({MakeCurve(c.interpolation, -1, {{1e3, 400}, {1e5, 100}, {1e6, 50}})});
    EXPECT_NEAR(Cycles(study, c.stress) / c.cycles, 1.0, 1e-12) << c.interpolation << " at " << c.stress;
    EXPECT_NEAR(Cycles(study, 100.0) / 1e5, 1.0, 1e-12) << "at a point, interpolation " << c.interpolation;
  }
}

TEST(SnLookup, EndsOfTheCurve) {
  StudyState study = StudyWithCurves({MakeCurve(0, -1, {{1e3, 400}, {1e5, 100}, {1e6, 50}})});
  EXPECT_EQ(Cycles(study, 1), 1e6);
  study.properties.InfiniteLifeValue = 1e9F;
  EXPECT_EQ(Cycles(study, 50), 1e9);  // the lowest point itself is infinite life
  EXPECT_NEAR(Cycles(study, 50 * (1 + 1e-9)), 1e6, 10);

  double stress = 400;
  SnLookup above = LookUpAllowedCycles(study, 1, stress, -1, 0, false);
  EXPECT_EQ(above.condition, LocationCondition::kAboveCurve);
  EXPECT_EQ(above.allowed, 1e3);  // what holds once the user says Yes
  double zero = -3;
  EXPECT_EQ(LookUpAllowedCycles(study, 1, zero, -1, 0, false).allowed, 1e9);
  EXPECT_EQ(zero, 1e-20);
  EXPECT_TRUE(std::isnan(Cycles(study, std::numeric_limits<double>::quiet_NaN())));
}

TEST(SnLookup, CurveWithRepeatedCyclesAndStresses) {
  const StudyState steep = StudyWithCurves({MakeCurve(1, -1, {{1e3, 400}, {1e3, 200}, {1e5, 100}})});
  EXPECT_NEAR(Cycles(steep, 300), 1e3, 1e-9);
  const StudyState flat =
      StudyWithCurves({MakeCurve(2, -1, {{1e3, 400}, {1e4, 200}, {1e5, 200}, {1e6, 100}})});
  EXPECT_NEAR(Cycles(flat, 200), 1e4, 1e-9);  // the first point that is not above the stress
}

// A compression of 100 that ends at 0 but for rounding.
TEST(SnLookup, StressRatioOfALargestStressOfZero) {
  SnLookupOptions options;
  EXPECT_LT(StressRatio(options, 50.0, -49.99999), -1e6);
  options.zero_part = 0x1p-20;
  EXPECT_EQ(StressRatio(options, 50.0, -49.99999), 0.0);
  EXPECT_LT(StressRatio(options, 50.0, -49.9999), -1e5);
}

TEST(SnLookup, StressRatioBetweenCurves) {
  StudyState study = StudyWithCurves(
      {MakeCurve(2, 0.0F, {{2e3, 400}, {2e5, 100}}), MakeCurve(2, -1.0F, {{1e3, 400}, {1e5, 100}}),
       MakeCurve(2, 0.5F, {{4e3, 400}, {4e5, 100}}), MakeCurve(2, 0.5F, {{9e3, 400}, {9e5, 100}})});
  EXPECT_DOUBLE_EQ(Cycles(study, 250, -0.25), 50500 + 50500 * 0.75);
  EXPECT_DOUBLE_EQ(Cycles(study, 250, 0.25), 101000 + 101000 * 0.5);
  EXPECT_DOUBLE_EQ(Cycles(study, 250, 0.0), 101000);
  EXPECT_DOUBLE_EQ(Cycles(study, 250, -3.0), 50500);  // below every curve
  EXPECT_DOUBLE_EQ(Cycles(study, 250, 0.9), 202000);  // above every curve; the first of two equal ratios
  double stress = 1000;                               // above the curves: their first N, no question
  const SnLookup above = LookUpAllowedCycles(study, 1, stress, -0.5, 0, false);
  EXPECT_EQ(above.condition, LocationCondition::kNone);
  EXPECT_DOUBLE_EQ(above.allowed, 1500);
  EXPECT_EQ(LookUpAllowedCycles(study, 1, stress, 2e20, 0, true).condition,
            LocationCondition::kNoCurveForRatio);

  const StudyState single = StudyWithCurves(
      {MakeCurve(2, 0.1F, {{1e3, 400}, {1e5, 100}}), MakeCurve(2, 0.5F, {{2e3, 400}, {2e5, 100}})});
  EXPECT_EQ(Cycles(single, 250, 0.1F), 50500);
  EXPECT_EQ(Cycles(single, 250, 0.1), 50500) << "just below the widened ratio: the lowest curve alone";
}

TEST(SnLookup, MaterialSets) {
  StudyState study = StudyWithCurves({MakeCurve(2, -1, {{1e3, 400}, {1e5, 100}})});
  study.sn_curves.sets.PushBack({});
  const auto condition = [&](int material) {
    double stress = 200;
    const SnLookup found = LookUpAllowedCycles(study, material, stress, -1, 0, false);
    return std::pair(found.condition, found.argument);
  };
  EXPECT_EQ(condition(0), std::pair(LocationCondition::kNoMaterialSet, 0));
  EXPECT_EQ(condition(2), std::pair(LocationCondition::kNoCurveInSet, 2));
  study.sn_curves.study_wide_set = 2;
  study.properties.SnCurveOption = -1;  // a built-in curve is always set 1
  EXPECT_EQ(condition(0), std::pair(LocationCondition::kNone, 0));
}

TEST(SnLookup, StressFactor) {
  StudyState study = StudyWithCurves({MakeCurve(0, -1, {{1e3, 400}, {1e5, 100}, {1e6, 50}})});
  const auto factor = [&](double cycles, double stress, double ratio = -1) {
    return LookUpAllowedCycles(study, 1, stress, ratio, cycles, true).stress_factor;
  };
  EXPECT_NEAR(factor(1e4, 50), 200.0 / 50, 1e-12);
  EXPECT_EQ(factor(10, 50), 400.0 / 50);  // fewer cycles than the first point
  EXPECT_EQ(factor(1e8, 25), 50.0 / 25);
  EXPECT_EQ(factor(0, 25), 0);  // no cycles, no factor
  study.sn_curves.sets[1].push_back(MakeCurve(1, 0.5F, {{1e3, 900}, {1e5, 300}}));
  EXPECT_NEAR(factor(1e4, 50, 0.0), 200.0 / 50, 1e-12);  // two curves around R: the lower one
  EXPECT_NEAR(factor(1e4, 50, 0.7), 600.0 / 50, 1e-12);
}

TEST(BuiltInCurve, ReproducesItsTable) {
  StudyState study;
  study.properties.SnCurveOption = -1;
  PrepareBuiltInCurve(-1, 30000, false, 0, study.sn_curves);
  EXPECT_NEAR(Cycles(study, 83), 1000, 1e-8);
  EXPECT_NEAR(Cycles(study, 12.500001), 1e6, 2.0);
  EXPECT_EQ(Cycles(study, 300), 100);

  study.properties.SnCurveOption = -2;
  PrepareBuiltInCurve(-2, 2 * 28300e3, false, 0, study.sn_curves);  // psi, twice the curve's modulus
  const SnCurve& curve = study.sn_curves.sets[1].front();
  ASSERT_EQ(curve.x.size(), 13U);
  EXPECT_DOUBLE_EQ(curve.first_stress, 2 * 261e3);
  EXPECT_NEAR(Cycles(study, 2 * 46.299999237060547e3), 5e4, 1e-6);
}

TEST(MeanStressCorrection, HandValues) {
  struct Case {
    MaterialStrength strength;
    int correction;
    double alternating, mean, expected, expected_mean;
    CorrectionOutcome outcome = CorrectionOutcome::kDone;
  };
  const MaterialStrength sound = {400, false}, none = {0, false}, may_be_missing = {0, true};
  const double beyond = 1.0000000150474662e+30;
  const Case cases[] = {
      {sound, kSoderberg, 60, 200, 120, 0},   // Sm = Su / 2 doubles
      {sound, kGoodman, 60, 200, 120, 0},     // here, too
      {sound, kGerber, 60, 200, 80, 0},       // and Gerber makes 4 / 3 of it,
      {sound, kGerber, 60, -200, 80, 0},      // either sign
      {sound, kGoodman, 60, -200, 40, 0},     // compression helps
      {sound, kGoodman, 60, 400, beyond, 0},  // at the strength
      {sound, kNoCorrection, 60, 200, 60, 200},
      {none, kGoodman, 1, 1e-10, 1, 1e-10},  // the limit is the single-precision 1e-10
      {may_be_missing, kGoodman, 60, 200, 60, 200, CorrectionOutcome::kNoStrength},
      {none, kGoodman, 60, 200, 60, 200, CorrectionOutcome::kBadStrength},
  };
  for (const Case& c : cases) {
    double alternating = c.alternating;
    double mean = c.mean;
    EXPECT_EQ(CorrectMeanStress(c.correction, c.strength, alternating, mean), c.outcome);
    EXPECT_DOUBLE_EQ(alternating, c.expected) << c.correction << " at " << c.mean;
    EXPECT_EQ(mean, c.expected_mean);
  }
}

TEST(ElasticPlastic, FactorAtItsCorners) {
  const double sm = 20, m = 3, n = 0.2;
  EXPECT_EQ(ElasticPlasticFactor(60, sm, m, n), 1);
  EXPECT_DOUBLE_EQ(ElasticPlasticFactor(std::nextafter(180.0, 0.0), sm, m, n), 5);
  EXPECT_EQ(ElasticPlasticFactor(180, sm, m, n), 5);
}

TEST(ElasticPlastic, SmCurve) {
  SmTCurve curve;
  curve.count = 3;
  const double points[3][2] = {{100, 20}, {200, 16}, {400, 16}};
  for (int k = 1; k <= 3; ++k) {
    curve.temperature[k] = points[k - 1][0];
    curve.sm[k] = points[k - 1][1];
  }
  const double expected[][2] = {{-50, 20}, {125, 19}, {200, 16}, {900, 16}};
  for (const auto& [t, sm] : expected) EXPECT_DOUBLE_EQ(SmAtTemperature(curve, t), sm) << t;
  EXPECT_TRUE(std::isnan(SmAtTemperature(curve, std::nan(""))));
}

}  // namespace
}  // namespace zentor
