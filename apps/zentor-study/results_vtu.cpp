#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include "authoring/element_kind.h"
#include "results.h"

namespace zentor::companion {

static_assert(std::endian::native == std::endian::little,
              "the data arrays are written as they lie in memory");

namespace {

// Cell types of the visualization toolkit's files.
enum VtkCell : int {
  kEmptyCell = 0,
  kVertex = 1,
  kPolyVertex = 2,
  kLine = 3,
  kTriangle = 5,
  kQuad = 9,
  kTetra = 10,
  kHexahedron = 12,
  kWedge = 13,
  kPyramid = 14,
  kQuadraticEdge = 21,
  kQuadraticTriangle = 22,
  kQuadraticQuad = 23,
  kQuadraticTetra = 24,
  kQuadraticHexahedron = 25,
  kQuadraticWedge = 26,
  kQuadraticPyramid = 27,
};

enum class Shape { kUnknown, kSurface, kSolid };

Shape ShapeOfCode(int code) {
  constexpr std::array kSurfaces = {2, 42, 98, 3, 4, 9, 17, 43, 44, 53, 54, 63, 64, 90, 91, 93, 94};
  constexpr std::array kSolids = {45, 72, 92};
  if (std::find(kSurfaces.begin(), kSurfaces.end(), code) != kSurfaces.end()) return Shape::kSurface;
  if (std::find(kSolids.begin(), kSolids.end(), code) != kSolids.end()) return Shape::kSolid;
  return Shape::kUnknown;
}

using Point = std::array<double, 3>;

Point Difference(const std::array<float, 3>& a, const std::array<float, 3>& b) {
  return {double{a[0]} - b[0], double{a[1]} - b[1], double{a[2]} - b[2]};
}
double Dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double Length(const Point& a) { return std::sqrt(Dot(a, a)); }
Point Cross(const Point& a, const Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Four points that span a volume, against their size, are a solid.
bool IsTetrahedron(const std::array<std::array<float, 3>, 4>& p) {
  constexpr double kFlat = 1e-3;
  const Point a = Difference(p[1], p[0]), b = Difference(p[2], p[0]), c = Difference(p[3], p[0]);
  return std::abs(Dot(Cross(a, b), c)) > kFlat * Length(a) * Length(b) * Length(c);
}

// Whether each node behind the corners lies near the middle of its edge of the polygon.
bool HasEdgeMiddles(const Mesh& mesh, std::span<const std::int32_t> nodes, std::size_t corners) {
  const auto at = [&](std::size_t i) -> const std::array<float, 3>& {
    return mesh.points[static_cast<std::size_t>(nodes[i])];
  };
  for (std::size_t i = 0; i < corners; ++i) {
    const auto& from = at(i);
    const auto& to = at((i + 1) % corners);
    std::array<float, 3> middle{};
    for (std::size_t axis = 0; axis < 3; ++axis) middle[axis] = (from[axis] + to[axis]) / 2;
    if (Length(Difference(at(corners + i), middle)) > 0.3 * Length(Difference(to, from))) return false;
  }
  return true;
}

bool IsSurface(const Mesh& mesh, std::span<const std::int32_t> nodes) {
  if (nodes.size() != 4) return HasEdgeMiddles(mesh, nodes, nodes.size() / 2);
  std::array<std::array<float, 3>, 4> corners{};
  for (std::size_t i = 0; i < 4; ++i) corners[i] = mesh.points[static_cast<std::size_t>(nodes[i])];
  return !IsTetrahedron(corners);
}

int CellByNodeCount(const Mesh& mesh, std::span<const std::int32_t> nodes, Shape shape) {
  const auto surface = [&] {
    return shape == Shape::kUnknown ? IsSurface(mesh, nodes) : shape == Shape::kSurface;
  };
  switch (nodes.size()) {
    case 0:
      return kEmptyCell;
    case 1:
      return kVertex;
    case 2:
      return kLine;
    case 3:
      return kTriangle;
    case 4:
      return surface() ? kQuad : kTetra;
    case 5:
      return kPyramid;
    case 6:
      return surface() ? kQuadraticTriangle : kWedge;
    case 8:
      return surface() ? kQuadraticQuad : kHexahedron;
    case 10:
      return kQuadraticTetra;
    case 13:
      return kQuadraticPyramid;
    case 15:
      return kQuadraticWedge;
    case 20:
      return kQuadraticHexahedron;
    default:
      return kPolyVertex;
  }
}

// Place in the element's node list of each node of the cell, where the two orders differ: the file format
// wants the base of a wedge to face outwards, our elements have it face inwards.
std::span<const std::uint8_t> CellOrder(int cell) {
  static constexpr std::array<std::uint8_t, 6> kWedgeOrder = {0, 2, 1, 3, 5, 4};
  static constexpr std::array<std::uint8_t, 15> kWedge15Order = {0, 2,  1,  3, 5,  4,  8, 7,
                                                                 6, 11, 10, 9, 12, 14, 13};
  if (cell == kWedge) return kWedgeOrder;
  if (cell == kQuadraticWedge) return kWedge15Order;
  return {};
}

std::vector<std::int64_t> Connectivity(const Mesh& mesh) {
  std::vector<std::int64_t> connectivity;
  connectivity.reserve(mesh.connectivity.size());
  for (std::size_t element = 0; element < mesh.element_ids.size(); ++element) {
    const auto nodes = mesh.ElementNodes(element);
    const auto order = CellOrder(VtkCellType(mesh, element));
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      connectivity.push_back(nodes[order.size() == nodes.size() ? order[i] : i]);
    }
  }
  return connectivity;
}

template <typename T>
std::string Bytes(const std::vector<T>& values) {
  std::string bytes(values.size() * sizeof(T), '\0');
  if (!bytes.empty()) std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}

// An array of the file: its description, and its bytes when their turn comes.
struct DataArray {
  std::string_view type;
  std::string_view name;
  int components;
  std::uint64_t bytes;
  std::function<std::string()> content;
};

template <typename T, typename Value>
DataArray Array(std::string_view type, std::string_view name, std::size_t count, Value value) {
  return {type, name, 1, count * sizeof(T), [count, value] {
            std::vector<T> values(count);
            for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<T>(value(i));
            return Bytes(values);
          }};
}

// Descriptions first, then all bytes behind the underscore in the same order, each behind its length.
class VtuWriter {
 public:
  explicit VtuWriter(OutputFile& out) : out_(out) {}

  void Section(std::string_view tag, std::string_view attributes, std::vector<DataArray> arrays) {
    out_.Write(fmt::format("      <{}{}>\n", tag, attributes));
    for (DataArray& array : arrays) {
      const std::string components =
          array.components == 1 ? "" : fmt::format(" NumberOfComponents=\"{}\"", array.components);
      out_.Write(
          fmt::format("        <DataArray type=\"{}\" Name=\"{}\"{} format=\"appended\" offset=\"{}\"/>\n",
                      array.type, array.name, components, offset_));
      offset_ += sizeof(std::uint64_t) + array.bytes;
      arrays_.push_back(std::move(array));
    }
    out_.Write(fmt::format("      </{}>\n", tag));
  }

  void AppendData() {
    out_.Write("  <AppendedData encoding=\"raw\">\n_");
    for (const DataArray& array : arrays_) {
      out_.Write(Bytes(std::vector<std::uint64_t>{array.bytes}));
      out_.Write(array.content());
    }
    out_.Write("\n  </AppendedData>\n");
  }

 private:
  OutputFile& out_;
  std::uint64_t offset_ = 0;
  std::vector<DataArray> arrays_;
};

DataArray PointArray(const Mesh& mesh) {
  return {"Float32", "Points", 3, mesh.points.size() * sizeof(mesh.points[0]),
          [&mesh] { return Bytes(mesh.points); }};
}

std::vector<DataArray> NodeArrays(const Mesh& mesh, const std::vector<ExportedResult>& at_nodes) {
  const std::size_t n = mesh.node_ids.size();
  const auto result = [&](std::string_view name, float ExportedResult::*member) {
    return Array<float>("Float32", name, n,
                        [&at_nodes, member](std::size_t i) { return at_nodes[i].*member; });
  };
  return {Array<std::int32_t>("Int32", "node", n, [&mesh](std::size_t i) { return mesh.node_ids[i]; }),
          result("usage_factor", &ExportedResult::usage),
          result("life", &ExportedResult::life),
          result("life_factor", &ExportedResult::life_factor),
          result("factor_of_safety", &ExportedResult::factor_of_safety),
          result("biaxiality_ratio", &ExportedResult::biaxiality)};
}

// The results by place of the node in the mesh; NaN for a node without results.
std::vector<ExportedResult> AtNodes(const Mesh& mesh, const NodeResults& results) {
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  std::vector<ExportedResult> at_nodes(mesh.node_ids.size(),
                                       ExportedResult{kNone, kNone, kNone, kNone, kNone});
  for (const NodeResult& node : results.nodes) {
    if (const auto place = FindNode(mesh, node.node)) at_nodes[*place] = Exported(results, node);
  }
  return at_nodes;
}

}  // namespace

int VtkCellType(const Mesh& mesh, std::size_t element) {
  const auto nodes = mesh.ElementNodes(element);
  const int code = mesh.type_codes[element];
  if (const ElementKind* kind = FindElementKind(code, static_cast<int>(nodes.size()))) return kind->vtk_cell;
  constexpr std::array kLineCodes = {1, 8};
  if (nodes.size() == 3 && std::find(kLineCodes.begin(), kLineCodes.end(), code) != kLineCodes.end()) {
    return kQuadraticEdge;
  }
  return CellByNodeCount(mesh, nodes, ShapeOfCode(code));
}

void WriteVtu(const Mesh& mesh, const NodeResults& results, OutputFile& out) {
  const std::size_t cells = mesh.element_ids.size();
  const std::vector<ExportedResult> at_nodes = AtNodes(mesh, results);
  out.Write(
      "<?xml version=\"1.0\"?>\n"
      "<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" byte_order=\"LittleEndian\" "
      "header_type=\"UInt64\">\n"
      "  <UnstructuredGrid>\n");
  out.Write(
      fmt::format("    <Piece NumberOfPoints=\"{}\" NumberOfCells=\"{}\">\n", mesh.node_ids.size(), cells));
  VtuWriter writer(out);
  writer.Section("PointData", " Scalars=\"usage_factor\"", NodeArrays(mesh, at_nodes));
  writer.Section(
      "CellData", "",
      {Array<std::int32_t>("Int32", "element", cells, [&](std::size_t i) { return mesh.element_ids[i]; }),
       Array<std::int32_t>("Int32", "material", cells, [&](std::size_t i) { return mesh.materials[i]; })});
  writer.Section("Points", "", {PointArray(mesh)});
  writer.Section(
      "Cells", "",
      {{"Int64", "connectivity", 1, mesh.connectivity.size() * sizeof(std::int64_t),
        [&] { return Bytes(Connectivity(mesh)); }},
       Array<std::int64_t>("Int64", "offsets", cells, [&](std::size_t i) { return mesh.ends[i]; }),
       Array<std::uint8_t>("UInt8", "types", cells, [&](std::size_t i) { return VtkCellType(mesh, i); })});
  out.Write("    </Piece>\n  </UnstructuredGrid>\n");
  writer.AppendData();
  out.Write("</VTKFile>\n");
}

}  // namespace zentor::companion
