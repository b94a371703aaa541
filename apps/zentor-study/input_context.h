// What the readers of a definition's parts share. Parts are read in the order of the functions below; each
// may use what the ones above it have left in the context.
#pragma once

#include <algorithm>
#include <bitset>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "authoring/study_definition.h"
#include "config_reader.h"
#include "definition_errors.h"
#include "platform/files.h"
#include "stress_facts.h"

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

// The parts of a definition, in the order in which they are read.
enum class Part {
  kGeneral,
  kOptions,
  kStudyList,
  kModel,
  kMaterials,
  kStress,
  kHistories,
  kEvents,
  kCurves,
  kLocations,
  kElasticPlastic,
  kCount
};

// Which numbers came up already: 1 bit each, for tables of millions of rows.
class NumberSet {
 public:
  // False when the number is there already.
  bool Insert(int number) {
    const auto i = static_cast<std::size_t>(number);
    if (i >= seen_.size()) seen_.resize(std::max(i + 1, 2 * seen_.size()));
    const bool fresh = !seen_[i];
    seen_[i] = true;
    return fresh;
  }

 private:
  std::vector<bool> seen_;
};

struct InputContext {
  InputContext(std::string definition_file, platform::FileSystem& file_system);

  std::string file;
  std::string folder;                         // paths in the definition are relative to it
  std::shared_ptr<const ConfigValue> config;  // table readers point into it
  platform::FileSystem& files;
  std::shared_ptr<DefinitionErrors> errors;  // the readers of stress cases outlive the context
  StudyDefinition study;
  std::vector<std::string> warnings;
  std::shared_ptr<StressFacts> stress_facts = std::make_shared<StressFacts>();

  // Parts with errors: what other parts say about them would be mistakes of the same cause.
  std::bitset<static_cast<std::size_t>(Part::kCount)> faulty;
  bool Sound(std::initializer_list<Part> parts) const {
    return std::none_of(parts.begin(), parts.end(),
                        [this](Part part) { return faulty[static_cast<std::size_t>(part)]; });
  }
  bool kind_known = true;  // whether layout and load amplitude were understood

  ModelIndex index;
  std::map<std::string, int, std::less<>> case_numbers;     // stress cases by name
  bool cases_named = true;                                  // all of them: no name was missing or wrong
  bool locations_numbered = true;                           // the numbers of all [[location]] are known
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

// The number of an entity: key `number`, by default its place in the list. Must be new and within 1 .. most;
// one that is not is reported, and a number within the range is returned.
int EntityNumber(TableReader& table, std::size_t place, int most, std::vector<int>& taken);

}  // namespace zentor::companion
