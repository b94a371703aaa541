// A whole study as its author means it, before it is laid out in study files (study_writer.h). Plain data:
// who fills it sees to its sense; entity numbers start at 1; lists need not be sorted unless said so.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "formats/ftx_format.h"

namespace zentor {

// Ordinary: options in ".MAS", S-N curves in ".FTC". Multi-study: a ".FTS" list names the studies whose
// stresses are used, options are in ".FTC", S-N curves in ".SNC"; always an all-nodes run.
enum class StudyLayout { kOrdinary, kMultiStudy };
enum class StressFileKind { kSte, kStn, kStp };

// Limits of the study files.
inline constexpr int kMaxAuthoredLoadings = 40;
inline constexpr int kMaxAuthoredEvents = 20;          // constant amplitude
inline constexpr int kMaxAuthoredVariableEvents = 40;  // variable amplitude
inline constexpr int kMaxAuthoredLocations = 50;
inline constexpr int kMaxAuthoredSections = 20;
inline constexpr int kMaxPathPoints = 65;
inline constexpr int kMaxSmTCurvePoints = 10;
inline constexpr int kMaxOrdinaryCurves = 10;
inline constexpr int kMaxMaterialNumber = 9999;
inline constexpr int kMaxStressCase = 99;
inline constexpr int kMaxMatrixNodes = 40;
inline constexpr int kMaxBins = 200;
inline constexpr int kMaxStudies = 40;  // lines of ".FTS" that a loading can select
inline constexpr int kAllNodesLocation = -1;
inline constexpr int kZeroStressCase = 100;   // a loading without stress
inline constexpr int kStoredStressCase = -1;  // a loading whose stresses are stored conditions
// Stress files hold node and element numbers as single-precision reals, exact up to 2^24.
inline constexpr int kMaxModelNumber = 16777216;

// Study-wide options; integers are the codes of the study files.
struct StudyOptions {
  int load_amplitude_type = 0;      // 0 constant, 1 variable
  int alternating_stress_type = 0;  // 0 stress intensity, 1 von Mises, 2 maximum principal
  int mean_stress_correction = 0;   // 0 none, 1 Soderberg, 2 Goodman, 3 Gerber
  int event_interaction = 0;        // 0 random, 1 no interaction
  float strength_reduction_factor = 1.0F;
  float infinite_life = 0.0F;  // cycles; 0: not defined
  int sn_curve_option = 0;     // 0 the study's own, -1 carbon steel, -2 austenitic steel
  int sn_interpolation = 0;    // ordinary layout: of every curve
  bool shared_history = false;
  int range_bins = 0;  // 0: 25
  int mean_bins = 0;   // 0: as range_bins
  int filter_percent = 0;
  bool surface_only = false;  // multi-study layout
  int shell_surface = 1;      // 1 top, 2 bottom
  int shell_layer = 1;
  int activated_location = kAllNodesLocation;
  int run_mode = 0;               // 0, 1: a stop still runs the end of the run
  int listing_mode = 0;           // 0 replace, 1 append
  int language = 0;               // index 0 .. 11 into the language table
  std::vector<int> matrix_nodes;  // nodes whose range-mean matrices are kept
};

struct AuthoredNode {
  std::int32_t number = 0;
  std::array<float, 3> xyz{};
  std::int32_t coordinate_system = 0;
};

struct AuthoredElement {
  std::int32_t number = 0;
  std::int16_t type_code = 0;  // of the element's records in a stress file
  std::int16_t group = 1;
  std::int32_t material = 1;
  std::int32_t node_count = 0;
  std::uint32_t first_node = 0;  // index into StudyModel::element_nodes
};

struct CoordinateSystem {
  int number = 0;
  int kind = 0;  // 0 Cartesian, 1 cylindrical, 2 spherical
  std::array<float, 3> origin{};
  std::array<float, 3> on_x{};      // a point on the positive x axis
  std::array<float, 3> in_plane{};  // a point of the xy plane with positive y
};

struct ElementGroup {
  int number = 0;
  int type_code = 0;
};

struct SurfaceFace {
  int element = 0;
  std::vector<int> nodes;
};

struct StudyModel {
  std::vector<AuthoredNode> nodes;        // ascending numbers
  std::vector<AuthoredElement> elements;  // ascending numbers
  std::vector<std::int32_t> element_nodes;
  std::vector<CoordinateSystem> coordinate_systems;
  std::vector<ElementGroup> groups;
  std::vector<SurfaceFace> surface_faces;

  std::span<const std::int32_t> NodesOf(const AuthoredElement& element) const {
    return std::span(element_nodes).subspan(element.first_node, static_cast<std::size_t>(element.node_count));
  }
  int HighestNode() const { return nodes.empty() ? 0 : nodes.back().number; }
  int HighestElement() const { return elements.empty() ? 0 : elements.back().number; }
};

struct AuthoredMaterial {
  int number = 0;
  float modulus = 0.0F;
  float yield_strength = 0.0F;
  float ultimate_strength = 0.0F;
};

// Element-nodal stresses of one layer and side. values: shape (model.element_nodes.size(), 6), the six
// components of every node of every element in the order of the model, SX SY SZ TXY TXZ TYZ. An element
// without values has a NaN as the first component of its first node.
struct StressField {
  int layer = 1;
  bool bottom = false;
  std::vector<float> values;
};

struct StressCase {
  std::string name;
  int number = 0;                   // 1 .. kMaxStressCase
  std::vector<StressField> fields;  // the first one serves layers and sides that have none of their own
  // When set, gives the fields for the model of the study instead: the cases of a large model need not be in
  // memory together. Called once, in the order of the numbers.
  std::function<std::vector<StressField>(const StudyModel&)> load;
};

struct NodalTemperatures {
  int stress_case = 0;
  std::vector<float> values;  // one per node of the model, in its order
};

struct AuthoredLoading {
  int number = 0;       // 1 .. kMaxAuthoredLoadings in the ordinary layout
  int stress_case = 0;  // or kZeroStressCase, kStoredStressCase
  int study = 1;        // multi-study layout: line of the study list
  float scale = 1.0F;
};

// An event; in variable amplitude it is also its one loading.
struct AuthoredEvent {
  int number = 0;
  int cycles = 0;  // repetitions of the history in variable amplitude
  std::vector<AuthoredLoading> loadings;
  // Multi-study layout, constant amplitude.
  float ratio = 0.0F;  // scale of the loading that is paired with the first one
  bool paired = false;
  // Variable amplitude.
  int history = 0;
  int start_point = 0;  // 0: the first
  int end_point = 0;    // 0: the last
  float start_time = 0.0F;
  int history_setting = 0;
};

struct AuthoredSnCurve {
  int material = 1;
  float stress_ratio = 0.0F;
  int interpolation = 0;                     // 0 log-log, 1 semi-log, 2 linear; multi-study layout
  std::vector<std::array<float, 2>> points;  // cycles, alternating stress; stress not rising
};

// A location; its section and path settings are zero when it is in no section.
struct AuthoredLocation {
  int number = 0;
  int node = 0;
  int setting = 0;
  int section = 0;
  int path_points = 0;
  float radius = 0.0F;
  std::array<float, 3> stress_factors = {1.0F, 1.0F, 1.0F};
  int bending_flag = 0;  // 1: no bending part of the component along the path
};

struct StoredCondition {
  int location = 0;
  int loading = 0;
  std::optional<std::array<float, 6>> stress;
  std::optional<std::array<float, 4>> linearised;  // SX SY SZ TXY
  std::optional<float> temperature;
};

struct ElasticPlasticData {
  std::vector<std::array<float, 2>> sm_t;  // temperature, Sm
  float m = 0.0F;
  float n = 0.0F;
  bool parameters_defined = false;
};

struct AuthoredHistory {
  int number = 0;
  std::vector<float> times;  // as many as values, or none
  std::vector<float> values;
};

struct StudyDefinition {
  std::string title;
  StudyLayout layout = StudyLayout::kOrdinary;
  StudyOptions options;
  ExtendedOptions extended;
  StudyModel model;
  std::vector<AuthoredMaterial> materials;
  std::vector<StressCase> stress_cases;
  StressFileKind stress_file = StressFileKind::kSte;
  int pointer_words = 1;  // 2: 64-bit pointers in the stress file
  std::vector<NodalTemperatures> temperatures;
  std::vector<AuthoredEvent> events;
  std::vector<AuthoredSnCurve> sn_curves;
  std::vector<AuthoredLocation> locations;
  std::vector<StoredCondition> stored_conditions;
  ElasticPlasticData elastic_plastic;
  std::vector<AuthoredHistory> histories;
  std::vector<std::string> studies;  // multi-study layout: base names, UTF-8, line by line
};

}  // namespace zentor
