#include "authoring/load_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <span>
#include <string>

#include "database/bytes.h"

namespace zentor {
namespace {

std::vector<std::int32_t> Words(const std::vector<std::byte>& file, std::size_t from, std::size_t count) {
  std::vector<std::int32_t> words;
  for (std::size_t i = 0; i < count; ++i) words.push_back(LoadInt(file.data() + 4 * (from + i)));
  return words;
}
std::vector<float> Reals(const std::vector<std::byte>& file, std::size_t from, std::size_t count) {
  std::vector<float> reals;
  for (const std::int32_t word : Words(file, from, count)) reals.push_back(std::bit_cast<float>(word));
  return reals;
}

// Curves 3 (2 points) and 1 (3 points): the table of three curves takes words 10 to 15, curve 3 starts at 16,
// curve 1 at 20, 26 words in all.
TEST(HistoryFile, HoldsTableTimesAndValues) {
  const std::vector<AuthoredHistory> histories = {{3, {0.0F, 4.0F}, {-1.0F, 2.0F}},
                                                  {1, {0.0F, 0.5F, 2.0F}, {5.0F, -6.0F, 7.0F}}};
  const std::vector<std::byte> file = HistoryFileBytes(histories);
  ASSERT_EQ(file.size(), 26U * 4U);
  EXPECT_EQ(Words(file, 1, 2), (std::vector{3, 1}));
  EXPECT_EQ(Words(file, 10, 6), (std::vector{20, 3, 0, 0, 16, 2})) << "curve 2 is absent";
  EXPECT_EQ(Reals(file, 16, 10), (std::vector{0.0F, 4.0F, -1.0F, 2.0F, 0.0F, 0.5F, 2.0F, 5.0F, -6.0F, 7.0F}));
  EXPECT_EQ(Words(HistoryFileBytes(std::vector<AuthoredHistory>{{1, {}, {5.0F, -6.0F}}}), 2, 1),
            std::vector{0})
      << "without times";
}

TEST(SurfaceFile, SplitsFacesOfMoreThanSevenNodes) {
  const std::vector<SurfaceFace> faces = {{4, {1, 2, 3}}, {6, {11, 12, 13, 14, 15, 16, 17, 18}}};
  const std::vector<std::byte> file = SurfaceFileBytes(faces);
  ASSERT_EQ(file.size(), 4U * 80U);
  EXPECT_EQ(Words(file, 1, 1), std::vector{4}) << "records, the header included";
  EXPECT_EQ(Words(file, 21, 6), (std::vector{4, 0, 3, 1, 2, 3})) << "record 1 from word 2 on";
  EXPECT_EQ(Words(file, 41, 10), (std::vector{6, 0, 7, 11, 12, 13, 14, 15, 16, 17}));
  EXPECT_EQ(Words(file, 61, 4), (std::vector{6, 0, 1, 18}));
}

TEST(StudyList, IsWideTextWithMarkAndLineEnds) {
  const std::vector<std::string> names = {"a", "\xC3\xA9"};
  const std::vector<std::byte> file = StudyListBytes(names);
  const std::u16string expected = u"\uFEFFa\r\n\u00E9\r\n";
  EXPECT_TRUE(std::ranges::equal(file, std::as_bytes(std::span(expected))));
}

}  // namespace
}  // namespace zentor
