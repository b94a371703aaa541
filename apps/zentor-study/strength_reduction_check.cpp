#include <fmt/format.h>

#include "content_checks.h"

namespace zentor::companion {

namespace {

constexpr float kSmallestFactor = 1e-16F;  // a run takes what is below as 1

}  // namespace

std::string StrengthReductionText(float factor) {
  if (factor < kSmallestFactor || factor == 1.0F) return {};
  return fmt::format("stresses are divided by strength_reduction_factor {}, which {} them to {:.3g} %",
                     factor, factor > 1.0F ? "lowers" : "raises", 100.0 / static_cast<double>(factor));
}

void CheckStrengthReduction(const StudyDefinition& study, Findings& findings) {
  const float factor = study.options.strength_reduction_factor;
  constexpr std::string_view kKey = "strength_reduction_factor";
  // 0 is what a study holds that does not give one.
  if (factor != 0.0F && factor < kSmallestFactor) {
    findings.push_back({Finding::Grade::kMistake, "options", 0, kKey,
                        fmt::format("strength_reduction_factor is {}, which a run takes as 1", factor)});
  }
  const std::string text = StrengthReductionText(factor);
  if (!text.empty()) {
    const std::string_view remedy = factor > 1.0F ? "; a factor that raises them is below 1" : "";
    findings.push_back({Finding::Grade::kWarning, "options", 0, kKey, fmt::format("{}{}", text, remedy)});
  }
}

}  // namespace zentor::companion
