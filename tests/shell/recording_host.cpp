// A progress library that records its calls and answers as a test tells it. With ZENTOR_PARTIAL_HOST it lacks
// the entry points that a library may lack.
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>

namespace {

struct Record {
  std::mutex mutex;
  std::string calls;  // one per line
  int abort = 0, suspend = 0, step_text = 0;
};

Record& TheRecord() {
  static Record record;
  return record;
}

void Note(const std::string& call) {
  Record& record = TheRecord();
  const std::lock_guard lock(record.mutex);
  record.calls += call + "\n";
}

void Note(const char* name, int value) { Note(std::string(name) + " " + std::to_string(value)); }

// ASCII of a wide text, line feeds shown as "|".
std::string Narrow(const char16_t* text) {
  std::string out;
  for (; *text != 0; ++text) out += *text == u'\n' ? '|' : *text < 0x80 ? static_cast<char>(*text) : '?';
  return out;
}

int Read(int Record::*member) {
  Record& record = TheRecord();
  const std::lock_guard lock(record.mutex);
  return record.*member;
}

}  // namespace

#define ENTRY extern "C" [[gnu::visibility("default")]]

// For the test.
ENTRY void SetHostAnswers(int abort, int suspend, int step_text) {
  Record& record = TheRecord();
  const std::lock_guard lock(record.mutex);
  record.abort = abort, record.suspend = suspend, record.step_text = step_text;
}
// Hands the calls so far over and forgets them. The text is good until the next call.
ENTRY const char* TakeHostCalls() {
  static std::string taken;
  Record& record = TheRecord();
  const std::lock_guard lock(record.mutex);
  taken.swap(record.calls);
  record.calls.clear();
  return taken.c_str();
}

ENTRY void SetSolverType(const char16_t* text) { Note("SetSolverType " + Narrow(text)); }
ENTRY void LoadZentorString(const std::int32_t* start, const std::int32_t* end, const char16_t* pool,
                            const std::uint8_t* present) {
  const int n = 919;
  const auto length = static_cast<std::size_t>(end[n - 1] - start[n - 1]);
  Note("LoadZentorString " + Narrow(std::u16string(pool + start[n - 1], length).c_str()) + " " +
       std::to_string(present[n - 1]));
}
ENTRY void SetWindowHandle(void* handle) { Note("SetWindowHandle", handle != nullptr ? 1 : 0); }
ENTRY void SetSolverDirectory(const char* text) { Note("SetSolverDirectory " + std::string(text)); }
ENTRY void SetZentorLiteSignalled(int lite) { Note("SetZentorLiteSignalled", lite); }
ENTRY void ShowWindowHidden(int hidden) { Note("ShowWindowHidden", hidden); }
ENTRY void ExportedFunction(const char* name) { Note("ExportedFunction " + std::string(name)); }
ENTRY void SetWindowCaption(const char* text) { Note("SetWindowCaption " + std::string(text)); }
ENTRY void SetProgressBar2(int first, int second) {
  Note("SetProgressBar2 " + std::to_string(first) + " " + std::to_string(second));
}
ENTRY void SetScreenData(int value) { Note("SetScreenData", value); }
ENTRY void SetNonLinearIterationNumber(int value) { Note("SetNonLinearIterationNumber", value); }
ENTRY void SetNonLinearContactPoints(int value) { Note("SetNonLinearContactPoints", value); }
ENTRY void SetNonLinearContactIterationNumber(int value) {
  Note("SetNonLinearContactIterationNumber", value);
}
ENTRY int GetStatusForTimeStepNumberToBeWrittenToBuffer() { return Read(&Record::step_text); }
ENTRY void SetScreenMessage(const char16_t* text) { Note("SetScreenMessage " + Narrow(text)); }
ENTRY void SetNonLinearStepSize(const float* arguments) {
  Note("SetNonLinearStepSize", static_cast<int>(arguments[0]));
}
ENTRY void SetScreenData1(double zero, const char16_t* text) {
  Note("SetScreenData1 " + std::to_string(static_cast<int>(zero)) + " " + Narrow(text));
}
ENTRY void SetMessageBoxSignalled(int open) { Note("SetMessageBoxSignalled", open); }
ENTRY void ShowWarningMessage(const char16_t* text) { Note("ShowWarningMessage " + Narrow(text)); }

#ifndef ZENTOR_PARTIAL_HOST
ENTRY void SetElapsedTime(const char* text) { Note("SetElapsedTime " + std::string(text)); }
ENTRY void SetExitWindow() { Note("SetExitWindow"); }
ENTRY int GetSolverAbortSignaled() { return Read(&Record::abort); }
ENTRY int GetSuspendThreadStatus() { return Read(&Record::suspend); }
#endif
