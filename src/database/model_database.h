// The model database: ten table files of a study, entities addressed by id, fields of 4 bytes addressed by
// number. The file layout is described in docs/formats/table.md and its words are named in
// database/table_format.h.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "database/file_units.h"
#include "database/table_format.h"

namespace zentor {

// Table numbers, in catalogue order.
enum class DbTable : int {
  kMas = 1,   // master control records
  kNod = 2,   // nodes
  kCsy = 3,   // coordinate systems
  kEle = 4,   // elements
  kEgr = 5,   // element groups
  kRlc = 6,   // opened and closed with the others only
  kMat = 7,   // material properties
  kPl1 = 8,   // per-node result values of the static solution
  kFtc = 9,   // fatigue definition
  kSnc = 10,  // S-N curves
};
inline constexpr int kTableCount = 10;
inline constexpr std::array<Extension, kTableCount> kTableExtensions = {
    ".MAS", ".NOD", ".CSY", ".ELE", ".EGR", ".RLC", ".MAT", ".PL1", ".FTC", ".SNC"};

class TableFile;  // one open table (database/table_file.h)

// The tables of one run. A table is missing (its file was not found or empty when the study tables were
// opened; every operation answers zero), closed, or open; it opens on the first operation. A file that is
// gone by then is created without entities, and the user is warned (message 9095). Destroying the database
// closes every table as DbCloseTable with mode 0 does. Solver thread only.
struct ModelDatabase {
  explicit ModelDatabase(FileUnits& file_units);
  ModelDatabase(const ModelDatabase&) = delete;
  ModelDatabase& operator=(const ModelDatabase&) = delete;
  ~ModelDatabase();

  FileUnits& units;
  std::array<std::unique_ptr<TableFile>, kTableCount> tables;  // null while closed
  std::array<bool, kTableCount> present{};                     // found by the start-up scan
  std::array<bool, kTableCount> zero_bytes{};                  // files that it found without content
  std::array<table_format::Geometry, kTableCount> scanned{};   // of tables that are present
  std::array<std::string, kTableCount> paths;                  // as the start-up scan found them
};

// Scans the headers of the ten tables. Throws InputFault when a header cannot be true, FileError when the
// system fails; the first of several faults, once all sound tables can be used.
void DbOpenStudyTables(ModelDatabase& db);

// Fields are numbered as callers see them: for ".MAS" field k is record field k + 1, for all other tables
// field 1 is the id itself. Missing table, empty table or absent entity: zero. Field numbers outside the
// record: zero. All of these throw InputFault when the file contradicts itself and FileError when the system
// fails.
std::int32_t DbGetInt(ModelDatabase& db, DbTable table, int id, int field);
float DbGetReal(ModelDatabase& db, DbTable table, int id, int field);
// Copies out.size() consecutive fields from `first`; zero-filled in the cases above.
void DbGetInts(ModelDatabase& db, DbTable table, int id, int first, std::span<std::int32_t> out);
void DbGetReals(ModelDatabase& db, DbTable table, int id, int first, std::span<float> out);

// Record field 1: creates the entity when it does not exist and the table has room (the value is not stored).
// Any other field: stores the value into the existing entity. Returns whether the entity exists afterwards
// and the field lies inside its record.
bool DbPutInt(ModelDatabase& db, DbTable table, int id, int field, std::int32_t value);
bool DbPutReal(ModelDatabase& db, DbTable table, int id, int field, float value);

int DbSlotOf(ModelDatabase& db, DbTable table, int id);  // 0 when absent
int DbMaxId(ModelDatabase& db, DbTable table);           // highest id in use, 0 when missing
int DbCount(ModelDatabase& db, DbTable table);           // live entities, 0 when missing
// Fields of a data record, the id among them; 0 when missing.
int DbFieldCount(ModelDatabase& db, DbTable table);
// Directory length: the largest id the table can hold, 0 when missing.
int DbCapacity(ModelDatabase& db, DbTable table);

enum class CloseMode { kWriteHeader = 0, kKeepHeader = 1 };
void DbCloseTable(ModelDatabase& db, DbTable table, CloseMode mode);
// Writes what closing would write (buffered record, header, descriptors) and leaves every table open. A table
// that cannot be written does not keep the others from being written; the first error is thrown at the end.
void DbFlushAll(ModelDatabase& db);

}  // namespace zentor
