#include "study/result_record_file.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <limits>

#include "database/bytes.h"
#include "services/faults.h"

namespace zentor {
namespace {

constexpr std::size_t kWordBytes = 4;

std::int32_t LastRecord(DirectAccessFile& file) {
  std::array<std::byte, kWordBytes> word{};
  file.Read(1, word);
  return LoadInt(word.data());
}

void SetLastRecord(DirectAccessFile& file, std::int32_t number) {
  std::array<std::byte, kWordBytes> word{};
  StoreInt(word.data(), number);
  file.Write(1, word);
}

// Record 1 is written before the record that it counts: a run that ends in between leaves it one ahead of the
// file, and a second one two ahead.
constexpr std::int64_t kMostAhead = 2;

std::int64_t WholeRecords(DirectAccessFile& file) {
  const std::int64_t records = file.RecordCount();
  std::array<std::byte, kResultRecordLength> last{};
  return std::max<std::int64_t>(file.Read(records, last) < last.size() ? records - 1 : records, 1);
}

void CheckLastRecord(DirectAccessFile& file) {
  const std::int32_t last = LastRecord(file);
  const std::int64_t most = WholeRecords(file) + kMostAhead;
  if (last < 1 || last > most || last == std::numeric_limits<std::int32_t>::max()) {
    throw InputFault(file.path(), "record 1", std::to_string(last),
                     "1 to " + std::to_string(most) + "; delete the file, or build the study again");
  }
}

// What an unfinished run has counted and not written is no record: the next run writes it.
void ForgetUnwritten(DirectAccessFile& file) {
  const std::int64_t whole = WholeRecords(file);
  if (LastRecord(file) > whole) SetLastRecord(file, static_cast<std::int32_t>(whole));
}

}  // namespace

void OpenResultRecords(RunContext& run) {
  const std::string path = run.services.StudyFileName(".FTI");
  run.result_records.Open(run.files, path, kResultRecordLength, platform::OpenMode::kReadWriteCreate);
  if (run.result_records.RecordCount() == 0) SetLastRecord(run.result_records, 1);
  CheckLastRecord(run.result_records);
  ForgetUnwritten(run.result_records);
}

ResultRecord& ResultRecord::Int(std::int32_t value) {
  assert(size_ + kWordBytes <= bytes_.size());
  StoreInt(bytes_.data() + size_, value);
  size_ += kWordBytes;
  return *this;
}

ResultRecord& ResultRecord::Real(double value) {
  return Int(std::bit_cast<std::int32_t>(static_cast<float>(value)));
}

void AppendResultRecord(RunContext& run, const ResultRecord& record) {
  CheckLastRecord(run.result_records);
  const std::int32_t number = LastRecord(run.result_records) + 1;
  SetLastRecord(run.result_records, number);
  run.result_records.Write(number, record.bytes());
}

}  // namespace zentor
