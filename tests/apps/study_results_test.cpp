#include "study_results.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "apps/word_file.h"
#include "services/faults.h"

namespace zentor::companion {
namespace {

using test::WordFile;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::HasSubstr;

template <typename Action>
std::string FaultOf(Action action) {
  try {
    action();
  } catch (const InputFault& fault) {
    return fault.what();
  }
  return "no fault";
}

class ResultFiles : public testing::Test {
 protected:
  NodeResults ReadNodes(const WordFile& file) {
    file.Write(path_);
    return ReadNodeResults(path_);
  }
  MatrixFile Matrices(const WordFile& file, std::optional<BinCounts> study = BinCounts{2, 3}) {
    file.Write(path_);
    return MatrixFile(path_, study);
  }
  std::vector<LocationResult> ReadLocations(const WordFile& file) {
    file.Write(path_);
    return ReadLocationResults(path_);
  }
  test::TempFolder folder_;
  std::string path_ = folder_.Path("results");
};

// Nodes 1, 2 and 5 of a model whose highest node is 5, one event.
WordFile ThreeNodes() {
  WordFile file;
  file.Ints({10, 6, 5, 7, 1, 0, 0, 0, 0, 0});
  file.Reals({1, 2.0e6F, 0.25F, 1.5F, -0.5F, 0, 0, 0, 0, 0});
  file.Reals({2, 1.0e5F, 0.75F, 1.1F, 0.0F, 0, 0, 0, 0, 0});
  file.Reals({5, 1.0e5F, 0.75F, 1.2F, 1.0F, 0, 0, 0, 0, 0});
  return file;
}

TEST_F(ResultFiles, WordsOfNodesBecomeResults) {
  EXPECT_THAT(ReadNodes(ThreeNodes()), FieldsAre(5, 7, 1, false,
                                                 ElementsAre(FieldsAre(1, 2.0e6F, 0.25F, 1.5F, -0.5F),
                                                             FieldsAre(2, 1.0e5F, 0.75F, 1.1F, 0.0F),
                                                             FieldsAre(5, 1.0e5F, 0.75F, 1.2F, 1.0F))));
}

struct Damage {
  std::size_t word;
  std::int32_t value;
  const char* message = "";
};

TEST_F(ResultFiles, FaultsOfNodesNameThePlace) {
  const auto real = [](float value) { return std::bit_cast<std::int32_t>(value); };
  for (const Damage& d : {Damage{0, 0, "did not finish"}, Damage{0, 9, "header word 0 is 9"},
                          Damage{1, 7, "header word 1 is 7"}, Damage{2, -1, "header word 2 is -1"},
                          Damage{3, -7, "header word 3 is -7"}, Damage{4, 41, "header word 4 is 41"},
                          Damage{5, 2, "header word 5 is 2"}, Damage{20, real(1.5F), "of record 2 is 1.5"},
                          Damage{20, real(1.0F), "node number of record 2 is 1"},
                          Damage{30, real(6.0F), "node number of record 3 is 6"},
                          Damage{30, real(std::nanf("")), "node number of record 3"}}) {
    EXPECT_THAT(FaultOf([&] { ReadNodes(ThreeNodes().Set(d.word, d.value)); }), HasSubstr(d.message));
  }
  const WordFile file = ThreeNodes().Set(1, 3).Set(2, 2);  // more records than nodes
  EXPECT_THAT(FaultOf([&] { ReadNodes(file); }), HasSubstr("number of records is 3"));
}

TEST_F(ResultFiles, EveryCutOfNodesEndsBetweenRecordsOrIsAFault) {
  const auto bytes = ThreeNodes().Bytes();
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    test::WriteBytes(path_, std::span(bytes).first(length));
    const bool whole_records = length >= 40 && length % 40 == 0;
    EXPECT_EQ(FaultOf([&] { ReadNodeResults(path_); }) == "no fault", whole_records) << length;
  }
}

// Two histories, 2 range bins, 3 mean bins, one node: matrices of 11 words.
WordFile TwoHistoriesOneNode() {
  WordFile file(100);
  file.Set(0, 2).Set(1, 2).Set(2, 1).Set(3, 5).Set(10, 1).Set(11, 2).Set(12, 77);
  file.Ints({1}).Reals({0, 10, -20, 5}).Ints({1, 2, 3, 4, 5, 6});
  file.Ints({2}).Reals({0, 1, 0, 1}).Ints({0, 0, 0, 0, 0, 9});
  file.Ints({77}).Reals({1, 2, 3, 4, 0.5F, 0, 0, 0, 0.25F, 0});
  file.Ints({77}).Reals({1, 2, 3, 4}).Ints({100, 0, 0, 0, 200, 0});
  return file;
}

TEST_F(ResultFiles, MatrixBlocksHoldHistoriesThenDamageAndCyclesOfNodes) {
  MatrixFile file = Matrices(TwoHistoriesOneNode());
  EXPECT_EQ(file.filter_percent(), 5);
  ASSERT_EQ(file.block_count(), 4);
  EXPECT_THAT(file.Block(1),
              FieldsAre(MatrixKind::kHistory, 1, 0, 10, -20, 5, 2, 3, ElementsAre(1, 2, 3, 4, 5, 6)));
  EXPECT_EQ(file.Block(1).At(1, 3), 5) << "range index is the fastest";
  EXPECT_EQ(file.Block(2).identifier, 2);
  EXPECT_THAT(file.Block(3),
              FieldsAre(MatrixKind::kDamage, 77, 1, 2, 3, 4, 2, 3, ElementsAre(0.5, 0, 0, 0, 0.25, 0)));
  EXPECT_EQ(file.Block(4).kind, MatrixKind::kCycles);
  EXPECT_EQ(file.Block(4).At(1, 3), 200);
  EXPECT_EQ(Matrices(TwoHistoriesOneNode(), std::nullopt).mean_bins(), 3) << "from the size";
  EXPECT_EQ(Matrices(TwoHistoriesOneNode(), BinCounts{25, 25}).mean_bins(), 3) << "a study changed since";
  EXPECT_EQ(Matrices(TwoHistoriesOneNode().Set(2, 2)).node_count(), 1) << "as many as are there";
}

TEST_F(ResultFiles, HostileHeadersAndCutsOfMatricesAreFaults) {
  for (const Damage& d : {Damage{0, 0}, Damage{0, 201}, Damage{0, -1}, Damage{1, 0}, Damage{1, 41},
                          Damage{1, 2147483647}, Damage{2, -2147483647}, Damage{2, 89}, Damage{0, 199}}) {
    EXPECT_NE(FaultOf([&] { Matrices(TwoHistoriesOneNode().Set(d.word, d.value)); }), "no fault")
        << d.word << " = " << d.value;
  }
  EXPECT_NE(FaultOf([&] { Matrices(TwoHistoriesOneNode(), BinCounts{2, 4}); }), "no fault");
  for (std::size_t words = 0; words < TwoHistoriesOneNode().size(); ++words) {
    const bool histories_alone = words == 122;  // of a run that found no damage
    EXPECT_EQ(FaultOf([&] { Matrices(TwoHistoriesOneNode().Resize(words)).Block(1); }) == "no fault",
              histories_alone)
        << words;
  }
}

TEST_F(ResultFiles, RunsOfBothFormulationsInOrder) {
  WordFile file;
  file.Record({9});
  file.Record({1, 3, 40, 2, 1});
  file.Record({2, 1, 1, 2, 1, 500}, {2000, 150, 0.25F});
  file.Record({3}, {0.25F});
  file.Record({1, 4, 41, 1, 0});
  file.Record({5, 5, 6, 10}, {100, 280, 1.4F, 300, 450, 0.1F});
  file.Record({6}, {0.1F});
  file.Record({1, 1, 1, 1, 1});
  file.Record({4, 1, 1, 1, 2, 2}, {120});
  const auto plain = FieldsAre(0, 1, 1, 2, 1, 500, 2000, 0, 0, 0, 150, 0.25F);
  const auto elastic_plastic = FieldsAre(0, 5, 0, 6, 0, 10, 100, 280, 1.4F, 450, 300, 0.1F);
  const auto no_curve = FieldsAre(1, 1, 1, 2, 2, 0, 0, 0, 0, 0, 120, 0);
  EXPECT_THAT(ReadLocations(file),
              ElementsAre(FieldsAre(3, 40, 2, 1, false, true, ElementsAre(plain), ElementsAre(0.25F)),
                          FieldsAre(4, 41, 1, 0, true, true, ElementsAre(elastic_plastic), ElementsAre(0.1F)),
                          FieldsAre(1, 1, 1, 1, false, false, ElementsAre(no_curve), testing::IsEmpty())));
}

TEST_F(ResultFiles, RecordCountsAndTypesAreChecked) {
  WordFile file;
  file.Record({3});
  file.Record({1, 1, 1, 1, 1});
  file.Record({3}, {0.5F});
  for (const std::int32_t last : {0, -1, 6, 2147483647}) {
    WordFile hostile = file;
    EXPECT_THAT(FaultOf([&] { ReadLocations(hostile.Set(0, last)); }), HasSubstr("record 1")) << last;
  }
  EXPECT_EQ(ReadLocations(file.Set(0, 5)).at(0).usage.size(), 1U) << "two records not written";
  EXPECT_THAT(FaultOf([&] { ReadLocations(file.Set(20, 7)); }), HasSubstr("type of record 3 is 7"));
  EXPECT_TRUE(ReadLocations(file.Set(20, 0)).at(0).usage.empty());
}

}  // namespace
}  // namespace zentor::companion
