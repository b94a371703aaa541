#include "fatigue/combined_load_table.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "fatigue/history_messages.h"
#include "services/faults.h"
#include "services/stop.h"

namespace zentor {
namespace {

constexpr double kEndTolerance = 0.001;     // ends of histories this close count as one
constexpr double kSameRow = 1e-7;           // points this close behind a row's time belong to it
constexpr double kEqualTimes = 1e-20;       // points this close are moved apart
constexpr double kNoInterpolation = 1e-30;  // points closer than this cannot be interpolated between
constexpr double kTieShare = 100.0;         // a tied point moves by this share of the next step
constexpr double kBeforeFirstRow = -1.0;
constexpr std::size_t kInitialRows = 10000;
constexpr std::size_t kRowsBetweenGates = 1024;

// Where an event stands: its current point (from 0) and its current repetition (from 1).
struct Cursor {
  std::size_t point = 0;
  std::int64_t repetition = 1;
};

double EndTime(const EventHistory& e) { return static_cast<double>(e.times.back()) + e.start_time; }

bool EndTogether(std::span<const EventHistory> events) {
  return std::adjacent_find(events.begin(), events.end(), [](const EventHistory& a, const EventHistory& b) {
           return std::abs(EndTime(b) - EndTime(a)) > kEndTolerance;
         }) == events.end();
}

bool RepeatAlike(std::span<const EventHistory> events) {
  return std::adjacent_find(events.begin(), events.end(), [](const EventHistory& a, const EventHistory& b) {
           return a.repetitions != b.repetitions;
         }) == events.end();
}

bool NeedsUnrolling(std::span<const EventHistory> events) {
  const auto most = std::max_element(
      events.begin(), events.end(),
      [](const EventHistory& a, const EventHistory& b) { return a.repetitions < b.repetitions; });
  return most->repetitions >= 2 && !(EndTogether(events) && RepeatAlike(events));
}

// Merges step by step. Every added row moves at least the event that set its time on to its next point, and
// an event has finitely many points (repetitions included), so the rows come to an end. Between two rows ties
// are broken once at most: a tie that is still there (no later point to move towards, or a step too small for
// single precision) makes a row of its own at the same time.
class Merger {
 public:
  Merger(std::span<EventHistory> events, bool unrolled, CombinedLoadTable& table)
      : events_(events), cursors_(events.size()), unrolled_(unrolled), table_(table) {}

  CombineResult Run(std::uint64_t max_rows, const std::function<void()>& pass_gate) {
    double previous = kBeforeFirstRow;
    while (AnyActive()) {
      std::size_t leader = FirstToCome();
      double t = CurrentTime(leader);
      if (!unrolled_ && t == previous) {
        BreakTies();
        leader = FirstToCome();
        t = CurrentTime(leader);
      }
      if (unrolled_ && t <= previous && !restarted_) return {CombineStatus::kTimeNotIncreasing, 0, true};
      if (table_.points == max_rows) return {CombineStatus::kMemory, 0, unrolled_};
      if (static_cast<std::size_t>(table_.points) % kRowsBetweenGates == 0) pass_gate();
      const int stuck = AddRow(leader, t);
      if (stuck != 0) return {CombineStatus::kEqualTimes, stuck, unrolled_};
      previous = t;
    }
    return {CombineStatus::kDone, 0, unrolled_};
  }

 private:
  bool Active(std::size_t e) const {
    return cursors_[e].point < events_[e].times.size() &&
           (!unrolled_ || cursors_[e].repetition <= events_[e].repetitions);
  }
  bool AnyActive() const {
    for (std::size_t e = 0; e < events_.size(); ++e) {
      if (Active(e)) return true;
    }
    return false;
  }
  bool Started(std::size_t e) const { return cursors_[e].point != 0 || cursors_[e].repetition > 1; }

  double TimeOf(std::size_t e, std::size_t point) const {
    const EventHistory& event = events_[e];
    return static_cast<double>(cursors_[e].repetition - 1) * static_cast<double>(event.times.back()) +
           static_cast<double>(event.times[point]) + event.start_time;
  }
  double CurrentTime(std::size_t e) const { return TimeOf(e, cursors_[e].point); }

  // The first event with the smallest current time. REQUIRES: AnyActive().
  std::size_t FirstToCome() const {
    std::size_t leader = events_.size();
    double smallest = 0.0;
    for (std::size_t e = 0; e < events_.size(); ++e) {
      if (!Active(e)) continue;
      const double t = CurrentTime(e);
      if (leader == events_.size() || t < smallest) {
        leader = e;
        smallest = t;
      }
    }
    return leader;
  }

  // How far the step at a tied point reaches: to the next point, or, at the last one, as far as the step
  // before.
  static double StepAt(std::span<const float> times, std::size_t c) {
    const auto time = [times](std::size_t i) { return static_cast<double>(times[i]); };
    if (c + 1 < times.size()) return time(c + 1) - time(c);
    const double own = time(c) - time(c - 1);
    if (own > 0.0) return own;
    return c >= 2 ? time(c - 1) - time(c - 2) : 0.0;
  }

  void BreakTies() {
    for (std::size_t e = 0; e < events_.size(); ++e) {
      const std::span<float> times = events_[e].times;
      const std::size_t c = cursors_[e].point;
      if (c == 0 || c >= times.size()) continue;
      if (static_cast<double>(times[c]) - static_cast<double>(times[c - 1]) > kEqualTimes) continue;
      const double step = StepAt(times, c);
      if (step > 0.0) times[c] = static_cast<float>(static_cast<double>(times[c]) + step / kTieShare);
    }
  }

  // Load of event e at time t between its previous and its current point.
  float Interpolate(std::size_t e, double t) const {
    const std::size_t c = cursors_[e].point;
    const double before = TimeOf(e, c - 1);
    const double after = TimeOf(e, c);
    const double v0 = events_[e].values[c - 1];
    const double v1 = events_[e].values[c];
    return static_cast<float>(v0 + (v1 - v0) * ((t - before) / (after - before)));
  }
  bool CanInterpolate(std::size_t e) const {
    const std::size_t c = cursors_[e].point;
    return static_cast<double>(events_[e].times[c]) - static_cast<double>(events_[e].times[c - 1]) >=
           kNoInterpolation;
  }

  void Advance(std::size_t e) {
    Cursor& cursor = cursors_[e];
    ++cursor.point;
    if (unrolled_ && cursor.point == events_[e].times.size()) {
      // The first point of a repetition is the last one of the repetition before it.
      ++cursor.repetition;
      cursor.point = 1;
      restarted_ = true;
    }
  }

  // Adds the row at time t, set by `leader`. Returns 0, or the number of an event that cannot be
  // interpolated.
  int AddRow(std::size_t leader, double t) {
    restarted_ = false;
    int stuck = 0;
    for (std::size_t e = 0; e < events_.size(); ++e) {
      float load = 0.0F;
      if (Active(e)) {
        if (e == leader || CurrentTime(e) <= t + kSameRow) {
          load = events_[e].values[cursors_[e].point];
          Advance(e);
        } else if (Started(e)) {
          if (CanInterpolate(e)) {
            load = Interpolate(e, t);
          } else if (stuck == 0) {
            stuck = static_cast<int>(e) + 1;
          }
        }
      }
      Store(e, load);
    }
    ++table_.points;
    return stuck;
  }

  // Columns grow by a third, as rows are added one by one and their number is not known before.
  void Store(std::size_t e, float load) {
    std::vector<float>& column = table_.loads[static_cast<int>(e) + 1];
    if (column.size() == column.capacity()) column.reserve(column.capacity() + column.capacity() / 3 + 1);
    column.push_back(load);
  }

  std::span<EventHistory> events_;
  std::vector<Cursor> cursors_;
  bool unrolled_;
  bool restarted_ = false;  // an event started a repetition in the last row
  CombinedLoadTable& table_;
};

// A row takes at most one point of an event, so the table has at least as many rows as the longest event has
// points.
std::uint64_t FewestRows(std::span<const EventHistory> events, bool unrolled) {
  std::uint64_t fewest = 0;
  for (const EventHistory& event : events) {
    std::uint64_t points = event.times.size();
    if (unrolled) {
      const auto repetitions = static_cast<std::uint64_t>(std::max(event.repetitions, 0));
      points = repetitions == 0 ? 0 : points + (repetitions - 1) * (points - 1);
    }
    fewest = std::max(fewest, points);
  }
  return fewest;
}

std::vector<EventHistory> HistoriesOf(RunContext& run, const StudyState& study, LoadHistory& history) {
  std::vector<EventHistory> events;
  for (int e = 1; e <= study.definition.event_count; ++e) {
    const Event& event = study.definition.events[e];
    if (!std::isfinite(event.start_time)) {
      throw InputFault(run.services.StudyFileName(".FTC"),
                       "entity " + std::to_string(event.entity) + ", start time",
                       std::to_string(event.start_time), "a finite number");
    }
    const std::span<const float> values = history.ValuesOf(event);
    events.push_back(
        {values, std::span(history.times).subspan(static_cast<std::size_t>(event.first - 1), values.size()),
         static_cast<double>(event.start_time), event.repetitions});
  }
  return events;
}

}  // namespace

CombineResult CombineHistories(std::span<EventHistory> events, std::uint64_t max_entries,
                               CombinedLoadTable& table, const std::function<void()>& pass_gate) {
  table = CombinedLoadTable();
  table.loads.Assign(events.size());
  if (events.empty()) return {};
  const bool unrolled = NeedsUnrolling(events);
  const std::uint64_t max_rows = max_entries / events.size();
  const std::uint64_t fewest = FewestRows(events, unrolled);
  if (fewest > max_rows) return {CombineStatus::kMemory, 0, unrolled};
  try {
    for (auto& column : table.loads) column.reserve(std::max<std::size_t>(fewest, kInitialRows));
    const CombineResult result = Merger(events, unrolled, table).Run(max_rows, pass_gate);
    for (auto& column : table.loads) column.shrink_to_fit();
    return result;
  } catch (const std::bad_alloc&) {
    return {CombineStatus::kMemory, 0, unrolled};
  }
}

void BuildCombinedLoadTable(RunContext& run, StudyState& study, LoadHistory& history,
                            CombinedLoadTable& table) {
  SolverServices& services = run.services;
  if (!history.has_times) StopWithMessageAndBeep(services, message::kHistoryWithoutTimes);
  std::vector<EventHistory> events = HistoriesOf(run, study, history);
  // While a column grows, its old and its new block exist side by side.
  const std::uint64_t max_entries = services.LargestBlock() / sizeof(float);
  const CombineResult result = CombineHistories(events, max_entries, table, [&] { PassGate(services); });
  switch (result.status) {
    case CombineStatus::kDone:
      break;
    case CombineStatus::kMemory:
      StopWithMessageAndBeep(services, message::kCombinedTableMemory);
    case CombineStatus::kEqualTimes:
      StopWithNumberAndBeep(services, message::kHistoryTimesEqual, result.event);
    case CombineStatus::kTimeNotIncreasing:
      StopWithMessageAndBeep(services, message::kCombinedTimeNotIncreasing);
  }
  if (result.unrolled) {
    for (int e = 1; e <= study.definition.event_count; ++e) study.definition.events[e].repetitions = 1;
  }
  history.times = std::vector<float>();
}

}  // namespace zentor
