// The same loop compiled for several instruction sets, and the choice among them at run time.
//
// A loop over lanes is written once, as plain C++ that the compiler vectorises, and is compiled for the
// baseline and, on x86-64, for 256-bit and 512-bit vectors. A loop of these computes every lane on its own
// with the same operations in the same order: fused multiply-add is off for the whole project and nothing
// allows the compiler to reassociate, so every form gives the same bits.
#pragma once

#include <array>
#include <cstddef>

#if defined(__x86_64__) && defined(__GNUC__)
#define ZENTOR_X86_FORMS 1
#endif

// In front of a loop whose turns touch different places of its arrays: spares the check at run time.
#if defined(__clang__)
#define ZENTOR_INDEPENDENT _Pragma("clang loop vectorize(assume_safety)")
#elif defined(__GNUC__)
#define ZENTOR_INDEPENDENT _Pragma("GCC ivdep")
#else
#define ZENTOR_INDEPENDENT
#endif

// A loop over lanes must melt into the function that sets the instructions.
#if defined(__GNUC__)
#define ZENTOR_LANES [[gnu::always_inline]] inline
#else
#define ZENTOR_LANES inline
#endif

namespace zentor {

enum class VectorForm : int { kBaseline, kBits256, kBits512 };
inline constexpr std::array<VectorForm, 3> kVectorForms = {VectorForm::kBaseline, VectorForm::kBits256,
                                                           VectorForm::kBits512};
// Numbers of double precision that a form takes at a time; arrays are padded to the most.
inline constexpr std::size_t kNarrowLanes = 4;
inline constexpr std::size_t kWideLanes = 8;

// Whether this processor runs a form; the baseline always.
inline bool RunsVectorForm([[maybe_unused]] VectorForm form) {
#ifdef ZENTOR_X86_FORMS
  if (form == VectorForm::kBits256) return __builtin_cpu_supports("avx2") != 0;
  if (form == VectorForm::kBits512) {
    return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
           __builtin_cpu_supports("avx512vl") != 0;
  }
#endif
  return form == VectorForm::kBaseline;
}

// The widest form that this processor runs.
inline VectorForm BestVectorForm() {
  for (const VectorForm form : {VectorForm::kBits512, VectorForm::kBits256}) {
    if (RunsVectorForm(form)) return form;
  }
  return VectorForm::kBaseline;
}

// kBody compiled for one form. The bodies are always inlined, so that they take on its instructions.
template <typename Signature>
struct FormOf;
template <typename Result, typename... Arguments>
struct FormOf<Result(Arguments...)> {
  template <Result (*kBody)(Arguments...)>
  static Result Baseline(Arguments... arguments) {
    return kBody(arguments...);
  }
#ifdef ZENTOR_X86_FORMS
  template <Result (*kBody)(Arguments...)>
  [[gnu::target("avx2")]] static Result Bits256(Arguments... arguments) {
    return kBody(arguments...);
  }
#if defined(__clang__)
  template <Result (*kBody)(Arguments...)>
  [[gnu::target("avx512f,avx512dq,avx512vl")]] static Result Bits512(Arguments... arguments) {
    return kBody(arguments...);
  }
#else
  template <Result (*kBody)(Arguments...)>
  [[gnu::target("avx512f,avx512dq,avx512vl,prefer-vector-width=512")]] static Result Bits512(
      Arguments... arguments) {
    return kBody(arguments...);
  }
#endif
#endif
};

}  // namespace zentor
