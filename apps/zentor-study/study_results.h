// The result files of a run: ".FTR" (docs/formats/ftr.md), ".FTD" (docs/formats/ftd.md), ".FTI"
// (docs/formats/fti.md). The only readers of these files. All throw InputFault for a file that contradicts
// itself, FileError when the system fails.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "binary_file.h"

namespace zentor::companion {

// One record of ".FTR".
struct NodeResult {
  int node = 0;
  float life = 0;              // of the study's only event, in cycles or repetitions; 0 with several events
  float usage = 0;             // cumulative usage factor
  float factor_of_safety = 0;  // with one event, constant amplitude; else 0
  float biaxiality = 0;        // cycle-weighted mean ratio
};

// A life or a factor from here on stands for no limit: what a run writes for a node without damage.
inline constexpr float kEndlessLife = 1.0E32F;

struct NodeResults {
  int visited_nodes = 0;  // highest node number of the model
  int element_count = 0;
  int event_count = 0;  // events, or histories of a variable-amplitude study
  bool variable_amplitude = false;
  std::vector<NodeResult> nodes;  // in ascending node order

  bool HasLife() const { return event_count == 1; }
  bool HasFactorOfSafety() const { return event_count == 1 && !variable_amplitude; }

  // What a record means: infinite without damage, whatever the record holds then; nothing where the run does
  // not evaluate it.
  std::optional<float> Life(const NodeResult& node) const;
  std::optional<float> FactorOfSafety(const NodeResult& node) const;
};

// How often all events together can be repeated: 1 / usage factor, infinite without damage, NaN without a
// usage factor.
float LifeFactor(float usage);
// For people: the number, "unlimited" when it is infinite, "-" when there is none.
std::string LimitText(std::optional<float> value);

// Whether the run that wrote the ".FTR" file stopped or was killed before its header.
bool NodeResultsUnfinished(const std::string& path);

NodeResults ReadNodeResults(const std::string& path);
// Indices into results.nodes of the `count` highest usage factors, highest first, equal ones in node order;
// NaN last.
std::vector<std::size_t> MostUsed(const NodeResults& results, std::size_t count);

enum class MatrixKind {
  kHistory,  // counted cycles of an event's history
  kDamage,   // partial usage factors of a node
  kCycles,   // cycles of a node times the repetitions of event 1
};

// A range-mean matrix with the place of its bins.
struct RangeMeanBlock {
  MatrixKind kind = MatrixKind::kHistory;
  int identifier = 0;  // event or node number
  float range_origin = 0, range_width = 0;
  float mean_origin = 0, mean_width = 0;
  int range_bins = 0, mean_bins = 0;
  std::vector<double> values;  // range index fastest

  // i = 1 .. range_bins, j = 1 .. mean_bins
  double At(int i, int j) const {
    return values[static_cast<std::size_t>(j - 1) * static_cast<std::size_t>(range_bins) +
                  static_cast<std::size_t>(i - 1)];
  }
};

// Bins as the study has them.
struct BinCounts {
  int range = 0, mean = 0;
};

// An open ".FTD". Blocks 1 .. event_count are the histories; then a damage and a cycle block per node.
class MatrixFile {
 public:
  // The file does not hold its number of mean bins. It is that of the study, where the study has the file's
  // number of range bins; else the number of range bins, else the one that the file's size allows. A size
  // that does not fit is a fault, so a cut file is never read with other bins than its own.
  explicit MatrixFile(const std::string& path, std::optional<BinCounts> study = std::nullopt);

  int range_bins() const { return range_bins_; }
  int mean_bins() const { return mean_bins_; }
  int event_count() const { return event_count_; }
  int node_count() const { return node_count_; }          // node block pairs that the file holds
  int announced_nodes() const { return announced_; }      // header word 2
  int filter_percent() const { return filter_percent_; }  // cut to an integer
  int block_count() const { return event_count_ + 2 * node_count_; }
  RangeMeanBlock Block(int block);  // 1 .. block_count()

 private:
  std::uint64_t BlockWords(int mean_bins) const {
    return static_cast<std::uint64_t>(range_bins_) * static_cast<std::uint64_t>(mean_bins) + 5;
  }
  bool Divides(int mean_bins) const;
  int FindMeanBins(std::optional<BinCounts> study) const;

  BinaryFile file_;
  int range_bins_ = 0, mean_bins_ = 0, event_count_ = 0, node_count_ = 0, announced_ = 0, filter_percent_ = 0;
};

// A record of ".FTI" about a pair of loadings or a class of cycles (types 2, 4 and 5).
struct PairRecord {
  int number = 0;  // type 4: place in the order of stresses; else 0
  int loading_a = 0, event_a = 0, loading_b = 0, event_b = 0;  // events: not in type 5
  int used_cycles = 0;
  float allowed_cycles = 0;
  float temperature = 0, ke = 0, sn = 0;  // type 5
  float alternating_stress = 0;
  float partial_usage = 0;
};

// What one single-location run left in ".FTI".
struct LocationResult {
  int location = 0, node = 0, shell_surface = 0, shell_layer = 0;
  bool elastic_plastic = false;  // types 5 and 6
  bool usage_evaluated = true;   // false: pairs without S-N curve (type 4)
  std::vector<PairRecord> pairs;
  std::vector<float> usage;  // one per pass over the node: two in variable amplitude
};

struct ResultRecord {
  std::int64_t number = 0;
  int type = 0;
  std::vector<std::int32_t> words;  // behind the type, as many as the record holds
};

// All whole records from 2 on, in order; of type 0 are those that an unfinished run has not written.
std::vector<ResultRecord> ReadResultRecords(const std::string& path);
// The runs in the order they were made, without records of type 0. Throws InputFault for an unknown type.
std::vector<LocationResult> ReadLocationResults(const std::string& path);

}  // namespace zentor::companion
