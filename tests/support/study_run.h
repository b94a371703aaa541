// Whole runs in process: a small study made from a definition, its files in a folder of the test's own, the
// run driver with recording services.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "authoring/study_writer.h"
#include "database/model_database.h"
#include "fatigue/fatigue_driver.h"
#include "services/stop.h"
#include "support/plane_model.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor::test {

enum class RunEnd { kComplete, kStopped };

// Words of a file as they are written by hand.
inline std::int32_t R(float value) { return std::bit_cast<std::int32_t>(value); }
inline float AsReal(std::int32_t word) { return std::bit_cast<float>(word); }

class StudyRun : public ::testing::Test {
 protected:
  // The S-N curve is N = 1e12 / S^3 between S = 1000 and 100; an alternating stress is half the difference of
  // two uniaxial states.
  StudyRun() {
    study.title = "Bracket of the test rig";
    study.materials = {{1, 2.0e5F, 300.0F, 500.0F}};
    study.sn_curves = {{1, -1.0F, 0, {{1e3F, 1000.0F}, {1e6F, 100.0F}}}};
  }

  // Every node: event 1 has a loading of case 1 and one without stress.
  void MakeAllNodes(const std::vector<int>& nodes, const std::function<double(int node)>& sx, int cycles) {
    study.model = PlaneModel(nodes);
    study.stress_cases = {Uniaxial(1, study.model, sx)};
    study.events = {{1, cycles, {{1, 1, 1, 1.0F}, {2, kZeroStressCase, 1, 1.0F}}}};
  }
  // One location at node 1.
  void ActivateNodeOne() {
    study.options.activated_location = 1;
    study.locations = {{1, 1}};
  }

  std::string Path(std::string_view extension) const { return folder.Path("job") + std::string(extension); }
  void Write() { WriteStudy(study, Path(""), platform::NativeFileSystem()); }
  RunEnd Run() { return RunOn(platform::NativeFileSystem(), services); }
  static RunEnd RunOn(platform::FileSystem& files, SolverServices& with) {
    try {
      FatigueDriver(files, with);
      return RunEnd::kComplete;
    } catch (const RunStopped&) {
      return RunEnd::kStopped;
    }
  }
  RunEnd WriteAndRun() {
    Write();
    return Run();
  }

  std::string Listing(std::string_view extension = ".FTG") const { return ReadText(Path(extension)); }
  std::vector<std::int32_t> Words(std::string_view extension) const {
    const std::string bytes = ReadText(Path(extension));
    EXPECT_EQ(bytes.size() % 4, 0U) << extension;
    std::vector<std::int32_t> words(bytes.size() / 4);
    std::memcpy(words.data(), bytes.data(), words.size() * 4);
    return words;
  }
  // The messages of the boxes in order; 0 for a box with a text of its own.
  std::vector<int> Boxes() const {
    std::vector<int> messages;
    for (const auto& asked : services.asked) messages.push_back(asked.message);
    return messages;
  }
  // "9013 8, 9018 2, 9021": every message that was shown, with its arguments.
  std::string Told() const {
    std::string text;
    for (const auto& shown : services.shown) {
      text += (text.empty() ? "" : ", ") + std::to_string(shown.message);
      for (const float argument : shown.arguments) text += ' ' + std::to_string(static_cast<int>(argument));
    }
    return text;
  }
  // Every file of the study by extension.
  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (auto& [name, content] : folder.Contents()) {
      if (name.starts_with("job.")) files[name.substr(3)] = content;
    }
    return files;
  }

  template <typename Action>
  auto OnTables(Action action) {
    RecordingServices names(Path(""));
    FileUnits units(platform::NativeFileSystem(), names);
    ModelDatabase db(units);
    DbOpenStudyTables(db);
    return action(db);
  }

  // Table fields as the files hold them.
  std::int32_t Int(DbTable table, int id, int field) {
    return OnTables([&](ModelDatabase& db) { return DbGetInt(db, table, id, field); });
  }
  float Real(DbTable table, int id, int field) { return AsReal(Int(table, id, field)); }
  void Put(DbTable table, int id, int field, std::int32_t value) {
    ASSERT_TRUE(OnTables([&](ModelDatabase& db) { return DbPutInt(db, table, id, field, value); }));
  }
  TempFolder folder;
  RecordingServices services{Path("")};
  StudyDefinition study;
};

}  // namespace zentor::test
