#include "stress/nodal_stress_store.h"

#include <array>
#include <cstdlib>
#include <new>

#include "database/edit.h"
#include "platform/system.h"
#include "services/stop.h"
#include "stress/nodal_store_contents.h"

namespace zentor {

namespace {

constexpr int kStoreLoadCaseMissing = 9037;
constexpr int kStoreStudyCaseMissing = 9038;

}  // namespace

ZeroedFloats::ZeroedFloats(std::size_t size) : size_(size) {
  if (size == 0) return;
  data_.reset(static_cast<float*>(std::calloc(size, sizeof(float))));
  if (!data_) throw std::bad_alloc();
  platform::PreferLargePages(data_.get(), size * sizeof(float));
}

struct NodalStressStore::State : StoreContents {};

NodalStressStore::NodalStressStore() : state_(std::make_unique<State>()) {}
NodalStressStore::NodalStressStore(NodalStressStore&&) noexcept = default;
NodalStressStore& NodalStressStore::operator=(NodalStressStore&&) noexcept = default;
NodalStressStore::~NodalStressStore() = default;

int NodalStressStore::slot_count() const { return state_->slot_count; }
int NodalStressStore::node_count() const { return state_->node_count; }
bool NodalStressStore::InMemory() const { return !state_->scratch; }
bool NodalStressStore::CreatedScratchFile() const { return state_->created_scratch_file; }

int NodalStressStore::SlotOf(int loading) const {
  const std::vector<int>& slots = state_->slot_of_loading;
  if (loading < 1 || loading > static_cast<int>(slots.size())) return 0;
  return slots[static_cast<std::size_t>(loading) - 1];
}

StressTensor NodalStressStore::NodalStress(int node, int slot) const {
  StressTensor stress{};
  if (node < 1 || node > state_->node_count || slot < 1 || slot > state_->slot_count) return stress;
  std::array<float, 6> stored{};
  if (state_->scratch) {
    state_->scratch->Read(node, slot, stored);
  } else {
    const std::span<const float> values = Slot(slot).subspan(static_cast<std::size_t>(node - 1) * 6, 6);
    std::copy(values.begin(), values.end(), stored.begin());
  }
  std::copy(stored.begin(), stored.end(), stress.begin());
  return stress;
}

std::span<const float> NodalStressStore::Slot(int slot) const {
  if (state_->scratch || slot < 1 || slot > state_->slot_count) return {};
  return state_->Slot(slot);
}

NodalStressStore BuildNodalStressStore(RunContext& run, StudyState& study,
                                       std::span<const StoreLoading> loadings) {
  NodalStressStore store;
  static_cast<StoreContents&>(*store.state_) = BuildStoreContents(run, study, loadings);
  return store;
}

int RequireSlot(RunContext& run, const FatigueProperties& properties, const NodalStressStore& store,
                int loading, int load_case) {
  const int slot = store.SlotOf(loading);
  if (slot > 0) return slot;
  run.listing.Line(
      Edit().Text("*** ERROR: load case =").I(4, load_case).Text(" is not available in .SFA file").str());
  const std::array<float, 1> arguments = {static_cast<float>(load_case)};
  StopWithMessage(run.services, IsMultiStudy(properties) ? kStoreStudyCaseMissing : kStoreLoadCaseMissing,
                  arguments);
}

}  // namespace zentor
