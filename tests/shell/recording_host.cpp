// A progress library that records its calls and answers as a test tells it. With ZENTOR_PARTIAL_HOST it lacks
// the entry points that a library may lack.
#include <atomic>
#include <cstdint>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>

namespace {

std::mutex calls_mutex;
std::string calls;  // one per line
std::atomic<int> abort_answer = 0, suspend_answer = 0, step_text_answer = 0;

template <typename... Arguments>
void Note(const char* name, const Arguments&... arguments) {
  std::ostringstream line;
  line << name;
  ((line << ' ' << arguments), ...);
  const std::lock_guard lock(calls_mutex);
  calls += line.str() + '\n';
}

// ASCII of a wide text, line feeds shown as "|".
std::string Narrow(const char16_t* text) {
  std::string out;
  for (; *text != 0; ++text) out += *text == u'\n' ? '|' : *text < 0x80 ? static_cast<char>(*text) : '?';
  return out;
}

}  // namespace

#define ENTRY extern "C" [[gnu::visibility("default")]]

// For the test.
ENTRY void SetHostAnswers(int abort, int suspend, int step_text) {
  abort_answer = abort, suspend_answer = suspend, step_text_answer = step_text;
}
// Hands the calls so far over and forgets them. The text is good until the next call.
ENTRY const char* TakeHostCalls() {
  static std::string taken;
  const std::lock_guard lock(calls_mutex);
  taken = std::exchange(calls, {});
  return taken.c_str();
}

ENTRY void SetSolverType(const char16_t* text) { Note("SetSolverType", Narrow(text)); }
ENTRY void LoadZentorString(const std::int32_t* start, const std::int32_t* end, const char16_t* pool,
                            const std::uint8_t* present) {
  const std::u16string title(pool + start[918], pool + end[918]);
  Note("LoadZentorString", Narrow(title.c_str()), int{present[918]});
}
ENTRY void SetWindowHandle(void* handle) { Note("SetWindowHandle", handle != nullptr ? 1 : 0); }
ENTRY void SetSolverDirectory(const char* text) { Note("SetSolverDirectory", text); }
ENTRY void SetZentorLiteSignalled(int lite) { Note("SetZentorLiteSignalled", lite); }
ENTRY void ShowWindowHidden(int hidden) { Note("ShowWindowHidden", hidden); }
ENTRY void ExportedFunction(const char* name) { Note("ExportedFunction", name); }
ENTRY void SetWindowCaption(const char* text) { Note("SetWindowCaption", text); }
ENTRY void SetProgressBar2(int first, int second) { Note("SetProgressBar2", first, second); }
ENTRY void SetScreenData(int value) { Note("SetScreenData", value); }
ENTRY void SetNonLinearIterationNumber(int value) { Note("SetNonLinearIterationNumber", value); }
ENTRY void SetNonLinearContactPoints(int value) { Note("SetNonLinearContactPoints", value); }
ENTRY void SetNonLinearContactIterationNumber(int value) {
  Note("SetNonLinearContactIterationNumber", value);
}
ENTRY int GetStatusForTimeStepNumberToBeWrittenToBuffer() { return step_text_answer; }
ENTRY void SetScreenMessage(const char16_t* text) { Note("SetScreenMessage", Narrow(text)); }
ENTRY void SetNonLinearStepSize(const float* arguments) { Note("SetNonLinearStepSize", arguments[0]); }
ENTRY void SetScreenData1(double zero, const char16_t* text) { Note("SetScreenData1", zero, Narrow(text)); }
ENTRY void SetMessageBoxSignalled(int open) { Note("SetMessageBoxSignalled", open); }
ENTRY void ShowWarningMessage(const char16_t* text) { Note("ShowWarningMessage", Narrow(text)); }

#ifndef ZENTOR_PARTIAL_HOST
ENTRY void SetElapsedTime(const char* text) { Note("SetElapsedTime", text); }
ENTRY void SetExitWindow() { Note("SetExitWindow"); }
ENTRY int GetSolverAbortSignaled() { return abort_answer; }
ENTRY int GetSuspendThreadStatus() { return suspend_answer; }
#endif
