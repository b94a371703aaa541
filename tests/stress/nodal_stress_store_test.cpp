#include "stress/nodal_stress_store.h"

#include <omp.h>

#include <numeric>
#include <random>

#include "authoring/stress_file_writer.h"
#include "database/bytes.h"
#include "services/stop.h"
#include "stress/stress_result_file.h"
#include "stress/stress_study.h"
#include "support/faulty_files.h"

namespace zentor::test {
namespace {

// Two steps of one solid at nodes 1 and 2 with stresses 10 .. and 20 ..
StressWords TwoSteps() {
  StressWords words(2, 1);
  words.Step(1, 30);
  words.Step(2, 80);
  words.Element(1, 1);
  words.Solid(30, 1, {1, 2}, 10.0F);
  words.Solid(80, 1, {1, 2}, 20.0F);
  return words;
}

TEST_F(StressStudy, LoadingsShareSlotsInOrderOfAppearance) {
  TwoSteps().Write(Path(".STE"));
  const NodalStressStore store =
      Build({{2, 1}, {0, 1}, {kAppliedLoadCase, 1}, {kZeroLoadCase, 1}, {2, 1}, {1, 1}, {2, 2}, {1, 1}});
  const int slots[] = {0, 1, 0, 0, 0, 1, 2, 3, 2, 0};
  for (int k = 0; k <= 9; ++k) EXPECT_EQ(store.SlotOf(k), slots[k]) << "loading " << k;
  EXPECT_EQ(store.slot_count(), 3);
  EXPECT_EQ(store.NodalStress(1, 1), Rising(20));
  EXPECT_EQ(store.NodalStress(2, 2), Rising(10));
  EXPECT_EQ(store.NodalStress(2, 3), Rising(20));
  for (const auto& [node, slot] : {std::pair{0, 1}, {10, 1}, {1, 0}, {1, 4}}) {
    EXPECT_EQ(store.NodalStress(node, slot), StressTensor{}) << node << ", " << slot;
  }
}

TEST_F(StressStudy, ElementsWithoutARecordOfTheirOwnAddNothing) {
  StressWords words(1, 5);
  words.Step(1, 30);
  for (int i = 0; i < 5; ++i) words.Element(i + 1, 1 + 40 * i);
  words.Element(2, 0);
  words.Element(3, -81);
  for (int i = 0; i < 5; ++i) words.Solid(30 + 40 * static_cast<std::size_t>(i), i + 1, {i + 1}, 10.0F);
  words.Real(30 + 120, 9.0F);  // the record of element 4 names another one
  words.Write(Path(".STE"));
  study.sizes.highest_element = 5;
  const NodalStressStore store = BuildCase(1);
  for (int node = 1; node <= 5; ++node) {
    EXPECT_EQ(store.NodalStress(node, 1), node == 1 || node == 5 ? Rising(10) : StressTensor{}) << node;
  }
  // Records beyond the model's highest element are not read.
  study.sizes.highest_element = 4;
  EXPECT_EQ(BuildCase(1).NodalStress(5, 1), StressTensor{});
}

TEST_F(StressStudy, TheLaterStepCountServesStpOnly) {
  StressWords words(5, 1);
  for (int step = 1; step <= 5; ++step) words.Step(step, 30);
  words.Element(1, 1);
  words.Solid(30, 1, {1}, 10.0F);
  words.Int(5, 3);
  words.Int(6, 5);
  words.Write(Path(".STP"));
  words.Write(Path(".STE"));
  study.stress_kind = StressKind::kStp;
  EXPECT_EQ(BuildCase(5).NodalStress(1, 1), Rising(10));
  study.properties.LoadAmplitudeType = 1;  // reads ".STE", whatever the kind
  EXPECT_EQ(BuildCase(3).NodalStress(1, 1), Rising(10));
  EXPECT_EQ(StopsWith({{1, 1}, {5, 1}}), 0);
  EXPECT_EQ(services.asked[0].text, "Stress results are not available for requested step");
  EXPECT_EQ(services.ends_of_run, 1);
}

TEST_F(StressStudy, WidePointersAndTypeCodes) {
  for (const int width : {0, 1, 2}) {
    for (const auto& [kind, extension] : {std::pair{StressFileKind::kSte, ".STE"},
                                          {StressFileKind::kStn, ".STN"},
                                          {StressFileKind::kStp, ".STP"}}) {
      StressFileWriter writer(files, Path(extension), {kind, width, 2, 7, 4});
      const std::int32_t nodes[] = {1, 2};
      const std::vector<float> first(12, 3.0F), second(48, 5.0F);
      writer.SkipStep();
      writer.BeginStep();
      writer.Add({.element = 4, .type_code = 92, .nodes = nodes, .values = first});
      writer.Add({.element = 2, .type_code = 91, .layers = 2, .nodes = nodes, .values = second});
      writer.Finish();
      study.stress_kind = static_cast<StressKind>(static_cast<int>(kind) + 1);
      const NodalStressStore store = BuildCase(2);
      EXPECT_EQ(store.NodalStress(2, 1), (StressTensor{4, 4, 4, 4, 4, 4})) << width << extension;
      EXPECT_EQ(study.properties.PointerWidth, width == 2 ? 2 : 1);
      EXPECT_EQ(StopsWith({{1, 1}}), 9041);
      EXPECT_EQ(services.asked[0].arguments, std::vector<float>{1.0F});

      const auto file = OpenStressResultFile(run, study.stress_kind, 2);
      EXPECT_EQ(ElementTypeCode(file, 4), 92);
      EXPECT_EQ(ElementTypeCode(file, 2), 91);
      for (const int absent : {0, 1, 3, 5}) EXPECT_EQ(ElementTypeCode(file, absent), std::nullopt);
    }
  }
}

// A model whose step block is longer than any window, with gaps, in several orders of the records on disk.
// The expected means come from a plain sum over the elements.
class LargeModel : public StressStudy {
 protected:
  static constexpr int kElements = 5000, kNodes = 3000, kSteps = 5;

  LargeModel() {
    study.sizes.highest_node = kNodes;
    study.sizes.highest_element = kElements;
    std::mt19937 random(17);
    for (int e = 1; e <= kElements; ++e) {
      std::vector<std::int32_t>& nodes = nodes_.emplace_back();
      while (e % 11 != 0 && nodes.size() < 4 + random() % 17)
        nodes.push_back(static_cast<int>(random() % (kNodes - 9)) + 1);
    }
    for (int k = 1; k <= kSteps; ++k) loadings_.push_back({k, 1});
  }
  static float Value(int element, std::size_t place, int step) {
    return std::sin(static_cast<float>(element * 31 + static_cast<int>(place) * 7 + step * 1001)) * 1000.0F;
  }
  // Whether an element has a record in a step; every step but the first leaves some out.
  static bool Stored(int element, int step) {
    return element % 11 != 0 && (step == 1 || (element + step) % 5 != 0);
  }

  void Write(const std::vector<int>& order) {
    StressFileWriter writer(files, Path(".STE"), {.steps = kSteps, .highest_element = kElements});
    std::vector<float> values;
    for (int step = 1; step <= kSteps; ++step) {
      writer.BeginStep();
      for (const int e : order) {
        if (!Stored(e, step)) continue;
        const std::vector<std::int32_t>& nodes = nodes_[static_cast<std::size_t>(e) - 1];
        values.resize(nodes.size() * 6);
        for (std::size_t i = 0; i < values.size(); ++i) values[i] = Value(e, i, step);
        writer.Add({.element = e, .type_code = 45, .nodes = nodes, .values = values});
      }
    }
    writer.Finish();
  }
  // Sums in element order, in single precision, times the inverse of the count.
  std::vector<float> Expected(int step) const {
    std::vector<float> sums(std::size_t{6} * kNodes), counts(kNodes);
    for (int e = 1; e <= kElements; ++e) {
      if (!Stored(e, step)) continue;
      const std::vector<std::int32_t>& nodes = nodes_[static_cast<std::size_t>(e) - 1];
      for (std::size_t j = 0; j < nodes.size(); ++j) {
        const auto node = static_cast<std::size_t>(nodes[j]) - 1;
        for (std::size_t c = 0; c < 6; ++c) sums[6 * node + c] += Value(e, 6 * j + c, step);
        counts[node] += 1.0F;
      }
    }
    for (std::size_t i = 0; i < sums.size(); ++i) {
      if (counts[i / 6] > 0) sums[i] *= 1.0F / counts[i / 6];
    }
    return sums;
  }
  static std::vector<int> Ascending() {
    std::vector<int> order(kElements);
    std::iota(order.begin(), order.end(), 1);
    return order;
  }
  void ExpectMeans(const NodalStressStore& store) {
    for (int slot = 1; slot <= kSteps; ++slot) {
      const std::vector<float> expected = Expected(slot);
      std::vector<float> found;
      for (int node = 1; node <= kNodes; ++node) {
        for (const double value : store.NodalStress(node, slot)) found.push_back(static_cast<float>(value));
      }
      EXPECT_TRUE(found == expected) << "slot " << slot;
    }
  }

  std::vector<std::vector<std::int32_t>> nodes_;
  std::vector<StoreLoading> loadings_;
};

TEST_F(LargeModel, AnyOrderOfRecordsAndAnyNumberOfThreadsGivesTheSameMeans) {
  std::vector<int> order = Ascending();
  for (const int threads : {1, 4}) {
    omp_set_num_threads(threads);
    Write(order);
    ExpectMeans(Build(loadings_));
    std::shuffle(order.begin(), order.end(), std::mt19937(5));
  }
}

TEST_F(LargeModel, FileModeReadsBackWhatMemoryModeHolds) {
  Write(Ascending());
  const std::uint64_t needed = std::uint64_t{kSteps} * 6 * kNodes * 4;
  services.largest_block = needed;
  EXPECT_TRUE(Build(loadings_).InMemory());
  services.largest_block = needed - 4;
  EXPECT_TRUE(Build({{1, 1}, {1, 1}}).InMemory()) << "a single slot stays in memory";
  const NodalStressStore store = Build(loadings_);
  EXPECT_FALSE(store.InMemory());
  EXPECT_TRUE(store.Slot(1).empty());
  EXPECT_TRUE(store.CreatedScratchFile());
  ExpectMeans(store);
}

// Slot 1 has stresses at nodes 1 and 2, slot 2 at node 3 only.
TEST_F(StressStudy, ScratchFileHoldsOneRecordPerSlotAndNode) {
  StressWords words(2, 2);
  words.Step(1, 40);
  words.Step(2, 140);
  words.Element(1, 1);
  words.Element(2, 51);
  words.Solid(40, 1, {2, 1}, 10.0F);
  words.Solid(190, 2, {3}, 20.0F);
  for (const std::size_t word : {2U, 4U, 6U, 7U, 8U}) words.Int(word, 100 + static_cast<int>(word));
  words.Write(Path(".STE"));
  WriteText(Path(".SFA"), std::string(5000, 'x'));  // of an earlier run
  study.properties.ShellSurface = 2;
  study.properties.ShellLayer = 0;

  const auto word_of = [&](std::size_t record, std::size_t word) {
    return LoadInt(&ReadBytes(Path(".SFA")).at((record - 1) * 28 + word * 4));
  };
  EXPECT_TRUE(Build({{1, 1}, {2, 1}}).InMemory());
  EXPECT_EQ(std::filesystem::file_size(Path(".SFA")), 4 * 28U);
  EXPECT_EQ(word_of(1, 1), 4);
  services.largest_block = 100;
  const NodalStressStore store = Build({{1, 1}, {2, 1}});
  EXPECT_EQ(std::filesystem::file_size(Path(".SFA")), 7 * 28U);
  const auto real = [](float value) { return std::bit_cast<int>(value); };
  const int words_at[][3] = {{1, 0, 1},   {1, 1, 7},        {2, 0, 2},        {2, 1, 0},
                             {3, 0, 20},  {3, 1, 2},        {3, 2, 102},      {3, 3, 2},
                             {3, 4, 104}, {3, 5, 2},        {3, 6, 106},      {4, 0, 107},
                             {4, 1, 108}, {5, 0, real(10)}, {6, 5, real(15)}, {7, 1, real(21)}};
  for (const auto& [record, word, value] : words_at)
    EXPECT_EQ(word_of(record, word), value) << record << word;
  for (int node = 1; node <= 4; ++node) {
    EXPECT_EQ(store.NodalStress(node, 1), node < 3 ? Rising(10) : StressTensor{}) << node;
    EXPECT_EQ(store.NodalStress(node, 2), node == 3 ? Rising(20) : StressTensor{}) << node;
  }
}

TEST_F(StressStudy, AbsentSlotStopsTheRun) {
  TwoSteps().Write(Path(".STE"));
  const NodalStressStore store = Build({{2, 1}, {0, 1}});
  EXPECT_EQ(RequireSlot(run, study.properties, store, 1, 2), 1);
  for (const int study_type : {0, 5}) {
    services.asked.clear();
    study.properties.StudyType = study_type;
    EXPECT_THROW(RequireSlot(run, study.properties, store, 2, 17), RunStopped);
    EXPECT_EQ(services.asked.at(0).message, study_type == 0 ? 9037 : 9038);
    EXPECT_EQ(services.asked[0].arguments, std::vector<float>{17.0F});
  }
  EXPECT_THAT(Listing(), ::testing::HasSubstr("*** ERROR: load case =  17 is not available in .SFA file\n"));
}

class RefusingFiles : public FaultyFileSystem {
 public:
  std::unique_ptr<platform::RandomAccessFile> Open(const std::string& path,
                                                   platform::OpenMode mode) override {
    if (path.find(".ST") != std::string::npos) throw platform::FileError(path, "open", 13);
    return FaultyFileSystem::Open(path, mode);
  }
};

TEST_F(StressStudy, MissingAndUnreadableFilesStopTheRun) {
  RefusingFiles refusing;
  RunContext refused(refusing, services);
  const std::vector<StoreLoading> loadings = {{1, 1}};
  for (const StressKind kind : {StressKind::kSte, StressKind::kStn, StressKind::kStp}) {
    study.stress_kind = kind;
    EXPECT_EQ(StopsWith(loadings), 9046);
    TwoSteps().Write(Path(StressExtension(kind)));
    services.asked.clear();
    EXPECT_THROW(BuildNodalStressStore(refused, study, loadings), RunStopped);
    EXPECT_EQ(services.asked.at(0).message, 9042 + static_cast<int>(kind));
  }
}

class ListedStudies : public StressStudy {
 protected:
  ListedStudies() {
    study.properties.StudyType = 5;
    services.second_studies = {folder.Path("a"), folder.Path("b"), folder.Path("c"), folder.Path("none")};
    TwoSteps().Write(folder.Path("a.STE"));
    StressFileWriter b(files, folder.Path("b.STP"),
                       {.kind = StressFileKind::kStp, .pointer_width = 2, .steps = 1, .highest_element = 1});
    const std::int32_t nodes[] = {2};
    const float values[] = {30, 31, 32, 33, 34, 35};
    b.BeginStep();
    b.Add({.element = 1, .type_code = 42, .nodes = nodes, .values = values});
    b.Finish();
    StressWords c(1, 2);
    c.Step(1, 30);
    c.Int(40, 0);
    c.Write(folder.Path("c.STE"));
  }
};

TEST_F(ListedStudies, EachLoadingReadsTheStudyOnItsLine) {
  const NodalStressStore store = Build({{2, 1}, {1, 2}, {kZeroLoadCase, 1}, {1, 1}, {1, 2}});
  EXPECT_EQ(store.slot_count(), 3);
  EXPECT_EQ(std::pair(store.SlotOf(3), store.SlotOf(5)), std::pair(0, 2));
  EXPECT_EQ(store.NodalStress(2, 1), Rising(20));
  EXPECT_EQ(store.NodalStress(2, 2), Rising(30));
  EXPECT_EQ(store.NodalStress(2, 3), Rising(10));
}

TEST_F(ListedStudies, WhatIsWrongWithAStudyIsToldByItsName) {
  const auto name = [&] {
    std::string text;
    for (const float unit : services.asked.at(0).arguments) text += static_cast<char>(unit);
    return text.substr(0, text.size() - 1);
  };
  EXPECT_EQ(StopsWith({{1, 1}, {1, 4}}), 9040);
  EXPECT_EQ(name(), folder.Path("none"));
  EXPECT_EQ(StopsWith({{1, 1}, {1, 3}}), 9047);
  EXPECT_EQ(name(), folder.Path("c"));
  EXPECT_THROW(Build({{1, 0}}), InputFault);
}

}  // namespace
}  // namespace zentor::test
