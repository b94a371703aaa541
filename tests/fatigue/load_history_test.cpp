#include "fatigue/load_history.h"

#include <limits>

#include "fatigue/history_fixture.h"
#include "gmock/gmock.h"

namespace zentor {
namespace {

using test::Curve;
using test::HistoryWords;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

class LoadHistoryFile : public test::HistoryFixture {
 protected:
  void Load() { LoadEventHistories(run, study, history); }
  void LoadShared(float filter = 0.0F) {
    study.properties.SharedHistory = 1;
    study.properties.FilterPercent = filter;
    Load();
  }
  std::vector<float> Stretch(int e) const {
    const auto values = history.ValuesOf(study.definition.events[e]);
    return {values.begin(), values.end()};
  }
  LoadHistory history;
};

const Curve kThree = {{0, 1, 2}, {5, 7, 6}};
const Curve kTwo = {{0, 4}, {-1, 1}};

TEST_F(LoadHistoryFile, CurvesFollowEachOtherInOrderOfTheEvents) {
  // 10 header words, directory in 10..13, curve 1 at 14, curve 2 at 20, 24 words in all.
  const auto words = HistoryWords({kThree, kTwo});
  ASSERT_EQ(words.size(), 24U);
  EXPECT_THAT((std::vector<int>(words.begin() + 10, words.begin() + 14)), ElementsAre(14, 3, 20, 2));
  WriteHistory(words);
  AddEvent(2);
  AddEvent(1, 2);
  AddEvent(2, 0, 1);
  Load();
  EXPECT_THAT(history.values, ElementsAre(-1, 1, 5, 7, 6));
  EXPECT_THAT(history.times, ElementsAre(0, 4, 0, 1, 2));
  EXPECT_THAT(Stretch(1), ElementsAre(-1, 1));  // to the end of its own curve, not of the store
  EXPECT_THAT(Stretch(2), ElementsAre(7, 6));
  EXPECT_THAT(Stretch(3), ElementsAre(-1));
  EXPECT_EQ(study.definition.events[2].first, 4);
}

TEST_F(LoadHistoryFile, TimesAreReadOnlyWhereTheyAreUsed) {
  WriteHistory(HistoryWords({{{kNan, kNan, -1}, {5, 7, 6}}}, false));
  AddEvent(1);
  Load();
  EXPECT_FALSE(history.has_times);
  EXPECT_TRUE(history.times.empty());
  WriteHistory(HistoryWords({{{kNan, kNan, -1}, {5, 7, 6}}}));
  LoadShared();
  EXPECT_TRUE(history.times.empty());
}

TEST_F(LoadHistoryFile, MissingFileStopsTheRun) {
  EXPECT_TRUE(Stops([&] { Load(); }));
  EXPECT_EQ(OnlyBox(), (Box{9016, 0}));
  EXPECT_EQ(services.beeps, 1);
}

struct StopCase {
  std::vector<Curve> curves;
  int curve, start, end;
  int shared;  // filter percentage of a shared history, -1 without one
  int message;
  float argument;
};
class LoadHistoryStops : public LoadHistoryFile, public testing::WithParamInterface<StopCase> {};

TEST_P(LoadHistoryStops, WithItsMessage) {
  const StopCase& c = GetParam();
  WriteHistory(HistoryWords(c.curves));
  AddEvent(c.curve, c.start, c.end);
  EXPECT_TRUE(Stops([&] { c.shared >= 0 ? LoadShared(static_cast<float>(c.shared)) : Load(); }));
  ASSERT_EQ(OnlyBox(), (Box{c.message, c.argument}));
  EXPECT_EQ(services.asked.front().style, BoxStyle::kError);
  EXPECT_EQ(services.ends_of_run, 1);
}

const Curve kOnePoint = {{0}, {1}};
const Curve kConstant = {{0, 1}, {5, 5}};
const Curve kZigzag = {{0, 1, 2, 3, 4, 5}, {0, 3, 1, 9, 2, 4}};
INSTANTIATE_TEST_SUITE_P(
    Cases, LoadHistoryStops,
    testing::Values(StopCase{{kThree}, 2, 1, 0, -1, 9052, 2},           // no such curve
                    StopCase{{{}, kThree}, 1, 1, 0, -1, 9052, 1},       // an absent one
                    StopCase{{kOnePoint, kTwo}, 1, 1, 0, -1, 9052, 1},  //
                    StopCase{{kThree}, 1, 4, 0, -1, 9052, 1},           // start and end points off the curve
                    StopCase{{kThree}, 1, 1, 4, -1, 9052, 1},           //
                    StopCase{{kThree}, 1, 3, 2, -1, 9052, 1},           //
                    StopCase{{kZigzag}, 1, 7, 0, 0, 9052, 1},           // of a shared history
                    StopCase{{{}, kConstant}, 2, 1, 0, 0, 9078, 2},     //
                    StopCase{{kTwo}, 1, 1, 0, 0, 9078, 1},              // two reversals
                    StopCase{{kZigzag}, 1, 3, 4, 0, 9078, 1},           // a short stretch
                    StopCase{{kZigzag}, 1, 1, 0, 90, 9079, 1}));        // filtered away

struct FaultCase {
  std::size_t word;
  std::int32_t value;
  const char* place;
  const char* found;
};
constexpr std::int32_t Bits(float value) { return std::bit_cast<std::int32_t>(value); }
const FaultCase kFaults[] = {{1, -1, "number of curves", "-1"},
                             {1, 8, "number of curves", "8"},
                             {10, -14, "curve 1, start word", "-14"},
                             {12, 13, "curve 2, start word", "13"},  // in the directory
                             {12, 9999, "curve 2, start word", "9999"},
                             {13, 3, "curve 2, number of points", "3"},
                             {11, 0x7fffffff, "curve 1, number of points", "2147483647"},
                             {18, Bits(kNan), "curve 1, value of point 2", "nan"},
                             {22, Bits(-kInf), "curve 2, value of point 1", "-inf"},
                             {14, Bits(kNan), "curve 1, time of point 1", "nan"},
                             {16, Bits(0.5F), "curve 1, time of point 3", "0.500000"}};

TEST_F(LoadHistoryFile, FaultsNamePlaceAndValue) {
  AddEvent(1);
  AddEvent(2);
  for (const FaultCase& c : kFaults) {
    auto words = HistoryWords({kThree, kTwo});
    words[c.word] = c.value;
    WriteHistory(words);
    history = LoadHistory();
    try {
      Load();
      ADD_FAILURE() << "accepted " << c.place;
    } catch (const InputFault& fault) {
      EXPECT_EQ(fault.file(), services.StudyFileName(".FLH"));
      EXPECT_THAT(fault.place(), HasSubstr(c.place));
      EXPECT_EQ(fault.found(), c.found);
    }
  }
}

TEST_F(LoadHistoryFile, EveryShorterFileIsRefused) {
  const auto words = HistoryWords({kThree, kTwo});
  const auto bytes = std::as_bytes(std::span(words));
  AddEvent(1);
  AddEvent(2);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    test::WriteBytes(services.StudyFileName(".FLH"), bytes.first(size));
    EXPECT_THROW(Load(), InputFault) << size;
  }
  test::WriteBytes(services.StudyFileName(".FLH"), bytes);
  EXPECT_NO_THROW(Load());
}

}  // namespace
}  // namespace zentor
