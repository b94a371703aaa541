#include "study/properties_echo.h"

#include <initializer_list>
#include <string_view>

#include "database/edit.h"
#include "study/study_messages.h"

namespace zentor {
namespace {

// One option: its label with the value, the meaning of its codes, an empty line.
void Option(TextRecordFile& listing, std::string_view label, std::int64_t value,
            std::initializer_list<std::string_view> codes = {}) {
  listing.Line(Edit().Text(label).I(7, value).str());
  for (const std::string_view code : codes) listing.Line(code);
  listing.Blank();
}

void EchoLocation(TextRecordFile& listing, const StudyState& study) {
  constexpr std::string_view kLabel = "Activated Location  . . . . . . . . . . . . . . . . = ";
  const FatigueProperties& p = study.properties;
  if (IsMultiStudy(p)) {
    return Option(listing, kLabel, p.SurfaceOnly,
                  {"       EQ. 0, Whole Model", "       EQ. 1, Surface Only"});
  }
  Option(listing, kLabel, p.ActivatedLocation);
  if (IsAllNodes(p)) {
    listing.Line("       EQ. -1, For all nodes option");
  } else {
    listing.Line(Edit()
                     .Text("                                                 (node")
                     .I(7, study.location_node)
                     .Text(")")
                     .str());
  }
  listing.Blank();
}

void EchoShell(TextRecordFile& listing, const FatigueProperties& p) {
  listing.Blank();
  Option(listing, "Shell Surface . . . . . . . . . . . . . . . . . . . = ", p.ShellSurface,
         {"       EQ. 1, Top", "       EQ. 2, Bottom"});
  listing.Blank();
  Option(listing, "Shell Layer . . . . . . . . . . . . . . . . . . . . = ", p.ShellLayer);
}

void EchoCounting(TextRecordFile& listing, const FatigueProperties& p) {
  listing.Blank();
  if (!IsVariableAmplitude(p)) {
    return Option(listing, "Event Interaction . . . . . . . . . . . . . . . . . = ", p.EventInteraction,
                  {"       EQ. 0, Random", "       EQ. 1, No interaction"});
  }
  Option(listing, "Number of Bins  . . . . . . . . . . . . . . . . . . = ", p.RangeBinCount);
  listing.Blank();
  Option(listing, "Filter(%) . . . . . . . . . . . . . . . . . . . . . = ",
         static_cast<std::int64_t>(p.FilterPercent));
}

void EchoStressOptions(TextRecordFile& listing, const FatigueProperties& p) {
  listing.Blank();
  Option(listing, "Alternating Stress  . . . . . . . . . . . . . . . . = ", p.AlternatingStressType,
         {"       EQ. 0, Intensity", "       EQ. 1, Von mises", "       EQ. 2, Max. Principal"});
  listing.Blank();
  Option(listing, "Mean Stress Correction  . . . . . . . . . . . . . . = ", p.MeanStressCorrection,
         {"       EQ. 0, No Correction", "       EQ. 1, Soderberg", "       EQ. 2, Goodman",
          "       EQ. 3, Gerber"});
  listing.Blank();
  listing.Line(Edit()
                   .Text("Fatigue Strength Reduction Factor (Kt)  . . . . . . = ")
                   .F(7, 4, p.FatigueStrengthReductionFactor)
                   .str());
  listing.Blank();
}

void EchoInfiniteLife(TextRecordFile& listing, const FatigueProperties& p) {
  listing.Blank();
  Option(listing, "Infinite Life . . . . . . . . . . . . . . . . . . . = ", HasInfiniteLife(p) ? 1 : 0,
         {"       EQ. 0, Not Defined", "       EQ. 1, Defined"});
  if (!HasInfiniteLife(p)) return;
  listing.Blank();
  listing.Line(Edit()
                   .Text("Infinite Life Value . . . . . . . . . . . . . . . . = ")
                   .E(11, 4, p.InfiniteLifeValue)
                   .str());
  listing.Blank();
}

}  // namespace

void EchoFatigueProperties(RunContext& run, const StudyState& study) {
  TextRecordFile& listing = run.listing;
  const FatigueProperties& p = study.properties;
  listing.Blank(4);
  listing.Line("F A T I G U E   P R O P E R T I E S :");
  listing.Blank(2);
  Option(listing, "Load Amplitude Type . . . . . . . . . . . . . . . . = ", p.LoadAmplitudeType,
         {"       EQ. 0, Constant Amplitude", "       EQ. 1, Variable Amplitude"});
  EchoLocation(listing, study);
  EchoShell(listing, p);
  EchoCounting(listing, p);
  EchoStressOptions(listing, p);
  EchoInfiniteLife(listing, p);
}

void CheckActivatedLocation(RunContext& run, const FatigueProperties& properties) {
  if (properties.ActivatedLocation != 0) return;
  run.listing.Blank(3);
  run.listing.Line("*** ERROR - No location is activated for fatique calculations");
  run.listing.ListDirected("");
  run.listing.ListDirected("    STOP");
  StopWithMessage(run.services, message::kNoActivatedLocation);
}

}  // namespace zentor
