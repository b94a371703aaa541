#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>

#include "apps/definition_folder.h"

namespace zentor {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

void ExpectError(test::DefinitionFolder& folder, const std::string& place, const char* message) {
  EXPECT_THAT(folder.BuildError(), AllOf(StartsWith(place), HasSubstr(message)));
  EXPECT_FALSE(std::filesystem::exists(folder.Base() + ".MAS")) << message;
  EXPECT_FALSE(std::filesystem::exists(folder.Base() + ".STE.new")) << message;
}

// A fault in the definition, and what is said of it.
struct Fault {
  int line;           // of the definition, 0 for one that is not pinned
  const char* piece;  // what is replaced; empty: `by` stands before the stress case
  std::string by;
  const char* message;
};

const std::string kLocation = "[[location]]\nnode = 1\n";

const Fault kFaults[] = {
    {1, "title = 'small'", "title = small", ""},
    {1, "'small'", "'" + std::string(81, 'x') + "'", "expected at most 80 characters (it has 81)"},
    {11, "cycles =", "cycels = 1\ncycles =", "did you mean 'cycles'?"},
    {10, "cycles = 1000", "", "event[1].cycles is missing, expected a whole number of at least 1"},
    {11, "= 1000", "= '1000'", "event[1].cycles is '1000', expected a whole number of at least 1"},
    {11, "= 1000", "= 3000000000", "event[1].cycles is 3000000000, expected a whole number"},
    {12, "= 1000", "= 1000\nnumber = 21", "event[1].number is 21, expected a whole number from 1 to 20"},
    {12, "case = 'pull'", "case = 'pull', scale = nan", "loadings[1].scale is nan, expected a finite number"},
    {12, "case = 'pull'", "case = 'pull', scale = 1e39", "expected a finite number up to 3.4e38"},
    {12, "case = 'pull'", "case = 'pul'", "'zero', 'stored' or 'pull'; did you mean 'pull'?"},
    {0, "case = 'zero'", "case = 'stored'", "loading 2 with case 'stored'"},
    {3, "'von-mises'", R"("von\u0000\n\u001b[31m")",
     R"(options.alternating_stress is 'von\x00\x0a\x1b[31m')"},
    {3, "[options]", "[options]\nstrength_reduction_factor = 0.0", "is 0, expected a number above 0"},
    {4, "[options]", "[options]\nload_amplitude = 'variable'\nrange_bins = 201",
     "a whole number from 1 to 200"},
    {4, "'von-mises'", "'von-mises'\nevaluate = 2",
     "options.evaluate is 2, expected the number of a [[location]]"},
    {5, "[4,0,1,0]]", "[16777217,0,1,0]]",
     "model.nodes[4] node is 16777217, expected a whole number from 1 to 16777216"},
    {5, "[2,1,0,0]", "[1,1,0,0]", "node 1 is defined twice"},
    {6, "1,2,3,4]]", "1,2,3,5]]", "element 1 has node 5, expected a node of the nodes table"},
    {6, "1,2,3,4]]", "1,2,3,3]]", "element 1 has node 3 twice"},
    {6, "1,2,3,4]]", "1,2,3]]", "element 1 of kind quad4 has 3 nodes, expected 4"},
    {6, "4]]", "4],[1,'quad4',1,2,3,4]]", "defines element 1 twice"},
    {0, "", "[[material]]\nnumber = 2\n", "has no number 1"},
    {9, "'pull.csv'", "'pul.csv'", "stress_case[1].stresses is 'pul.csv', expected an existing CSV file"},
    {14, "[1e6, 100.0]", "[1e6, 401.0]", "stress is 401, expected at most the 400 of the point above"},
    {14, "[1e6, 100.0]", "[1e3, 100.0]", "cycles are 1000, expected more than the 1000"},
    {14, "[1e6, 100.0]", "[1e6, 0.0]", "sn_curve[1].points[2] stress is 0"},
    {14, ", [1e6, 100.0]", "", "has 1 points, expected 2 to"},
    {14, "[[sn_curve]]", "[[sn_curve]]\nmaterial = 11",
     "material is 11, expected a whole number from 1 to 10"},
    {8, "", "[[location]]\nnode = 12\n", "location[1].node is 12, expected a node of the nodes table"},
    {10, "", kLocation + "[[section]]\nlocations = [1, 2]\n", "section[1].locations is 2"},
    {13, "", kLocation + "[[location]]\nnode = 2\n[[section]]\nlocations = [1, 2]\npath_points = 66\n",
     "from 2 to 65"},
    {11, "", kLocation + "[[stored_condition]]\nlocation = 1\nloading = 3\ntemperature = 20.0\n",
     "loading is 3"},
    {10, "", "[elastic_plastic]\nsm_t = [[20, 100], [50, 90]]\nm = 3.0\nn = 1.0\n", "elastic_plastic.n is 1"},
};

TEST(DefinitionErrors, NamePlaceValueAndExpectationAndWriteNothing) {
  for (const Fault& fault : kFaults) {
    test::DefinitionFolder folder;
    const std::string_view piece = fault.piece;
    folder.Replace(piece.empty() ? "[[stress_case]]" : piece,
                   fault.by + (piece.empty() ? "[[stress_case]]" : ""));
    ExpectError(folder, "study.toml:" + (fault.line > 0 ? std::to_string(fault.line) + ": " : ""),
                fault.message);
  }
}

// The whole file with the stresses, or rows under a sound header line.
TEST(DefinitionErrors, OfCsvFiles) {
  const std::tuple<std::string, int, const char*> faults[] = {
      {"element,node,sx,sy,sz,txy,txz\n", 1,
       "lacks the column tyz, expected element,node,sx,sy,sz,txy,txz,tyz"},
      {"1,1,1,0,0,0,0,0,7\n", 2, "holds 9 fields"},
      {"1,1,nan,0,0,0,0,0\n", 2, "column sx is 'nan', expected a finite number"},
      {"1,1,1e39,0,0,0,0,0\n", 2, "column sx is '1e39', expected a finite number up to 3.4e38"},
      {"1,1,10,0,0,0,0,0\n1,2,20,0,0,0,0,0\n", 3, "element 1 has stresses at 2 of its 4 nodes"},
      {"1,1,1,0,0,0,0,0\n1,9,1,0,0,0,0,0\n", 3, "node is 9, expected one of the 4 nodes of element 1"},
      {"1,1,1,0,0,0,0,0\n1,1,1,0,0,0,0,0\n", 3, "element 1 has its stresses at node 1 twice"},
  };
  for (const auto& [content, line, message] : faults) {
    test::DefinitionFolder folder;
    folder.AddFile("pull.csv", (content[0] == '1' ? "element,node,sx,sy,sz,txy,txz,tyz\n" : "") + content);
    ExpectError(folder, "pull.csv:" + std::to_string(line) + ": ", message);
  }
}

// Faults of variable amplitude, in a definition of that kind.
TEST(DefinitionErrors, OfVariableAmplitude) {
  const char* const cases[][3] = {
      {"'road'", "'road'", ""},
      {"history = 'road'", "history = 'raod'", "event[1].history is 'raod'"},
      {"history = 'road'", "history = 'road'\nend_point = 4",
       "event[1].end_point is 4, expected a whole number from 1 to 3"},
      {"history = 'road'", "history = 'road'\nstart_point = 3",
       "end_point is 3, expected a point after the start point 3"},
      {"history = 'road'", "history = 'road'\ncycles = 5", "load_amplitude = 'constant'"},
      {"load_amplitude", "matrix_nodes = [9]\nload_amplitude", "holds 9, expected nodes"},
  };
  for (const auto& [piece, by, message] : cases) {
    test::DefinitionFolder folder;
    folder.Replace("[options]", "[options]\nload_amplitude = 'variable'");
    folder.Replace(
        "cycles = 1000\nloadings = [{case = 'pull'}, {case = 'zero'}]",
        "case = 'pull'\nhistory = 'road'\n[[history]]\nname = 'road'\npoints = [[0, 1], [1, 5], [2, 1]]");
    folder.Replace(piece, by);
    const std::string error = folder.BuildError();
    EXPECT_THAT(error, HasSubstr(message));
    EXPECT_EQ(error.empty(), std::string_view(message).empty()) << error;
  }
}

TEST(DefinitionLimits, LoadingsAndEvents) {
  test::DefinitionFolder folder;
  std::string loadings = "{case = 'pull'}";
  for (int k = 2; k <= 41; ++k) loadings += ", {case = 'pull'}";
  folder.Replace("{case = 'pull'}, {case = 'zero'}", loadings);
  EXPECT_THAT(folder.BuildError(),
              HasSubstr("event[1].loadings[41] is loading 41, expected at most 40 loadings"));
  folder.Replace(", {case = 'pull'}]", "]");
  EXPECT_EQ(folder.BuildError(), "") << "40 of them are well";
  for (int j = 2; j <= 21; ++j) folder.text += "[[event]]\ncycles = 1\n";
  EXPECT_THAT(folder.BuildError(), HasSubstr("event[21].number would be 21, expected at most 20 of them"));
}

TEST(DefinitionLimits, AStudyFromElsewhereIsKept) {
  test::DefinitionFolder folder;
  folder.AddFile("study.MAS", "of another program");
  EXPECT_THAT(folder.BuildError(), HasSubstr("--force"));
  EXPECT_EQ(test::ReadText(folder.Path("study.MAS")), "of another program");
  EXPECT_NO_THROW(folder.Build(true));
  EXPECT_NO_THROW(folder.Build());
}

}  // namespace
}  // namespace zentor
