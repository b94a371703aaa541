// Rows of numbers for the long tables of a definition: from a CSV file or from a list in the TOML file
// itself.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "config_reader.h"
#include "platform/files.h"

namespace zentor::companion {

// A column that a table may have. Inline rows hold the columns in this order.
struct Column {
  std::string_view name;
  bool required = true;
};

// The columns of a table. With a tail ("n"), further columns n1, n2, ... follow in which a row may end early;
// inline rows of such a table hold the required columns and the tail only.
struct Columns {
  std::span<const Column> fixed;
  std::string_view tail = {};
};

// Walks over rows; fields are asked for by the column's place in Columns::fixed.
class RowSource {
 public:
  virtual ~RowSource() = default;
  // False after the last row. Throws DefinitionError for a row that is not made as it should; the next call
  // goes on behind it.
  virtual bool Next() = 0;
  // Whether the column is there and not empty in this row.
  virtual bool Has(std::size_t column) const = 0;
  virtual int Integer(std::size_t column, IntegerRange range) const = 0;
  virtual float Real(std::size_t column, RealRange range) const = 0;
  virtual std::string_view Text(std::size_t column) const = 0;
  virtual std::size_t TailCount() const = 0;
  virtual int TailInteger(std::size_t i, IntegerRange range) const = 0;
  // "FILE:LINE: MESSAGE" at the current row.
  virtual DefinitionError Error(std::string_view message) const = 0;
  // The same for the table as a whole.
  virtual DefinitionError TableError(std::string_view message) const = 0;
  // The line of the current row in its file.
  virtual int Line() const = 0;
  // As TableError, in a CSV file at a line that was told before.
  virtual DefinitionError TableErrorAt(int line, std::string_view message) const = 0;
  [[noreturn]] void Fail(std::string_view message) const { throw Error(message); }
};

// Calls `read` at every row. A row with a mistake is reported and left out: `read` should throw before it
// stores anything. False when there was one.
template <typename Read>
bool ReadRows(RowSource& rows, DefinitionErrors& errors, Read read) {
  std::size_t faults = 0;
  for (bool more = true; more;) {
    try {
      more = rows.Next();
      if (more) read();
    } catch (const DefinitionError& error) {
      errors.AddOfTable(error, ++faults);
    }
  }
  return faults == 0;
}

// The rows that `key` of the table names: a text is the path of a CSV file (relative to the folder), a list
// holds the rows themselves. Null after a reported error: the key is missing or neither of the two, or the
// file cannot be read or has another header line.
std::unique_ptr<RowSource> OpenRows(TableReader& table, std::string_view key, const std::string& folder,
                                    const Columns& columns, platform::FileSystem& files);

// Throws DefinitionError for a header line that does not name the columns, FileError.
std::unique_ptr<RowSource> OpenCsv(const std::string& path, const Columns& columns,
                                   platform::FileSystem& files);
// The reader must outlive the source.
std::unique_ptr<RowSource> OpenInline(const TableReader& table, const ConfigValue& rows, std::string_view key,
                                      const Columns& columns);

}  // namespace zentor::companion
