// Words of a stress result file (".STE", ".STN", ".STP") and of the scratch store ".SFA"
// (docs/formats/stress-files.md, docs/formats/sfa.md).
#pragma once

#include <cstddef>
#include <cstdint>

namespace zentor::stress_format {

inline constexpr std::size_t kWordBytes = 4;

// Header of a stress result file: 20 signed 32-bit integers at offset 0.
inline constexpr std::size_t kHeaderWords = 20;
enum HeaderWord : std::size_t {
  kStepTableStart = 0,  // word offset of the step pointer table
  kStepCapacity = 1,    // entries that the table has room for; the element pointer table follows them
  kElementCount = 3,    // entries of the element pointer table
  kStepCount = 5,       // stored steps
  kLaterStepCount = 6,  // ".STP": the steps are the larger of words 5 and 6
  kPointerWidth = 18,   // 0, 1: pointers of one word; 2: of two
};

// Element record: 32-bit reals; integers are stored as reals.
enum RecordWord : std::size_t {
  kElementNumber = 0,
  kRecordLength = 1,  // words
  kTypeCode = 2,
  kNodeCount = 3,
  kLayerCount = 5,
};
inline constexpr std::size_t kRecordHeadWords = 7;
// An element has no more nodes than its record in the model database has room for.
inline constexpr int kMaxElementNodes = 1650;

// Scratch store: fixed records.
inline constexpr std::size_t kScratchRecordBytes = 28;
inline constexpr std::int64_t kScratchStateRecord = 1;    // 0, or 1 and the number of the last record
inline constexpr std::int64_t kScratchOptionsRecord = 2;  // shell surface, shell layer
inline constexpr std::int64_t kScratchHeaderRecord = 3;   // header words 0 to 6
inline constexpr std::int64_t kScratchTailRecord = 4;     // header words 7 and 8
inline constexpr std::int64_t kFirstScratchStress = 5;

}  // namespace zentor::stress_format
