#include "row_source.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "support/temp_folder.h"

namespace zentor::companion {
namespace {

constexpr std::array<Column, 2> kColumns = {{{"time"}, {"value"}}};

// A file of several read blocks: rows that lie across the end of a block must come out whole.
TEST(CsvRows, GivesEveryRowOfAFileLongerThanOneBlock) {
  const test::TempFolder folder;
  constexpr int kRows = 500'000;
  std::string text = "time,value\n";
  std::int64_t expected = 0;
  for (int i = 0; i < kRows; ++i) {
    const std::int64_t value = (std::int64_t{i} * 7919) % 100'003;
    text += fmt::format("{},{}\n", i, value);
    expected += value;
  }
  ASSERT_GT(text.size(), std::size_t{5} << 20U);
  test::WriteText(folder.Path("long.csv"), text);
  const auto rows = OpenCsv(folder.Path("long.csv"), {kColumns}, platform::NativeFileSystem());
  std::int64_t sum = 0;
  int count = 0;
  while (rows->Next()) {
    ASSERT_EQ(rows->Integer(0, {}), count) << "row " << count;
    sum += rows->Integer(1, {});
    ++count;
  }
  EXPECT_EQ(count, kRows);
  EXPECT_EQ(sum, expected);
}

TEST(CsvRows, RefusesALineThatIsNoLineOfATable) {
  const test::TempFolder folder;
  test::WriteText(folder.Path("blob.csv"), "time,value\n" + std::string(std::size_t{9} << 20U, '1'));
  const auto rows = OpenCsv(folder.Path("blob.csv"), {kColumns}, platform::NativeFileSystem());
  EXPECT_THROW(rows->Next(), DefinitionError);
}

}  // namespace
}  // namespace zentor::companion
