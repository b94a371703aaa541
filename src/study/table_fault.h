// A table field whose value cannot be used.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>

#include "services/faults.h"
#include "study/run_context.h"

namespace zentor {

// Throws InputFault for a field of an entity, numbered as callers of the model database number it.
[[noreturn]] inline void ThrowFieldFault(const RunContext& run, DbTable table, int entity, int field,
                                         std::int64_t found, const std::string& wanted) {
  throw InputFault(run.database.paths[static_cast<std::size_t>(table) - 1],
                   "entity " + std::to_string(entity) + ", field " + std::to_string(field),
                   std::to_string(found), wanted);
}

// Throws InputFault for a real that is not a finite number.
inline void CheckFieldFinite(const RunContext& run, DbTable table, int entity, int field, double value) {
  if (std::isfinite(value)) return;
  throw InputFault(run.database.paths[static_cast<std::size_t>(table) - 1],
                   "entity " + std::to_string(entity) + ", field " + std::to_string(field),
                   std::to_string(value), "a finite number");
}

}  // namespace zentor
