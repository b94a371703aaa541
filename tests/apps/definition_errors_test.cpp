#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <tuple>

#include "apps/definition_folder.h"

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

// The whole file with the stresses, or rows under a sound header line.
TEST(DefinitionErrors, OfCsvFiles) {
  const std::tuple<std::string, int, const char*> faults[] = {
      {"element,node,sx,sy,sz,txy,txz\n", 1,
       "lacks the column tyz, expected element,node,sx,sy,sz,txy,txz,tyz"},
      {"1,1,1,0,0,0,0,0,7\n", 2, "holds 9 fields"},
      {"1,1,nan,0,0,0,0,0\n", 2, "column sx is 'nan', expected a finite number"},
      {"1,1,1e39,0,0,0,0,0\n", 2, "column sx is '1e39', expected a finite number up to 3.4e38"},
      {"1,1,10,0,0,0,0,0\n1,2,20,0,0,0,0,0\n", 3,
       "element 1 has no row for its node 3 and 1 more of its nodes, expected one for each of its 4"},
      {"element;node;sx\n1;1;1,5\n", 1, "separated by semicolons, expected commas and decimal points"},
      {"# MPa\nelement,node\n", 1, "the first line is a comment, expected a header line"},
      {"element,node\r1,1\r", 1, "the lines end with carriage returns (CR) alone"},
      {"element\tnode\tsx\n", 1, "separated by tabs"},
      {"1,1,10,0,0,0,0,0", 1, "the first line holds numbers, expected a header line"},
      {"element,node,sx,\n", 1, "the header line ends with a comma"},
      {"\"element\",node,sx\n", 1, "the header line has names in quotes"},
      {"\xFF\xFE" + std::string("e\0l\0", 4), 0, "is text in UTF-16, expected UTF-8"},
      {std::string("e\0l\0e\0", 6), 0, "is text in UTF-16, expected UTF-8"},
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

}  // namespace
}  // namespace zentor
