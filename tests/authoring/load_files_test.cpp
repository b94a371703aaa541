#include "authoring/load_files.h"

#include <gtest/gtest.h>

#include <bit>

#include "database/bytes.h"

namespace zentor {
namespace {

// Words of a file by their index.
std::int32_t Word(const std::vector<std::byte>& file, std::size_t word) {
  return LoadInt(file.data() + 4 * word);
}
std::vector<std::int32_t> Words(const std::vector<std::byte>& file, std::size_t from, std::size_t count) {
  std::vector<std::int32_t> words;
  for (std::size_t i = 0; i < count; ++i) words.push_back(Word(file, from + i));
  return words;
}
std::vector<float> Reals(const std::vector<std::byte>& file, std::size_t from, std::size_t count) {
  std::vector<float> reals;
  for (std::size_t i = 0; i < count; ++i) reals.push_back(LoadReal(file.data() + 4 * (from + i)));
  return reals;
}

// Curves 1 (3 points) and 3 (2 points): the table of three curves takes words 10 to 15, curve 1 starts at 16,
// curve 3 at 22, 26 words in all.
TEST(HistoryFile, HoldsTableTimesAndValues) {
  const std::vector<AuthoredHistory> histories = {{3, {0.0F, 4.0F}, {-1.0F, 2.0F}},
                                                  {1, {0.0F, 0.5F, 2.0F}, {5.0F, -6.0F, 7.0F}}};
  const std::vector<std::byte> file = HistoryFileBytes(histories);
  ASSERT_EQ(file.size(), 26U * 4U);
  EXPECT_EQ(Words(file, 1, 2), (std::vector{3, 1}));
  EXPECT_EQ(Words(file, 11, 2), (std::vector{3, 0})) << "curve 2 is absent";
  EXPECT_EQ(Word(file, 15), 2);
  EXPECT_EQ(Reals(file, static_cast<std::size_t>(Word(file, 10)), 6),
            (std::vector{0.0F, 0.5F, 2.0F, 5.0F, -6.0F, 7.0F}));
  EXPECT_EQ(Reals(file, static_cast<std::size_t>(Word(file, 14)), 4), (std::vector{0.0F, 4.0F, -1.0F, 2.0F}));

  const std::vector<AuthoredHistory> without_times = {{1, {}, {5.0F, -6.0F}}};
  const std::vector<std::byte> short_file = HistoryFileBytes(without_times);
  EXPECT_EQ(Word(short_file, 2), 0);
  EXPECT_EQ(Reals(short_file, static_cast<std::size_t>(Word(short_file, 10)) + 2, 2),
            (std::vector{5.0F, -6.0F}));
}

// The reader's address of a node's temperature: with b the word at byte 0 and e the word at byte b + (case -
// 1) * 8, the k-th node's temperature is the third word at byte (k + e) * 48 - 96.
TEST(TemperatureFile, IsAddressedByCaseAndPlaceOfTheNode) {
  const std::vector<std::int32_t> nodes = {2, 5, 9};
  const std::vector<NodalTemperatures> temperatures = {{8, {280.0F, 281.0F, 282.0F}},
                                                       {1, {20.0F, 21.0F, 22.0F}}};
  const std::vector<std::byte> file = TemperatureFileBytes(nodes, temperatures);
  const auto entry = [&file](int load_case) {
    return LoadInt(file.data() + LoadInt(file.data()) + std::ptrdiff_t{load_case - 1} * 8);
  };
  const auto temperature = [&](int load_case, int k) {
    return LoadReal(file.data() + std::ptrdiff_t{k + entry(load_case)} * 48 - 96 + 8);
  };
  EXPECT_EQ(temperature(1, 1), 20.0F);
  EXPECT_EQ(temperature(1, 3), 22.0F);
  EXPECT_EQ(temperature(8, 1), 280.0F);
  EXPECT_EQ(temperature(8, 2), 281.0F);
  EXPECT_EQ(entry(3), 0) << "a case without temperatures";
  EXPECT_EQ(Word(file, 1), 8);
  EXPECT_EQ(file.size() % 48, 0U);
}

TEST(SurfaceFile, SplitsFacesOfMoreThanSevenNodes) {
  const std::vector<SurfaceFace> faces = {{4, {1, 2, 3}}, {6, {11, 12, 13, 14, 15, 16, 17, 18}}};
  const std::vector<std::byte> file = SurfaceFileBytes(faces);
  ASSERT_EQ(file.size(), 4U * 80U);
  EXPECT_EQ(Word(file, 1), 4) << "records, the header included";
  EXPECT_EQ(Words(file, 21, 6), (std::vector{4, 0, 3, 1, 2, 3})) << "record 1 from word 2 on";
  EXPECT_EQ(Words(file, 41, 10), (std::vector{6, 0, 7, 11, 12, 13, 14, 15, 16, 17}));
  EXPECT_EQ(Words(file, 61, 4), (std::vector{6, 0, 1, 18}));
}

TEST(StudyList, IsWideTextWithMarkAndLineEnds) {
  const std::vector<std::string> names = {"a", "\xC3\xA9"};
  const std::vector<std::byte> file = StudyListBytes(names);
  const unsigned char expected[] = {0xFF, 0xFE, 'a', 0, '\r', 0, '\n', 0, 0xE9, 0, '\r', 0, '\n', 0};
  ASSERT_EQ(file.size(), sizeof expected);
  for (std::size_t i = 0; i < sizeof expected; ++i)
    EXPECT_EQ(file[i], std::byte{expected[i]}) << "byte " << i;
}

}  // namespace
}  // namespace zentor
