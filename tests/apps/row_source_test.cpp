#include "row_source.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>

#include "apps/definition_folder.h"

namespace zentor::companion {
namespace {

constexpr std::array<Column, 2> kColumns = {{{"time"}, {"value"}}};

// A file of several read blocks: rows that lie across the end of a block must come out whole.
TEST(CsvRows, GivesEveryRowOfAFileLongerThanOneBlock) {
  const test::TempFolder folder;
  constexpr int kRows = 500'000;
  std::string text = "time,value\n";
  for (int i = 0; i < kRows; ++i) text += fmt::format("{},{}\n", i, 2 * i);
  test::WriteText(folder.Path("long.csv"), text);
  const auto rows = OpenCsv(folder.Path("long.csv"), {kColumns}, platform::NativeFileSystem());
  for (int i = 0; i < kRows; ++i) {
    ASSERT_TRUE(rows->Next());
    ASSERT_EQ(rows->Integer(0, {}), i);
    ASSERT_EQ(rows->Integer(1, {}), 2 * i);
  }
  EXPECT_FALSE(rows->Next());
}

TEST(CsvRows, RefusesALineThatIsNoLineOfATable) {
  const test::TempFolder folder;
  test::WriteText(folder.Path("blob.csv"), "time,value\n" + std::string(std::size_t{9} << 20U, '1'));
  const auto rows = OpenCsv(folder.Path("blob.csv"), {kColumns}, platform::NativeFileSystem());
  EXPECT_THROW(rows->Next(), DefinitionError);
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
}  // namespace zentor::companion
