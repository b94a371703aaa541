// Builds the nodal stress store of a block of eight-node solids and compares its speed with plain large reads
// of the same bytes, which are in the disk cache.
//
//   store_build [elements per side = 100] [steps = 2] [rounds = 5]
//
// Prints one line per round pair and, last, the best of each with their ratio, and the peak memory beside the
// size of the store.
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "authoring/stress_file_writer.h"
#include "platform/files.h"
#include "stress/nodal_stress_store.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace {

using namespace zentor;

double Seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// A cube of side^3 elements, numbered with x fastest, written as ".STE".
void WriteCube(const std::string& path, int side, int steps) {
  StressFileWriter writer(platform::NativeFileSystem(), path,
                          {.pointer_width = 2, .steps = steps, .highest_element = side * side * side});
  const int row = side + 1;
  std::vector<float> values(48);
  for (int step = 1; step <= steps; ++step) {
    writer.BeginStep();
    int element = 0;
    for (int z = 0; z < side; ++z) {
      for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
          const int corner = (z * row + y) * row + x + 1;
          const int up = row * row;
          const std::int32_t nodes[8] = {
              corner,      corner + 1,      corner + row + 1,      corner + row,
              corner + up, corner + up + 1, corner + up + row + 1, corner + up + row};
          for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = static_cast<float>((element * 7 + static_cast<int>(i) * 3 + step) % 1000) * 0.25F;
          }
          writer.Add({.element = ++element, .type_code = 45, .nodes = nodes, .values = values});
        }
      }
    }
  }
  writer.Finish();
}

double TimeReading(const std::string& path) {
  const auto file = platform::NativeFileSystem().Open(path, platform::OpenMode::kReadOnly);
  std::vector<std::byte> block(std::size_t{1} << 20U);
  const double start = Seconds();
  std::uint64_t offset = 0;
  for (std::size_t read = block.size(); read == block.size(); offset += read)
    read = file->ReadAt(offset, block);
  return Seconds() - start;
}

double TimeBuilding(const std::string& study_path, int side, int steps) {
  test::RecordingServices services(study_path);
  services.largest_block = std::uint64_t{64} << 30U;
  RunContext run(platform::NativeFileSystem(), services);
  StudyState study;
  study.stress_kind = StressKind::kSte;
  study.sizes.highest_node = (side + 1) * (side + 1) * (side + 1);
  study.sizes.highest_element = side * side * side;
  std::vector<StoreLoading> loadings;
  for (int step = 1; step <= steps; ++step) loadings.push_back({.load_case = step, .time_step = 1});
  const double start = Seconds();
  const NodalStressStore store = BuildNodalStressStore(run, study, loadings);
  const double seconds = Seconds() - start;
  if (store.NodalStress(1, 1)[0] < 0.0) std::puts("unexpected stress");
  return seconds;
}

double PeakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024 / 1e6;
}

int Argument(int argc, char** argv, int place, int otherwise) {
  return argc > place ? std::atoi(argv[place]) : otherwise;
}

}  // namespace

int main(int argc, char** argv) {
  const int side = Argument(argc, argv, 1, 100), steps = Argument(argc, argv, 2, 2);
  const int rounds = Argument(argc, argv, 3, 5);
  const test::TempFolder folder;
  const std::string study = folder.Path("cube"), path = study + ".STE";
  WriteCube(path, side, steps);
  const double bytes = static_cast<double>(std::filesystem::file_size(path));

  TimeReading(path);  // fills the disk cache
  const double before = PeakMegabytes();
  double reading = 1e30, building = 1e30;
  for (int round = 0; round < rounds; ++round) {
    const double read = TimeReading(path), built = TimeBuilding(study, side, steps);
    std::printf("read %.0f MB/s   build %.0f MB/s\n", bytes / read / 1e6, bytes / built / 1e6);
    reading = std::min(reading, read);
    building = std::min(building, built);
  }
  const double nodes = static_cast<double>(side + 1) * (side + 1) * (side + 1);
  std::printf("peak memory %.0f MB, of which %.0f before the first store; the store takes %.0f MB\n",
              PeakMegabytes(), before, nodes * 24 * steps / 1e6);
  std::printf("%.0f MB: read %.0f MB/s, build %.0f MB/s, ratio %.2f\n", bytes / 1e6, bytes / reading / 1e6,
              bytes / building / 1e6, reading / building);
  return 0;
}
