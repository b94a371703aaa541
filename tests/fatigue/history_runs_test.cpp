#include <omp.h>

#include "support/study_run.h"

namespace zentor {
namespace {

using test::AsReal;
using test::R;
using test::RunEnd;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

// The history 0, 5, 1, 4, 0 holds one cycle of range 3 and one of range 5, both with mean 2.5; six bins give
// them bins (4, 4) and (6, 4). At a uniaxial unit stress of 200 the alternating stresses are 300 and 500,
// N = 37037 and 8000; ten repetitions use 10 / 37037 + 10 / 8000.
class HistoryRun : public test::StudyRun {
 protected:
  static constexpr double kUsage = 10 * 2.7e7 / 1e12 + 10.0 / 8000.0;

  HistoryRun() {
    study.options.load_amplitude_type = 1;
    study.options.alternating_stress_type = 1;
    study.options.range_bins = 6;
    study.options.filter_percent = 3;
    study.histories = {{1, {0, 1, 2, 3, 4}, {0, 5, 1, 4, 0}}};
    study.events = {{1, 10, {{1, 1, 1, 1.0F}}}};
    study.events[0].history = 1;
    SetNodes({1, 2, 3, 4}, [](int node) { return 200.0 / node; });
  }
  void SetNodes(const std::vector<int>& nodes, const std::function<double(int)>& sx) {
    study.model = test::PlaneModel(nodes);
    study.stress_cases = {test::Uniaxial(1, study.model, sx)};
  }
};

constexpr const char* kUsageLines = "\n Cumulative Fatigue\n    Usage  Factor    =   0.152000E-02\n";

TEST_F(HistoryRun, AnyNumberOfThreadsGivesTheSameFiles) {
  const int before = omp_get_max_threads();
  SetNodes(test::NodesUpTo(200), [](int node) { return 200.0 - 0.3 * node; });
  study.options.matrix_nodes = {7, 133};
  for (const bool shared : {true, false}) {
    study.options.shared_history = shared;
    omp_set_num_threads(1);
    ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
    const std::map<std::string, std::string> one = Files();
    omp_set_num_threads(7);
    ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
    EXPECT_TRUE(Files() == one) << shared;
  }
  omp_set_num_threads(before);
}

// 40 events whose loads of 5 add up to 200 at node 1, all from the studies of a list.
TEST_F(HistoryRun, FortyEventsInTheMultiStudyLayout) {
  const std::string listed = folder.Path("listed");
  WriteStudy(study, listed, platform::NativeFileSystem());
  services.second_studies = {listed, listed};
  study.layout = StudyLayout::kMultiStudy;
  study.studies = services.second_studies;
  study.stress_cases.clear();
  study.events.clear();
  for (int e = 1; e <= 40; ++e) {
    study.events.push_back({e, 10, {{e, 1, 1 + e % 2, 0.025F}}});
    study.events.back().history = 1;
  }
  for (const bool shared : {true, false}) {
    SCOPED_TRACE(shared);
    study.options.shared_history = shared;
    ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
    EXPECT_THAT(Listing(".OUT"), HasSubstr("           1                   0.001520\n"
                                           "           2                   0.000190\n"));
    const std::vector<std::int32_t> nodes = Words(".FTR");
    ASSERT_EQ(nodes.size(), 50U);
    EXPECT_EQ(nodes[4], 40);
    EXPECT_NEAR(AsReal(nodes[12]), kUsage, 1e-8);
    EXPECT_EQ(Words(".FTD").size(), 100U + 42 * (5 + 36));
  }
}

// A location with all that the elastic-plastic factor needs: cycle classes have none, and the listing says
// so. The Sm-T curve is listed once.
TEST_F(HistoryRun, NoElasticPlasticFactor) {
  ActivateNodeOne();
  study.locations = {{1, 1, 0, 1, 17}, {2, 2, 0, 1, 17}};
  study.temperatures = {{1, {20, 20, 20, 20}}};
  study.elastic_plastic = {{{20.0F, 10.0F}, {300.0F, 8.0F}}, 3.0F, 0.2F, true};
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  const std::string listing = Listing();
  EXPECT_EQ(listing.find("Sm - T   C U R V E:"), listing.rfind("Sm - T   C U R V E:"));
  const std::string head = "\n\n\n *** WARNING - No Simplified Elastic-Plastic formulation:  \n";
  EXPECT_THAT(listing, EndsWith(kUsageLines + head +
                                "        (Some of the Elastic-Plastic properties are not\n"
                                "         available in the data base)\n" +
                                head +
                                "         (No section contains the activated location at one end\n"
                                "          OR if such section exists, the other end location is\n"
                                "          not available, i.e., is deleleted)\n"
                                "\n\nT O T A L   S O L U T I O N   T I M E . . . . . .=     0 Seconds\n"));
}

// One range bin: no class, no damage, no worst node. A run before it must not leave its matrices behind, nor
// one of variable amplitude those for one of constant amplitude.
TEST_F(HistoryRun, WithoutDamageThereIsNoWorstNode) {
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  study.options.range_bins = 1;
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  EXPECT_TRUE(services.Showed(9072));
  const std::vector<std::int32_t> nodes = Words(".FTR");
  EXPECT_EQ(nodes[11], R(1.0e32F));
  EXPECT_EQ(nodes[12], 0);
  const std::vector<std::int32_t> words = Words(".FTD");
  EXPECT_EQ(words[2], 0);
  EXPECT_EQ(words.size(), 100U + 5 + 1) << "the event's block alone";
  MakeAllNodes(
      {1, 2, 3, 4}, [](int) { return 500.0; }, 10);
  study.options.load_amplitude_type = 0;
  Write();
  test::WriteText(Path(".FTD"), "matrices of an earlier run");
  ASSERT_EQ(Run(), RunEnd::kComplete);
  EXPECT_FALSE(std::filesystem::exists(Path(".FTD")));
}

// The question above the curve in the first pass; the answer holds in the second.
TEST_F(HistoryRun, StressAboveTheCurve) {
  study.sn_curves[0].points = {{8000.0F, 500.0F}, {1e6F, 100.0F}};
  ActivateNodeOne();
  ASSERT_EQ(WriteAndRun(), RunEnd::kStopped);
  EXPECT_THAT(services.notes, ElementsAre(EndsWith("(node 1)")));
  services.answer = Answer::kYes;
  services.asked.clear();
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  EXPECT_EQ(services.asked.size(), 1U);
  const std::string listing = Listing();
  const std::size_t first = listing.find(kUsageLines);
  EXPECT_NE(listing.find(kUsageLines, first + 1), std::string::npos) << "both passes write their tables";
}

}  // namespace
}  // namespace zentor
