#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "input_context.h"
#include "row_source.h"

namespace zentor::companion {

namespace {

constexpr std::array<Choice, 3> kInterpolations = {{{"log-log", 0}, {"semi-log", 1}, {"linear", 2}}};
constexpr std::size_t kMostPoints = 800;

// A point that breaks the order stays as the measure of the next one, so that one wrong number is one error.
void AddCurvePoint(const RowSource& rows, AuthoredSnCurve& curve) {
  const float cycles = rows.Real(0, kPositive);
  const float stress = rows.Real(1, kPositive);
  curve.points.push_back({cycles, stress});
  if (curve.points.size() == 1) return;
  const auto& [last_cycles, last_stress] = curve.points[curve.points.size() - 2];
  if (cycles <= last_cycles) {
    rows.Fail(
        fmt::format("cycles are {}, expected more than the {} of the point above", cycles, last_cycles));
  }
  if (stress > last_stress) {
    rows.Fail(fmt::format("stress is {}, expected at most the {} of the point above; the curve must not rise",
                          stress, last_stress));
  }
}

// Sets that the solver has curves for: one per material number, 10 without materials, 1 with a built-in
// curve.
int SetCount(const StudyDefinition& study) {
  int highest = 0;
  for (const AuthoredMaterial& material : study.materials) highest = std::max(highest, material.number);
  return highest > 0 ? highest : kMaxOrdinaryCurves;
}

AuthoredSnCurve ReadCurve(InputContext& context, TableReader& table) {
  AuthoredSnCurve curve;
  curve.material = table.Integer("material", {1, SetCount(context.study)}, 1);
  curve.stress_ratio = table.Real("stress_ratio", kAnyReal, -1.0F);
  if (context.MultiStudy()) {
    curve.interpolation = table.Option("interpolation", kInterpolations, 0);
  } else {
    table.Refuse("interpolation",
                 "has a meaning only in the multi-study layout; here options.sn_interpolation holds "
                 "for all curves");
  }
  table.Text("source", "");
  constexpr std::array<Column, 2> kColumns = {{{"cycles"}, {"stress"}}};
  const auto rows = OpenRows(table, "points", context.folder, {kColumns}, context.files);
  const bool sound = rows && ReadRows(*rows, *context.errors, [&] { AddCurvePoint(*rows, curve); });
  if (sound && (curve.points.size() < 2 || curve.points.size() > kMostPoints)) {
    table.ReportText("points",
                     fmt::format("has {} points, expected 2 to {}", curve.points.size(), kMostPoints));
  }
  table.Finish();
  return curve;
}

}  // namespace

void ReadSnCurves(InputContext& context, TableReader& root) {
  std::vector<TableReader> tables = root.Tables("sn_curve");
  if (context.study.options.sn_curve_option != 0 && !tables.empty()) {
    return root.ReportText("sn_curve",
                           "is never used, expected none when options.sn_curves names a built-in curve");
  }
  if (!context.MultiStudy() && tables.size() > static_cast<std::size_t>(kMaxOrdinaryCurves)) {
    const TableReader& extra = tables[static_cast<std::size_t>(kMaxOrdinaryCurves)];
    context.errors->Add({context.file, extra.line(),
                         fmt::format("{} is one curve too many, expected at most {} in the ordinary layout",
                                     extra.path(), kMaxOrdinaryCurves)});
  }
  for (TableReader& table : tables) context.study.sn_curves.push_back(ReadCurve(context, table));
}

namespace {

void AddDesignStress(const RowSource& rows, ElasticPlasticData& data) {
  const float temperature = rows.Real(0, kAnyReal);
  const float sm = rows.Real(1, kPositive);
  data.sm_t.push_back({temperature, sm});
  if (data.sm_t.size() == 1) return;
  const auto& [last_temperature, last_sm] = data.sm_t[data.sm_t.size() - 2];
  if (temperature <= last_temperature) {
    rows.Fail(fmt::format("temperature is {}, expected more than the {} of the point above", temperature,
                          last_temperature));
  }
  if (sm > last_sm) {
    rows.Fail(fmt::format("sm is {}, expected at most the {} of the point above; the curve must not rise", sm,
                          last_sm));
  }
}

}  // namespace

void ReadElasticPlastic(InputContext& context, TableReader& root) {
  std::optional<TableReader> table = root.Table("elastic_plastic");
  if (!table) return;
  ElasticPlasticData& data = context.study.elastic_plastic;
  constexpr std::array<Column, 2> kColumns = {{{"temperature"}, {"sm"}}};
  const auto rows = OpenRows(*table, "sm_t", context.folder, {kColumns}, context.files);
  const bool sound = rows && ReadRows(*rows, *context.errors, [&] { AddDesignStress(*rows, data); });
  if (sound && (data.sm_t.size() < 2 || data.sm_t.size() > static_cast<std::size_t>(kMaxSmTCurvePoints))) {
    table->ReportText("sm_t",
                      fmt::format("has {} points, expected 2 to {}", data.sm_t.size(), kMaxSmTCurvePoints));
  }
  data.m = table->Real("m", {.above = 1.0});
  data.n = table->Real("n", {.above = 0.0, .below = 1.0});
  data.parameters_defined = true;
  table->Finish();
}

}  // namespace zentor::companion
