#include "fatigue/matrix_file.h"

#include <array>
#include <cassert>

#include "database/bytes.h"
#include "database/file_units.h"

namespace zentor {
namespace {

constexpr Extension kExtension = ".FTD";
constexpr std::size_t kWordBytes = 4;
constexpr int kHeaderWords = 100;
constexpr int kNodeCountWord = 2;
constexpr int kEventsWord = 10;  // first of the event identifiers; the node numbers follow them
constexpr std::size_t kMatrixWord = 5;

static_assert(kEventsWord + kMaxEvents + MatrixFile::kMostNodes <= kHeaderWords);

void StoreWord(std::byte* p, std::int32_t value) { StoreInt(p, value); }
void StoreWord(std::byte* p, float value) { StoreReal(p, value); }

// The percentage cut to an integer; it comes from one, so the limits only guard against a damaged study.
std::int32_t WholePercent(float percent) {
  constexpr float kLimit = 2147483520.0F;  // largest single-precision number below 2^31
  if (!(percent > -kLimit)) return 0;
  return static_cast<std::int32_t>(percent < kLimit ? percent : kLimit);
}

}  // namespace

BinEdges EdgesOf(const RangeMeanMatrix& matrix) {
  return {matrix.range_origin, matrix.range_width, matrix.mean_origin, matrix.mean_width};
}

BinEdges Scaled(const BinEdges& edges, const StressScales& scales) {
  return {edges.range_origin * scales.range, edges.range_width * scales.range,
          edges.mean_origin * scales.mean, edges.mean_width * scales.mean};
}

MatrixFile::MatrixFile(RunContext& run, const StudyState& study)
    : events_(study.definition.event_count),
      block_words_(static_cast<std::size_t>(study.properties.RangeBinCount) *
                       static_cast<std::size_t>(study.properties.MeanBinCount) +
                   kMatrixWord),
      block_(block_words_ * kWordBytes) {
  FileDelete(run.units, kExtension);
  file_ = run.files.Open(run.services.StudyFileName(kExtension), platform::OpenMode::kReplace);
  const std::array<std::int32_t, 4> head = {study.properties.RangeBinCount, events_,
                                            static_cast<std::int32_t>(study.matrix_nodes.size()) + 1,
                                            WholePercent(study.properties.FilterPercent)};
  for (int w = 0; w < static_cast<int>(head.size()); ++w) WriteWord(w, head[static_cast<std::size_t>(w)]);
  for (int e = 1; e <= events_; ++e) WriteWord(kEventsWord + e - 1, e);
}

void MatrixFile::WriteEvent(int event, const BinEdges& edges, std::span<const std::int32_t> counts) {
  WriteBlock(event, event, edges, counts);
}

void MatrixFile::WriteNode(int node, const BinEdges& edges, std::span<const float> damage,
                           std::span<const std::int32_t> cycles) {
  assert(nodes_ < kMostNodes);
  ++nodes_;
  WriteWord(kEventsWord + events_ + nodes_ - 1, node);
  WriteBlock(events_ + 2 * nodes_ - 1, node, edges, damage);
  WriteBlock(events_ + 2 * nodes_, node, edges, cycles);
}

void MatrixFile::Finish() {
  WriteWord(kNodeCountWord, nodes_);
  file_.reset();
}

void MatrixFile::WriteWord(int word, std::int32_t value) {
  std::array<std::byte, kWordBytes> bytes{};
  StoreInt(bytes.data(), value);
  file_->WriteAt(static_cast<std::uint64_t>(word) * kWordBytes, bytes);
}

template <typename Word>
void MatrixFile::WriteBlock(int block, int identifier, const BinEdges& edges, std::span<const Word> matrix) {
  assert(matrix.size() + kMatrixWord == block_words_);
  std::byte* p = block_.data();
  StoreInt(p, identifier);
  for (const float edge : {edges.range_origin, edges.range_width, edges.mean_origin, edges.mean_width}) {
    StoreReal(p += kWordBytes, edge);
  }
  for (const Word word : matrix) StoreWord(p += kWordBytes, word);
  const std::uint64_t first_word = kHeaderWords + block_words_ * (static_cast<std::uint64_t>(block) - 1);
  file_->WriteAt(first_word * kWordBytes, block_);
}

}  // namespace zentor
