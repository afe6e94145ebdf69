#include "scene/Scene.hpp"

#include <array>
#include <string_view>
#include <vector>

#include "host/HostAccess.hpp"
#include "platform/UserInterface.hpp"
#include "scene/HostWalk.hpp"
#include "scene/SceneViewer.hpp"

namespace TessarkAO::Scene {

namespace {

using namespace std::string_view_literals;

constexpr std::array kShapeTypeNames = {"Assembly"sv,
                                        "Facet"sv,
                                        "Part"sv,
                                        "Sweep"sv,
                                        "Extrude"sv,
                                        "Spin"sv,
                                        "Loft"sv,
                                        "Brep"sv,
                                        "2D Profile"sv,
                                        "Bevel"sv,
                                        "Sheet Metal Extrude"sv,
                                        "Complex"sv,
                                        "Sheet Metal Form Shape"sv};

// Component type names by code; an empty entry has no name.  "Attatchment
// Point" is spelled so: it is the name users know it by.
constexpr std::array kComponentTypeNames = {"Sizebox"sv,
                                            "Group"sv,
                                            "Path"sv,
                                            "Position"sv,
                                            "Anchor"sv,
                                            "Path Manager"sv,
                                            "Surface Finish"sv,
                                            "Light"sv,
                                            "Attatchment Point"sv,
                                            "Facet"sv,
                                            "Brep"sv,
                                            "Compound"sv,
                                            "Edge Bevel"sv,
                                            "Sweep"sv,
                                            "Profile"sv,
                                            "Text"sv,
                                            "Orbix"sv,
                                            "Studio"sv,
                                            "Linestyle"sv,
                                            "Solid Instance"sv,
                                            ""sv,
                                            ""sv,
                                            "History"sv,
                                            "Path Sweep"sv,
                                            "UI Behavior"sv,
                                            "OLE Object"sv,
                                            "Face Finish"sv,
                                            ""sv,
                                            "Profile Group"sv,
                                            "Loft"sv,
                                            "Loft Section"sv,
                                            "Shelling"sv,
                                            "Utility Dimension"sv,
                                            "Variable"sv,
                                            ""sv,
                                            ""sv,
                                            ""sv,
                                            "Smart Dimension"sv,
                                            ""sv,
                                            "User Handle"sv,
                                            ""sv,
                                            "Embedded Page"sv,
                                            "Add-On"sv,
                                            "Properties"sv,
                                            ""sv,
                                            ""sv,
                                            "Style Layer Manager"sv,
                                            "Style Properties"sv,
                                            "Camera"sv,
                                            "Connection Point"sv,
                                            ""sv,
                                            ""sv,
                                            ""sv,
                                            "Path Master"sv,
                                            "Feature Control Frame"sv,
                                            "Datum Feature"sv,
                                            "Datum Target"sv,
                                            "Relation"sv,
                                            "Draw Centerline"sv,
                                            "Draw Reference Geom"sv,
                                            "Bill Of Materials"sv,
                                            "SM Part"sv,
                                            "SM Extrude"sv,
                                            "Complex"sv,
                                            "Definition Add-On"sv,
                                            "SM Bend"sv,
                                            "SM Form"sv,
                                            "SM Lance"sv};
static_assert(kComponentTypeNames.size() == 68);

constexpr std::array kCurveTypeNames = {"Line"sv, "Arc"sv, "Bezier"sv, "Ellipse"sv, "B-Spline"sv};

}  // namespace

std::string ShapeTypeName(std::int32_t type, bool sheetMetal) {
  if (type == Host::ShapeType::Part && sheetMetal) return "Sheet Metal Part";
  if (type < 1 || type > static_cast<std::int32_t>(kShapeTypeNames.size())) return "[Unknown Shape]";
  return std::string(kShapeTypeNames[static_cast<std::size_t>(type - 1)]);
}

std::string ShapeTypeNameOf(const Variant& shape) {
  const std::int32_t type = Host::TypeOf(shape);
  bool sheetMetal = false;
  if (type == Host::ShapeType::Part)
    sheetMetal = Host::CountOf(Host::Components(shape, Host::ComponentType::SheetMetalPart)) > 0;
  return ShapeTypeName(type, sheetMetal);
}

std::string ComponentTypeName(std::int32_t type) {
  if (type >= 1 && type <= static_cast<std::int32_t>(kComponentTypeNames.size())) {
    const std::string_view name = kComponentTypeNames[static_cast<std::size_t>(type - 1)];
    if (!name.empty()) return std::string(name);
  }
  return "Unknown [" + std::to_string(type) + "]";
}

std::string CurveTypeName(std::int32_t type) {
  if (type >= 1 && type <= static_cast<std::int32_t>(kCurveTypeNames.size()))
    return std::string(kCurveTypeNames[static_cast<std::size_t>(type - 1)]);
  return "Fillet";
}

void WalkShapes(const Variant& root, ShapeVisitor& visitor) {
  struct Level {
    Variant shapes;
    std::int32_t count;
    std::int32_t next;
    std::int32_t depth;
  };
  std::vector<Level> stack;
  HostWalk walk;

  // Visits one shape and, for a container with its child component, opens
  // the level of its children.
  auto enter = [&](const Variant& shape, std::int32_t depth) {
    walk.Step(shape, depth);
    const std::int32_t type = Host::TypeOf(shape);
    std::int32_t container = 0;
    if (type == Host::ShapeType::Assembly) container = Host::ComponentType::Group;
    if (type == Host::ShapeType::Part) container = Host::ComponentType::History;
    Variant components;
    if (container != 0) {
      components = Host::Components(shape, container);
      if (Host::CountOf(components) <= 0) container = 0;
    }
    visitor.Visit(shape, depth, type);
    if (container == 0) return;
    Variant shapes = components.Call("Item", std::int16_t{1}).Get("Shapes");
    const std::int32_t count = Host::CountOf(shapes);
    stack.push_back(Level{std::move(shapes), count, 1, depth + 1});
  };

  enter(root, 0);
  while (!stack.empty()) {
    Level& level = stack.back();
    if (level.next > level.count) {
      stack.pop_back();
      continue;
    }
    const std::int32_t i = level.next++;
    const std::int32_t depth = level.depth;
    const Variant child = level.shapes.Call("Item", i);
    enter(child, depth);  // may grow the stack: `level` is not used after this
  }
}

void ShowScene(const Variant& page) {
  SceneViewer viewer(page);
  GetUserInterface().RunModal(viewer);
}

}  // namespace TessarkAO::Scene
