#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "row_source.h"

namespace zentor::companion {

namespace {

class InlineRows final : public RowSource {
 public:
  InlineRows(const TableReader& table, const ConfigValue& rows, std::string_view key, const Columns& columns)
      : table_(table), rows_(rows), key_(key), columns_(columns) {
    // Columns are told apart by their place, so everything up to the last required one must be there.
    for (std::size_t i = 0; i < columns.fixed.size(); ++i) {
      if (columns.fixed[i].required) required_ = i + 1;
    }
    most_ = columns.tail.empty() ? columns.fixed.size() : required_;
  }

  bool Next() override {
    if (next_ == rows_.items.size()) return false;
    row_ = &rows_.items[next_++];
    const bool whole = row_->kind == ConfigValue::Kind::kArray && row_->items.size() >= required_ &&
                       (!columns_.tail.empty() || row_->items.size() <= most_);
    if (!whole) FailValue(*row_, "", Expected() + CommaHint());
    return true;
  }
  bool Has(std::size_t column) const override { return column < most_ && column < row_->items.size(); }
  std::string_view Text(std::size_t column) const override {
    const ConfigValue& value = row_->items[column];
    if (value.kind != ConfigValue::Kind::kText) FailValue(value, columns_.fixed[column].name, "a text");
    return value.text;
  }
  int Integer(std::size_t column, IntegerRange range) const override {
    return IntegerOf(row_->items[column], columns_.fixed[column].name, range);
  }
  float Real(std::size_t column, RealRange range) const override {
    const ConfigValue& value = row_->items[column];
    if (!value.IsNumber() || !Accepts(range, value.real)) {
      FailValue(value, columns_.fixed[column].name,
                value.IsNumber() ? WantedReal(range, value.real) : Describe(range));
    }
    return static_cast<float>(value.real);
  }
  std::size_t TailCount() const override { return row_->items.size() - most_; }
  int TailInteger(std::size_t i, IntegerRange range) const override {
    return IntegerOf(row_->items[most_ + i], fmt::format("{}{}", columns_.tail, i + 1), range);
  }
  DefinitionError Error(std::string_view message) const override {
    return {table_.file(), row_->line, fmt::format("{}: {}", RowName(), message)};
  }
  DefinitionError TableError(std::string_view message) const override {
    return {table_.file(), rows_.line, fmt::format("{} {}", table_.Name(key_), message)};
  }
  int Line() const override { return row_->line; }
  DefinitionError TableErrorAt(int, std::string_view message) const override { return TableError(message); }

 private:
  std::string RowName() const { return fmt::format("{}[{}]", table_.Name(key_), next_); }
  [[noreturn]] void FailValue(const ConfigValue& value, std::string_view column,
                              std::string_view wanted) const {
    const std::string name = column.empty() ? RowName() : fmt::format("{} {}", RowName(), column);
    throw DefinitionError(table_.file(), value.line, name, Describe(value), wanted);
  }
  int IntegerOf(const ConfigValue& value, std::string_view column, IntegerRange range) const {
    std::optional<std::int64_t> whole;
    if (value.kind == ConfigValue::Kind::kInteger) whole = value.integer;
    if (value.kind == ConfigValue::Kind::kReal) whole = WholeNumber(value.real);
    if (!whole || *whole < range.first || *whole > range.last) {
      FailValue(value, column, value.IsNumber() ? WantedInteger(range, value.real) : Describe(range));
    }
    return static_cast<int>(*whole);
  }
  std::string Expected() const {
    std::string text = "a list [";
    for (std::size_t i = 0; i < most_; ++i)
      text += fmt::format("{}{}", i == 0 ? "" : ", ", columns_.fixed[i].name);
    return text + (columns_.tail.empty() ? "]" : fmt::format(", {0}1, {0}2, ...]", columns_.tail));
  }

  // Of a row with too many items.
  std::string CommaHint() const {
    const bool surplus = columns_.tail.empty() && row_->items.size() > most_;
    const bool whole_only = std::all_of(row_->items.begin(), row_->items.end(), [](const ConfigValue& item) {
      return item.IsNumber() && std::floor(item.real) == item.real;
    });
    return surplus && whole_only ? "; a decimal comma makes two items of a number, write 1.5 for 1,5" : "";
  }

  const TableReader& table_;
  const ConfigValue& rows_;
  std::string_view key_;
  Columns columns_;
  std::size_t required_ = 0;
  std::size_t most_ = 0;
  std::size_t next_ = 0;
  const ConfigValue* row_ = nullptr;
};

}  // namespace

std::unique_ptr<RowSource> OpenInline(const TableReader& table, const ConfigValue& rows, std::string_view key,
                                      const Columns& columns) {
  return std::make_unique<InlineRows>(table, rows, key, columns);
}

std::unique_ptr<RowSource> OpenRows(TableReader& table, std::string_view key, const std::string& folder,
                                    const Columns& columns, platform::FileSystem& files) {
  constexpr std::string_view kWanted = "the path of a CSV file or a list of rows";
  const ConfigValue* value = table.Look(key);
  if (value != nullptr && value->kind == ConfigValue::Kind::kArray) {
    return OpenInline(table, *value, key, columns);
  }
  if (value == nullptr || value->kind != ConfigValue::Kind::kText) {
    table.Report(key, kWanted);
    return nullptr;
  }
  const std::string path = (std::filesystem::path(folder) / value->text).string();
  std::error_code ignored;
  const bool is_folder = std::filesystem::is_directory(path, ignored);
  if (is_folder || !files.Exists(path)) {
    // "data\nodes.csv" holds a line end.
    const bool escaped = value->text.find_first_of("\n\t\r\b\f") != std::string::npos;
    table.ReportAt(
        *value, key,
        fmt::format("an existing CSV file ({} {}){}{}", path, is_folder ? "is a folder" : "does not exist",
                    escaped ? "; " : "", escaped ? kBackslashRemedy : ""));
    return nullptr;
  }
  try {
    return OpenCsv(path, columns, files);
  } catch (const DefinitionError& error) {
    table.errors().Add(error);
  } catch (const platform::FileError& error) {
    table.ReportAt(*value, key, fmt::format("a CSV file that can be read ({})", error.what()));
  }
  return nullptr;
}

}  // namespace zentor::companion
