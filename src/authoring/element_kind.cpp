#include "authoring/element_kind.h"

#include <array>

namespace zentor {

namespace {

using Face = std::span<const std::uint8_t>;

// Middle nodes follow the corners: of the edges of the base in order, then of the top, then of the upright
// edges.
constexpr std::array<std::uint8_t, 3> kThree = {0, 1, 2};
constexpr std::array<std::uint8_t, 4> kFour = {0, 1, 2, 3};
constexpr std::array<std::uint8_t, 6> kSix = {0, 1, 2, 3, 4, 5};
constexpr std::array<std::uint8_t, 8> kEight = {0, 1, 2, 3, 4, 5, 6, 7};

constexpr std::uint8_t kTet[4][6] = {
    {0, 1, 2, 4, 5, 6}, {0, 1, 3, 4, 8, 7}, {1, 2, 3, 5, 9, 8}, {2, 0, 3, 6, 7, 9}};
constexpr std::uint8_t kPyramidBase[4] = {0, 1, 2, 3};
constexpr std::uint8_t kPyramidSides[4][3] = {{0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}};
constexpr std::uint8_t kWedgeEnds[2][6] = {{0, 1, 2, 6, 7, 8}, {3, 4, 5, 9, 10, 11}};
constexpr std::uint8_t kWedgeSides[3][8] = {
    {0, 1, 4, 3, 6, 13, 9, 12}, {1, 2, 5, 4, 7, 14, 10, 13}, {2, 0, 3, 5, 8, 12, 11, 14}};
constexpr std::uint8_t kHex[6][8] = {{0, 1, 2, 3, 8, 9, 10, 11},   {4, 5, 6, 7, 12, 13, 14, 15},
                                     {0, 1, 5, 4, 8, 17, 12, 16},  {1, 2, 6, 5, 9, 18, 13, 17},
                                     {2, 3, 7, 6, 10, 19, 14, 18}, {3, 0, 4, 7, 11, 16, 15, 19}};

constexpr Face First(const std::uint8_t* places, std::size_t count) { return {places, count}; }

constexpr std::array<Face, 1> kWhole3 = {Face(kThree)};
constexpr std::array<Face, 1> kWhole4 = {Face(kFour)};
constexpr std::array<Face, 1> kWhole6 = {Face(kSix)};
constexpr std::array<Face, 1> kWhole8 = {Face(kEight)};
constexpr std::array<Face, 4> kTet4Faces = {First(kTet[0], 3), First(kTet[1], 3), First(kTet[2], 3),
                                            First(kTet[3], 3)};
constexpr std::array<Face, 4> kTet10Faces = {Face(kTet[0]), Face(kTet[1]), Face(kTet[2]), Face(kTet[3])};
constexpr std::array<Face, 5> kPyramidFaces = {Face(kPyramidBase), Face(kPyramidSides[0]),
                                               Face(kPyramidSides[1]), Face(kPyramidSides[2]),
                                               Face(kPyramidSides[3])};
constexpr std::array<Face, 5> kWedge6Faces = {First(kWedgeEnds[0], 3), First(kWedgeEnds[1], 3),
                                              First(kWedgeSides[0], 4), First(kWedgeSides[1], 4),
                                              First(kWedgeSides[2], 4)};
constexpr std::array<Face, 5> kWedge15Faces = {Face(kWedgeEnds[0]), Face(kWedgeEnds[1]), Face(kWedgeSides[0]),
                                               Face(kWedgeSides[1]), Face(kWedgeSides[2])};
constexpr std::array<Face, 6> kHex8Faces = {First(kHex[0], 4), First(kHex[1], 4), First(kHex[2], 4),
                                            First(kHex[3], 4), First(kHex[4], 4), First(kHex[5], 4)};
constexpr std::array<Face, 6> kHex20Faces = {Face(kHex[0]), Face(kHex[1]), Face(kHex[2]),
                                             Face(kHex[3]), Face(kHex[4]), Face(kHex[5])};

using enum StressShape;
constexpr std::array kKinds = {
    ElementKind{"tet4", 4, 45, kContinuum, 10, kTet4Faces},
    ElementKind{"tet10", 10, 92, kContinuum, 24, kTet10Faces},
    ElementKind{"pyra5", 5, 45, kContinuum, 14, kPyramidFaces},
    ElementKind{"wedge6", 6, 45, kContinuum, 13, kWedge6Faces},
    ElementKind{"wedge15", 15, 45, kContinuum, 26, kWedge15Faces},
    ElementKind{"hex8", 8, 45, kContinuum, 12, kHex8Faces},
    ElementKind{"hex20", 20, 45, kContinuum, 25, kHex20Faces},
    ElementKind{"tria3", 3, 2, kContinuum, 5, kWhole3},
    ElementKind{"tria6", 6, 98, kContinuum, 22, kWhole6},
    ElementKind{"quad4", 4, 42, kContinuum, 9, kWhole4},
    ElementKind{"quad8", 8, 98, kContinuum, 23, kWhole8},
    ElementKind{"shell3", 3, 63, kShell, 5, kWhole3},
    ElementKind{"shell4", 4, 43, kShell, 9, kWhole4},
    ElementKind{"shell6", 6, 93, kShell, 22, kWhole6},
    ElementKind{"shell8", 8, 93, kShell, 23, kWhole8},
    ElementKind{"layered4", 4, 46, kLayered, 9, kWhole4},
    ElementKind{"layered8", 8, 46, kLayered, 12, kHex8Faces},
    ElementKind{"line2", 2, 1, kLine, 3, {}},
};

}  // namespace

std::span<const ElementKind> ElementKinds() { return kKinds; }

const ElementKind* FindElementKind(std::string_view name) {
  for (const ElementKind& kind : kKinds) {
    if (kind.name == name) return &kind;
  }
  return nullptr;
}

const ElementKind* FindElementKind(int type_code, int node_count) {
  for (const ElementKind& kind : kKinds) {
    if (kind.type_code == type_code && kind.node_count == node_count) return &kind;
  }
  return nullptr;
}

std::string ElementKindNames() {
  std::string names;
  for (const ElementKind& kind : kKinds) {
    if (!names.empty()) names += ", ";
    names += kind.name;
  }
  return names;
}

}  // namespace zentor
