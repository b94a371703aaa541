// Sections of a study on disk: which section a location has, the stresses along its path, the loadings that
// share them, and every way in which the path can be unusable.
#include "stress/section_stresses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "authoring/study_writer.h"
#include "section_study.h"
#include "services/faults.h"
#include "services/stop.h"
#include "study/events_input.h"
#include "study/fatigue_properties_input.h"
#include "study/locations_input.h"
#include "study/model_input.h"
#include "study/stored_conditions.h"
#include "study/stress_results.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor::test {
namespace {

using ::testing::HasSubstr;

// Linear in X and Y, so both kinds of elements reproduce it between their nodes; whole numbers at nodes.
std::array<float, 4> LinearField(float x, float y) {
  return {8 * (x - 12), 100 + 4 * y, 50 - 2 * x + 6 * y, 16 * (y - 1) + x};
}

class SectionStresses : public ::testing::Test {
 protected:
  SectionStresses() { wall.study.options.activated_location = 1; }

  // Locations 1 and 2, the ends of section 1, in an event of one loading.
  void AddLinearCase(int first_node, int second_node, int path_points = 17) {
    wall.AddCase(LinearField);
    wall.AddEvent(1, {{1, 1.0F}});
    wall.AddLocation(first_node, 1, path_points);
    wall.AddLocation(second_node, 1, path_points);
  }
  // Writes the study and does what the study input does before the section stresses are formed.
  void WriteAndRead() {
    WriteStudy(wall.study, folder.Path("wall"), platform::NativeFileSystem());
    context = std::make_unique<RunContext>(platform::NativeFileSystem(), services);
    context->listing.Open(context->files, folder.Path("wall.FTG"), TextRecordFile::Mode::kNew);
    DbOpenStudyTables(context->database);
    study = StudyState();
    study.properties = ReadFatigueProperties(*context, false);
    study.sizes = ReadModelSizes(context->database);
    ReadEvents(*context, study);
    study.sm_t.count = 2;
    ReadLocations(*context, study);
    ApplyStoredConditions(*context, study);
    study.stress_kind = FindStressKind(services, 0);
    std::vector<StoreLoading> loadings;
    for (int k = 1; k <= kMaxLoadings; ++k) loadings.push_back({study.conditions.stress_case[k], 1});
    if (NeedsStressFile(study)) store = BuildNodalStressStore(*context, study, loadings);
  }
  bool Form() { return FormSectionStresses(*context, store, study); }
  std::string Listing() {
    context->listing.Flush();
    return ReadText(folder.Path("wall.FTG"));
  }
  // What keeps the stresses from being formed: text and number of the box that stopped the run, or the fault;
  // empty when nothing does.
  std::string Failure() {
    services.asked.clear();
    try {
      Form();
    } catch (const RunStopped&) {
      return services.asked.at(0).text + std::to_string(services.asked[0].message);
    } catch (const InputFault& fault) {
      return fault.what();
    }
    return "";
  }

  TempFolder folder;
  RecordingServices services{folder.Path("wall")};
  std::unique_ptr<RunContext> context;
  SectionWall wall;
  StudyState study;
  NodalStressStore store;
};

// Nodes of locations 1 and 2.
using Ends = std::pair<int, int>;
class SectionFromEitherEnd : public SectionStresses, public ::testing::WithParamInterface<Ends> {};

// Middle value plus the half difference of the ends times the overestimate of the trapezoid sum.
TEST_P(SectionFromEitherEnd, LinearFieldThroughBothKindsOfElements) {
  const auto [first, second] = GetParam();
  for (const int n : {2, 5, 17, 64}) {
    for (const int evaluated : {1, 2}) {
      wall = SectionWall();
      AddLinearCase(first, second, n);
      wall.study.options.activated_location = evaluated;
      WriteAndRead();
      ASSERT_TRUE(Form());

      const auto field_at = [&](int node) {
        const auto& at = wall.study.model.nodes[static_cast<std::size_t>(node) - 1].xyz;
        return LinearField(at[0], at[1]);
      };
      const auto at_here = field_at(evaluated == 1 ? first : second);
      const auto at_there = field_at(evaluated == 1 ? second : first);
      for (std::size_t c = 0; c < 4; ++c) {
        const double bending = (double{at_here[c]} - at_there[c]) / 2 * (1 + 2.0 / ((n - 1) * (n - 1)));
        EXPECT_NEAR(study.conditions.linearised[1][c], (double{at_here[c]} + at_there[c]) / 2 + bending, 1e-9)
            << n << " points, location " << evaluated << ", component " << c;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Paths, SectionFromEitherEnd,
                         ::testing::Values(Ends{1, 15},    // across quadrilaterals and triangles
                                           Ends{10, 6},    // along sides of elements
                                           Ends{3, 13},    // equal X
                                           Ends{5, 11}));  // falling

TEST_F(SectionStresses, AtEqualXTheLowerLocationIsPointOne) {
  AddLinearCase(13, 3);
  WriteAndRead();
  const auto section = FindSection(*context, study, 2);
  ASSERT_TRUE(section);
  EXPECT_EQ(section->first_node, 13);
}

TEST_F(SectionStresses, WhichLocationsHaveASection) {
  AddLinearCase(1, 5);  // locations 1, 2
  // 3: a third of section 1; 4: its other end is missing; 5, 6: beyond the sections of a study; 7, 8: node
  // 999 does not exist; 9, 10.
  const int rest[][2] = {{15, 1}, {6, 2}, {6, 21}, {10, 21}, {6, 5}, {999, 5}, {6, 20}, {10, 20}};
  for (const auto& [node, section] : rest) wall.AddLocation(node, section);
  WriteAndRead();
  std::vector<int> with_section;
  for (int l = 0; l <= kMaxLocations + 1; ++l) {
    if (FindSection(*context, study, l)) with_section.push_back(l);
  }
  EXPECT_EQ(with_section, (std::vector<int>{1, 2, 9, 10}));
}

// The search meets element 13 before it can tell that no element holds the point.
TEST_F(SectionStresses, ElementsOfOtherTypesStop) {
  wall.AddElement("quad8", {1, 2, 3, 4, 5, 6, 7, 8});
  AddLinearCase(1, 16, 11);
  WriteAndRead();
  EXPECT_THAT(Failure(), HasSubstr("element 13 is of another type)"));
  EXPECT_THAT(Listing(), HasSubstr("ERROR - Not suitable to apply the simplified elastic-plastic\n"
                                   "        formulation (use only PLANE2D or TRIANG elements\n"));
  // A path that is found before the search comes that far does not care.
  study.locations[2].node = 5;
  EXPECT_TRUE(Form());
}

TEST_F(SectionStresses, SettingsThatCannotBeUsedAreFaults) {
  AddLinearCase(1, 5);
  WriteAndRead();
  for (const int points : {1, 66}) {
    study.locations[1].path_points = points;
    EXPECT_EQ(Failure(), folder.Path("wall.FTC") + ": entity 104, field 6 is " + std::to_string(points) +
                             ", expected 2 to 65 points on the section's path");
  }
  study.locations[1].path_points = 65;
  study.locations[1].radius = std::nanf("");
  EXPECT_THAT(Failure(), HasSubstr("entity 104, field 7 is nan, expected a finite radius of curvature"));
  study.locations[1].radius = 0.0F;
  for (const int field : {6, 7}) {
    DbPutReal(context->database, DbTable::kNod, 5, field,
              DbGetReal(context->database, DbTable::kNod, 1, field));
  }
  EXPECT_THAT(Failure(), HasSubstr("distance of nodes 1 and 5, the ends of section 1, is 0"));
}

TEST_F(SectionStresses, ElementsThatCannotBeUsedAreFaults) {
  AddLinearCase(1, 5);
  WriteAndRead();
  const auto set = [&](int element, int field, int value) {
    DbPutInt(context->database, DbTable::kEle, element, field, value);
  };
  set(2, 5, 3);
  EXPECT_THAT(Failure(), HasSubstr("element 2, number of nodes is 3, expected at least 4 for type code 42"));
  set(2, 5, 4);
  for (const int node : {0, 17}) {
    set(2, 6, node);
    EXPECT_THAT(Failure(), HasSubstr("element 2, node 1 is " + std::to_string(node)));
  }
  set(2, 6, 2);
  // Element 2 collapsed to the side that the path follows.
  set(2, 8, 3);
  set(2, 9, 2);
  EXPECT_THAT(Failure(),
              HasSubstr("element 2 is too degenerate, expected a shape in which point 6 of the section"));
}

}  // namespace
}  // namespace zentor::test
