// Damages from tables and formulas of public test suites.
#include <cmath>

#include "validation/published_case.h"
#include "validation/whole_run.h"

namespace zentor::validation {

namespace {

// Cycles and alternating stress.
const std::vector<std::array<float, 2>> kTabulatedCurve = {
    {10, 2900},  {20, 2210},  {50, 1590},  {100, 1210}, {200, 930},   {500, 690},
    {1000, 540}, {2000, 430}, {5000, 340}, {1e4F, 305}, {12000, 295}, {2e4F, 250},
    {5e4F, 200}, {1e5F, 180}, {2e5F, 165}, {5e5F, 152}, {1e6F, 138}};

std::vector<Comparison> MeanStress() {
  StudyDefinition study = PointStudy({{{600.0}}, {{-500.0}}});
  AddEvent(study, 1, {1, 2});
  study.materials = {{1, 2e5F, 300.0F, 850.0F}};
  study.sn_curves[0].points = kTabulatedCurve;
  const auto damage = [&](int correction) {
    study.options.mean_stress_correction = correction;
    return RunStudy(study).Usage(1);
  };
  return {{"damage without correction", 1.0532566522679e-3, damage(0), 1e-6},
          {"damage with Gerber", 1.0636310122843e-3, damage(3), 1e-6},
          {"damage with Goodman", 1.2502190098576e-3, damage(2), 1e-6}};
}

std::vector<Comparison> BiaxialState() {
  StudyDefinition study = PointStudy({{{100.0, -200.0}}, {{-100.0, 200.0}}});
  AddEvent(study, 1, {1, 2});
  study.locations = {{1, 1}};
  study.options.activated_location = 1;
  study.sn_curves[0].points = kTabulatedCurve;
  const companion::LocationResult result = RunStudy(study).location;
  const companion::PairRecord& pair = result.pairs.at(0);
  return {{"alternating stress (stress intensity)", 300.0, pair.alternating_stress, 1e-6},
          {"allowed cycles", 10946.13, pair.allowed_cycles, 1e-6},
          {"damage", 9.1356e-5, result.usage.at(0), 1e-5}};
}

// log10 N = 55.81 - 43.06 X + 11.91 X^2 - 1.16 X^3 with X = log10 S, as a table of as many points as a curve
// can have.
std::vector<std::array<float, 2>> PolynomialCurve() {
  std::vector<std::array<float, 2>> points;
  for (int k = 0; k < 800; ++k) {
    const double x = 3.3 - 0.7 * k / 799;
    const double n = 55.81 + x * (-43.06 + x * (11.91 - 1.16 * x));
    points.push_back({static_cast<float>(std::pow(10.0, n)), static_cast<float>(std::pow(10.0, x))});
  }
  return points;
}

// Stored conditions of location 1: a uniaxial stress and its linearised value for every loading, at 20
// degrees.
struct StoredState {
  double stress, linearised;
};
void Store(StudyDefinition& study, const std::vector<StoredState>& states) {
  study.locations = {{1, 1}};
  study.options.activated_location = 1;
  for (std::size_t k = 0; k < states.size(); ++k) {
    StoredCondition condition{1, static_cast<int>(k) + 1, {}, {}, 20.0F};
    condition.stress = {static_cast<float>(states[k].stress)};
    condition.linearised = {static_cast<float>(states[k].linearised)};
    study.stored_conditions.push_back(condition);
  }
}

std::vector<Comparison> ElasticPlasticFactor() {
  StudyDefinition study = PointStudy({{{1000.0}}});
  AddEvent(study, 1, {1, kZeroStressCase});
  study.sn_curves[0].points = {{static_cast<float>(1.0 / (1.001730939e-14 * std::pow(1e4, 4.065))), 1e4F},
                               {static_cast<float>(1.0 / (1.001730939e-14 * std::pow(1e2, 4.065))), 1e2F}};
  const double basquin = RunStudy(study).Usage(1);
  study.sn_curves[0].points = PolynomialCurve();
  const double elastic = RunStudy(study).Usage(1);

  study.events.clear();
  AddEvent(study, 1, {kStoredStressCase, kStoredStressCase});
  Store(study, {{1000, 1000}, {0, 0}});
  study.elastic_plastic = ConstantSm(126.0, 1.7, 0.3);
  const companion::LocationResult result = RunStudy(study).location;
  return {{"damage without Ke, Basquin's law", 9.3770051607256e-4, basquin, 1e-6},
          {"damage without Ke, polynomial", 2.8585032708678e-4, elastic, 2e-6},
          {"Ke", 1.0 / 0.3, result.pairs.at(0).ke, 1e-6},
          {"damage with Ke, polynomial", 0.012249412111037, result.usage.at(0), 2e-6}};
}

// The instants of both situations at the inner end, the middle and the outer end of the section. N = 5e5 / S.
constexpr double kInstants[7][3] = {{90, 100, 110}, {0, 100, -90}, {100, -50, -100}, {0, 0, 0},
                                    {90, 100, 90},  {0, 100, -90}, {100, -50, -100}};
WallStress Instant(std::size_t instant) {
  return [=](double x) { return Tensor{0, kInstants[instant][std::lround(x)]}; };
}
// An event per instant, the instants of situation 1 with `first` occurrences and those of situation 2 with
// one.
void AddSituations(StudyDefinition& study, int first, const std::function<int(int instant)>& stress_case) {
  for (int k = 0; k < 7; ++k) AddEvent(study, k < 4 ? first : 1, {stress_case(k)});
  study.sn_curves[0].points = {{5e2F, 1e3F}, {5e5F, 1.0F}};
}

std::vector<Comparison> TwoSituations() {
  std::vector<WallStress> instants;
  for (std::size_t k = 0; k < 7; ++k) instants.push_back(Instant(k));
  std::vector<Comparison> comparisons;
  const double published[2][2] = {{2.9e-4, 4.9e-4}, {2.0e-3, 3.19e-3}};
  for (const int first : {1, 10}) {
    StudyDefinition study = WallStudy(0, 2, 2, instants);
    AddSituations(study, first, [](int k) { return k + 1; });
    const RunResults results = RunStudy(study);
    const std::string occurrences = ", " + std::to_string(first) + " + 1 occurrences";
    comparisons.push_back(
        {"usage factor, inner end" + occurrences, published[first / 10][0], results.Usage(1), 1e-6});
    comparisons.push_back(
        {"usage factor, outer end" + occurrences, published[first / 10][1], results.Usage(3), 1e-6});
  }
  return comparisons;
}

// Membrane and bending of the stress that is linear between the three points, in closed form, at the outer
// end.
double LinearisedOuter(const double (&s)[3]) { return (s[0] + 2 * s[1] + s[2]) / 4 + (s[2] - s[0]) / 2; }

std::vector<Comparison> SituationsWithKe() {
  StudyDefinition wall = WallStudy(0, 2, 2, {Instant(0), Instant(2)});
  AddEvent(wall, 1, {1, 2});
  wall.sn_curves[0].points = {{5e2F, 1e3F}, {5e5F, 1.0F}};
  wall.elastic_plastic = ConstantSm(50.0, 2.0, 0.2);
  wall.options.activated_location = 2;
  const companion::PairRecord section = RunStudy(wall).location.pairs.at(0);

  StudyDefinition study = PointStudy({{{0.0}}});
  AddSituations(study, 10, [](int) { return kStoredStressCase; });
  std::vector<StoredState> states;
  for (const auto& instant : kInstants) states.push_back({instant[2], LinearisedOuter(instant)});
  Store(study, states);
  study.elastic_plastic = ConstantSm(50.0, 2.0, 0.2);
  const companion::LocationResult result = RunStudy(study).location;
  const companion::PairRecord& pair = result.pairs.at(0);
  return {{"Sn of the largest range, by a section of 65 points", 235.0, section.sn, 5e-4},
          {"Sn of the largest range, linearised values entered", 235.0, pair.sn, 1e-6},
          {"Ke of the largest range", 3.26667, pair.ke, 2e-6},
          {"alternating stress of the largest range", 343.0, pair.alternating_stress, 1e-6},
          {"usage factor", 8.30467e-3, result.usage.at(0), 1e-6}};
}

}  // namespace

std::vector<PublishedCase> DamageCases() {
  return {
      {"Tabulated S-N curve with mean stress", "code_aster, test szlz100a",
       "One uniaxial cycle from 600 to -500, ultimate strength 850; a curve of 17 points from (138, 1e6) to "
       "(2900, 10), "
       "log-log between them.",
       "", MeanStress},
      {"Biaxial state", "code_aster, test sslv135a",
       "One cycle between the plane states (100, -200) and (-100, 200), curve of the case before. The shear "
       "range of the plane "
       "of maximum shear is 300.",
       "The source takes 1.5 (150 + 50) = 300 by Matake's criterion. Here it is half of the stress intensity "
       "of the "
       "difference of the two states; the critical-plane criteria of the source are not computed.",
       BiaxialState},
      {"Elastic-plastic factor Ke", "code_aster, test szlz101a",
       "One uniaxial cycle from 0 to 1000, Sm 126, m 1.7, n 0.3. log10 N = 55.81 - 43.06 X + 11.91 X^2 - "
       "1.16 X^3 with X = "
       "log10 S, or Basquin's law 1 / N = 1.001730939e-14 S^4.065.",
       "The polynomial is tabulated in 800 points between S = 398 and 1995; straight lines between them "
       "change the cycles by less "
       "than 2e-6 of their value. The stress range is linearised already: Sn is the stored 1000, far above 3 "
       "m Sm, and Ke is 1 / n.",
       ElasticPlasticFactor},
      {"Two situations at the ends of a section", "code_aster, test rccm01c",
       "Uniaxial stresses at the inner end, the middle and the outer end of a wall: situation 1 passes "
       "through (90, 100, 110), (0, "
       "100, -90), (100, -50, -100) and zero, situation 2 through (90, 100, 90), (0, 100, -90) and (100, "
       "-50, -100). N = 5e5 / S.",
       "The source counts occurrences per instant, this program per event: an event of one loading for every "
       "instant reproduces "
       "it. An event of all instants would be used up by its largest range.",
       TwoSituations},
      {"Two situations with the elastic-plastic factor", "code_aster, test rccm01c",
       "Outer end of the case before, 10 + 1 occurrences, Sm 50, m 2, n 0.2.",
       "The source integrates the stress between the three points exactly. Linearised values of that "
       "integral are entered as stored "
       "conditions; the trapezoid rule of a section would need many points, with these three alone its "
       "bending part is too large "
       "and Sn is 290. Sn comes from a section of 65 points as well, whose bending part is 0.05 % too large.",
       SituationsWithKe},
  };
}

}  // namespace zentor::validation
