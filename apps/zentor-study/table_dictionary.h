// Names of the entities and fields of the model database, for people.
#pragma once

#include <cstdint>
#include <string>

#include "database/model_database.h"

namespace zentor::companion {

// What decides the meaning of entities that have several.
struct TableLayout {
  bool multi_study = false;
  bool variable_amplitude = false;
};

enum class FieldType { kUnknown, kInteger, kReal, kCharacter };

struct FieldMeaning {
  std::string name;  // empty when the field has no known meaning
  FieldType type = FieldType::kUnknown;
};

// "event 3", "location 2"; empty when the entity has no known meaning.
std::string EntityName(DbTable table, int id, TableLayout layout);
// Fields as the study input numbers them (".MAS" field k is record field k + 1).
FieldMeaning MeaningOf(DbTable table, int id, int field, TableLayout layout);
// The field's value by its type: a number, a character, or nothing for a field of unknown type that is 0.
std::string ValueText(FieldType type, std::int32_t word);

}  // namespace zentor::companion
