// Catalog messages of load histories, their combination and their counting.
#pragma once

#include "study/study_messages.h"

namespace zentor {

namespace message {
inline constexpr int kHistoryFileMissing = 9016;
inline constexpr int kHistoryCurveInvalid = 9052;  // argument: curve
inline constexpr int kHistoryWithoutTimes = 9054;
inline constexpr int kCombinedTableMemory = 9055;
inline constexpr int kHistoryTimesEqual = 9056;  // argument: event
inline constexpr int kCombinedTimeNotIncreasing = 9057;
inline constexpr int kHistoryConstant = 9060;      // argument: node, 0 for the history itself
inline constexpr int kFirstReversalsEqual = 9071;  // argument: node, 0 for the history itself
inline constexpr int kOneRangeBin = 9072;
inline constexpr int kTooFewReversals = 9078;          // argument: curve (constant) or event
inline constexpr int kTooFewReversalsFiltered = 9079;  // argument: event
}  // namespace message

// As StopWithNumber, with the sound of BeepAndStop before the end.
[[noreturn]] inline void StopWithNumberAndBeep(SolverServices& services, int message, int number) {
  const std::array<float, 1> arguments = {static_cast<float>(number)};
  StopWithMessageAndBeep(services, message, arguments);
}

}  // namespace zentor
