// Searches through the alternating stresses of a node's pairs, for EvaluateUsage. The arrays are padded to
// whole vectors with values of -infinity.
#pragma once

#include <cstddef>
#include <cstdint>

#include "stress/vector_forms.h"

namespace zentor {

struct PairScans {
  // Whether a value is NaN or beyond 1e300 in magnitude, -infinity excepted.
  bool (*any_undecided)(const double* values, std::size_t places);
  // Largest value of the pairs none of whose events is among the bits of `dead`; -infinity without any.
  double (*largest_alive)(const double* values, const std::uint64_t* events, std::uint64_t dead,
                          std::size_t places);
  // Pairs none of whose events is among `dead`, with a value above `low`, up to `high`: their places in
  // rising order go to `found`, their number comes back.
  std::size_t (*collect)(const double* values, const std::uint64_t* events, std::uint64_t dead, double low,
                         double high, std::size_t places, std::int32_t* found);
};
const PairScans& ScansOf(VectorForm form);

}  // namespace zentor
