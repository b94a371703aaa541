#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <tuple>

#include "apps/definition_folder.h"
#include "authoring/element_kind.h"

namespace zentor {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

void ExpectError(test::DefinitionFolder& folder, const std::string& place, const char* message) {
  EXPECT_THAT(folder.BuildError(), AllOf(StartsWith(place), HasSubstr(message)));
  EXPECT_FALSE(std::filesystem::exists(folder.Base() + ".MAS")) << message;
  EXPECT_FALSE(std::filesystem::exists(folder.Base() + ".BLD")) << message;
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
    {11, "= 1000", "= 3000000000",
     "event[1].cycles is 3000000000, expected at most 2147483647, the largest whole number of 32 bits"},
    {9, "'pull.csv'", R"("C:\data\pull.csv")",
     "write the path between single quotes or with forward slashes"},
    {9, "'pull.csv'", "'pull.csv", "a text has no closing quote"},
    {12, "= 1000", "= 1000\nnumber = 21", "event[1].number is 21, expected a whole number from 1 to 20"},
    {12, "case = 'pull'", "case = 'pull', scale = nan", "loadings[1].scale is nan, expected a finite number"},
    {12, "case = 'pull'", "case = 'pull', scale = 1e39", "expected a finite number up to 3.4e38"},
    {12, "case = 'pull'", "case = 'pul'", "'zero', 'stored' or 'pull'; did you mean 'pull'?"},
    {0, "case = 'zero'", "case = 'stored'", "loading 2 with case 'stored'"},
    {3, "'von-mises'", R"("von\u0000\n\u001b[31m")",
     R"(options.alternating_stress is 'von\x00\x0a\x1b[31m')"},
    {4, "[options]", "[options]\n\ninfinite_life = 9e5",
     "infinite_life is 900000 cycles, fewer than the 1000000"},
    {10, ", {case = 'zero'}", "", "event 1 has one loading and nothing to pair it with"},
    {15, "[1e6, 100.0]]", "[1e6, 100.0]]\n[[sn_curve]]\npoints = [[1e3, 4.0], [1e6, 1.0]]",
     "S-N curve 2 is not looked at"},
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
    {6, "4]]", "4],[1,'quad4',1,2,3,4]]", "element 1 is defined twice"},
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
      {"1,1,10,0,0,0,0,0\n1,2,20,0,0,0,0,0\n", 0,
       "element 1 has no row for its node 3 and 1 more of its nodes, expected one for each of its 4"},
      {"element;node;sx\n1;1;1,5\n", 1, "separated by semicolons, expected commas and decimal points"},
      {"element\tnode\tsx\n", 1, "separated by tabs"},
      {"1,1,10,0,0,0,0,0", 1, "the first line holds numbers, expected a header line"},
      {"element,node,sx,\n", 1, "the header line ends with a comma"},
      {"\"element\",node,sx\n", 1, "the header line has names in quotes"},
      {"\xFF\xFE" + std::string("e\0l\0", 4), 0, "is text in UTF-16, expected UTF-8"},
      {"1,1,1,0,0,0,0,0,\n", 2, "ends with a comma, expected none behind the last of 8 fields"},
      {"1,1,1,5,0,0,0,0,0\n", 2, "a decimal comma makes two fields of a number, write 1.5 for 1,5"},
      {"1,1,\"1\",0,0,0,0,0\n", 2,
       "column sx is '\"1\"', expected a finite number up to 3.4e38; write it without"},
      {"1,0,1,0,0,0,0,0\n", 2,
       "column node is '0', expected a whole number from 1 to 16777216; numbers begin at 1"},
      {"1,1,1,0,0,0,0,0\n1,2.5,1,0,0,0,0,0\n", 3, "column node is '2.5', expected a whole number"},
      {"1,1,1,0,0,0,0,0\n1,9,1,0,0,0,0,0\n", 3, "node is 9, expected one of the 4 nodes of element 1"},
      {"1,1,1,0,0,0,0,0\n1,1,1,0,0,0,0,0\n", 3, "element 1 has its stresses at node 1 twice"},
  };
  for (const auto& [content, line, message] : faults) {
    test::DefinitionFolder folder;
    const bool rows = content[0] == '1' && content.back() == '\n';
    folder.AddFile("pull.csv", (rows ? "element,node,sx,sy,sz,txy,txz,tyz\n" : "") + content);
    ExpectError(folder, "pull.csv:" + (line > 0 ? std::to_string(line) + ": " : " "), message);
  }
}

// Each definition with all that is said of it: every mistake once, none of what follows from it.
TEST(DefinitionErrors, ComeInOneGo) {
  using Edits = std::vector<std::pair<const char*, std::string>>;
  const std::pair<Edits, const char*> cases[] = {
      {{{"alternating_stress", "alternating_stres"},
        {"cycles", "cycels"},
        {"[2,1,0,0]", "[2,'a',0,0]"},
        {"[4,0,1,0]", "[3,0,1,0]"},
        {"'pull'}", "'pul', scale = 'x'}"},
        {"[1e6, 100.0]", "[1e6, 500.0], [1e7, 450.0]"}},
       "study.toml:3: 'alternating_stres' is not a key of options; did you mean 'alternating_stress'?\n"
       "study.toml:5: model.nodes[2] x is 'a', expected a finite number up to 3.4e38\n"
       "study.toml:5: model.nodes[4]: node 3 is defined twice, expected every node once\n"
       "study.toml:11: 'cycels' is not a key of event[1]; did you mean 'cycles'?\n"
       "study.toml:12: event[1].loadings[1].case is 'pul', expected a stress case: 'zero', 'stored' or "
       "'pull'; "
       "did you mean 'pull'?\n"
       "study.toml:12: event[1].loadings[1].scale is 'x', expected a finite number up to 3.4e38\n"
       "study.toml:14: sn_curve[1].points[2]: stress is 500, expected at most the 400 of the point above; "
       "the "
       "curve must not rise"},
      {{{"[options]", "[option]"}, {"[[event]]", "[[evnt]]"}, {"'quad4'", "'quad5'"}},
       "study.toml:2: 'option' is not a key of this file; did you mean 'options'?\n"
       "study.toml:6: model.elements[1]: kind is 'quad5', expected one of KINDS; did you mean 'quad4'?\n"
       "study.toml:10: 'evnt' is not a key of this file; did you mean 'event'?"},
      {{{"name = 'pull'", "name = 'zero'"}, {"points", "point"}},
       "study.toml:8: stress_case[1].name is 'zero', expected a name other than 'zero' and 'stored', which "
       "loadings use for cases without stress results\n"
       "study.toml:14: 'point' is not a key of sn_curve[1]; did you mean 'points'?"},
      // The stresses are read for their mistakes too when others were found before.
      {{{"cycles = 1000", "cycles = 0"}, {"'pull.csv'", "'short.csv'"}},
       "study.toml:11: event[1].cycles is 0, expected a whole number of at least 1\n"
       "short.csv:2: column sx is 'x', expected a finite number up to 3.4e38\n"
       "short.csv:3: element is 2, expected an element of the elements table"},
      {{{"[options]", "[options]\nload_amplitude = 'varible'"}, {"cycles = 1000", "history = 1"}},
       "study.toml:3: options.load_amplitude is 'varible', expected 'constant' or 'variable'; did you mean "
       "'variable'?"},
  };
  for (const auto& [edits, expected] : cases) {
    test::DefinitionFolder folder;
    folder.AddFile("short.csv", "element,node,sx,sy,sz,txy,txz,tyz\n1,1,x,0,0,0,0,0\n2,1,1,0,0,0,0,0\n");
    for (const auto& [piece, by] : edits) folder.Replace(piece, by);
    const std::string kinds = ElementKindNames();
    std::string error = folder.BuildError();
    if (const std::size_t at = error.find(kinds); at != std::string::npos)
      error.replace(at, kinds.size(), "KINDS");
    EXPECT_EQ(error, expected);
  }
}

TEST(DefinitionErrors, ShowTwentyAndOfOneTableFive) {
  test::DefinitionFolder folder;
  folder.Replace("[2,1,0,0]", "[2,1,0,0],[0,0,0,0],[0,0,0,0],[0,0,0,0],[0,0,0,0],[0,0,0,0],[0,0,0,0]");
  for (int i = 0; i < 18; ++i) folder.text += "[[event]]\ncycles = 0\n";
  const std::string error = folder.BuildError();
  EXPECT_EQ(std::count(error.begin(), error.end(), '\n'), 20);
  EXPECT_THAT(error, AllOf(HasSubstr("nodes[7] node"), Not(HasSubstr("nodes[8] node")),
                           testing::EndsWith("\nand 4 more")));
  folder.text.clear();
  EXPECT_THAT(folder.BuildError(), HasSubstr("[model]"));
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
      {"[[0, 1], [1, 5], [2, 1]]", "'untimed.csv'",
       "history[1].points of history 'road' have no times, expected a time in every row"},
      {"load_amplitude", "matrix_nodes = [9]\nload_amplitude", "holds 9, expected nodes"},
  };
  for (const auto& [piece, by, message] : cases) {
    test::DefinitionFolder folder;
    folder.Replace("[options]", "[options]\nload_amplitude = 'variable'");
    folder.Replace(
        "cycles = 1000\nloadings = [{case = 'pull'}, {case = 'zero'}]",
        "case = 'pull'\nhistory = 'road'\n[[history]]\nname = 'road'\npoints = [[0, 1], [1, 5], [2, 1]]");
    folder.Replace(piece, by);
    folder.AddFile("untimed.csv", "value\n1\n5\n");
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

// The parser's calls would go as deep.
TEST(DefinitionLimits, Nesting) {
  const auto error_of = [](const std::string& text) {
    test::DefinitionFolder folder;
    folder.text += text;
    return folder.BuildError();
  };
  const auto times = [](int count, std::string_view piece) {
    std::string text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
  };
  EXPECT_THAT(error_of("a" + times(40'000, ".a") + " = 1\n"), HasSubstr(":15: a key of more than 64 parts"));
  EXPECT_THAT(error_of("[a" + times(64, " . \"b.]\"") + "]"), HasSubstr(":15: a key of more than 64 parts"));
  EXPECT_THAT(error_of("x = " + times(65, "[\n")), HasSubstr(":79: more than 64 lists or tables"));
  const std::string dots = times(99, ".["), long_text = "x = '''\n" + dots + "'''\n";
  EXPECT_THAT(error_of(long_text + R"(y = "\")" + dots + "\" # " + dots),
              AllOf(HasSubstr("'x' is not a key"), Not(HasSubstr("64"))));
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
