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
    {"cycles = 1000", "cycles = '1000'", 11, "event[1].cycles is '1000'", "a whole number of at least 1"},
    {"{case = 'pull'}", "{case = 'pull', scale = 1e39}", 12, "scale is 1e+39",
     "a finite number up to 3.4e38"},
    {"'von-mises'", R"("von\u0000\n\u001b[31m")", 3, R"(options.alternating_stress is 'von\x00\x0a\x1b[31m')",
     "'max-principal'"},
    {"[options]", "[options]\nload_amplitude = 'variable'\nrange_bins = 201", 4, "options.range_bins is 201",
     "a whole number from 1 to 200"},
    {"[4,0,1,0]]", "[16777217,0,1,0]]", 5, "model.nodes[4] node is 16777217", "from 1 to 16777216"},
    {"1,2,3,4]]", "1,2,3,5]]", 6, "element 1 has node 5", "a node of the nodes table"},
    {"1,2,3,4]]", "1,2,3]]", 6, "element 1 of kind quad4 has 3 nodes", "expected 4"},
    {"[[1,'quad4',1,2,3,4]]", "[[1,'quad4',1,2,3,4],[1,'quad4',1,2,3,4]]", 6, "defines element 1 twice",
     "every element once"},
    {kCase, "[[material]]\nnumber = 2\n[[stress_case]]\n", 0, "has no number 1",
     "which element 1 is made of"},
    {"{case = 'pull'}", "{case = 'pul'}", 12, "event[1].loadings[1].case is 'pul'",
     "'zero', 'stored' or 'pull'; did you mean 'pull'?"},
    {"cycles = 1000", "cycles = 1000\nnumber = 21", 12, "event[1].number is 21", "from 1 to 20"},
    {"{case = 'zero'}", "{case = 'stored'}", 0, "loading 2 with case 'stored'",
     "since all nodes are evaluated"},
    {kPoints, "[1e6, 401.0]", 14, "stress is 401", "at most the 400 of the point above"},
    {"[[sn_curve]]\npoints = [[1e3, 400.0], [1e6, 100.0]]", "", 0, "sn_curve is missing",
     "at least one table [[sn_curve]]"},
    {kCase, "[[location]]\nnode = 1\n[[section]]\nlocations = [1, 2]\n[[stress_case]]\n", 10,
     "section[1].locations is 2", "the number of a [[location]]"},
    {"[2,1,0,0]", "[1,1,0,0]", 5, "node 1 is defined twice", "every node once"},
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
      {"element,node,sx,sy,sz,txy,txz\n", "pull.csv:1: ", "lacks the column tyz",
       "expected element,node,sx,sy,sz,txy,txz,tyz,[layer],[surface]"},
      {"1,1,1,0,0,0,0,0,7\n", "pull.csv:2: ", "holds 9 fields", "at most the 8"},
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
