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
  static constexpr std::size_t kBlock = 6 * 6 + 5;
  static constexpr std::size_t kRange3 = 5 + 3 * 6 + 3, kRange5 = 5 + 3 * 6 + 5;  // words of a block

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
  std::vector<std::int32_t> Block(const std::vector<std::int32_t>& words, std::size_t block) const {
    const std::size_t first = 100 + kBlock * (block - 1);
    EXPECT_LE(first + kBlock, words.size());
    if (first + kBlock > words.size()) return std::vector<std::int32_t>(kBlock);
    return {words.begin() + static_cast<std::ptrdiff_t>(first),
            words.begin() + static_cast<std::ptrdiff_t>(first + kBlock)};
  }
  // A block of `identifier` whose bins are `unit` wide, with two occupied bins.
  static std::vector<std::int32_t> Expected(int identifier, float unit, std::int32_t range3,
                                            std::int32_t range5) {
    std::vector<std::int32_t> words(kBlock);
    words[0] = identifier;
    words[1] = words[3] = R(-0.5F * unit);
    words[2] = words[4] = R(unit);
    words[kRange3] = range3;
    words[kRange5] = range5;
    return words;
  }
};

constexpr const char* kTable =
    "\n\n\nF A T I G U E   C A L C U L A T I O N   R E S U L T S:\n\n\n"
    "                                    CYCLES         ALTER.     PARTIAL\n"
    " LOADING (EVN)   LOADING (EVN)    USED/ALLOWED     STRESS     FACTOR\n"
    " -------------   -------------    --------------   ------     -------\n"
    "    0      0        0      0        10 0.3704E+05 0.30000E+03 .27000E-03\n"
    "    0      0        0      0        10 0.8000E+04 0.50000E+03 .12500E-02\n"
    "\n Cumulative Fatigue\n    Usage  Factor    =   0.152000E-02\n";

// Both passes write their tables; the listed node and the worst node are the same and get a block pair each.
TEST_F(HistoryRun, SingleLocationInTwoPasses) {
  ActivateNodeOne();
  study.options.matrix_nodes = {1};
  for (const bool shared : {true, false}) {
    SCOPED_TRACE(shared);
    std::filesystem::remove(Path(".FTI"));
    study.options.shared_history = shared;
    ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
    EXPECT_THAT(Listing(),
                EndsWith(std::string(kTable) + kTable +
                         "\n\nT O T A L   S O L U T I O N   T I M E . . . . . .=     0 Seconds\n"));
    const bool printed = Listing().find("R A N G E - M E A N   M A T R I X") != std::string::npos;
    EXPECT_EQ(printed, shared);

    const std::vector<std::int32_t> records = Words(".FTI");
    ASSERT_EQ(records.size(), 40U) << "location, two usage factors";
    EXPECT_EQ(records[0], 4);
    EXPECT_EQ(records[20], 3);
    EXPECT_NEAR(AsReal(records[31]), kUsage, 1e-9);

    const std::vector<std::int32_t> words = Words(".FTD");
    ASSERT_EQ(words.size(), 100 + 5 * kBlock);
    EXPECT_EQ(std::vector(words.begin(), words.begin() + 13),
              (std::vector<std::int32_t>{6, 1, 2, 3, 0, 0, 0, 0, 0, 0, 1, 1, 1}));
    EXPECT_EQ(Block(words, 1), Expected(1, 1.0F, 1, 1));
    for (const std::size_t first : {2, 4}) {
      const std::vector<std::int32_t> damage = Block(words, first);
      EXPECT_FLOAT_EQ(AsReal(damage[kRange3]), 2.7e-4F);
      EXPECT_FLOAT_EQ(AsReal(damage[kRange5]), 1.25e-3F);
      EXPECT_EQ(damage, Expected(1, 200.0F, damage[kRange3], damage[kRange5]));
      EXPECT_EQ(Block(words, first + 1), Expected(1, 200.0F, 10, 10));
    }
  }
}

TEST_F(HistoryRun, TheSmTCurveIsListedOnce) {
  ActivateNodeOne();
  study.elastic_plastic.sm_t = {{20.0F, 100.0F}, {300.0F, 90.0F}};
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  const std::string listing = Listing();
  const std::size_t first = listing.find("Sm - T   C U R V E:");
  EXPECT_NE(first, std::string::npos);
  EXPECT_EQ(first, listing.rfind("Sm - T   C U R V E:"));
}

// Node 2 has half the stress and an eighth of the damage; the smaller cycle of node 4 is below the curve, so
// it uses 10 / 1e6 + 10 / 512000. The listed node comes before the worst one in the file.
TEST_F(HistoryRun, AllNodes) {
  study.options.matrix_nodes = {2};
  for (const bool shared : {true, false}) {
    SCOPED_TRACE(shared);
    study.options.shared_history = shared;
    SetNodes({1, 2, 4}, [](int node) { return node == 4 ? 50.0 : node == 2 ? 100.0 : 200.0; });
    ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
    EXPECT_THAT(ListingFrom("              (all-nodes"),
                HasSubstr("           1                   0.001520\n"
                          "           2                   0.000190\n"
                          "           4                   0.000030\n"));
    const std::vector<std::int32_t> nodes = Words(".FTR");
    ASSERT_EQ(nodes.size(), 40U);
    EXPECT_EQ(nodes[5], 1);
    EXPECT_NEAR(AsReal(nodes[11]), 1.0 / kUsage, 1e-3);
    EXPECT_NEAR(AsReal(nodes[21]), 8.0 / kUsage, 1e-2);
    EXPECT_EQ(nodes[13], 0) << "no factor of safety";
    EXPECT_EQ(nodes[14], 0);

    const std::vector<std::int32_t> words = Words(".FTD");
    ASSERT_EQ(words.size(), 100 + 5 * kBlock);
    EXPECT_EQ(words[2], 2);
    EXPECT_EQ(words[11], 2);
    EXPECT_EQ(words[12], 1);
    EXPECT_EQ(Block(words, 3), Expected(2, 100.0F, 10, 10));
    EXPECT_EQ(Block(words, 5), Expected(1, 200.0F, 10, 10));
    EXPECT_THAT(Words(".FTI"), ElementsAre(1, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  }
}

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

// Two events on two curves that act together: 0, 4, 0 of event 1 and 0, 1, 0 of event 2 on loadings of 100
// and 200 make the stress history 0, 600, 0.
TEST_F(HistoryRun, EventsActTogether) {
  study.histories = {{1, {0, 1, 2}, {0, 4, 0}}, {2, {0, 1, 2}, {0, 1, 0}}};
  SetNodes({1, 2, 3, 4}, [](int) { return 100.0; });
  study.stress_cases.push_back(test::Uniaxial(2, study.model, [](int) { return 100.0; }));
  study.events = {{1, 5, {{1, 1, 1, 1.0F}}}, {2, 5, {{1, 2, 1, 2.0F}}}};
  study.events[0].history = 1;
  study.events[1].history = 2;
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  const std::vector<std::int32_t> nodes = Words(".FTR");
  ASSERT_EQ(nodes.size(), 50U);
  EXPECT_NEAR(AsReal(nodes[12]), 5 * 2.7e7 / 1e12, 1e-9);
  EXPECT_EQ(nodes[11], 0) << "two events";
  const std::vector<std::int32_t> words = Words(".FTD");
  ASSERT_EQ(words.size(), 100 + 4 * kBlock);
  EXPECT_EQ(std::vector(words.begin() + 10, words.begin() + 13), (std::vector<std::int32_t>{1, 2, 1}));
}

// Loadings of 150 and 50 on one history are a loading of 200.
TEST_F(HistoryRun, ASharedHistorySumsItsLoadings) {
  ActivateNodeOne();
  study.options.shared_history = true;
  study.events = {{1, 10, {{1, 1, 1, 0.75F}}}, {2, 10, {{1, 1, 1, 0.25F}}}};
  study.events[0].history = study.events[1].history = 1;
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  EXPECT_THAT(Listing(), HasSubstr(std::string(kTable) + kTable));
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
    const std::vector<std::int32_t> words = Words(".FTD");
    ASSERT_EQ(words.size(), 100 + 42 * kBlock);
    EXPECT_EQ(Block(words, 40), Expected(40, 1.0F, 1, 1));
    EXPECT_EQ(Block(words, 42), Expected(1, 200.0F, 10, 10));
  }
}

// A location with all that the elastic-plastic factor needs: cycle classes have none, and the listing says
// so.
TEST_F(HistoryRun, NoElasticPlasticFactor) {
  ActivateNodeOne();
  study.locations = {{1, 1, 0, 1, 17}, {2, 2, 0, 1, 17}};
  study.temperatures = {{1, {20, 20, 20, 20}}};
  study.elastic_plastic = {{{20.0F, 10.0F}, {300.0F, 8.0F}}, 3.0F, 0.2F, true};
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  const std::string head = "\n\n\n *** WARNING - No Simplified Elastic-Plastic formulation:  \n";
  EXPECT_THAT(Listing(), EndsWith(kTable + head +
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
  EXPECT_THAT(Listing(), HasSubstr(std::string(kTable) + kTable));
}

}  // namespace
}  // namespace zentor
