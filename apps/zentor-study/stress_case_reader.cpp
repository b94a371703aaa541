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

enum : std::size_t { kElement, kNode, kFirst, kLayer = kFirst + kComponents, kSurface };

// Where a row's stresses are.
struct StressPlace {
  int element, node, layer;
  bool bottom;
};

bool IsBottom(const RowSource& rows) {
  const std::string_view side = rows.Text(kSurface);
  if (side != "top" && side != "bottom")
    rows.Fail(fmt::format("surface is '{}', expected top or bottom", side));
  return side == "bottom";
}

StressPlace ReadPlace(const RowSource& rows) {
  constexpr int kMostLayers = 500;
  const int element = rows.Integer(kElement, {1, kMaxModelNumber});
  const int node = rows.Integer(kNode, {1, kMaxModelNumber});
  const int layer = rows.Has(kLayer) ? rows.Integer(kLayer, {1, kMostLayers}) : 1;
  return {element, node, layer, rows.Has(kSurface) && IsBottom(rows)};
}

std::array<float, kComponents> ReadValues(const RowSource& rows) {
  std::array<float, kComponents> values{};
  for (std::size_t i = 0; i < kComponents; ++i) values[i] = rows.Real(kFirst + i, kAnyReal);
  return values;
}

// Reads one case's rows into fields of the model's shape.
class CaseReader {
 public:
  CaseReader(const StudyModel& model, const ModelIndex& index, const RowSource& rows)
      : last_lines(model.elements.size()), model_(model), index_(index), rows_(rows) {}

  std::vector<StressField> fields;
  std::vector<int> last_lines;  // of the last row of each element, by place in the model

  void AddRow() {
    const auto [element, node, layer, bottom] = ReadPlace(rows_);
    float* values = FieldOf(layer, bottom).values.data() + PlaceOf(element, node) * kComponents;
    if (!std::isnan(values[0])) {
      rows_.Fail(
          fmt::format("element {} has its stresses at node {} twice, expected them once", element, node));
    }
    const std::array<float, kComponents> row = ReadValues(rows_);
    std::copy(row.begin(), row.end(), values);
    last_lines[static_cast<std::size_t>(element_ - model_.elements.data())] = rows_.Line();
  }

 private:
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

// What the rows of a case give must fit together and with the first case.
class CoverageCheck {
 public:
  CoverageCheck(const StudyModel& model, const RowSource& rows, const std::vector<int>& last_lines,
                const std::string& name, DefinitionErrors& errors)
      : model_(model), rows_(rows), last_lines_(last_lines), name_(name), errors_(errors) {}

  // The first field serves layers and sides without values, so it must cover every element of the case.
  void Run(const std::vector<StressField>& fields, CaseCoverage& coverage) {
    int layers = 0;
    for (const StressField& field : fields) layers = std::max(layers, field.layer);
    const bool first = coverage.name.empty();
    if (first) coverage = {name_, layers, std::vector<bool>(model_.elements.size()), coverage.known};
    if (coverage.known && layers > coverage.layers) {
      Report(fmt::format("case '{}' has {} layers, expected at most the {} of the first case '{}'", name_,
                         layers, coverage.layers, coverage.name));
    }
    for (std::size_t place = 0; place < model_.elements.size(); ++place) {
      const bool given = CheckElement(fields, model_.elements[place]);
      if (first) {
        coverage.elements[place] = given;
      } else if (coverage.known && given && !coverage.elements[place]) {
        Report(fmt::format(
            "element {} has stresses in case '{}' but none in the first case '{}', expected the case "
            "with the most elements first",
            model_.elements[place].number, name_, coverage.name));
      }
    }
  }

 private:
  void Report(const std::string& message) { errors_.AddOfTable(rows_.TableError(message), ++faults_); }

  // Whether the first field has values of the element.
  bool CheckElement(const std::vector<StressField>& fields, const AuthoredElement& element) {
    const bool given = IsGiven(fields.front(), element);
    for (std::size_t i = 1; i < fields.size(); ++i) {
      if (IsGiven(fields[i], element) && !given) {
        Report(fmt::format("element {} lacks stresses on layer {}, {}, which other rows give", element.number,
                           fields[0].layer, fields[0].bottom ? "bottom" : "top"));
      }
    }
    return given;
  }

  // Whether the element has values in the field: all of its nodes or none.
  bool IsGiven(const StressField& field, const AuthoredElement& element) {
    const auto nodes = model_.NodesOf(element);
    std::size_t missing = 0;
    int first_missing = 0;
    for (std::size_t i = nodes.size(); i-- > 0;) {
      if (!std::isnan(field.values[(element.first_node + i) * kComponents])) continue;
      ++missing;
      first_missing = nodes[i];
    }
    const ElementKind* kind = FindElementKind(element.type_code, element.node_count);
    const bool line = kind != nullptr && kind->shape == StressShape::kLine;
    if (missing != 0 && missing != nodes.size() && !line) {
      const std::string more = missing > 1 ? fmt::format(" and {} more of its nodes", missing - 1) : "";
      const std::string message = fmt::format(
          "element {} has no row for its node {}{}, expected one for each of its {} nodes or none",
          element.number, first_missing, more, nodes.size());
      const auto place = static_cast<std::size_t>(&element - model_.elements.data());
      errors_.AddOfTable(rows_.TableErrorAt(last_lines_[place], message), ++faults_);
    }
    return missing != nodes.size();
  }

  const StudyModel& model_;
  const RowSource& rows_;
  const std::vector<int>& last_lines_;
  const std::string& name_;
  DefinitionErrors& errors_;
  std::size_t faults_ = 0;
};

}  // namespace

void CheckStressRows(RowSource& rows, DefinitionErrors& errors) {
  ReadRows(rows, errors, [&rows] {
    ReadPlace(rows);
    ReadValues(rows);
  });
}

std::vector<StressField> ReadStressCase(const StudyModel& model, const ModelIndex& index, RowSource& rows,
                                        const std::string& name, CaseCoverage& coverage,
                                        DefinitionErrors& errors) {
  CaseReader reader(model, index, rows);
  // Rows with mistakes leave gaps, which are no mistakes of their own.
  if (!ReadRows(rows, errors, [&reader] { reader.AddRow(); })) {
    coverage.known = false;
    return {};
  }
  if (reader.fields.empty()) {
    errors.Add(rows.TableError(fmt::format("case '{}' has no rows, expected stresses", name)));
  } else {
    CoverageCheck(model, rows, reader.last_lines, name, errors).Run(reader.fields, coverage);
  }
  return std::move(reader.fields);
}

}  // namespace zentor::companion
