#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "content_checks.h"

namespace zentor::companion {

namespace {

std::string CaseText(const StudyDefinition& study, const AuthoredLoading& loading) {
  if (loading.stress_case == kZeroStressCase) return "case 'zero'";
  for (const StressCase& one : study.stress_cases) {
    if (one.number == loading.stress_case) return fmt::format("case '{}'", one.name);
  }
  const std::string text = fmt::format("load case {}", loading.stress_case);
  return study.layout == StudyLayout::kMultiStudy ? fmt::format("{} of study {}", text, loading.study) : text;
}

bool IsStored(const AuthoredLoading& loading) { return loading.stress_case == kStoredStressCase; }
bool IsZeroCase(const AuthoredLoading& loading) { return loading.stress_case == kZeroStressCase; }
bool IsFree(const AuthoredLoading& loading) {
  return IsZeroCase(loading) || (!IsStored(loading) && loading.scale == 0.0F);
}

// Whether two loadings are the same stress state by definition; stored conditions differ by loading.
bool SameState(const AuthoredLoading& a, const AuthoredLoading& b) {
  if (IsFree(a) && IsFree(b)) return true;
  return !IsStored(a) && a.stress_case == b.stress_case && a.study == b.study && a.scale == b.scale;
}

// The loadings that a run forms of the event.
std::vector<AuthoredLoading> LoadingsOf(const AuthoredEvent& event) {
  std::vector<AuthoredLoading> loadings = event.loadings;
  if (event.paired && loadings.size() == 1) {
    loadings.push_back(loadings.front());
    loadings.back().scale *= event.ratio;
  }
  return loadings;
}

class EventCheck {
 public:
  EventCheck(const StudyDefinition& study, Findings& findings) : study_(study), findings_(findings) {}

  void ConstantAmplitude() {
    for (place_ = 1; place_ <= study_.events.size(); ++place_) {
      const AuthoredEvent& event = study_.events[place_ - 1];
      const std::vector<AuthoredLoading> loadings = LoadingsOf(event);
      if (event.cycles < 1)
        Warn(fmt::format("event {} has {} cycles and causes no damage", event.number, event.cycles));
      if (loadings.empty()) Warn(fmt::format("event {} has no loadings and causes no damage", event.number));
      if (loadings.size() == 1) CheckPartners(event);
      CheckStates(event, loadings);
    }
  }

  void VariableAmplitude() {
    for (place_ = 1; place_ <= study_.events.size(); ++place_) {
      const AuthoredEvent& event = study_.events[place_ - 1];
      if (!event.loadings.empty() && IsFree(event.loadings.front())) {
        Warn(fmt::format("event {} is free of stress (scale {}) and adds nothing", event.number,
                         event.loadings.front().scale));
      }
      const AuthoredEvent& first = study_.events.front();
      if (event.cycles != first.cycles) {
        Warn(fmt::format(
            "the {} repetitions of event {} do not count: damage is that of the {} repetitions of "
            "event {}, the first",
            event.cycles, event.number, first.cycles, first.number));
      }
    }
  }

 private:
  void Warn(std::string text) {
    findings_.push_back({Finding::Grade::kWarning, "event", place_, "", std::move(text)});
  }

  // An event with one loading has no range of its own.
  void CheckPartners(const AuthoredEvent& event) {
    std::int64_t other_cycles = 0;
    for (const AuthoredEvent& other : study_.events) {
      if (&other != &event && !other.loadings.empty()) other_cycles += std::max(other.cycles, 0);
    }
    const bool interacts = study_.options.event_interaction == 0;
    if (!interacts || other_cycles == 0) {
      findings_.push_back(
          {Finding::Grade::kMistake, "event", place_, "",
           fmt::format(
               "event {} has one loading and nothing to pair it with, so it causes no damage; give it "
               "the state that it returns to as well, such as the case 'zero'",
               event.number)});
    } else if (event.cycles > other_cycles) {
      Warn(fmt::format(
          "event {} has one loading, which pairs with loadings of other events only: at most {} of "
          "its {} cycles count; give it the state that it returns to as well, such as the case "
          "'zero'",
          event.number, other_cycles, event.cycles));
    }
  }

  void CheckStates(const AuthoredEvent& event, const std::vector<AuthoredLoading>& loadings) {
    for (const AuthoredLoading& loading : event.loadings) {
      // A run reads the loading that a ratio forms as one of the event; its ratio of 0 is no slip.
      const bool formed = event.paired && &loading != &event.loadings.front();
      if (IsFree(loading) && !IsZeroCase(loading) && !formed) {
        Warn(fmt::format("loading {} of event {} is free of stress: its scale is 0", loading.number,
                         event.number));
      }
    }
    const bool same = loadings.size() > 1 &&
                      std::all_of(loadings.begin() + 1, loadings.end(), [&](const AuthoredLoading& other) {
                        return SameState(loadings.front(), other);
                      });
    if (same) {
      Warn(fmt::format(
          "the loadings of event {} are one and the same state ({}, scale {}), so the event has no "
          "stress range",
          event.number, CaseText(study_, loadings.front()), loadings.front().scale));
    }
  }

  const StudyDefinition& study_;
  Findings& findings_;
  std::size_t place_ = 0;
};

}  // namespace

void CheckEventDamage(const StudyDefinition& study, Findings& findings) {
  EventCheck check(study, findings);
  if (study.options.load_amplitude_type == 1) {
    check.VariableAmplitude();
  } else {
    check.ConstantAmplitude();
  }
}

}  // namespace zentor::companion
