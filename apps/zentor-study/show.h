// Readable dumps of studies and of single files. Every function writes to `out` what the study input would
// read, with names beside the numbers, and changes nothing. Files that contradict themselves throw
// InputFault.
#pragma once

#include <cstdint>
#include <limits>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "study_files.h"
#include "study_settings.h"
#include "table_dictionary.h"

namespace zentor::companion {

inline constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

// The study or the file that the user named, with the words behind it: kind of file, then numbers. Throws
// CommandFailure for what does not exist.
void Show(const std::string& study, std::span<const std::string> words, std::uint64_t limit,
          std::ostream& out);

// What to show of a file and how much of it.
struct ShowRequest {
  std::vector<int> numbers;  // table: entity, field; result files: node, block, curve, step and element
  std::uint64_t limit = 40;  // rows of a long list
  bool Chosen(std::size_t i) const { return i < numbers.size(); }
  int Number(std::size_t i, int otherwise) const { return Chosen(i) ? numbers[i] : otherwise; }
};

// Rows of a list up to the limit; the destructor's place is taken by End, which says how many were left out.
class RowLimit {
 public:
  explicit RowLimit(std::uint64_t limit) : limit_(limit) {}
  // Whether the next row is still to be written.
  bool Next() { return ++asked_ <= limit_; }
  bool Full() const { return asked_ >= limit_; }
  // `total` rows exist altogether.
  void End(std::ostream& out, std::uint64_t total, std::string_view what) const;

 private:
  std::uint64_t limit_;
  std::uint64_t asked_ = 0;
};

void ShowOverview(StudyTables& tables, std::ostream& out);
void ShowDefinition(StudyTables& tables, const StudySettings& settings, std::ostream& out);

TableLayout TableLayoutOf(const StudySettings& settings);
void ShowTable(StudyTables& tables, DbTable table, const ShowRequest& request, std::ostream& out);

void ShowStressFile(const std::string& path, const ShowRequest& request, std::ostream& out);
void ShowStepFile(StudyTables& tables, Extension extension, const ShowRequest& request, std::ostream& out);
void ShowScratchStore(const std::string& path, const ShowRequest& request, std::ostream& out);

void ShowNodeResults(const std::string& path, const ShowRequest& request, std::ostream& out);
void ShowLocationResults(const std::string& path, const ShowRequest& request, std::ostream& out);
void ShowMatrices(StudyTables& tables, const ShowRequest& request, std::ostream& out);

void ShowHistories(const std::string& path, const ShowRequest& request, std::ostream& out);
void ShowTemperatures(StudyTables& tables, const ShowRequest& request, std::ostream& out);
void ShowSurfaceFaces(const std::string& path, const ShowRequest& request, std::ostream& out);
void ShowStudyList(const std::string& path, std::ostream& out);
void ShowText(const std::string& path, const ShowRequest& request, std::ostream& out);

}  // namespace zentor::companion
