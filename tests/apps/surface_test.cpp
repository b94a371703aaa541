#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "authoring/element_kind.h"

namespace zentor {
namespace {

// The faces of a solid close it: every edge belongs to two faces, which agree on its middle node; corners and
// faces satisfy Euler's formula; every node appears.
TEST(ElementKinds, FacesOfSolidsCloseThem) {
  for (const ElementKind& kind : ElementKinds()) {
    if (kind.faces.size() < 2) continue;
    std::map<std::array<int, 3>, int> edges;  // the corners in ascending order and the middle node
    std::set<int> nodes, corners;
    for (const auto& face : kind.faces) {
      nodes.insert(face.begin(), face.end());
      const std::size_t count = face.size() > 4 ? face.size() / 2 : face.size();
      for (std::size_t i = 0; i < count; ++i) {
        const int a = face[i], b = face[(i + 1) % count];
        ++edges[{std::min(a, b), std::max(a, b), face.size() > 4 ? face[i + count] : -1}];
        corners.insert(a);
      }
    }
    EXPECT_EQ(static_cast<int>(nodes.size()), kind.node_count) << kind.name;
    for (const auto& [edge, faces] : edges)
      EXPECT_EQ(faces, 2) << kind.name << " edge " << edge[0] << '-' << edge[1];
    EXPECT_EQ(corners.size() + kind.faces.size(), edges.size() + 2) << kind.name;
  }
}

}  // namespace
}  // namespace zentor
