#include "config_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace zentor::companion {

using Kind = ConfigValue::Kind;

std::string Describe(IntegerRange range) {
  if (range.last == std::numeric_limits<std::int32_t>::max()) {
    return fmt::format("a whole number of at least {}", range.first);
  }
  return fmt::format("a whole number from {} to {}", range.first, range.last);
}

std::string Describe(RealRange range) {
  std::string text = "a number";
  if (std::isfinite(range.above)) text += fmt::format(" above {}", range.above);
  if (std::isfinite(range.at_least)) text += fmt::format(" of at least {}", range.at_least);
  if (std::isfinite(range.below)) text += fmt::format(" and below {}", range.below);
  if (text.size() == std::string_view("a number").size()) text = "a finite number up to 3.4e38";
  return text;
}

bool Accepts(RealRange range, double value) {
  return std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max()) && value > range.above &&
         value >= range.at_least && value < range.below;
}

const ConfigValue* TableReader::Look(std::string_view key) {
  if (std::find(known_.begin(), known_.end(), key) == known_.end()) known_.push_back(key);
  return table_->Find(key);
}

std::string TableReader::Name(std::string_view key) const {
  return path_.empty() ? std::string(key) : fmt::format("{}.{}", path_, key);
}

void TableReader::FailMissing(std::string_view key, std::string_view wanted) const {
  throw DefinitionError(file_, table_->line, Name(key), "missing", wanted);
}

void TableReader::FailAt(const ConfigValue& value, std::string_view key, std::string_view wanted) const {
  throw DefinitionError(file_, value.line, Name(key), Describe(value), wanted);
}

void TableReader::Fail(std::string_view key, std::string_view wanted) {
  const ConfigValue* value = Look(key);
  if (value == nullptr) FailMissing(key, wanted);
  FailAt(*value, key, wanted);
}

void TableReader::FailText(std::string_view key, std::string_view message) {
  const ConfigValue* value = Look(key);
  throw DefinitionError(file_, value != nullptr ? value->line : table_->line,
                        fmt::format("{} {}", Name(key), message));
}

const ConfigValue* TableReader::Need(std::string_view key, bool required, std::string_view wanted) {
  const ConfigValue* value = Look(key);
  if (value == nullptr && required) FailMissing(key, wanted);
  return value;
}

std::string TableReader::Text(std::string_view key, std::optional<std::string> when_absent) {
  const ConfigValue* value = Need(key, !when_absent, "a text");
  if (value == nullptr) return *when_absent;
  if (value->kind != Kind::kText) FailAt(*value, key, "a text");
  return value->text;
}

int TableReader::IntegerOf(const ConfigValue& value, std::string_view key, IntegerRange range) const {
  if (value.kind != Kind::kInteger || value.integer < range.first || value.integer > range.last) {
    FailAt(value, key, Describe(range));
  }
  return static_cast<int>(value.integer);
}

float TableReader::RealOf(const ConfigValue& value, std::string_view key, RealRange range) const {
  if (!value.IsNumber() || !Accepts(range, value.real)) FailAt(value, key, Describe(range));
  return static_cast<float>(value.real);
}

int TableReader::Integer(std::string_view key, IntegerRange range, std::optional<int> when_absent) {
  const ConfigValue* value = Need(key, !when_absent, Describe(range));
  return value == nullptr ? *when_absent : IntegerOf(*value, key, range);
}

float TableReader::Real(std::string_view key, RealRange range, std::optional<float> when_absent) {
  const ConfigValue* value = Need(key, !when_absent, Describe(range));
  return value == nullptr ? *when_absent : RealOf(*value, key, range);
}

bool TableReader::Boolean(std::string_view key, bool when_absent) {
  const ConfigValue* value = Look(key);
  if (value == nullptr) return when_absent;
  if (value->kind != Kind::kBoolean) FailAt(*value, key, "true or false");
  return value->boolean;
}

int TableReader::Option(std::string_view key, std::span<const Choice> choices, int when_absent) {
  const ConfigValue* value = Look(key);
  if (value == nullptr) return when_absent;
  std::vector<std::string_view> names;
  for (const Choice& choice : choices) {
    if (value->kind == Kind::kText && value->text == choice.name) return choice.code;
    names.push_back(choice.name);
  }
  FailAt(*value, key, OneOf(names) + (value->kind == Kind::kText ? DidYouMean(value->text, names) : ""));
}

std::vector<int> TableReader::Integers(std::string_view key, IntegerRange range) {
  std::vector<int> numbers;
  const ConfigValue* value = Look(key);
  if (value == nullptr) return numbers;
  if (value->kind != Kind::kArray) FailAt(*value, key, "a list of whole numbers");
  for (const ConfigValue& item : value->items) numbers.push_back(IntegerOf(item, key, range));
  return numbers;
}

std::vector<float> TableReader::Reals(std::string_view key, std::size_t count, RealRange range) {
  const std::string wanted = fmt::format("a list of {} numbers", count);
  const ConfigValue* value = Need(key, true, wanted);
  if (value->kind != Kind::kArray || value->items.size() != count) FailAt(*value, key, wanted);
  std::vector<float> numbers;
  for (const ConfigValue& item : value->items) numbers.push_back(RealOf(item, key, range));
  return numbers;
}

std::vector<std::vector<float>> TableReader::Rows(std::string_view key, std::size_t columns) {
  const std::string wanted = fmt::format("a list of lists of {} numbers", columns);
  const ConfigValue* value = Need(key, true, wanted);
  if (value->kind != Kind::kArray) FailAt(*value, key, wanted);
  std::vector<std::vector<float>> rows;
  for (const ConfigValue& row : value->items) {
    if (row.kind != Kind::kArray || row.items.size() != columns) FailAt(row, key, wanted);
    rows.emplace_back();
    for (const ConfigValue& item : row.items) rows.back().push_back(RealOf(item, key, kAnyReal));
  }
  return rows;
}

std::optional<TableReader> TableReader::Table(std::string_view key) {
  const ConfigValue* value = Look(key);
  if (value == nullptr) return std::nullopt;
  if (value->kind != Kind::kTable) FailAt(*value, key, fmt::format("a table [{}]", Name(key)));
  return TableReader(*value, file_, Name(key));
}

std::vector<TableReader> TableReader::Tables(std::string_view key) {
  std::vector<TableReader> tables;
  const ConfigValue* value = Look(key);
  if (value == nullptr) return tables;
  const std::string wanted = fmt::format("a list of tables [[{}]]", Name(key));
  if (value->kind != Kind::kArray) FailAt(*value, key, wanted);
  for (const ConfigValue& item : value->items) {
    if (item.kind != Kind::kTable) FailAt(item, key, wanted);
    tables.emplace_back(item, file_, fmt::format("{}[{}]", Name(key), tables.size() + 1));
  }
  return tables;
}

void TableReader::Refuse(std::string_view key, std::string_view why) {
  if (Has(key)) FailText(key, why);
}

void TableReader::Finish() const {
  for (std::size_t i = 0; i < table_->keys.size(); ++i) {
    const std::string& key = table_->keys[i];
    if (std::find(known_.begin(), known_.end(), key) != known_.end()) continue;
    const std::string place = path_.empty() ? "this file" : path_;
    throw DefinitionError(file_, table_->items[i].line,
                          fmt::format("'{}' is not a key of {}{}", key, place, DidYouMean(key, known_)));
  }
}

}  // namespace zentor::companion
