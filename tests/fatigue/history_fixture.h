// A study folder with a ".FLH" and the run that reads it.
#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "platform/files.h"
#include "services/faults.h"
#include "services/stop.h"
#include "study/run_context.h"
#include "study/study_state.h"
#include "support/recording_services.h"
#include "support/temp_folder.h"

namespace zentor::test {

struct Curve {
  std::vector<float> times, values;
};

// Words of a history file: header, directory, every curve's times and values; one without values is absent.
inline std::vector<std::int32_t> HistoryWords(const std::vector<Curve>& curves, bool times_flag = true) {
  std::vector<std::int32_t> words(10 + 2 * curves.size());
  words[1] = static_cast<std::int32_t>(curves.size());
  words[2] = times_flag ? 7 : 0;
  for (std::size_t k = 0; k < curves.size(); ++k) {
    if (curves[k].values.empty()) continue;
    words[10 + 2 * k] = static_cast<std::int32_t>(words.size());
    words[11 + 2 * k] = static_cast<std::int32_t>(curves[k].values.size());
    for (const float t : curves[k].times) words.push_back(std::bit_cast<std::int32_t>(t));
    for (const float v : curves[k].values) words.push_back(std::bit_cast<std::int32_t>(v));
  }
  return words;
}

class HistoryFixture : public testing::Test {
 protected:
  void WriteHistory(std::span<const std::int32_t> words) {
    WriteBytes(services.StudyFileName(".FLH"), std::as_bytes(words));
  }
  Event& AddEvent(int curve, int start_point = 1, int end_point = 0) {
    Event& event = study.definition.events[++study.definition.event_count];
    event.curve = curve;
    event.repetitions = 1;
    event.start_point = start_point;
    event.end_point = end_point;
    return event;
  }
  // True when the call stopped the run.
  template <typename Call>
  static bool Stops(Call call) {
    try {
      call();
    } catch (const RunStopped&) {
      return true;
    }
    return false;
  }
  // Message and first argument of the only box, 0 without one.
  struct Box {
    int message = 0;
    float argument = 0.0F;
    bool operator==(const Box&) const = default;
  };
  Box OnlyBox() const {
    if (services.asked.size() != 1) return {};
    const auto& asked = services.asked.front();
    return {asked.message, asked.arguments.empty() ? 0.0F : asked.arguments.front()};
  }

  TempFolder folder;
  RecordingServices services{folder.Path("study")};
  RunContext run{platform::NativeFileSystem(), services};
  StudyState study;
};

}  // namespace zentor::test
