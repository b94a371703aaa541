#include "run_verdict.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>

#include "run_progress.h"
#include "support/temp_folder.h"

namespace zentor::companion {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

RunEvidence CompletedAllNodes() {
  RunEvidence evidence;
  evidence.end = {false, 1};
  evidence.listing_written = true;
  evidence.listing.solution_seconds = 3;
  evidence.all_nodes = true;
  evidence.completed_flag = 1;
  return evidence;
}

TEST(Judge, EveryPieceOfEvidenceCounts) {
  struct Case {
    const char* name;
    std::function<void(RunEvidence&)> change;
    bool completed;
    const char* reason;
  };
  using E = RunEvidence;
  const auto unfinished = [](E& e) { e.listing.solution_seconds.reset(); };
  const Case cases[] = {
      {"all well", [](E&) {}, true, ""},
      {"the flag is a scale factor", [](E& e) { e.completed_flag.reset(); }, true, ""},
      {"old listing", [](E& e) { e.listing_written = false; }, false, "exit code 1"},
      {"listing without its end", unfinished, false, "exit code 1"},
      {"flag not set", [](E& e) { e.completed_flag = 0; }, false, "entity 60"},
      {"old node results", [](E& e) { e.node_result_fault = "job.FTR: old"; }, false, "job.FTR: old"},
      {"crash behind the listing", [](E& e) { e.end.by_signal = true, e.end.code = SIGSEGV; }, false,
       "SIGSEGV"},
      {"solver told why",
       [&](E& e) {
         unfinished(e);
         e.solver_messages = {"9029: no stress file"};
         e.listing.errors = {"STOP - Missing stress file"};
       },
       false, "9029: no stress file\nSTOP - Missing stress file"},
      {"errors of an old listing do not count",
       [](E& e) { e.listing_written = false, e.listing.errors.assign(1, "an old error"); }, false,
       "exit code 1"},
      {"interrupted", [&](E& e) { unfinished(e), e.interrupted = true; }, false, "stopped by the user"},
      {"interrupted too late", [](E& e) { e.end.code = 0, e.interrupted = true; }, true, ""},
  };
  for (const Case& c : cases) {
    RunEvidence evidence = CompletedAllNodes();
    c.change(evidence);
    const Verdict verdict = Judge(evidence);
    EXPECT_EQ(verdict.completed, c.completed) << c.name;
    EXPECT_THAT(verdict.reason, HasSubstr(c.reason)) << c.name;
  }
}

TEST(ScanListing, ReadsOnlyThePartOfThisRun) {
  const test::TempFolder folder;
  const std::string path = folder.Path("job.FTG");
  const std::string earlier = "\n\nT O T A L   S O L U T I O N   T I M E . . . . . .=     9 Seconds\n";
  test::WriteText(path, earlier);
  EXPECT_EQ(ScanListing(path, 0).solution_seconds, 9);
  test::WriteText(path, earlier + "\n *** ERROR - No S-N curve is defined\n     STOP\n");
  const ListingScan scan = ScanListing(path, earlier.size());
  EXPECT_FALSE(scan.solution_seconds.has_value());
  EXPECT_THAT(scan.errors, ElementsAre("*** ERROR - No S-N curve is defined"));
  // The lines of a warning are joined.
  test::WriteText(path,
                  "\n\n\n *** WARNING - No Simplified Elastic-Plastic formulation:  \n"
                  "         (Sm-T curve is defined improperly, i.e., it does not\n"
                  "         decrease monotonically)\n\n\n"
                  "T O T A L   S O L U T I O N   T I M E . . . . . .=     0 Seconds\n");
  EXPECT_THAT(ScanListing(path, 0).warnings,
              ElementsAre("No Simplified Elastic-Plastic formulation: (Sm-T curve is defined improperly, "
                          "i.e., it does not decrease monotonically)"));
}

TEST(LogWarnings, AreThoseOfTheNewLines) {
  const std::string before = "model 10 12 1  00:00:01\n+00:00:01+old warning\n";
  const std::string after = before + "model 10 12 1  00:00:02\n12+00:00:02+table is full, a + b\n";
  EXPECT_THAT(LogWarnings(before, after), ElementsAre("table is full, a + b"));
  EXPECT_TRUE(LogWarnings(before, before).empty());
  EXPECT_THAT(LogWarnings("one\ntwo+x+old\n", "one\nnew\n+y+fresh\n"), ElementsAre("fresh"))
      << "a summary that begins before the old end takes its place";
}

TEST(Progress, TextSaysShareRateAndRest) {
  ProgressText text(200);
  EXPECT_EQ(text.At(std::nullopt, 7), "running, 7 s");
  EXPECT_EQ(text.At(10, 0.9), "10 of 200 nodes (5 %)");
  EXPECT_EQ(text.At(50, 2), "50 of 200 nodes (25 %), 25 nodes/s, 6 s left");
  EXPECT_EQ(text.At(50, 4), "50 of 200 nodes (25 %), 25 nodes/s, 4 s left");
  EXPECT_EQ(text.At(300, 10), "200 of 200 nodes (100 %), 20 nodes/s, 0 s left");
  const test::TempFolder folder;
  const NodeProgress progress(folder.Path("job.FTR"));
  EXPECT_FALSE(progress.Done().has_value());
  for (const std::size_t bytes : {39U, 40U, 120U}) {
    test::WriteText(folder.Path("job.FTR"), std::string(bytes, ' '));
    EXPECT_EQ(progress.Done(), bytes / 60) << "records behind the first";
  }
}

TEST(Progress, IsPrintedNowAndThen) {
  for (const bool terminal : {false, true}) {
    std::ostringstream out;
    ProgressPrinter printer(out, terminal);
    const std::pair<const char*, double> texts[] = {{"a", 0}, {"b", 0.1}, {"c", 0.2}, {"c", 2}, {"d", 2.1}};
    for (const auto& [text, seconds] : texts) printer.Update(text, seconds);
    printer.End();
    EXPECT_EQ(out.str(), terminal ? "\r\x1b[Ka\r\x1b[Kc\r\x1b[Kd\r\x1b[K" : "a\nc\n");
  }
}

}  // namespace
}  // namespace zentor::companion
