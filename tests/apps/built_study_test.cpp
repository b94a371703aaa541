// Studies are built from definitions and read back by the solver's own study input and stress store.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <tuple>

#include "apps/definition_folder.h"
#include "stress/nodal_stress_store.h"
#include "study/study_input_fixture.h"

namespace zentor {
namespace {

using test::Outcome;

class BuiltStudy : public test::StudyInput {
 public:
  companion::BuiltStudy BuildFile(const std::string& definition) {
    return companion::BuildStudy(definition, Path(""), false, platform::NativeFileSystem());
  }
  void BuildText(const std::string& text) {
    test::WriteText(folder.Path("text.toml"), text);
    BuildFile(folder.Path("text.toml"));
  }
  // The averaged stresses of a node in a load case.
  StressTensor Stress(int node, int load_case) {
    RunContext run(platform::NativeFileSystem(), services);
    DbOpenStudyTables(run.database);
    const std::array<StoreLoading, 1> loadings = {{{load_case, 1}}};
    const NodalStressStore store = BuildNodalStressStore(run, study, loadings);
    return store.NodalStress(node, store.SlotOf(1));
  }
};

TEST_F(BuiltStudy, ExampleIsReadAsWritten) {
  const companion::BuiltStudy built = BuildFile(ZENTOR_DOCS "/study-example.toml");
  EXPECT_TRUE(built.warnings.empty()) << built.warnings.front();
  ASSERT_EQ(ReadFiles(), Outcome::kComplete) << fault;

  const FatigueProperties& p = study.properties;
  EXPECT_EQ(std::tuple(p.AlternatingStressType, p.FatigueStrengthReductionFactor, p.InfiniteLifeValue),
            std::tuple(kStressIntensity, 1.5F, 1e11F));
  EXPECT_EQ(study.materials.strength[1], 460.0);
  EXPECT_EQ(study.definition.events[2].cycles, 50);
  EXPECT_EQ(Loadings(5), (LoadingRows{{1, 1, 1, 1.0},
                                      {2, 1, 1, 1.2F},
                                      {kZeroLoadCase, 1, 1, 1.0},
                                      {1, 1, 2, 1.43F},
                                      {kStoredLoadCase, 1, 2, 1.0}}));
  ASSERT_EQ(study.sn_curves.sets[1].size(), 1U);
  const SnCurve& curve = study.sn_curves.sets[1].front();
  EXPECT_EQ(std::tuple(curve.ratio, curve.x.size(), curve.first_stress, curve.last_cycles),
            std::tuple(-1.0F, 13U, 1413.0, 1e6));
  EXPECT_EQ(std::tuple(study.location_node, study.location_section, study.locations[2].path_points),
            std::tuple(1, 1, 33));
  EXPECT_EQ(study.sm_t.sm[3], 128.0);
  EXPECT_TRUE(study.readiness.EpSectionReady);
  const AppliedConditions& conditions = study.conditions;
  EXPECT_EQ(conditions.temperature[2], 268.0) << "of node 1";
  EXPECT_EQ(conditions.temperature[5], 20.0) << "stored";
  EXPECT_EQ(conditions.stress[5], (StressTensor{0, 20, 40, 0, 0, 0}));
  EXPECT_EQ(conditions.linearised[5], (LinearisedStress{0, 18, 36, 0}));
  EXPECT_EQ(Stress(5, 1), (StressTensor{-5, 48, 100, 0, 0, 0})) << "the mean of two elements";
}

// The multi-study definition of the documentation, with the studies it lists.
TEST_F(BuiltStudy, MultiStudyDefinitionOfTheDocumentationIsReadAsWritten) {
  const std::string page = test::ReadText(ZENTOR_DOCS "/study-toml.md");
  const std::size_t start = page.find("```toml\n") + 8;
  BuildText(page.substr(start, page.find("```", start) - start));
  AddFile("-pressure.STE", "");
  services.second_studies = {Path("-pressure"), Path("-thermal")};
  ASSERT_EQ(ReadFiles(), Outcome::kComplete) << fault;

  EXPECT_EQ(study.properties.StudyType, 6);
  EXPECT_EQ(study.surface.node_count, 4);
  EXPECT_EQ(Loadings(4), (LoadingRows{{3, 1, 1, 1.0}, {2, 2, 1, 1.0}, {1, 1, 2, 1.0}, {1, 1, 2, -0.5}}));
  EXPECT_EQ(study.sn_curves.sets[1].front().interpolation, 1);
}

constexpr const char* kShell = R"(
[options]
evaluate = 1
shell_surface = "bottom"
shell_layer = 2
[stress_file]
kind = "KIND"
pointer_bits = BITS
[model]
nodes = [[1,0,0,0],[2,1,0,0],[3,1,1,0],[4,0,1,0]]
elements = [[3,"shell4",1,2,3,4]]
[[location]]
node = 4
[[stress_case]]
name = "zero case number gap"
number = 3
stresses = [
  [3,1,1,0,0,0,0,0,1,"top"], [3,2,1,0,0,0,0,0,1,"top"], [3,3,1,0,0,0,0,0,1,"top"], [3,4,1,0,0,0,0,0,1,"top"],
  [3,1,2,0,0,0,0,0,2,"top"], [3,2,2,0,0,0,0,0,2,"top"], [3,3,2,0,0,0,0,0,2,"top"], [3,4,2,0,0,0,0,0,2,"top"],
  [3,1,3,0,0,0,0,7,2,"bottom"], [3,2,4,0,0,0,0,7,2,"bottom"], [3,3,5,0,0,0,0,7,2,"bottom"],
  [3,4,6,0,0,0,0,7,2,"bottom"]]
[[event]]
cycles = 1
loadings = [{case = 3}]
)";

TEST_F(BuiltStudy, ShellStressesKeepLayerAndSurfaceInEveryKindOfStressFile) {
  for (const std::string kind : {"STE", "STN", "STP"}) {
    for (const std::string bits : {"32", "64"}) {
      std::string text = kShell;
      text.replace(text.find("KIND"), 4, kind);
      text.replace(text.find("BITS"), 4, bits);
      BuildText(text);
      ASSERT_EQ(ReadFiles(), Outcome::kComplete) << fault;
      EXPECT_EQ(Stress(4, 3), (StressTensor{6, 0, 0, 0, 0, 7})) << kind << ' ' << bits;
      study.properties.ShellSurface = 1;
      EXPECT_EQ(Stress(4, 3), (StressTensor{2, 0, 0, 0, 0, 0})) << kind << ' ' << bits;
    }
  }
}

TEST(CsvTables, GiveTheSameFilesAsRowsInTheDefinition) {
  test::DefinitionFolder inline_rows;
  inline_rows.Build();
  test::DefinitionFolder csv;
  // Another order of columns and nodes, blanks, carriage returns, a byte-order mark, no last line end.
  csv.AddFile("nodes.csv",
              "\xEF\xBB\xBFz,y,x,node\r\n0,1,1,3\r\n0,0,0,1\r\n\r\n 0 , +0.0 ,1.0e0, 2 \r\n0,1,0,4");
  csv.AddFile("elements.csv", "kind,element,n1,n2,n3,n4,n5,n6\nquad4,1,1,2,3,4,,\n");
  csv.Replace("nodes = [[1,0,0,0],[2,1,0,0],[3,1,1,0],[4,0,1,0]]", "nodes = 'nodes.csv'");
  csv.Replace("elements = [[1,'quad4',1,2,3,4]]", "elements = 'elements.csv'");
  csv.Build();
  for (const char* extension : {".NOD", ".ELE", ".STE"})
    EXPECT_EQ(test::ReadText(csv.Base() + extension), test::ReadText(inline_rows.Base() + extension));
}

}  // namespace
}  // namespace zentor
