#include "authoring/study_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>

#include "authoring/fatigue_table.h"
#include "support/faulty_files.h"
#include "support/temp_folder.h"

namespace zentor {
namespace {

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

std::vector<std::string> FilesIn(const test::TempFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST(StudyWriter, WritesOnlyWhatTheStudyNeedsAndRemovesTheRest) {
  const test::TempFolder folder;
  for (const char* stale : {"s.FTS", "s.STN", "s.FLH", "s.FTI", "s.FTR", "s.FTG", "s.LOG"}) {
    test::WriteText(folder.Path(stale), "old");
  }
  const WriteReport report = WriteStudy(SmallStudy(), folder.Path("s"), platform::NativeFileSystem());
  EXPECT_EQ(FilesIn(folder), (std::vector<std::string>{"s.EGR", "s.ELE", "s.FTC", "s.FTG", "s.LOG", "s.MAS",
                                                       "s.NOD", "s.STE"}));
  EXPECT_EQ(report.removed.size(), 5U);
  EXPECT_EQ(report.files.back().extension, ".MAS");
  EXPECT_EQ(report.files.back().size, std::filesystem::file_size(folder.Path("s.MAS")));
}

// Node 81 is the first of the third usage entity, 2607; the directory must reach it and nothing less.
TEST(StudyWriter, LeavesRoomForTheUsageOfEveryNode) {
  const TableBuilder table = BuildFatigueTable(SmallStudy());
  EXPECT_EQ(table.capacity(), 2607);
  EXPECT_GE(table.fields(), 41);
  StudyDefinition without_nodes;
  EXPECT_GE(BuildFatigueTable(without_nodes).capacity(), 2604)
      << "stored conditions of location 50 and loading 40";
}

std::map<std::string, std::string> Contents(const std::string& base) {
  std::map<std::string, std::string> contents;
  for (const char* extension : {".EGR", ".ELE", ".FTC", ".MAS", ".NOD", ".STE"}) {
    contents[extension] = test::ReadText(base + extension);
  }
  return contents;
}

// Whatever write the disk refuses: before the renames nothing of the earlier study has changed, and during
// them every file is wholly the earlier or wholly the new one.
TEST(StudyWriter, LeavesWholeFilesWhenTheDiskIsFull) {
  const test::TempFolder folder;
  const std::string base = folder.Path("s");
  StudyDefinition changed = SmallStudy();
  changed.title = "changed";
  changed.model.nodes[0].xyz = {5.0F, 5.0F, 5.0F};
  test::FaultyFileSystem counting;
  WriteStudy(changed, base, counting);
  const auto after = Contents(base);
  const int renames = static_cast<int>(after.size());
  for (int writes = 0; writes < counting.writes(); ++writes) {
    WriteStudy(SmallStudy(), base, platform::NativeFileSystem());
    const auto before = Contents(base);
    test::FaultyFileSystem files;
    files.FailAfter(writes);
    EXPECT_THROW(WriteStudy(changed, base, files), platform::FileError) << writes;
    const auto now = Contents(base);
    if (writes < counting.writes() - renames) {
      EXPECT_EQ(now, before) << writes;
      continue;
    }
    for (const auto& [extension, content] : now) {
      EXPECT_TRUE(content == before.at(extension) || content == after.at(extension))
          << extension << ' ' << writes;
    }
  }
}

TEST(StudyWriter, AFolderInTheWayLeavesTheEarlierStudy) {
  const test::TempFolder folder;
  const std::string base = folder.Path("s");
  WriteStudy(SmallStudy(), base, platform::NativeFileSystem());
  std::filesystem::remove(base + ".NOD");
  std::filesystem::create_directory(base + ".NOD");
  test::WriteText(base + ".STE", "earlier");
  EXPECT_THROW(WriteStudy(SmallStudy(), base, platform::NativeFileSystem()), platform::FileError);
  EXPECT_EQ(test::ReadText(base + ".STE"), "earlier");
  EXPECT_FALSE(std::filesystem::exists(base + ".NOD.new"));
}

TEST(StudyWriter, LeavesNothingBehindWhenACaseCannotBeLoaded) {
  const test::TempFolder folder;
  StudyDefinition study = SmallStudy();
  study.stress_cases.push_back({"b", 2, {}, [](const StudyModel&) -> std::vector<StressField> {
                                  throw std::runtime_error("row 7 is not a number");
                                }});
  EXPECT_THROW(WriteStudy(study, folder.Path("s"), platform::NativeFileSystem()), std::runtime_error);
  EXPECT_TRUE(FilesIn(folder).empty());
}

TEST(StudyWriter, TellsItsOwnStudiesFromOthers) {
  const test::TempFolder folder;
  const std::string base = folder.Path("s");
  platform::FileSystem& files = platform::NativeFileSystem();
  EXPECT_FALSE(IsForeignStudy(base, files));
  test::WriteText(base + ".MAS", "short");
  EXPECT_TRUE(IsForeignStudy(base, files));
  WriteStudy(SmallStudy(), base, files);
  EXPECT_FALSE(IsForeignStudy(base, files));
}

}  // namespace
}  // namespace zentor
