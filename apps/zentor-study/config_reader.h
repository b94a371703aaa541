// Typed access to the tables of a readable definition. Every key must be asked for: Finish reports the rest
// as unknown. All errors are DefinitionErrors with file, line, key, found value and expectation.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "config_tree.h"
#include "definition_error.h"

namespace zentor::companion {

struct IntegerRange {
  std::int64_t first = 0;
  std::int64_t last = std::numeric_limits<std::int32_t>::max();
};

// Bounds of a real; every real must be finite and fit single precision.
struct RealRange {
  double above = -std::numeric_limits<double>::infinity();  // exclusive
  double at_least = -std::numeric_limits<double>::infinity();
  double below = std::numeric_limits<double>::infinity();  // exclusive
};
inline constexpr RealRange kAnyReal{};
inline constexpr RealRange kPositive{.above = 0};
inline constexpr RealRange kNotNegative{.at_least = 0};

// "a whole number from 1 to 40", "a number above 0".
std::string Describe(IntegerRange range);
std::string Describe(RealRange range);
// Whether the value can be stored and lies within the bounds.
bool Accepts(RealRange range, double value);

// A name of an option and its code.
struct Choice {
  std::string_view name;
  int code;
};

class TableReader {
 public:
  // path: how messages call the table, e.g. "event[2]"; empty for the whole file.
  TableReader(const ConfigValue& table, std::string file, std::string path)
      : table_(&table), file_(std::move(file)), path_(std::move(path)) {}

  bool Has(std::string_view key) { return Look(key) != nullptr; }
  // The value as it stands; null when absent.
  const ConfigValue* Look(std::string_view key);

  // With a default they accept a missing key; without one they require it.
  std::string Text(std::string_view key, std::optional<std::string> when_absent = std::nullopt);
  int Integer(std::string_view key, IntegerRange range, std::optional<int> when_absent = std::nullopt);
  float Real(std::string_view key, RealRange range, std::optional<float> when_absent = std::nullopt);
  bool Boolean(std::string_view key, bool when_absent);
  int Option(std::string_view key, std::span<const Choice> choices, int when_absent);
  std::vector<int> Integers(std::string_view key, IntegerRange range);  // empty when absent
  std::vector<float> Reals(std::string_view key, std::size_t count,
                           RealRange range);  // required, exact count
  std::vector<std::vector<float>> Rows(std::string_view key,
                                       std::size_t columns);  // list of lists of numbers

  std::optional<TableReader> Table(std::string_view key);
  std::vector<TableReader> Tables(std::string_view key);  // list of tables, empty when absent

  // Reports a key that is present though it has no meaning here.
  void Refuse(std::string_view key, std::string_view why);
  // Reports the first key that nobody asked for.
  void Finish() const;

  [[noreturn]] void FailMissing(std::string_view key, std::string_view wanted) const;
  [[noreturn]] void Fail(std::string_view key, std::string_view wanted);
  [[noreturn]] void FailAt(const ConfigValue& value, std::string_view key, std::string_view wanted) const;
  // "FILE:LINE: PATH.KEY MESSAGE" at the key's line, or the table's when the key is absent.
  [[noreturn]] void FailText(std::string_view key, std::string_view message);

  const std::string& file() const { return file_; }
  const std::string& path() const { return path_; }
  int line() const { return table_->line; }
  std::string Name(std::string_view key) const;

 private:
  const ConfigValue* Need(std::string_view key, bool required, std::string_view wanted);
  int IntegerOf(const ConfigValue& value, std::string_view key, IntegerRange range) const;
  float RealOf(const ConfigValue& value, std::string_view key, RealRange range) const;

  const ConfigValue* table_;
  std::string file_;
  std::string path_;
  std::vector<std::string_view> known_;
};

}  // namespace zentor::companion
