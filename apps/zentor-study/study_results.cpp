#include "study_results.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numeric>
#include <string_view>

#include "database/bytes.h"

namespace zentor::companion {

namespace {

constexpr std::uint64_t kNodeRecordBytes = 40;
constexpr int kNodeRecordWords = 10;
constexpr std::uint64_t kMatrixHeaderBytes = 400;
constexpr int kMatrixHeaderNodes = 90;  // events and node pairs that the header has words for
constexpr int kMaxBins = 200;
constexpr int kMaxMatrixEvents = 40;
constexpr std::uint64_t kResultRecordBytes = 40;
// Of ".FTI": records that unfinished runs have counted and not written stand behind the file's end, or with
// this type between records of later runs.
constexpr std::int64_t kMostUnwritten = 2;
constexpr int kUnwritten = 0;

std::string Word(int number) { return "header word " + std::to_string(number); }

void Check(const BinaryFile& file, bool sound, std::string_view place, std::int64_t found,
           std::string_view wanted) {
  if (!sound) file.Fault(place, std::to_string(found), wanted);
}

void ReadNodeHeader(BinaryFile& file, NodeResults& results) {
  if (!file.Holds(0, kNodeRecordBytes)) {
    file.Fault("size", fmt::format("{} bytes (the run that wrote the file did not finish)", file.size()),
               "a header of 40 bytes");
  }
  const auto header = file.Ints(0, kNodeRecordWords, "header");
  if (header[0] == 0) {
    file.Fault(Word(0), "0 (the run that wrote the file did not finish)", std::to_string(kNodeRecordWords));
  }
  Check(file, header[0] == kNodeRecordWords, Word(0), header[0], "10, the words of a record");
  Check(file, header[2] >= 0, Word(2), header[2], "0 or more nodes");
  Check(file, std::int64_t{header[1]} == std::int64_t{header[2]} + 1, Word(1), header[1], "word 2 + 1");
  Check(file, header[3] >= 0, Word(3), header[3], "0 or more elements");
  Check(file, header[4] >= 0 && header[4] <= kMaxMatrixEvents, Word(4), header[4], "0 to 40 events");
  Check(file, header[5] == 0 || header[5] == 1, Word(5), header[5], "0 or 1");
  results.visited_nodes = header[2];
  results.element_count = header[3];
  results.event_count = header[4];
  results.variable_amplitude = header[5] == 1;
}

// The node number of a record: a whole number above the node before it (as far as single precision can tell).
int NodeNumber(const BinaryFile& file, float stored, std::uint64_t record, int before, int highest) {
  const bool whole = stored >= 1 && stored <= static_cast<float>(highest) && std::floor(stored) == stored;
  if (!whole || static_cast<float>(before) > stored ||
      (stored < 16777216.0F && static_cast<float>(before) == stored)) {
    file.Fault("node number of record " + std::to_string(record), std::to_string(stored),
               "a node above " + std::to_string(before) + ", up to " + std::to_string(highest));
  }
  return static_cast<int>(std::min<std::int64_t>(std::llround(stored), highest));
}

}  // namespace

float LifeFactor(float usage) {
  if (std::isnan(usage)) return usage;
  return usage > 0 ? 1.0F / usage : std::numeric_limits<float>::infinity();
}

std::string LimitText(std::optional<float> value) {
  if (!value || std::isnan(*value)) return "-";
  return std::isinf(*value) ? "unlimited" : fmt::format("{:g}", *value);
}

namespace {

float Limit(float stored, float usage) {
  const bool endless = usage <= 0 || stored >= kEndlessLife;
  return endless ? std::numeric_limits<float>::infinity() : stored;
}

}  // namespace

std::optional<float> NodeResults::Life(const NodeResult& node) const {
  if (!HasLife()) return std::nullopt;
  return Limit(node.life, node.usage);
}

std::optional<float> NodeResults::FactorOfSafety(const NodeResult& node) const {
  if (!HasFactorOfSafety()) return std::nullopt;
  return Limit(node.factor_of_safety, node.usage);
}

bool NodeResultsUnfinished(const std::string& path) {
  BinaryFile file(path);
  return !file.Holds(0, kNodeRecordBytes) || file.Int(0, Word(0)) == 0;
}

NodeResults ReadNodeResults(const std::string& path) {
  BinaryFile file(path);
  NodeResults results;
  ReadNodeHeader(file, results);
  if (file.size() % kNodeRecordBytes != 0) {
    file.Fault("size", std::to_string(file.size()) + " bytes", "whole records of 40 bytes");
  }
  const std::uint64_t count = file.size() / kNodeRecordBytes - 1;
  Check(file, count <= static_cast<std::uint64_t>(results.visited_nodes), "number of records",
        static_cast<std::int64_t>(count), "at most header word 2, " + std::to_string(results.visited_nodes));
  results.nodes.reserve(static_cast<std::size_t>(count));
  std::array<std::byte, kNodeRecordBytes> bytes{};
  for (std::uint64_t record = 1; record <= count; ++record) {
    file.Read(record * kNodeRecordBytes, bytes, "node record");
    const auto word = [&](std::size_t k) { return LoadReal(bytes.data() + 4 * k); };
    const int before = results.nodes.empty() ? 0 : results.nodes.back().node;
    const int node = NodeNumber(file, word(0), record, before, results.visited_nodes);
    results.nodes.push_back({node, word(1), word(2), word(3), word(4)});
  }
  return results;
}

std::vector<std::size_t> MostUsed(const NodeResults& results, std::size_t count) {
  std::vector<std::size_t> order(results.nodes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto rank = [&](std::size_t i) {
    const float usage = results.nodes[i].usage;
    return std::isnan(usage) ? -std::numeric_limits<float>::infinity() : usage;
  };
  const auto before = [&](std::size_t a, std::size_t b) {
    return rank(a) != rank(b) ? rank(a) > rank(b) : a < b;
  };
  const std::size_t kept = std::min(count, order.size());
  std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(kept), order.end(), before);
  order.resize(kept);
  return order;
}

MatrixFile::MatrixFile(const std::string& path, std::optional<BinCounts> study) : file_(path) {
  range_bins_ = file_.Int(0, Word(0));
  Check(file_, range_bins_ >= 1 && range_bins_ <= kMaxBins, Word(0), range_bins_, "1 to 200 range bins");
  event_count_ = file_.Int(4, Word(1));
  Check(file_, event_count_ >= 1 && event_count_ <= kMaxMatrixEvents, Word(1), event_count_,
        "1 to 40 histories");
  announced_ = file_.Int(8, Word(2));
  Check(file_, announced_ >= 0 && announced_ <= kMatrixHeaderNodes - event_count_, Word(2), announced_,
        "0 to " + std::to_string(kMatrixHeaderNodes - event_count_) + " nodes");
  filter_percent_ = file_.Int(12, Word(3));
  if (!file_.Holds(0, kMatrixHeaderBytes)) {
    file_.Fault("header", std::to_string(file_.size()) + " bytes", "400 bytes");
  }
  mean_bins_ = FindMeanBins(study);
  const std::uint64_t blocks = (file_.size() - kMatrixHeaderBytes) / (4 * BlockWords(mean_bins_));
  const auto histories = static_cast<std::uint64_t>(event_count_);
  if (blocks < histories) {
    file_.Fault("number of matrices", std::to_string(blocks), "at least " + std::to_string(histories));
  }
  // The announced number is provisional in a single-location run, which may write fewer blocks.
  node_count_ = static_cast<int>(std::min((blocks - histories) / 2, static_cast<std::uint64_t>(announced_)));
}

// Whether the file is made of whole blocks with that many mean bins, a sound number of them.
bool MatrixFile::Divides(int mean_bins) const {
  const std::uint64_t block = 4 * BlockWords(mean_bins);
  const std::uint64_t body = file_.size() - kMatrixHeaderBytes;
  const auto histories = static_cast<std::uint64_t>(event_count_);
  if (body % block != 0 || body / block < histories) return false;
  const std::uint64_t node_blocks = body / block - histories;
  return node_blocks % 2 == 0 && node_blocks / 2 <= static_cast<std::uint64_t>(announced_);
}

int MatrixFile::FindMeanBins(std::optional<BinCounts> study) const {
  std::vector<int> fitting;
  if (study && study->range == range_bins_ && study->mean >= 1 && study->mean <= kMaxBins) {
    if (Divides(study->mean)) return study->mean;
  } else if (Divides(range_bins_)) {
    return range_bins_;
  } else {
    for (int bins = 1; bins <= kMaxBins; ++bins) {
      if (Divides(bins)) fitting.push_back(bins);
    }
  }
  if (fitting.size() == 1) return fitting.front();
  file_.Fault("size", std::to_string(file_.size()) + " bytes",
              "400 bytes and whole matrices of " + std::to_string(range_bins_) +
                  " range bins and the study's mean bins");
}

RangeMeanBlock MatrixFile::Block(int block) {
  RangeMeanBlock result;
  const std::string place = "matrix " + std::to_string(block);
  if (block < 1 || block > block_count()) {
    file_.Fault("number of a matrix", std::to_string(block), "1 to " + std::to_string(block_count()));
  }
  if (block > event_count_) {
    result.kind = (block - event_count_) % 2 == 1 ? MatrixKind::kDamage : MatrixKind::kCycles;
  }
  const std::uint64_t words = BlockWords(mean_bins_);
  const std::uint64_t start = kMatrixHeaderBytes + 4 * words * static_cast<std::uint64_t>(block - 1);
  const auto content = file_.Ints(start, words, place);
  result.identifier = content[0];
  result.range_origin = std::bit_cast<float>(content[1]);
  result.range_width = std::bit_cast<float>(content[2]);
  result.mean_origin = std::bit_cast<float>(content[3]);
  result.mean_width = std::bit_cast<float>(content[4]);
  result.range_bins = range_bins_;
  result.mean_bins = mean_bins_;
  result.values.reserve(content.size() - 5);
  for (std::size_t w = 5; w < content.size(); ++w) {
    const bool real = result.kind == MatrixKind::kDamage;
    result.values.push_back(real ? static_cast<double>(std::bit_cast<float>(content[w]))
                                 : static_cast<double>(content[w]));
  }
  return result;
}

std::vector<ResultRecord> ReadResultRecords(const std::string& path) {
  BinaryFile file(path);
  const std::int64_t counted = file.Int(0, "record 1");
  const auto held = std::max<std::int64_t>(static_cast<std::int64_t>(file.size() / kResultRecordBytes), 1);
  if (counted < 1 || counted > held + kMostUnwritten) {
    file.Fault("record 1, number of the last record", std::to_string(counted),
               "1 to " + std::to_string(held) + "; delete the file, or build the study again");
  }
  const std::int64_t last = std::min(counted, held);
  std::vector<ResultRecord> records;
  for (std::int64_t number = 2; number <= last; ++number) {
    const std::uint64_t offset = static_cast<std::uint64_t>(number - 1) * kResultRecordBytes;
    auto content = file.Ints(offset, kResultRecordBytes / 4, "record " + std::to_string(number));
    const int type = content.front();
    content.erase(content.begin());
    records.push_back({number, type, std::move(content)});
  }
  return records;
}

namespace {

// Words of a record by their place behind the type; absent ones are 0.
class RecordWords {
 public:
  explicit RecordWords(const ResultRecord& record) : words_(record.words) {}
  int Int(std::size_t k) const { return k < words_.size() ? words_[k] : 0; }
  float Real(std::size_t k) const { return std::bit_cast<float>(Int(k)); }

 private:
  const std::vector<std::int32_t>& words_;
};

PairRecord PairOf(const ResultRecord& record) {
  const RecordWords w(record);
  PairRecord pair;
  if (record.type == 2) {
    pair = {0, w.Int(0), w.Int(1), w.Int(2), w.Int(3), w.Int(4), w.Real(5)};
    pair.alternating_stress = w.Real(6);
    pair.partial_usage = w.Real(7);
  } else if (record.type == 4) {
    pair = {w.Int(0), w.Int(1), w.Int(2), w.Int(3), w.Int(4)};
    pair.alternating_stress = w.Real(5);
  } else {
    pair = {0, w.Int(0), 0, w.Int(1), 0, w.Int(2), w.Real(3), w.Real(4), w.Real(5), w.Real(7), w.Real(6)};
    pair.partial_usage = w.Real(8);
  }
  return pair;
}

}  // namespace

std::vector<LocationResult> ReadLocationResults(const std::string& path) {
  std::vector<LocationResult> runs;
  for (const ResultRecord& record : ReadResultRecords(path)) {
    if (record.type == kUnwritten) continue;
    const RecordWords w(record);
    if (record.type == 1) {
      LocationResult run;
      run.location = w.Int(0);
      run.node = w.Int(1);
      run.shell_surface = w.Int(2);
      run.shell_layer = w.Int(3);
      runs.push_back(run);
      continue;
    }
    if (runs.empty()) runs.emplace_back();
    LocationResult& run = runs.back();
    switch (record.type) {
      case 2:
      case 4:
      case 5:
        run.pairs.push_back(PairOf(record));
        run.elastic_plastic = run.elastic_plastic || record.type == 5;
        run.usage_evaluated = run.usage_evaluated && record.type != 4;
        break;
      case 3:
      case 6:
        run.usage.push_back(w.Real(0));
        run.elastic_plastic = run.elastic_plastic || record.type == 6;
        break;
      default:
        BinaryFile(path).Fault("type of record " + std::to_string(record.number), std::to_string(record.type),
                               "1 to 6");
    }
  }
  return runs;
}

}  // namespace zentor::companion
