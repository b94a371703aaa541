#include "config_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "authoring/study_definition.h"

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

std::optional<std::int64_t> WholeNumber(double value) {
  constexpr double kLimit = 2147483648.0;
  if (!(value >= -kLimit && value < kLimit) || std::floor(value) != value) return std::nullopt;
  return static_cast<std::int64_t>(value);
}

std::string WantedInteger(IntegerRange range, double found) {
  constexpr auto kLargest = std::numeric_limits<std::int32_t>::max();
  if (range.last == kLargest && found > static_cast<double>(kLargest)) {
    return fmt::format("at most {}, the largest whole number of 32 bits", kLargest);
  }
  const bool of_the_model = range.first == 1 && range.last == kMaxModelNumber;
  return Describe(range) + (of_the_model && found == 0 ? "; numbers begin at 1" : "");
}

std::string WantedReal(RealRange range, double found) {
  const bool too_large = found > static_cast<double>(std::numeric_limits<float>::max());
  const bool unbounded = std::isfinite(range.above) || std::isfinite(range.at_least);
  return Describe(range) + (too_large && unbounded && !std::isfinite(range.below) ? ", at most 3.4e38" : "");
}

bool TableReader::Known(std::string_view key) const {
  return std::find(known_.begin(), known_.end(), key) != known_.end();
}

const ConfigValue* TableReader::Look(std::string_view key) {
  if (!Known(key)) known_.push_back(key);
  return table_->Find(key);
}

std::string TableReader::Name(std::string_view key) const {
  return path_.empty() ? std::string(key) : fmt::format("{}.{}", path_, key);
}

void TableReader::ReportMissing(std::string_view key, std::string_view wanted) {
  missing_.push_back({std::string(key), errors_->Add({file_, table_->line, Name(key), "missing", wanted})});
}

void TableReader::ReportAt(const ConfigValue& value, std::string_view key, std::string_view wanted) {
  errors_->Add({file_, value.line, Name(key), Describe(value), wanted});
}

void TableReader::Report(std::string_view key, std::string_view wanted) {
  const ConfigValue* value = Look(key);
  if (value == nullptr) return ReportMissing(key, wanted);
  ReportAt(*value, key, wanted);
}

void TableReader::ReportText(std::string_view key, std::string_view message) {
  const ConfigValue* value = Look(key);
  errors_->Add(
      {file_, value != nullptr ? value->line : table_->line, fmt::format("{} {}", Name(key), message)});
}

const ConfigValue* TableReader::Need(std::string_view key, bool required, std::string_view wanted) {
  const ConfigValue* value = Look(key);
  if (value == nullptr && required) ReportMissing(key, wanted);
  return value;
}

std::string TableReader::Text(std::string_view key, std::optional<std::string> when_absent) {
  const ConfigValue* value = Need(key, !when_absent, "a text");
  if (value != nullptr && value->kind == Kind::kText) return value->text;
  if (value != nullptr) ReportAt(*value, key, "a text");
  return std::move(when_absent).value_or("");
}

int TableReader::IntegerOf(const ConfigValue& value, std::string_view key, IntegerRange range,
                           int otherwise) {
  std::optional<std::int64_t> whole;
  if (value.kind == Kind::kInteger) whole = value.integer;
  if (value.kind == Kind::kReal) whole = WholeNumber(value.real);
  if (whole && *whole >= range.first && *whole <= range.last) return static_cast<int>(*whole);
  ReportAt(value, key, value.IsNumber() ? WantedInteger(range, value.real) : Describe(range));
  return otherwise;
}

float TableReader::RealOf(const ConfigValue& value, std::string_view key, RealRange range, float otherwise) {
  if (value.IsNumber() && Accepts(range, value.real)) return static_cast<float>(value.real);
  ReportAt(value, key, value.IsNumber() ? WantedReal(range, value.real) : Describe(range));
  return otherwise;
}

int TableReader::Integer(std::string_view key, IntegerRange range, std::optional<int> when_absent) {
  const ConfigValue* value = Need(key, !when_absent, Describe(range));
  const int otherwise = when_absent.value_or(static_cast<int>(range.first));
  return value == nullptr ? otherwise : IntegerOf(*value, key, range, otherwise);
}

float TableReader::Real(std::string_view key, RealRange range, std::optional<float> when_absent) {
  const ConfigValue* value = Need(key, !when_absent, Describe(range));
  const float otherwise = when_absent.value_or(1.0F);
  return value == nullptr ? otherwise : RealOf(*value, key, range, otherwise);
}

bool TableReader::Boolean(std::string_view key, bool when_absent) {
  const ConfigValue* value = Look(key);
  if (value == nullptr) return when_absent;
  if (value->kind != Kind::kBoolean) ReportAt(*value, key, "true or false");
  return value->kind == Kind::kBoolean ? value->boolean : when_absent;
}

int TableReader::Option(std::string_view key, std::span<const Choice> choices, int when_absent) {
  const ConfigValue* value = Look(key);
  if (value == nullptr) return when_absent;
  std::vector<std::string_view> names;
  for (const Choice& choice : choices) {
    if (value->kind == Kind::kText && value->text == choice.name) return choice.code;
    names.push_back(choice.name);
  }
  ReportAt(*value, key, OneOf(names) + (value->kind == Kind::kText ? DidYouMean(value->text, names) : ""));
  return when_absent;
}

std::vector<int> TableReader::Integers(std::string_view key, IntegerRange range) {
  std::vector<int> numbers;
  const ConfigValue* value = Look(key);
  if (value == nullptr) return numbers;
  if (value->kind != Kind::kArray) ReportAt(*value, key, "a list of whole numbers");
  for (const ConfigValue& item : value->items) {
    numbers.push_back(IntegerOf(item, key, range, static_cast<int>(range.first)));
  }
  return numbers;
}

std::vector<float> TableReader::Reals(std::string_view key, std::size_t count, RealRange range) {
  const std::string wanted = fmt::format("a list of {} numbers", count);
  std::vector<float> numbers(count, 1.0F);
  const ConfigValue* value = Need(key, true, wanted);
  if (value == nullptr) return numbers;
  if (value->kind != Kind::kArray || value->items.size() != count) {
    ReportAt(*value, key, wanted);
    return numbers;
  }
  for (std::size_t i = 0; i < count; ++i) numbers[i] = RealOf(value->items[i], key, range, 1.0F);
  return numbers;
}

std::optional<TableReader> TableReader::Table(std::string_view key) {
  const ConfigValue* value = Look(key);
  if (value == nullptr) return std::nullopt;
  if (value->kind == Kind::kTable) return TableReader(*value, file_, Name(key), *errors_);
  ReportAt(*value, key, fmt::format("a table [{}]", Name(key)));
  return std::nullopt;
}

std::vector<TableReader> TableReader::Tables(std::string_view key) {
  std::vector<TableReader> tables;
  const ConfigValue* value = Look(key);
  if (value == nullptr) return tables;
  const std::string wanted = fmt::format("a list of tables [[{}]]", Name(key));
  if (value->kind != Kind::kArray) {
    ReportAt(*value, key, wanted);
    return tables;
  }
  std::size_t place = 0;
  for (const ConfigValue& item : value->items) {
    ++place;
    if (item.kind != Kind::kTable) {
      ReportAt(item, key, wanted);
    } else {
      tables.emplace_back(item, file_, fmt::format("{}[{}]", Name(key), place), *errors_);
    }
  }
  return tables;
}

void TableReader::Refuse(std::string_view key, std::string_view why) {
  if (Has(key)) ReportText(key, why);
}

bool TableReader::Misspelt(std::string_view key) const {
  return std::any_of(table_->keys.begin(), table_->keys.end(), [&](const std::string& typed) {
    return !Known(typed) && Closest(typed, known_) == key;
  });
}

void TableReader::Finish() {
  for (std::size_t i = 0; i < table_->keys.size(); ++i) {
    const std::string& key = table_->keys[i];
    if (Known(key)) continue;
    const std::string place = path_.empty() ? "this file" : path_;
    errors_->Add({file_, table_->items[i].line,
                  fmt::format("'{}' is not a key of {}{}", key, place, DidYouMean(key, known_))});
  }
  for (const MissingKey& one : missing_) {
    if (Misspelt(one.key)) errors_->Withdraw(one.error);
  }
}

}  // namespace zentor::companion
