#include "authoring/study_tables.h"

#include <algorithm>

#include "authoring/master_table.h"

namespace zentor {

namespace {

constexpr int kMultiStudyType = 6;

void SetPoint(TableBuilder& table, int id, int first_field, const std::array<float, 3>& point) {
  for (int axis = 0; axis < 3; ++axis) {
    table.SetReal(id, first_field + axis, point[static_cast<std::size_t>(axis)]);
  }
}

template <typename Items>
int HighestNumber(const Items& items) {
  int highest = 0;
  for (const auto& item : items) highest = std::max(highest, item.number);
  return highest;
}

void SetOrdinaryOptions(TableBuilder& table, const StudyOptions& options) {
  SetMaster(table, master::kSnCurveOption, options.sn_curve_option);
  SetMaster(table, master::kAlternatingStressType, options.alternating_stress_type);
  SetMaster(table, master::kMeanStressCorrection, options.mean_stress_correction);
  SetMaster(table, master::kSnInterpolationDefault, options.sn_interpolation);
  SetMaster(table, master::kEventInteraction, options.event_interaction);
  SetMasterReal(table, master::kStrengthReductionFactor, options.strength_reduction_factor);
  SetMaster(table, master::kSharedHistory, options.shared_history ? 1 : 0);
  SetMaster(table, master::kLoadAmplitudeType, options.load_amplitude_type);
  SetMaster(table, master::kRangeBinCount, options.range_bins);
  SetMaster(table, master::kMeanBinCount, options.mean_bins);
  SetMasterReal(table, master::kInfiniteLifeValue, options.infinite_life);
  SetMaster(table, master::kFilterPercent, options.filter_percent);
}

void SetTimeSteps(TableBuilder& table, const std::vector<AuthoredEvent>& events) {
  for (const AuthoredEvent& event : events) {
    const int step = event.loadings.empty() ? 1 : event.loadings.front().study;
    SetMaster(table, {master::kTimeStepEntity, master::kFirstTimeStep + event.number - 1}, step);
  }
}

}  // namespace

TableBuilder BuildMasterTable(const StudyDefinition& study) {
  const StudyOptions& options = study.options;
  TableBuilder table = NewMasterTable();
  SetMasterTitle(table, study.title);
  SetMaster(table, master::kLanguageIndex, options.language);
  SetMaster(table, master::kRunMode, options.run_mode);
  SetMaster(table, master::kListingMode, options.listing_mode);
  SetMaster(table, master::kShellSurface, options.shell_surface);
  SetMaster(table, master::kShellLayer, options.shell_layer);
  SetMaster(table, master::kPointerWidthFlag, study.pointer_words == 2 ? 1 : 0);
  if (study.layout == StudyLayout::kMultiStudy) {
    SetMaster(table, master::kStudyType, kMultiStudyType);
  } else {
    SetOrdinaryOptions(table, options);
  }
  if (options.load_amplitude_type == 1) SetTimeSteps(table, study.events);
  MarkAsBuilt(table);
  return table;
}

TableBuilder BuildNodeTable(const StudyModel& model) {
  using namespace node_table;
  TableBuilder table(kFields, std::max(model.HighestNode(), 1));
  table.Reserve(model.nodes.size());
  for (const AuthoredNode& node : model.nodes) {
    SetPoint(table, node.number, kX, node.xyz);
    table.SetInt(node.number, kCoordinateSystem, node.coordinate_system);
    table.SetReal(node.number, kPathX, node.xyz[0]);
    table.SetReal(node.number, kPathY, node.xyz[1]);
  }
  return table;
}

TableBuilder BuildElementTable(const StudyModel& model) {
  using namespace element_table;
  int most_nodes = 0;
  for (const AuthoredElement& element : model.elements) most_nodes = std::max(most_nodes, element.node_count);
  TableBuilder table(kNodeCount + most_nodes, std::max(model.HighestElement(), 1));
  table.Reserve(model.elements.size());
  for (const AuthoredElement& element : model.elements) {
    table.SetInt(element.number, kGroup, element.group);
    table.SetInt(element.number, kMaterial, element.material);
    table.SetInt(element.number, kNodeCount, element.node_count);
    int field = kFirstNode;
    for (const std::int32_t node : model.NodesOf(element)) table.SetInt(element.number, field++, node);
  }
  return table;
}

TableBuilder BuildCoordinateSystemTable(const StudyModel& model) {
  using namespace coordinate_system_table;
  TableBuilder table(kFields, std::max(HighestNumber(model.coordinate_systems), 1));
  for (const CoordinateSystem& system : model.coordinate_systems) {
    table.SetInt(system.number, kKind, system.kind);
    SetPoint(table, system.number, kOrigin, system.origin);
    SetPoint(table, system.number, kOnX, system.on_x);
    SetPoint(table, system.number, kInPlane, system.in_plane);
  }
  return table;
}

TableBuilder BuildGroupTable(const StudyModel& model) {
  using namespace group_table;
  TableBuilder table(kFields, std::max(HighestNumber(model.groups), 1));
  for (const ElementGroup& group : model.groups) table.SetInt(group.number, kTypeCode, group.type_code);
  return table;
}

TableBuilder BuildMaterialTable(const StudyDefinition& study) {
  using namespace material_table;
  TableBuilder table(kFields, std::max(HighestNumber(study.materials), 1));
  for (const AuthoredMaterial& material : study.materials) {
    table.SetReal(material.number, kModulus, material.modulus);
    table.SetReal(material.number, kYield, material.yield_strength);
    table.SetReal(material.number, kUltimate, material.ultimate_strength);
  }
  return table;
}

TableBuilder BuildCurveTable(const StudyDefinition& study) {
  using namespace curve_table;
  std::size_t most_points = 0;
  for (const AuthoredSnCurve& curve : study.sn_curves)
    most_points = std::max(most_points, curve.points.size());
  TableBuilder table(kPointCount + 2 * static_cast<int>(most_points),
                     std::max(static_cast<int>(study.sn_curves.size()), 1));
  int id = 0;
  for (const AuthoredSnCurve& curve : study.sn_curves) {
    ++id;
    table.SetInt(id, kMaterial, curve.material);
    table.SetReal(id, kRatio, curve.stress_ratio);
    table.SetInt(id, kInterpolation, curve.interpolation);
    table.SetInt(id, kPointCount, static_cast<int>(curve.points.size()));
    int field = kFirstPoint;
    for (const auto& [cycles, stress] : curve.points) {
      table.SetReal(id, field++, cycles);
      table.SetReal(id, field++, stress);
    }
  }
  return table;
}

}  // namespace zentor
