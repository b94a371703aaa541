#include "run_verdict.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace zentor::companion {

namespace {

constexpr std::size_t kMostErrorLines = 8;
constexpr std::string_view kTotalTime = "T O T A L   S O L U T I O N   T I M E";
// Of a solver that asks, nobody but the user sees the question.
constexpr const char* kUnanswered =
    "; if it asked about a stress above the S-N curve, the question could not be answered or was answered "
    "with "
    "No (--above-curve go-on answers it with Yes)";
constexpr std::string_view kWarning = "*** WARNING";

std::string Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

bool IsError(std::string_view line) {
  return line.find("ERROR") != std::string_view::npos || line.starts_with("STOP -");
}

long SecondsOf(std::string_view line) {
  const std::size_t equals = line.find('=');
  const std::string number = Trimmed(equals == std::string_view::npos ? "" : line.substr(equals + 1));
  long seconds = 0;
  std::from_chars(number.data(), number.data() + number.size(), seconds);
  return seconds;
}

// Takes the lines of a listing one by one. A warning runs from its line to the next empty one.
class ListingReader {
 public:
  void Line(std::string_view line) {
    const std::string text = Trimmed(line);
    if (text.starts_with(kTotalTime)) scan_.solution_seconds = SecondsOf(text);
    if (text.starts_with(kWarning)) {
      scan_.warnings.push_back(Trimmed(text.substr(std::min(text.size(), kWarning.size() + 3))));
      in_warning_ = true;
    } else if (text.empty()) {
      in_warning_ = false;
    } else if (in_warning_) {
      scan_.warnings.back() += " " + text;
    }
    const bool counts = !scan_.errors.empty() || IsError(text);
    const bool wanted = !text.empty() && text != "STOP" && !text.starts_with(kTotalTime);
    if (counts && wanted && scan_.errors.size() < kMostErrorLines) scan_.errors.push_back(text);
  }
  ListingScan Take() { return std::move(scan_); }

 private:
  ListingScan scan_;
  bool in_warning_ = false;
};

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
  return text;
}

// What the solver and its listing say about a failure; empty when they say nothing.
std::string Told(const RunEvidence& evidence) {
  std::vector<std::string> lines;
  std::copy_if(evidence.solver_messages.begin(), evidence.solver_messages.end(), std::back_inserter(lines),
               [](const std::string& line) { return !line.starts_with("warning: "); });
  if (evidence.listing_written) {
    lines.insert(lines.end(), evidence.listing.errors.begin(), evidence.listing.errors.end());
  }
  return Joined(lines);
}

std::string EndText(const platform::ChildEnd& end) {
  if (end.by_signal) return "the solver was ended by " + platform::SignalText(end.code);
  return fmt::format("the solver stopped with exit code {} before the end of the run", end.code);
}

}  // namespace

FileStamp StampOf(const std::string& path) {
  std::error_code error;
  FileStamp stamp;
  stamp.size = std::filesystem::file_size(path, error);
  if (error) return {};
  stamp.written = std::filesystem::last_write_time(path, error);
  stamp.exists = true;
  return stamp;
}

ListingScan ScanListing(const std::string& path, std::uint64_t from) {
  ListingReader reader;
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return {};  // a pipe or device may never end
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  in.seekg(static_cast<std::streamoff>(from));
  std::string line;
  while (std::getline(in, line)) reader.Line(line);
  return reader.Take();
}

std::vector<std::string> LogWarnings(std::string_view before, std::string_view after) {
  const auto [old_end, new_start] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  std::size_t start = static_cast<std::size_t>(new_start - after.begin());
  while (start > 0 && after[start - 1] != '\n') --start;
  std::vector<std::string> warnings;
  std::string_view rest = after.substr(start);
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = rest.substr(0, end);
    const std::size_t first = line.find('+');
    const std::size_t second = first == std::string_view::npos ? first : line.find('+', first + 1);
    if (second != std::string_view::npos) warnings.push_back(Trimmed(line.substr(second + 1)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return warnings;
}

Verdict Judge(const RunEvidence& evidence) {
  const std::string told = Told(evidence);
  const auto failed = [&](const std::string& otherwise) {
    return Verdict{false, told.empty() ? otherwise : told};
  };
  const bool at_the_end = evidence.listing_written && evidence.listing.solution_seconds.has_value();
  if (evidence.interrupted && !at_the_end) return {false, "stopped by the user"};
  if (evidence.end.by_signal) {
    return {false, EndText(evidence.end) + (told.empty() ? "" : "\n" + told)};
  }
  if (!at_the_end && evidence.asked) return failed(EndText(evidence.end) + kUnanswered);
  if (!at_the_end) return failed(EndText(evidence.end));
  if (evidence.completed_flag.value_or(1) != 1) {
    return failed("the run did not mark the study as completed (.FTC entity 60 field 15)");
  }
  if (evidence.table_fault) return {false, *evidence.table_fault};
  if (evidence.node_result_fault) return {false, *evidence.node_result_fault};
  return {true, ""};
}

namespace {

// The title and the buttons of a box that the solver has written to standard error.
bool IsFrameOfBox(std::string_view line) {
  const bool title = line.starts_with("--- ") && line.ends_with(" ---");
  return title || line == "[O]K" || line == "[N]o" || line == "[C]ancel";
}

}  // namespace

std::vector<std::string> MessageLines(std::string_view error_text) {
  constexpr std::string_view kProgram = "zentor-fatigue: ";
  std::vector<std::string> lines;
  while (!error_text.empty()) {
    const std::size_t end = std::min(error_text.find('\n'), error_text.size());
    std::string_view line = error_text.substr(0, end);
    if (line.starts_with(kProgram)) line.remove_prefix(kProgram.size());
    if (const std::string text = Trimmed(line); !text.empty() && !IsFrameOfBox(text)) lines.push_back(text);
    error_text.remove_prefix(std::min(end + 1, error_text.size()));
  }
  return lines;
}

}  // namespace zentor::companion
