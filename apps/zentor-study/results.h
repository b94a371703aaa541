// Results of a run in files that other programs read, and as tables for people.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "mesh_reader.h"
#include "output_file.h"
#include "study_results.h"

namespace zentor::companion {

// Quantities of a node as they are exported; NaN where the run did not evaluate one, infinite for a life or a
// factor without limit.
struct ExportedResult {
  float usage, life, life_factor, factor_of_safety, biaxiality;
};
// life_factor: 1 / usage factor, the number of times that all events can be repeated.
ExportedResult Exported(const NodeResults& results, const NodeResult& node);

// One line per evaluated node: node, x, y, z, usage_factor, life, life_factor, factor_of_safety,
// biaxiality_ratio. A quantity that the run did not evaluate is an empty field.
void WriteNodeCsv(const Mesh& mesh, const NodeResults& results, OutputFile& out);
// One line per occupied bin of every matrix.
void WriteMatrixCsv(MatrixFile& matrices, OutputFile& out);
// One line per pair of the location's run.
void WritePairCsv(const LocationResult& run, OutputFile& out);

// The mesh with the results at its nodes as an unstructured grid in XML with appended raw data.
void WriteVtu(const Mesh& mesh, const NodeResults& results, OutputFile& out);
// Cell type of the visualization toolkit for an element of the mesh: by its type code and number of nodes,
// and by its shape where the code is unknown.
int VtkCellType(const Mesh& mesh, std::size_t element);

// The `count` most used nodes with their coordinates.
void PrintMostUsed(const Mesh& mesh, const NodeResults& results, std::size_t count, std::ostream& out);

}  // namespace zentor::companion
