#include "authoring/study_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "database/study_lock.h"
#include "support/faulty_files.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

using testing::ElementsAre;
using testing::Key;
using testing::Pair;

// One quadrilateral with one stress case, one event and one curve.
StudyDefinition SmallStudy() {
  StudyDefinition study;
  study.title = "small";
  for (const int n : {1, 2, 3, 81}) study.model.nodes.push_back({n, {static_cast<float>(n), 0.0F, 0.0F}, 0});
  study.model.elements.push_back({7, 42, 1, 1, 4, 0});
  study.model.element_nodes = {1, 2, 3, 81};
  study.model.groups = {{1, 42}};
  study.stress_cases.push_back({"a", 1, {{1, false, std::vector<float>(24, 3.0F)}}, {}});
  study.events.push_back({1, 100, {{1, 1, 1, 1.0F}, {2, kZeroStressCase, 1, 1.0F}}});
  study.sn_curves.push_back({1, -1.0F, 0, {{1e3F, 400.0F}, {1e6F, 100.0F}}});
  return study;
}

class StudyWriter : public testing::Test {
 protected:
  WriteReport Write(const StudyDefinition& study) { return WriteStudy(study, base, native); }

  test::TempFolder folder;
  const std::string base = folder.Path("s");
  platform::FileSystem& native = platform::NativeFileSystem();
};

TEST_F(StudyWriter, WritesOnlyWhatTheStudyNeedsAndRemovesTheRest) {
  for (const char* stale : {"s.FTS", "s.STN", "s.FLH", "s.FTI", "s.FTR", "s.FTG", "s.LOG"}) {
    test::WriteText(folder.Path(stale), "old");
  }
  const WriteReport report = Write(SmallStudy());
  EXPECT_THAT(folder.Contents(),
              ElementsAre(Key("s.EGR"), Key("s.ELE"), Key("s.FTC"), Pair("s.FTG", "old"), Key("s.FTX"),
                          Pair("s.LOG", "old"), Key("s.MAS"), Key("s.NOD"), Key("s.STE")));
  EXPECT_EQ(report.removed.size(), 5U);
  EXPECT_EQ(report.files.back().extension, ".MAS");
  EXPECT_EQ(report.files.back().size, std::filesystem::file_size(folder.Path("s.MAS")));
}

// Whatever write fails, once, for good, or with everything behind it lost as when the process is killed.
TEST_F(StudyWriter, AStudyIsReplacedWhollyOrMarked) {
  using Then = test::FaultyFileSystem::Then;
  StudyDefinition changed = SmallStudy();
  changed.title = "changed";
  changed.model.nodes[0].xyz = {5.0F, 5.0F, 5.0F};
  changed.model.groups.clear();                        // one file less
  changed.materials.push_back({1, 2e5F, 0.0F, 0.0F});  // one file more
  Write(changed);
  const auto after = folder.Contents();
  const auto start_anew = [&] {
    Write(SmallStudy());
    std::filesystem::remove(folder.Path("s.EGR"));
    std::filesystem::create_symlink("nowhere", folder.Path("s.EGR"));
    test::WriteText(folder.Path("s.FTR"), "results");
    return folder.Contents();
  };
  for (const Then then : {Then::kOnce, Then::kThrow, Then::kIgnore}) {
    int marked = 0, whole = 0;
    for (int writes = 0; whole < 3; ++writes) {
      const auto before = start_anew();
      test::FaultyFileSystem files;
      files.FailAfter(writes, then);
      bool thrown = false;
      try {
        WriteStudy(changed, base, files);
      } catch (const platform::FileError&) {
        thrown = true;
      }
      auto now = folder.Contents();
      const bool left_over = now.erase("s.BLD") > 0;
      if (std::filesystem::exists(HalfBuiltMark(base))) {
        ++marked;
        EXPECT_TRUE(!now.contains("s.MAS") || now == after || now.at("s.MAS") == before.at("s.MAS"))
            << writes;
        const StudyStage next(base, native);
        now = folder.Contents();
        now.erase("s.BLD");
      }
      EXPECT_FALSE(then == Then::kOnce && thrown && left_over) << writes;
      ASSERT_TRUE(now == before || now == after) << writes;
      whole += now == after ? 1 : 0;
      Write(changed);
      ASSERT_TRUE(folder.Contents() == after) << "the next build, after " << writes;
    }
    EXPECT_TRUE(then == Then::kOnce ? marked == 0 : marked > 15) << marked;
  }
}

// What lies in the way is neither followed nor replaced.
TEST_F(StudyWriter, NothingOfOthersIsTouched) {
  Write(SmallStudy());
  std::filesystem::create_directory(folder.Path("other"));
  test::WriteText(folder.Path("other/new.STE"), "other");
  std::filesystem::create_directory_symlink("other", BuildFolder(base));
  EXPECT_THROW(Write(SmallStudy()), platform::FileError);
  EXPECT_EQ(test::ReadText(folder.Path("other/new.STE")), "other");
  std::filesystem::remove(BuildFolder(base));
  std::filesystem::rename(folder.Path("other"), BuildFolder(base));
  test::WriteText(BuildFolder(base) + "/notes", "mine");
  EXPECT_THROW(Write(SmallStudy()), platform::FileError);
  EXPECT_EQ(test::ReadText(BuildFolder(base) + "/notes"), "mine");
}

}  // namespace
}  // namespace zentor
