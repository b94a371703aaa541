#include <fstream>

#include "support/study_run.h"

namespace zentor {
namespace {

using test::AsReal;
using test::RunEnd;

using LimitRun = test::StudyRun;

// The block of a load case is moved beyond 2, 4 and 8 GiB of a file with holes.
TEST_F(LimitRun, StressFileBeyondTwoGigabytes) {
  MakeAllNodes(
      test::NodesUpTo(4), [](int) { return 1000.0; }, 800);
  study.pointer_words = 2;
  for (const std::int64_t place :
       {std::int64_t{3} << 30U, (std::int64_t{5} << 30U) + 4, std::int64_t{9} << 30U}) {
    Write();
    const std::string bytes = test::ReadText(Path(".STE"));
    std::fstream file(Path(".STE"), std::ios::binary | std::ios::in | std::ios::out);
    std::int64_t block = 0;
    file.seekg(80).read(reinterpret_cast<char*>(&block), sizeof block);
    file.seekp(80).write(reinterpret_cast<const char*>(&place), sizeof place);
    const std::string moved = bytes.substr(static_cast<std::size_t>(block));
    file.seekp(place).write(moved.data(), static_cast<std::streamsize>(moved.size()));
    file.seekp(block).write(std::string(moved.size(), '\0').data(),
                            static_cast<std::streamsize>(moved.size()));
    file.close();
    ASSERT_EQ(Run(), RunEnd::kComplete);
    const std::vector<std::int32_t> words = Words(".FTR");
    ASSERT_EQ(words.size(), 50U);
    for (std::size_t node = 1; node <= 4; ++node)
      EXPECT_FLOAT_EQ(AsReal(words[10 * node + 2]), 0.1F) << place;
  }
}

}  // namespace
}  // namespace zentor
