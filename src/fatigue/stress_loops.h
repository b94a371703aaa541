// The loops over points of a node's stress history, each compiled for several instruction sets.
//
// Points are taken in tiles that stay in the first-level cache: 6 components and a stress of 8 bytes each.
#pragma once

#include <array>
#include <cstddef>

#include "stress/principal_stress.h"
#include "stress/vector_forms.h"

namespace zentor {

inline constexpr std::size_t kTile = 256;
using TileRow = std::array<double, kTile>;
using TensorTile = std::array<TileRow, 6>;

// Events whose loads are summed in one pass: `start` + load * unit + ... in their order.
inline constexpr std::size_t kEventGroup = 6;
struct EventGroup {
  std::size_t count = 0;
  std::array<const float*, kEventGroup> loads{};  // from the tile's first point on
  std::array<StressTensor, kEventGroup> units{};  // stress state of a unit load
  std::array<const double*, 6> start{};           // per component n values, which may be those of the tile
};

// Every loop takes the first n points of a tile.
struct StressLoops {
  // Entry k - 1 adds the loads of a group of k events, in their order; sum_plane leaves the out-of-plane
  // shear as it is.
  using Sum = void (*)(const EventGroup& group, std::size_t n, TensorTile& t);
  std::array<Sum, kEventGroup> sum_general, sum_plane;
  // Number of points with out-of-plane shear.
  std::size_t (*count_general)(const TensorTile& t, std::size_t n);
  // Signed von Mises stress of points without out-of-plane shear, as stated: the operations of
  // PrincipalPlane.
  std::size_t (*plane)(const TensorTile& t, std::size_t n, TileRow& w);
  // By exact principal stresses, of any points and of points without it; leave none open and have the same
  // bits.
  std::size_t (*exact)(const TensorTile& t, std::size_t n, TileRow& w);
  std::size_t (*exact_plane)(const TensorTile& t, std::size_t n, TileRow& w);
  // Of points with it, as stated; returns the number of points left open, whose stress is NaN.
  std::size_t (*general)(const TensorTile& t, std::size_t n, TileRow& w);
};

// REQUIRES: this processor runs the form.
const StressLoops& StressLoopsOf(VectorForm form);

}  // namespace zentor
