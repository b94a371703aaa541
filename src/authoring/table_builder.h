// Builds the bytes of a table file of the model database in memory (docs/formats/table.md).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "database/table_format.h"

namespace zentor {

// A table under construction. Fields are record fields: field 1 is the entity's id and is set by its
// creation, so callers set fields 2 .. fields. Entities get their slots in order of creation.
class TableBuilder {
 public:
  // fields: per data record, 1 .. 1650; capacity: the largest id the table can hold, at least 1. Throws
  // std::out_of_range.
  TableBuilder(int fields, int capacity);

  // Makes room for that many entities ahead.
  void Reserve(std::size_t entities);
  // No effect when the entity exists. Throws std::out_of_range for an id outside 1 .. capacity.
  void Create(int id);
  // Stores a value, creating the entity when it is new. Throws std::out_of_range for an id outside 1 ..
  // capacity or a field outside 2 .. fields.
  void SetInt(int id, int record_field, std::int32_t value);
  void SetReal(int id, int record_field, float value);

  // What was stored; 0 for an entity that does not exist. Throws std::out_of_range for a bad field.
  std::int32_t IntOf(int id, int record_field) const;
  bool Has(int id) const { return id >= 1 && id <= capacity() && SlotOf(id) != 0; }
  int fields() const { return geometry_.field_count; }
  int capacity() const { return geometry_.directory_length; }
  int count() const { return live_; }

  // The whole file.
  std::vector<std::byte> Bytes() const;
  // The file in two parts, for large tables: header, descriptors and directory; then the data records.
  std::vector<std::byte> Head() const;
  std::span<const std::byte> Records() const { return records_; }

 private:
  std::int32_t SlotOf(int id) const { return directory_[static_cast<std::size_t>(id) - 1]; }
  std::size_t Offset(int id, int record_field) const;
  void CheckField(int record_field) const;

  table_format::Geometry geometry_;
  std::vector<std::int32_t> directory_;
  std::vector<std::byte> records_;
  int live_ = 0;
  int highest_id_ = 0;
};

}  // namespace zentor
