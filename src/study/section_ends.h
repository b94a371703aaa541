// The locations at the ends of a section.
#pragma once

#include "study/study_state.h"

namespace zentor {

// Location numbers, 0 where the section has no end.
struct SectionEnds {
  int first = 0, second = 0;
};

// The first two locations with a node, in location order, that carry the section's number.
SectionEnds FindSectionEnds(const StudyState& study, int section);

}  // namespace zentor
