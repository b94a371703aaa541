#include "database/study_lock.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <thread>

#include "platform/files.h"
#include "platform/system.h"
#include "services/faults.h"

namespace zentor {

namespace {

using platform::FileError;

constexpr std::string_view kSuite = "zentor-";  // every signature begins with the name of a program of ours

std::string LockPath(const std::string& study_base) { return study_base + ".LCK"; }

// Locked instead by runs in a folder where nothing can be created, and so no build replaces it.
std::string MasterPath(const std::string& study_base) { return study_base + ".MAS"; }

std::string Signature(std::string_view program) {
  const platform::LocalTime now = platform::LocalTimeNow();
  std::array<char, 32> since{};
  std::snprintf(since.data(), since.size(), "%04d-%02d-%02d %02d:%02d:%02d", now.year, now.month, now.day,
                now.hour, now.minute, now.second);
  return std::string(program) + ", process " + std::to_string(platform::ProcessId()) + " on " +
         platform::HostName() + " since " + since.data() + "\n";
}

// Who has signed the lock. It may be about to, and the file may hold anything.
std::string HolderOf(const std::string& path) {
  constexpr std::size_t kMost = 200;
  std::string text(kMost, '\0');
  try {
    const auto file = platform::NativeFileSystem().Open(path, platform::OpenMode::kReadOnly);
    text.resize(file->ReadAt(0, std::as_writable_bytes(std::span(text))));
  } catch (const FileError&) {
    text.clear();
  }
  text.resize(std::min(text.find('\n'), text.size()));
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c > 0x7E; }, '?');
  return text.starts_with(kSuite) ? text : "another program";
}

}  // namespace

std::string BuildFolder(const std::string& study_base) { return study_base + ".BLD"; }

std::string HalfBuiltMark(const std::string& study_base) { return BuildFolder(study_base) + "/replacing"; }

StudyLock::StudyLock(const std::string& study_base, std::string_view program,
                     std::chrono::milliseconds patience) {
  const std::string path = LockPath(study_base);
  const std::string handle = platform::Environment(kLockVariable).value_or("");
  if (lock_.Join(path, handle) || lock_.Join(MasterPath(study_base), handle)) return;
  constexpr std::chrono::milliseconds kPause{20};
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!Try(study_base)) {
    if (std::chrono::steady_clock::now() >= end) {
      holder_ = HolderOf(path);
      return;
    }
    std::this_thread::sleep_for(kPause);
  }
  if (lock_.Path() != path) return;
  const std::string found = lock_.Text();
  if (!found.empty() && !found.starts_with(kSuite)) {
    throw InputFault(path, "the study's lock", "a file of something else", "no file of that name");
  }
  lock_.Sign(Signature(program));
}

// Whether there is an end to trying.
bool StudyLock::Try(const std::string& study_base) {
  try {
    return lock_.Try(LockPath(study_base), true);
  } catch (const FileError& error) {
    if (platform::IsUnsupported(error.system_code())) unprotected_ = error.what();
    if (!unprotected_.empty() || error.NotThere()) return true;
    if (!platform::IsNotPermitted(error.system_code())) throw;
  }
  try {
    return lock_.Try(MasterPath(study_base), false);
  } catch (const FileError&) {
    return true;
  }
}

}  // namespace zentor
