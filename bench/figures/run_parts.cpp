#include "figures/run_parts.h"

#include <omp.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "fatigue/fatigue_run.h"
#include "fatigue/input_steps.h"
#include "fatigue/node_evaluator.h"
#include "figures/figure.h"
#include "platform/files.h"
#include "stress/pair_listing.h"
#include "study/read_study.h"
#include "support/recording_services.h"

namespace zentor::bench {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20U;

// A study as its run has it in front of the first node.
class PreparedRun {
 public:
  PreparedRun(const std::string& base, int threads)
      : services_(base), run_(platform::NativeFileSystem(), services_) {
    services_.largest_block = std::uint64_t{1} << 36U;
    InputSteps steps(run_);
    run_.study.start = {2000, 1, 1, 0, 0, 0};
    ReadStudy(run_.context, run_.study, steps);
    std::vector<StoreLoading> loadings;
    for (const Loading& loading : run_.study.definition.loadings) {
      loadings.push_back({loading.load_case, loading.time_step});
    }
    run_.store = BuildNodalStressStore(run_.context, run_.study, loadings);
    evaluator_ = MakeConstantAmplitudeEvaluator(run_, threads);
    results_.resize(static_cast<std::size_t>(run_.study.sizes.highest_node));
  }

  void Evaluate(int threads) {
    const auto nodes = static_cast<int>(results_.size());
#pragma omp parallel for schedule(dynamic, 64) num_threads(threads)
    for (int i = 0; i < nodes; ++i) {
      results_[static_cast<std::size_t>(i)] = evaluator_->Evaluate(i + 1, true, omp_get_thread_num());
    }
  }

  void Format(int threads, std::vector<std::string>& lines) const {
    const auto nodes = static_cast<int>(results_.size());
    lines.resize(static_cast<std::size_t>(threads));
#pragma omp parallel num_threads(threads)
    {
      std::string& own = lines[static_cast<std::size_t>(omp_get_thread_num())];
      own.clear();
#pragma omp for schedule(static)
      for (int i = 0; i < nodes; ++i) {
        AppendAllNodesLine(own, i + 1, results_[static_cast<std::size_t>(i)].usage);
      }
    }
  }

 private:
  test::RecordingServices services_;
  FatigueRun run_;
  std::unique_ptr<NodeEvaluator> evaluator_;
  std::vector<LocationResult> results_;
};

void ReadShared(const std::string& path, int threads) {
  const auto file = platform::NativeFileSystem().Open(path, platform::OpenMode::kReadOnly);
  const auto blocks = static_cast<std::int64_t>((file->Size() + kBlock - 1) / kBlock);
#pragma omp parallel num_threads(threads)
  {
    std::vector<std::byte> block(kBlock);
#pragma omp for schedule(static)
    for (std::int64_t i = 0; i < blocks; ++i) file->ReadAt(static_cast<std::uint64_t>(i) * kBlock, block);
  }
}

void WriteBlocks(const std::string& path, std::uint64_t bytes) {
  const auto file = platform::NativeFileSystem().Open(path, platform::OpenMode::kReplace);
  const std::vector<std::byte> block(kBlock);
  for (std::uint64_t offset = 0; offset < bytes; offset += kBlock) {
    file->WriteAt(offset, std::span(block).first(std::min<std::uint64_t>(kBlock, bytes - offset)));
  }
}

std::uint64_t ResultBytes(const std::string& base) {
  std::uint64_t bytes = 0;
  for (const char* extension : {".FTG", ".FTR", ".FTC"})
    bytes += std::filesystem::file_size(base + extension);
  return bytes;
}

}  // namespace

PartSeconds MeasureParts(const std::string& base, int threads, int rounds) {
  const std::uint64_t written = ResultBytes(base);
  PreparedRun prepared(base, threads);
  std::vector<std::string> lines;
  const std::string scratch = base + ".written";
  PartSeconds best;
  for (int round = 0; round < rounds; ++round) {
    const auto keep = [](double& seconds, auto work) { seconds = std::min(seconds, SecondsOf(work)); };
    keep(best.reading, [&] { ReadShared(base + ".STE", threads); });
    keep(best.evaluating, [&] { prepared.Evaluate(threads); });
    keep(best.formatting, [&] { prepared.Format(threads, lines); });
    keep(best.writing, [&] { WriteBlocks(scratch, written); });
    std::filesystem::remove(scratch);
  }
  return best;
}

}  // namespace zentor::bench
