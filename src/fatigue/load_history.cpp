#include "fatigue/load_history.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "database/bytes.h"
#include "database/file_units.h"
#include "fatigue/history_messages.h"
#include "fatigue/reversals.h"
#include "services/faults.h"
#include "services/stop.h"

namespace zentor {
namespace {

constexpr Extension kHistoryFile = ".FLH";
constexpr std::int64_t kWordBytes = 4;
constexpr std::int64_t kCurveCountWord = 1;
constexpr std::int64_t kTimesFlagWord = 2;
constexpr std::int64_t kDirectoryWord = 10;  // two words per curve: start word, number of points
constexpr std::size_t kInitialCapacity = 10000;
constexpr std::size_t kGrowthStep = 30000;
constexpr int kFewestSteps = 2;  // between the start and the end point of an event on a shared history

std::int64_t FileWords(RunContext& run, const LoadHistory& history) {
  return static_cast<std::int64_t>(FileSize(run.units, history.unit)) / kWordBytes;
}

std::int32_t ReadWord(RunContext& run, const LoadHistory& history, std::int64_t word) {
  std::array<std::byte, kWordBytes> bytes{};
  if (FileRead64(run.units, history.unit, bytes, word * kWordBytes) != bytes.size()) {
    throw InputFault(history.path, "size", std::to_string(FileSize(run.units, history.unit)) + " bytes",
                     "at least " + std::to_string((word + 1) * kWordBytes));
  }
  return LoadInt(bytes.data());
}

// Words that were checked to lie inside the file.
std::vector<float> ReadReals(RunContext& run, const LoadHistory& history, std::int64_t word,
                             std::int64_t count) {
  std::vector<float> numbers(static_cast<std::size_t>(count));
  const auto bytes = std::as_writable_bytes(std::span(numbers));
  const std::size_t read = FileRead64(run.units, history.unit, bytes, word * kWordBytes);
  if (read != bytes.size()) {
    throw InputFault(history.path, "word " + std::to_string(word),
                     std::to_string(read) + " bytes up to the end", std::to_string(bytes.size()));
  }
  return numbers;
}

struct CurveEntry {
  std::int64_t start = 0;  // first word
  std::int64_t points = 0;
};

void RequireInsideFile(RunContext& run, const LoadHistory& history, int k, const CurveEntry& entry) {
  const std::string name = "curve " + std::to_string(k);
  const std::int64_t first = kDirectoryWord + 2 * static_cast<std::int64_t>(history.curve_start.size());
  const std::int64_t words = FileWords(run, history);
  if (entry.start < first || entry.start >= words) {
    throw InputFault(
        history.path, name + ", start word", std::to_string(entry.start),
        std::to_string(first) + " or more and inside the file's " + std::to_string(words) + " words");
  }
  const std::int64_t room = (words - entry.start) / 2;
  if (entry.points > room) {
    throw InputFault(history.path, name + ", number of points", std::to_string(entry.points),
                     "2 to " + std::to_string(room));
  }
}

CurveEntry ReadEntry(RunContext& run, const LoadHistory& history, int k) {
  if (!history.curve_start.Holds(k)) StopWithNumberAndBeep(run.services, message::kHistoryCurveInvalid, k);
  const std::int64_t word = kDirectoryWord + 2 * (static_cast<std::int64_t>(k) - 1);
  const CurveEntry entry = {ReadWord(run, history, word), ReadWord(run, history, word + 1)};
  if (entry.start == 0 || entry.points < 2) {
    StopWithNumberAndBeep(run.services, message::kHistoryCurveInvalid, k);
  }
  RequireInsideFile(run, history, k, entry);
  return entry;
}

std::string PlaceOf(int k, std::ptrdiff_t index, const char* what) {
  return "curve " + std::to_string(k) + ", " + what + " of point " + std::to_string(index + 1);
}

void RequireFinite(const LoadHistory& history, int k, std::span<const float> numbers, const char* what) {
  const auto bad = std::find_if_not(numbers.begin(), numbers.end(), [](float v) { return std::isfinite(v); });
  if (bad == numbers.end()) return;
  throw InputFault(history.path, PlaceOf(k, bad - numbers.begin(), what), std::to_string(*bad),
                   "a finite number");
}

// Equal times are accepted here; the combined load table settles them.
void RequireRising(const LoadHistory& history, int k, std::span<const float> times) {
  const auto back = std::is_sorted_until(times.begin(), times.end());
  if (back == times.end()) return;
  throw InputFault(history.path, PlaceOf(k, back - times.begin(), "time"), std::to_string(*back),
                   "at least " + std::to_string(*(back - 1)));
}

// The capacity grows in large steps, so that many short curves do not move the store each time.
void AppendTo(std::vector<float>& store, std::span<const float> numbers) {
  const std::size_t size = store.size() + numbers.size();
  if (size > store.capacity()) {
    const std::size_t missing = size - store.capacity();
    store.reserve(store.capacity() + (missing + kGrowthStep - 1) / kGrowthStep * kGrowthStep);
  }
  store.insert(store.end(), numbers.begin(), numbers.end());
}

// Entry numbers are ints; a store that outgrows them cannot be addressed.
void AddCurve(LoadHistory& history, int k, std::span<const float> values) {
  if (values.size() > std::numeric_limits<int>::max() - history.values.size()) throw std::bad_alloc();
  history.curve_start[k] = static_cast<int>(history.values.size()) + 1;
  history.curve_points[k] = static_cast<int>(values.size());
  AppendTo(history.values, values);
}

// First and last point of an event on its curve, with "the first" and "the last" resolved.
struct Stretch {
  int start = 0, end = 0;
};

Stretch StretchOnCurve(RunContext& run, const Event& event, int points) {
  const Stretch stretch = {event.start_point == 0 ? 1 : event.start_point,
                           event.end_point == 0 ? points : event.end_point};
  if (stretch.start < 1 || stretch.end > points || stretch.end < stretch.start) {
    StopWithNumberAndBeep(run.services, message::kHistoryCurveInvalid, event.curve);
  }
  return stretch;
}

void SetStretch(Event& event, int curve_start, const Stretch& stretch) {
  event.first = curve_start + stretch.start - 1;
  event.last = curve_start + stretch.end - 1;
}

// Points of the curve become reversals: a start point moves to the reversal at or before it, and so does an
// end point unless it is the code for the last one.
void MapEventsToReversals(RunContext& run, EventTable& definition, int k, std::span<const std::int32_t> map,
                          int curve_start, bool filtered) {
  for (int e = 1; e <= definition.event_count; ++e) {
    Event& event = definition.events[e];
    if (event.curve != k) continue;
    const Stretch points = StretchOnCurve(run, event, static_cast<int>(map.size()));
    const Stretch reversals = {map[static_cast<std::size_t>(points.start - 1)],
                               map[static_cast<std::size_t>(points.end - 1)]};
    if (reversals.end - reversals.start < kFewestSteps) {
      StopWithNumber(run.services, filtered ? message::kTooFewReversalsFiltered : message::kTooFewReversals,
                     e);
    }
    SetStretch(event, curve_start, reversals);
  }
}

void StoreReversals(RunContext& run, StudyState& study, int k, std::vector<float> values,
                    LoadHistory& history) {
  const float threshold = FilterThreshold(values, study.properties.FilterPercent);
  std::vector<std::int32_t> map(values.size());
  const ReversalCount reversals = ExtractReversalsWithMap(values, threshold, values, map);
  if (reversals.condition == HistoryCondition::kConstant)
    StopWithNumber(run.services, message::kTooFewReversals, k);
  values.resize(reversals.count);
  AddCurve(history, k, values);
  MapEventsToReversals(run, study.definition, k, map, history.curve_start[k],
                       threshold > kSmallestFilterPercent);
}

void StoreCurve(RunContext& run, int k, const CurveEntry& entry, std::span<const float> values,
                LoadHistory& history) {
  if (history.has_times) {
    const std::vector<float> times = ReadReals(run, history, entry.start, entry.points);
    RequireFinite(history, k, times, "time");
    RequireRising(history, k, times);
    AppendTo(history.times, times);
  }
  AddCurve(history, k, values);
}

}  // namespace

void OpenHistoryFile(RunContext& run, LoadHistory& history) {
  if (!run.services.StudyFileExists(kHistoryFile)) {
    StopWithMessageAndBeep(run.services, message::kHistoryFileMissing);
  }
  history = LoadHistory();
  history.path = run.services.StudyFileName(kHistoryFile);
  const OpenedPath opened = FileOpenPath(run.units, history.path);
  if (opened.unit == 0) throw platform::FileError(history.path, "open", opened.error);
  history.unit = opened.unit;
  const std::int32_t curves = ReadWord(run, history, kCurveCountWord);
  history.has_times = ReadWord(run, history, kTimesFlagWord) != 0;
  const std::int64_t room = std::max<std::int64_t>(0, (FileWords(run, history) - kDirectoryWord) / 2);
  if (curves < 0 || curves > room) {
    throw InputFault(history.path, "header word 1, number of curves", std::to_string(curves),
                     "0 to " + std::to_string(room));
  }
  history.values.reserve(kInitialCapacity);
  history.curve_start.Assign(static_cast<std::size_t>(curves));
  history.curve_points.Assign(static_cast<std::size_t>(curves));
}

int LoadCurve(RunContext& run, StudyState& study, int k, LoadHistory& history) {
  if (history.curve_start.Holds(k) && history.curve_start[k] != 0) return history.curve_points[k];
  const CurveEntry entry = ReadEntry(run, history, k);
  std::vector<float> values = ReadReals(run, history, entry.start + entry.points, entry.points);
  RequireFinite(history, k, values, "value");
  if (study.properties.SharedHistory == 1) {
    StoreReversals(run, study, k, std::move(values), history);
  } else {
    StoreCurve(run, k, entry, values, history);
  }
  return history.curve_points[k];
}

void LoadEventHistories(RunContext& run, StudyState& study, LoadHistory& history) {
  OpenHistoryFile(run, history);
  for (int e = 1; e <= study.definition.event_count; ++e) {
    PassGate(run.services);
    Event& event = study.definition.events[e];
    const int points = LoadCurve(run, study, event.curve, history);
    if (study.properties.SharedHistory == 1) continue;  // set with the curve's reversals
    SetStretch(event, history.curve_start[event.curve], StretchOnCurve(run, event, points));
  }
  FileClose(run.units, history.unit);
  history.unit = 0;
}

}  // namespace zentor
