// A small complete study whose tables a test changes before the study input reads it.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <span>
#include <string>
#include <tuple>
#include <utility>
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

// The section gives 1, 2, 3, 4 for every loading.
class RecordingSteps : public StudyInputSteps {
 public:
  int histories = 0;

  void LoadHistories(RunContext&, StudyState&) override { ++histories; }
  void BuildStressStore(RunContext&, StudyState&) override {}
  bool FormSectionStresses(RunContext&, StudyState& study) override {
    for (int k = 1; k <= kMaxLoadings; ++k) {
      if (study.conditions.linearised_case[k] > 0) study.conditions.linearised[k] = {1.0, 2.0, 3.0, 4.0};
    }
    return true;
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

  // Fields of an entity from `field` on.
  static void SetInts(TableBuilder& table, int entity, int field, const std::vector<int>& values) {
    for (const int value : values) table.SetInt(entity, field++, value);
  }
  static void SetReals(TableBuilder& table, int entity, int field, const std::vector<float>& values) {
    for (const float value : values) table.SetReal(entity, field++, value);
  }
  void SetNode(int n) {
    const auto x = static_cast<float>(n);
    SetReals(nod, n, 2, {10.0F * x, x + 0.5F, -x});
    nod.SetInt(n, 5, 7);
  }
  void SetElement(int e, int material_word, const std::vector<int>& nodes) {
    SetInts(ele, e, 3, {material_word, 0, static_cast<int>(nodes.size())});
    SetInts(ele, e, 6, nodes);
  }
  void SetMaterial(int m, float yield, float ultimate) {
    mat.SetReal(m, 2, 30000.0F + static_cast<float>(m));
    mat.SetReal(m, 80, yield);
    mat.SetReal(m, 86, ultimate);
  }
  void SetEvent(int j, int cycles) { SetInts(ftc, j, 2, {j, 0, cycles}); }
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
    SetInts(ftc, 103 + l, 2, {l, node, 0, section, path_points});
    SetReals(ftc, 103 + l, 7, {radius, 1.5F, 2.0F, 3.0F});
    ftc.SetInt(103 + l, 11, flag);
  }
  // Stress 100, 200 .. 600 (times `scale`), linearised 10 .. 40, temperature 350; only what the flags name.
  void Store(int l, int k, bool stress, bool linearised, bool temperature, float scale = 1.0F) {
    const int entity = 604 + (l - 1) * 40 + k;
    SetInts(ftc, entity, 2, {stress ? 1 : 0, linearised ? 1 : 0, temperature ? 1 : 0});
    for (int c = 0; c < 6; ++c) ftc.SetReal(entity, 8 + c, 100.0F * scale * static_cast<float>(c + 1));
    SetReals(ftc, entity, 14, {350.0F, 10.0F, 20.0F, 30.0F, 40.0F});
  }
  // Sm 200 at 20, Sm 150 at 400; m = 3, n = 0.2.
  void SetElasticPlastic() {
    ftc.SetInt(97, 4, 2);
    SetReals(ftc, 97, 5, {3.0F, 0.2F});
    ftc.SetInt(97, 7, 1);
    SetReals(ftc, 98, 2, {20.0F, 400.0F});
    SetReals(ftc, 99, 2, {200.0F, 150.0F});
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
    int field = 11;
    for (const auto& [cycles, stress] : points)
      SetReals(snc, id, std::exchange(field, field + 2), {cycles, stress});
  }
  void MakeVariableAmplitude() {
    SetMaster(mas, master::kLoadAmplitudeType, 1);
    SetMaster(mas, master::kAlternatingStressType, kVonMises);
    for (int field = 2; field <= 9; ++field) ftc.SetInt(1, field, 0);
    ftc.SetInt(21, 2, 0);  // what was a load case of event 1 would be an event
    SetVariableEvent(1, 1, 5);
  }
  void SetVariableEvent(int j, int load_case, int curve) {
    SetInts(ftc, j, 2, {load_case, curve, 10});
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
    for (const auto& [extension, table] :
         {std::pair{".MAS", &mas}, {".NOD", &nod}, {".ELE", &ele}, {".FTC", &ftc}, {".SNC", &snc}})
      WriteBytes(Path(extension), table->Bytes());
    if (with_materials) WriteBytes(Path(".MAT"), mat.Bytes());
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

  // Load case, time step, event and scale factor of the first loadings.
  using LoadingRows = std::vector<std::tuple<int, int, int, double>>;
  LoadingRows Loadings(int count) const {
    LoadingRows rows;
    for (int k = 1; k <= count; ++k) {
      const Loading& l = study.definition.loadings[k];
      rows.emplace_back(l.load_case, l.time_step, l.event, l.scale_factor);
    }
    return rows;
  }

  std::string ListingPath() const { return Path(IsMultiStudy(study.properties) ? ".OUT" : ".FTG"); }
  std::string Listing() const { return ReadText(ListingPath()); }
  bool ListingHas(const std::string& words) const { return Listing().find(words) != std::string::npos; }
  // Whether the listing holds these whole lines, the last of them without its end; ends with them.
  ::testing::AssertionResult Lists(const std::string& block, bool at_the_end = false) const {
    const std::string text = '\n' + Listing();
    const std::string lines = '\n' + block + '\n';
    if (at_the_end ? text.ends_with(lines) : text.find(lines) != std::string::npos)
      return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "not in its place:\n" << block << "\nlisting:" << text;
  }
  ::testing::AssertionResult ListsLast(const std::string& block) const { return Lists(block, true); }
  // The text of the fault with which reading ends; the file's name taken off its front.
  std::string FaultIn(const std::string& extension) {
    const std::string name = Path(extension) + ": ";
    if (Read() != Outcome::kFault) return "no fault";
    return fault.starts_with(name) ? fault.substr(name.size()) : fault;
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
