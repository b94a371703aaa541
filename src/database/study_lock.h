// One program at a time works on a study: the lock that a build and a run take, and the mark of a study whose
// files a build has not replaced to the end (docs/formats/build.md).
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "platform/file_lock.h"

namespace zentor {

// Where a build gathers the files of the study, and the file in it that stands while it replaces them.
std::string BuildFolder(const std::string& study_base);
std::string HalfBuiltMark(const std::string& study_base);

inline constexpr std::chrono::milliseconds kLockPatience{2000};
// The environment variable in which a program hands its lock down to the solver that it starts.
inline constexpr const char* kLockVariable = "ZENTOR_STUDY_LOCK";

class StudyLock {
 public:
  // Takes the lock of the study for `program`, or takes part in that of the parent process. While another
  // holds it, tries again until the patience ends. Throws FileError, and InputFault for a file in the lock's
  // place.
  StudyLock(const std::string& study_base, std::string_view program,
            std::chrono::milliseconds patience = kLockPatience);

  // Empty, or who has the lock: "zentor-fatigue, process 12 on host since 2026-02-01 12:00:00".
  const std::string& holder() const { return holder_; }
  // Empty, or why nothing keeps others away though nobody has the lock: its file system has no locks.
  const std::string& unprotected() const { return unprotected_; }
  // Whether there is something to lock: without the study's folder, or a right to open anything in it,
  // whoever opens the study says what is wrong. False only when holder and unprotected are empty, too.
  bool Held() const { return lock_.Held(); }
  std::intptr_t Handle() const { return lock_.Handle(); }

 private:
  bool Try(const std::string& study_base);

  platform::FileLock lock_;
  std::string holder_, unprotected_;
};

}  // namespace zentor
