#include "study_results.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "apps/word_file.h"
#include "services/faults.h"

namespace zentor::companion {
namespace {

using test::TempFolder;
using test::WordFile;
using testing::ElementsAre;
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

// Nodes 1, 2 and 5 of a model whose highest node is 5, one event.
WordFile ThreeNodes() {
  WordFile file;
  file.Ints({10, 6, 5, 7, 1, 0, 0, 0, 0, 0});
  file.Reals({1, 2.0e6F, 0.25F, 1.5F, -0.5F, 0, 0, 0, 0, 0});
  file.Reals({2, 1.0e5F, 0.75F, 1.1F, 0.0F, 0, 0, 0, 0, 0});
  file.Reals({5, 1.0e5F, 0.75F, 1.2F, 1.0F, 0, 0, 0, 0, 0});
  return file;
}

class NodeResultFile : public testing::Test {
 protected:
  NodeResults Read(const WordFile& file) {
    file.Write(path_);
    return ReadNodeResults(path_);
  }
  TempFolder folder_;
  std::string path_ = folder_.Path("job.FTR");
};

TEST_F(NodeResultFile, WordsBecomeResults) {
  const NodeResults results = Read(ThreeNodes());
  EXPECT_EQ(results.visited_nodes, 5);
  EXPECT_EQ(results.element_count, 7);
  EXPECT_TRUE(results.HasLife());
  EXPECT_TRUE(results.HasFactorOfSafety());
  ASSERT_EQ(results.nodes.size(), 3U);
  EXPECT_EQ(results.nodes[2].node, 5);
  EXPECT_EQ(results.nodes[0].life, 2.0e6F);
  EXPECT_EQ(results.nodes[0].usage, 0.25F);
  EXPECT_EQ(results.nodes[1].factor_of_safety, 1.1F);
  EXPECT_EQ(results.nodes[0].biaxiality, -0.5F);
}

TEST_F(NodeResultFile, MostUsedPrefersLowerNodesAmongEqualsAndPutsNanLast) {
  WordFile file = ThreeNodes();
  file.SetReal(12, std::numeric_limits<float>::quiet_NaN());
  EXPECT_THAT(MostUsed(Read(file), 10), ElementsAre(1, 2, 0));
  EXPECT_THAT(MostUsed(Read(file), 1), ElementsAre(1));
}

TEST_F(NodeResultFile, FaultsNameThePlace) {
  struct Case {
    std::size_t word;
    std::int32_t value;
    const char* message;
  };
  const Case cases[] = {
      {0, 0, "did not finish"},
      {0, 9, "header word 0 is 9"},
      {1, 7, "header word 1 is 7"},
      {2, -1, "header word 2 is -1"},
      {3, -7, "header word 3 is -7"},
      {4, 41, "header word 4 is 41"},
      {5, 2, "header word 5 is 2"},
      {20, std::bit_cast<std::int32_t>(1.0F), "node number of record 2 is 1"},
      {20, std::bit_cast<std::int32_t>(1.5F), "node number of record 2 is 1.5"},
      {30, std::bit_cast<std::int32_t>(6.0F), "node number of record 3 is 6"},
      {30, std::bit_cast<std::int32_t>(std::numeric_limits<float>::quiet_NaN()), "node number of record 3"},
  };
  for (const Case& c : cases) {
    WordFile file = ThreeNodes();
    file.Set(c.word, c.value);
    EXPECT_THAT(FaultOf([&] { Read(file); }), HasSubstr(c.message)) << "word " << c.word;
  }
}

TEST_F(NodeResultFile, MoreRecordsThanNodesAreRefused) {
  WordFile file = ThreeNodes();
  file.Set(1, 3).Set(2, 2);
  EXPECT_THAT(FaultOf([&] { Read(file); }), HasSubstr("number of records is 3"));
}

TEST_F(NodeResultFile, EveryCutEndsBetweenRecordsOrIsAFault) {
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
  file.Int(1).Reals({0, 10, -20, 5}).Ints({1, 2, 3, 4, 5, 6});
  file.Int(2).Reals({0, 1, 0, 1}).Ints({0, 0, 0, 0, 0, 9});
  file.Int(77).Reals({1, 2, 3, 4, 0.5F, 0, 0, 0, 0.25F, 0});
  file.Int(77).Reals({1, 2, 3, 4}).Ints({100, 0, 0, 0, 200, 0});
  return file;
}

class MatrixResultFile : public testing::Test {
 protected:
  MatrixFile Open(const WordFile& file, std::optional<BinCounts> study = std::nullopt) {
    file.Write(path_);
    return MatrixFile(path_, study);
  }
  TempFolder folder_;
  std::string path_ = folder_.Path("job.FTD");
};

TEST_F(MatrixResultFile, BlocksHoldHistoriesThenDamageAndCyclesOfNodes) {
  MatrixFile file = Open(TwoHistoriesOneNode(), BinCounts{2, 3});
  EXPECT_EQ(file.filter_percent(), 5);
  ASSERT_EQ(file.block_count(), 4);
  const RangeMeanBlock history = file.Block(1);
  EXPECT_EQ(history.kind, MatrixKind::kHistory);
  EXPECT_EQ(history.range_width, 10);
  EXPECT_EQ(history.mean_origin, -20);
  EXPECT_EQ(history.At(2, 1), 2) << "range index is the fastest";
  EXPECT_EQ(history.At(1, 3), 5);
  EXPECT_EQ(file.Block(2).identifier, 2);
  const RangeMeanBlock damage = file.Block(3);
  EXPECT_EQ(damage.kind, MatrixKind::kDamage);
  EXPECT_EQ(damage.identifier, 77);
  EXPECT_EQ(damage.At(1, 3), 0.25);
  EXPECT_EQ(file.Block(4).kind, MatrixKind::kCycles);
  EXPECT_EQ(file.Block(4).At(1, 3), 200);
}

TEST_F(MatrixResultFile, MeanBinsComeFromTheSizeWhenTheStudyDoesNotTell) {
  EXPECT_EQ(Open(TwoHistoriesOneNode()).mean_bins(), 3);
  EXPECT_EQ(Open(TwoHistoriesOneNode(), BinCounts{25, 25}).mean_bins(), 3) << "a study changed since the run";
  EXPECT_NE(FaultOf([&] { Open(TwoHistoriesOneNode(), BinCounts{2, 4}); }), "no fault");
}

TEST_F(MatrixResultFile, ProvisionalNodeCountGivesWayToTheBlocksPresent) {
  WordFile file = TwoHistoriesOneNode();
  file.Set(2, 2);
  EXPECT_EQ(Open(file, BinCounts{2, 3}).node_count(), 1);
}

TEST_F(MatrixResultFile, HostileHeadersAreFaults) {
  struct Case {
    std::size_t word;
    std::int32_t value;
  };
  const Case cases[] = {{0, 0},          {0, 201},         {0, -1}, {1, 0},  {1, 41},
                        {1, 2147483647}, {2, -2147483647}, {2, 89}, {0, 199}};
  for (const Case& c : cases) {
    WordFile file = TwoHistoriesOneNode();
    file.Set(c.word, c.value);
    EXPECT_NE(FaultOf([&] { Open(file, BinCounts{2, 3}); }), "no fault") << c.word << " = " << c.value;
  }
}

TEST_F(MatrixResultFile, EveryCutIsAFault) {
  const WordFile whole = TwoHistoriesOneNode();
  for (std::size_t words = 0; words < whole.size(); ++words) {
    // The histories alone are a sound file of a run that found no damage.
    if (words == 100 + std::size_t{2} * 11) continue;
    WordFile cut = whole;
    EXPECT_NE(FaultOf([&] { Open(cut.Resize(words), BinCounts{2, 3}).Block(1); }), "no fault") << words;
  }
}

class ResultRecordFile : public testing::Test {
 protected:
  std::vector<LocationResult> Read(const WordFile& file) {
    file.Write(path_);
    return ReadLocationResults(path_);
  }
  static WordFile& Record(WordFile& file, std::initializer_list<std::int32_t> ints,
                          std::initializer_list<float> reals) {
    file.Ints(ints).Reals(reals);
    return file.Resize((file.size() + 9) / 10 * 10);
  }
  TempFolder folder_;
  std::string path_ = folder_.Path("job.FTI");
};

TEST_F(ResultRecordFile, RunsOfBothFormulationsInOrder) {
  WordFile file;
  Record(file, {7}, {});
  Record(file, {1, 3, 40, 2, 1}, {});
  Record(file, {2, 1, 1, 2, 1, 500}, {2000, 150, 0.25F});
  Record(file, {3}, {0.25F});
  Record(file, {1, 4, 41, 1, 0}, {});
  Record(file, {5, 5, 6, 10}, {100, 280, 1.4F, 300, 450, 0.1F});
  Record(file, {6}, {0.1F});
  const auto runs = Read(file);
  ASSERT_EQ(runs.size(), 2U);
  EXPECT_EQ(runs[0].location, 3);
  EXPECT_EQ(runs[0].node, 40);
  EXPECT_EQ(runs[0].shell_surface, 2);
  ASSERT_EQ(runs[0].pairs.size(), 1U);
  EXPECT_EQ(runs[0].pairs[0].loading_b, 2);
  EXPECT_EQ(runs[0].pairs[0].used_cycles, 500);
  EXPECT_EQ(runs[0].pairs[0].allowed_cycles, 2000);
  EXPECT_EQ(runs[0].pairs[0].partial_usage, 0.25F);
  EXPECT_THAT(runs[0].usage, ElementsAre(0.25F));
  ASSERT_EQ(runs[1].pairs.size(), 1U);
  EXPECT_TRUE(runs[1].elastic_plastic);
  EXPECT_EQ(runs[1].pairs[0].ke, 1.4F);
  EXPECT_EQ(runs[1].pairs[0].alternating_stress, 300);
  EXPECT_EQ(runs[1].pairs[0].sn, 450);
}

TEST_F(ResultRecordFile, PairsWithoutCurveHaveNoUsage) {
  WordFile file;
  Record(file, {3}, {});
  Record(file, {1, 1, 1, 1, 1}, {});
  Record(file, {4, 1, 1, 1, 2, 2}, {120});
  const auto runs = Read(file);
  ASSERT_EQ(runs.size(), 1U);
  EXPECT_FALSE(runs[0].usage_evaluated);
  EXPECT_TRUE(runs[0].usage.empty());
  EXPECT_EQ(runs[0].pairs[0].event_b, 2);
}

TEST_F(ResultRecordFile, RecordCountsAndTypesAreChecked) {
  WordFile file;
  Record(file, {3}, {});
  Record(file, {1, 1, 1, 1, 1}, {});
  Record(file, {3}, {0.5F});
  for (const std::int32_t last : {0, -1, 4, 2147483647}) {
    WordFile hostile = file;
    hostile.Set(0, last);
    EXPECT_THAT(FaultOf([&] { Read(hostile); }), HasSubstr("record 1")) << last;
  }
  file.Set(20, 7);
  EXPECT_THAT(FaultOf([&] { Read(file); }), HasSubstr("type of record 3 is 7"));
}

}  // namespace
}  // namespace zentor::companion
