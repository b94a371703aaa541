// Studies that several programs want at once, and builds that are killed: the real programs on real files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "apps/definition_folder.h"
#include "commands.h"
#include "output_file.h"
#include "platform/child_process.h"
#include "run_command.h"
#include "support/faulty_files.h"

namespace zentor::companion {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kPrograms = ZENTOR_PROGRAM_DIRECTORY "/";

std::unique_ptr<platform::ChildProcess> Start(const std::string& program,
                                              std::vector<std::string> arguments) {
  return std::make_unique<platform::ChildProcess>(
      platform::ChildCommand{program, std::move(arguments), {}, "", false});
}

struct Ended {
  int code = 0;
  std::string text;
};
Ended EndOf(platform::ChildProcess& program) {
  std::optional<platform::ChildEnd> end;
  while (!end) end = program.Wait(1000);
  return {end->by_signal ? 128 + end->code : end->code, program.ErrorText()};
}

// Two definitions of one study: four nodes with a stress of 200 for 1000 cycles, or of 300 for 10. Files of
// one beside files of the other give another usage factor than either.
class TwoDefinitions : public testing::Test {
 protected:
  TwoDefinitions() {
    definition_.Replace("[options]\n", "[options]\nevaluate = 'all-nodes'\n");
    for (const auto& [name, stress, cycles] :
         {std::tuple{"a", "200", "1000"}, std::tuple{"b", "300", "10"}}) {
      std::string rows = "element,node,sx,sy,sz,txy,txz,tyz\n";
      for (const char* node : {"1", "2", "3", "4"}) {
        rows += std::string("1,") + node + "," + stress + ",0,0,0,0,0\n";
      }
      test::WriteText(folder_.Path(std::string(name) + ".csv"), rows);
      std::string text =
          std::regex_replace(definition_.text, std::regex("pull.csv"), std::string(name) + ".csv");
      text = std::regex_replace(text, std::regex("cycles = 1000"), std::string("cycles = ") + cycles);
      test::WriteText(Definition(name), text);
      Build(name);
      options_.study = base_;
      options_.solver = kPrograms + "zentor-fatigue";
      options_.quiet = true;
      usage_.insert(*Usage());
    }
    EXPECT_EQ(usage_.size(), 2U);
  }

  std::string Definition(const std::string& name) const { return folder_.Path(name + ".toml"); }
  void Build(const std::string& name) {
    BuildStudy(Definition(name), base_, false, platform::NativeFileSystem());
  }
  // The usage factor of a completed run; nothing for a study that is refused, with the remedy.
  std::optional<float> Usage() const {
    try {
      const RunSummary summary = RunStudy(options_);
      EXPECT_TRUE(summary.verdict.completed) << summary.verdict.reason;
      return summary.most_used.at(0).usage;
    } catch (const CommandFailure& failure) {
      EXPECT_THAT(failure.what(), HasSubstr("build the study again"));
      return std::nullopt;
    }
  }

  test::DefinitionFolder definition_;
  test::TempFolder folder_;
  const std::string base_ = folder_.Path("job");
  std::set<float> usage_;
  RunOptions options_;
};

// From every operation on: the earlier study, the new one, or a refusal by solver and companion, and the lock
// of the dead is no obstacle.
TEST_F(TwoDefinitions, ABuildKilledAnywhereLeavesNoMixture) {
  int refused = 0;
  for (int writes = 0, whole = 0; whole < 2; ++writes) {
    Build("a");
    const pid_t child = ::fork();
    if (child == 0) {
      test::FaultyFileSystem files;
      files.FailAfter(writes, test::FaultyFileSystem::Then::kKill);
      BuildStudy(Definition("b"), base_, false, files);
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status)) ++whole;
    EXPECT_EQ(std::filesystem::exists(base_ + ".LCK"), WIFSIGNALED(status));
    if (!std::filesystem::exists(base_ + ".BLD/replacing")) {
      EXPECT_TRUE(writes % 8 != 0 || usage_.contains(Usage().value_or(-1))) << writes;
      continue;
    }
    ++refused;
    EXPECT_FALSE(Usage()) << writes;
    const auto before = folder_.Contents();
    const Ended solver = EndOf(*Start(kPrograms + "zentor-fatigue", {"run", base_, "-silent"}));
    EXPECT_EQ(solver.code, 0);
    EXPECT_THAT(solver.text, HasSubstr("Build the study again"));
    EXPECT_EQ(folder_.Contents().size(), before.size()) << "no \".MAS\" was created";
  }
  EXPECT_GT(refused, 15);
  EXPECT_TRUE(usage_.contains(Usage().value_or(-1)));
}

TEST_F(TwoDefinitions, BuildsAndRunsAtOnceDoNotMix) {
  const std::string output = folder_.Path("output");
  const std::string run = kPrograms + "zentor-study run --json " + base_ + " > " + output;
  for (int i = 0; i < 12; ++i) {
    std::vector<std::unique_ptr<platform::ChildProcess>> programs;
    programs.push_back(Start(kPrograms + "zentor-study", {"build", Definition("a"), "-o", base_}));
    programs.push_back(Start(kPrograms + "zentor-study", {"build", Definition("b"), "-o", base_}));
    programs.push_back(Start("/bin/sh", {"-c", run}));
    Start(kPrograms + "zentor-fatigue", {"run", base_, "-silent"});
    for (const auto& program : programs) {
      const Ended ended = EndOf(*program);
      EXPECT_TRUE(ended.code == 0 || ended.text.find("in use by zentor-") != std::string::npos) << ended.text;
    }
    const std::string text = test::ReadText(output);
    if (!text.empty()) {
      const auto summary = nlohmann::json::parse(text);
      EXPECT_TRUE(usage_.contains(summary["most_used"][0]["usage_factor"].get<float>())) << text;
    }
    ASSERT_TRUE(usage_.contains(Usage().value_or(-1))) << i;
    EXPECT_FALSE(std::filesystem::exists(base_ + ".BLD")) << i;
  }
}

TEST_F(TwoDefinitions, WhoeverComesSecondHearsWhoIsThere) {
  const std::string lock = base_ + ".LCK";
  test::WriteText(lock, "zentor-fatigue, process 1 on another since 2001-01-01 00:00:00\n");
  EXPECT_TRUE(Usage()) << "a lock that nobody holds";
  EXPECT_FALSE(std::filesystem::exists(lock));
  {
    const StudyLock held(base_, "zentor-test");
    const auto solver = Start(kPrograms + "zentor-fatigue", {"run", base_});
    const auto build = Start(kPrograms + "zentor-study", {"build", Definition("a"), "-o", base_});
    const auto run = Start(kPrograms + "zentor-study", {"run", base_});
    const std::string holder = "zentor-test, process " + std::to_string(::getpid()) + " on ";
    for (const auto& [program, code] : {std::pair{solver.get(), 0}, {build.get(), 1}, {run.get(), 1}}) {
      const Ended ended = EndOf(*program);
      EXPECT_EQ(ended.code, code);
      EXPECT_THAT(ended.text, HasSubstr(holder));
    }
  }
  // What has the lock's name and is none is not touched.
  test::WriteText(folder_.Path("letter"), "dear");
  std::filesystem::create_symlink("letter", lock);
  EXPECT_THROW(Build("a"), platform::FileError);
  std::filesystem::remove(lock);
  std::filesystem::rename(folder_.Path("letter"), lock);
  EXPECT_THAT(EndOf(*Start(kPrograms + "zentor-fatigue", {"run", base_})).text,
              HasSubstr("cannot be locked"));
  EXPECT_EQ(test::ReadText(lock), "dear");
}

TEST_F(TwoDefinitions, WhatCannotBeDoneIsTold) {
  const std::string program = kPrograms + "zentor-study", definition = Definition("a");
  EXPECT_TRUE(Usage());
  const auto before = folder_.Contents();
  for (const auto& [name, told] :
       {std::pair<std::string, const char*>{folder_.Path("no/job"), "no does not exist; create it first"},
        {folder_.Path("a.toml/job"), "a.toml is no folder"},
        {folder_.Path(), "is a folder"},
        {folder_.Path("x.mas"), "is taken for the study"},
        {folder_.Path("x."), "is taken for the study"},
        {folder_.Path("x\"y"), "double quote"},
        {folder_.Path("x\x7Fy"), "control character"},
        {std::string(254, 'x') + "/y", "more than 255 characters; it has 256"}}) {
    std::vector<std::string> arguments = {"build", definition, "--output=" + name};
    const Ended ended = EndOf(*Start(program, arguments));
    EXPECT_EQ(ended.code, 1) << name;
    EXPECT_THAT(ended.text, HasSubstr(told));
  }
  EXPECT_TRUE(folder_.Contents() == before);
  const std::string study = " " + base_;
  for (const std::string& command :
       {"show" + study, "results" + study, "results --csv -" + study, "run -q" + study,
        "run -q --json" + study, "build " + definition + " -o" + study, std::string("--help"),
        std::string("run --help")}) {
    for (const auto& [output, told] : {std::pair{" > /dev/full", "No space left"}, {" >&-", "Bad file"}}) {
      const Ended ended = EndOf(*Start("/bin/sh", {"-c", program + " " + command + output}));
      EXPECT_EQ(ended.code, 1) << command << output;
      EXPECT_THAT(ended.text, HasSubstr(told)) << command << output;
    }
  }
  const std::string grid = program + " results --vtu " + folder_.Path("grid") + study;
  EXPECT_TRUE(Usage());
  EXPECT_THAT(EndOf(*Start("/bin/sh", {"-c", "ulimit -f 1; " + grid})).text, HasSubstr("File too large"));
  {
    OutputFile late(folder_.Path("late"));
    late.Write("results");
    std::filesystem::create_directory(folder_.Path("late"));
    EXPECT_THROW(late.Commit(), platform::FileError);
  }
  for (const auto& [name, content] : folder_.Contents()) EXPECT_THAT(name, Not(HasSubstr("part")));
  std::filesystem::resize_file(base_ + ".ELE", 0);
  EXPECT_THAT(EndOf(*Start(program, {"run", base_})).text, HasSubstr("a file of 0 bytes"));
}

TEST_F(TwoDefinitions, ResultsAndTablesKeepApart) {
  const std::string program = kPrograms + "zentor-study", definition = Definition("b");
  EXPECT_TRUE(Usage());
  test::WriteText(folder_.Path("j.toml"), "other");
  std::filesystem::create_symlink("b.csv", folder_.Path("link"));
  std::filesystem::create_symlink("job.FTC", folder_.Path("link.csv"));
  const auto before = folder_.Contents();
  for (const auto& [option, name] : {std::pair{"--csv", "b.csv"},
                                     {"--csv", "./link"},
                                     {"--csv", "link.csv"},
                                     {"--vtu", "job.MAS"},
                                     {"--vtu", "new.NOD"},
                                     {"--csv", "j.toml"},
                                     {"--vtu", "b.toml"}}) {
    const Ended ended = EndOf(*Start(program, {"results", base_, option, folder_.Path(name)}));
    EXPECT_EQ(ended.code, 1) << name;
    EXPECT_THAT(ended.text, HasSubstr("name another file for the results")) << name;
  }
  EXPECT_TRUE(folder_.Contents() == before);
  EXPECT_THAT(EndOf(*Start(program, {"build", "/dev/zero", "-o", base_})).text, HasSubstr("no regular file"));
  EXPECT_EQ(EndOf(*Start(program, {"results", base_, "--csv", folder_.Path("a.csv")})).text, "");
  EXPECT_THAT(EndOf(*Start(program, {"results", base_, "--top", "-1"})).text,
              HasSubstr("-1, expected a whole"));
  EXPECT_NE(EndOf(*Start(program, {"build", definition, "-o", ""})).code, 0);
  for (const char* own : {"q.NOD", "q.FTG"}) {
    test::WriteText(folder_.Path(own), test::ReadText(folder_.Path("b.csv")));
    test::WriteText(folder_.Path("q.toml"),
                    std::regex_replace(test::ReadText(definition), std::regex("b.csv"), own));
    const Ended ended = EndOf(*Start(program, {"build", folder_.Path("q.toml")}));
    EXPECT_THAT(ended.text, HasSubstr("q.toml:10: stresses is " + folder_.Path(own)));
    EXPECT_FALSE(std::filesystem::exists(folder_.Path("q.MAS")));
  }
  test::WriteText(definition, test::ReadText(definition) + "# by hand\n");
  for (const char* command : {"show", "results"}) {
    EXPECT_THAT(EndOf(*Start(program, {command, base_})).text,
                HasSubstr("warning: the definition " + definition));
  }
}

// Ends in order, and the solver with it.
TEST_F(TwoDefinitions, AHangUpReachesTheSolver) {
  for (const int number : {SIGHUP, SIGQUIT}) {
    const std::string solver = folder_.Path("solver"), there = folder_.Path("there");
    test::WriteText(solver, "#!/bin/sh\ntrap 'echo > " + there + ".ended; exit 1' HUP QUIT\necho > " + there +
                                "\n"
                                "while :; do sleep 0.05; done\n");
    std::filesystem::permissions(solver, std::filesystem::perms::owner_all);
    const std::string program = "echo $$ > " + there + ".pid; exec " + kPrograms +
                                "zentor-study run -q --solver " + solver + " " + base_;
    const auto run = Start("/bin/sh", {"-c", program});
    while (!std::filesystem::exists(there)) run->Wait(20);
    run->Wait(500);  // until the program that has started it listens
    ::kill(std::stoi(test::ReadText(there + ".pid")), number);
    EXPECT_EQ(EndOf(*run).code, 1);
    EXPECT_TRUE(std::filesystem::exists(there + ".ended"));
    std::filesystem::remove(there);
    std::filesystem::remove(there + ".ended");
  }
}

#ifdef ZENTOR_FAILING_MALLOC
// From any allocation on: a message, the exit code of a failure, and every file as it was; at the end of
// a build the whole new study.
TEST_F(TwoDefinitions, ALackOfMemoryIsTold) {
  const std::vector<std::string> commands[] = {{"build", Definition("a"), "-o", base_},
                                               {"show", base_},
                                               {"results", base_, "--vtu", folder_.Path("grid")}};
  for (const std::vector<std::string>& arguments : commands) {
    EXPECT_TRUE(Usage());
    const auto before = folder_.Contents();
    int failures = 0;
    for (int allocations = 100;; allocations += 37, ++failures) {
      platform::ChildProcess program(
          {kPrograms + "zentor-study",
           arguments,
           {{"LD_PRELOAD", ZENTOR_FAILING_MALLOC}, {"ZENTOR_ALLOCATIONS", std::to_string(allocations)}},
           "",
           false});
      const Ended ended = EndOf(program);
      if (ended.code == 0) break;
      ASSERT_EQ(ended.code, 1) << arguments[0] << ' ' << allocations;
      ASSERT_EQ(ended.text, "zentor-study: out of memory\n") << arguments[0] << ' ' << allocations;
      const auto now = folder_.Contents();
      const bool built = arguments[0] == "build" && !now.contains("job.FTR") && !now.contains("job.BLD");
      ASSERT_TRUE(now == before || built) << arguments[0] << ' ' << allocations;
    }
    EXPECT_GT(failures, 10) << arguments[0];
  }
}
#endif

}  // namespace
}  // namespace zentor::companion
