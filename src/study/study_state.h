// Everything the study input leaves behind for the run.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "database/one_based.h"
#include "study/definition.h"
#include "study/fatigue_properties.h"

namespace zentor {

struct ModelSizes {
  int highest_node = 0;
  int node_count = 0;
  int highest_element = 0;
  int element_count = 0;
  int material_count = 0;  // highest material id, 0 without materials
};

struct Materials {
  OneBased<std::int32_t> node_material;  // 1 .. highest node: governing material, 0 none
  OneBased<double> strength;             // per material: yield (Soderberg) or ultimate strength
  OneBased<double> modulus;              // per material, only with a built-in S-N curve
};

struct SurfaceFlags {
  OneBased<std::uint8_t> node;  // 1 .. highest node, empty unless SurfaceOnly
  OneBased<std::uint8_t> element;
  int node_count = 0;
  int element_count = 0;
  int highest_element = 0;
};

// Which stress file the study has.
enum class StressKind : int { kNone = 0, kSte = 1, kStn = 2, kStp = 3 };

struct StudyState {
  FatigueProperties properties;
  bool has_study_list = false;  // ".FTS" exists: options come from ".FTC" entity 60
  ModelSizes sizes;
  Materials materials;
  SurfaceFlags surface;
  std::vector<int> matrix_nodes;  // MatrixNodeList: its entries above 0, in order
  EventTable definition;
  OneBasedArray<Location, kMaxLocations> locations;
  int location_node = 0;     // node of the activated location
  int location_section = 0;  // its section number, 0 none
  SnCurveStore sn_curves;
  SmTCurve sm_t;
  ElasticPlasticReadiness readiness;
  AppliedConditions conditions;
  StressKind stress_kind = StressKind::kNone;
  std::array<int, 6> start{};  // year, month, day, hour, minute, second of the run's start
};

}  // namespace zentor
