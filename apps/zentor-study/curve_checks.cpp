#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <set>

#include "content_checks.h"
#include "stress/sn_lookup.h"

namespace zentor::companion {

namespace {

constexpr double kBuiltInLastCycles = 1e6;
constexpr float kNoInfiniteLife = 1e-8F;  // a run takes what is up to this as not defined

// Which of the study's curves a run looks at.
struct CurveUse {
  std::set<int> sets;  // materials with curves
  int materials = 0;   // highest number, 0 without materials
  int for_all = 0;     // the material whose curves hold for all nodes, 0 when every node has its own
};

CurveUse UseOf(const StudyDefinition& study) {
  CurveUse use;
  for (const AuthoredMaterial& material : study.materials)
    use.materials = std::max(use.materials, material.number);
  for (const AuthoredSnCurve& curve : study.sn_curves) use.sets.insert(curve.material);
  const bool own = study.layout == StudyLayout::kMultiStudy && use.sets.size() > 1;
  if (!use.sets.empty() && !own) use.for_all = *use.sets.rbegin();
  return use;
}

std::string CurveText(const StudyDefinition& study, const AuthoredSnCurve& curve) {
  return fmt::format("S-N curve {} (material {}, stress ratio {})", &curve - study.sn_curves.data() + 1,
                     curve.material, curve.stress_ratio);
}

void CheckInfiniteLife(const StudyDefinition& study, const CurveUse& use, Findings& findings) {
  const float life = study.options.infinite_life;
  if (!HasInfiniteLife(study)) return;
  const auto report = [&](double last, const std::string& curve) {
    if (static_cast<double>(life) >= last) return;
    findings.push_back({Finding::Grade::kMistake, "options", 0, "infinite_life",
                        fmt::format("infinite_life is {} cycles, fewer than the {} of the last point of {}: "
                                    "stresses below the curve would get more damage than those on it",
                                    life, last, curve)});
  };
  if (study.options.sn_curve_option != 0) return report(kBuiltInLastCycles, "the built-in S-N curve");
  for (const AuthoredSnCurve& curve : study.sn_curves) {
    const bool used = use.for_all == 0 || curve.material == use.for_all;
    if (used && !curve.points.empty())
      report(static_cast<double>(curve.points.back()[0]), CurveText(study, curve));
  }
}

// The lookup by stress ratio takes the first of two curves at the same distance.
void CheckDuplicates(const StudyDefinition& study, Findings& findings) {
  std::set<std::pair<int, float>> seen;
  std::size_t place = 0;
  for (const AuthoredSnCurve& curve : study.sn_curves) {
    ++place;
    if (seen.emplace(curve.material, curve.stress_ratio).second) continue;
    findings.push_back({Finding::Grade::kMistake, "sn_curve", place, "",
                        fmt::format("S-N curve {} is not looked at: material {} has an earlier curve of the "
                                    "stress ratio {}",
                                    place, curve.material, curve.stress_ratio)});
  }
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) text += i + 1 == parts.size() ? " and " : ", ";
    text += parts[i];
  }
  return text;
}

// A corrected stress has mean stress 0, so curves of other ratios than -1 are not what it needs.
void CheckMeanStress(const StudyDefinition& study, const CurveUse& use, Findings& findings) {
  if (study.options.mean_stress_correction < 1) return;
  std::vector<std::string> idle, twice;
  std::size_t place = 0;
  for (const AuthoredSnCurve& curve : study.sn_curves) {
    ++place;
    const bool used = use.for_all == 0 || curve.material == use.for_all;
    if (!used || curve.stress_ratio == -1.0F) continue;
    const bool reversed =
        std::any_of(study.sn_curves.begin(), study.sn_curves.end(), [&curve](const AuthoredSnCurve& other) {
          return other.material == curve.material && other.stress_ratio == -1.0F;
        });
    (reversed ? idle : twice).push_back(fmt::format("{} ({})", place, curve.stress_ratio));
  }
  const auto warn = [&findings](const std::vector<std::string>& curves, std::string_view consequence) {
    if (curves.empty()) return;
    findings.push_back(
        {Finding::Grade::kWarning, "sn_curve", 0, "",
         fmt::format("with mean_stress_correction every stress has the stress ratio -1: {} of other "
                     "ratios, S-N curve{} {}",
                     consequence, curves.size() > 1 ? "s" : "", Joined(curves))});
  };
  warn(idle, "nothing is read from the curves");
  warn(twice, "the mean stress counts twice with curves");
}

// One material's curves for all nodes: whose, and which nodes and curves that leaves out.
void CheckSharedCurve(const CurveUse& use, const std::function<MaterialNodes()>& material_nodes,
                      Findings& findings) {
  if (use.for_all == 0 || (use.sets.size() < 2 && use.materials < 2)) return;
  std::vector<std::string> nodes;
  if (use.materials > 1) {
    for (const auto& [material, count] : material_nodes().counts) {
      if (material != use.for_all) nodes.push_back(fmt::format("the {} of material {}", count, material));
    }
  }
  std::vector<std::string> unused;
  for (const int set : use.sets) {
    if (set != use.for_all) unused.push_back(fmt::to_string(set));
  }
  std::string text = fmt::format("the S-N curves of material {} hold for all nodes", use.for_all);
  if (!nodes.empty()) text += fmt::format(", also for {}", Joined(nodes));
  if (!unused.empty()) {
    text += fmt::format("; the curves of material{} {} are not looked at", unused.size() > 1 ? "s" : "",
                        Joined(unused));
  }
  if (nodes.empty() && unused.empty()) return;
  findings.push_back({Finding::Grade::kWarning, "sn_curve", 0, "", std::move(text)});
}

// The modulus of all materials; 0 when it is unknown or they differ.
float CommonModulus(const StudyDefinition& study) {
  const auto& materials = study.materials;
  const bool same = std::all_of(
      materials.begin(), materials.end(),
      [&materials](const AuthoredMaterial& one) { return one.modulus == materials.front().modulus; });
  return same && !materials.empty() ? std::max(materials.front().modulus, 0.0F) : 0.0F;
}

std::optional<CurveRange> BuiltInStresses(const StudyDefinition& study) {
  const float modulus = CommonModulus(study);
  if (!(modulus > 0.0F)) return std::nullopt;
  SnCurveStore store;
  PrepareBuiltInCurve(study.options.sn_curve_option, static_cast<double>(modulus),
                      study.layout == StudyLayout::kMultiStudy, 0, store);
  const SnCurve& curve = store.sets[1].front();
  return CurveRange{static_cast<float>(curve.last_stress), static_cast<float>(curve.first_stress),
                    kBuiltInLastCycles};
}

// A run scales the built-in curve once, with the modulus of the first node that it evaluates.
void CheckBuiltInModulus(const StudyDefinition& study, const std::function<MaterialNodes()>& material_nodes,
                         Findings& findings) {
  const bool all_nodes =
      study.layout == StudyLayout::kMultiStudy || study.options.activated_location == kAllNodesLocation;
  if (!all_nodes || CommonModulus(study) > 0.0F) return;
  std::map<int, float> moduli;
  for (const AuthoredMaterial& material : study.materials) moduli[material.number] = material.modulus;
  const MaterialNodes nodes = material_nodes();
  // At a border of materials, and where only the surface is evaluated, it is the run that finds out which.
  const bool known = nodes.of_first.size() == 1 && !study.options.surface_only;
  const int first = known ? *nodes.of_first.begin() : 0;
  std::set<float> used;
  std::vector<std::string> others;
  for (const auto& [material, count] : nodes.counts) {
    used.insert(moduli[material]);
    if (!known || moduli[material] != moduli[first])
      others.push_back(fmt::format("the {} of material {}", count, material));
  }
  if (used.size() < 2) return;
  const std::string scale =
      known ? fmt::format("the modulus {} of material {}, that of the first node,", moduli[first], first)
            : std::string("the modulus of the first node's material");
  findings.push_back({Finding::Grade::kWarning, "options", 0, "sn_curves",
                      known ? fmt::format("the built-in S-N curve is scaled by {} for all nodes, also for {}",
                                          scale, Joined(others))
                            : fmt::format("the built-in S-N curve is scaled by {} for all nodes: {}", scale,
                                          Joined(others))});
}

}  // namespace

bool HasInfiniteLife(const StudyDefinition& study) { return study.options.infinite_life > kNoInfiniteLife; }

std::optional<CurveRange> CurveStresses(const StudyDefinition& study) {
  const CurveUse use = UseOf(study);
  if (study.options.sn_curve_option != 0) return BuiltInStresses(study);
  if (use.for_all == 0) return std::nullopt;
  CurveRange range{std::numeric_limits<float>::max(), 0.0F, std::numeric_limits<double>::max()};
  for (const AuthoredSnCurve& curve : study.sn_curves) {
    if (curve.material != use.for_all || curve.points.empty()) continue;
    range.lowest = std::min(range.lowest, curve.points.back()[1]);
    range.highest = std::max(range.highest, curve.points.front()[1]);
    range.last_cycles = std::min(range.last_cycles, static_cast<double>(curve.points.back()[0]));
  }
  return range;
}

std::string UnstressedNodesText(std::size_t count, std::size_t nodes) {
  return fmt::format(
      "{} of {} nodes have no stress range and get damage all the same, since infinite_life is not "
      "defined: stresses below an S-N curve count with its last number of cycles",
      count, nodes);
}

MaterialNodes CountMaterialNodes(const StudyModel& model) {
  std::vector<const AuthoredElement*> by_material;
  for (const AuthoredElement& element : model.elements) by_material.push_back(&element);
  std::stable_sort(by_material.begin(), by_material.end(),
                   [](const auto* a, const auto* b) { return a->material < b->material; });
  MaterialNodes nodes;
  const auto lowest = std::min_element(model.nodes.begin(), model.nodes.end(),
                                       [](const auto& a, const auto& b) { return a.number < b.number; });
  // The material that counted the node last: with the elements in order of materials, one is enough.
  std::vector<int> counted(static_cast<std::size_t>(model.HighestNode()) + 1, -1);
  for (const AuthoredElement* element : by_material) {
    for (const std::int32_t node : model.NodesOf(*element)) {
      int& last = counted[static_cast<std::size_t>(node)];
      if (last != element->material) ++nodes.counts[element->material];
      if (node == lowest->number) nodes.of_first.insert(element->material);
      last = element->material;
    }
  }
  return nodes;
}

void CheckCurveUse(const StudyDefinition& study, const std::function<MaterialNodes()>& material_nodes,
                   Findings& findings) {
  const CurveUse use = UseOf(study);
  CheckInfiniteLife(study, use, findings);
  if (study.options.sn_curve_option != 0) return CheckBuiltInModulus(study, material_nodes, findings);
  CheckDuplicates(study, findings);
  CheckMeanStress(study, use, findings);
  CheckSharedCurve(use, material_nodes, findings);
}

Findings CheckContent(const StudyDefinition& study, const std::function<MaterialNodes()>& material_nodes) {
  Findings findings;
  CheckStrengthReduction(study, findings);
  CheckEventDamage(study, findings);
  CheckCurveUse(study, material_nodes, findings);
  return findings;
}

}  // namespace zentor::companion
