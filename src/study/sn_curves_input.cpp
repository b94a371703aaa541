#include "study/sn_curves_input.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "database/edit.h"
#include "study/model_input.h"
#include "study/study_messages.h"

namespace zentor {
namespace {

constexpr double kSmallestValue = 1e-20;  // cycles and stresses are raised to it: their logarithms are taken
constexpr int kLogLog = 0;
constexpr int kSemiLog = 1;

// Returns the set that serves all materials, 0 when each has its own. Stops the run when a set that needs a
// curve has none.
int CheckSets(RunContext& run, const StudyState& study, std::span<const SnCurveSource> curves) {
  const int set_count = MaterialSetCount(study);
  OneBased<int> count(set_count);
  for (const SnCurveSource& curve : curves) ++count[curve.set];
  const auto sets_with_curves = count.size() - std::count(count.begin(), count.end(), 0);
  int study_wide = 0;
  for (int set = 1; set_count > 1 && set <= set_count; ++set) {
    if (count[set] > 0) study_wide = set;
  }
  const bool each_needs_one = IsMultiStudy(study.properties) && sets_with_curves != 1;
  if (set_count > 1 && !each_needs_one) return study_wide;
  for (int set = 1; set <= set_count; ++set) {
    if (count[set] == 0) StopWithNumber(run.services, message::kSnCurveSetMissing, set);
  }
  return 0;
}

void EchoHead(TextRecordFile& listing, const SnCurveSource& curve) {
  listing.Blank(4);
  listing.Line(Edit().Text("         S - N   C U R V E  #").I(6, curve.number).str());
  listing.Blank(2);
  listing.Line(Edit()
                   .Text("(Material set #")
                   .I(5, curve.set)
                   .Text("; Stress ratio:")
                   .F(5, 2, curve.ratio)
                   .Text(")")
                   .str());
  listing.Line(curve.interpolation == kLogLog    ? "          (Log-Log interplolation)"
               : curve.interpolation == kSemiLog ? "          (Semi-Log interplolation)"
                                                 : "          (Linear interplolation)");
  listing.Blank(2);
  listing.ListDirected(" POINT No.   No. of Cycles     Alt. Stress");
  listing.ListDirected(" ---------   -------------     -----------");
}

[[noreturn]] void StopForRisingCurve(RunContext& run, const SnCurveSource& curve) {
  run.listing.ListDirected("");
  run.listing.Line(Edit()
                       .Text(" ERROR: S-N curve (for mat. ")
                       .I(4, curve.set)
                       .Text(" & ratio ")
                       .F(5, 2, curve.ratio)
                       .Text(" ) is defined improperly")
                       .str());
  run.listing.ListDirected("        (it must decrease monotonically)    ");
  StopWithNumber(run.services, message::kSnCurveNotDecreasing, curve.set);
}

// NaN counts as too small.
double Raised(float value) { return value >= kSmallestValue ? value : kSmallestValue; }

void AddPoint(SnCurve& curve, double cycles, double stress) {
  if (curve.x.empty()) {
    curve.first_cycles = cycles;
    curve.first_stress = stress;
  }
  curve.last_cycles = cycles;
  curve.last_stress = stress;
  const bool log_cycles = curve.interpolation == kLogLog || curve.interpolation == kSemiLog;
  curve.x.push_back(log_cycles ? std::log10(cycles) : cycles);
  curve.y.push_back(curve.interpolation == kLogLog ? std::log10(stress) : stress);
}

SnCurve WithoutPoints(const SnCurveSource& source) {
  SnCurve curve;
  curve.number = source.number;
  curve.interpolation = source.interpolation;
  curve.ratio = source.ratio;
  return curve;
}

// Echoes the curve while it is prepared, so that the listing of a bad one ends with its bad point.
SnCurve EchoAndPrepare(RunContext& run, const SnCurveSource& source) {
  SnCurve curve = WithoutPoints(source);
  EchoHead(run.listing, source);
  for (std::size_t i = 0; i < source.cycles.size(); ++i) {
    run.listing.Line(Edit()
                         .I(6, static_cast<std::int64_t>(i) + 1)
                         .X(7)
                         .E(10, 3, source.cycles[i])
                         .X(8)
                         .E(10, 3, source.stresses[i])
                         .str());
    const double stress = Raised(source.stresses[i]);
    if (i > 0 && stress > curve.last_stress) StopForRisingCurve(run, source);
    AddPoint(curve, Raised(source.cycles[i]), stress);
  }
  return curve;
}

// A study without any curve keeps what it has of them: a single location's run shows it in place of results.
void KeepOnePointSlots(RunContext& run, const StudyState& study, SnCurveStore& store) {
  for (const SnCurveSource& source : ReadOnePointSlots(run, study)) {
    SnCurve curve = WithoutPoints(source);
    AddPoint(curve, Raised(source.cycles[0]), Raised(source.stresses[0]));
    store.sets[source.set].push_back(std::move(curve));
    store.point_count = 1;
  }
}

}  // namespace

void ReadSnCurves(RunContext& run, StudyState& study) {
  SnCurveStore& store = study.sn_curves;
  store = SnCurveStore();
  store.sets.Assign(MaterialSetCount(study));
  if (UsesBuiltInCurve(study.properties)) return;
  const std::vector<SnCurveSource> curves = ReadSnCurveSources(run, study);
  store.study_wide_set = CheckSets(run, study, curves);
  for (const SnCurveSource& source : curves) {
    store.sets[source.set].push_back(EchoAndPrepare(run, source));
    store.point_count = std::max(store.point_count, static_cast<int>(source.cycles.size()));
    study.properties.SnInterpolationDefault = source.interpolation;
  }
  if (curves.empty()) KeepOnePointSlots(run, study, store);
}

}  // namespace zentor
