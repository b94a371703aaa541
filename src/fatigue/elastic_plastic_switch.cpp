#include "fatigue/elastic_plastic_switch.h"

#include <initializer_list>
#include <string_view>

#include "stress/elastic_plastic.h"

namespace zentor {
namespace {

constexpr int kCurveRises = 9067;
constexpr int kCurveRisesConsequence = 9068;

void Warn(TextRecordFile& listing, std::initializer_list<std::string_view> reasons) {
  listing.Blank(3);
  listing.Line(" *** WARNING - No Simplified Elastic-Plastic formulation:  ");
  for (const std::string_view reason : reasons) listing.ListDirected(reason);
}

}  // namespace

bool DecideElasticPlastic(FatigueRun& run) {
  if (IsAllNodes(run.study.properties) || !run.study.readiness.EpSectionReady) return false;
  if (IsNonIncreasing(run.study.sm_t)) return true;
  run.context.services.ShowMessage(kCurveRises, {}, Severity::kWarning);
  run.context.services.ShowMessage(kCurveRisesConsequence, {}, Severity::kWarning);
  return false;
}

void PrintElasticPlasticWarnings(FatigueRun& run, bool applied) {
  TextRecordFile& listing = run.context.listing;
  const ElasticPlasticReadiness& ready = run.study.readiness;
  if (run.study.location_section > 0 && !applied) {
    Warn(listing,
         {"       (Some of the Elastic-Plastic properties are not", "        available in the data base)"});
  }
  if (run.study.sm_t.count > 0 && !ready.EpParamsReady) {
    Warn(listing,
         {"       (Elastic-Plastic material parameters are not defined", "        OR are out of range)"});
  }
  if (ready.EpParamsReady && !ready.EpLinearizedReady) {
    return Warn(listing, {"       (-1 is assigned to the loadcase(s), however, not all the",
                          "        linearized stress conditions are specified, i.e., by",
                          "        using command FTSTR)"});
  }
  if (ready.EpLinearizedReady && !ready.EpTemperatureReady) {
    return Warn(listing, {"        (no section contains this location at one end OR unable",
                          "        to open the data-base file to read the nodal temper-",
                          "        tures OR unable to read the corresponding records)"});
  }
  if (ready.EpTemperatureReady && !ready.EpSectionReady) {
    return Warn(listing, {"        (No section contains the activated location at one end",
                          "         OR if such section exists, the other end location is",
                          "         not available, i.e., is deleleted)"});
  }
  if (ready.EpSectionReady && !applied) {
    Warn(listing,
         {"        (Sm-T curve is defined improperly, i.e., it does not", "        decrease monotonically)"});
  }
}

}  // namespace zentor
