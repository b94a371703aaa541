// The study-wide options of a fatigue run.
#pragma once

#include <cstdint>

namespace zentor {

inline constexpr int kAllNodes = -1;  // ActivatedLocation of the all-nodes option

inline constexpr int kListedStudyType = 6;  // StudyType of every study with a list of studies

// AlternatingStressType
inline constexpr int kStressIntensity = 0;
inline constexpr int kVonMises = 1;
inline constexpr int kMaximumPrincipal = 2;
// MeanStressCorrection
inline constexpr int kNoCorrection = 0;
inline constexpr int kSoderberg = 1;
inline constexpr int kGoodman = 2;
inline constexpr int kGerber = 3;

// Reals are single precision in the tables and kept so here; whoever computes with one widens it.
struct FatigueProperties {
  std::int32_t StudyType = 0;                   // 5, 6: multi-study mode; anything else: ordinary study
  std::int32_t AlternatingStressType = 0;       // kStressIntensity, kVonMises, kMaximumPrincipal
  std::int32_t EventInteraction = 0;            // 0 random, 1 no interaction (constant amplitude only)
  float FatigueStrengthReductionFactor = 1.0F;  // Kt, divides stress differences
  std::int32_t SnCurveOption = 0;               // -1, -2: built-in design curves; otherwise the study's own
  std::int32_t SharedHistory = 0;               // variable amplitude: 1 when all loadings follow one history
  std::int32_t MeanStressCorrection = 0;        // kNoCorrection, kSoderberg, kGoodman, kGerber
  std::int32_t RangeBinCount = 0;               // rainflow matrix, 1 to 200
  std::int32_t MeanBinCount = 0;                // rainflow matrix, 1 to 200
  std::int32_t LoadAmplitudeType = 0;           // 0 constant, 1 variable amplitude
  float InfiniteLifeValue = 0.0F;               // cycles taken as infinite life; defined when above 1e-8
  float FilterPercent = 0.0F;                   // rainflow filter in percent
  std::int32_t SurfaceOnly = 0;                 // multi-study mode: 1 surface nodes only
  std::int32_t ShellSurface = 0;                // 1 top, 2 bottom
  std::int32_t ShellLayer = 0;                  // shell layer; 0 or less reads layer 1
  std::int32_t ActivatedLocation = 0;           // location number, kAllNodes, 0 none
  std::int32_t SnInterpolationDefault = 0;      // ordinary layout: interpolation code of every S-N curve
  bool ExactPrincipalStresses = false;          // extended option: false by the closed formulas as stated
  std::int32_t PointerWidth = 1;  // words per pointer of a stress file; the file's own header overrides it
};

inline bool IsMultiStudy(const FatigueProperties& p) { return p.StudyType == 5 || p.StudyType == 6; }
inline bool IsAllNodes(const FatigueProperties& p) { return p.ActivatedLocation == kAllNodes; }
inline bool IsVariableAmplitude(const FatigueProperties& p) { return p.LoadAmplitudeType == 1; }
inline bool UsesBuiltInCurve(const FatigueProperties& p) {
  return p.SnCurveOption == -1 || p.SnCurveOption == -2;
}
inline bool HasInfiniteLife(const FatigueProperties& p) { return p.InfiniteLifeValue > 1e-8F; }

}  // namespace zentor
