#include "authoring/master_table.h"

namespace zentor {

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

}  // namespace zentor
