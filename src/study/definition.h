// The fatigue definition of a study as read from its tables: events, loadings, locations, stored conditions,
// S-N curves, the Sm-T curve. Filled by the study input, const to everything after it.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "database/one_based.h"
#include "study/stress_tensor.h"

namespace zentor {

inline constexpr int kMaxLoadings = 40;
inline constexpr int kMaxEvents = 40;  // variable amplitude
inline constexpr int kMaxConstantAmplitudeEvents = 20;
inline constexpr int kMaxLocations = 50;
inline constexpr int kMaxSections = 20;
inline constexpr int kMaxSmTPoints = 10;
inline constexpr int kZeroLoadCase = 100;    // a loading whose stresses are zero by definition
inline constexpr int kStoredLoadCase = -1;   // stresses to come from stored conditions
inline constexpr int kAppliedLoadCase = -2;  // stored conditions found for the activated location

struct Event {
  bool defined = false;
  int number = 0;  // as stored; the echo lists the event only when it equals the entity number
  int cycles = 0;
  // Multi-study mode: scale of the second loading that forms a pair with each loading, and whether to form
  // none.
  float ratio = 0.0F;
  int pairing_flag = 0;
  // Variable amplitude. Points count from 1 inside the curve; end point 0 is the curve's last point.
  int entity = 0;  // entity number in the definition table
  int curve = 0;
  int repetitions = 0;
  float scale_factor = 0.0F;
  int start_point = 1;
  int end_point = 0;
  float start_time = 0.0F;
  int history_setting = 1;
  int first = 0,
      last = 0;  // first and last entry of its stretch in the load history store, 0 until it is loaded
};

struct Loading {
  int load_case = 0;  // result set; kZeroLoadCase, kStoredLoadCase, kAppliedLoadCase, 0 unused
  int time_step = 0;  // multi-study mode: line of the study list
  int event = 0;      // owning event, 0 none
  double scale_factor = 0.0;
};

struct EventTable {
  OneBasedArray<Event, kMaxEvents> events;  // constant amplitude: index = entity number, 1 .. 20;
                                            // variable amplitude: 1 .. event_count in entity order
  OneBasedArray<Loading, kMaxLoadings> loadings;
  int event_count = 0;      // defined events
  int loading_count = 0;    // loadings that belong to an event
  int highest_event = 0;    // largest number of an event that owns a loading
  int highest_loading = 0;  // largest loading number in use
  int largest_time_step = 0;
  int largest_curve = 0;     // variable amplitude
  bool common_start = true;  // variable amplitude: all events start at the same time
};

struct Location {
  bool defined = false;
  int node = 0;
  int setting = 0;
  int section = 0;  // 0 none
  int path_points = 0;
  float radius = 0.0F;         // of curvature of the section, 0 straight
  std::array<float, 3> scf{};  // stress concentration factors in X, Y, Z
  int bending_flag = 0;
  // Of the node, when it exists in the model.
  bool node_exists = false;
  std::array<double, 3> coordinates{};
  int coordinate_system = 0;
};

// Load cases and stresses of the activated location after its stored conditions were applied.
struct AppliedConditions {
  OneBasedArray<int, kMaxLoadings> stress_case;  // working copies of the loadings' load cases
  OneBasedArray<int, kMaxLoadings> linearised_case;
  OneBasedArray<int, kMaxLoadings> temperature_case;
  OneBasedArray<StressTensor, kMaxLoadings> stress;          // where stress_case is kAppliedLoadCase
  OneBasedArray<LinearisedStress, kMaxLoadings> linearised;  // stored or formed from a section
  OneBasedArray<double, kMaxLoadings> temperature;
};

// One S-N curve. x: log10 N (interpolation 0, 1) or N (2); y: log10 S (0) or S (1, 2); same length.
struct SnCurve {
  int number = 0;         // slot (ordinary layout) or entity number
  int interpolation = 0;  // 0 log-log, 1 semi-log, any other linear
  float ratio = 0.0F;     // stress ratio R of the curve
  std::vector<double> x, y;
  double first_cycles = 0.0, last_cycles = 0.0;  // unlogged, of the first (highest stress) and the last point
  double first_stress = 0.0, last_stress = 0.0;
};

struct SnCurveStore {
  OneBased<std::vector<SnCurve>> sets;  // by material set, curves in reading order
  int study_wide_set = 0;               // overrides a node's set when 1 or more
  int point_count = 0;                  // largest number of points of any curve: 0 none, 1 improper, 2 usable
};

struct SmTCurve {
  int count = 0;
  OneBasedArray<double, kMaxSmTPoints> temperature;
  OneBasedArray<double, kMaxSmTPoints> sm;
  double m = 0.0, n = 0.0;  // elastic-plastic parameters
};

// How far the data for the simplified elastic-plastic factor reach; each needs the one before it.
struct ElasticPlasticReadiness {
  bool EpParamsReady = false;
  bool EpLinearizedReady = false;
  bool EpTemperatureReady = false;
  bool EpSectionReady = false;
};

}  // namespace zentor
