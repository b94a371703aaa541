#include "fatigue/fatigue_driver.h"

#include <chrono>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "database/edit.h"
#include "fatigue/all_nodes_run.h"
#include "fatigue/fatigue_run.h"
#include "fatigue/input_steps.h"
#include "fatigue/single_location_run.h"
#include "platform/text.h"
#include "services/faults.h"
#include "services/message_arguments.h"
#include "services/stop.h"
#include "study/completion_flag.h"
#include "study/read_study.h"

namespace zentor {
namespace {

constexpr int kOutOfMemory = 4914;
constexpr std::size_t kReserveBytes = std::size_t{1} << 20U;
constexpr int kRunCannotGoOn = 9106;
constexpr int kRunStatus = 25;  // ".MAS" entity of the run status
constexpr int kElapsedSecondsField = 11;

std::chrono::sys_seconds Moment(const std::array<int, 6>& t) {
  using std::chrono::sys_days;
  const std::chrono::year_month_day day{std::chrono::year(t[0]),
                                        std::chrono::month(static_cast<unsigned>(t[1])),
                                        std::chrono::day(static_cast<unsigned>(t[2]))};
  return sys_days{day} + std::chrono::hours(t[3]) + std::chrono::minutes(t[4]) + std::chrono::seconds(t[5]);
}

std::array<int, 6> Now(SolverServices& services) {
  const Date date = services.GetDate();
  const ClockTime time = services.GetTime();
  return {date.year, date.month, date.day, time.hour, time.minute, time.second};
}

// Whole seconds of wall-clock time since the start of the run.
int ElapsedSeconds(FatigueRun& run) {
  const auto elapsed = Moment(Now(run.context.services)) - Moment(run.study.start);
  return static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(elapsed).count());
}

void FinishRun(FatigueRun& run) {
  RunContext& context = run.context;
  run.lost.Warn(context.services);
  const int seconds = ElapsedSeconds(run);
  context.listing.Blank(2);
  context.listing.Line(Edit()
                           .Text("T O T A L   S O L U T I O N   T I M E . . . . . .=")
                           .I(6, seconds)
                           .X(1)
                           .Text("Seconds")
                           .str());
  if (!IsMultiStudy(run.study.properties)) {
    DbPutInt(context.database, DbTable::kMas, kRunStatus, kElapsedSecondsField, seconds);
  }
  context.services.Beep();
  for (const DbTable table :
       {DbTable::kMas, DbTable::kCsy, DbTable::kEle, DbTable::kNod, DbTable::kEgr, DbTable::kMat}) {
    DbCloseTable(context.database, table, CloseMode::kWriteHeader);
  }
  run.matrices.reset();
  const bool scratch = run.store.CreatedScratchFile();
  run.store = NodalStressStore();
  context.listing.Close();
  context.result_records.Close();
  if (scratch) FileDelete(context.units, ".SFA");
  SetCompletionFlag(context, run.study.properties, 1);
  DbCloseTable(context.database, DbTable::kFtc, CloseMode::kWriteHeader);
}

void RunStudy(FatigueRun& run) {
  run.study.start = Now(run.context.services);
  InputSteps steps(run);
  ReadStudy(run.context, run.study, steps);
  if (run.context.services.StudyFileExists(".FTD")) FileDelete(run.context.units, ".FTD");
  if (IsVariableAmplitude(run.study.properties)) {
    run.matrices = std::make_unique<MatrixFile>(run.context, run.study);
  }
  if (IsAllNodes(run.study.properties)) {
    RunAllNodes(run);
  } else {
    RunSingleLocation(run);
  }
  FinishRun(run);
}

// A file that cannot be read or written ends the run as every other fatal condition does: the reason in the
// listing and in a box, the end of the run when it owns it, the stop.
[[noreturn]] void StopWithReason(FatigueRun& run, const std::string& reason) {
  try {
    run.context.listing.Blank(2);
    run.context.listing.ListDirected("*** ERROR - " + platform::Printable(reason));
    run.context.listing.ListDirected("    STOP");
    run.context.listing.Flush();
  } catch (const platform::FileError&) {
    // The listing itself may be what cannot be written; the box below still tells.
  }
  const std::vector<float> told = TextArguments(platform::ToWide(reason));
  run.context.services.RecordWarning(kRunCannotGoOn, told);
  StopWithMessage(run.context.services, kRunCannotGoOn, told);
}

void RunReportingFaults(FatigueRun& run) {
  run.reserve.resize(kReserveBytes);
  try {
    RunStudy(run);
  } catch (const std::bad_alloc&) {
    run.reserve = std::vector<std::byte>();  // for the words and the end of the run
    StopWithMessage(run.context.services, kOutOfMemory);
  } catch (const std::exception& fault) {
    StopWithReason(run, fault.what());
  }
}

// A listing that cannot be written does not keep the tables from being written.
void FlushEverything(FatigueRun& run) {
  std::exception_ptr listing_error;
  try {
    run.context.listing.Flush();
  } catch (const std::exception&) {
    listing_error = std::current_exception();
  }
  DbFlushAll(run.context.database);
  if (listing_error) std::rethrow_exception(listing_error);
}

}  // namespace

void FatigueDriver(platform::FileSystem& files, SolverServices& services) {
  FatigueRun run(files, services);
  services.SetFlushHook([&run] { FlushEverything(run); });
  struct HookGuard {
    SolverServices& services;
    ~HookGuard() { services.SetFlushHook({}); }
  } guard{services};
  RunReportingFaults(run);
}

}  // namespace zentor
