#include "csv_diagnosis.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace zentor::companion {

namespace {

bool IsNumber(std::string_view field) {
  double value = 0;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
  return error == std::errc() && end == field.data() + field.size();
}

bool IsQuoted(std::string_view field) {
  return !field.empty() && (field.front() == '"' || field.front() == '\'');
}

// What stands between the names of a line without commas.
std::string_view OtherSeparator(std::string_view line) {
  if (line.find(';') != std::string_view::npos) return "semicolons";
  if (line.find('\t') != std::string_view::npos) return "tabs";
  return line.find(' ') != std::string_view::npos ? "blanks" : "";
}

}  // namespace

std::string EncodingFault(std::string_view start) {
  const bool marked = start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF");
  // Latin letters are every second byte; the others are NULs.
  const auto nul = [start](std::size_t i) { return start[i] == '\0'; };
  const bool half = start.size() >= 4 && nul(0) != nul(1) && nul(0) == nul(2) && nul(1) == nul(3);
  return marked || half ? "is text in UTF-16, expected UTF-8; save it as UTF-8" : "";
}

std::string HeaderFault(std::string_view line, std::span<const std::string_view> fields,
                        std::string_view expected) {
  if (line.find('\r') != std::string_view::npos) return std::string(kCarriageReturnsAlone);
  if (line.starts_with('#')) {
    return fmt::format(
        "the first line is a comment, expected a header line with the names of the columns: {}", expected);
  }
  const std::string_view separator = fields.size() == 1 ? OtherSeparator(line) : "";
  const std::string_view first = fields.front().substr(0, fields.front().find_first_of(";\t "));
  if (IsNumber(first)) {
    return fmt::format(
        "the first line holds numbers, expected a header line with the names of the columns: {}", expected);
  }
  if (!separator.empty()) {
    return fmt::format("the columns are separated by {}, expected commas and decimal points: {}", separator,
                       expected);
  }
  if (std::any_of(fields.begin(), fields.end(), IsQuoted)) {
    return fmt::format("the header line has names in quotes, expected them plain: {}", expected);
  }
  if (fields.size() > 1 && fields.back().empty()) {
    return fmt::format("the header line ends with a comma, expected none behind the last name: {}", expected);
  }
  return {};
}

std::string SurplusFault(std::span<const std::string_view> fields, std::size_t names) {
  if (fields.size() == names + 1 && fields.back().empty()) {
    return fmt::format("ends with a comma, expected none behind the last of {} fields", names);
  }
  const std::string found =
      fmt::format("holds {} fields, expected at most the {} of the header line", fields.size(), names);
  const bool integers_only = std::all_of(fields.begin(), fields.end(), [](std::string_view field) {
    return field.find('.') == std::string_view::npos;
  });
  return integers_only ? found + "; a decimal comma makes two fields of a number, write 1.5 for 1,5" : found;
}

std::string NumberHint(std::string_view field) {
  if (IsQuoted(field)) return "; write it without quotes";
  if (field.find(';') != std::string_view::npos) return "; separate the columns by commas";
  if (field.find_first_of("dD") != std::string_view::npos && field.find_first_of("0123456789") == 0) {
    return "; write the exponent with e";
  }
  return {};
}

}  // namespace zentor::companion
