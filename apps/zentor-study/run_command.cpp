#include "run_command.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <span>

#include "authoring/fatigue_table.h"
#include "build_study.h"
#include "commands.h"
#include "content_checks.h"
#include "definition_state.h"
#include "mesh_reader.h"
#include "platform/child_process.h"
#include "platform/system.h"
#include "run_progress.h"
#include "run_verdict.h"
#include "services/faults.h"
#include "stored_content.h"
#include "study/extended_options.h"

namespace zentor::companion {

namespace {

constexpr int kPollMilliseconds = 100;
constexpr const char* kYesToEveryQuestion = "y\ny\ny\ny\ny\ny\ny\ny\n";
constexpr std::string_view kSummaryIncomplete = "the run summary is not complete: ";  // the solver's words
constexpr int kFlagLoading = 14;  // its scale factor shares a field with the completed flag

// Empty for anything but a regular file: a pipe or device in its place may never end.
std::string WholeText(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return {};
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

bool IsProgram(const std::string& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  constexpr auto kExecute = std::filesystem::perms::owner_exec | std::filesystem::perms::group_exec |
                            std::filesystem::perms::others_exec;
  return std::filesystem::is_regular_file(status) &&
         (status.permissions() & kExecute) != std::filesystem::perms::none;
}

// Files beside the tables that a run reads and never writes.
constexpr std::array<Extension, 8> kInputExtensions = {".STE", ".STN", ".STP", ".FLH",
                                                       ".HTO", ".FTS", ".FBD", ".FTX"};

// What the study's files were before the run.
struct Before {
  StudySettings settings;
  std::uint64_t nodes = 0;
  std::array<int, kTableCount> entities{};  // of every table
  std::string listing;
  FileStamp listing_stamp, node_results;
  std::array<FileStamp, kInputExtensions.size()> inputs;
  std::string log;
  std::optional<StudyDefinition> content;  // for checks; nothing where the solver will say why
  std::string definition_change;           // what to say of a definition that has changed
  std::string unread;                      // why the content could not be checked
};

// Number of nodes at elements of each material, from the study's tables.
MaterialNodes MaterialNodesOf(StudyTables& tables) {
  const Mesh mesh = ReadMesh(tables);
  StudyModel model;
  for (const int node : mesh.node_ids) model.nodes.emplace_back().number = node;
  for (std::size_t i = 0; i < mesh.element_ids.size(); ++i) {
    AuthoredElement element;
    element.number = mesh.element_ids[i];
    element.material = mesh.materials[i];
    element.first_node = static_cast<std::uint32_t>(model.element_nodes.size());
    for (const std::int32_t place : mesh.ElementNodes(i)) {
      model.element_nodes.push_back(mesh.node_ids[static_cast<std::size_t>(place)]);
    }
    element.node_count = static_cast<std::int32_t>(model.element_nodes.size() - element.first_node);
    model.elements.push_back(element);
  }
  return CountMaterialNodes(model);
}

// A table that has lost its content counts as one that a study does without. Nodal results may be without
// any, and nobody reads the real constants.
void RequireTables(const StudyTables& tables) {
  for (const Extension extension : kTableExtensions) {
    const FileStamp stamp = StampOf(tables.Path(extension));
    if (!stamp.exists || stamp.size > 0 || extension == ".PL1" || extension == ".RLC") continue;
    throw InputFault(tables.Path(extension), "table", "a file of 0 bytes",
                     "its entities; restore the file or build the study again");
  }
}

// Nobody else may change the study before its results have been read.
void RequireLock(const StudyLock& lock, const std::string& base) {
  if (lock.holder().empty()) return;
  throw CommandFailure(fmt::format("{}: in use by {}; run it when that has ended", base, lock.holder()));
}

std::array<int, kTableCount> EntitiesOf(StudyTables& tables) {
  std::array<int, kTableCount> entities{};
  for (int table = 1; table <= kTableCount; ++table)
    entities[static_cast<std::size_t>(table) - 1] = tables.Count(static_cast<DbTable>(table));
  return entities;
}

Before Look(const std::string& base) {
  StudyTables tables(base);
  if (!std::filesystem::exists(std::filesystem::symlink_status(tables.Path(".MAS")))) {
    throw CommandFailure(tables.Path(".MAS") + ": no such study");
  }
  // The solver takes every option of a table without entities as 0 and calls that a study.
  if (tables.Count(DbTable::kMas) == 0) {
    throw InputFault(tables.Path(".MAS"), "table", "empty", "the options of a study");
  }
  RequireTables(tables);
  Before before;
  before.settings = ReadStudySettings(tables);
  before.nodes = static_cast<std::uint64_t>(tables.Count(DbTable::kNod));
  before.entities = EntitiesOf(tables);
  before.listing = tables.Path(before.settings.ListingExtension());
  before.listing_stamp = StampOf(before.listing);
  before.node_results = StampOf(tables.Path(".FTR"));
  for (std::size_t i = 0; i < kInputExtensions.size(); ++i)
    before.inputs[i] = StampOf(tables.Path(kInputExtensions[i]));
  before.log = WholeText(tables.Path(".LOG"));
  try {
    before.content = ReadStoredContent(base);
    platform::FileSystem& files = platform::NativeFileSystem();
    before.definition_change =
        DefinitionChange(base, ReadExtendedOptions(files, tables.Path(ftx_format::kExtension)), files);
  } catch (const InputFault&) {
    // The solver reads the same and stops with the reason.
  } catch (const platform::FileError& error) {
    before.unread = error.what();
  }
  return before;
}

platform::ChildCommand SolverCommand(const RunOptions& options, const StudyLock& lock) {
  platform::ChildCommand command;
  if (lock.Held()) {
    command.kept_handle = lock.Handle();
    command.environment = {{kLockVariable, std::to_string(lock.Handle())}};
  }
  command.program = options.solver.empty() ? FindSolver() : options.solver;
  // A name that begins like a switch would be taken for one.
  const std::string study = options.study.starts_with('-') ? "./" + options.study : options.study;
  command.arguments = {"run", study};
  // A hidden run answers the question of a stress above the S-N curve with a stop.
  if (options.above_curve == AboveCurve::kStop) command.arguments.emplace_back("-silent");
  if (options.above_curve == AboveCurve::kGoOn) command.input = kYesToEveryQuestion;
  command.own_streams = options.above_curve == AboveCurve::kAsk;
  if (options.threads) {
    const std::string threads = std::to_string(*options.threads);
    // The solver takes the processor count for the number of threads where the two differ.
    command.environment.emplace_back("OMP_NUM_THREADS", threads);
    command.environment.emplace_back("NUMBER_OF_PROCESSORS", threads);
  }
  return command;
}

struct SolverEnd {
  platform::ChildEnd end;
  bool interrupted = false;
  std::string error_text;
  double seconds = 0;
};

SolverEnd RunSolver(const RunOptions& options, const Before& before, const StudyLock& lock) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const auto seconds = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
  const NodeProgress progress(options.study + ".FTR");
  ProgressText text(before.nodes);
  ProgressPrinter printer(std::cerr, platform::ErrorIsTerminal());
  platform::ChildProcess solver(SolverCommand(options, lock));
  solver.ForwardInterrupts();
  std::optional<platform::ChildEnd> end;
  while (!(end = solver.Wait(kPollMilliseconds))) {
    if (options.quiet || options.above_curve == AboveCurve::kAsk)
      continue;  // asking, the solver shows its own
    const auto done = IsAllNodes(before.settings.properties) ? progress.Done() : std::nullopt;
    printer.Update(text.At(done, seconds()), seconds());
  }
  printer.End();
  return {*end, solver.Interrupted(), solver.ErrorText(), seconds()};
}

// The flag that ends every run of an ordinary study, unless its field is the scale factor of a loading in
// use.
std::optional<int> CompletedFlag(StudyTables& tables, const StudySettings& settings) {
  namespace ft = fatigue_table;
  if (!tables.Has(DbTable::kFtc, ft::kOptions)) return std::nullopt;
  const bool ordinary_constant = !settings.has_study_list && !IsVariableAmplitude(settings.properties);
  if (ordinary_constant) {
    for (int event = 1; event <= kMaxAuthoredEvents; ++event) {
      const int member =
          tables.Int(DbTable::kFtc, ft::kMembership + event, ft::kFirstLoading + kFlagLoading - 1);
      if (member == kFlagLoading) return std::nullopt;
    }
  }
  return tables.Int(DbTable::kFtc, ft::kOptions, 15);
}

// A run adds entities and takes none away: a table that has fewer has gone, or was replaced, while it ran.
// The other files it reads are what they were.
std::optional<std::string> TableFault(StudyTables& tables, const Before& before) {
  const auto after = EntitiesOf(tables);
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (after[i] >= before.entities[i]) continue;
    return fmt::format("{}: {} entities behind the run, {} before it; the results are not those of the study",
                       tables.Path(kTableExtensions[i]), after[i], before.entities[i]);
  }
  for (std::size_t i = 0; i < kInputExtensions.size(); ++i) {
    const std::string path = tables.Path(kInputExtensions[i]);
    const FileStamp now = StampOf(path);
    if (now == before.inputs[i]) continue;
    return fmt::format("{}: {} while the run went on; run again", path,
                       now.exists ? "written anew" : "has disappeared");
  }
  return std::nullopt;
}

std::optional<std::string> NodeResultFault(StudyTables& tables, const Before& before) {
  const std::string path = tables.Path(".FTR");
  if (StampOf(path) == before.node_results) return path + ": not written by this run";
  try {
    ReadNodeResults(path);
  } catch (const InputFault& fault) {
    return fault.what();
  }
  return std::nullopt;
}

RunEvidence Gather(StudyTables& tables, const Before& before, const SolverEnd& solver) {
  RunEvidence evidence;
  evidence.end = solver.end;
  evidence.interrupted = solver.interrupted;
  evidence.solver_messages = MessageLines(solver.error_text);
  const FileStamp listing = StampOf(before.listing);
  evidence.listing_written = listing.exists && listing != before.listing_stamp;
  if (evidence.listing_written) {
    const bool continued = before.settings.listing_mode == 1 && before.listing_stamp.exists;
    evidence.listing = ScanListing(before.listing, continued ? before.listing_stamp.size : 0);
  }
  evidence.all_nodes = IsAllNodes(before.settings.properties);
  if (evidence.listing.solution_seconds) {
    evidence.table_fault = TableFault(tables, before);
    evidence.completed_flag = CompletedFlag(tables, before.settings);
    if (evidence.all_nodes) evidence.node_result_fault = NodeResultFault(tables, before);
  }
  return evidence;
}

void RunAndReport(const RunOptions& options) {
  const RunSummary summary = RunStudy(options);
  if (options.json) {
    std::cout << JsonText(summary) << '\n';
  } else {
    PrintSummary(summary, std::cout);
  }
  if (!summary.verdict.completed) throw CommandFailure("", 1);
}

}  // namespace

std::string FindSolver() {
  const std::string own = platform::ProgramPath();
  std::string beside = own.substr(0, own.find_last_of('/') + 1) + "zentor-fatigue";
  if (!own.empty() && IsProgram(beside)) return beside;
  std::string folders = platform::Environment("PATH").value_or("");
  while (!folders.empty()) {
    const std::size_t end = std::min(folders.find(':'), folders.size());
    const std::string folder = folders.substr(0, end);
    if (!folder.empty() && IsProgram(folder + "/zentor-fatigue")) return folder + "/zentor-fatigue";
    folders.erase(0, end + 1);
  }
  throw CommandFailure("zentor-fatigue was found neither beside this program nor in PATH", 2);
}

namespace {

// What a study's content makes of its results.
std::vector<std::string> ContentWarnings(const std::string& base, const Before& before) {
  std::vector<std::string> warnings;
  if (!before.definition_change.empty()) warnings.push_back(before.definition_change);
  if (!before.unread.empty()) {
    warnings.push_back(
        fmt::format("what would mislead in this study was not looked for ({})", before.unread));
  }
  if (!before.content) return warnings;
  StudyTables tables(base);
  for (Finding& finding : CheckContent(*before.content, [&] { return MaterialNodesOf(tables); })) {
    warnings.push_back(std::move(finding.text));
  }
  return warnings;
}

void TellWarnings(std::span<const std::string> warnings) {
  for (const std::string& warning : warnings) std::cerr << "warning: " << warning << '\n';
}

}  // namespace

RunSummary RunStudy(const RunOptions& options) {
  if (const auto fault = StudyNameFault(options.study)) {
    throw CommandFailure(fmt::format("{}: {}", options.study, *fault));
  }
  const StudyLock lock(options.study, "zentor-study run");
  RequireLock(lock, options.study);
  RequireWholeStudy(options.study);
  const Before before = Look(options.study);
  const std::vector<std::string> of_content = ContentWarnings(options.study, before);
  TellWarnings(of_content);
  const SolverEnd solver = RunSolver(options, before, lock);
  StudyTables tables(options.study);
  RunEvidence evidence = Gather(tables, before, solver);
  evidence.asked = options.above_curve == AboveCurve::kAsk;
  RunSummary summary;
  summary.study = options.study;
  summary.title = before.settings.title;
  summary.verdict = Judge(evidence);
  summary.listing = before.listing;
  summary.seconds = solver.seconds;
  summary.solution_seconds = evidence.listing.solution_seconds;
  summary.solver_exit_code = solver.end.by_signal ? 128 + solver.end.code : solver.end.code;
  summary.strength_reduction_factor = before.settings.properties.FatigueStrengthReductionFactor;
  summary.warnings = of_content;
  summary.warnings.insert(summary.warnings.end(), evidence.listing.warnings.begin(),
                          evidence.listing.warnings.end());
  if (!lock.unprotected().empty()) summary.warnings.push_back(UnprotectedText(lock));
  for (std::string& warning : LogWarnings(before.log, WholeText(tables.Path(".LOG")))) {
    summary.warnings.push_back(std::move(warning));
  }
  // Without its summary the warnings of the run are nowhere else.
  std::copy_if(evidence.solver_messages.begin(), evidence.solver_messages.end(),
               std::back_inserter(summary.warnings),
               [](const std::string& line) { return line.starts_with(kSummaryIncomplete); });
  summary.all_nodes = evidence.all_nodes;
  if (summary.verdict.completed) AddResults(summary, tables, before.settings, before.content);
  TellWarnings(std::span(summary.warnings).subspan(of_content.size()));
  return summary;
}

void AddRunCommand(CLI::App& app) {
  auto options = std::make_shared<RunOptions>();
  CLI::App* run = app.add_subcommand("run", "Run the solver on a study and tell how it went.");
  run->add_option("study", options->study, "Base path of the study")->required();
  run->add_option("--threads", options->threads, "Threads of the solver")->check(CLI::Range(1, 4096));
  run->add_option("--solver", options->solver, "The solver, when it is not beside this program or in PATH");
  run->add_option_function<std::string>(
         "--above-curve",
         [options](const std::string& choice) {
           options->above_curve = choice == "go-on" ? AboveCurve::kGoOn
                                  : choice == "ask" ? AboveCurve::kAsk
                                                    : AboveCurve::kStop;
         },
         "When a stress lies above its S-N curve: go-on (with the fewest cycles of the curve), stop, ask")
      ->check(CLI::IsMember({"go-on", "stop", "ask"}))
      ->option_text("TEXT=stop");
  run->add_flag("-q,--quiet", options->quiet, "No progress");
  run->add_flag("--json", options->json, "Print the summary as JSON");
  run->callback([options] {
    options->study = StudyBase(options->study);
    RunAndReport(*options);
  });
}

}  // namespace zentor::companion
