#include <fmt/format.h>
#include <fmt/ostream.h>

#include <array>
#include <bit>

#include "commands.h"
#include "platform/text.h"
#include "show.h"

namespace zentor::companion {

namespace {

constexpr std::size_t kSummaryFields = 6;
constexpr int kSummaryScan = 128;  // fields looked at for the summary of an entity

// Fields as callers number them: ".MAS" hides the id.
int FieldCount(DbTable table, const TableFile& file) {
  return file.geometry().field_count - (table == DbTable::kMas ? 1 : 0);
}

std::vector<std::int32_t> EntityFields(StudyTables& tables, DbTable table, int id, int count) {
  std::vector<std::int32_t> fields(static_cast<std::size_t>(count));
  tables.Ints(table, id, 1, fields);
  return fields;
}

std::string RealView(std::int32_t word) { return fmt::format("{}", std::bit_cast<float>(word)); }

void ShowHeader(const std::string& path, const TableFile& file, std::ostream& out) {
  const table_format::Geometry& g = file.geometry();
  fmt::print(out, "{}\n", path);
  fmt::print(out, "  record length {} bytes, {} fields per record, room for ids 1 to {}\n", g.record_length,
             g.field_count, g.directory_length);
  fmt::print(out, "  {} entities, highest id {}\n\n", file.live_count(), file.highest_id());
}

std::string TitleText(StudyTables& tables) {
  return fmt::format("\"{}\"", platform::Printable(ReadStudySettings(tables).title));
}

// The first known fields of an entity that are not zero.
std::string Summary(StudyTables& tables, DbTable table, int id, int field_count, TableLayout layout) {
  if (table == DbTable::kMas && id == 1) return TitleText(tables);
  std::string text;
  std::size_t shown = 0;
  const auto fields = EntityFields(tables, table, id, std::min(field_count, kSummaryScan));
  for (int field = table == DbTable::kMas ? 1 : 2; field <= static_cast<int>(fields.size()); ++field) {
    const std::int32_t word = fields[static_cast<std::size_t>(field) - 1];
    if (word == 0) continue;
    if (++shown > kSummaryFields) return text + "; ...";
    const FieldMeaning meaning = MeaningOf(table, id, field, layout);
    const std::string name = meaning.name.empty() ? fmt::format("field {}", field) : meaning.name;
    text += fmt::format("{}{} = {}", text.empty() ? "" : "; ", name.substr(0, name.find(" (")),
                        ValueText(meaning.type, word));
  }
  return text;
}

void ListEntities(StudyTables& tables, DbTable table, const ShowRequest& request, TableLayout layout,
                  std::ostream& out) {
  const TableFile& file = *tables.Find(table);
  RowLimit rows(request.limit);
  int passed = 0, empty = 0;
  for (int id = 1; id <= file.highest_id() && !rows.Full(); ++id) {
    if (file.SlotOf(id) == 0) continue;
    ++passed;
    const std::string name = EntityName(table, id, layout);
    const std::string summary = Summary(tables, table, id, FieldCount(table, file), layout);
    if (name.empty() && summary.empty()) {
      ++empty;
    } else if (rows.Next()) {
      fmt::print(out, "{:>8}  {:<44}  {}\n", id, name, summary);
    }
  }
  if (empty > 0) fmt::print(out, "  {} entities without content\n", empty);
  if (passed < file.live_count()) {
    fmt::print(out, "  ... {} more entities (--all shows them)\n", file.live_count() - passed);
  }
}

void ShowEntity(StudyTables& tables, DbTable table, int id, const ShowRequest& request, TableLayout layout,
                std::ostream& out) {
  const TableFile& file = *tables.Find(table);
  const std::string name = EntityName(table, id, layout);
  fmt::print(out, "entity {}{}{}, slot {}\n\n", id, name.empty() ? "" : ": ", name, file.SlotOf(id));
  fmt::print(out, "{:>6}  {:>12}  {:>16}  {}\n", "field", "integer", "real", "name");
  const auto fields = EntityFields(tables, table, id, FieldCount(table, file));
  std::uint64_t total = 0;
  RowLimit rows(request.limit);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const int field = static_cast<int>(i) + 1;
    const FieldMeaning meaning = MeaningOf(table, id, field, layout);
    if (fields[i] == 0 && request.limit != kNoLimit) continue;
    ++total;
    if (!rows.Next()) continue;
    const std::string character =
        meaning.type == FieldType::kCharacter ? ": " + ValueText(meaning.type, fields[i]) : "";
    fmt::print(out, "{:>6}  {:>12}  {:>16}  {}{}\n", field, fields[i], RealView(fields[i]), meaning.name,
               character);
  }
  if (total == 0) fmt::print(out, "  (all fields are 0)\n");
  rows.End(out, total, "fields");
}

void ShowField(StudyTables& tables, DbTable table, int id, int field, TableLayout layout, std::ostream& out) {
  const std::int32_t word = tables.Int(table, id, field);
  const FieldMeaning meaning = MeaningOf(table, id, field, layout);
  fmt::print(out, "{}  {}  {}\n", word, RealView(word), meaning.name);
}

}  // namespace

TableLayout TableLayoutOf(const StudySettings& settings) {
  return {IsMultiStudy(settings.properties), IsVariableAmplitude(settings.properties)};
}

void ShowTable(StudyTables& tables, DbTable table, const ShowRequest& request, std::ostream& out) {
  const std::string path = tables.Path(kTableExtensions[static_cast<std::size_t>(table) - 1]);
  const TableFile* file = tables.Find(table);
  if (file == nullptr) {
    const bool exists = platform::NativeFileSystem().Exists(path);
    throw CommandFailure(path + (exists ? ": holds no table" : ": no such file"));
  }
  const TableLayout layout = TableLayoutOf(ReadStudySettings(tables));
  if (!request.Chosen(0)) {
    ShowHeader(path, *file, out);
    return ListEntities(tables, table, request, layout, out);
  }
  const int id = request.numbers[0];
  if (!tables.Has(table, id)) throw CommandFailure(fmt::format("{}: no entity {}", path, id));
  if (!request.Chosen(1)) return ShowEntity(tables, table, id, request, layout, out);
  const int field = request.numbers[1];
  const int fields = FieldCount(table, *file);
  if (field < 1 || field > fields) {
    throw CommandFailure(
        fmt::format("{}: no field {}, the records have fields 1 to {}", path, field, fields));
  }
  ShowField(tables, table, id, field, layout, out);
}

}  // namespace zentor::companion
