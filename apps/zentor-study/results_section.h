// The section of a location as a table.
#pragma once

#include <string>

#include "output_file.h"

namespace zentor::companion {

// One line per load case of the study's loadings and point of the path: load_case, point, distance, x, y,
// node or element, the four stress components, their membrane parts and, at the two ends, their bending
// parts, all in the axes of the model and without the loadings' factors. Membrane plus bending at the
// location's end is what a run evaluates. location 0: the activated one. Throws CommandFailure when the study
// has no such section, InputFault for files that cannot be used.
void WriteSectionCsv(const std::string& study_base, int location, OutputFile& out);

}  // namespace zentor::companion
