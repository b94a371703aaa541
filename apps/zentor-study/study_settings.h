// The options of a study as the run will read them, with their names and the meaning of their codes.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "study/fatigue_properties.h"
#include "study_files.h"
#include "study_results.h"

namespace zentor::companion {

struct StudySettings {
  FatigueProperties properties;  // as the run normalises them
  bool has_options = false;      // ".MAS" exists, in the multi-study layout ".FTC"
  bool has_study_list = false;   // ".FTS" exists: the options come from ".FTC" entity 60
  std::string title;             // without trailing blanks
  int listing_mode = 0;          // 1: a listing that exists is continued
  int run_mode = 0;

  // Of the study, when it has options at all.
  std::optional<BinCounts> Bins() const;
  std::string_view ListingExtension() const { return IsMultiStudy(properties) ? ".OUT" : ".FTG"; }
};

StudySettings ReadStudySettings(StudyTables& tables);

// Name, value and meaning of every option, in the order of the listing.
struct OptionLine {
  std::string name;
  std::string value;
  std::string meaning;  // may be empty
};
std::vector<OptionLine> DescribeSettings(const StudySettings& options);

}  // namespace zentor::companion
