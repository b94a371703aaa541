// A small complete study whose tables a test changes before the study input reads it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "authoring/master_table.h"
#include "authoring/table_builder.h"
#include "services/faults.h"
#include "services/stop.h"
#include "study/read_study.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor::test {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// Counts the calls; the section gives `section` for every loading.
class RecordingSteps : public StudyInputSteps {
 public:
  int histories = 0, stores = 0, sections = 0;
  bool section_found = true;
  LinearisedStress section = {1.0, 2.0, 3.0, 4.0};

  void LoadHistories(RunContext&, StudyState&) override { ++histories; }
  void BuildStressStore(RunContext&, StudyState&) override { ++stores; }
  bool FormSectionStresses(RunContext&, StudyState& study) override {
    ++sections;
    for (int k = 1; k <= kMaxLoadings; ++k) {
      if (study.conditions.linearised_case[k] > 0) study.conditions.linearised[k] = section;
    }
    return section_found;
  }
};

enum class Outcome { kComplete, kStopped, kFault };

// Nodes 1, 2, 4 (coordinates 10 n, n + 0.5, -n); elements 1 (nodes 1, 2) and 2 (2, 4) of material 1; event 1
// of 1000 cycles with loadings 1 (load case 1, factor 2) and 2 (load case 2, factor -0.5); an S-N curve in
// slot 1; location 3 at node 2, activated.
class StudyInput : public ::testing::Test {
 public:
  static constexpr int kLocation = 3;
  static constexpr int kLocationEntity = 103 + kLocation;

  StudyInput() {
    SetMasterTitle(mas, "Bracket of the test rig");
    SetMaster(mas, master::kShellSurface, 1);
    SetMaster(mas, master::kShellLayer, 1);
    for (const int n : {1, 2, 4}) SetNode(n);
    SetElement(1, 1, {1, 2});
    SetElement(2, 1, {2, 4});
    SetMaterial(1, 250.0F, 400.0F);
    SetEvent(1, 1000);
    SetLoading(1, 1, 1, 2.0F);
    SetLoading(1, 2, 2, -0.5F);
    SetCurve(1, 1, {{1e3F, 500.0F}, {1e6F, 100.0F}});
    ftc.SetInt(103, 3, kLocation);
    SetLocation(kLocation, 2);
    AddFile(".STE", "");
  }

  void SetNode(int n) {
    nod.SetReal(n, 2, 10.0F * static_cast<float>(n));
    nod.SetReal(n, 3, static_cast<float>(n) + 0.5F);
    nod.SetReal(n, 4, static_cast<float>(-n));
    nod.SetInt(n, 5, 7);
  }
  void SetElement(int e, int material_word, const std::vector<int>& nodes) {
    ele.SetInt(e, 3, material_word);
    ele.SetInt(e, 5, static_cast<int>(nodes.size()));
    for (std::size_t i = 0; i < nodes.size(); ++i) ele.SetInt(e, 6 + static_cast<int>(i), nodes[i]);
  }
  void SetMaterial(int m, float yield, float ultimate) {
    mat.SetReal(m, 2, 30000.0F + static_cast<float>(m));
    mat.SetReal(m, 80, yield);
    mat.SetReal(m, 86, ultimate);
  }
  void SetEvent(int j, int cycles) {
    ftc.SetInt(j, 2, j);
    ftc.SetInt(j, 4, cycles);
  }
  void SetLoading(int event, int k, int load_case, float scale) {
    ftc.SetInt(20 + event, k + 1, load_case);
    ftc.SetInt(60 + event, k + 1, k);
    ftc.SetReal(60, k + 1, scale);
  }
  void SetCurve(int slot, int set, const std::vector<std::pair<float, float>>& points, float ratio = -1.0F) {
    ftc.SetInt(97, slot + 7, static_cast<int>(points.size()));
    ftc.SetReal(97, slot + 17, ratio);
    ftc.SetInt(97, slot + 27, set);
    for (std::size_t i = 0; i < points.size(); ++i) {
      ftc.SetReal(202 + 2 * slot, 2 + static_cast<int>(i), points[i].first);
      ftc.SetReal(203 + 2 * slot, 2 + static_cast<int>(i), points[i].second);
    }
  }
  // Stress concentration factors 1.5, 2, 3.
  void SetLocation(int l, int node, int section = 0, int path_points = 0, float radius = 0.0F, int flag = 0) {
    ftc.SetInt(103 + l, 2, l);
    ftc.SetInt(103 + l, 3, node);
    ftc.SetInt(103 + l, 5, section);
    ftc.SetInt(103 + l, 6, path_points);
    ftc.SetReal(103 + l, 7, radius);
    ftc.SetReal(103 + l, 8, 1.5F);
    ftc.SetReal(103 + l, 9, 2.0F);
    ftc.SetReal(103 + l, 10, 3.0F);
    ftc.SetInt(103 + l, 11, flag);
  }
  // Stress 100, 200 .. 600 (times `scale`), linearised 10 .. 40, temperature 350; only what the flags name.
  void Store(int l, int k, bool stress, bool linearised, bool temperature, float scale = 1.0F) {
    const int entity = 604 + (l - 1) * 40 + k;
    ftc.SetInt(entity, 2, stress ? 1 : 0);
    ftc.SetInt(entity, 3, linearised ? 1 : 0);
    ftc.SetInt(entity, 4, temperature ? 1 : 0);
    for (int c = 0; c < 6; ++c) ftc.SetReal(entity, 8 + c, 100.0F * scale * static_cast<float>(c + 1));
    ftc.SetReal(entity, 14, 350.0F);
    for (int c = 0; c < 4; ++c) ftc.SetReal(entity, 15 + c, 10.0F * static_cast<float>(c + 1));
  }
  // Sm 200 at 20, Sm 150 at 400; m = 3, n = 0.2.
  void SetElasticPlastic() {
    ftc.SetInt(97, 4, 2);
    ftc.SetReal(97, 5, 3.0F);
    ftc.SetReal(97, 6, 0.2F);
    ftc.SetInt(97, 7, 1);
    ftc.SetReal(98, 2, 20.0F);
    ftc.SetReal(98, 3, 400.0F);
    ftc.SetReal(99, 2, 200.0F);
    ftc.SetReal(99, 3, 150.0F);
  }
  // A study with a list of studies: its options and curve are in ".FTC" 60 and ".SNC".
  void MakeMultiStudy() {
    AddFile(".FTS", "x");
    AddFile("-listed.STE", "");
    services.second_studies = {Path("-listed")};
    for (int field = 2; field <= 41; ++field) ftc.SetInt(60, field, 0);
    ftc.SetReal(61, 2, 2.0F);
    ftc.SetInt(61, 3, 0);
    ftc.SetInt(21, 3, 0);
    SetListedCurve(1, 1, 0, {{1e3F, 500.0F}, {1e6F, 100.0F}});
  }
  void SetListedCurve(int id, int set, int interpolation,
                      const std::vector<std::pair<float, float>>& points) {
    snc.SetInt(id, 2, set);
    snc.SetReal(id, 3, -1.0F);
    snc.SetInt(id, 4, interpolation);
    snc.SetInt(id, 10, static_cast<int>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i) {
      snc.SetReal(id, 11 + 2 * static_cast<int>(i), points[i].first);
      snc.SetReal(id, 12 + 2 * static_cast<int>(i), points[i].second);
    }
  }
  void MakeVariableAmplitude() {
    SetMaster(mas, master::kLoadAmplitudeType, 1);
    SetMaster(mas, master::kAlternatingStressType, kVonMises);
    for (int field = 2; field <= 9; ++field) ftc.SetInt(1, field, 0);
    ftc.SetInt(21, 2, 0);  // what was a load case of event 1 would be an event
    SetVariableEvent(1, 1, 5);
  }
  void SetVariableEvent(int j, int load_case, int curve) {
    ftc.SetInt(j, 2, load_case);
    ftc.SetInt(j, 3, curve);
    ftc.SetInt(j, 4, 10);
    ftc.SetReal(j, 5, 1.5F);
  }

  std::string Path(const std::string& extension) const { return folder.Path("study") + extension; }
  void AddFile(const std::string& extension, std::string_view text) { WriteText(Path(extension), text); }
  void AddWords(const std::string& extension, std::span<const int> words) {
    WriteBytes(Path(extension), std::as_bytes(words));
  }
  void RemoveFile(const std::string& extension) { std::filesystem::remove(Path(extension)); }

  // Writes the tables and reads the study; the files of the run are closed afterwards.
  Outcome Read() {
    WriteBytes(Path(".MAS"), mas.Bytes());
    WriteBytes(Path(".NOD"), nod.Bytes());
    WriteBytes(Path(".ELE"), ele.Bytes());
    WriteBytes(Path(".FTC"), ftc.Bytes());
    if (with_materials) WriteBytes(Path(".MAT"), mat.Bytes());
    WriteBytes(Path(".SNC"), snc.Bytes());
    return ReadFiles();
  }
  // As Read, from the files as they are.
  Outcome ReadFiles() {
    study = StudyState();
    study.start = {2011, 3, 9, 14, 5, 7};
    RunContext run(platform::NativeFileSystem(), services);
    services.SetFlushHook([&run] { run.listing.Flush(); });
    const Outcome outcome = Attempt(run);
    services.SetFlushHook({});
    return outcome;
  }

  std::string ListingPath() const { return Path(IsMultiStudy(study.properties) ? ".OUT" : ".FTG"); }
  std::string Listing() const { return ReadText(ListingPath()); }
  bool ListingHas(const std::string& words) const { return Listing().find(words) != std::string::npos; }
  // Whether the listing holds these whole lines, the last of them without its end.
  ::testing::AssertionResult Lists(const std::string& block) const {
    const std::string text = '\n' + Listing();
    if (text.find('\n' + block + '\n') != std::string::npos) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "not in the listing:\n" << block << "\nlisting:" << text;
  }
  ::testing::AssertionResult ListsLast(const std::string& block) const {
    const std::string text = '\n' + Listing();
    if (text.ends_with('\n' + block + '\n')) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "not at the end:\n" << block << "\nlisting:" << text;
  }

  TempFolder folder;
  RecordingServices services{Path("")};
  TableBuilder mas = NewMasterTable();
  TableBuilder nod{8, 20}, ele{12, 20}, mat{90, 12}, ftc{60, 2700}, snc{40, 10};
  bool with_materials = true;
  RecordingSteps steps;
  StudyState study;
  std::string fault;

 private:
  Outcome Attempt(RunContext& run) {
    try {
      ReadStudy(run, study, steps);
      return Outcome::kComplete;
    } catch (const RunStopped&) {
      return Outcome::kStopped;
    } catch (const InputFault& found) {
      fault = found.what();
      return Outcome::kFault;
    }
  }
};

}  // namespace zentor::test
