#include "study/section_ends.h"

namespace zentor {

SectionEnds FindSectionEnds(const StudyState& study, int section) {
  SectionEnds ends;
  for (int l = 1; l <= kMaxLocations; ++l) {
    const Location& location = study.locations[l];
    if (!location.defined || location.node == 0 || location.section != section) continue;
    if (ends.first == 0) {
      ends.first = l;
    } else if (ends.second == 0) {
      ends.second = l;
    }
  }
  return ends;
}

}  // namespace zentor
