#include "fatigue/matrix_file.h"

#include <bit>
#include <cstring>

#include "fatigue/history_fixture.h"

namespace zentor {
namespace {

class MatrixFileTest : public test::HistoryFixture {
 protected:
  MatrixFileTest() {
    study.properties.RangeBinCount = 3;
    study.properties.MeanBinCount = 2;
    study.properties.FilterPercent = 12.9F;
    study.matrix_nodes = {17, 4};
    AddEvent(1);
    AddEvent(2);
  }
  std::vector<std::int32_t> Words() const {
    const auto bytes = test::ReadBytes(path());
    EXPECT_EQ(bytes.size() % 4, 0U);
    std::vector<std::int32_t> words(bytes.size() / 4);
    std::memcpy(words.data(), bytes.data(), words.size() * 4);
    return words;
  }
  std::string path() const { return folder.Path("study.FTD"); }
};

std::int32_t Real(float value) { return std::bit_cast<std::int32_t>(value); }

TEST_F(MatrixFileTest, HeaderAndBlocksByteForByte) {
  test::WriteText(path(), std::string(100000, 'x'));  // an older file leaves nothing behind
  const std::vector<std::int32_t> counts = {1, 2, 3, 4, 5, 6};
  const std::vector<float> damage = {0, 0.5F, 0, 0, 0, 0.25F};
  const BinEdges edges = {-0.5F, 1, 9.5F, 2};
  {
    MatrixFile file(run, study);
    file.WriteEvent(1, edges, counts);
    file.WriteEvent(2, edges, counts);
    file.WriteNode(17, edges, damage, counts);
    EXPECT_EQ(Words()[2], 3) << "provisional: the listed nodes and the worst one";
    file.Finish();
  }
  std::vector<std::int32_t> expected(100);
  expected[0] = 3;
  expected[1] = 2;
  expected[2] = 1;
  expected[3] = 12;
  expected[10] = 1;
  expected[11] = 2;
  expected[12] = 17;
  for (const int identifier : {1, 2, 17, 17}) {
    const bool is_damage = identifier == 17 && expected.size() == 100 + 2 * 11;
    for (const std::int32_t w : {identifier, Real(-0.5F), Real(1), Real(9.5F), Real(2)})
      expected.push_back(w);
    for (std::size_t k = 0; k < 6; ++k) expected.push_back(is_damage ? Real(damage[k]) : counts[k]);
  }
  EXPECT_EQ(Words(), expected);
}

}  // namespace
}  // namespace zentor
