#include "database/edit.h"
#include "study/definition_echo.h"

namespace zentor {
namespace {

void EchoLocation(TextRecordFile& listing, int number, const Location& location) {
  Edit line;
  line.I(4, number).X(1).I(6, location.node).X(2);
  for (const double coordinate : location.coordinates) {
    if (location.node_exists) {
      line.E(8, 2, coordinate).X(2);
    } else {
      line.Text("........").X(2);
    }
  }
  if (location.node_exists) {
    line.I(3, location.coordinate_system);
  } else {
    line.X(1).Text("..");
  }
  line.X(1);
  for (const float factor : location.scf) line.X(1).E(9, 3, factor);
  listing.Line(line.str());
}

}  // namespace

void EchoLocations(TextRecordFile& listing, const StudyState& study) {
  listing.Blank();
  listing.Line("L O C A T I O N   P A R A M E T E R S:");
  listing.Blank();
  listing.Line(
      " Locat.  Node    X       Y          Z"
      "       CS   SCFX      SCFY      SCFZ");
  listing.Line(
      " ------  ----  -----   ------     ---"
      "---    --   ----      ----      ----");
  for (int l = 1; l <= kMaxLocations; ++l) {
    if (study.locations[l].node != 0) EchoLocation(listing, l, study.locations[l]);
  }
  listing.ListDirected("");
  listing.ListDirected("");
}

}  // namespace zentor
