// Catalog messages of the study input, and the calls that show them.
#pragma once

#include <array>

#include "services/stop.h"

namespace zentor {

namespace message {
inline constexpr int kTooManyBins = 9002;
inline constexpr int kSurfaceFileMissing = 9003;
inline constexpr int kSurfaceFileEmpty = 9004;
inline constexpr int kFirstStrengthMissing = 9005;  // 9005 Soderberg, 9006 Goodman, 9007 Gerber
inline constexpr int kTensileStrengthIsCurve = 9008;
inline constexpr int kYieldStrengthIsCurve = 9009;
inline constexpr int kModulusIsCurve = 9010;
inline constexpr int kElementNodeUnknown = 9011;
inline constexpr int kModelSizesInconsistent = 9012;
inline constexpr int kStartNotice = 9013;
inline constexpr int kNoActivatedLocation = 9014;
inline constexpr int kSharedHistoryNeeded = 9015;
inline constexpr int kStoredConditionInAllNodes = 9017;
inline constexpr int kLoadingCount = 9018;
inline constexpr int kEventCount = 9019;
inline constexpr int kLocationNotice = 9020;
inline constexpr int kAllNodesNotice = 9021;
inline constexpr int kStoredConditionMissing = 9025;
inline constexpr int kLocationNodeUnknown = 9026;
inline constexpr int kSectionStressesNotice = 9027;
inline constexpr int kStressFileMissing = 9029;
inline constexpr int kTooManyLoadings = 9030;
inline constexpr int kStudyWithoutStressFile = 9040;
inline constexpr int kStudyHalfBuilt = 9091;
inline constexpr int kTableWithoutContent = 9096;  // argument: path
inline constexpr int kSnCurveSetMissing = 9050;
inline constexpr int kSnCurveNotDecreasing = 9051;
}  // namespace message

inline void ShowLine(SolverServices& services, int message) {
  services.ShowMessage(message, {}, Severity::kInformation);
}

inline void ShowLine(SolverServices& services, int message, int number) {
  const std::array<float, 1> arguments = {static_cast<float>(number)};
  services.ShowMessage(message, arguments, Severity::kInformation);
}

[[noreturn]] inline void StopWithNumber(SolverServices& services, int message, int number) {
  const std::array<float, 1> arguments = {static_cast<float>(number)};
  StopWithMessage(services, message, arguments);
}

}  // namespace zentor
