// Events and loadings: the ways they are read.
#include "study_input_fixture.h"

namespace zentor::test {
namespace {

class Events : public StudyInput {};

TEST_F(Events, OrdinaryLoadings) {
  SetEvent(2, 123456789);
  SetEvent(4, 7);
  ftc.SetInt(3, 2, 9);  // stored under another number
  SetLoading(2, 5, 100, 3.0F);
  SetLoading(2, 9, -1, 4.0F);
  SetLoading(2, 6, -3, 1.0F);  // no load case of any kind
  ftc.SetInt(21, 8, 5);        // a load case whose loading belongs to no event
  Store(kLocation, 9, true, false, false);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(study.definition.event_count, 4);
  EXPECT_EQ(Loadings(9), (LoadingRows{{1, 1, 1, 2.0},
                                      {2, 1, 1, -0.5},
                                      {},
                                      {},
                                      {kZeroLoadCase, 1, 2, 3.0},
                                      {0, 0, 0, 1.0},
                                      {5, 1, 0, 0.0},
                                      {},
                                      {kStoredLoadCase, 1, 2, 4.0}}));
}

// Event 1 takes part with its first entry only and adds the loading that is paired with it; event 2 has
// pairing off, so its entries follow one another. A stored number above 1 is the load case of the first
// entry.
TEST_F(Events, MultiStudyLoadingsComeInOrderOfAppearance) {
  MakeMultiStudy();
  services.second_studies = {Path("-listed"), Path("-listed"), Path("-listed"), Path("-listed")};
  ftc.SetInt(21, 2, 3);
  ftc.SetInt(21, 3, 4);
  ftc.SetReal(61, 2, 2.0F);
  ftc.SetReal(1, 5, 0.1F);
  SetEvent(2, 50);
  ftc.SetInt(2, 2, 5);
  ftc.SetInt(2, 6, 1);
  ftc.SetInt(22, 2, 1);
  ftc.SetInt(22, 4, 2);
  ftc.SetReal(62, 4, -1.0F);
  SetEvent(3, 60);  // no entry of its own: the stored number alone makes a loading
  ftc.SetInt(3, 6, 1);
  ASSERT_EQ(Read(), Outcome::kComplete);
  EXPECT_EQ(Loadings(5), (LoadingRows{{3, 3, 1, 2.0},
                                      {3, 3, 1, static_cast<double>(0.1F) * 2.0},
                                      {5, 1, 2, 0.0},
                                      {2, 2, 2, -1.0},
                                      {3, 0, 3, 0.0}}));
}

// A shared history stays only when every setting of neighbouring events agrees, with 0 meaning 1 for the
// points and the further count.
TEST_F(Events, SharedHistoryNeedsEqualSettings) {
  constexpr int kOneHalf = 0x3F000000;
  const int cases[][3] = {{3, 6, 0}, {4, 11, 0},       {5, 0, 1}, {6, 1, 1},
                          {7, 4, 0}, {8, kOneHalf, 0}, {9, 1, 1}, {9, 2, 0}};
  for (const auto& [changed, value, shared] : cases) {
    MakeVariableAmplitude();
    SetMaster(mas, master::kSharedHistory, 1);
    SetVariableEvent(2, 3, 5);
    SetInts(ftc, 2, 6, {0, 0, 0, 0});
    ftc.SetInt(2, changed, value);
    ASSERT_EQ(Read(), Outcome::kComplete);
    EXPECT_EQ(study.properties.SharedHistory, shared) << "field " << changed << " = " << value;
    EXPECT_EQ(study.definition.common_start, changed != 8);
  }
}

}  // namespace
}  // namespace zentor::test
