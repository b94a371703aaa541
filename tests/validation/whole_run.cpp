#include "validation/whole_run.h"

#include <cmath>
#include <stdexcept>
#include <string>

#include "authoring/study_writer.h"
#include "fatigue/fatigue_driver.h"
#include "platform/files.h"
#include "services/stop.h"
#include "support/plane_model.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor::validation {

namespace {

void Drive(const std::string& base) {
  test::RecordingServices services(base);
  try {
    FatigueDriver(platform::NativeFileSystem(), services);
  } catch (const RunStopped&) {
    throw std::runtime_error("the run stopped:\n" + test::ReadText(base + ".FTG"));
  }
}

// N = 1e6 / S.
AuthoredSnCurve UnitCurve() { return {1, -1.0F, 0, {{1.0F, 1e6F}, {1e9F, 1e-3F}}}; }

std::array<float, 6> Stored(const Tensor& stress) {
  std::array<float, 6> stored{};
  for (std::size_t c = 0; c < 6; ++c) stored[c] = static_cast<float>(stress[c]);
  return stored;
}

void AddCase(StudyDefinition& study, const std::function<Tensor(int node)>& stress) {
  const int number = static_cast<int>(study.stress_cases.size()) + 1;
  study.stress_cases.push_back(
      test::CaseOf(number, study.model, [&](int node) { return Stored(stress(node)); }));
}

}  // namespace

double RunResults::Usage(int node) const {
  for (const companion::NodeResult& result : nodes.nodes) {
    if (result.node == node) return result.usage;
  }
  throw std::runtime_error("node " + std::to_string(node) + " was not evaluated");
}

RunResults RunStudy(const StudyDefinition& study) {
  const test::TempFolder folder;
  const std::string base = folder.Path("study");
  WriteStudy(study, base, platform::NativeFileSystem());
  Drive(base);
  RunResults results;
  if (study.options.activated_location == kAllNodesLocation) {
    results.nodes = companion::ReadNodeResults(base + ".FTR");
  } else {
    results.location = companion::ReadLocationResults(base + ".FTI").at(0);
  }
  if (study.options.load_amplitude_type == 1) {
    const companion::BinCounts bins = {study.options.range_bins, study.options.mean_bins};
    results.first_count = companion::MatrixFile(base + ".FTD", bins).Block(1);
  }
  return results;
}

StudyDefinition PointStudy(const std::vector<std::vector<Tensor>>& cases) {
  StudyDefinition study;
  const auto points = static_cast<int>(cases.at(0).size());
  study.model = test::PlaneModel(test::NodesUpTo((points + 3) / 4 * 4));
  for (const std::vector<Tensor>& states : cases) {
    AddCase(study, [&](int node) {
      const auto point = static_cast<std::size_t>(node) - 1;
      return point < states.size() ? states[point] : Tensor{};
    });
  }
  study.sn_curves = {UnitCurve()};
  return study;
}

void AddEvent(StudyDefinition& study, int cycles, const std::vector<int>& cases) {
  int number = 0;
  for (const AuthoredEvent& event : study.events) number += static_cast<int>(event.loadings.size());
  AuthoredEvent event{static_cast<int>(study.events.size()) + 1, cycles, {}};
  for (const int stress_case : cases) event.loadings.push_back({++number, stress_case, 1, 1.0F});
  study.events.push_back(event);
}

StudyDefinition WallStudy(double inner, double outer, int elements, const std::vector<WallStress>& cases) {
  StudyDefinition study;
  StudyModel& model = study.model;
  const auto x_of = [&](int node) {
    return inner + (outer - inner) * ((node - 1) % (elements + 1)) / elements;
  };
  for (int node = 1; node <= 2 * (elements + 1); ++node) {
    model.nodes.push_back(
        {node, {static_cast<float>(x_of(node)), node > elements + 1 ? 1.0F : 0.0F, 0.0F}, 0});
  }
  for (int e = 1; e <= elements; ++e) {
    model.elements.push_back({e, 42, 1, 1, 4, static_cast<std::uint32_t>(4 * (e - 1))});
    model.element_nodes.insert(model.element_nodes.end(), {e, e + 1, e + elements + 2, e + elements + 1});
  }
  for (const WallStress& stress : cases) {
    AddCase(study, [&](int node) { return stress(x_of(node)); });
    study.temperatures.push_back(
        {static_cast<int>(study.stress_cases.size()), std::vector<float>(model.nodes.size(), 20.0F)});
  }
  study.locations = {{1, 1, 0, 1, 65}, {2, elements + 1, 0, 1, 65}};
  study.sn_curves = {UnitCurve()};
  return study;
}

ElasticPlasticData ConstantSm(double sm, double m, double n) {
  const auto stored = static_cast<float>(sm);
  return {{{0.0F, stored}, {500.0F, stored}}, static_cast<float>(m), static_cast<float>(n), true};
}

}  // namespace zentor::validation
