#include "stress_case_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "authoring/element_kind.h"

namespace zentor::companion {

namespace {

constexpr std::size_t kComponents = 6;
constexpr float kNoValue = std::numeric_limits<float>::quiet_NaN();

// Reads one case's rows into fields of the model's shape.
class CaseReader {
 public:
  CaseReader(const StudyModel& model, const ModelIndex& index, const RowSource& rows)
      : model_(model), index_(index), rows_(rows) {}

  std::vector<StressField> fields;

  void AddRow() {
    enum : std::size_t { kElement, kNode, kFirst, kLayer = kFirst + kComponents, kSurface };
    const int element = rows_.Integer(kElement, {1, kMaxModelNumber});
    const int node = rows_.Integer(kNode, {1, kMaxModelNumber});
    const int layer = rows_.Has(kLayer) ? rows_.Integer(kLayer, {1, kMostLayers}) : 1;
    float* values = FieldOf(layer, rows_.Has(kSurface) && IsBottom(kSurface)).values.data() +
                    PlaceOf(element, node) * kComponents;
    if (!std::isnan(values[0])) {
      rows_.Fail(
          fmt::format("element {} has its stresses at node {} twice, expected them once", element, node));
    }
    for (std::size_t i = 0; i < kComponents; ++i) values[i] = rows_.Real(kFirst + i, kAnyReal);
  }

 private:
  static constexpr int kMostLayers = 500;

  bool IsBottom(std::size_t column) const {
    const std::string_view side = rows_.Text(column);
    if (side != "top" && side != "bottom")
      rows_.Fail(fmt::format("surface is '{}', expected top or bottom", side));
    return side == "bottom";
  }
  StressField& FieldOf(int layer, bool bottom) {
    for (StressField& field : fields) {
      if (field.layer == layer && field.bottom == bottom) return field;
    }
    fields.push_back(
        {layer, bottom, std::vector<float>(model_.element_nodes.size() * kComponents, kNoValue)});
    return fields.back();
  }
  // Rows usually follow the node order of their element, so the node after the last one is tried first.
  std::size_t PlaceOf(int element, int node) {
    if (element != element_number_) {
      const std::int32_t place = index_.Element(element);
      if (place == ModelIndex::kNone) {
        rows_.Fail(fmt::format("element is {}, expected an element of the elements table", element));
      }
      element_number_ = element;
      element_ = &model_.elements[static_cast<std::size_t>(place)];
      next_ = 0;
    }
    const auto nodes = model_.NodesOf(*element_);
    if (next_ >= nodes.size() || nodes[next_] != node) {
      next_ = static_cast<std::size_t>(std::find(nodes.begin(), nodes.end(), node) - nodes.begin());
    }
    if (next_ == nodes.size()) {
      rows_.Fail(
          fmt::format("node is {}, expected one of the {} nodes of element {}", node, nodes.size(), element));
    }
    return element_->first_node + next_++;
  }

  const StudyModel& model_;
  const ModelIndex& index_;
  const RowSource& rows_;
  int element_number_ = 0;
  const AuthoredElement* element_ = nullptr;
  std::size_t next_ = 0;
};

std::size_t ValuesGiven(const StressField& field, const AuthoredElement& element) {
  std::size_t given = 0;
  for (int i = 0; i < element.node_count; ++i) {
    given +=
        std::isnan(field.values[(element.first_node + static_cast<std::size_t>(i)) * kComponents]) ? 0 : 1;
  }
  return given;
}

// Whether the element has values in the field: all of its nodes or none.
bool IsGiven(const RowSource& rows, const StressField& field, const AuthoredElement& element) {
  const std::size_t given = ValuesGiven(field, element);
  const ElementKind* kind = FindElementKind(element.type_code, element.node_count);
  const bool line = kind != nullptr && kind->shape == StressShape::kLine;
  if (given != 0 && given != static_cast<std::size_t>(element.node_count) && !line) {
    rows.Fail(fmt::format("element {} has stresses at {} of its {} nodes, expected them at all or none",
                          element.number, given, element.node_count));
  }
  return given != 0;
}

// The first field serves layers and sides without values, so it must cover every element of the case.
void CheckCoverage(const StudyModel& model, const RowSource& rows, const std::string& name,
                   std::vector<StressField>& fields, CaseCoverage& coverage) {
  int layers = 0;
  for (const StressField& field : fields) layers = std::max(layers, field.layer);
  const bool first = coverage.name.empty();
  if (first) coverage = {name, layers, std::vector<bool>(model.elements.size())};
  if (layers > coverage.layers) {
    rows.Fail(fmt::format("case '{}' has {} layers, expected at most the {} of the first case '{}'", name,
                          layers, coverage.layers, coverage.name));
  }
  for (std::size_t place = 0; place < model.elements.size(); ++place) {
    const AuthoredElement& element = model.elements[place];
    const bool given = IsGiven(rows, fields.front(), element);
    for (std::size_t i = 1; i < fields.size(); ++i) {
      if (IsGiven(rows, fields[i], element) && !given) {
        rows.Fail(fmt::format("element {} lacks stresses on layer {}, {}, which other rows give",
                              element.number, fields[0].layer, fields[0].bottom ? "bottom" : "top"));
      }
    }
    if (first) {
      coverage.elements[place] = given;
    } else if (given && !coverage.elements[place]) {
      rows.Fail(fmt::format(
          "element {} has stresses in case '{}' but none in the first case '{}', expected the case "
          "with the most elements first",
          element.number, name, coverage.name));
    }
  }
}

}  // namespace

std::vector<StressField> ReadStressCase(const StudyModel& model, const ModelIndex& index, RowSource& rows,
                                        const std::string& name, CaseCoverage& coverage) {
  CaseReader reader(model, index, rows);
  while (rows.Next()) reader.AddRow();
  if (reader.fields.empty()) rows.Fail(fmt::format("case '{}' has no rows, expected stresses", name));
  CheckCoverage(model, rows, name, reader.fields, coverage);
  return std::move(reader.fields);
}

}  // namespace zentor::companion
