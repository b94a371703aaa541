// Reads what the evaluation needs of the model: sizes, material data, the material of every node, the
// surface.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

ModelSizes ReadModelSizes(ModelDatabase& db);

// Throws InputFault for node and element numbers that stress results, which hold them as single-precision
// reals, cannot tell apart.
void CheckStressNumbers(const RunContext& run, const ModelSizes& sizes);

// Stops the run when there are more nodes or elements than the highest number in use.
void CheckModelSizes(RunContext& run, const ModelSizes& sizes);

// Strengths and, with a built-in S-N curve, moduli of materials 1 .. material_count. Stops the run for a
// missing strength and for properties given as temperature curves.
void ReadMaterials(RunContext& run, StudyState& study);

// The material of every node: of the weakest element around it. Stops the run when an element has a node
// above the highest one. Needs the strengths.
void ReadNodeMaterials(RunContext& run, StudyState& study);

// Flags the nodes and elements with a face on the model's surface (".FBD", docs/formats/fbd.md). Stops the
// run when the file is missing or empty; throws InputFault when it contradicts the model or its own size.
void ReadSurface(RunContext& run, StudyState& study);

// Material sets that S-N curves can belong to.
int MaterialSetCount(const StudyState& study);

}  // namespace zentor
