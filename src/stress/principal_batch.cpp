#include "stress/principal_batch.h"

#include <cstddef>

#include "stress/principal_lanes.h"
#include "stress/principal_stress.h"

namespace zentor {
namespace {

struct Columns {
  std::array<const double*, 6> in;
  std::array<double*, 3> out;
};

// The first blocks * kLanes tensors; the first value of those that need PrincipalGeneral itself is NaN.
template <std::size_t kLanes>
ZENTOR_LANES void SolveBlocks(const Columns& columns, std::size_t blocks) {
  const double *sx = columns.in[0], *sy = columns.in[1], *sz = columns.in[2];
  const double *txy = columns.in[3], *txz = columns.in[4], *tyz = columns.in[5];
  double *first = columns.out[0], *second = columns.out[1], *third = columns.out[2];
  const std::size_t count = blocks * kLanes;
  ZENTOR_INDEPENDENT
  for (std::size_t i = 0; i < count; ++i) {
    const LanePrincipals p = PrincipalsOf({sx[i], sy[i], sz[i], txy[i], txz[i], tyz[i]});
    first[i] = p.first;
    second[i] = p.second;
    third[i] = p.third;
  }
}

using Forms = FormOf<void(const Columns&, std::size_t)>;

void SolveAll(const Columns& columns, std::size_t count, VectorForm form) {
#ifdef ZENTOR_X86_FORMS
  if (form == VectorForm::kBits512) {
    return Forms::Bits512<SolveBlocks<kWideLanes>>(columns, count / kWideLanes);
  }
  if (form == VectorForm::kBits256) {
    return Forms::Bits256<SolveBlocks<kNarrowLanes>>(columns, count / kNarrowLanes);
  }
#endif
  static_cast<void>(form);
  return Forms::Baseline<SolveBlocks<kNarrowLanes>>(columns, count / kNarrowLanes);
}

void SettleRest(const Columns& columns, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (columns.out[0][i] == columns.out[0][i]) continue;
    StressTensor tensor;
    for (std::size_t c = 0; c < 6; ++c) tensor[c] = columns.in[c][i];
    const PrincipalValues p = PrincipalGeneral(tensor);
    for (std::size_t k = 0; k < 3; ++k) columns.out[k][i] = p[k];
  }
}

}  // namespace

void PrincipalBatch(const std::array<std::span<const double>, 6>& components,
                    const std::array<std::span<double>, 3>& values, VectorForm form) {
  const std::size_t count = components[0].size();
  const std::size_t whole = count - count % kWideLanes;
  Columns columns;
  for (std::size_t c = 0; c < 6; ++c) columns.in[c] = components[c].data();
  for (std::size_t k = 0; k < 3; ++k) columns.out[k] = values[k].data();
  SolveAll(columns, whole, form);
  SettleRest(columns, whole);
  if (whole == count) return;

  // The last tensors in a block of their own, filled up with zeros.
  std::array<std::array<double, kWideLanes>, 6> last_in{};
  std::array<std::array<double, kWideLanes>, 3> last_out{};
  Columns last;
  for (std::size_t c = 0; c < 6; ++c) {
    for (std::size_t i = whole; i < count; ++i) last_in[c][i - whole] = components[c][i];
    last.in[c] = last_in[c].data();
  }
  for (std::size_t k = 0; k < 3; ++k) last.out[k] = last_out[k].data();
  SolveAll(last, kWideLanes, form);
  SettleRest(last, kWideLanes);
  for (std::size_t k = 0; k < 3; ++k) {
    for (std::size_t i = whole; i < count; ++i) values[k][i] = last_out[k][i - whole];
  }
}

}  // namespace zentor
