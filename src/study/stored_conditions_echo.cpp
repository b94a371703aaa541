#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "database/edit.h"
#include "study/definition_echo.h"
#include "study/definition_layout.h"
#include "study/stored_conditions.h"

namespace zentor {
namespace {

constexpr std::string_view kByCommand = "B Y    C O M M A N D    F T S T R [ E A D ]:";

// Every stored record, in record order.
struct StoredRecord {
  int location = 0;
  int loading = 0;
  bool listed = false;  // its location is listed
  StoredState condition;
};

std::vector<StoredRecord> ReadRecords(ModelDatabase& db) {
  std::vector<StoredRecord> records;
  for (int l = 1; l <= kMaxLocations; ++l) {
    const bool listed = DbGetInt(db, DbTable::kFtc, ftc::kLocationSelection + l, 2) == l;
    for (int k = 1; k <= kMaxLoadings; ++k) {
      StoredState condition = ReadStoredState(db, l, k);
      if (condition.exists) records.push_back({l, k, listed, condition});
    }
  }
  return records;
}

struct Block {
  std::function<bool(const StoredState&)> has;
  std::function<void(int loading)> write_head;  // before the first location of a loading
  std::function<void(const StoredRecord&)> write_row;
};

// Rows by loading, then by location. Returns whether there were any.
bool WriteBlock(const EventTable& table, std::span<const StoredRecord> records, const Block& block) {
  bool any = false;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    if (table.loadings[k].event == 0) continue;
    bool first = true;
    for (const StoredRecord& record : records) {
      if (record.loading != k || !record.listed || !block.has(record.condition)) continue;
      if (first) block.write_head(k);
      block.write_row(record);
      first = false;
      any = true;
    }
  }
  return any;
}

void WriteLoadingHead(TextRecordFile& listing, std::string_view text, int loading) {
  listing.Blank(2);
  listing.Line(Edit().Text(text).I(3, loading).Text(":").str());
  listing.Blank();
}

void WriteStressRow(TextRecordFile& listing, int location, std::span<const float> stresses) {
  Edit line;
  line.I(3, location);
  for (const float stress : stresses) line.X(2).E(8, 2, stress);
  listing.Line(line.str());
}

void WriteTitle(TextRecordFile& listing, std::span<const StoredRecord> records) {
  bool actual = false;
  for (const StoredRecord& record : records) {
    actual = actual || record.condition.has_linearised || record.condition.has_temperature;
  }
  listing.Blank(3);
  listing.Line(actual ? "A C T U A L   S T R E S S E S   S T O R E D"
                      : "S T R E S S   C O N D I T I O N S   S T O R E D");
  listing.Line(kByCommand);
}

void WriteStresses(TextRecordFile& listing, const EventTable& table, std::span<const StoredRecord> records) {
  const bool any = WriteBlock(
      table, records,
      {[](const StoredState& c) { return c.has_stress; },
       [&listing](int loading) {
         WriteLoadingHead(listing, " Stress Conditions For Loading ", loading);
         listing.Line("Locat.  SX       SY        SZ      TAU-XY    TAU-XZ    TAU-YZ");
         listing.Line("---- --------  --------  --------  --------  --------  --------");
       },
       [&listing](const StoredRecord& r) { WriteStressRow(listing, r.location, r.condition.stress); }});
  if (any) return;
  listing.Blank(2);
  listing.Line("      (no stress conditions are stored)      ");
}

void WriteLinearised(TextRecordFile& listing, const EventTable& table,
                     std::span<const StoredRecord> records) {
  listing.Blank(3);
  listing.Line("L I N E A R I Z E D   S T R E S S E S   S T O R E D");
  listing.Line(kByCommand);
  WriteBlock(
      table, records,
      {[](const StoredState& c) { return c.has_linearised; },
       [&listing](int loading) {
         WriteLoadingHead(listing, " Stress Conditions For Loading ", loading);
         listing.Line("Locat.  SX       SY        SZ      TAU-XY");
         listing.Line("---- --------  --------  --------  -------");
       },
       [&listing](const StoredRecord& r) { WriteStressRow(listing, r.location, r.condition.linearised); }});
}

void WriteTemperatures(TextRecordFile& listing, const EventTable& table,
                       std::span<const StoredRecord> records) {
  listing.Blank(3);
  listing.Line("N O D A L   T E M P E R A T U R E S   S T O R E D");
  const bool any =
      WriteBlock(table, records,
                 {[](const StoredState& c) { return c.has_temperature; },
                  [&listing](int loading) {
                    WriteLoadingHead(listing, "  Nodal Temperatures For Loading ", loading);
                    listing.Line(" Location     Nodal Temperature");
                    listing.Line(" --------     -----------------");
                  },
                  [&listing](const StoredRecord& r) {
                    listing.Line(Edit().X(3).I(3, r.location).X(12).E(12, 3, r.condition.temperature).str());
                  }});
  if (any) return;
  listing.Blank(2);
  listing.Line("      (no nodal temperatures are stored)");
}

}  // namespace

void EchoStoredConditions(RunContext& run, const StudyState& study) {
  TextRecordFile& listing = run.listing;
  const std::vector<StoredRecord> records = ReadRecords(run.database);
  WriteTitle(listing, records);
  if (records.empty()) {
    listing.ListDirected("");
    listing.ListDirected(" No stress conditions are defined by command FTSTR");
    return;
  }
  WriteStresses(listing, study.definition, records);
  if (study.sm_t.count > 0) WriteLinearised(listing, study.definition, records);
  WriteTemperatures(listing, study.definition, records);
}

}  // namespace zentor
