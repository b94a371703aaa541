// The tables of a study other than the fatigue definition (fatigue_table.h): master control, model,
// materials, S-N curves of the multi-study layout. Their formats are described in docs/formats/.
#pragma once

#include "authoring/study_definition.h"
#include "authoring/table_builder.h"

namespace zentor {

// Record fields.
namespace node_table {
inline constexpr int kX = 2, kY = 3, kZ = 4;  // reals, as the location echo shows them
inline constexpr int kCoordinateSystem = 5;
inline constexpr int kPathX = 6, kPathY = 7;  // reals, as section paths use them
inline constexpr int kFields = 8;
}  // namespace node_table
namespace element_table {
inline constexpr int kGroup = 2;
inline constexpr int kMaterial = 3;  // low 16 bits
inline constexpr int kNodeCount = 5;
inline constexpr int kFirstNode = 6;
}  // namespace element_table
namespace coordinate_system_table {
inline constexpr int kKind = 2;     // 0 Cartesian, 1 cylindrical, 2 spherical
inline constexpr int kOrigin = 3;   // three reals
inline constexpr int kOnX = 6;      // three reals: a point on the positive x axis
inline constexpr int kInPlane = 9;  // three reals: a point of the xy plane with positive y
inline constexpr int kFields = 11;
}  // namespace coordinate_system_table
namespace group_table {
inline constexpr int kTypeCode = 2;
inline constexpr int kFields = 8;
}  // namespace group_table
namespace material_table {
inline constexpr int kModulus = 2;    // real; field 3 not 0: given as a temperature curve
inline constexpr int kYield = 80;     // real; field 81 likewise
inline constexpr int kUltimate = 86;  // real; field 87 likewise
inline constexpr int kFields = 96;
}  // namespace material_table
namespace curve_table {
inline constexpr int kMaterial = 2;
inline constexpr int kRatio = 3;  // real
inline constexpr int kInterpolation = 4;
inline constexpr int kPointCount = 10;
inline constexpr int kFirstPoint = 11;  // cycles and stress in turn, reals
}  // namespace curve_table

TableBuilder BuildMasterTable(const StudyDefinition& study);
TableBuilder BuildNodeTable(const StudyModel& model);
TableBuilder BuildElementTable(const StudyModel& model);
TableBuilder BuildCoordinateSystemTable(const StudyModel& model);
TableBuilder BuildGroupTable(const StudyModel& model);
TableBuilder BuildMaterialTable(const StudyDefinition& study);
TableBuilder BuildCurveTable(const StudyDefinition& study);

}  // namespace zentor
