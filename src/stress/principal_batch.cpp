#include "stress/principal_batch.h"

#include <cstddef>

#include "stress/exact_lanes.h"

namespace zentor {
namespace {

struct Columns {
  std::array<const double*, 6> in;
  std::array<double*, 3> out;
};

ZENTOR_LANES void Solve(const Columns& columns, std::size_t count) {
  const auto [sx, sy, sz, txy, txz, tyz] = columns.in;
  const auto [first, second, third] = columns.out;
  ZENTOR_INDEPENDENT
  for (std::size_t i = 0; i < count; ++i) {
    const LanePrincipals p = ExactPrincipals({sx[i], sy[i], sz[i], txy[i], txz[i], tyz[i]});
    first[i] = p.first;
    second[i] = p.second;
    third[i] = p.third;
  }
}

using Forms = FormOf<void(const Columns&, std::size_t)>;

}  // namespace

void PrincipalBatch(const std::array<std::span<const double>, 6>& components,
                    const std::array<std::span<double>, 3>& values, VectorForm form) {
  const std::size_t count = components[0].size();
  Columns columns;
  for (std::size_t c = 0; c < 6; ++c) columns.in[c] = components[c].data();
  for (std::size_t k = 0; k < 3; ++k) columns.out[k] = values[k].data();
#ifdef ZENTOR_X86_FORMS
  if (form == VectorForm::kBits512) return Forms::Bits512<Solve>(columns, count);
  if (form == VectorForm::kBits256) return Forms::Bits256<Solve>(columns, count);
#endif
  static_cast<void>(form);
  return Forms::Baseline<Solve>(columns, count);
}

}  // namespace zentor
