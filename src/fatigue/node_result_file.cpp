#include "fatigue/node_result_file.h"

#include <array>
#include <exception>

#include "database/bytes.h"

namespace zentor {
namespace {

constexpr Extension kExtension = ".FTR";
constexpr int kWords = 10;
constexpr std::size_t kGatheredBytes = 1U << 18U;

float Single(double value) { return static_cast<float>(value); }

}  // namespace

NodeResultFile::NodeResultFile(RunContext& run) {
  FileDelete(run.units, kExtension);
  file_ = run.files.Open(run.services.StudyFileName(kExtension), platform::OpenMode::kReplace);
  pending_.reserve(kGatheredBytes + kNodeRecordLength);
}

NodeResultFile::~NodeResultFile() {
  // A stop in mid-run keeps the records of the nodes that were evaluated; a disk that refuses them has been
  // reported by the write that failed first.
  try {
    Flush();
  } catch (const std::exception&) {
    pending_.clear();
  }
}

void NodeResultFile::Add(const NodeRecord& record) {
  const std::array<double, 5> values = {static_cast<double>(record.node), record.life, record.usage,
                                        record.factor_of_safety, record.biaxiality};
  const std::size_t start = pending_.size();
  pending_.resize(start + kNodeRecordLength);
  for (std::size_t w = 0; w < values.size(); ++w) StoreReal(&pending_[start + 4 * w], Single(values[w]));
  if (pending_.size() >= kGatheredBytes) Flush();
}

void NodeResultFile::Flush() {
  if (pending_.empty()) return;
  file_->WriteAt(next_offset_, pending_);
  next_offset_ += pending_.size();
  pending_.clear();
}

void NodeResultFile::Finish(const StudyState& study) {
  Flush();
  const int visited = study.sizes.highest_node;
  const std::array<int, kWords> header = {kWords,
                                          visited + 1,
                                          visited,
                                          study.sizes.element_count,
                                          study.definition.event_count,
                                          study.properties.LoadAmplitudeType,
                                          0,
                                          0,
                                          0,
                                          0};
  std::array<std::byte, kNodeRecordLength> bytes{};
  for (std::size_t w = 0; w < header.size(); ++w) StoreInt(bytes.data() + 4 * w, header[w]);
  file_->WriteAt(0, bytes);
  file_.reset();
}

}  // namespace zentor
