#include "run_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "apps/definition_folder.h"
#include "apps/word_file.h"
#include "build_study.h"
#include "commands.h"
#include "services/faults.h"
#include "support/standard_streams.h"

namespace zentor::companion {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// A study and a shell script in the solver's place.
class FakeSolver : public testing::Test {
 protected:
  FakeSolver() { BuildStudy(ZENTOR_DOCS "/study-example.toml", Base(), false, platform::NativeFileSystem()); }
  std::string Base() const { return folder_.Path("job"); }

  RunSummary Run(const std::string& script) {
    options.study = Base();
    options.solver = folder_.Path("solver");
    options.quiet = true;
    test::WriteText(options.solver, "#!/bin/sh\n" + script);
    std::filesystem::permissions(options.solver, std::filesystem::perms::owner_all);
    return RunStudy(options);
  }
  // The flag that a completed run leaves in ".FTC" (entity 60, field 15).
  void SetFlag() {
    std::vector<std::byte> bytes = test::ReadBytes(Base() + ".FTC");
    StudyTables tables(Base());
    TableFile* table = tables.Find(DbTable::kFtc);
    StoreInt(bytes.data() + table->geometry().SlotOffset(table->SlotOf(60)) + std::size_t{14} * 4, 1);
    test::WriteBytes(folder_.Path("flagged"), bytes);
  }

  RunOptions options;
  test::TempFolder folder_;
};

TEST_F(FakeSolver, WhatToDoAboveTheCurveReachesTheSolver) {
  const auto noted = [this](AboveCurve choice) {
    options.above_curve = choice;
    Run("read answer; echo \"$# $3 $answer\" > \"$2.noted\"\n");
    return test::ReadText(Base() + ".noted");
  };
  EXPECT_EQ(noted(AboveCurve::kStop), "3 -silent \n");
  EXPECT_EQ(noted(AboveCurve::kGoOn), "2  y\n");
  const test::StandardInput typed("typed\n");
  EXPECT_EQ(noted(AboveCurve::kAsk), "2  typed\n") << "the user's own answer";
  EXPECT_THAT(Run("exit 0\n").verdict.reason, HasSubstr("above the S-N curve, the question could not be"));
}

TEST_F(FakeSolver, CompletedSingleLocationRun) {
  test::WordFile records;
  records.Record({4}).Record({1, 1, 1, 1, 1});
  records.Record({2, 1, 1, 2, 1, 500}, {2000, 150, 0.25F}).Record({3}, {0.25F});
  records.Write(folder_.Path("records"));
  const std::string run =
      "cp " + folder_.Path("records") + " \"$2.FTI\"\n" +
      "printf '\\n\\nT O T A L   S O L U T I O N   T I M E . . . . . .=     2 Seconds\\n' >> \"$2.FTG\"\n";
  EXPECT_THAT(Run(run + "exit 1\n").verdict.reason, HasSubstr("entity 60")) << "the flag was not set";
  SetFlag();
  const RunSummary summary = Run(run + "cp " + folder_.Path("flagged") + " \"$2.FTC\"\nexit 1\n");
  EXPECT_TRUE(summary.verdict.completed) << summary.verdict.reason;
  EXPECT_EQ(summary.solution_seconds, 2);
  ASSERT_TRUE(summary.location_node.has_value());
  EXPECT_EQ(LifeFactor(summary.location_node->usage), 4.0F);
  const std::string losing = "cp " + folder_.Path("flagged") + " \"$2.FTC\"\n: > \"$2.ELE\"\nexit 1\n";
  EXPECT_THAT(Run(run + losing).verdict.reason, HasSubstr(".ELE: 0 entities behind the run, "));
}

TEST_F(FakeSolver, AnEarlierListingIsNoEvidenceAndReasonsAreTold) {
  test::WriteText(Base() + ".FTG", "T O T A L   S O L U T I O N   T I M E . . . . . .=     2 Seconds\n");
  const RunSummary summary = Run("echo 'zentor-fatigue: 9014: No location is activated.' >&2\nexit 1\n");
  EXPECT_FALSE(summary.verdict.completed);
  EXPECT_EQ(summary.verdict.reason, "9014: No location is activated.");
  EXPECT_THAT(Run("kill -SEGV $$\n").verdict.reason, HasSubstr("SIGSEGV"));
}

TEST_F(FakeSolver, ThreadsReachTheSolverAndWarningsComeBack) {
  options.threads = 3;
  const RunSummary summary =
      Run("echo \"model 1  00:00:00\" > \"$2.LOG\"\n"
          "echo \"+00:00:00+$1 $3 $OMP_NUM_THREADS $NUMBER_OF_PROCESSORS\" >> \"$2.LOG\"\n");
  EXPECT_THAT(summary.warnings, ElementsAre("run -silent 3 3"));
}

// Contents count: neither a new date nor a new place of study and definition together.
TEST_F(FakeSolver, AChangedDefinitionIsTold) {
  test::DefinitionFolder definition;
  BuildStudy(definition.Write(), definition.Path("job"), false, platform::NativeFileSystem());
  const auto said = [&](const std::string& base) {
    RunOptions run;
    run.study = base;
    run.solver = "/bin/false";
    run.quiet = true;
    std::string text;
    for (const std::string& warning : RunStudy(run).warnings) text += warning;
    return text;
  };
  const std::string stresses = test::ReadText(definition.Path("pull.csv"));
  test::WriteText(definition.Path("pull.csv"), stresses);
  EXPECT_THAT(said(definition.Path("job")), Not(HasSubstr("changed")));
  const test::TempFolder copy;
  std::filesystem::copy(definition.Path(""), copy.Path("c"), std::filesystem::copy_options::recursive);
  EXPECT_THAT(said(copy.Path("c/job")), Not(HasSubstr("changed")));
  test::WriteText(copy.Path("c/study.toml"), definition.text + "# by hand\n");
  EXPECT_THAT(said(copy.Path("c/job")), HasSubstr("c/study.toml was changed after the study was built"));
  std::filesystem::remove(copy.Path("c/study.toml"));
  EXPECT_THAT(said(copy.Path("c/job")), Not(HasSubstr("changed")));
  std::string other = stresses;
  other.replace(other.find("1,1,10"), 6, "1,1,11");
  test::WriteText(definition.Path("pull.csv"), other);
  EXPECT_THAT(said(definition.Path("job")), HasSubstr("a file that the definition"));
}

TEST_F(FakeSolver, WhatCannotBeRunIsAFailure) {
  options.study = Base();
  options.solver = folder_.Path("none");
  EXPECT_THROW(RunStudy(options), platform::FileError);
  options.study = folder_.Path("nothing");
  EXPECT_THROW(RunStudy(options), CommandFailure);
  options.study = folder_.Path("an\"other");  // the solver would drop what stands before the quote
  test::WriteText(options.study + ".MAS", "");
  EXPECT_THROW(RunStudy(options), CommandFailure);
  ASSERT_EQ(mkfifo((Base() + ".LOG").c_str(), 0600), 0);
  EXPECT_FALSE(Run("mkfifo \"$2.FTG\"\nexit 1\n").verdict.completed) << "nobody waits for a pipe";
  test::WriteText(Base() + ".MAS", "");
  EXPECT_THROW(Run("exit 1\n"), InputFault) << "a study without options";
}

}  // namespace
}  // namespace zentor::companion
