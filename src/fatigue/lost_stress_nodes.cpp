#include "fatigue/lost_stress_nodes.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "platform/text.h"
#include "services/message_arguments.h"

namespace zentor {
namespace {

constexpr int kStressesLost = 9085;

}  // namespace

void LostStressNodes::Add(int node, const LostStress& lost) {
  if (lost.count == 0) return;
  ++count_;
  Node entry = {node, lost.largest};
  for (Node& place : worst_) {
    const bool before =
        entry.stress != place.stress ? entry.stress > place.stress : entry.number < place.number;
    if (place.number == 0 || before) std::swap(entry, place);
    if (entry.number == 0) return;
  }
}

void LostStressNodes::Warn(SolverServices& services) const {
  if (count_ == 0) return;
  std::string worst;
  for (const Node& node : worst_) {
    if (node.number == 0) break;
    char text[48];
    std::snprintf(text, sizeof text, "%s%d (%.6g)", worst.empty() ? "" : ", ", node.number, node.stress);
    worst += text;
  }
  std::vector<float> arguments = TextArguments(platform::ToWide(worst));
  arguments.insert(arguments.begin(), static_cast<float>(count_));
  services.ShowMessage(kStressesLost, arguments, Severity::kWarning);
}

}  // namespace zentor
