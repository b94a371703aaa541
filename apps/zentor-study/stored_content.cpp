#include "stored_content.h"

#include <algorithm>

#include "formats/ftx_format.h"
#include "reading_services.h"
#include "services/stop.h"
#include "study/events_input.h"
#include "study/extended_options.h"
#include "study/fatigue_properties_input.h"
#include "study/model_input.h"
#include "study/sn_curves_input.h"

namespace zentor::companion {

namespace {

StudyOptions OptionsOf(const FatigueProperties& p) {
  StudyOptions options;
  options.load_amplitude_type = p.LoadAmplitudeType;
  options.mean_stress_correction = p.MeanStressCorrection;
  options.event_interaction = p.EventInteraction;
  options.strength_reduction_factor = p.FatigueStrengthReductionFactor;
  options.infinite_life = p.InfiniteLifeValue;
  options.sn_curve_option = UsesBuiltInCurve(p) ? p.SnCurveOption : 0;
  options.alternating_stress_type = p.AlternatingStressType;
  options.activated_location = p.ActivatedLocation;
  options.surface_only = p.SurfaceOnly == 1;
  return options;
}

AuthoredLoading LoadingOf(const Loading& loading, int number) {
  AuthoredLoading one;
  one.number = number;
  one.stress_case = loading.load_case;
  one.study = loading.time_step;
  one.scale = static_cast<float>(loading.scale_factor);
  return one;
}

// The loadings that belong to an event, the formed ones of a multi-study event included.
std::vector<AuthoredEvent> EventsOf(const EventTable& table, bool variable, bool pairs) {
  std::vector<AuthoredEvent> events;
  for (int j = 1; j <= kMaxEvents; ++j) {
    const Event& event = table.events[j];
    if (variable ? j > table.event_count : !event.defined) continue;
    AuthoredEvent one;
    one.number = variable ? event.entity : j;
    one.cycles = variable ? event.repetitions : event.cycles;
    one.history = event.curve;
    one.paired = pairs && event.pairing_flag == 0;
    for (int k = 1; k <= kMaxLoadings; ++k) {
      // In variable amplitude event and loading are one, with the same place.
      const bool owned = variable ? k == j : table.loadings[k].event == j;
      if (owned) one.loadings.push_back(LoadingOf(table.loadings[k], k));
    }
    events.push_back(std::move(one));
  }
  return events;
}

StudyDefinition Read(RunContext& run) {
  DbOpenStudyTables(run.database);
  StudyState study;
  study.has_study_list = run.services.StudyFileExists(".FTS");
  study.properties = ReadFatigueProperties(run, study.has_study_list);
  study.sizes = ReadModelSizes(run.database);
  StudyDefinition content;
  content.options = OptionsOf(study.properties);
  content.extended = ReadExtendedOptions(run.files, run.services.StudyFileName(ftx_format::kExtension));
  content.layout = IsMultiStudy(study.properties) ? StudyLayout::kMultiStudy : StudyLayout::kOrdinary;
  const bool variable = IsVariableAmplitude(study.properties);
  if (variable) {
    ReadVariableAmplitudeEvents(run, study);
  } else if (IsMultiStudy(study.properties)) {
    ReadMultiStudyEvents(run, study);
  } else {
    ReadEvents(run, study);
  }
  content.events = EventsOf(study.definition, variable, !variable && IsMultiStudy(study.properties));
  const bool built_in = UsesBuiltInCurve(study.properties);
  if (built_in) {
    ReadMaterials(run, study);
  } else {
    for (const SnCurveSource& source : ReadSnCurveSources(run, study)) {
      AuthoredSnCurve curve;
      curve.material = source.set;
      curve.stress_ratio = source.ratio;
      curve.interpolation = source.interpolation;
      for (std::size_t i = 0; i < source.cycles.size(); ++i) {
        curve.points.push_back({source.cycles[i], source.stresses[i]});
      }
      content.sn_curves.push_back(std::move(curve));
    }
  }
  for (int number = 1; number <= study.sizes.material_count; ++number) {
    AuthoredMaterial& material = content.materials.emplace_back();
    material.number = number;
    if (built_in) material.modulus = static_cast<float>(study.materials.modulus[number]);
  }
  return content;
}

}  // namespace

std::optional<StudyDefinition> ReadStoredContent(const std::string& base) {
  MemoryOverlay files;
  ReadingServices services(base, files);
  if (!services.StudyFileExists(".FTC")) return std::nullopt;
  RunContext run(files, services);
  try {
    return Read(run);
  } catch (const RunStopped&) {
    return std::nullopt;
  }
}

}  // namespace zentor::companion
