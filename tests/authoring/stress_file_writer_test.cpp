#include "authoring/stress_file_writer.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

#include "database/bytes.h"
#include "support/temp_folder.h"

namespace zentor::test {
namespace {

class StressFile : public ::testing::Test {
 protected:
  StressFileWriter Writer(const StressFilePlan& plan) {
    return {platform::NativeFileSystem(), folder.Path("a.STE"), plan};
  }
  std::vector<std::byte> Bytes() const { return ReadBytes(folder.Path("a.STE")); }
  std::int32_t Int(std::size_t word) const { return LoadInt(&Bytes().at(4 * word)); }
  float Real(std::size_t word) const { return LoadReal(&Bytes().at(4 * word)); }

  TempFolder folder;
  const std::vector<std::int32_t> nodes = {7, 3};
  const std::vector<float> values = {1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, 16};
};

TEST_F(StressFile, PlacesHeaderPointersAndRecords) {
  StressFileWriter writer = Writer({.steps = 3, .step_capacity = 4, .highest_element = 3});
  writer.BeginStep();
  writer.Add({.element = 3, .type_code = 42, .nodes = nodes, .values = values});
  writer.Add({.element = 1, .type_code = 14, .nodes = nodes, .values = {}});
  EXPECT_TRUE(Bytes().empty()) << "no header before the file is complete";
  writer.SkipStep();
  writer.BeginStep();
  writer.Add({.element = 3, .type_code = 42, .nodes = nodes, .values = values});
  writer.Finish();

  EXPECT_EQ(std::tuple(Int(0), Int(1), Int(3), Int(5), Int(18)), std::tuple(20, 4, 3, 3, 1));
  const int block = 20 + 4 + 3, length = 30 + 8 + 6;  // words; element 1 has a head only
  const int pointers[] = {4 * block, 0, 4 * (block + length + 7), 0, length + 1, 0, 1};
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(Int(20 + i), pointers[i]) << i;
  const float head[] = {3, static_cast<float>(length), 42, 2, 0, 1};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(Real(block + i), head[i]) << i;
  EXPECT_EQ(std::tuple(Real(block + 29), Real(block + 30), Real(block + 37), Real(block + 43),
                       Real(block + length)),
            std::tuple(7.0F, 1.0F, 3.0F, 16.0F, 1.0F));
  EXPECT_EQ(Bytes().size(), 4U * static_cast<std::size_t>(block + 2 * (length + 7)))
      << "the last step leaves element 1 out, but its place is in the file";
}

TEST_F(StressFile, RefusesWhatDoesNotFit) {
  StressFileWriter writer = Writer({.steps = 2, .highest_element = 5});
  const ElementStress good = {.element = 2, .type_code = 45, .nodes = nodes, .values = values};
  EXPECT_THROW(writer.Add(good), std::invalid_argument) << "before the first step";
  writer.BeginStep();
  writer.Add(good);
  EXPECT_THROW(writer.Add(good), std::invalid_argument) << "twice";
  const auto refused = [&](auto change) {
    ElementStress bad = good;
    bad.element = 4;
    change(bad);
    EXPECT_THROW(writer.Add(bad), std::invalid_argument);
  };
  const std::int32_t beyond[] = {1, kMaxModelNumber + 1};
  refused([](ElementStress& e) { e.element = 6; });
  refused([](ElementStress& e) { e.values = e.values.first(11); });
  refused([](ElementStress& e) { e.type_code = 43; });  // a shell has two surfaces
  refused([&](ElementStress& e) { e.nodes = beyond; });
  writer.BeginStep();
  refused([](ElementStress&) {});  // not in the first step
  writer.Add(good);
  EXPECT_THROW(writer.BeginStep(), std::invalid_argument) << "more steps than planned";
  EXPECT_THROW(Writer({.pointer_width = 3}), std::invalid_argument);
}

}  // namespace
}  // namespace zentor::test
