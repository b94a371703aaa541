#include "stress/scratch_store.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <string>

#include "database/bytes.h"
#include "services/faults.h"

namespace zentor {

using namespace stress_format;  // NOLINT(google-build-using-namespace): names of records only

namespace {

constexpr std::size_t kStressBytes = 6 * kWordBytes;
constexpr std::size_t kRecordsPerWrite = 32768;
constexpr std::int64_t kRecordsPerRead = 1024;

std::uint64_t OffsetOf(std::int64_t record) {
  return static_cast<std::uint64_t>(record - 1) * kScratchRecordBytes;
}

}  // namespace

ScratchStore::ScratchStore(RunContext& run, const FatigueProperties& properties,
                           const StressResultFile& stresses) {
  FileDelete(run.units, ".SFA");
  path_ = run.services.StudyFileName(".SFA");
  file_ = run.files.Open(path_, platform::OpenMode::kReplace);
  WriteWords(kScratchStateRecord, std::array<std::int32_t, 1>{0});
  WriteWords(kScratchOptionsRecord,
             std::array<std::int32_t, 2>{properties.ShellSurface, properties.ShellLayer});
  std::array<std::int32_t, 7> head{};
  for (std::size_t word = 0; word < head.size(); ++word) head[word] = stresses.HeaderWord(word);
  WriteWords(kScratchHeaderRecord, head);
  WriteWords(kScratchTailRecord, std::array<std::int32_t, 2>{stresses.HeaderWord(7), stresses.HeaderWord(8)});
  last_record_ = kScratchTailRecord;
}

void ScratchStore::WriteWords(std::int64_t record, std::span<const std::int32_t> words) {
  std::array<std::byte, kScratchRecordBytes> bytes{};
  for (std::size_t i = 0; i < words.size(); ++i) StoreInt(&bytes[i * kWordBytes], words[i]);
  file_->WriteAt(OffsetOf(record), bytes);
}

void ScratchStore::WriteSlot(NodalSums nodal) {
  auto compact = std::make_shared<CompactNumbers>(nodal.counts.size(), 0);
  Slot slot;
  slot.first_record = last_record_ + 1;
  std::vector<std::byte> pending;
  pending.reserve(kRecordsPerWrite * kScratchRecordBytes);
  const auto write = [&] {
    if (pending.empty()) return;
    file_->WriteAt(OffsetOf(last_record_ + 1), pending);
    last_record_ += static_cast<std::int64_t>(pending.size() / kScratchRecordBytes);
    pending.clear();
  };
  std::int32_t number = 0;
  for (std::size_t node = 0; node < nodal.counts.size(); ++node) {
    if (nodal.counts[node] == 0) continue;
    (*compact)[node] = ++number;
    const std::span<const std::byte> stress = std::as_bytes(nodal.sums.subspan(node * 6, 6));
    pending.insert(pending.end(), stress.begin(), stress.end());
    pending.resize(pending.size() + kScratchRecordBytes - kStressBytes);
    if (pending.size() == kRecordsPerWrite * kScratchRecordBytes) write();
  }
  write();
  const bool as_first = !slots_.empty() && *slots_.front().compact == *compact;
  slot.compact = as_first ? slots_.front().compact : std::move(compact);
  slots_.push_back(std::move(slot));
}

void ScratchStore::Finish() {
  WriteWords(kScratchStateRecord, std::array<std::int32_t, 2>{1, static_cast<std::int32_t>(last_record_)});
}

void ScratchStore::Read(int node, int slot, std::span<float, 6> out) {
  assert(slot >= 1 && slot <= static_cast<int>(slots_.size()));
  Slot& s = slots_[static_cast<std::size_t>(slot) - 1];
  const std::int32_t compact = (*s.compact)[static_cast<std::size_t>(node) - 1];
  std::fill(out.begin(), out.end(), 0.0F);
  if (compact == 0) return;
  const std::int64_t record = s.first_record - 1 + compact;
  const auto held = static_cast<std::int64_t>(s.held.size() / kScratchRecordBytes);
  if (record < s.held_first || record >= s.held_first + held) Hold(s, record);
  const std::byte* bytes =
      s.held.data() + static_cast<std::size_t>(record - s.held_first) * kScratchRecordBytes;
  for (std::size_t c = 0; c < out.size(); ++c) out[c] = LoadReal(bytes + c * kWordBytes);
}

void ScratchStore::Hold(Slot& slot, std::int64_t record) {
  slot.held_first = record;
  slot.held.resize(kRecordsPerRead * kScratchRecordBytes);
  const std::size_t read = file_->ReadAt(OffsetOf(record), slot.held);
  slot.held.resize(read - read % kScratchRecordBytes);
  if (slot.held.empty()) {
    throw InputFault(path_, "record " + std::to_string(record), "beyond the end of the file",
                     "a record that was written before");
  }
}

}  // namespace zentor
