// The window's own words, in the language of the message catalog.
#pragma once

#include <array>
#include <cstdint>
#include <string>

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
};
inline constexpr std::size_t kLabels = 19;

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

 private:
  std::array<std::u32string, kLabels> texts_;
};

}  // namespace zentor::progress
