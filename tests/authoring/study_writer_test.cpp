#include "authoring/study_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

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

// Whatever write the disk refuses: before the renames nothing of the earlier study has changed, and during
// them every file is wholly the earlier or wholly the new one.
TEST_F(StudyWriter, LeavesWholeFilesWhenTheDiskIsFull) {
  StudyDefinition changed = SmallStudy();
  changed.title = "changed";
  changed.model.nodes[0].xyz = {5.0F, 5.0F, 5.0F};
  test::FaultyFileSystem counting;
  WriteStudy(changed, base, counting);
  const auto after = folder.Contents();
  const int renames = static_cast<int>(after.size());
  for (int writes = 0; writes < counting.writes(); ++writes) {
    Write(SmallStudy());
    const auto before = folder.Contents();
    test::FaultyFileSystem files;
    files.FailAfter(writes);
    EXPECT_THROW(WriteStudy(changed, base, files), platform::FileError) << writes;
    const auto now = folder.Contents();
    const bool renaming = writes >= counting.writes() - renames;
    for (const auto& [name, content] : after) {
      EXPECT_TRUE(now.at(name) == before.at(name) || (renaming && now.at(name) == content))
          << name << ' ' << writes;
    }
  }
}

}  // namespace
}  // namespace zentor
