// Study files that are not tables: load histories ".FLH", nodal temperatures ".HTO", surface faces ".FBD" and
// the list of studies ".FTS". Their formats are described in docs/formats/. Each function returns the whole
// file.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "authoring/study_definition.h"

namespace zentor {

// Histories have times all or none. Throws std::length_error when the file would outgrow its 32-bit word
// numbers.
std::vector<std::byte> HistoryFileBytes(std::span<const AuthoredHistory> histories);
// One block of records per load case, one record per node of the model in ascending order. Every load case
// must have node_numbers.size() values.
std::vector<std::byte> TemperatureFileBytes(std::span<const std::int32_t> node_numbers,
                                            std::span<const NodalTemperatures> temperatures);
// A face of more than 7 nodes is written as several records, since readers take at most 7 nodes from one.
std::vector<std::byte> SurfaceFileBytes(std::span<const SurfaceFace> faces);
// UTF-16 little-endian with a byte-order mark; lines end in a carriage return and a line feed.
std::vector<std::byte> StudyListBytes(std::span<const std::string> base_names);

}  // namespace zentor
