// A study on disk with a stress file made word by word, and the store built from it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "services/faults.h"
#include "stress/nodal_stress_store.h"
#include "study/run_context.h"
#include "study/study_state.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor::test {

// A file of 32-bit words; grows with zeros to hold every word that is set.
class WordFile {
 public:
  void Int(std::size_t word, std::int32_t value) {
    if (word >= words_.size()) words_.resize(word + 1);
    words_[word] = value;
  }
  void Real(std::size_t word, float value) { Int(word, std::bit_cast<std::int32_t>(value)); }
  void Fill(std::size_t first, std::size_t count, float value) {
    for (std::size_t i = 0; i < count; ++i) Real(first + i, value);
  }
  std::int32_t at(std::size_t word) const { return words_.at(word); }
  std::size_t size() const { return words_.size(); }
  void Write(const std::string& path) const { WriteBytes(path, std::as_bytes(std::span(words_))); }

 private:
  std::vector<std::int32_t> words_;
};

// A stress file with one-word pointers: header, `steps` step pointers at word 20, `elements` element
// pointers, then the blocks of the steps.
struct StressWords : WordFile {
  StressWords(int steps, int elements) {
    Int(0, 20);
    Int(1, steps);
    Int(3, elements);
    Int(5, steps);
    Int(18, 1);
    Int(19, 0);
    for (int word = 0; word < steps + elements; ++word) Int(20 + static_cast<std::size_t>(word), 0);
    element_table = 20 + static_cast<std::size_t>(steps);
  }
  // The step's block starts at a word of the file.
  void Step(int step, std::size_t word) {
    Int(19 + static_cast<std::size_t>(step), static_cast<std::int32_t>(4 * word));
  }
  void Element(int element, int pointer) {
    Int(element_table - 1 + static_cast<std::size_t>(element), pointer);
  }
  // Head of the element record that starts at a word of the file.
  void Head(std::size_t word, int element, int length, int type_code, int nodes, int layers) {
    Real(word, static_cast<float>(element));
    Real(word + 1, static_cast<float>(length));
    Real(word + 2, static_cast<float>(type_code));
    Real(word + 3, static_cast<float>(nodes));
    Real(word + 5, static_cast<float>(layers));
  }
  // A solid (type 45) of ".STE", 29 + 8 n words; every node has stresses value, value + 1, ... value + 5.
  void Solid(std::size_t word, int element, const std::vector<int>& nodes, float value) {
    const int n = static_cast<int>(nodes.size());
    Head(word, element, 29 + 8 * n, 45, n, 1);
    for (std::size_t j = 0; j < nodes.size(); ++j) {
      Real(word + 29 + 8 * j, static_cast<float>(nodes[j]));
      for (std::size_t c = 0; c < 6; ++c) Real(word + 30 + 8 * j + c, value + static_cast<float>(c));
    }
    Real(word + static_cast<std::size_t>(28 + 8 * n), 0.0F);
  }

  std::size_t element_table = 0;
};

class StressStudy : public ::testing::Test {
 protected:
  StressStudy() {
    study.stress_kind = StressKind::kSte;
    study.properties.ShellLayer = 1;
    study.properties.ShellSurface = 1;
    study.sizes.highest_node = study.sizes.node_count = 9;
    study.sizes.highest_element = study.sizes.element_count = 9;
    run.listing.Open(files, folder.Path("part.FTG"), TextRecordFile::Mode::kNew);
  }
  std::string Path(std::string_view extension) const { return folder.Path("part") + std::string(extension); }
  NodalStressStore Build(std::vector<StoreLoading> loadings) {
    return BuildNodalStressStore(run, study, loadings);
  }
  NodalStressStore BuildCase(int load_case) { return Build({{.load_case = load_case, .time_step = 1}}); }
  // The message of the only box that was shown when the build stopped, 0 when it did not stop that way.
  int StopsWith(const std::vector<StoreLoading>& loadings) {
    services.asked.clear();
    EXPECT_THROW(Build(loadings), RunStopped);
    EXPECT_EQ(services.GetStudyName(), folder.Path("part"));
    return services.asked.size() == 1 && services.asked[0].style == BoxStyle::kError
               ? services.asked[0].message
               : 0;
  }
  std::string Listing() {
    run.listing.Flush();
    return ReadText(Path(".FTG"));
  }

  TempFolder folder;
  RecordingServices services{folder.Path("part")};
  platform::FileSystem& files = platform::NativeFileSystem();
  RunContext run{files, services};
  StudyState study;
};

inline StressTensor Rising(double first) {
  return {first, first + 1, first + 2, first + 3, first + 4, first + 5};
}

}  // namespace zentor::test
