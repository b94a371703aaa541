#include <vector>

#include "database/edit.h"
#include "study/definition_echo.h"

namespace zentor {
namespace {

std::vector<int> LoadingsOf(const EventTable& table, int event) {
  std::vector<int> loadings;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    if (table.loadings[k].event == event) loadings.push_back(k);
  }
  return loadings;
}

// The columns of a loading. One without stresses of a file (zero or stored) has no scale factor to show.
void AppendLoading(Edit& line, int number, const Loading& loading) {
  const int shown_case = loading.load_case == kZeroLoadCase ? 0 : loading.load_case;
  line.I(5, number).X(10).I(7, shown_case);
  if (shown_case == 0 || shown_case == kStoredLoadCase) {
    line.X(14).Text("...");
  } else {
    line.X(11).E(10, 3, loading.scale_factor);
  }
}

void EchoEvent(TextRecordFile& listing, const EventTable& table, int j) {
  Edit line;
  line.I(5, j).X(2).I(9, table.events[j].cycles);
  bool first = true;
  for (const int k : LoadingsOf(table, j)) {
    if (first) {
      line.X(4);
    } else {
      listing.Line(line.str());
      line.Clear();
      line.X(20);
    }
    AppendLoading(line, k, table.loadings[k]);
    first = false;
  }
  listing.Line(line.str());
}

}  // namespace

void EchoEvents(TextRecordFile& listing, const EventTable& table) {
  listing.Blank(3);
  listing.Line("E V E N T   P A R A M E T E R S:");
  listing.Blank();
  listing.ListDirected("         No. of    Associated      Load Case(s)/      Scale");
  listing.ListDirected(" Event   Cycles    Loading(s)      Time Step(s)       factor");
  listing.ListDirected(" -----   ------    ----------       -----------       ------");
  for (int j = 1; j <= kMaxConstantAmplitudeEvents; ++j) {
    if (table.events[j].defined && table.events[j].number == j) EchoEvent(listing, table, j);
  }
  listing.ListDirected("");
  listing.ListDirected("");
}

}  // namespace zentor
