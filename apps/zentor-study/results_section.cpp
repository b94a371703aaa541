#include "results_section.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "commands.h"
#include "reading_services.h"
#include "services/stop.h"
#include "stress/nodal_stress_store.h"
#include "stress/section_stresses.h"
#include "study/events_input.h"
#include "study/fatigue_properties_input.h"
#include "study/locations_input.h"
#include "study/model_input.h"
#include "study/stress_results.h"

namespace zentor::companion {

namespace {

constexpr std::array<std::string_view, 4> kComponents = {"sx", "sy", "sz", "txy"};

// Distinct load cases of the loadings, in their order.
std::vector<StoreLoading> LoadCases(const EventTable& table) {
  std::vector<StoreLoading> cases;
  for (const Loading& loading : table.loadings) {
    if (loading.load_case <= 0 || loading.load_case == kZeroLoadCase) continue;
    const bool known = std::any_of(cases.begin(), cases.end(), [&](const StoreLoading& other) {
      return other.load_case == loading.load_case;
    });
    if (!known) cases.push_back({loading.load_case, loading.time_step});
  }
  return cases;
}

// The steps of the study input that a section needs; nothing is written to a listing.
StudyState ReadForSection(RunContext& run, int location) {
  DbOpenStudyTables(run.database);
  StudyState study;
  study.properties = ReadFatigueProperties(run, run.services.StudyFileExists(".FTS"));
  if (IsMultiStudy(study.properties)) {
    throw CommandFailure("a study that takes its stresses from other studies has no sections");
  }
  if (location != 0) study.properties.ActivatedLocation = location;
  CheckFatigueProperties(run, study);
  study.sizes = ReadModelSizes(run.database);
  if (IsVariableAmplitude(study.properties)) {
    ReadVariableAmplitudeEvents(run, study);
  } else {
    ReadEvents(run, study);
  }
  ReadLocations(run, study);
  study.stress_kind = FindStressKind(run.services, 0);
  return study;
}

void AppendComponents(std::string& line, const PlaneComponents& values) {
  for (const double value : values) {
    fmt::format_to(std::back_inserter(line), ",{:.7g}", value == 0.0 ? 0.0 : value);  // no negative zero
  }
}

void AppendBending(std::string& line, const SectionStress& parts, std::size_t point, std::size_t count) {
  if (point != 0 && point + 1 != count) {
    line += ",,,,";
    return;
  }
  AppendComponents(line, RotatePlane(point == 0 ? parts.first_bending : parts.last_bending, -parts.angle));
}

std::string HeadLine() {
  std::string line = "load_case,point,distance,x,y,node,element";
  for (const std::string_view part : {"", "membrane_", "bending_"}) {
    for (const std::string_view component : kComponents) line += fmt::format(",{}{}", part, component);
  }
  return line + '\n';
}

void WriteLoadCase(RunContext& run, const Section& section, const SectionPath& path, int load_case,
                   const std::vector<PlaneComponents>& stresses, OutputFile& out) {
  const SectionStress parts = LineariseSection(run, section, path, stresses);
  const std::size_t count = path.x.size();
  for (std::size_t k = 0; k < count; ++k) {
    const PointPlace& place = path.places[k];
    const double distance = std::hypot(path.x[k] - path.x[0], path.y[k] - path.y[0]);
    std::string line = fmt::format("{},{},{:.7g},{:.7g},{:.7g},{},{}", load_case, k + 1, distance, path.x[k],
                                   path.y[k], place.node != 0 ? std::to_string(place.node) : "",
                                   place.node != 0 ? "" : std::to_string(place.element));
    AppendComponents(line, stresses[k]);
    AppendComponents(line, RotatePlane(parts.membrane, -parts.angle));
    AppendBending(line, parts, k, count);
    out.Write(line + '\n');
  }
}

void WriteSection(RunContext& run, int location, OutputFile& out) {
  StudyState study = ReadForSection(run, location);
  const int evaluated = study.properties.ActivatedLocation;
  if (evaluated < 1) {
    throw CommandFailure("the study evaluates all nodes; name a location of a section with --location");
  }
  const auto section = FindSection(run, study, evaluated);
  if (!section) {
    throw CommandFailure(fmt::format("location {} is at no end of a section with two nodes", evaluated));
  }
  const std::vector<StoreLoading> cases = LoadCases(study.definition);
  const NodalStressStore store = BuildNodalStressStore(run, study, cases);
  const SectionPath path = LocatePath(run, study, *section);
  out.Write(HeadLine());
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const int slot = store.SlotOf(static_cast<int>(i) + 1);
    WriteLoadCase(run, *section, path, cases[i].load_case, PointStresses(store, slot, path), out);
  }
}

}  // namespace

void WriteSectionCsv(const std::string& study_base, int location, OutputFile& out) {
  MemoryOverlay files;
  ReadingServices services(study_base, files);
  if (!services.StudyFileExists(".FTC")) {
    throw CommandFailure(study_base + ".FTC: no fatigue definition");
  }
  RunContext run(files, services);
  try {
    WriteSection(run, location, out);
  } catch (const RunStopped&) {
    throw CommandFailure(study_base + ": " + services.reason());
  }
}

}  // namespace zentor::companion
