#include <fmt/format.h>

#include <array>
#include <cmath>

#include "input_context.h"
#include "row_source.h"

namespace zentor::companion {

namespace {

constexpr int kMostHistories = 1000;

// A point of the history; times must not go back.
void AddPoint(const RowSource& rows, AuthoredHistory& history) {
  enum : std::size_t { kTime, kValue };
  const bool timed = rows.Has(kTime);
  if (!history.values.empty() && timed == history.times.empty()) {
    rows.Fail(timed ? "has a time, expected none as in the rows above"
                    : "has no time, expected one as in every row");
  }
  history.values.push_back(rows.Real(kValue, kAnyReal));
  if (!timed) return;
  const float time = rows.Real(kTime, kAnyReal);
  if (!history.times.empty() && time < history.times.back()) {
    rows.Fail(
        fmt::format("time is {}, expected at least the {} of the row above", time, history.times.back()));
  }
  history.times.push_back(time);
}

AuthoredHistory ReadHistory(InputContext& context, TableReader& table, std::vector<int>& taken) {
  AuthoredHistory history;
  history.number = EntityNumber(table, taken.size(), kMostHistories, taken);
  const std::string name = table.Text("name", fmt::format("{}", history.number));
  if (!context.history_numbers.emplace(name, history.number).second) {
    table.Fail("name", "a name that no other history has");
  }
  constexpr std::array<Column, 2> kColumns = {{{"time", false}, {"value"}}};
  const auto rows = OpenRows(table, "points", context.folder, {kColumns}, context.files);
  while (rows->Next()) AddPoint(*rows, history);
  if (history.values.size() < 2) {
    table.FailText("points", fmt::format("has {} points, expected at least 2", history.values.size()));
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
  bool timed = true;
  std::vector<TableReader> tables = root.Tables("history");
  for (TableReader& table : tables) {
    context.study.histories.push_back(ReadHistory(context, table, taken));
    timed = timed && !context.study.histories.back().times.empty();
  }
  if (timed || context.study.options.shared_history) return;
  root.FailText("history",
                "has a history without times, expected times in all of them unless shared_history is true");
}

}  // namespace zentor::companion
