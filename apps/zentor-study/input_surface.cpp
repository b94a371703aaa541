#include "input_surface.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>

#include "authoring/element_kind.h"
#include "row_source.h"

namespace zentor::companion {

namespace {

// A face by its three lowest node numbers: two faces of a sound mesh that share three corners are the same.
struct FaceKey {
  std::array<std::int32_t, 3> nodes{};
  std::uint32_t element = 0;  // place in the model
  std::uint8_t face = 0;

  bool SameFace(const FaceKey& other) const { return nodes == other.nodes; }
  bool operator<(const FaceKey& other) const {
    return nodes != other.nodes ? nodes < other.nodes : element < other.element;
  }
};

std::size_t CornerCount(std::size_t face_nodes) { return face_nodes > 4 ? face_nodes / 2 : face_nodes; }

std::array<std::int32_t, 3> LowestCorners(std::span<const std::int32_t> nodes,
                                          std::span<const std::uint8_t> face) {
  std::array<std::int32_t, 4> corners;
  corners.fill(std::numeric_limits<std::int32_t>::max());
  const std::size_t count = CornerCount(face.size());
  for (std::size_t i = 0; i < count; ++i) corners[i] = nodes[face[i]];
  std::sort(corners.begin(), corners.end());
  return {corners[0], corners[1], corners[2]};
}

SurfaceFace FaceOf(const StudyModel& model, const AuthoredElement& element,
                   std::span<const std::uint8_t> places) {
  SurfaceFace face;
  face.element = element.number;
  const auto nodes = model.NodesOf(element);
  for (const std::uint8_t place : places) face.nodes.push_back(nodes[place]);
  return face;
}

bool IsSolid(const ElementKind& kind) { return kind.faces.size() > 1; }

std::vector<SurfaceFace> ReadFaces(InputContext& context, TableReader& model) {
  constexpr std::array<Column, 1> kColumns = {{{"element"}}};
  const auto rows = OpenRows(model, "surface", context.folder, {kColumns, "n"}, context.files);
  std::vector<SurfaceFace> faces;
  if (!rows) return faces;
  ReadRows(*rows, *context.errors, [&] {
    SurfaceFace face;
    face.element = rows->Integer(0, {1, kMaxModelNumber});
    const std::int32_t place = context.index.Element(face.element);
    if (place == ModelIndex::kNone) {
      rows->Fail(fmt::format("element is {}, expected an element of the elements table", face.element));
    }
    const auto nodes =
        context.study.model.NodesOf(context.study.model.elements[static_cast<std::size_t>(place)]);
    for (std::size_t i = 0; i < rows->TailCount(); ++i) {
      const int node = rows->TailInteger(i, {1, kMaxModelNumber});
      if (std::find(nodes.begin(), nodes.end(), node) == nodes.end()) {
        rows->Fail(fmt::format("the face has node {}, expected a node of element {}", node, face.element));
      }
      face.nodes.push_back(node);
    }
    if (face.nodes.empty()) rows->Fail("the face has no nodes, expected n1, n2, ...");
    faces.push_back(std::move(face));
  });
  return faces;
}

}  // namespace

std::vector<SurfaceFace> FindSurface(const StudyModel& model) {
  std::vector<FaceKey> keys;
  std::vector<SurfaceFace> surface;
  for (std::size_t place = 0; place < model.elements.size(); ++place) {
    const AuthoredElement& element = model.elements[place];
    const ElementKind* kind = FindElementKind(element.type_code, element.node_count);
    if (kind == nullptr) continue;
    for (std::size_t face = 0; face < kind->faces.size(); ++face) {
      if (IsSolid(*kind)) {
        keys.push_back({LowestCorners(model.NodesOf(element), kind->faces[face]),
                        static_cast<std::uint32_t>(place), static_cast<std::uint8_t>(face)});
      } else {
        surface.push_back(FaceOf(model, element, kind->faces[face]));
      }
    }
  }
  std::sort(keys.begin(), keys.end());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const bool shared =
        (i > 0 && keys[i].SameFace(keys[i - 1])) || (i + 1 < keys.size() && keys[i].SameFace(keys[i + 1]));
    if (shared) continue;
    const AuthoredElement& element = model.elements[keys[i].element];
    const ElementKind* kind = FindElementKind(element.type_code, element.node_count);
    surface.push_back(FaceOf(model, element, kind->faces[keys[i].face]));
  }
  return surface;
}

void ReadSurface(InputContext& context, TableReader& model, bool sound) {
  const ConfigValue* surface = model.Look("surface");
  if (surface == nullptr && context.study.options.surface_only) {
    model.ReportMissing("surface", "'auto' or faces, since surface_only is true");
  }
  if (surface == nullptr || !sound) return;
  const ErrorWatch watch(*context.errors);
  const bool automatic = surface->kind == ConfigValue::Kind::kText && surface->text == "auto";
  context.study.model.surface_faces =
      automatic ? FindSurface(context.study.model) : ReadFaces(context, model);
  if (watch.Clean() && context.study.model.surface_faces.empty())
    model.Report("surface", "at least one face");
}

}  // namespace zentor::companion
