// The faces on the surface of a model.
#pragma once

#include "input_context.h"

namespace zentor::companion {

// Key `surface` of [model]: "auto" (the faces that belong to one element only), the path of a CSV file or a
// list of rows (element, n1, n2, ...). Without a sound model the key is only looked at.
void ReadSurface(InputContext& context, TableReader& model, bool sound);

// The faces of solids that no other element shares; plane elements, shells and layered elements whole.
std::vector<SurfaceFace> FindSurface(const StudyModel& model);

}  // namespace zentor::companion
