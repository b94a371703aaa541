#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <vector>

#include "authoring/element_kind.h"
#include "input_surface.h"

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

// A block of 3 x 3 x 3 bricks: 54 faces lie outside, and the brick in the middle has none.
TEST(Surface, IsTheFacesThatNoOtherElementShares) {
  constexpr int kSide = 3;
  StudyModel model;
  const auto node = [](int x, int y, int z) { return 1 + x + (kSide + 1) * (y + (kSide + 1) * z); };
  for (int number = 1; number <= kSide * kSide * kSide; ++number) {
    const int x = (number - 1) % kSide, y = (number - 1) / kSide % kSide, z = (number - 1) / (kSide * kSide);
    model.elements.push_back({number, 45, 1, 1, 8, static_cast<std::uint32_t>(model.element_nodes.size())});
    for (const int dz : {0, 1}) {
      for (const auto& [dx, dy] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}})
        model.element_nodes.push_back(node(x + dx, y + dy, z + dz));
    }
  }
  const std::vector<SurfaceFace> surface = companion::FindSurface(model);
  EXPECT_EQ(surface.size(), 54U);
  EXPECT_TRUE(std::none_of(surface.begin(), surface.end(),
                           [](const SurfaceFace& face) { return face.element == 14; }));
  for (const SurfaceFace& face : surface) {
    EXPECT_EQ(std::count(face.nodes.begin(), face.nodes.end(), node(1, 1, 1)), 0) << "an inner node";
  }
}

}  // namespace
}  // namespace zentor
