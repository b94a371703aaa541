// What a run tells the progress window: its messages in their order with their arguments, its progress.
#include <new>

#include "fatigue/fatigue_run.h"
#include "fatigue/sn_preparation.h"
#include "support/study_run.h"

namespace zentor::test {
namespace {

using ::testing::ElementsAre;

using RunMessages = StudyRun;

// Progress as the definition of a run states it: a start, every so many nodes, the end.
std::vector<std::pair<int, int>> Progress(int total, int step) {
  std::vector<std::pair<int, int>> values = {{0, 0}};
  for (int count = step; count <= total; count += step) values.emplace_back(total, count);
  values.emplace_back(100, 100);
  return values;
}

TEST_F(RunMessages, AllNodesWithTheirProgress) {
  for (const auto& [nodes, step] : {std::pair(3, 10),
                                    {20, 10},
                                    {99, 10},
                                    {100, 25},
                                    {249, 25},
                                    {250, 50},
                                    {499, 50},
                                    {500, 100},
                                    {999, 100},
                                    {1000, 20},
                                    {1049, 20},
                                    {1050, 21}}) {
    std::vector<int> numbers = NodesUpTo(nodes);
    numbers.back() = nodes + 7;  // numbers without a node are no progress
    MakeAllNodes(
        numbers, [](int) { return 300.0; }, 10);
    services.shown.clear();
    services.progress.clear();
    ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
    EXPECT_EQ(Told(), "9013 " + std::to_string(nodes + 7) + ", 9018 2, 9019 1, 9021, 9062") << nodes;
    EXPECT_EQ(services.progress, Progress(nodes, step)) << nodes;
  }
}

TEST_F(RunMessages, OtherStudies) {
  MakeAllNodes(
      NodesUpTo(8), [](int) { return 300.0; }, 10);
  study.events.push_back({2, 20, {{3, 1, 1, 0.5F}}});
  ActivateNodeOne();
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  EXPECT_EQ(Told(), "9013 8, 9018 3, 9019 2, 9020 1");
  EXPECT_TRUE(services.progress.empty()) << "of one location there is nothing to count";

  services.shown.clear();
  study.options.load_amplitude_type = 1;
  study.options.alternating_stress_type = 1;
  study.histories = {{1, {0, 1, 2, 3}, {0, 5, 0, 4}}};
  study.events = {{1, 10, {{1, 1, 1, 1.0F}}}};
  study.events[0].history = 1;
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  EXPECT_EQ(Told(), "9013 8, 9018 1, 9020 1");

  services.shown.clear();
  services.second_studies = {folder.Path("listed")};
  WriteStudy(study, services.second_studies[0], platform::NativeFileSystem());
  study.layout = StudyLayout::kMultiStudy;
  study.studies = services.second_studies;
  study.stress_cases.clear();
  ASSERT_EQ(WriteAndRun(), RunEnd::kComplete);
  EXPECT_EQ(Told(), "9013 8, 9018 1, 9062");
}

// Memory that runs out in the midst of a run.
TEST_F(RunMessages, OutOfMemory) {
  struct Exhausted : RecordingServices {
    using RecordingServices::RecordingServices;
    void ProgressBar(int, int) override { throw std::bad_alloc(); }
  } exhausted(Path(""));
  MakeAllNodes(
      NodesUpTo(8), [](int) { return 300.0; }, 10);
  Write();
  ASSERT_EQ(RunOn(platform::NativeFileSystem(), exhausted), RunEnd::kStopped);
  ASSERT_EQ(exhausted.asked.size(), 1U);
  EXPECT_EQ(exhausted.asked[0].message, 4914);
  EXPECT_EQ(exhausted.asked[0].style, BoxStyle::kError);
  EXPECT_EQ(exhausted.ends_of_run, 1);
}

// The study input refuses such a material before; a table that changes during the run does not get past it.
TEST_F(RunMessages, AModulusThatHasBecomeACurve) {
  MakeAllNodes(
      NodesUpTo(8), [](int) { return 300.0; }, 10);
  Write();
  Put(DbTable::kMat, 1, 3, 5);
  FatigueRun run(platform::NativeFileSystem(), services);
  DbOpenStudyTables(run.context.database);
  run.study.properties.SnCurveOption = -1;
  run.study.materials.modulus.Assign(1, 2e5);
  EXPECT_THROW(PrepareCurves(run, 1), RunStopped);
  EXPECT_THAT(Boxes(), ElementsAre(9066));
  EXPECT_EQ(services.beeps, 1);
}

}  // namespace
}  // namespace zentor::test
