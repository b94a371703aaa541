// Typed access to the tables of a readable definition. Every key must be asked for: Finish reports the rest
// as unknown. Errors (file, line, key, found value, expectation) are gathered, and reading goes on with a
// value that is as good as any, so that one go finds all of them; who fills a study counts the errors before
// and after (ErrorWatch).
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "config_tree.h"
#include "definition_errors.h"

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

// The number as a whole one; nothing for a fraction or one beyond 32 bits.
std::optional<std::int64_t> WholeNumber(double value);
// What was expected in the place of a whole number that is not within the range.
std::string WantedInteger(IntegerRange range, double found);
// The same for a real: names the limit that no range shows where the number is beyond it.
std::string WantedReal(RealRange range, double found);

// Whether errors have come up since it was made.
class ErrorWatch {
 public:
  explicit ErrorWatch(const DefinitionErrors& errors) : errors_(errors), before_(errors.count()) {}
  bool Clean() const { return errors_.count() == before_; }

 private:
  const DefinitionErrors& errors_;
  std::size_t before_;
};

// A name of an option and its code.
struct Choice {
  std::string_view name;
  int code;
};

class TableReader {
 public:
  // path: how messages call the table, e.g. "event[2]"; empty for the whole file.
  TableReader(const ConfigValue& table, std::string file, std::string path, DefinitionErrors& errors)
      : table_(&table), errors_(&errors), file_(std::move(file)), path_(std::move(path)) {}

  bool Has(std::string_view key) { return Look(key) != nullptr; }
  // The value as it stands; null when absent.
  const ConfigValue* Look(std::string_view key);

  // With a default they accept a missing key; without one they require it. What is returned after an error
  // lies within the range.
  std::string Text(std::string_view key, std::optional<std::string> when_absent = std::nullopt);
  int Integer(std::string_view key, IntegerRange range, std::optional<int> when_absent = std::nullopt);
  float Real(std::string_view key, RealRange range, std::optional<float> when_absent = std::nullopt);
  bool Boolean(std::string_view key, bool when_absent);
  int Option(std::string_view key, std::span<const Choice> choices, int when_absent);
  std::vector<int> Integers(std::string_view key, IntegerRange range);  // empty when absent
  std::vector<float> Reals(std::string_view key, std::size_t count,
                           RealRange range);  // required, exact count

  std::optional<TableReader> Table(std::string_view key);
  std::vector<TableReader> Tables(std::string_view key);  // list of tables, empty when absent

  // Reports a key that is present though it has no meaning here.
  void Refuse(std::string_view key, std::string_view why);
  // Reports the keys that nobody asked for. A missing key that one of them was meant to be is forgotten.
  void Finish();
  // Whether a key that nobody asked for looks like this one.
  bool Misspelt(std::string_view key) const;

  void ReportMissing(std::string_view key, std::string_view wanted);
  void Report(std::string_view key, std::string_view wanted);
  void ReportAt(const ConfigValue& value, std::string_view key, std::string_view wanted);
  // "FILE:LINE: PATH.KEY MESSAGE" at the key's line, or the table's when the key is absent.
  void ReportText(std::string_view key, std::string_view message);

  DefinitionErrors& errors() const { return *errors_; }
  const std::string& file() const { return file_; }
  const std::string& path() const { return path_; }
  int line() const { return table_->line; }
  std::string Name(std::string_view key) const;

 private:
  const ConfigValue* Need(std::string_view key, bool required, std::string_view wanted);
  int IntegerOf(const ConfigValue& value, std::string_view key, IntegerRange range, int otherwise);
  float RealOf(const ConfigValue& value, std::string_view key, RealRange range, float otherwise);
  bool Known(std::string_view key) const;

  struct MissingKey {
    std::string key;
    DefinitionErrors::Place error;
  };
  const ConfigValue* table_;
  DefinitionErrors* errors_;
  std::string file_;
  std::string path_;
  std::vector<std::string_view> known_;
  std::vector<MissingKey> missing_;
};

}  // namespace zentor::companion
