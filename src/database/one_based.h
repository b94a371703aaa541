// Arrays whose first index is 1, for the entity numbers that people see.
#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <vector>

namespace zentor {

// A vector indexed 1 .. size().
template <typename T>
class OneBased {
 public:
  OneBased() = default;
  explicit OneBased(std::size_t size, const T& value = T()) : items_(size, value) {}
  T& operator[](int i) { return items_[Index(i)]; }
  const T& operator[](int i) const { return items_[Index(i)]; }
  int size() const { return static_cast<int>(items_.size()); }
  bool empty() const { return items_.empty(); }
  bool Holds(int i) const { return i >= 1 && i <= size(); }
  void Assign(std::size_t size, const T& value = T()) { items_.assign(size, value); }
  void PushBack(const T& value) { items_.push_back(value); }
  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }
  T* data() { return items_.data(); }
  const T* data() const { return items_.data(); }

 private:
  std::size_t Index(int i) const {
    assert(Holds(i));
    return static_cast<std::size_t>(i) - 1;
  }
  std::vector<T> items_;
};

// A fixed array indexed 1 .. N.
template <typename T, int N>
class OneBasedArray {
 public:
  T& operator[](int i) { return items_[Index(i)]; }
  const T& operator[](int i) const { return items_[Index(i)]; }
  static constexpr int size() { return N; }
  static constexpr bool Holds(int i) { return i >= 1 && i <= N; }
  auto begin() { return items_.begin(); }
  auto end() { return items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  static std::size_t Index(int i) {
    assert(Holds(i));
    return static_cast<std::size_t>(i) - 1;
  }
  std::array<T, N> items_{};
};

}  // namespace zentor
