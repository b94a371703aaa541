#include "authoring/master_table.h"

#include <array>

#include "database/bytes.h"

namespace zentor {

namespace {

constexpr MasterField kMark = {40, 91};
constexpr std::array<std::int32_t, 4> kMarkWords = {0x746e655a, 0x532d726f, 0x79647574, 0x3130302d};

}  // namespace

TableBuilder NewMasterTable() {
  TableBuilder table(kMasterFields, kMasterCapacity);
  table.Reserve(kMasterEntities);
  for (int entity = 1; entity <= kMasterEntities; ++entity) table.Create(entity);
  return table;
}

void SetMaster(TableBuilder& table, MasterField field, std::int32_t value) {
  table.SetInt(field.entity, field.field + 1, value);
}

void SetMasterReal(TableBuilder& table, MasterField field, float value) {
  table.SetReal(field.entity, field.field + 1, value);
}

void SetMasterTitle(TableBuilder& table, std::string_view title) {
  for (std::size_t i = 0; i < master::kTitleLength; ++i) {
    const auto character = static_cast<unsigned char>(i < title.size() ? title[i] : ' ');
    SetMaster(table, {master::kTitleEntity, static_cast<int>(i) + 1}, character);
  }
}

void MarkAsBuilt(TableBuilder& table) {
  int field = kMark.field;
  for (const std::int32_t word : kMarkWords) SetMaster(table, {kMark.entity, field++}, word);
}

bool IsMarkedAsBuilt(std::span<const std::byte> master_file) {
  constexpr table_format::Geometry kGeometry = {table_format::RecordLengthFor(kMasterFields), kMasterCapacity,
                                                kMasterFields};
  constexpr std::size_t kPlace =
      kGeometry.SlotOffset(kMark.entity) + table_format::WordOffset(kMark.field + 1);
  if (master_file.size() < kPlace + sizeof kMarkWords) return false;
  const std::byte* place = master_file.data() + kPlace;
  for (const std::int32_t word : kMarkWords) {
    if (LoadInt(place) != word) return false;
    place += sizeof word;
  }
  return true;
}

}  // namespace zentor
