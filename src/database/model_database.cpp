#include "database/model_database.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>

#include "database/bytes.h"
#include "database/table_file.h"
#include "platform/text.h"
#include "services/message_arguments.h"

namespace zentor {

namespace {

constexpr int kTableVanished = 9095;  // argument: path

std::size_t IndexOf(DbTable table) { return static_cast<std::size_t>(table) - 1; }

// A file that the start-up scan found is gone. What it held is lost to this run, which must not pass for one
// on the whole study.
void CreateAgain(ModelDatabase& db, std::size_t i) {
  const int words = db.scanned[i].record_length / table_format::kFieldBytes;
  const int fields = std::min(words, table_format::kMaxFields);
  const table_format::Geometry geometry = {.record_length = db.scanned[i].record_length,
                                           .directory_length = db.scanned[i].directory_length,
                                           .field_count = fields};
  if (!CreateEmptyTable(db.units.files, db.paths[i], geometry)) return;
  db.units.services.ShowMessage(kTableVanished, TextArguments(platform::ToWide(db.paths[i])),
                                Severity::kWarning);
}

// The open table, opened now when it is closed; null when it is missing.
TableFile* Opened(ModelDatabase& db, DbTable table) {
  const std::size_t i = IndexOf(table);
  if (!db.present[i]) return nullptr;
  if (!db.tables[i]) {
    if (!db.units.files.Exists(db.paths[i])) CreateAgain(db, i);
    db.tables[i] = std::make_unique<TableFile>(db.units.files, db.paths[i]);
  }
  return db.tables[i].get();
}

// ".MAS" hides the id: its callers count from the field behind it.
std::int64_t RecordField(DbTable table, int field) {
  return std::int64_t{field} + (table == DbTable::kMas ? 1 : 0);
}

void ReadFields(ModelDatabase& db, DbTable table, int id, int first, std::span<std::byte> out) {
  if (TableFile* file = Opened(db, table)) return file->Read(id, RecordField(table, first), out);
  std::fill(out.begin(), out.end(), std::byte{0});
}

using FieldBytes = std::array<std::byte, table_format::kFieldBytes>;

FieldBytes ReadField(ModelDatabase& db, DbTable table, int id, int field) {
  FieldBytes bytes;
  ReadFields(db, table, id, field, bytes);
  return bytes;
}

bool WriteField(ModelDatabase& db, DbTable table, int id, int field, const FieldBytes& value) {
  TableFile* file = Opened(db, table);
  return file != nullptr && file->Write(id, RecordField(table, field), value);
}

}  // namespace

ModelDatabase::ModelDatabase(FileUnits& file_units) : units(file_units) {}

ModelDatabase::~ModelDatabase() {
  for (const auto& table : tables) {
    try {
      if (table) table->Flush();
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): nobody is left who could be told
    }
  }
}

void DbOpenStudyTables(ModelDatabase& db) {
  std::exception_ptr first_fault;
  for (std::size_t i = 0; i < kTableCount; ++i) {
    DbCloseTable(db, static_cast<DbTable>(i + 1), CloseMode::kWriteHeader);
    db.paths[i] = db.units.services.StudyFileName(kTableExtensions[i]);
    db.present[i] = db.zero_bytes[i] = false;
    try {
      const TableScan scan = ScanTable(db.units.files, db.paths[i]);
      db.present[i] = scan.present;
      db.zero_bytes[i] = scan.zero_bytes;
      db.scanned[i] = scan.geometry;
    } catch (const std::exception&) {
      if (!first_fault) first_fault = std::current_exception();
    }
  }
  if (first_fault) std::rethrow_exception(first_fault);
}

std::int32_t DbGetInt(ModelDatabase& db, DbTable table, int id, int field) {
  return LoadInt(ReadField(db, table, id, field).data());
}

float DbGetReal(ModelDatabase& db, DbTable table, int id, int field) {
  return LoadReal(ReadField(db, table, id, field).data());
}

void DbGetInts(ModelDatabase& db, DbTable table, int id, int first, std::span<std::int32_t> out) {
  ReadFields(db, table, id, first, std::as_writable_bytes(out));
}

void DbGetReals(ModelDatabase& db, DbTable table, int id, int first, std::span<float> out) {
  ReadFields(db, table, id, first, std::as_writable_bytes(out));
}

bool DbPutInt(ModelDatabase& db, DbTable table, int id, int field, std::int32_t value) {
  if (RecordField(table, field) == 1) {
    TableFile* file = Opened(db, table);
    return file != nullptr && file->Create(id);
  }
  FieldBytes bytes;
  StoreInt(bytes.data(), value);
  return WriteField(db, table, id, field, bytes);
}

bool DbPutReal(ModelDatabase& db, DbTable table, int id, int field, float value) {
  FieldBytes bytes;
  StoreReal(bytes.data(), value);
  return WriteField(db, table, id, field, bytes);
}

int DbSlotOf(ModelDatabase& db, DbTable table, int id) {
  const TableFile* file = Opened(db, table);
  return file != nullptr ? file->SlotOf(id) : 0;
}

int DbMaxId(ModelDatabase& db, DbTable table) {
  const TableFile* file = Opened(db, table);
  return file != nullptr ? file->highest_id() : 0;
}

int DbCount(ModelDatabase& db, DbTable table) {
  const TableFile* file = Opened(db, table);
  return file != nullptr ? file->live_count() : 0;
}

int DbFieldCount(ModelDatabase& db, DbTable table) {
  const TableFile* file = Opened(db, table);
  return file != nullptr ? file->geometry().field_count : 0;
}

int DbCapacity(ModelDatabase& db, DbTable table) {
  const TableFile* file = Opened(db, table);
  return file != nullptr ? file->geometry().directory_length : 0;
}

void DbCloseTable(ModelDatabase& db, DbTable table, CloseMode mode) {
  std::unique_ptr<TableFile>& file = db.tables[IndexOf(table)];
  if (!file) return;
  if (mode == CloseMode::kWriteHeader) {
    file->Flush();
  } else {
    file->FlushRecord();
  }
  file.reset();
}

void DbFlushAll(ModelDatabase& db) {
  std::exception_ptr first_error;
  for (const auto& table : db.tables) {
    try {
      if (table) table->Flush();
    } catch (const std::exception&) {  // the other tables may lie on a disk that still takes them
      if (!first_error) first_error = std::current_exception();
    }
  }
  if (first_error) std::rethrow_exception(first_error);
}

}  // namespace zentor
