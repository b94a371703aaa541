#include <omp.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <new>
#include <string>

#include "platform/text.h"
#include "services/faults.h"
#include "services/message_arguments.h"
#include "services/stop.h"
#include "stress/nodal_store_contents.h"
#include "stress/step_stresses.h"
#include "stress/stress_record_reader.h"
#include "stress/stress_result_file.h"
#include "study/stress_results.h"

namespace zentor {

namespace {

constexpr int kOutOfMemory = 4914;
constexpr int kStudyWithoutStressFile = 9040;
constexpr int kLoadCaseNotStored = 9041;
constexpr int kElementCountsDiffer = 9047;
constexpr int kStudyHalfBuilt = 9091;
constexpr int kLayerNotStored = 9048;

constexpr std::uint64_t kWorthSharing = std::uint64_t{1} << 22U;  // bytes

// The loading that a slot is built for.
struct SlotSource {
  int loading = 0;
  StoreLoading from;
};

bool OwnsStresses(const StoreLoading& loading) {
  return loading.load_case > 0 && loading.load_case != kZeroLoadCase;
}

// Numbers the slots in order of first appearance.
std::vector<SlotSource> AssignSlots(std::span<const StoreLoading> loadings,
                                    std::vector<int>& slot_of_loading) {
  std::vector<SlotSource> sources;
  slot_of_loading.assign(loadings.size(), 0);
  for (std::size_t k = 0; k < loadings.size(); ++k) {
    if (!OwnsStresses(loadings[k])) continue;
    const auto same = std::find_if(sources.begin(), sources.end(), [&](const SlotSource& s) {
      return s.from.load_case == loadings[k].load_case && s.from.time_step == loadings[k].time_step;
    });
    slot_of_loading[k] = static_cast<int>(same - sources.begin()) + 1;
    if (same == sources.end()) sources.push_back({static_cast<int>(k) + 1, loadings[k]});
  }
  return sources;
}

// Builds the slots of one store. Files are opened and every stop is reported on the solver thread; the steps
// of one file are added up by several threads.
class StoreBuilder {
 public:
  StoreBuilder(RunContext& run, StudyState& study, std::span<const StoreLoading> loadings)
      : run_(run), study_(study), lines_(run.database) {
    contents_.node_count = study.sizes.highest_node;
    sources_ = AssignSlots(loadings, contents_.slot_of_loading);
    contents_.slot_count = static_cast<int>(sources_.size());
  }

  StoreContents Build() {
    if (IsMultiStudy(study_.properties)) {
      BuildFromListedStudies();
    } else {
      BuildFromStudy();
    }
    scratch_->Finish();
    if (file_mode_) contents_.scratch = std::move(scratch_);
    return std::move(contents_);
  }

 private:
  void BuildFromStudy() {
    // A study whose loadings are all without stresses comes here without a kind.
    if (study_.stress_kind == StressKind::kNone) study_.stress_kind = FindStressKind(run_.services, 0);
    if (IsVariableAmplitude(study_.properties)) study_.stress_kind = StressKind::kSte;
    const StressResultFile file = Open(study_.stress_kind);
    Prepare(file);
    for (const SlotSource& source : sources_) CheckStep(file, source.from.load_case);
    if (file_mode_) {
      for (int slot = 1; slot <= contents_.slot_count; ++slot) BuildSlot(file, slot);
    } else {
      BuildSlots(file);
    }
  }

  // Every loading names a study of its own, whose file is open only while its slot is built.
  void BuildFromListedStudies() {
    for (int slot = 1; slot <= contents_.slot_count; ++slot) {
      const StoreLoading& from = sources_[static_cast<std::size_t>(slot) - 1].from;
      const StressResultFile file = OpenListedStudy(from);
      if (slot == 1) Prepare(file);
      CheckStep(file, from.load_case);
      BuildSlot(file, slot);
    }
    if (contents_.slot_count == 0) Prepare(OpenListedStudy({.load_case = 0, .time_step = 1}));
  }

  StressResultFile Open(StressKind kind, int step = 0) {
    StressResultFile file = OpenStressResultFile(run_, kind, step);
    study_.properties.PointerWidth = file.pointer_width();
    return file;
  }

  StressResultFile OpenListedStudy(const StoreLoading& from) {
    if (from.time_step < 1) {
      throw InputFault(run_.services.StudyFileName(".FTC"),
                       "study list line of a loading of load case " + std::to_string(from.load_case),
                       std::to_string(from.time_step), "1 or more");
    }
    run_.services.SelectSecondStudyName(from.time_step);
    if (!ListedStudyIsWhole(run_)) StopReadingStresses(run_, kStudyHalfBuilt);
    study_.stress_kind = StressKind::kNone;
    for (const StressKind kind : {StressKind::kSte, StressKind::kStn, StressKind::kStp}) {
      if (!run_.services.StudyFileExistsIn(StressExtension(kind), 1)) continue;
      study_.stress_kind = kind;
      break;
    }
    const auto name = TextArguments(platform::ToWide(run_.services.SecondStudyName()));
    if (study_.stress_kind == StressKind::kNone) StopReadingStresses(run_, kStudyWithoutStressFile, name);
    StressResultFile file = Open(study_.stress_kind, from.load_case);
    if (element_count_ && *element_count_ != file.element_count()) {
      StopReadingStresses(run_, kElementCountsDiffer, name);
    }
    element_count_ = file.element_count();
    run_.services.GetStudyName();  // selects the study's own name again
    return file;
  }

  // Creates the scratch file and decides where the slots live.
  void Prepare(const StressResultFile& file) {
    scratch_.emplace(run_, study_.properties, file);
    contents_.created_scratch_file = true;
    const auto nodes = static_cast<std::uint64_t>(std::max(contents_.node_count, 0));
    const auto slots = static_cast<std::uint64_t>(contents_.slot_count);
    file_mode_ = slots >= 2 && slots * 6 * nodes > FreeMemoryWords(run_.services);
    contents_.values = ZeroedFloats(static_cast<std::size_t>((file_mode_ ? 1 : slots) * 6 * nodes));
  }

  void CheckStep(const StressResultFile& file, int load_case) {
    if (load_case > file.step_count()) StopStepNotStored(run_);
    if (file.StepOffset(load_case) != 0) return;
    const std::array<float, 1> arguments = {static_cast<float>(load_case)};
    StopReadingStresses(run_, kLoadCaseNotStored, arguments);
  }

  StepSelection Selection(const StressResultFile& file, int slot) const {
    return {.step = sources_[static_cast<std::size_t>(slot) - 1].from.load_case,
            .element_count = std::min(file.element_count(), study_.sizes.highest_element),
            .layer = std::max(study_.properties.ShellLayer, 1),
            .surface = SurfaceOf(study_.properties.ShellSurface)};
  }

  // The means of a slot, over zeroed sums. Any thread.
  void Average(const StressResultFile& file, int slot, NodalSums nodal) {
    const StepSelection selection = Selection(file, slot);
    AddStep(file, selection, lines_, nodal);
    if (!AverageNodes(nodal)) ThrowNotFinite(file, selection, lines_, contents_.node_count);
  }

  void BuildSlot(const StressResultFile& file, int slot) {
    std::vector<std::int32_t> counts(static_cast<std::size_t>(contents_.node_count));
    const std::span<float> sums = contents_.Slot(file_mode_ ? 1 : slot);
    try {
      Average(file, slot, {sums, counts});
    } catch (const LayerNotStored&) {
      StopReadingStresses(run_, kLayerNotStored);
    }
    PassGate(run_.services);
    if (!file_mode_) return;
    scratch_->WriteSlot({sums, counts});
    std::fill(sums.begin(), sums.end(), 0.0F);
  }

  // Memory mode, all slots from one file, one step per thread at a time. Of several faults that of the lowest
  // slot counts, as if the slots had been built one after the other.
  void BuildSlots(const StressResultFile& file) {
    std::vector<std::exception_ptr> faults(sources_.size());
    std::atomic<int> first_fault = contents_.slot_count + 1;  // slots beyond it need not be built
#pragma omp parallel num_threads(WorkerCount(file))
    {
      std::vector<std::int32_t> counts;
#pragma omp for schedule(dynamic, 1)
      for (int slot = 1; slot <= contents_.slot_count; ++slot) {
        if (slot > first_fault || !run_.services.KeepGoing()) continue;
        try {
          counts.assign(static_cast<std::size_t>(contents_.node_count), 0);
          Average(file, slot, {contents_.Slot(slot), counts});
        } catch (...) {
          faults[static_cast<std::size_t>(slot) - 1] = std::current_exception();
          int first = first_fault;
          while (slot < first && !first_fault.compare_exchange_weak(first, slot)) {
          }
        }
      }
    }
    PassGate(run_.services);
    for (const std::exception_ptr& fault : faults) {
      if (!fault) continue;
      try {
        std::rethrow_exception(fault);
      } catch (const LayerNotStored&) {
        StopReadingStresses(run_, kLayerNotStored);
      }
    }
  }

  // Every worker needs counts for all nodes and a window; together they stay within 5 % of the store and 32
  // MiB. A small file is read before a second thread has started.
  int WorkerCount(const StressResultFile& file) const {
    if (file.size() < kWorthSharing) return 1;
    const std::size_t budget = contents_.values.all().size_bytes() / 20 + (std::size_t{32} << 20U);
    const std::size_t each =
        static_cast<std::size_t>(contents_.node_count) * sizeof(std::int32_t) + FileWindow::kLargest;
    const auto affordable = static_cast<int>(std::min<std::size_t>(budget / each, 1024));
    return std::clamp(std::min(affordable, contents_.slot_count), 1, omp_get_max_threads());
  }

  RunContext& run_;
  StudyState& study_;
  LineElements lines_;
  std::vector<SlotSource> sources_;
  StoreContents contents_;
  std::optional<ScratchStore> scratch_;
  std::optional<int> element_count_;  // of the listed studies read so far
  bool file_mode_ = false;
};

}  // namespace

StoreContents BuildStoreContents(RunContext& run, StudyState& study, std::span<const StoreLoading> loadings) {
  try {
    return StoreBuilder(run, study, loadings).Build();
  } catch (const std::bad_alloc&) {
    StopReadingStresses(run, kOutOfMemory);
  } catch (...) {
    run.services.GetStudyName();  // a fault in a listed study must not leave its name selected
    throw;
  }
}

}  // namespace zentor
