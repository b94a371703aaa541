#include "figures/solid_study.h"

#include <array>
#include <vector>

#include "authoring/stress_file_writer.h"
#include "authoring/study_writer.h"
#include "platform/files.h"

namespace zentor::bench {
namespace {

constexpr int kSolid = 45;        // type code of eight-node solids
constexpr int kSectionSide = 10;  // nodes along an edge of the bar's cross-section
constexpr int kSectionNodes = kSectionSide * kSectionSide;
constexpr int kEvents = 5;

// The corners of the solid whose lowest corner is given; `row` and `layer` are the steps of node numbers
// along the second and the third axis.
std::array<std::int32_t, 8> Corners(int lowest, int row, int layer) {
  const int upper = lowest + layer;
  return {lowest, lowest + 1, lowest + row + 1, lowest + row, upper, upper + 1, upper + row + 1, upper + row};
}

StudyModel SolidBar(int nodes) {
  StudyModel model;
  for (int n = 0; n < nodes; ++n) {
    const int column = n % kSectionSide;
    const int row = n % kSectionNodes / kSectionSide;
    const int layer = n / kSectionNodes;
    const auto real = [](int value) { return static_cast<float>(value); };
    model.nodes.push_back({n + 1, {real(column), real(row), real(layer)}, 0});
  }
  int element = 0;
  for (int layer = 0; layer + 1 < nodes / kSectionNodes; ++layer) {
    for (int cell = 0; cell < (kSectionSide - 1) * (kSectionSide - 1); ++cell) {
      const int row = cell / (kSectionSide - 1);
      const int column = cell % (kSectionSide - 1);
      const auto first = static_cast<std::uint32_t>(model.element_nodes.size());
      model.elements.push_back({++element, kSolid, 1, 1, 8, first});
      const int lowest = layer * kSectionNodes + row * kSectionSide + column + 1;
      const auto corners = Corners(lowest, kSectionSide, kSectionNodes);
      model.element_nodes.insert(model.element_nodes.end(), corners.begin(), corners.end());
    }
  }
  model.groups = {{1, kSolid}};
  return model;
}

// Six components between -120 and 120, of which the mean of a node's eight elements leaves about a third.
std::vector<StressField> RandomStresses(const StudyModel& model, int loading) {
  StressField field;
  field.values.reserve(model.element_nodes.size() * 6);
  std::uint32_t state = 2463534242U + static_cast<std::uint32_t>(loading) * 2654435761U;
  for (std::size_t i = 0; i < model.element_nodes.size() * 6; ++i) {
    state ^= state << 13U;
    state ^= state >> 17U;
    state ^= state << 5U;
    field.values.push_back(static_cast<float>(state >> 8U) * (240.0F / 16777216.0F) - 120.0F);
  }
  return {std::move(field)};
}

}  // namespace

void WriteSolidStudy(const std::string& base, int nodes, int loadings) {
  StudyDefinition study;
  study.title = "solid bar";
  study.pointer_words = 2;  // a stress file of many loadings outgrows 32-bit offsets
  study.options.alternating_stress_type = 1;
  study.options.mean_stress_correction = 2;
  study.materials.push_back({1, 206000.0F, 355.0F, 470.0F});
  study.model = SolidBar(nodes);
  for (int k = 1; k <= loadings; ++k) {
    const auto load = [k](const StudyModel& model) { return RandomStresses(model, k); };
    study.stress_cases.push_back({"case " + std::to_string(k), k, {}, load});
  }
  for (int j = 1; j <= kEvents && j <= loadings; ++j) {
    AuthoredEvent event{j, 10000 * j, {}};
    for (int k = j; k <= loadings; k += kEvents) event.loadings.push_back({k, k, 1, 1.0F});
    study.events.push_back(std::move(event));
  }
  study.sn_curves.push_back(
      {1, -1.0F, 0, {{1e2F, 2000.0F}, {1e4F, 467.8F}, {1e5F, 217.2F}, {2e6F, 80.0F}, {1e8F, 32.4F}}});
  WriteStudy(study, base, platform::NativeFileSystem());
}

void WriteSolidCube(const std::string& path, int side, int steps) {
  StressFileWriter writer(platform::NativeFileSystem(), path,
                          {.pointer_width = 2, .steps = steps, .highest_element = side * side * side});
  const int row = side + 1;
  std::vector<float> values(48);
  for (int step = 1; step <= steps; ++step) {
    writer.BeginStep();
    for (int element = 0; element < side * side * side; ++element) {
      const int x = element % side;
      const int y = element / side % side;
      const int z = element / (side * side);
      const auto nodes = Corners((z * row + y) * row + x + 1, row, row * row);
      for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<float>((element * 7 + static_cast<int>(i) * 3 + step) % 1000) * 0.25F;
      }
      writer.Add({.element = element + 1, .type_code = kSolid, .nodes = nodes, .values = values});
    }
  }
  writer.Finish();
}

}  // namespace zentor::bench
