// What the readers of a definition's parts share. Parts are read in the order of the functions below; each
// may use what the ones above it have left in the context.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "authoring/study_definition.h"
#include "config_reader.h"
#include "platform/files.h"

namespace zentor::companion {

// Finds nodes and elements by number in constant time.
class ModelIndex {
 public:
  static constexpr std::int32_t kNone = -1;
  void Build(const StudyModel& model);
  // Place in StudyModel::nodes or elements, kNone when the model has no such number.
  std::int32_t Node(int number) const { return At(nodes_, number); }
  std::int32_t Element(int number) const { return At(elements_, number); }

 private:
  static std::int32_t At(const std::vector<std::int32_t>& places, int number) {
    const auto i = static_cast<std::size_t>(number);
    return number > 0 && i < places.size() ? places[i] : kNone;
  }
  std::vector<std::int32_t> nodes_, elements_;
};

struct InputContext {
  InputContext(std::string definition_file, platform::FileSystem& file_system);

  std::string file;
  std::string folder;                         // paths in the definition are relative to it
  std::shared_ptr<const ConfigValue> config;  // table readers point into it
  platform::FileSystem& files;
  StudyDefinition study;
  std::vector<std::string> warnings;

  ModelIndex index;
  std::map<std::string, int, std::less<>> case_numbers;     // stress cases by name
  std::map<std::string, int, std::less<>> history_numbers;  // histories by name

  bool MultiStudy() const { return study.layout == StudyLayout::kMultiStudy; }
  bool VariableAmplitude() const { return study.options.load_amplitude_type == 1; }
  void Warn(std::string text) { warnings.push_back(std::move(text)); }
};

void ReadGeneral(InputContext& context, TableReader& root);      // title, layout, language, modes
void ReadOptions(InputContext& context, TableReader& root);      // [options]
void ReadStudyList(InputContext& context, TableReader& root);    // [multi_study]
void ReadModel(InputContext& context, TableReader& root);        // [model]
void ReadMaterials(InputContext& context, TableReader& root);    // [[material]]
void ReadStressCases(InputContext& context, TableReader& root);  // [stress_file], [[stress_case]]
void ReadHistories(InputContext& context, TableReader& root);    // [[history]]
void ReadEvents(InputContext& context, TableReader& root);       // [[event]]
void ReadSnCurves(InputContext& context, TableReader& root);     // [[sn_curve]]
void ReadLocations(InputContext& context,
                   TableReader& root);  // [[location]], [[section]], [[stored_condition]]
void ReadElasticPlastic(InputContext& context, TableReader& root);  // [elastic_plastic]

// Conditions that tie several parts together: errors for studies that every run would stop at, warnings for
// those that are probably not meant.
void CheckStudy(InputContext& context, TableReader& root);

// The number of an entity: key `number`, by default its place in the list. Must be new and within 1 .. most.
int EntityNumber(TableReader& table, std::size_t place, int most, std::vector<int>& taken);

}  // namespace zentor::companion
