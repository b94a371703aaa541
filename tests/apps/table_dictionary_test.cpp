#include "table_dictionary.h"

#include <gtest/gtest.h>

#include <bit>

#include "authoring/fatigue_table.h"
#include "mesh_reader.h"
#include "study_files.h"

namespace zentor::companion {
namespace {

constexpr TableLayout kOrdinary = {false, false};
constexpr TableLayout kMultiStudy = {true, false};
constexpr TableLayout kVariable = {false, true};

TEST(TableDictionary, EntitiesThatHaveSeveralMeanings) {
  EXPECT_EQ(EntityName(DbTable::kFtc, 22, kOrdinary), "load cases of event 2");
  EXPECT_EQ(EntityName(DbTable::kFtc, 22, kVariable), "event 22");
  EXPECT_EQ(MeaningOf(DbTable::kFtc, 60, 5, kOrdinary).name, "scale factor of loading 4");
  EXPECT_EQ(MeaningOf(DbTable::kFtc, 60, 4, kMultiStudy).name, "FatigueStrengthReductionFactor");
  EXPECT_EQ(MeaningOf(DbTable::kFtc, 1, 3, kVariable).name, "history curve");
}

TEST(TableDictionary, NumberedEntitiesAndFields) {
  namespace ft = fatigue_table;
  EXPECT_EQ(EntityName(DbTable::kFtc, ft::kConditions + 49 * 40 + 40, kOrdinary),
            "stored conditions of location 50, loading 40");
  EXPECT_EQ(EntityName(DbTable::kFtc, ft::kConditions + 1, kOrdinary),
            "stored conditions of location 1, loading 1");
  EXPECT_EQ(MeaningOf(DbTable::kFtc, ft::kUsage + 2, 3, kOrdinary).name, "usage factor of node 82");
  EXPECT_EQ(MeaningOf(DbTable::kFtc, ft::kCurveStresses + 2 * 10, 3, kOrdinary).name,
            "alternating stress of point 2");
  EXPECT_EQ(EntityName(DbTable::kFtc, ft::kLocations + 50, kOrdinary), "location 50");
  EXPECT_EQ(MeaningOf(DbTable::kSnc, 4, 13, kMultiStudy).name, "cycles of point 2");
  EXPECT_EQ(MeaningOf(DbTable::kSnc, 4, 14, kMultiStudy).name, "alternating stress of point 2");
  EXPECT_EQ(MeaningOf(DbTable::kMas, 33, 47, kVariable).name, "time step of event 2");
  EXPECT_TRUE(MeaningOf(DbTable::kMas, 2, 9, kOrdinary).name.empty());
}

TEST(TableDictionary, ValuesByType) {
  EXPECT_EQ(ValueText(FieldType::kReal, std::bit_cast<std::int32_t>(0.1F)), "0.1");
  EXPECT_EQ(ValueText(FieldType::kCharacter, 'A'), "'A'");
  EXPECT_EQ(ValueText(FieldType::kUnknown, 42), "42");
  EXPECT_EQ(ValueText(FieldType::kUnknown, std::bit_cast<std::int32_t>(2.5F)), "2.5");
}

TEST(StudyNames, ExtensionsAndDotsAreTolerated) {
  EXPECT_EQ(StudyBase("x/job.ftr"), "x/job");
  EXPECT_EQ(StudyBase("x/job."), "x/job");
  EXPECT_EQ(StudyBase("x/job.v2"), "x/job.v2");
  EXPECT_EQ(StudyBase(".."), "..");
  EXPECT_EQ(TableNamed("ftc"), DbTable::kFtc);
  EXPECT_EQ(TableNamed(".Mas"), DbTable::kMas);
  EXPECT_EQ(TableNamed("FTR"), std::nullopt);
}

TEST(ElementMaterial, IsTheSignedLowHalfBelowTenThousand) {
  EXPECT_EQ(ElementMaterial(20007), 7);
  EXPECT_EQ(ElementMaterial((5 << 16) | 12), 12);
}

}  // namespace
}  // namespace zentor::companion
