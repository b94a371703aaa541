#include "row_source.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>

#include "support/temp_folder.h"

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

}  // namespace
}  // namespace zentor::companion
