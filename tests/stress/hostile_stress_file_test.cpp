// Stress files whose words cannot be true: a named fault, never a crash or a number.
#include <cmath>
#include <limits>

#include "authoring/table_builder.h"
#include "services/stop.h"
#include "stress/stress_result_file.h"
#include "stress/stress_study.h"

namespace zentor::test {
namespace {

constexpr std::size_t kBlock = 30;

// Elements 1 solid, 2 layered, 3 shell, 4 line, 5 with direct stresses.
StressWords AllFamilies() {
  StressWords words(2, 5);
  words.Step(1, kBlock);
  words.Step(2, kBlock);
  const int types[] = {45, 46, 43, 1, 3};
  const int lengths[] = {45, 70, 120, 15, 40};
  std::size_t next = 0;
  for (int e = 1; e <= 5; ++e) {
    words.Element(e, static_cast<int>(next) + 1);
    words.Fill(kBlock + next, static_cast<std::size_t>(lengths[e - 1]), 3.0F);
    words.Head(kBlock + next, e, lengths[e - 1], types[e - 1], 2, 2);
    next += static_cast<std::size_t>(lengths[e - 1]);
  }
  return words;
}

class HostileStressFile : public StressStudy {
 protected:
  HostileStressFile() {
    TableBuilder elements(8, 10);
    elements.SetInt(4, 6, 1);
    elements.SetInt(4, 7, 2);
    WriteBytes(Path(".ELE"), elements.Bytes());
    DbOpenStudyTables(run.database);
  }
  // A store of finite numbers, a fault or a stop; anything else fails the test.
  bool Answers() {
    try {
      const NodalStressStore store = Build({{1, 1}, {2, 1}});
      for (const int slot : {1, 2}) {
        for (const float value : store.Slot(slot)) EXPECT_TRUE(std::isfinite(value));
      }
      return true;
    } catch (const InputFault& fault) {
      EXPECT_EQ(fault.file(), Path(".STE"));
    } catch (const RunStopped&) {
    }
    return false;
  }
};

TEST_F(HostileStressFile, EveryShorterFileIsRefused) {
  AllFamilies().Write(Path(".STE"));
  const std::string whole = ReadText(Path(".STE"));
  ASSERT_TRUE(Answers());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    WriteText(Path(".STE"), whole.substr(0, length));
    EXPECT_FALSE(Answers()) << length << " bytes";
  }
}

TEST_F(HostileStressFile, EveryWordSurvivesEveryExtremeValue) {
  const StressWords good = AllFamilies();
  using Real = std::numeric_limits<float>;
  using Integer = std::numeric_limits<std::int32_t>;
  const float reals[] = {0, -1, 2.5F, 1e9F, 3e38F, -3e38F, Real::quiet_NaN(), Real::infinity()};
  const std::int32_t integers[] = {-1, 1, 7, 21, 1000, 1 << 24, Integer::max(), Integer::min()};
  const auto try_word = [this](const StressWords& bad) {
    bad.Write(Path(".STE"));
    Answers();
  };
  for (std::size_t word = 0; word < good.size(); ++word) {
    StressWords bad = good;
    for (const float value : reals) bad.Real(word, value), try_word(bad);
    for (const std::int32_t value : integers) bad.Int(word, value), try_word(bad);
  }
}

struct Fault {
  std::size_t word;
  bool real;
  double value;
  const char *place, *found;
};
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr Fault kFaults[] = {
    {0, false, 19, "header word 0 (start of the step table)", "19"},
    {1, false, -2, "header word 1 (capacity of the step table)", "-2"},
    {3, false, 100000, "header word 3 (number of elements)", "100000"},
    {5, false, 3, "header (number of steps)", "3"},
    {18, false, 3, "header word 18 (pointer width)", "3"},
    {20, false, 1 << 20, "pointer of step 1", "1048576"},
    {23, false, 290, "pointer of element 2", "290"},
    {kBlock + 1, true, 43, "step 1, element 1, word 1 (record length)", "43.000000"},
    {kBlock + 1, true, 1e6, "step 1, element 1, word 1 (record length)", "1000000.000000"},
    {kBlock + 2, true, kNaN, "step 1, element 1, word 2 (element type code)", "nan"},
    {kBlock + 3, true, -1, "step 1, element 1, word 3 (number of nodes)", "-1.000000"},
    {kBlock + 3, true, 1e5, "step 1, element 1, word 3 (number of nodes)", "100000.000000"},
    {kBlock + 29, true, 10, "step 1, element 1, node 1 of its record", "10.000000"},
    {kBlock + 37, true, 0.5, "step 1, element 1, node 2 of its record", "0.500000"},
    {kBlock + 37 + 3, true, kNaN, "step 1, element 1, node 3, component SZ", "nan"},
    // The other node of that number has the same stress: finite values whose sum is not.
    {kBlock + 38, true, 3e38, "step 1, the sum of stresses at a node",
     "beyond the range of single precision"},
};

TEST_F(HostileStressFile, FaultsNamePlaceAndValue) {
  for (const Fault& expected : kFaults) {
    StressWords words = AllFamilies();
    if (expected.value == 3e38) words.Real(kBlock + 30, 3e38F);
    if (expected.real) {
      words.Real(expected.word, static_cast<float>(expected.value));
    } else {
      words.Int(expected.word, static_cast<int>(expected.value));
    }
    words.Write(Path(".STE"));
    try {
      BuildCase(1);
      ADD_FAILURE() << "no fault at " << expected.place;
    } catch (const InputFault& fault) {
      EXPECT_EQ(fault.place(), expected.place);
      EXPECT_EQ(fault.found(), expected.found);
    }
  }
}

}  // namespace
}  // namespace zentor::test
