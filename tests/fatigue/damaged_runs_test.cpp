#include <omp.h>

#include <chrono>
#include <limits>
#include <set>

#include "support/faulty_files.h"
#include "support/study_run.h"

namespace zentor {
namespace {

using test::RunEnd;
using ::testing::AllOf;
using ::testing::HasSubstr;

class DamagedRun : public test::StudyRun {
 protected:
  void MakeConstantAmplitude() {
    MakeAllNodes(
        test::NodesUpTo(90), [](int node) { return 500.0 + node; }, 1000);
  }
  void MakeSingleLocation() {
    MakeConstantAmplitude();
    ActivateNodeOne();
    study.locations = {{1, 1, 0, 1, 9}, {2, 3, 0, 1}};
    study.elastic_plastic = {{{20.0F, 150.0F}, {300.0F, 128.0F}}, 3.0F, 0.2F, true};
    study.temperatures = {{1, std::vector<float>(90, 200.0F)}};
    study.stored_conditions = {{1, 2, std::array<float, 6>{1, 2, 3}, std::array<float, 4>{4, 5, 6}, 250.0F}};
    study.events[0].loadings[1].stress_case = kStoredStressCase;
    study.options.mean_stress_correction = 2;
  }
  void MakeHistories() {
    MakeAllNodes(
        {1, 2, 3, 4}, [](int node) { return 300.0 + node; }, 10);
    study.stress_cases.push_back(test::Uniaxial(2, study.model, [](int) { return 100.0; }));
    study.options.load_amplitude_type = study.options.alternating_stress_type = 1;
    study.options.matrix_nodes = {3};
    study.histories = {{1, {0, 1, 2}, {0, 4, 0}}, {2, {0, 0.5F, 2}, {1, 0, 2}}};
    study.events = {{1, 3, {{1, 1, 1, 1.0F}}}, {2, 2, {{1, 2, 1, 2.0F}}}};
    study.events[0].history = 1;
    study.events[1].history = 2;
  }

  // Nodes of a surface under the stresses of another study, a curve for each of two materials.
  void MakeListedStudy() {
    MakeAllNodes(
        test::NodesUpTo(8), [](int node) { return 500.0 + node; }, 10);
    WriteStudy(study, folder.Path("listed"), platform::NativeFileSystem());
    services.second_studies = {folder.Path("listed")};
    study.layout = StudyLayout::kMultiStudy;
    study.options.surface_only = true;
    study.studies = services.second_studies;
    study.stress_cases.clear();
    study.model.surface_faces = {{1, {1, 2, 3}}, {2, {5, 6, 7, 8}}};
    study.model.elements[1].material = 2;
    study.materials.push_back({2, 1.0e5F, 200.0F, 400.0F});
    study.sn_curves.push_back({2, 0.0F, 2, {{1e3F, 900.0F}, {1e6F, 50.0F}}});
    study.sn_curves.push_back({2, -1.0F, 1, {{1e3F, 900.0F}, {1e6F, 50.0F}}});
  }
};

// The scratch file is cut off while the nodes are evaluated: the fault must come out of the node loop as a
// fault, not end the process.
TEST_F(DamagedRun, ScratchFileThatIsCutOff) {
  MakeConstantAmplitude();
  class Cutting : public test::RecordingServices {
   public:
    using RecordingServices::RecordingServices;
    void ProgressBar(int first, int second) override {
      RecordingServices::ProgressBar(first, second);
      std::filesystem::resize_file(StudyFileName(".SFA"), 28);
    }
  };
  Cutting cutting(Path(""));
  cutting.largest_block = 64;
  study.stress_cases.push_back(test::Uniaxial(2, study.model, [](int) { return 100.0; }));
  study.events[0].loadings[1] = {2, 2, 1, 1.0F};
  Write();
  ASSERT_EQ(RunOn(platform::NativeFileSystem(), cutting), RunEnd::kStopped);
  ASSERT_EQ(cutting.asked.size(), 1U);
  EXPECT_THAT(cutting.asked[0].text, HasSubstr(".SFA"));
}

// Every value of every earlier entity of a table but those that a run writes.
std::map<std::pair<int, int>, std::int32_t> Entities(ModelDatabase& db, DbTable table) {
  std::map<std::pair<int, int>, std::int32_t> values;
  for (int id = 1; id <= DbMaxId(db, table); ++id) {
    if (DbSlotOf(db, table, id) == 0 || (table == DbTable::kFtc && id >= 2605)) continue;
    for (int field = 1; field < DbFieldCount(db, table); ++field) {
      values[{id, field}] = DbGetInt(db, table, id, field);
    }
  }
  for (const auto& written : {std::pair{25, 11}, {60, 15}, {103, 6}, {103, 7}}) values.erase(written);
  return values;
}

// The disk is full from the k-th write on, for every k and both ways a disk can be full: the run completes or
// stops, and afterwards the tables open and hold what they held.
TEST_F(DamagedRun, DiskThatIsFullAtAnyWrite) {
  MakeConstantAmplitude();
  Write();
  const std::map<std::string, std::string> sound = Files();
  const auto contents = [&] {
    return OnTables([](ModelDatabase& db) {
      return std::pair{Entities(db, DbTable::kMas), Entities(db, DbTable::kFtc)};
    });
  };
  const auto before = contents();
  test::FaultyFileSystem counting;
  ASSERT_EQ(RunOn(counting, services), RunEnd::kComplete);
  ASSERT_GT(counting.writes(), 20);
  for (const auto then : {test::FaultyFileSystem::Then::kThrow, test::FaultyFileSystem::Then::kIgnore}) {
    for (int writes = 0; writes < counting.writes(); ++writes) {
      SCOPED_TRACE(writes);
      for (const auto& [extension, content] : Files()) std::filesystem::remove(Path(extension));
      for (const auto& [extension, content] : sound) test::WriteText(Path(extension), content);
      test::FaultyFileSystem files;
      files.FailAfter(writes, then);
      test::RecordingServices recording(Path(""));
      const RunEnd end = RunOn(files, recording);
      if (then == test::FaultyFileSystem::Then::kThrow) {
        ASSERT_EQ(end, RunEnd::kStopped);
        ASSERT_FALSE(recording.asked.empty());
        EXPECT_THAT(recording.asked[0].text, HasSubstr("No space left on device"));
      }
      EXPECT_TRUE(contents() == before);
      for (const char* extension : {".NOD", ".ELE", ".MAT", ".STE"}) {
        EXPECT_TRUE(test::ReadText(Path(extension)) == sound.at(extension)) << extension;
      }
    }
  }
}

// Words of a file that steer what is read: those at its start, and a sample of all that are not 0.
std::vector<std::size_t> WordsToDamage(const std::string& content, std::size_t most) {
  std::set<std::size_t> words;
  const std::size_t count = content.size() / 4;
  for (std::size_t w = 0; w < std::min<std::size_t>(count, 10); ++w) words.insert(w);
  std::vector<std::size_t> filled;
  for (std::size_t w = 10; w < count; ++w) {
    if (content.compare(4 * w, 4, std::string(4, '\0')) != 0) filled.push_back(w);
  }
  for (std::size_t i = 0; i < most && !filled.empty(); ++i) words.insert(filled[i * filled.size() / most]);
  return {words.begin(), words.end()};
}

class HostileStudy : public DamagedRun, public ::testing::WithParamInterface<const char*> {
 protected:
  HostileStudy() {
    const std::string name = GetParam();
    if (name == "AllNodes") MakeConstantAmplitude();
    if (name == "SingleLocation") MakeSingleLocation();
    if (name == "Histories") MakeHistories();
    if (name == "ListedStudy") MakeListedStudy();
    Write();
    sound_ = Files();
    services.answer = Answer::kYes;
    EXPECT_EQ(Run(), RunEnd::kComplete) << "only a sound study has depths to damage";
    omp_set_num_threads(1);  // many short runs
  }
  void TearDown() override { omp_set_num_threads(threads_); }
  // The run ends in order and soon. The files are as they were afterwards.
  void ExpectAnEnd(const std::string& extension, const std::string& damaged) {
    for (const auto& [name, content] : sound_) {
      if (name == extension || test::ReadText(Path(name)) != content) test::WriteText(Path(name), content);
    }
    test::WriteText(Path(extension), damaged);
    test::RecordingServices recording(Path(""));
    recording.answer = Answer::kYes;
    recording.second_studies = services.second_studies;
    const auto start = std::chrono::steady_clock::now();
    const RunEnd end = RunOn(platform::NativeFileSystem(), recording);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    EXPECT_LT(seconds.count(), 5.0);
    EXPECT_TRUE(end == RunEnd::kComplete || !recording.asked.empty()) << "a stop says why";
    test::WriteText(Path(extension), sound_.at(extension));
  }
  std::map<std::string, std::string> sound_;
  const int threads_ = omp_get_max_threads();
};

TEST_P(HostileStudy, AnyShorterFile) {
  for (const auto& [extension, content] : sound_) {
    for (int i = 0; i < 8; ++i) {
      SCOPED_TRACE(extension + " cut at " + std::to_string(i) + "/8");
      ExpectAnEnd(extension, content.substr(0, content.size() * i / 8 + i % 3));
    }
  }
}

TEST_P(HostileStudy, AnyWord) {
  const std::int32_t values[] = {
      -1,        0, 1, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min(),
      0x7FC00000};
  for (const auto& [extension, content] : sound_) {
    for (const std::size_t word : WordsToDamage(content, 8)) {
      for (const std::int32_t value : values) {
        SCOPED_TRACE(extension + " word " + std::to_string(word) + " = " + std::to_string(value));
        std::string damaged = content;
        std::memcpy(damaged.data() + 4 * word, &value, 4);
        ExpectAnEnd(extension, damaged);
      }
    }
  }
}

// What the system fails to find or to open stops the run, as does what it finds damaged; only what is not
// there can be done without.
TEST_P(HostileStudy, AFileThatCannotBeAskedForIsNotAMissingOne) {
  std::set<std::string> extensions(kTableExtensions.begin(), kTableExtensions.end());
  extensions.insert({".STE", ".FTS", ".FTX"});
  for (const auto& [extension, content] : sound_) extensions.insert(extension);
  for (const std::string& extension : extensions) {
    SCOPED_TRACE(extension);
    test::FaultyFileSystem files;
    files.FailToOpen(extension);
    test::RecordingServices recording(Path(""));
    recording.files = &files;
    recording.second_studies = services.second_studies;
    ASSERT_EQ(RunOn(files, recording), RunEnd::kStopped);
    ASSERT_EQ(recording.asked.size(), 1U);
    EXPECT_THAT(recording.asked[0].text, AllOf(HasSubstr(extension), HasSubstr("Input/output error")));
  }
}

INSTANTIATE_TEST_SUITE_P(Studies, HostileStudy,
                         ::testing::Values("AllNodes", "SingleLocation", "Histories", "ListedStudy"),
                         [](const auto& one) { return std::string(one.param); });

}  // namespace
}  // namespace zentor
