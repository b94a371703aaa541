#include "database/edit.h"
#include "study/definition_echo.h"
#include "study/section_ends.h"

namespace zentor {
namespace {

void EchoSection(TextRecordFile& listing, const StudyState& study, int section, const SectionEnds& ends) {
  const int activated = study.properties.ActivatedLocation;
  const Location& settings =
      study.locations[activated == ends.second && activated > 0 ? ends.second : ends.first];
  Edit line;
  line.X(1).I(4, section).X(4).I(6, ends.first).X(3).I(4, study.locations[ends.first].node);
  if (ends.second != 0) {
    line.X(3).I(6, ends.second).X(3).I(4, study.locations[ends.second].node).X(4);
  } else {
    line.X(20);
  }
  line.I(4, settings.path_points).X(4).E(11, 4, settings.radius).X(4);
  if (settings.radius == 0.0F) {
    line.Text("---");
  } else {
    line.I(3, settings.bending_flag);
  }
  listing.Line(line.str());
}

}  // namespace

void EchoSections(TextRecordFile& listing, const StudyState& study) {
  listing.Blank(3);
  listing.Line("S E C T I O N   P A R A M E T E R S:");
  listing.Blank();
  listing.ListDirected(
      "             FIRST           SECOND       PATH    RADIUS OF "
      "  B. STRESS");
  listing.ListDirected(
      "SECTION  LOCATION/NODE   LOCATION/NODE   POINTS   CURVATURE "
      "    FLAG");
  bool any = false;
  for (int s = 1; s <= kMaxSections; ++s) {
    const SectionEnds ends = FindSectionEnds(study, s);
    if (ends.first == 0) continue;
    EchoSection(listing, study, s, ends);
    any = true;
  }
  if (any) return;
  listing.Blank();
  listing.Line("       (no section is defined)");
}

}  // namespace zentor
