// How a run of the solver went, told from what it left behind. The solver's exit code does not say it: 1 is
// its normal end, but also the end of many failures.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/child_process.h"

namespace zentor::companion {

// Enough of a file to tell later whether it was written again.
struct FileStamp {
  bool exists = false;
  std::uintmax_t size = 0;
  std::filesystem::file_time_type written;
  bool operator==(const FileStamp&) const = default;
};
FileStamp StampOf(const std::string& path);

// The listing's part that belongs to one run.
struct ListingScan {
  std::optional<long> solution_seconds;  // of the line that ends every completed run
  std::vector<std::string> warnings;
  std::vector<std::string> errors;  // lines of the first error and what follows, blanks trimmed
};
// Reads from a byte on. A file that does not exist gives an empty scan. Throws FileError.
ListingScan ScanListing(const std::string& path, std::uint64_t from);

// Warnings among the lines of ".LOG" text that `after` has and `before` has not.
std::vector<std::string> LogWarnings(std::string_view before, std::string_view after);

struct RunEvidence {
  platform::ChildEnd end;
  bool asked = false;  // questions were the user's to answer
  bool interrupted = false;
  bool listing_written = false;  // the listing is newer than the start of the run
  ListingScan listing;
  bool all_nodes = false;
  std::optional<std::string> node_result_fault;  // all nodes: why ".FTR" is not a result of this run
  std::optional<std::string> table_fault;        // a table that the run did not have whole
  std::optional<int> completed_flag;             // of ".FTC", where the field is a flag
  std::vector<std::string> solver_messages;      // lines of its standard error
};

struct Verdict {
  bool completed = false;
  std::string reason;  // why it was not completed, one or several lines
};
// Completed: the listing of this run ends with the solution time, and neither the completed flag nor the
// result file of an all-nodes run says otherwise.
Verdict Judge(const RunEvidence& evidence);

// Non-empty lines, without the name of the program in front.
std::vector<std::string> MessageLines(std::string_view error_text);

}  // namespace zentor::companion
