#include "database/record_window.h"

#include <algorithm>
#include <cassert>

namespace zentor {

namespace {

std::int64_t RecordsIn(std::size_t bytes, int record_length) {
  return std::max<std::int64_t>(1, static_cast<std::int64_t>(bytes) / record_length);
}

}  // namespace

RecordWindow::RecordWindow(platform::RandomAccessFile& file, const table_format::Geometry& geometry)
    : file_(file), geometry_(geometry) {}

std::int64_t RecordWindow::RecordsHeld() const {
  return (static_cast<std::int64_t>(held_bytes_) + geometry_.record_length - 1) / geometry_.record_length;
}

std::span<const std::byte> RecordWindow::Record(std::int64_t slot) {
  assert(slot >= 1);
  if (slot < first_slot_ || slot >= first_slot_ + RecordsHeld()) Load(slot);
  const std::int64_t index = slot - first_slot_;
  if (index >= RecordsHeld()) return {};
  const auto start = static_cast<std::size_t>(index) * static_cast<std::size_t>(geometry_.record_length);
  const auto length = std::min(held_bytes_ - start, static_cast<std::size_t>(geometry_.record_length));
  return std::span(bytes_).subspan(start, length);
}

void RecordWindow::Load(std::int64_t slot) {
  const std::int64_t end = first_slot_ + RecordsHeld();
  const std::int64_t shortest = RecordsIn(kShortestBytes, geometry_.record_length);
  if (held_bytes_ > 0 && slot >= end && slot < end + run_length_) {
    run_length_ = std::min(2 * run_length_, RecordsIn(kLongestBytes, geometry_.record_length));
    first_slot_ = slot;
  } else {
    run_length_ = shortest;
    first_slot_ = (slot - 1) / shortest * shortest + 1;
  }
  held_bytes_ = 0;  // nothing, should the read fail
  bytes_.resize(static_cast<std::size_t>(run_length_) * static_cast<std::size_t>(geometry_.record_length));
  held_bytes_ = file_.ReadAt(geometry_.SlotOffset(first_slot_), bytes_);
}

void RecordWindow::Written(std::int64_t slot, std::span<const std::byte> record) {
  const std::int64_t index = slot - first_slot_;
  if (index < 0 || index >= RecordsHeld()) return;
  const auto start = static_cast<std::size_t>(index) * static_cast<std::size_t>(geometry_.record_length);
  if (start + record.size() > held_bytes_) {
    held_bytes_ = start;  // the record was cut by the end of the file and is whole now
    return;
  }
  std::copy(record.begin(), record.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(start));
}

}  // namespace zentor
