#include "fatigue/sn_preparation.h"

#include "fatigue/usage_table.h"
#include "services/stop.h"
#include "stress/pair_listing.h"
#include "stress/sm_t_listing.h"
#include "stress/sn_lookup.h"

namespace zentor {
namespace {

constexpr int kModulusBad = 9065;
constexpr int kModulusIsCurve = 9066;
constexpr int kNoCurve = 9053;
constexpr int kModulusCurveField = 3;  // field behind the modulus: a temperature curve's number when not 0

void PrepareBuiltIn(FatigueRun& run, int node) {
  StudyState& study = run.study;
  SolverServices& services = run.context.services;
  const int material = MaterialOfNode(study, node);
  const auto& moduli = study.materials.modulus;
  const double modulus = moduli.Holds(material) ? moduli[material] : 0.0;
  if (!(modulus > 0.0)) {
    run.context.listing.ListDirected("*** ERROR - Modulus of elast. must be > 0");
    StopWithMessage(services, kModulusBad);
  }
  if (DbGetInt(run.context.database, DbTable::kMat, material, kModulusCurveField) != 0) {
    StopWithMessageAndBeep(services, kModulusIsCurve);
  }
  PrepareBuiltInCurve(study.properties.SnCurveOption, modulus, IsMultiStudy(study.properties),
                      study.properties.SnInterpolationDefault, study.sn_curves);
  PrintBuiltInCurveHeading(run.context, study.properties.SnCurveOption, study.sn_curves);
}

}  // namespace

bool HasUsableCurve(const StudyState& study) {
  return UsesBuiltInCurve(study.properties) || study.sn_curves.point_count >= 2;
}

int MaterialOfNode(const StudyState& study, int node) {
  const auto& materials = study.materials.node_material;
  if (materials.empty()) return 1;
  return materials.Holds(node) ? materials[node] : 0;
}

void PrepareCurves(FatigueRun& run, int node) {
  if (UsesBuiltInCurve(run.study.properties)) PrepareBuiltIn(run, node);
  const SmTCurve& sm_t = run.study.sm_t;
  if (!HasUsableCurve(run.study) || sm_t.count <= 0 || run.sm_t_printed) return;
  PrintSmTCurve(run.context.listing, sm_t);
  run.sm_t_printed = true;
}

void StopWithoutCurve(FatigueRun& run) {
  run.context.listing.Blank(2);
  run.context.listing.Line(" *** ERROR - No S-N curve is defined");
  run.context.services.AskUser(kNoCurve, {}, BoxStyle::kError);
  MarkUsageMissing(run);
  EndRunIfOwner(run.context.services);
  StopStatement();
}

}  // namespace zentor
