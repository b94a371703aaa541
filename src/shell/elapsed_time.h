// The elapsed time as the run shows it.
#pragma once

#include <cstdint>
#include <string>

namespace zentor {

// "hh:mm:ss" with two, three or four hour digits (below 100 hours, below 1000, from 1000 on); negative counts
// as 0.
std::u16string ElapsedText(std::int64_t seconds);

}  // namespace zentor
