#include "stress/sm_t_listing.h"

#include <algorithm>
#include <string>

#include "database/edit.h"

namespace zentor {
namespace {

void PrintParameter(TextRecordFile& listing, const char* name, double value) {
  const std::string label = std::string(" ") + name + " = ";
  if (value > 0.0) {
    listing.Line(Edit().Text(label).E(10, 3, value).str());
  } else {
    listing.Line(label + "(not defined)");
  }
}

}  // namespace

void PrintSmTCurve(TextRecordFile& listing, const SmTCurve& curve) {
  listing.Blank(3);
  listing.Line("Sm - T   C U R V E:");
  listing.Blank();
  listing.ListDirected("POINT No.    Temperature      Alt. Stress");
  listing.ListDirected("---------   -------------     -----------");
  for (int k = 1; k <= std::min(curve.count, kMaxSmTPoints); ++k) {
    listing.Line(Edit().I(6, k).X(7).E(10, 3, curve.temperature[k]).X(8).E(10, 3, curve.sm[k]).str());
  }
  listing.Blank(3);
  listing.Line("E L A S T I C - P L A S T I C   M A T E R I A L");
  listing.Line("P A R A M E T E R S:");
  listing.Blank();
  PrintParameter(listing, "M", curve.m);
  PrintParameter(listing, "N", curve.n);
}

}  // namespace zentor
