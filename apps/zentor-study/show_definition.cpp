// The fatigue definition of a study as tables: events with their loadings, S-N curves, locations.
#include <fmt/format.h>
#include <fmt/ostream.h>

#include "authoring/fatigue_table.h"
#include "authoring/master_table.h"
#include "authoring/study_tables.h"
#include "show.h"

namespace zentor::companion {

namespace {

namespace ft = fatigue_table;

constexpr int kLoadings = kMaxAuthoredLoadings;
constexpr int kTextWidth = 30;

class Definition {
 public:
  Definition(StudyTables& tables, std::ostream& out) : tables_(tables), out_(out) {}

  int Int(int id, int field) { return tables_.Int(DbTable::kFtc, id, field); }
  float Real(int id, int field) { return tables_.Real(DbTable::kFtc, id, field); }
  bool Has(int id) { return tables_.Has(DbTable::kFtc, id); }

  void OrdinaryEvents();
  void MultiStudyEvents();
  void HistoryEvents();
  void OrdinaryCurves();
  void MultiStudyCurves();
  void ElasticPlastic();
  void Locations();

 private:
  void EventHead(int event);
  void Curve(int number, int material, float ratio, int points, const std::string& interpolation);
  void Loading(int loading, int load_case, float scale) {
    fmt::print(out_, "      loading {:>2}  load case {:>4}  scale factor {}\n", loading, load_case, scale);
  }

  StudyTables& tables_;
  std::ostream& out_;
};

std::string InterpolationName(int code) {
  if (code == 0) return "log-log";
  return code == 1 ? "semi-log" : "linear";
}

void Definition::EventHead(int event) {
  fmt::print(out_, "  event {:>2}: {} cycles", event, Int(event, ft::kEventCycles));
  const int stored = Int(event, ft::kEventNumber);
  if (stored != event) fmt::print(out_, "  (stored as event {}: not listed by a run)", stored);
  fmt::print(out_, "\n");
}

void Definition::OrdinaryEvents() {
  fmt::print(out_, "\nEvents\n");
  for (int event = 1; event <= kMaxAuthoredEvents; ++event) {
    if (!Has(event)) continue;
    EventHead(event);
    for (int k = 1; k <= kLoadings; ++k) {
      if (Int(ft::kMembership + event, ft::kFirstLoading + k - 1) != k) continue;
      Loading(k, Int(ft::kLoadCases + event, ft::kFirstLoading + k - 1), Real(ft::kOptions, k + 1));
    }
  }
}

void Definition::MultiStudyEvents() {
  fmt::print(out_, "\nEvents\n");
  for (int event = 1; event <= kMaxAuthoredEvents; ++event) {
    if (!Has(event)) continue;
    fmt::print(out_, "  event {:>2}: {} cycles", event, Int(event, ft::kEventCycles));
    const bool paired = Int(event, ft::kEventPairingFlag) == 0;
    if (paired) fmt::print(out_, ", paired with {} times its loading", Real(event, ft::kEventRatio));
    fmt::print(out_, "\n");
    for (int k = 1; k <= kLoadings; ++k) {
      const int entry = Int(ft::kLoadCases + event, ft::kFirstLoading + k - 1);
      const int first_case = k == 1 ? Int(event, ft::kEventNumber) : 0;
      if (entry <= 0 && first_case <= 0) continue;
      fmt::print(out_, "      study {:>3}  load case {:>4}  scale factor {}\n", entry,
                 entry <= 0 || first_case > 1 ? first_case : entry, Real(ft::kMembership + event, k + 1));
    }
  }
}

void Definition::HistoryEvents() {
  fmt::print(out_, "\nEvents (each with the history of a curve)\n");
  for (int event = 1; event <= kMaxAuthoredVariableEvents; ++event) {
    if (Int(event, ft::kEventLoadCase) == 0) continue;
    const int first = std::max(1, Int(event, ft::kEventStartPoint));
    const int last = Int(event, ft::kEventEndPoint);
    fmt::print(
        out_,
        "  event {:>2}: curve {}, points {} to {}, {} repetitions from time {}, load case {}, time step {}, "
        "scale factor {}\n",
        event, Int(event, ft::kEventHistory), first, last == 0 ? "the last" : std::to_string(last),
        Int(event, ft::kEventRepetitions), Real(event, ft::kEventStartTime), Int(event, ft::kEventLoadCase),
        tables_.Int(DbTable::kMas, master::kTimeStepEntity, master::kFirstTimeStep + event - 1),
        Real(event, ft::kEventScale));
  }
}

void Definition::Curve(int number, int material, float ratio, int points, const std::string& interpolation) {
  fmt::print(out_, "  curve {:>2}: material set {}, stress ratio {}, {} points, {}\n", number, material,
             ratio, points, interpolation);
}

void Definition::OrdinaryCurves() {
  fmt::print(out_, "\nS-N curves\n");
  const std::string interpolation = InterpolationName(tables_.Int(
      DbTable::kMas, master::kSnInterpolationDefault.entity, master::kSnInterpolationDefault.field));
  for (int c = 1; c <= kMaxOrdinaryCurves; ++c) {
    const int points = Int(ft::kCurves, ft::kCurvePoints + c);
    if (points < 1) continue;
    Curve(c, Int(ft::kCurves, ft::kCurveMaterial + c), Real(ft::kCurves, ft::kCurveRatio + c), points,
          interpolation);
    for (int i = 1; i <= std::min(points, kTextWidth); ++i) {
      fmt::print(out_, "      N {:>13}  S {:>13}\n", Real(ft::kCurveCycles + 2 * c, i + 1),
                 Real(ft::kCurveStresses + 2 * c, i + 1));
    }
  }
}

void Definition::MultiStudyCurves() {
  fmt::print(out_, "\nS-N curves\n");
  using namespace curve_table;
  const int highest = tables_.MaxId(DbTable::kSnc);
  for (int c = 1; c <= highest; ++c) {
    if (!tables_.Has(DbTable::kSnc, c)) continue;
    const auto number = [&](int field) { return tables_.Int(DbTable::kSnc, c, field); };
    const auto real = [&](int field) { return tables_.Real(DbTable::kSnc, c, field); };
    Curve(c, number(kMaterial), real(kRatio), number(kPointCount), InterpolationName(number(kInterpolation)));
    for (int i = 0; i < std::min(number(kPointCount), kTextWidth); ++i) {
      fmt::print(out_, "      N {:>13}  S {:>13}\n", real(kFirstPoint + 2 * i),
                 real(kFirstPoint + 2 * i + 1));
    }
  }
}

void Definition::ElasticPlastic() {
  const int points = Int(ft::kCurves, ft::kSmTCount);
  if (points < 1) return;
  fmt::print(out_, "\nSm-T curve: {} points, m {}, n {}{}\n", points, Real(ft::kCurves, ft::kParameterM),
             Real(ft::kCurves, ft::kParameterN),
             Int(ft::kCurves, ft::kParameterFlag) == 0 ? " (parameters not given)" : "");
  for (int i = 1; i <= std::min(points, kMaxSmTCurvePoints); ++i) {
    fmt::print(out_, "      T {:>13}  Sm {:>13}\n", Real(ft::kSmTTemperatures, i + 1),
               Real(ft::kSmTValues, i + 1));
  }
}

void Definition::Locations() {
  bool any = false;
  for (int l = 1; l <= kMaxAuthoredLocations; ++l) {
    const int id = ft::kLocations + l;
    if (!Has(id)) continue;
    if (!any) fmt::print(out_, "\nLocations\n");
    any = true;
    fmt::print(out_, "  location {:>2}: node {}, stress concentration factors {} {} {}", l,
               Int(id, ft::kLocationNode), Real(id, ft::kLocationStressFactor),
               Real(id, ft::kLocationStressFactor + 1), Real(id, ft::kLocationStressFactor + 2));
    const int section = Int(id, ft::kLocationSection);
    if (section > 0) {
      fmt::print(out_, ", section {}: {} points, radius {}", section, Int(id, ft::kLocationPathPoints),
                 Real(id, ft::kLocationRadius));
      if (Int(id, ft::kLocationBendingFlag) == 1) fmt::print(out_, ", no bending along the path");
    }
    int stored = 0;
    for (int k = 1; k <= kLoadings; ++k) stored += Has(ft::kConditions + (l - 1) * kLoadings + k) ? 1 : 0;
    if (stored > 0) fmt::print(out_, ", stored conditions for {} loadings", stored);
    fmt::print(out_, "\n");
  }
}

}  // namespace

void ShowDefinition(StudyTables& tables, const StudySettings& settings, std::ostream& out) {
  Definition definition(tables, out);
  const FatigueProperties& p = settings.properties;
  if (IsVariableAmplitude(p)) {
    definition.HistoryEvents();
  } else if (IsMultiStudy(p)) {
    definition.MultiStudyEvents();
  } else {
    definition.OrdinaryEvents();
  }
  if (!UsesBuiltInCurve(p)) {
    if (settings.has_study_list) {
      definition.MultiStudyCurves();
    } else {
      definition.OrdinaryCurves();
    }
  }
  definition.ElasticPlastic();
  if (!IsMultiStudy(p)) definition.Locations();
}

}  // namespace zentor::companion
