#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "apps/definition_folder.h"

namespace zentor {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

// A fault in the definition: the piece it replaces, and what the message must say.
struct Fault {
  const char* piece;
  const char* by;
  int line;              // of the definition, 0 for one that is not pinned
  const char* found;     // key or column with the value found
  const char* expected;  // what was expected
};

void ExpectError(test::DefinitionFolder& folder, const std::string& place, const char* found,
                 const char* expected) {
  EXPECT_THAT(folder.BuildError(), AllOf(StartsWith(place), HasSubstr(found), HasSubstr(expected)));
  EXPECT_FALSE(std::filesystem::exists(folder.Base() + ".MAS")) << found;
  EXPECT_FALSE(std::filesystem::exists(folder.Base() + ".STE.new")) << found;
}

constexpr const char* kCase = "[[stress_case]]\n";
constexpr const char* kPoints = "[1e6, 100.0]";

const Fault kFaults[] = {
    {"title = 'small'", "title = small", 1, "", ""},
    {"cycles = 1000", "cycels = 1000\ncycles = 1000", 11, "'cycels' is not a key of event[1]",
     "did you mean 'cycles'?"},
    {"[options]", "[option]", 2, "'option' is not a key of this file", "did you mean 'options'?"},
    {"cycles = 1000\n", "", 10, "event[1].cycles is missing", "a whole number of at least 1"},
    {"cycles = 1000", "cycles = '1000'", 11, "event[1].cycles is '1000'", "a whole number of at least 1"},
    {"cycles = 1000", "cycles = 3000000000", 11, "cycles is 3000000000", "whole number"},
    {"{case = 'pull'}", "{case = 'pull', scale = nan}", 12, "event[1].loadings[1].scale is nan",
     "a finite number"},
    {"{case = 'pull'}", "{case = 'pull', scale = 1e39}", 12, "scale is 1e+39",
     "a finite number up to 3.4e38"},
    {"'von-mises'", "'von-misses'", 3, "options.alternating_stress is 'von-misses'",
     "did you mean 'von-mises'?"},
    {"'von-mises'", R"("von\u0000\n\u001b[31m")", 3, R"(options.alternating_stress is 'von\x00\x0a\x1b[31m')",
     "'max-principal'"},
    {"[options]", "[options]\nstrength_reduction_factor = 0.0", 3, "strength_reduction_factor is 0",
     "a number above 0"},
    {"[options]", "[options]\nload_amplitude = 'variable'\nrange_bins = 201", 4, "options.range_bins is 201",
     "a whole number from 1 to 200"},
    {"[options]", "[options]\nfilter_percent = 5", 3, "options.filter_percent",
     "only with load_amplitude = 'variable'"},
    {"'small'", "'123456789 123456789 123456789 123456789 123456789 123456789 123456789 123456789 x'", 1,
     "title is '123456789", "at most 80 characters (it has 81)"},
    {"'pull.csv'", "'pul.csv'", 9, "stress_case[1].stresses is 'pul.csv'", "an existing CSV file"},
    {"'pull.csv'", "'.'", 9, "stress_case[1].stresses is '.'", "is a folder"},
    {"[4,0,1,0]]", "[4,0,1]]", 5, "model.nodes is a list of 3", "a list [node, x, y, z, cs]"},
    {"[4,0,1,0]]", "[16777217,0,1,0]]", 5, "model.nodes[4] node is 16777217", "from 1 to 16777216"},
    {"'quad4'", "'quad5'", 6, "kind is 'quad5'", "did you mean 'quad4'?"},
    {"1,2,3,4]]", "1,2,3,5]]", 6, "element 1 has node 5", "a node of the nodes table"},
    {"1,2,3,4]]", "1,2,3,3]]", 6, "element 1 has node 3 twice", "different nodes"},
    {"1,2,3,4]]", "1,2,3]]", 6, "element 1 of kind quad4 has 3 nodes", "expected 4"},
    {"[[1,'quad4',1,2,3,4]]", "[[1,'quad4',1,2,3,4],[1,'quad4',1,2,3,4]]", 6, "defines element 1 twice",
     "every element once"},
    {kCase, "[[material]]\nnumber = 2\n[[stress_case]]\n", 0, "has no number 1",
     "which element 1 is made of"},
    {"name = 'pull'", "name = 'zero'", 8, "stress_case[1].name is 'zero'", "a name other"},
    {"{case = 'pull'}", "{case = 'pul'}", 12, "event[1].loadings[1].case is 'pul'",
     "'zero', 'stored' or 'pull'; did you mean 'pull'?"},
    {"{case = 'zero'}", "{case = 'zero', number = 1}", 12, "number is 1",
     "a number that no other loading has"},
    {"cycles = 1000", "cycles = 1000\nnumber = 21", 12, "event[1].number is 21", "from 1 to 20"},
    {"{case = 'zero'}", "{case = 'stored'}", 0, "loading 2 with case 'stored'",
     "since all nodes are evaluated"},
    {kPoints, "[1e6, 401.0]", 14, "stress is 401", "at most the 400 of the point above"},
    {kPoints, "[1e3, 100.0]", 14, "cycles are 1000", "more than the 1000"},
    {kPoints, "[1e6, 0.0]", 14, "sn_curve[1].points[2] stress is 0", "above 0"},
    {", [1e6, 100.0]", "", 14, "has 1 points", "expected 2 to"},
    {"[[sn_curve]]", "[[sn_curve]]\nmaterial = 11", 14, "material is 11", "from 1 to 10"},
    {"[[sn_curve]]\npoints = [[1e3, 400.0], [1e6, 100.0]]", "", 0, "sn_curve is missing",
     "at least one table [[sn_curve]]"},
    {"'von-mises'", "'von-mises'\nmean_stress_correction = 'goodman'", 4,
     "mean_stress_correction needs strengths", "[[material]]"},
    {"'von-mises'", "'von-mises'\nsn_curves = 'carbon-steel'", 0, "sn_curve is never used", "expected none"},
    {"'von-mises'", "'von-mises'\nevaluate = 2", 4, "options.evaluate is 2", "the number of a [[location]]"},
    {kCase, "[[location]]\nnode = 12\n[[stress_case]]\n", 8, "location[1].node is 12",
     "a node of the nodes table"},
    {kCase, "[[location]]\nnode = 1\n[[section]]\nlocations = [1, 2]\n[[stress_case]]\n", 10,
     "section[1].locations is 2", "the number of a [[location]]"},
    {kCase,
     "[[location]]\nnode = 1\n[[location]]\nnode = 2\n[[section]]\nlocations = [1, 2]\npath_points = "
     "66\n[[stress_case]]\n",
     13, "section[1].path_points is 66", "from 2 to 65"},
    {kCase,
     "[[location]]\nnode = 1\n[[stored_condition]]\nlocation = 1\nloading = 3\ntemperature = "
     "20.0\n[[stress_case]]\n",
     11, "stored_condition[1].loading is 3", "the number of a loading"},
    {kCase, "[elastic_plastic]\nsm_t = [[20, 100], [50, 101]]\nm = 3.0\nn = 0.2\n[[stress_case]]\n", 8,
     "sm is 101", "at most the 100"},
    {kCase, "[elastic_plastic]\nsm_t = [[20, 100], [50, 90]]\nm = 3.0\nn = 1.0\n[[stress_case]]\n", 10,
     "elastic_plastic.n is 1", "a number above 0 and below 1"},
    {kCase, "[multi_study]\nstudies = ['a']\n[[stress_case]]\n", 7, "multi_study",
     "only with layout = 'multi-study'"},
    {"[2,1,0,0]", "[1,1,0,0]", 5, "node 1 is defined twice", "every node once"},
    {"[3,1,1,0]", "[1,1,1,0]", 5, "defines node 1 twice", "every node once"},
};

TEST(DefinitionErrors, NamePlaceValueAndExpectationAndWriteNothing) {
  for (const Fault& fault : kFaults) {
    test::DefinitionFolder folder;
    folder.Replace(fault.piece, fault.by);
    const std::string line = fault.line > 0 ? std::to_string(fault.line) + ": " : "";
    ExpectError(folder, "study.toml:" + line, fault.found, fault.expected);
  }
}

// Faults of the CSV file with the stresses: the whole file, or rows under a sound header line.
struct CsvFault {
  std::string_view content;
  const char* place;
  const char* found;
  const char* expected;
};

TEST(DefinitionErrors, OfCsvFiles) {
  constexpr std::string_view kHeader = "element,node,sx,sy,sz,txy,txz,tyz\n";
  const CsvFault faults[] = {
      {"", "pull.csv: ", "is empty", "expected a header line"},
      {"element,node,sx,sy,sz,txy,txz\n", "pull.csv:1: ", "lacks the column tyz",
       "expected element,node,sx,sy,sz,txy,txz,tyz,[layer],[surface]"},
      {"element,knode,sx,sy,sz,txy,txz,tyz\n", "pull.csv:1: ", "'knode' is not a column",
       "did you mean 'node'?"},
      {"1,1,1,0,0,0,0,0,7\n", "pull.csv:2: ", "holds 9 fields", "at most the 8"},
      {"1,1,oops,0,0,0,0,0\n", "pull.csv:2: ", "column sx is 'oops'", "a finite number"},
      {"1,1,nan,0,0,0,0,0\n", "pull.csv:2: ", "column sx is 'nan'", "a finite number"},
      {"1,1,1e39,0,0,0,0,0\n", "pull.csv:2: ", "column sx is '1e39'", "up to 3.4e38"},
      {"1,1,10,0,0,0,0,0\n1,2,20,0,0,0,0,0\n", "pull.csv:3: ", "element 1 has stresses at 2 of its 4 nodes",
       "all or none"},
      {"1,1,1,0,0,0,0,0\n1,9,1,0,0,0,0,0\n", "pull.csv:3: ", "node is 9", "one of the 4 nodes of element 1"},
      {"1,1,1,0,0,0,0,0\n1,1,1,0,0,0,0,0\n", "pull.csv:3: ", "element 1 has its stresses at node 1 twice",
       "once"},
  };
  for (const CsvFault& fault : faults) {
    test::DefinitionFolder folder;
    const bool rows = fault.content.starts_with('1');
    folder.AddFile("pull.csv", std::string(rows ? kHeader : "").append(fault.content));
    ExpectError(folder, fault.place, fault.found, fault.expected);
  }
}

// Faults of variable amplitude, in a definition of that kind.
TEST(DefinitionErrors, OfVariableAmplitude) {
  const char* const cases[][3] = {
      {"'road'", "'road'", ""},
      {"history = 'road'", "history = 'raod'", "event[1].history is 'raod'"},
      {"[2, 1]", "[0.5, 1]", "time is 0.5, expected at least the 1 of the row above"},
      {", [1, 5], [2, 1]", "", "has 1 points, expected at least 2"},
      {"history = 'road'", "history = 'road'\nend_point = 4",
       "event[1].end_point is 4, expected a whole number from 1 to 3"},
      {"history = 'road'", "history = 'road'\nstart_point = 3",
       "end_point is 3, expected a point after the start point 3"},
      {"'von-mises'", "'intensity'", "must be 'von-mises'"},
      {"history = 'road'", "history = 'road'\ncycles = 5", "load_amplitude = 'constant'"},
      {"load_amplitude", "matrix_nodes = [9]\nload_amplitude", "holds 9, expected nodes"},
      {"load_amplitude", "shared_history = true\nload_amplitude", ""},
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

  test::DefinitionFolder events;
  for (int j = 2; j <= 21; ++j) events.text += "[[event]]\ncycles = 1\n";
  EXPECT_THAT(events.BuildError(), HasSubstr("event[21].number would be 21, expected at most 20 of them"));
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
