// The master control table ".MAS": its layout and the fields that have names.
//
// Some programs read ".MAS" by byte offsets that assume a record length N and four records (header, two
// descriptor records, one directory record) before the data: entity e then starts at byte (e + 3) N when its
// slot is e. The layout below keeps all of that true: N = 384, 96 fields, a directory of 96, entities 1 .. 40
// created in order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "authoring/table_builder.h"

namespace zentor {

inline constexpr int kMasterFields = 96;
inline constexpr int kMasterCapacity = 96;
inline constexpr int kMasterEntities = 40;

// Fields as readers of ".MAS" number them: field k is record field k + 1.
struct MasterField {
  int entity = 0;
  int field = 0;
};
namespace master {
inline constexpr int kTitleEntity = 1;  // fields 1 .. 80: one character each
inline constexpr int kTitleLength = 80;
inline constexpr MasterField kLanguageIndex = {3, 14};  // byte 6 N + 56
inline constexpr MasterField kRunMode = {3, 33};
inline constexpr MasterField kListingMode = {3, 43};
inline constexpr MasterField kStudyType = {3, 48};
inline constexpr MasterField kShellSurface = {3, 70};
inline constexpr MasterField kShellLayer = {3, 71};
inline constexpr MasterField kSnCurveOption = {3, 72};
inline constexpr MasterField kModelCount = {4, 25};  // byte 7 N + 100: shown in the summary of a run
inline constexpr MasterField kSolutionSeconds = {25, 11};
inline constexpr MasterField kEarlierSeconds = {25, 17};  // byte 28 N + 68
inline constexpr MasterField kLogPosition = {25, 18};     // byte 28 N + 72: bytes before the end of ".LOG"
inline constexpr MasterField kAlternatingStressType = {32, 72};
inline constexpr MasterField kMeanStressCorrection = {32, 73};
inline constexpr MasterField kSnInterpolationDefault = {32, 80};
inline constexpr MasterField kEventInteraction = {33, 2};
inline constexpr MasterField kStrengthReductionFactor = {33, 3};  // real
inline constexpr MasterField kSharedHistory = {33, 6};
inline constexpr MasterField kLoadAmplitudeType = {33, 7};
inline constexpr MasterField kRangeBinCount = {33, 8};
inline constexpr MasterField kMeanBinCount = {33, 9};
inline constexpr MasterField kInfiniteLifeValue = {33, 11};  // real
inline constexpr MasterField kFilterPercent = {33, 12};
inline constexpr MasterField kEditionFlag = {33, 15};       // byte 36 N + 60
inline constexpr MasterField kPointerWidthFlag = {33, 21};  // 1: two words per pointer
// Variable amplitude: time step of event j is field kFirstTimeStep + j - 1.
inline constexpr int kTimeStepEntity = 33;
inline constexpr int kFirstTimeStep = 46;
}  // namespace master

// A master table with entities 1 .. 40 in their slots, all fields 0.
TableBuilder NewMasterTable();
void SetMaster(TableBuilder& table, MasterField field, std::int32_t value);
void SetMasterReal(TableBuilder& table, MasterField field, float value);
// At most 80 characters; the rest is filled with blanks.
void SetMasterTitle(TableBuilder& table, std::string_view title);

// A study that was built from a readable definition carries a mark in its master table (entity 40, fields 91
// .. 94), so that building over a study from elsewhere can be refused.
void MarkAsBuilt(TableBuilder& table);
// True when the bytes of a ".MAS" file hold that mark.
bool IsMarkedAsBuilt(std::span<const std::byte> master_file);

}  // namespace zentor
