// ".FTI": detailed records of single-location runs (docs/formats/fti.md). Record 1 holds the number of the
// last record.
#pragma once

#include <cstdint>

#include "study/run_context.h"

namespace zentor {

inline constexpr std::size_t kResultRecordLength = 40;  // bytes

// Opens ".FTI" with its content, or creates it with record 1 = 1. Throws FileError; InputFault when record 1
// is below 1 or names a record far beyond the file.
void OpenResultRecords(RunContext& run);

// A record of 4-byte words, built in order.
class ResultRecord {
 public:
  explicit ResultRecord(std::int32_t type) { Int(type); }
  ResultRecord& Int(std::int32_t value);
  ResultRecord& Real(double value);  // stored in single precision
  std::span<const std::byte> bytes() const { return {bytes_.data(), size_}; }

 private:
  std::array<std::byte, kResultRecordLength> bytes_{};
  std::size_t size_ = 0;
};

// Takes the next record number (record 1 is updated first) and writes the record there.
void AppendResultRecord(RunContext& run, const ResultRecord& record);

}  // namespace zentor
