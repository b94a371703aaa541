#include "authoring/table_builder.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <string>

#include "database/bytes.h"

namespace zentor {

namespace {

[[noreturn]] void Reject(const char* what, int value, int first, int last) {
  throw std::out_of_range(std::string(what) + ' ' + std::to_string(value) + " is outside " +
                          std::to_string(first) + " .. " + std::to_string(last));
}

}  // namespace

TableBuilder::TableBuilder(int fields, int capacity) {
  if (fields < 1 || fields > table_format::kMaxFields) {
    Reject("number of fields", fields, 1, table_format::kMaxFields);
  }
  if (capacity < 1) throw std::out_of_range("capacity of a table below 1");
  geometry_ = {table_format::RecordLengthFor(fields), capacity, fields};
  directory_.assign(static_cast<std::size_t>(capacity), 0);
}

void TableBuilder::Reserve(std::size_t entities) {
  records_.reserve(entities * static_cast<std::size_t>(geometry_.record_length));
}

void TableBuilder::Create(int id) {
  if (id < 1 || id > capacity()) Reject("id", id, 1, capacity());
  if (SlotOf(id) != 0) return;
  const std::size_t start = records_.size();
  records_.resize(start + static_cast<std::size_t>(geometry_.record_length));
  StoreInt(records_.data() + start, id);
  directory_[static_cast<std::size_t>(id) - 1] = ++live_;
  highest_id_ = std::max(highest_id_, id);
}

void TableBuilder::SetInt(int id, int record_field, std::int32_t value) {
  CheckField(record_field);
  Create(id);
  StoreInt(records_.data() + Offset(id, record_field), value);
}

void TableBuilder::SetReal(int id, int record_field, float value) {
  SetInt(id, record_field, std::bit_cast<std::int32_t>(value));
}

std::int32_t TableBuilder::IntOf(int id, int record_field) const {
  CheckField(record_field);
  return Has(id) ? LoadInt(records_.data() + Offset(id, record_field)) : 0;
}

std::vector<std::byte> TableBuilder::Head() const {
  using namespace table_format;
  std::vector<std::byte> head(geometry_.RecordOffset(geometry_.FirstDataRecord()));
  const auto set_word = [&head](int word, std::int32_t value) {
    StoreInt(head.data() + WordOffset(word), value);
  };
  set_word(kRecordLength, geometry_.record_length);
  set_word(kDirectoryLength, geometry_.directory_length);
  set_word(kFieldCount, geometry_.field_count);
  set_word(kLiveCount, live_);
  set_word(kHighestId, highest_id_);
  std::byte* descriptor = head.data() + geometry_.RecordOffset(2);
  for (int field = 0; field < geometry_.field_count; ++field, descriptor += kDescriptorBytes) {
    StoreInt(descriptor, kFieldKind);
    StoreInt(descriptor + kFieldBytes, kFieldBytes);
  }
  const auto entries = std::as_bytes(std::span(directory_));
  std::copy(entries.begin(), entries.end(),
            head.begin() + static_cast<std::ptrdiff_t>(geometry_.DirectoryOffset(1)));
  return head;
}

std::vector<std::byte> TableBuilder::Bytes() const {
  std::vector<std::byte> file = Head();
  file.insert(file.end(), records_.begin(), records_.end());
  return file;
}

std::size_t TableBuilder::Offset(int id, int record_field) const {
  return (static_cast<std::size_t>(SlotOf(id)) - 1) * static_cast<std::size_t>(geometry_.record_length) +
         (static_cast<std::size_t>(record_field) - 1) * table_format::kFieldBytes;
}

void TableBuilder::CheckField(int record_field) const {
  if (record_field < 2 || record_field > fields()) Reject("field", record_field, 2, fields());
}

}  // namespace zentor
