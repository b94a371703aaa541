// Programs of which any one call for files or memory fails, and in turn every later one: none ends by a
// signal, and none that says it is done has other results than the undisturbed program.
//
// A bounded number of calls by default; all of them with ZENTOR_EVERY_CALL=1.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <regex>
#include <string>

#include "support/temp_folder.h"

namespace zentor {
namespace {

using test::ReadText;

enum class Program { kSolver, kBuild, kRun, kResults };

struct Sweep {
  const char* name;
  Program program;
  const char* study;
  const char* kind;
  int error = EIO;
  bool later = false;  // every later call fails, too
};

const Sweep kSweeps[] = {
    {"SolverFiles", Program::kSolver, "location", "files"},
    {"SolverForbidden", Program::kSolver, "location", "files", EACCES},
    {"SolverDiskGone", Program::kSolver, "histories", "files", EIO, true},
    {"SolverHistories", Program::kSolver, "histories", "files", ENOSPC},
    {"SolverAllNodes", Program::kSolver, "kinds", "files"},
    {"SolverMemory", Program::kSolver, "location", "memory"},
    {"SolverMemoryGone", Program::kSolver, "location", "memory", ENOMEM, true},
    {"SolverMemoryAllNodes", Program::kSolver, "kinds", "memory"},
    {"SolverMemoryGoneAllNodes", Program::kSolver, "kinds", "memory", ENOMEM, true},
    {"SolverMemoryHistories", Program::kSolver, "histories", "memory", ENOMEM, true},
    {"BuildFiles", Program::kBuild, "location", "files", ENOSPC},
    {"BuildMemory", Program::kBuild, "location", "memory"},
    {"BuildMemoryGone", Program::kBuild, "location", "memory", ENOMEM, true},
    {"RunFiles", Program::kRun, "location", "files"},
    {"RunMemory", Program::kRun, "location", "memory"},
    {"ResultsFiles", Program::kResults, "kinds", "files"},
    {"ResultsMemoryGone", Program::kResults, "kinds", "memory", ENOMEM, true},
};

class FailingCalls : public testing::TestWithParam<Sweep> {
 protected:
  FailingCalls() {
    std::filesystem::copy(ZENTOR_EXAMPLES "/expected", folder_.Path("in"));
    EXPECT_EQ(Shell(Command(Program::kBuild)), 0);
    if (GetParam().program == Program::kResults) {
      EXPECT_EQ(Shell(Command(Program::kSolver)), 1 << 8) << "its end of a run";
    }
    sound_ = folder_.Contents("out");
  }

  // Of the program that this sweep is about.
  static std::string Command(Program program) {
    const std::string folder = std::string("exec '") + ZENTOR_PROGRAM_DIRECTORY;
    switch (program) {
      case Program::kSolver:
        return folder + "/zentor-fatigue' run out/job -silent";
      case Program::kBuild:
        return folder + "/zentor-study' build in/" + GetParam().study + ".toml -o out/job";
      case Program::kRun:
        return folder + "/zentor-study' run out/job -q --json";
      case Program::kResults:
        return folder + "/zentor-study' results out/job --csv out/job.csv";
    }
    return {};
  }
  // The status that waiting for the command gives.
  int Shell(const std::string& command) const {
    return std::system(("cd '" + folder_.Path() + "' && mkdir -p out && OMP_NUM_THREADS=2 " + command +
                        " >told 2>&1 </dev/null")
                           .c_str());
  }
  int RunFailing(long call) const {
    const Sweep& sweep = GetParam();
    const bool solver = sweep.program == Program::kSolver;
    std::string command = Command(sweep.program);
    command.insert(command.find('\''), "env LD_PRELOAD='" ZENTOR_FAILING_CALLS "' ZENTOR_FAIL_PROGRAM=" +
                                           std::string(solver ? "zentor-fatigue" : "zentor-study") +
                                           " ZENTOR_FAIL_KIND=" + sweep.kind +
                                           " ZENTOR_FAIL_ERROR=" + std::to_string(sweep.error) +
                                           " ZENTOR_FAIL_LATER=" + (sweep.later ? "1" : "0") +
                                           " ZENTOR_FAIL_CALL=" + std::to_string(call) +
                                           (call == 0 ? " ZENTOR_FAIL_COUNT=count " : " "));
    return Shell(command);
  }
  void Restore() const {
    for (const auto& [name, content] : folder_.Contents("out")) {
      if (sound_.count(name) == 0) std::filesystem::remove_all(folder_.Path("out/" + name));
    }
    for (const auto& [name, content] : sound_) {
      const std::string path = folder_.Path("out/" + name);
      if (ReadText(path) != content) test::WriteText(path, content);
    }
  }
  // What a person would compare: of the listing without clock times, of a built study all files.
  std::map<std::string, std::string> Results() const {
    static const std::regex times(R"(\d+/ *\d+/\d+ .*|.*T I M E .*|.*\d\d:\d\d:\d\d.*)");
    std::map<std::string, std::string> results = folder_.Contents("out");
    for (const char* written : {"job.LOG", "job.MAS", "job.FTC"})
      if (GetParam().program != Program::kBuild) results.erase(written);
    for (const char* listing : {"job.FTG", "job.OUT"})
      if (results.count(listing) != 0) results[listing] = std::regex_replace(results[listing], times, "");
    return results;
  }
  bool SaysDone(int exit_code) const {
    if (GetParam().program != Program::kSolver) return exit_code == 0;
    const std::string told = ReadText(folder_.Path("told"));
    const bool stopped = told.find(": 9106: ") != told.npos || told.find(": 4914: ") != told.npos;
    return !stopped && ReadText(folder_.Path("out/job.FTG")).find("T O T A L   S O L U") != told.npos;
  }

  test::TempFolder folder_;
  std::map<std::string, std::string> sound_;  // files before each run
};

TEST_P(FailingCalls, EndInOrderAndNeverInSilence) {
  Restore();
  ASSERT_TRUE(WIFEXITED(RunFailing(0))) << "undisturbed";
  const long calls = std::atol(ReadText(folder_.Path("count")).c_str());
  ASSERT_GT(calls, 20);
  const std::map<std::string, std::string> expected = Results();
  constexpr long kBounded = 23;
  const long step = std::getenv("ZENTOR_EVERY_CALL") != nullptr ? 1 : std::max(1L, calls / kBounded);
  for (long call = 1; call <= calls; call += step) {
    SCOPED_TRACE("call " + std::to_string(call) + " of " + std::to_string(calls));
    Restore();
    const int status = RunFailing(call);
    const std::string told = ReadText(folder_.Path("told"));
    ASSERT_TRUE(WIFEXITED(status)) << "ended by a signal: " << told;
    if (!SaysDone(WEXITSTATUS(status))) {
      EXPECT_NE(told, "") << "a stop says why";
      continue;
    }
    const std::map<std::string, std::string> results = Results();
    for (const auto& [name, content] : expected) {
      EXPECT_TRUE(results.count(name) != 0 && results.at(name) == content) << name << ": " << told;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sweeps, FailingCalls, testing::ValuesIn(kSweeps),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace zentor
