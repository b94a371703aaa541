// Entities and fields of the fatigue definition table ".FTC" (docs/formats/ftc.md). Fields are record fields.
#pragma once

#include "authoring/study_definition.h"
#include "authoring/table_builder.h"

namespace zentor {

namespace fatigue_table {
// Constant amplitude: event j is entity j; its load cases are in entity kLoadCases + j and, in the ordinary
// layout, its membership in entity kMembership + j, both in field kFirstLoading + k - 1 for loading k.
inline constexpr int kLoadCases = 20;
inline constexpr int kMembership = 60;
inline constexpr int kFirstLoading = 2;
inline constexpr int kEventNumber = 2;  // multi-study layout: also the load case of the first loading
inline constexpr int kEventCycles = 4;
inline constexpr int kEventRatio = 5;        // real, multi-study layout
inline constexpr int kEventPairingFlag = 6;  // multi-study layout; 0: a paired loading follows the first
// Variable amplitude: event j is entity j.
inline constexpr int kEventLoadCase = 2;
inline constexpr int kEventHistory = 3;
inline constexpr int kEventRepetitions = 4;
inline constexpr int kEventScale = 5;  // real
inline constexpr int kEventStartPoint = 6;
inline constexpr int kEventEndPoint = 7;
inline constexpr int kEventStartTime = 8;  // real
inline constexpr int kEventSetting = 9;

inline constexpr int kMatrixNodes = 59;  // fields 2 .. 41

// Entity 60: scale factors of the loadings (ordinary layout, field k + 1, real) or the options (multi-study
// layout).
inline constexpr int kOptions = 60;
inline constexpr int kOptionAlternatingStress = 2;
inline constexpr int kOptionInteraction = 3;
inline constexpr int kOptionStrengthReduction = 4;  // real
inline constexpr int kOptionSnCurve = 6;
inline constexpr int kOptionSharedHistory = 7;  // and shell surface
inline constexpr int kOptionMeanStress = 8;
inline constexpr int kOptionRangeBins = 9;
inline constexpr int kOptionMeanBins = 10;
inline constexpr int kOptionLoadAmplitude = 11;
inline constexpr int kOptionInfiniteLife = 12;  // real
inline constexpr int kOptionFilter = 13;
inline constexpr int kOptionSurfaceOnly = 14;

// S-N curves of the ordinary layout and the elastic-plastic data.
inline constexpr int kCurves = 97;
inline constexpr int kSmTCount = 4;
inline constexpr int kParameterM = 5;        // real
inline constexpr int kParameterN = 6;        // real
inline constexpr int kParameterFlag = 7;     // not 0: m and n are defined
inline constexpr int kCurvePoints = 7;       // + c: number of points of curve c
inline constexpr int kCurveRatio = 17;       // + c, real
inline constexpr int kCurveMaterial = 27;    // + c
inline constexpr int kSmTTemperatures = 98;  // field k + 1, real
inline constexpr int kSmTValues = 99;        // field k + 1, real
inline constexpr int kCurveCycles = 202;     // + 2 c: field i + 1, real
inline constexpr int kCurveStresses = 203;   // + 2 c: field i + 1, real

inline constexpr int kLocations = 103;  // field kActivatedLocation; location l is entity kLocations + l
inline constexpr int kActivatedLocation = 3;
inline constexpr int kLocationNumber = 2;
inline constexpr int kLocationNode = 3;
inline constexpr int kLocationSetting = 4;
inline constexpr int kLocationSection = 5;
inline constexpr int kLocationPathPoints = 6;
inline constexpr int kLocationRadius = 7;        // real
inline constexpr int kLocationStressFactor = 8;  // three reals
inline constexpr int kLocationBendingFlag = 11;

// Stored condition of location l and loading k: entity kConditions + (l - 1) * 40 + k.
inline constexpr int kConditions = 604;
inline constexpr int kHasStress = 2;
inline constexpr int kHasLinearised = 3;
inline constexpr int kHasTemperature = 4;
inline constexpr int kConditionStress = 8;        // six reals
inline constexpr int kConditionTemperature = 14;  // real
inline constexpr int kConditionLinearised = 15;   // four reals

// What an all-nodes run adds: node k in entity kUsage + (k - 1) / 40, field 2 + (k - 1) % 40.
inline constexpr int kUsage = 2605;
inline constexpr int kNodesPerUsageEntity = 40;

inline constexpr int kMinimumFields = 64;
}  // namespace fatigue_table

// The table with room for the usage of every node of the model.
TableBuilder BuildFatigueTable(const StudyDefinition& study);

// Multi-study layout: whether the tables can say that the loading at this place of its event (1: first) takes
// `stress_case` from line `study` of the list. A later loading always takes the load case that equals its
// line; so does the first one when its load case is 1.
bool IsExpressibleLoading(int place, int stress_case, int study);

}  // namespace zentor
