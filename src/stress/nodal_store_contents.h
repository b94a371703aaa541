// What a nodal stress store holds; filled by the builder (nodal_store_builder.cpp), read by NodalStressStore.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "stress/nodal_stress_store.h"
#include "stress/scratch_store.h"

namespace zentor {

// Zeroed floats whose pages are taken from the system when they are first touched, so that each thread that
// fills a part of them takes its own.
class ZeroedFloats {
 public:
  ZeroedFloats() = default;
  explicit ZeroedFloats(std::size_t size);  // throws std::bad_alloc
  std::span<float> all() const { return {data_.get(), size_}; }

 private:
  struct Free {
    void operator()(float* p) const { std::free(p); }
  };
  std::unique_ptr<float, Free> data_;
  std::size_t size_ = 0;
};

struct StoreContents {
  int node_count = 0;
  int slot_count = 0;
  std::vector<int> slot_of_loading;     // 0: the loading owns none
  ZeroedFloats values;                  // memory mode: shape (slot_count, node_count, 6)
  std::optional<ScratchStore> scratch;  // file mode
  bool created_scratch_file = false;

  std::span<float> Slot(int slot) const {
    const std::size_t length = static_cast<std::size_t>(node_count) * 6;
    return values.all().subspan(static_cast<std::size_t>(slot - 1) * length, length);
  }
};

StoreContents BuildStoreContents(RunContext& run, StudyState& study, std::span<const StoreLoading> loadings);

}  // namespace zentor
