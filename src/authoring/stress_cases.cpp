#include "authoring/stress_cases.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "authoring/element_kind.h"
#include "authoring/stress_file_writer.h"

namespace zentor {

namespace {

constexpr std::size_t kComponents = 6;

// The six components at every node of an element.
std::span<const float> ValuesOf(const StressField& field, const AuthoredElement& element) {
  return std::span(field.values)
      .subspan(element.first_node * kComponents, static_cast<std::size_t>(element.node_count) * kComponents);
}

// The element's values of that layer and side; those of the other side or of the first field when there are
// none.
std::span<const float> ValuesAt(std::span<const StressField> fields, const AuthoredElement& element,
                                int layer, bool bottom) {
  std::span<const float> best = ValuesOf(fields.front(), element);
  for (const StressField& field : fields) {
    if (field.layer != layer) continue;
    const std::span<const float> values = ValuesOf(field, element);
    if (std::isnan(values.front())) continue;
    best = values;
    if (field.bottom == bottom) break;
  }
  return best;
}

int LayerCount(std::span<const StressField> fields) {
  int layers = 1;
  for (const StressField& field : fields) layers = std::max(layers, field.layer);
  return layers;
}

StressShape ShapeOf(const AuthoredElement& element) {
  const ElementKind* kind = FindElementKind(element.type_code, element.node_count);
  return kind == nullptr ? StressShape::kContinuum : kind->shape;
}

class CaseWriter {
 public:
  CaseWriter(const StudyModel& model, StressFileWriter& writer) : model_(model), writer_(writer) {}

  void Write(std::span<const StressField> fields) {
    const int layers = LayerCount(fields);
    for (const AuthoredElement& element : model_.elements) {
      if (std::isnan(ValuesOf(fields.front(), element).front())) continue;
      const StressShape shape = ShapeOf(element);
      const bool stacked = shape == StressShape::kLayered || shape == StressShape::kShell;
      ElementStress stress;
      stress.element = element.number;
      stress.type_code = element.type_code;
      stress.layers = stacked ? layers : 1;
      stress.nodes = model_.NodesOf(element);
      stress.values = stacked ? Stack(fields, element, layers, shape) : ValuesOf(fields.front(), element);
      if (shape == StressShape::kLine) stress.values = stress.values.first(1);
      writer_.Add(stress);
    }
  }

 private:
  std::span<const float> Stack(std::span<const StressField> fields, const AuthoredElement& element,
                               int layers, StressShape shape) {
    stacked_.clear();
    for (int layer = 1; layer <= layers; ++layer) {
      for (const bool bottom : {false, true}) {
        if (bottom && shape != StressShape::kShell) continue;
        const std::span<const float> values = ValuesAt(fields, element, layer, bottom);
        stacked_.insert(stacked_.end(), values.begin(), values.end());
      }
    }
    return stacked_;
  }

  const StudyModel& model_;
  StressFileWriter& writer_;
  std::vector<float> stacked_;
};

}  // namespace

void WriteStressCases(const StudyDefinition& study, const std::string& path, platform::FileSystem& files) {
  StressFilePlan plan;
  plan.kind = study.stress_file;
  plan.pointer_width = study.pointer_words;
  plan.highest_element = study.model.HighestElement();
  for (const StressCase& one : study.stress_cases) plan.steps = std::max(plan.steps, one.number);
  StressFileWriter writer(files, path, plan);
  CaseWriter cases(study.model, writer);
  for (int step = 1; step <= plan.steps; ++step) {
    const auto one = std::find_if(study.stress_cases.begin(), study.stress_cases.end(),
                                  [step](const StressCase& candidate) { return candidate.number == step; });
    if (one == study.stress_cases.end()) {
      writer.SkipStep();
      continue;
    }
    writer.BeginStep();
    if (one->load) {
      cases.Write(one->load(study.model));
    } else {
      cases.Write(one->fields);
    }
  }
  writer.Finish();
}

}  // namespace zentor
