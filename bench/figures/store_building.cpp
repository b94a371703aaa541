// The nodal stress store of a stress file in the disk cache against plain reads of the same bytes.
#include <omp.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "figures/measurements.h"
#include "figures/solid_study.h"
#include "platform/files.h"
#include "stress/nodal_stress_store.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor::bench {
namespace {

struct Cube {
  std::string base;
  int side = 0;
  int steps = 0;
  int Nodes() const { return (side + 1) * (side + 1) * (side + 1); }
};

void ReadInBlocks(const std::string& path) {
  const auto file = platform::NativeFileSystem().Open(path, platform::OpenMode::kReadOnly);
  std::vector<std::byte> block(std::size_t{1} << 20U);
  std::uint64_t offset = 0;
  for (std::size_t read = block.size(); read == block.size(); offset += read) {
    read = file->ReadAt(offset, block);
  }
}

void BuildStore(const Cube& cube, int threads) {
  omp_set_num_threads(threads);
  test::RecordingServices services(cube.base);
  services.largest_block = std::uint64_t{1} << 36U;
  RunContext run(platform::NativeFileSystem(), services);
  StudyState study;
  study.stress_kind = StressKind::kSte;
  study.sizes.highest_node = cube.Nodes();
  study.sizes.highest_element = cube.side * cube.side * cube.side;
  std::vector<StoreLoading> loadings;
  for (int step = 1; step <= cube.steps; ++step) loadings.push_back({.load_case = step, .time_step = 1});
  const NodalStressStore store = BuildNodalStressStore(run, study, loadings);
  if (!(store.NodalStress(1, 1)[0] > 0.0)) throw std::runtime_error("the store lacks a stress");
}

}  // namespace

std::vector<Figure> MeasureStoreBuilding(const ReportOptions& options) {
  const test::TempFolder folder;
  const Cube cube{folder.Path("cube"), options.quick ? 60 : 100, options.quick ? 2 : 4};
  const std::string path = cube.base + ".STE";
  const int rounds = options.quick ? 7 : 9;
  Announce("nodal stress store of " + std::to_string(cube.side) + "^3 solids, " + std::to_string(cube.steps) +
           " steps");
  WriteSolidCube(path, cube.side, cube.steps);
  const auto bytes = static_cast<double>(std::filesystem::file_size(path));
  const int threads = omp_get_max_threads();
  ReadInBlocks(path);  // fills the disk cache
  const Paired one = TimePaired(
      rounds, [&] { ReadInBlocks(path); }, [&] { BuildStore(cube, 1); });
  const Paired two = TimePaired(
      rounds / 2, [&] { ReadInBlocks(path); }, [&] { BuildStore(cube, 2); });
  omp_set_num_threads(threads);
  return {
      {.name = Formatted("nodal stress store from a cached .STE of %.2f GB", bytes / 1e9),
       .reference = "rate of read() in 1 MiB blocks",
       .measured = 100.0 * one.ratio,
       .goal = 40,
       .stretch = 70,
       .unit = "%",
       .note = Formatted("%.0f MB/s, read() %.0f MB/s; with two threads %.0f MB/s", bytes / one.seconds / 1e6,
                         bytes / one.reference_seconds / 1e6, bytes / two.seconds / 1e6)}};
}

}  // namespace zentor::bench
