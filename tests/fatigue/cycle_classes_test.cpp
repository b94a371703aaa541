#include "fatigue/cycle_classes.h"

#include <array>
#include <cmath>
#include <random>

#include "fatigue/node_stress_history.h"
#include "fatigue/unit_matrix.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "stress/equivalent_stress.h"
#include "stress/principal_stress.h"
#include "stress/study_parts.h"

namespace zentor {
namespace {

using test::UnitMatrix;
using ::testing::ElementsAre;

FatigueProperties VonMises(float kt = 1.0F, int correction = kNoCorrection) {
  FatigueProperties p;
  p.AlternatingStressType = kVonMises;
  p.FatigueStrengthReductionFactor = kt;
  p.MeanStressCorrection = correction;
  return p;
}

CycleClasses Allocated(const RangeMeanMatrix& m) {
  CycleClasses classes;
  classes.Allocate(m.range_bins, m.mean_bins);
  return classes;
}

template <typename T>
std::vector<T> First(const std::vector<T>& field, const CycleClasses& classes) {
  return {field.begin(), field.begin() + classes.count};
}

// Semi-logarithmic curve through (10, 1000) and (1e5, 200): N = 10^(1 + (1000 - S) / 200).
StudyState StudyWithCurve(int repetitions) {
  StudyState study = test::StudyWithCurves({test::MakeCurve(1, 0, {{10, 1000}, {1e5, 200}})});
  study.properties = VonMises();
  study.sn_curves.study_wide_set = 1;
  study.definition.events[1].repetitions = repetitions;
  return study;
}

TEST(StressClasses, HalfTheRangeOverKtInOrderOfRangeThenMean) {
  RangeMeanMatrix m = UnitMatrix(201, 3, -5);
  m.counts[m.Index(101, 3)] = 4;
  m.counts[m.Index(101, 1)] = 2;
  m.counts[m.Index(3, 2)] = 9;
  m.counts[m.Index(1, 2)] = 77;  // range 0 does no damage
  CycleClasses classes = Allocated(m);
  EXPECT_EQ(BinsToStressClasses(VonMises(2), m, {}, classes), LocationCondition::kNone);
  EXPECT_THAT(First(classes.alternating, classes), ElementsAre(0.5, 25, 25));
  EXPECT_THAT(First(classes.mean, classes), ElementsAre(-4, -5, -3));
  EXPECT_THAT(First(classes.cycles, classes), ElementsAre(9, 2, 4));
}

TEST(StressClasses, AreCorrectedForMeanStress) {
  RangeMeanMatrix m = UnitMatrix(201, 101);
  m.counts[m.Index(101, 101)] = 1;  // range 100, mean 100
  CycleClasses classes = Allocated(m);
  const auto correct = [&](int correction, MaterialStrength strength) {
    return BinsToStressClasses(VonMises(1, correction), m, strength, classes);
  };
  EXPECT_EQ(correct(kGerber, {0.0, false}), LocationCondition::kNoUltimateStrength);
  EXPECT_EQ(correct(kSoderberg, {0.0, false}), LocationCondition::kNoYieldStrength);
  EXPECT_EQ(correct(kGoodman, {0.0, true}), LocationCondition::kNone);
  EXPECT_EQ(classes.alternating[0], 50.0);
  EXPECT_EQ(correct(kGoodman, {200.0, false}), LocationCondition::kNone);
  EXPECT_EQ(classes.alternating[0], 100.0);
  EXPECT_EQ(classes.mean[0], 0.0);
}

TEST(LoadClasses, FollowTheFirstClassInProportion) {
  RangeMeanMatrix m = UnitMatrix(5, 4, 1);
  m.counts[m.Index(3, 2)] = 5;  // range 2, mean 2
  m.counts[m.Index(5, 4)] = 1;  // range 4, mean 4
  CycleClasses classes = Allocated(m);
  BinsToLoadClasses(m, classes);
  StressScales scales;
  const auto evaluate = [&](const FatigueProperties& properties, MaterialStrength strength) {
    EXPECT_EQ(EvaluateLoadClasses(properties, {-30, 0, 0, 0, 0, 0}, strength, classes, scales),
              LocationCondition::kNone);
  };
  evaluate(VonMises(2), {});
  EXPECT_THAT(First(classes.alternating, classes), ElementsAre(15, 30));  // 30 * 2 / Kt / 2
  EXPECT_THAT(First(classes.mean, classes), ElementsAre(-60, -120));      // Kt does not touch the mean
  EXPECT_FLOAT_EQ(scales.range, 30.0F);
  EXPECT_FLOAT_EQ(scales.mean, -30.0F);
  // Without mean load in the first class means follow the unit state.
  for (float& mean : classes.load_mean) mean -= 2;
  evaluate(VonMises(), {});
  EXPECT_THAT(First(classes.mean, classes), ElementsAre(0, -60));
}

TEST(LoadClasses, ComeFromTheOccupiedMeanBinsOfThePrintedMatrix) {
  RangeMeanMatrix m = UnitMatrix(3, 4);
  for (std::int32_t& count : m.counts) count = 1;
  m.first_mean = 2;
  m.last_mean = 3;
  CycleClasses classes = Allocated(m);
  BinsToLoadClasses(m, classes);
  EXPECT_THAT(First(classes.mean_bin, classes), ElementsAre(2, 3, 2, 3));
}

TEST(SumUsage, RepetitionsMultiplyTheCycles) {
  RangeMeanMatrix m = UnitMatrix(1601, 2, 10);
  m.counts[m.Index(1201, 1)] = 3;  // S = 600, N = 1000
  m.counts[m.Index(1601, 2)] = 1;  // S = 800, N = 100
  CycleClasses classes = Allocated(m);
  for (const auto& [repetitions, factor] : {std::pair{7, 7}, {0, 1}, {-2, 1}}) {
    const StudyState study = StudyWithCurve(repetitions);
    ASSERT_EQ(BinsToStressClasses(study.properties, m, {}, classes), LocationCondition::kNone);
    EXPECT_NEAR(SumUsage(study, 0, false, classes).usage, factor * (3 / 1000.0 + 1 / 100.0), 1e-12 * factor);
    EXPECT_THAT(First(classes.used, classes), ElementsAre(3 * factor, factor));
  }
}

TEST(SumUsage, UsedCyclesStopAtTheLargestInteger) {
  RangeMeanMatrix m = UnitMatrix(1201, 1);
  m.counts[m.Index(1201, 1)] = 2000000000;
  CycleClasses classes = Allocated(m);
  const StudyState study = StudyWithCurve(1000);
  ASSERT_EQ(BinsToStressClasses(study.properties, m, {}, classes), LocationCondition::kNone);
  EXPECT_NEAR(SumUsage(study, 0, false, classes).usage, 2e9, 1e-3);
  EXPECT_EQ(classes.used[0], 2147483647);
}

CombinedLoadTable TableOf(std::vector<std::vector<float>> columns) {
  CombinedLoadTable table;
  table.points = columns.front().size();
  for (auto& column : columns) table.loads.PushBack(column);
  return table;
}

const FatigueProperties kExact = [] {
  FatigueProperties properties;
  properties.ExactPrincipalStresses = true;
  return properties;
}();

// Every form of the loops gives the same bits.
std::vector<float> HistoryOf(const CombinedLoadTable& table, const LoadingStates& states,
                             const FatigueProperties& properties = {}) {
  std::vector<float> w(table.points);
  NodeStressHistory(properties, table, states, w, VectorForm::kBaseline);
  std::vector<float> wider(table.points);
  for (const VectorForm form : kVectorForms) {
    if (!RunsVectorForm(form)) continue;
    NodeStressHistory(properties, table, states, wider, form);
    EXPECT_EQ(wider, w) << "form " << static_cast<int>(form);
  }
  return w;
}

// Number of points that differ from the principal values' stress, by the last place at most.
std::size_t CompareByPoint(const CombinedLoadTable& table, const LoadingStates& states,
                           const FatigueProperties& properties = {}) {
  const std::vector<float> w = HistoryOf(table, states, properties);
  std::vector<float> expected(table.points);
  NodeStressHistoryByPoint(properties, table, states, expected);
  std::size_t different = 0;
  for (std::size_t p = 0; p < table.points; ++p) {
    EXPECT_FLOAT_EQ(w[p], expected[p]) << "point " << p;
    different += static_cast<std::size_t>(w[p] != expected[p]);
  }
  return different;
}

// Only the second loading leaves the plane, in some nodes none.
TEST(NodeStressHistory, AgreesWithThePrincipalValuesOfEveryPoint) {
  std::mt19937 random(4);
  std::uniform_real_distribution<float> load(-3, 3);
  std::uniform_real_distribution<double> stress(-200, 200);
  for (int node = 1; node <= 80; ++node) {
    SCOPED_TRACE(node);
    const int events = 1 + node % 15;  // more than a group of the sums at a time
    const bool plane = node % 4 == 0 || events == 1;
    std::vector<std::vector<float>> columns(events, std::vector<float>(700 + node));
    LoadingStates states;
    for (int e = 1; e <= events; ++e) {
      std::vector<float>& column = columns[e - 1];
      for (std::size_t p = 0; p < column.size(); ++p) {
        column[p] = e == 2 && node % 2 == 0 && p % 3 == 0 ? 0.0F : load(random);
      }
      for (double& s : states.stress[e]) s = stress(random);
      for (std::size_t c = 0; c < 3 && node % 5 == 0; ++c) states.stress[e][c] += 3000;
      if (plane || e != 2) states.stress[e][4] = states.stress[e][5] = 0;
    }
    EXPECT_LE(CompareByPoint(TableOf(columns), states), plane ? 0U : 3U);
    EXPECT_EQ(CompareByPoint(TableOf(columns), states, kExact), 0U);
  }
}

// Turned states of principal stresses s, 0, -s: which of the two ends has the larger magnitude, and with it
// the sign, is a matter of the last bit of the principal values. Exactly it is the tension.
TEST(NodeStressHistory, TiesOfMagnitudeAreDecidedByThePrincipalValues) {
  std::mt19937 random(9);
  std::uniform_real_distribution<double> angle(0, 3);
  for (int k = 0; k < 500; ++k) {
    const double u = angle(random);
    const double v = angle(random);
    const std::array<double, 3> p = {std::cos(u) * std::cos(v), std::sin(u) * std::cos(v), std::sin(v)};
    const std::array<double, 3> m = {-std::sin(u), std::cos(u), 0.0};  // normal to p
    const auto component = [&](std::size_t i, std::size_t j) { return 90.0 * (p[i] * p[j] - m[i] * m[j]); };
    LoadingStates states;
    states.stress[1] = {component(0, 0), component(1, 1), component(2, 2),
                        component(0, 1), component(0, 2), component(1, 2)};
    ASSERT_EQ(CompareByPoint(TableOf({{1, -1, 3}}), states), 0U) << k;
    for (const float w : HistoryOf(TableOf({{1, -1, 3}}), states, kExact)) ASSERT_GT(w, 155.0F) << k;
  }
}

// Compression at 45 degrees to the plane: lost as stated, for some loads, at points and in classes alike.
TEST(NodeStressHistory, CountsThePointsThatLostTheirStress) {
  LoadingStates states;
  states.stress[1] = {-1, 0, -1, 0, -1, 0};
  std::vector<float> w(4);
  const CombinedLoadTable table = TableOf({{100, 20, -50, 60}});
  const LostStress lost = NodeStressHistory({}, table, states, w);
  EXPECT_EQ(std::tuple(lost.count, lost.largest),
            std::tuple(static_cast<int>(std::count(w.begin(), w.end(), 0.0F)), 200.0));
  EXPECT_EQ(w[0], 0.0F);
  EXPECT_EQ(NodeStressHistory(kExact, table, states, w).count, 0);
  EXPECT_THAT(w, ElementsAre(-200, -40, 100, -120));

  RangeMeanMatrix m = UnitMatrix(401, 1, 1);
  m.counts[m.Index(101, 1)] = m.counts[m.Index(401, 1)] = 1;  // ranges 100 and 400
  CycleClasses classes = Allocated(m);
  BinsToLoadClasses(m, classes);
  StressScales scales;
  EvaluateLoadClasses(VonMises(2), states.stress[1], {}, classes, scales);
  EXPECT_EQ(classes.alternating[1], 0.0);
  EXPECT_DOUBLE_EQ(classes.strongest.lost_alternating, 200.0) << "2 * 400 / 2, over Kt";
  FatigueProperties exact = VonMises(2);
  exact.ExactPrincipalStresses = true;
  EvaluateLoadClasses(exact, states.stress[1], {}, classes, scales);
  EXPECT_FLOAT_EQ(static_cast<float>(classes.alternating[1]), 200.0F);
}

}  // namespace
}  // namespace zentor
