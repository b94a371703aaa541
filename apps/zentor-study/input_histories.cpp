#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "input_context.h"
#include "row_source.h"

namespace zentor::companion {

namespace {

constexpr int kMostHistories = 1000;

// Columns of the points.
enum : std::size_t { kTime, kValue };

// Whether the definition holds the points as rows of one value each.
bool OnlyValues(const ConfigValue* points) {
  return points != nullptr && points->kind == ConfigValue::Kind::kArray && !points->items.empty() &&
         std::all_of(points->items.begin(), points->items.end(), [](const ConfigValue& row) {
           return row.kind == ConfigValue::Kind::kArray && row.items.size() == 1;
         });
}

// A point of the history; times must not go back.
void AddPoint(const RowSource& rows, AuthoredHistory& history) {
  const bool timed = rows.Has(kTime);
  if (!history.values.empty() && timed == history.times.empty()) {
    rows.Fail(timed ? "has a time, expected none as in the rows above"
                    : "has no time, expected one as in every row");
  }
  const float value = rows.Real(kValue, kAnyReal);
  const float time = timed ? rows.Real(kTime, kAnyReal) : 0.0F;
  history.values.push_back(value);
  if (!timed) return;
  history.times.push_back(time);
  if (history.times.size() == 1) return;
  const float before = history.times[history.times.size() - 2];
  if (time < before) {
    rows.Fail(fmt::format("time is {}, expected at least the {} of the row above", time, before));
  }
}

AuthoredHistory ReadHistory(InputContext& context, TableReader& table, std::vector<int>& taken) {
  AuthoredHistory history;
  history.number = EntityNumber(table, taken.size(), kMostHistories, taken);
  const std::string name = table.Text("name", fmt::format("{}", history.number));
  if (!context.history_numbers.emplace(name, history.number).second) {
    table.Report("name", "a name that no other history has");
  }
  constexpr std::array<Column, 2> kColumns = {{{"time", false}, {"value"}}};
  const bool only_values = OnlyValues(table.Look("points"));
  const std::span<const Column> columns = std::span(kColumns).subspan(only_values ? kValue : kTime);
  const auto rows = OpenRows(table, "points", context.folder, {columns}, context.files);
  const bool sound = rows && ReadRows(*rows, *context.errors, [&] {
                       if (!only_values) return AddPoint(*rows, history);
                       history.values.push_back(rows->Real(0, kAnyReal));
                     });
  if (sound && history.values.size() < 2) {
    table.ReportText("points", fmt::format("has {} points, expected at least 2", history.values.size()));
  }
  table.Finish();
  return history;
}

}  // namespace

void ReadHistories(InputContext& context, TableReader& root) {
  if (!context.VariableAmplitude()) {
    root.Refuse("history", "has a meaning only with load_amplitude = 'variable'");
    return;
  }
  std::vector<int> taken;
  for (TableReader& table : root.Tables("history")) {
    const ErrorWatch watch(*context.errors);
    context.study.histories.push_back(ReadHistory(context, table, taken));
    const AuthoredHistory& history = context.study.histories.back();
    if (!watch.Clean() || !history.times.empty() || context.study.options.shared_history) continue;
    table.ReportText("points",
                     fmt::format("of history '{}' have no times, expected a time in every row unless "
                                 "options.shared_history is true",
                                 table.Text("name", fmt::format("{}", history.number))));
  }
}

}  // namespace zentor::companion
