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
  const char* name;
  const char* piece;
  const char* by;
  const char* place;     // file and line
  const char* found;     // key or column with the value found
  const char* expected;  // what was expected
};

class DefinitionErrors : public testing::TestWithParam<Fault> {};

TEST_P(DefinitionErrors, NamePlaceValueAndExpectationAndWriteNothing) {
  const Fault& fault = GetParam();
  test::DefinitionFolder folder;
  folder.AddFile("nodes.csv", "node,x,y,z\n1,0,0,0\n2,1,0,0\n3,1,1,0\n4,0,1,oops\n");
  folder.AddFile("twice.csv", "node,x,y,z\n1,0,0,0\n2,1,0,0\n1,1,1,0\n");
  folder.AddFile("missing.csv", "element,node,sx,sy,sz,txy,txz\n");
  folder.AddFile("typo.csv", "element,knode,sx,sy,sz,txy,txz,tyz\n");
  folder.AddFile("part.csv", "element,node,sx,sy,sz,txy,txz,tyz\n1,1,10,0,0,0,0,0\n1,2,20,0,0,0,0,0\n");
  folder.AddFile("stranger.csv", "element,node,sx,sy,sz,txy,txz,tyz\n1,1,1,0,0,0,0,0\n1,9,1,0,0,0,0,0\n");
  folder.AddFile("again.csv", "element,node,sx,sy,sz,txy,txz,tyz\n1,1,1,0,0,0,0,0\n1,1,1,0,0,0,0,0\n");
  folder.AddFile("long.csv", "element,node,sx,sy,sz,txy,txz,tyz\n1,1,1,0,0,0,0,0,7\n");
  folder.AddFile("nan.csv", "element,node,sx,sy,sz,txy,txz,tyz\n1,1,nan,0,0,0,0,0\n");
  folder.AddFile("huge.csv", "element,node,sx,sy,sz,txy,txz,tyz\n1,1,1e39,0,0,0,0,0\n");
  folder.AddFile("empty.csv", "");
  folder.Replace(fault.piece, fault.by);
  EXPECT_THAT(folder.BuildError(),
              AllOf(StartsWith(fault.place), HasSubstr(fault.found), HasSubstr(fault.expected)));
  EXPECT_FALSE(std::filesystem::exists(folder.Base() + ".MAS"));
  EXPECT_FALSE(std::filesystem::exists(folder.Base() + ".STE.new"));
}

constexpr const char* kCase = "[[stress_case]]\nname = 'pull'";

const Fault kFaults[] = {
    {"Toml", "title = 'small'", "title = small", "study.toml:1: ", "", ""},
    {"UnknownKey", "cycles = 1000", "cycels = 1000\ncycles = 1000",
     "study.toml:11: ", "'cycels' is not a key of event[1]", "did you mean 'cycles'?"},
    {"UnknownTable", "[options]", "[option]", "study.toml:2: ", "'option' is not a key of this file",
     "did you mean 'options'?"},
    {"MissingKey", "cycles = 1000\n", "", "study.toml:10: ", "event[1].cycles is missing",
     "a whole number of at least 1"},
    {"WrongType", "cycles = 1000", "cycles = '1000'", "study.toml:11: ", "event[1].cycles is '1000'",
     "a whole number of at least 1"},
    {"IntegerTooLarge", "cycles = 1000", "cycles = 3000000000", "study.toml:11: ", "cycles is 3000000000",
     "whole number"},
    {"RealNotFinite", "{case = 'pull'}", "{case = 'pull', scale = nan}",
     "study.toml:12: ", "event[1].loadings[1].scale is nan", "a finite number"},
    {"RealBeyondSinglePrecision", "{case = 'pull'}", "{case = 'pull', scale = 1e39}",
     "study.toml:12: ", "scale is 1e+39", "a finite number up to 3.4e38"},
    {"OptionName", "'von-mises'", "'von-misses'",
     "study.toml:3: ", "options.alternating_stress is 'von-misses'", "did you mean 'von-mises'?"},
    {"ControlCharacters", "'von-mises'", R"("von\u0000\n\u001b[31m")",
     "study.toml:3: ", R"(options.alternating_stress is 'von\x00\x0a\x1b[31m')", "'max-principal'"},
    {"ZeroFactor", "[options]", "[options]\nstrength_reduction_factor = 0.0",
     "study.toml:3: ", "strength_reduction_factor is 0", "a number above 0"},
    {"TooManyBins", "[options]", "[options]\nload_amplitude = 'variable'\nrange_bins = 201",
     "study.toml:4: ", "options.range_bins is 201", "a whole number from 1 to 200"},
    {"KeyOfOtherAmplitude", "[options]", "[options]\nfilter_percent = 5",
     "study.toml:3: ", "options.filter_percent", "only with load_amplitude = 'variable'"},
    {"TitleTooLong", "'small'",
     "'123456789 123456789 123456789 123456789 123456789 123456789 123456789 123456789 x'",
     "study.toml:1: ", "title is '123456789", "at most 80 characters (it has 81)"},

    {"NoSuchCsv", "'pull.csv'", "'pul.csv'", "study.toml:9: ", "stress_case[1].stresses is 'pul.csv'",
     "an existing CSV file"},
    {"CsvIsAFolder", "'pull.csv'", "'.'", "study.toml:9: ", "stress_case[1].stresses is '.'", "is a folder"},
    {"EmptyCsv", "'pull.csv'", "'empty.csv'", "empty.csv: ", "is empty", "expected a header line"},
    {"CsvColumnMissing", "'pull.csv'", "'missing.csv'", "missing.csv:1: ", "lacks the column tyz",
     "expected element,node,sx,sy,sz,txy,txz,tyz,[layer],[surface]"},
    {"CsvColumnUnknown", "'pull.csv'", "'typo.csv'", "typo.csv:1: ", "'knode' is not a column",
     "did you mean 'node'?"},
    {"CsvRowTooLong", "'pull.csv'", "'long.csv'", "long.csv:2: ", "holds 9 fields", "at most the 8"},
    {"CsvNotANumber", "nodes = [[1,0,0,0],[2,1,0,0],[3,1,1,0],[4,0,1,0]]", "nodes = 'nodes.csv'",
     "nodes.csv:5: ", "column z is 'oops'", "a finite number"},
    {"CsvNan", "'pull.csv'", "'nan.csv'", "nan.csv:2: ", "column sx is 'nan'", "a finite number"},
    {"CsvBeyondSinglePrecision", "'pull.csv'", "'huge.csv'", "huge.csv:2: ", "column sx is '1e39'",
     "up to 3.4e38"},
    {"InlineRowTooShort", "[4,0,1,0]]", "[4,0,1]]", "study.toml:5: ", "model.nodes is a list of 3",
     "a list [node, x, y, z, cs]"},

    {"NodeTwice", "nodes = [[1,0,0,0],[2,1,0,0],[3,1,1,0],[4,0,1,0]]", "nodes = 'twice.csv'",
     "study.toml:5: ", "defines node 1 twice", "every node once"},
    {"NodeNumberTooLarge", "[4,0,1,0]]", "[16777217,0,1,0]]",
     "study.toml:5: ", "model.nodes[4] node is 16777217", "from 1 to 16777216"},
    {"ElementKind", "'quad4'", "'quad5'", "study.toml:6: ", "kind is 'quad5'", "did you mean 'quad4'?"},
    {"ElementNodeMissing", "1,2,3,4]]", "1,2,3,5]]", "study.toml:6: ", "element 1 has node 5",
     "a node of the nodes table"},
    {"ElementNodeTwice", "1,2,3,4]]", "1,2,3,3]]", "study.toml:6: ", "element 1 has node 3 twice",
     "different nodes"},
    {"ElementNodeCount", "1,2,3,4]]", "1,2,3]]", "study.toml:6: ", "element 1 of kind quad4 has 3 nodes",
     "expected 4"},
    {"ElementTwice", "[[1,'quad4',1,2,3,4]]", "[[1,'quad4',1,2,3,4],[1,'quad4',1,2,3,4]]",
     "study.toml:6: ", "defines element 1 twice", "every element once"},
    {"ElementMaterial", kCase, "[[material]]\nnumber = 2\n[[stress_case]]\nname = 'pull'",
     "study.toml:", "has no number 1", "which element 1 is made of"},

    {"StressesAtSomeNodes", "'pull.csv'", "'part.csv'",
     "part.csv:3: ", "element 1 has stresses at 2 of its 4 nodes", "all or none"},
    {"StressAtForeignNode", "'pull.csv'", "'stranger.csv'", "stranger.csv:3: ", "node is 9",
     "one of the 4 nodes of element 1"},
    {"StressTwice", "'pull.csv'", "'again.csv'",
     "again.csv:3: ", "element 1 has its stresses at node 1 twice", "once"},
    {"CaseNameReserved", "name = 'pull'", "name = 'zero'", "study.toml:8: ", "stress_case[1].name is 'zero'",
     "a name other"},

    {"UnknownCase", "{case = 'pull'}", "{case = 'pul'}", "study.toml:12: ",
     "event[1].loadings[1].case is 'pul'", "'zero', 'stored' or 'pull'; did you mean 'pull'?"},
    {"LoadingNumberTaken", "{case = 'zero'}", "{case = 'zero', number = 1}", "study.toml:12: ", "number is 1",
     "a number that no other loading has"},
    {"EventNumberTooLarge", "cycles = 1000", "cycles = 1000\nnumber = 21",
     "study.toml:12: ", "event[1].number is 21", "from 1 to 20"},
    {"StoredWithAllNodes", "{case = 'zero'}", "{case = 'stored'}",
     "study.toml:", "loading 2 with case 'stored'", "since all nodes are evaluated"},

    {"CurveRises", "[1e6, 100.0]", "[1e6, 401.0]", "study.toml:14: ", "stress is 401",
     "at most the 400 of the point above"},
    {"CurveCyclesFall", "[1e6, 100.0]", "[1e3, 100.0]", "study.toml:14: ", "cycles are 1000",
     "more than the 1000"},
    {"CurveStressZero", "[1e6, 100.0]", "[1e6, 0.0]", "study.toml:14: ", "sn_curve[1].points[2] stress is 0",
     "above 0"},
    {"CurveOfOnePoint", ", [1e6, 100.0]", "", "study.toml:14: ", "has 1 points", "expected 2 to"},
    {"CurveOfUnknownMaterial", "[[sn_curve]]", "[[sn_curve]]\nmaterial = 11",
     "study.toml:14: ", "material is 11", "from 1 to 10"},
    {"NoCurve", "[[sn_curve]]\npoints = [[1e3, 400.0], [1e6, 100.0]]", "", "study.toml",
     "sn_curve is missing", "at least one table [[sn_curve]]"},
    {"CorrectionWithoutStrength", "'von-mises'", "'von-mises'\nmean_stress_correction = 'goodman'",
     "study.toml:4: ", "mean_stress_correction needs strengths", "[[material]]"},
    {"BuiltInWithoutModulus", "'von-mises'", "'von-mises'\nsn_curves = 'carbon-steel'",
     "study.toml:", "sn_curve is never used", "expected none"},

    {"LocationMissing", "'von-mises'", "'von-mises'\nevaluate = 2", "study.toml:4: ", "options.evaluate is 2",
     "the number of a [[location]]"},
    {"LocationNodeMissing", kCase, "[[location]]\nnode = 12\n[[stress_case]]\nname = 'pull'",
     "study.toml:8: ", "location[1].node is 12", "a node of the nodes table"},
    {"SectionEnds", kCase,
     "[[location]]\nnode = 1\n[[section]]\nlocations = [1, 2]\n[[stress_case]]\nname = 'pull'",
     "study.toml:10: ", "section[1].locations is 2", "the number of a [[location]]"},
    {"TooManyPathPoints", kCase,
     "[[location]]\nnode = 1\n[[location]]\nnode = 2\n[[section]]\nlocations = [1, 2]\npath_points = 66\n"
     "[[stress_case]]\nname = 'pull'",
     "study.toml:13: ", "section[1].path_points is 66", "from 2 to 65"},
    {"ConditionLoading", kCase,
     "[[location]]\nnode = 1\n[[stored_condition]]\nlocation = 1\nloading = 3\ntemperature = "
     "20.0\n[[stress_case]]\n"
     "name = 'pull'",
     "study.toml:11: ", "stored_condition[1].loading is 3", "the number of a loading"},
    {"SmRises", kCase,
     "[elastic_plastic]\nsm_t = [[20, 100], [50, 101]]\nm = 3.0\nn = 0.2\n[[stress_case]]\nname = 'pull'",
     "study.toml:8: ", "sm is 101", "at most the 100"},
    {"ParameterN", kCase,
     "[elastic_plastic]\nsm_t = [[20, 100], [50, 90]]\nm = 3.0\nn = 1.0\n[[stress_case]]\nname = 'pull'",
     "study.toml:10: ", "elastic_plastic.n is 1", "a number above 0 and below 1"},
    {"NotMultiStudy", kCase, "[multi_study]\nstudies = ['a']\n[[stress_case]]\nname = 'pull'",
     "study.toml:7: ", "multi_study", "only with layout = 'multi-study'"},
};

INSTANTIATE_TEST_SUITE_P(Faults, DefinitionErrors, testing::ValuesIn(kFaults),
                         [](const auto& fault) { return std::string(fault.param.name); });

// Faults of variable amplitude, in a definition of that kind.
TEST(VariableAmplitudeErrors, NamePlaceValueAndExpectation) {
  const auto message = [](std::string_view piece, std::string_view by) {
    test::DefinitionFolder folder;
    folder.Replace("[options]", "[options]\nload_amplitude = 'variable'");
    folder.Replace(
        "cycles = 1000\nloadings = [{case = 'pull'}, {case = 'zero'}]",
        "case = 'pull'\nhistory = 'road'\n[[history]]\nname = 'road'\npoints = [[0, 1], [1, 5], [2, 1]]");
    folder.Replace(piece, by);
    return folder.BuildError();
  };
  EXPECT_EQ(message("'road'", "'road'"), "");
  EXPECT_THAT(message("history = 'road'", "history = 'raod'"), HasSubstr("event[1].history is 'raod'"));
  EXPECT_THAT(message("[2, 1]", "[0.5, 1]"),
              HasSubstr("time is 0.5, expected at least the 1 of the row above"));
  EXPECT_THAT(message(", [1, 5], [2, 1]", ""), HasSubstr("has 1 points, expected at least 2"));
  EXPECT_THAT(message("history = 'road'", "history = 'road'\nend_point = 4"),
              HasSubstr("event[1].end_point is 4, expected a whole number from 1 to 3"));
  EXPECT_THAT(message("history = 'road'", "history = 'road'\nstart_point = 3"),
              HasSubstr("end_point is 3, expected a point after the start point 3"));
  EXPECT_THAT(message("'von-mises'", "'intensity'"), HasSubstr("must be 'von-mises'"));
  EXPECT_THAT(message("history = 'road'", "history = 'road'\ncycles = 5"),
              HasSubstr("load_amplitude = 'constant'"));
  EXPECT_THAT(message("load_amplitude", "matrix_nodes = [9]\nload_amplitude"),
              HasSubstr("holds 9, expected nodes"));
  EXPECT_THAT(message("load_amplitude", "shared_history = true\nload_amplitude"), "");
}

TEST(DefinitionLimits, LoadingsAndEvents) {
  test::DefinitionFolder folder;
  std::string loadings = "{case = 'pull'}";
  for (int k = 2; k <= 41; ++k) loadings += ", {case = 'pull'}";
  folder.Replace("{case = 'pull'}, {case = 'zero'}", loadings);
  EXPECT_THAT(folder.BuildError(),
              HasSubstr("event[1].loadings[41] is loading 41, expected at most 40 loadings"));

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
