#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>

#include "authoring/fatigue_table.h"
#include "input_context.h"

namespace zentor::companion {

namespace {

// The stress case that a loading names: a case's name or number, "zero" or "stored"; kZeroStressCase after an
// error. Without the names of all cases a name may be well.
int StressCaseOf(const InputContext& context, TableReader& table) {
  constexpr std::string_view kKey = "case";
  const ConfigValue* value = table.Look(kKey);
  std::vector<std::string_view> names = {"zero", "stored"};
  for (const auto& [name, number] : context.case_numbers) names.push_back(name);
  const std::string wanted = fmt::format("a stress case: {}", OneOf(names));
  if (value != nullptr && value->kind == ConfigValue::Kind::kInteger) {
    for (const auto& [name, number] : context.case_numbers) {
      if (number == value->integer) return number;
    }
    if (context.cases_named) table.ReportAt(*value, kKey, "the number or name of a [[stress_case]]");
    return kZeroStressCase;
  }
  if (value == nullptr || value->kind != ConfigValue::Kind::kText) {
    table.Report(kKey, wanted);
    return kZeroStressCase;
  }
  if (value->text == "zero") return kZeroStressCase;
  if (value->text == "stored") return kStoredStressCase;
  const auto found = context.case_numbers.find(value->text);
  if (found != context.case_numbers.end()) return found->second;
  if (context.cases_named) table.ReportAt(*value, kKey, wanted + DidYouMean(value->text, names));
  return kZeroStressCase;
}

// A line of the study list; after an error there, of one of any length.
int StudyLine(const InputContext& context, TableReader& table) {
  const bool sound = context.Sound({Part::kStudyList});
  const int lines = sound ? static_cast<int>(context.study.studies.size()) : kMaxStudies;
  return table.Integer("study", {1, lines});
}

// Multi-study layout: a line of the study list and a load case of that study.
void ReadStudyAndCase(const InputContext& context, TableReader& table, AuthoredLoading& loading, int place) {
  const ErrorWatch watch(*context.errors);
  loading.study = StudyLine(context, table);
  loading.stress_case = table.Integer("case", {1, kZeroStressCase}, loading.study);
  if (!watch.Clean() || !context.Sound({Part::kStudyList})) return;
  if (IsExpressibleLoading(place, loading.stress_case, loading.study)) return;
  table.ReportText(
      "case", fmt::format("is {} of study {}, expected a load case equal to the line of the study list{}; "
                          "a study may stand in several lines of the list",
                          loading.stress_case, loading.study,
                          place == 1 ? " or above 1" : ", which every loading after an event's first takes"));
}

int LoadingNumber(InputContext& context, TableReader& table, std::vector<int>& taken) {
  const int next = taken.empty() ? 1 : *std::max_element(taken.begin(), taken.end()) + 1;
  if (!table.Has("number") && next > kMaxAuthoredLoadings) {
    context.errors->Add({table.file(), table.line(),
                         fmt::format("{} is loading {}, expected at most {} loadings in a study",
                                     table.path(), next, kMaxAuthoredLoadings)});
    return kMaxAuthoredLoadings;
  }
  const int number = table.Integer("number", {1, kMaxAuthoredLoadings}, std::min(next, kMaxAuthoredLoadings));
  if (table.Has("number") && std::find(taken.begin(), taken.end(), number) != taken.end()) {
    table.Report("number", "a number that no other loading has");
  }
  taken.push_back(number);
  return number;
}

void ReadConstantEvent(InputContext& context, TableReader& table, AuthoredEvent& event,
                       std::vector<int>& loadings) {
  event.cycles = table.Integer("cycles", {1});
  for (TableReader& entry : table.Tables("loadings")) {
    AuthoredLoading loading;
    if (context.MultiStudy()) {
      entry.Refuse("number",
                   "has no meaning in the multi-study layout, where loadings are numbered in their order");
      ReadStudyAndCase(context, entry, loading, static_cast<int>(event.loadings.size()) + 1);
      loading.number = LoadingNumber(context, entry, loadings);
    } else {
      entry.Refuse("study", "has a meaning only with layout = 'multi-study'");
      loading.stress_case = StressCaseOf(context, entry);
      loading.number = LoadingNumber(context, entry, loadings);
    }
    loading.scale = entry.Real("scale", kAnyReal, 1.0F);
    entry.Finish();
    event.loadings.push_back(loading);
  }
}

// A paired loading is a second loading that the solver forms from the first one.
void ReadPairing(InputContext& context, TableReader& table, AuthoredEvent& event,
                 std::vector<int>& loadings) {
  if (!context.MultiStudy()) {
    table.Refuse("ratio", "has a meaning only with layout = 'multi-study'");
    return;
  }
  event.paired = table.Has("ratio");
  if (!event.paired) return;
  event.ratio = table.Real("ratio", kAnyReal);
  if (event.loadings.size() != 1) {
    return table.ReportText("ratio",
                            fmt::format("pairs the event's only loading, but the event has {}, expected 1",
                                        event.loadings.size()));
  }
  loadings.push_back(loadings.back() + 1);
  if (loadings.back() > kMaxAuthoredLoadings) {
    table.ReportText(
        "ratio", fmt::format("adds loading {}, expected at most {}", loadings.back(), kMaxAuthoredLoadings));
  }
}

// The history that an event follows; null after an error, which may have been one of the history itself.
const AuthoredHistory* HistoryOf(const InputContext& context, TableReader& table) {
  constexpr std::string_view kKey = "history";
  const ConfigValue* value = table.Look(kKey);
  std::vector<std::string_view> names;
  for (const auto& [name, number] : context.history_numbers) names.push_back(name);
  const std::string wanted =
      names.empty() ? "a [[history]], of which there is none" : "a history: " + OneOf(names);
  if (value == nullptr) {
    table.ReportMissing(kKey, wanted);
    return nullptr;
  }
  int number = value->kind == ConfigValue::Kind::kInteger ? static_cast<int>(value->integer) : 0;
  if (value->kind == ConfigValue::Kind::kText) {
    const auto found = context.history_numbers.find(value->text);
    if (found != context.history_numbers.end()) number = found->second;
  }
  const bool sound = context.Sound({Part::kHistories});
  for (const AuthoredHistory& history : context.study.histories) {
    if (history.number == number) return sound ? &history : nullptr;
  }
  if (!sound) return nullptr;
  table.ReportAt(*value, kKey,
                 wanted + (value->kind == ConfigValue::Kind::kText ? DidYouMean(value->text, names) : ""));
  return nullptr;
}

// A run counts the cycles of every event's stretch on its own, and stops where there is none.
bool IsConstant(const AuthoredHistory& history, int start_point, int end_point) {
  const auto first = history.values.begin() + start_point - 1;
  return std::all_of(first, history.values.begin() + end_point,
                     [first](float value) { return value == *first; });
}

std::string NameOf(const InputContext& context, const AuthoredHistory& history) {
  const auto named = std::find_if(context.history_numbers.begin(), context.history_numbers.end(),
                                  [&history](const auto& one) { return one.second == history.number; });
  return named != context.history_numbers.end() ? named->first : fmt::to_string(history.number);
}

// The stretch of the history that counts.
void ReadStretch(const InputContext& context, TableReader& table, const AuthoredHistory* history,
                 AuthoredEvent& event) {
  constexpr int kAnyNumber = std::numeric_limits<std::int32_t>::max();
  const int points = history != nullptr ? static_cast<int>(history->values.size()) : kAnyNumber;
  const ErrorWatch watch(table.errors());
  event.start_point = table.Integer("start_point", {1, points}, 1);
  event.end_point = table.Integer("end_point", {1, points}, points);
  if (watch.Clean() && event.end_point <= event.start_point) {
    table.ReportText("end_point", fmt::format("is {}, expected a point after the start point {}",
                                              event.end_point, event.start_point));
  }
  if (watch.Clean() && history != nullptr && IsConstant(*history, event.start_point, event.end_point)) {
    table.ReportText("history",
                     fmt::format("'{}' is constant between points {} and {}: it has no cycle to count",
                                 NameOf(context, *history), event.start_point, event.end_point));
  }
  // The whole history is stored as such, so that it stays whole when the curve is exchanged.
  if (event.end_point == points) event.end_point = 0;
}

void ReadVariableEvent(InputContext& context, TableReader& table, AuthoredEvent& event) {
  AuthoredLoading loading;
  loading.number = event.number;
  if (context.MultiStudy()) {
    loading.study = StudyLine(context, table);
    loading.stress_case = table.Integer("case", {1, kMaxStressCase});
  } else {
    loading.stress_case = StressCaseOf(context, table);
  }
  loading.scale = table.Real("scale", kAnyReal, 1.0F);
  event.loadings.push_back(loading);
  const AuthoredHistory* history = HistoryOf(context, table);
  event.history = history != nullptr ? history->number : 1;
  event.cycles = table.Integer("repetitions", {1}, 1);
  ReadStretch(context, table, history, event);
  event.start_time = table.Real("start_time", kNotNegative, 0.0F);
  event.history_setting = table.Integer("setting", {0}, 0);
  for (const std::string_view key : {"cycles", "loadings", "ratio"}) {
    table.Refuse(key, "has a meaning only with load_amplitude = 'constant'");
  }
}

}  // namespace

void ReadEvents(InputContext& context, TableReader& root) {
  std::vector<int> taken;
  std::vector<int> loadings;
  const int most = context.VariableAmplitude() ? kMaxAuthoredVariableEvents : kMaxAuthoredEvents;
  const ErrorWatch watch(*context.errors);
  std::vector<TableReader> tables = root.Tables("event");
  if (tables.empty() && watch.Clean()) root.ReportMissing("event", "at least one table [[event]]");
  for (TableReader& table : tables) {
    AuthoredEvent event;
    event.number = EntityNumber(table, taken.size(), most, taken);
    table.Text("name", "");
    if (context.VariableAmplitude()) {
      ReadVariableEvent(context, table, event);
    } else {
      ReadConstantEvent(context, table, event, loadings);
      ReadPairing(context, table, event, loadings);
      for (const std::string_view key :
           {"history", "repetitions", "start_point", "end_point", "start_time"}) {
        table.Refuse(key, "has a meaning only with load_amplitude = 'variable'");
      }
    }
    table.Finish();
    context.study.events.push_back(std::move(event));
  }
}

}  // namespace zentor::companion
