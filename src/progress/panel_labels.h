// The window's own words, in the language of the message catalog.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/answer_labels.h"

namespace zentor::progress {

enum class Label {
  kStudy,
  kNodes,
  kNodesPerSecond,
  kTimeLeft,
  kElapsed,
  kWarnings,
  kStep,
  kIteration,
  kContactPoints,
  kContactIteration,
  kStepSize,
  kSuspended,
  kEnding,
  kSuspend,
  kResume,
  kAbort,
  kYes,
  kNo,
  kAskAbort,  // the question before an abort
  kYesKey,    // buttons that mark the keys of Yes and No, as the shell's boxes show them
  kNoKey,
};
inline constexpr std::size_t kLabels = 21;

// The catalog's four tables, indexed by number - 1: a text is pool[start .. end) when present.
struct CatalogTables {
  const std::int32_t* start;
  const std::int32_t* end;
  const char16_t* pool;
  const std::uint8_t* present;
};

class PanelLabels {
 public:
  PanelLabels();  // English
  // Takes what the catalog has; a number without text keeps the English one.
  void Load(const CatalogTables& tables);
  const std::u32string& operator[](Label label) const { return texts_[static_cast<std::size_t>(label)]; }

  // Keys with what they do: Yes and No, suspend (or resume) and abort.
  const std::array<platform::AnswerLabel, 2>& YesNo() const { return yes_no_; }
  const std::array<platform::AnswerLabel, 2>& SuspendAbort() const { return suspend_abort_; }

 private:
  void SettleKeys();

  std::array<std::u32string, kLabels> texts_;
  std::array<platform::AnswerLabel, 2> yes_no_, suspend_abort_;
};

}  // namespace zentor::progress
