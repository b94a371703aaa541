#include <omp.h>

#include "support/study_run.h"

namespace zentor {
namespace {

using test::AsReal;
using test::RunEnd;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

using AllNodes = test::StudyRun;

// Words 0 .. 4 of the record of the c-th evaluated node, and the fields behind them.
struct Record {
  float node, life, usage, factor_of_safety, biaxiality;
};
Record RecordOf(const std::vector<std::int32_t>& words, std::size_t c) {
  const auto at = [&](std::size_t w) { return AsReal(words.at(10 * c + w)); };
  for (std::size_t w = 5; w < 10; ++w) EXPECT_EQ(words.at(10 * c + w), 0);
  return {at(0), at(1), at(2), at(3), at(4)};
}

// Alternating stresses 500, 200 and 250: N = 8000, 125000 and 64000 for 8000 cycles. The record of node 5
// follows that of node 2 without a gap; the usage entities keep one.
TEST_F(AllNodes, NodeNumbersWithGaps) {
  const auto sx = [](int node) { return node == 1 ? 1000.0 : node == 2 ? 400.0 : 500.0; };
  MakeAllNodes({1, 2, 5, 81}, sx, 8000);
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  const std::vector<std::int32_t> words = Words(".FTR");
  ASSERT_EQ(words.size(), 50U);
  EXPECT_EQ(std::vector(words.begin(), words.begin() + 10),
            (std::vector<std::int32_t>{10, 82, 81, 1, 1, 0, 0, 0, 0, 0}));
  EXPECT_EQ(RecordOf(words, 3).node, 5.0F);
  const std::tuple<int, int, float> usage[] = {
      {2605, 2, 1.0F}, {2605, 3, 0.064F}, {2605, 4, 0.0F}, {2605, 6, 0.125F}, {2607, 2, 0.125F}};
  for (const auto& [entity, field, value] : usage) {
    EXPECT_FLOAT_EQ(Real(DbTable::kFtc, entity, field), value);
  }
  EXPECT_EQ(Int(DbTable::kFtc, 2606, 1), 0) << "no node from 41 to 80";
  for (const auto& [entity, field, value] : {std::array{103, 6, 2604}, {103, 7, 1}, {60, 15, 1}}) {
    EXPECT_EQ(Int(DbTable::kFtc, entity, field), value);
  }
  EXPECT_EQ(Words(".FTI").size(), 10U) << "only its count";
}

// One warning, whatever number of nodes finds no room; the run is complete.
TEST_F(AllNodes, UsageEntitiesWithoutRoom) {
  MakeAllNodes(
      test::NodesUpTo(90), [](int) { return 1000.0; }, 800);
  Write();
  std::vector<std::int32_t> table = Words(".FTC");
  ASSERT_EQ(table[1], 2607);
  table[1] = 2606;
  test::WriteBytes(Path(".FTC"), std::as_bytes(std::span(table)));
  ASSERT_EQ(Run(), RunEnd::kComplete);
  EXPECT_EQ(services.asked.size(), 1U);
  EXPECT_TRUE(services.WasAsked(9105));
  EXPECT_EQ(services.shown.back().severity, Severity::kWarning);
  EXPECT_THAT(services.shown.back().arguments, ElementsAre(81.0F));
  EXPECT_FLOAT_EQ(Real(DbTable::kFtc, 2606, 41), 0.1F);
  EXPECT_FLOAT_EQ(RecordOf(Words(".FTR"), 90).usage, 0.1F);
}

// Compression by s at 45 degrees in the XZ plane: as stated some lose it all, exactly none does. Nodes 3 and
// 4 are right, because the state lies in the XY plane or is no repeated one; what node 5 loses is below the
// curve.
TEST_F(AllNodes, LostStressesAreToldOnceAndTheListingStays) {
  MakeAllNodes(
      test::NodesUpTo(8), [](int) { return 0.0; }, 700);
  const auto strut = [](int node) {
    const float s = node == 5 ? 0.5F : 300.0F + 50.0F * static_cast<float>(node % 7);
    if (node == 3) return std::array<float, 6>{-s / 2, -s / 2, 0, -s / 2};
    if (node == 4) return std::array<float, 6>{-s / 2, -s / 8, -s / 2, 0, -s / 2};
    return std::array<float, 6>{-s / 2, 0, -s / 2, 0, -s / 2};
  };
  study.stress_cases = {test::CaseOf(1, study.model, strut)};
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  ASSERT_EQ(services.shown.back().message, 9085);
  EXPECT_EQ(services.shown.back().severity, Severity::kWarning);
  EXPECT_EQ(services.shown.back().arguments.front(), 3.0F);
  std::string worst;  // a character each
  for (const float unit : std::span(services.shown.back().arguments).subspan(1))
    worst += static_cast<char>(unit);
  EXPECT_EQ(worst.c_str(), std::string("6 (300), 2 (200), 7 (150)"));
  EXPECT_EQ(RecordOf(Words(".FTR"), 6).biaxiality, 1.0F) << "three equal values";
  EXPECT_EQ(Listing().find("WARNING"), std::string::npos);

  services.shown.clear();
  study.extended.exact_principal_stresses = true;
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  EXPECT_NE(services.shown.back().message, 9085);
  EXPECT_FLOAT_EQ(RecordOf(Words(".FTR"), 6).usage, 700 * 300.0F * 300.0F * 300.0F / 1e12F);
}

// Stresses of two cases that differ from node to node; 5000 nodes are more than one block.
class ManyNodes : public test::StudyRun {
 protected:
  static constexpr int kNodes = 5000;
  static constexpr int kLate = 4090;  // in the first block
  ManyNodes() {
    MakeAllNodes(test::NodesUpTo(kNodes), Stress, 700);
    study.stress_cases.push_back(test::CaseOf(2, study.model, [](int node) {
      return std::array<float, 6>{-0.1F * Stress(node), 30, 5, 40, 3, 2};
    }));
    study.events[0].loadings.push_back({3, 2, 1, 1.0F});
  }
  static float Stress(int node) { return 300.0F + 0.2F * static_cast<float>(node % 977); }
  void RaiseAboveTheCurve(const std::vector<int>& nodes) {
    study.stress_cases[0] = test::Uniaxial(1, study.model, [&](int node) {
      return std::count(nodes.begin(), nodes.end(), node) > 0 ? 2500.0F : Stress(node);
    });
  }
  void TearDown() override { omp_set_num_threads(threads_); }
  const int threads_ = omp_get_max_threads();
};

TEST_F(ManyNodes, AnyNumberOfThreadsGivesTheSameFiles) {
  RaiseAboveTheCurve({kLate, kLate + 2, 4999});
  services.answer = Answer::kYes;
  std::map<std::string, std::string> first;
  for (const int threads : {1, 2, 7}) {
    omp_set_num_threads(threads);
    services.asked.clear();
    ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
    EXPECT_EQ(services.asked.size(), 1U) << "the answer holds for the rest of the run";
    if (first.empty()) first = Files();
    for (const auto& [extension, content] : Files()) {
      EXPECT_TRUE(content == first[extension]) << extension << ' ' << threads;
    }
  }
  const std::vector<std::int32_t> words = Words(".FTR");
  for (const std::size_t node : {kLate, kLate + 2, 4999}) {
    EXPECT_FLOAT_EQ(RecordOf(words, node).usage, 0.7F) << "N of the highest point is 1000";
  }
}

// Nobody answers: the run stops there and nowhere else, with everything before that node on disk.
TEST_F(ManyNodes, UnansweredQuestionStopsTheRun) {
  RaiseAboveTheCurve({kLate, kLate + 2});
  omp_set_num_threads(7);
  ASSERT_EQ(WriteAndRun(), RunEnd::kStopped);
  EXPECT_EQ(services.asked.size(), 1U);
  EXPECT_THAT(services.notes, ElementsAre(EndsWith("press Yes. (node 4090)")));
  EXPECT_EQ(services.ends_of_run, 0);
  const std::string listing = Listing();
  EXPECT_THAT(listing.substr(listing.rfind('\n', listing.size() - 2)), HasSubstr("\n        4089    "));
  const std::vector<std::int32_t> words = Words(".FTR");
  ASSERT_EQ(words.size(), 10U * kLate);
  EXPECT_EQ(words[0], 0) << "no header";
  EXPECT_EQ(RecordOf(words, kLate - 1).node, kLate - 1);
  EXPECT_EQ(Real(DbTable::kFtc, 2605 + 4088 / 40, 2 + 4088 % 40), RecordOf(words, kLate - 1).usage);
  EXPECT_EQ(Int(DbTable::kFtc, 103, 7), 0);
  EXPECT_EQ(Int(DbTable::kFtc, 60, 15), 0);
}

}  // namespace
}  // namespace zentor
