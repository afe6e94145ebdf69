// The host's type tables: shape kinds, component types with their display
// names, and the variables each component type and curve kind carries.
#include <array>

#include "refhost/HostModel.hpp"

namespace TessarkAO::RefHost {

namespace {

constexpr VarType D = VarType::Double;
constexpr VarType L = VarType::Long;
constexpr VarType B = VarType::Boolean;
constexpr VarType S = VarType::String;

constexpr std::array<std::string_view, 15> kShapeKinds = {"",        "Assembly",
                                                          "Facet",   "Part",
                                                          "Sweep",   "Extrude",
                                                          "Spin",    "Loft",
                                                          "Brep",    "2D Profile",
                                                          "Bevel",   "Sheet Metal Extrude",
                                                          "Complex", "Sheet Metal Form Shape",
                                                          "Bend"};

// Display names by component type; "" marks codes the host does not use.
constexpr std::array<std::string_view, 69> kComponentNames = {"",
                                                              "Sizebox",
                                                              "Group",
                                                              "Path",
                                                              "Position",
                                                              "Anchor",
                                                              "Path Manager",
                                                              "Surface Finish",
                                                              "Light",
                                                              "Attatchment Point",
                                                              "Facet",
                                                              "Brep",
                                                              "Compound",
                                                              "Edge Bevel",
                                                              "Sweep",
                                                              "Profile",
                                                              "Text",
                                                              "Orbix",
                                                              "Studio",
                                                              "Linestyle",
                                                              "Solid Instance",
                                                              "",
                                                              "",
                                                              "History",
                                                              "Path Sweep",
                                                              "UI Behavior",
                                                              "OLE Object",
                                                              "Face Finish",
                                                              "",
                                                              "Profile Group",
                                                              "Loft",
                                                              "Loft Section",
                                                              "Shelling",
                                                              "Utility Dimension",
                                                              "Variable",
                                                              "",
                                                              "",
                                                              "",
                                                              "Smart Dimension",
                                                              "",
                                                              "User Handle",
                                                              "",
                                                              "Embedded Page",
                                                              "Add-On",
                                                              "Properties",
                                                              "",
                                                              "",
                                                              "Style Layer Manager",
                                                              "Style Properties",
                                                              "Camera",
                                                              "Connection Point",
                                                              "",
                                                              "",
                                                              "",
                                                              "Path Master",
                                                              "Feature Control Frame",
                                                              "Datum Feature",
                                                              "Datum Target",
                                                              "Relation",
                                                              "Draw Centerline",
                                                              "Draw Reference Geom",
                                                              "Bill Of Materials",
                                                              "SM Part",
                                                              "SM Extrude",
                                                              "Complex",
                                                              "Definition Add-On",
                                                              "SM Bend",
                                                              "SM Form",
                                                              "SM Lance"};

constexpr VarDef kSizebox[] = {
    {1, "Length", D, 0},           {2, "Width", D, 0},         {3, "Height", D, 0},
    {4, "Length Locked", L, 0},    {5, "Width Locked", L, 0},  {6, "Height Locked", L, 0},
    {7, "Keep Proportions", L, 0}, {8, "Length Handle", L, 0}, {9, "Width Handle", L, 0},
    {10, "Height Handle", L, 0},   {11, "Min X", D, 0},        {12, "Min Y", D, 0},
    {13, "Min Z", D, 0},           {14, "Locked", L, 0},       {15, "Fit To Geometry", L, 0}};

constexpr VarDef kPosition[] = {{1, "X", D, 0},      {2, "Y", D, 0},      {3, "Z", D, 0},
                                {4, "Axis X", D, 0}, {5, "Axis Y", D, 0}, {6, "Axis Z", D, 0},
                                {7, "Angle", D, 0},  {8, "Locked", L, 0}, {9, "Mirror", L, 0}};

constexpr VarDef kAnchor[] = {{1, "X", D, 0},      {2, "Y", D, 0},      {3, "Z", D, 0},
                              {4, "Axis X", D, 0}, {5, "Axis Y", D, 0}, {6, "Axis Z", D, 0},
                              {7, "Angle", D, 0},  {8, "Locked", L, 0}};

// The host's own initial finish, a plain grey.
constexpr VarDef kFinish[] = {{1, "AmbientIntensity", D, 100},
                              {2, "EdgeTransparency", D, 0},
                              {3, "EdgeTransparencyOn", B, 0},
                              {4, "EmissionIntensity", D, 0},
                              {5, "HighlightsColor", L, 16777215},
                              {6, "HighlightsIntensity", D, 50},
                              {7, "HighlightsShininess", D, 100},
                              {8, "IndexOfRefraction", D, 1},
                              {9, "Metallic", B, 0},
                              {10, "SurfaceColor", L, 8421504},
                              {11, "SurfaceColorIntensity", D, 100},
                              {12, "Transparency", D, 0}};

constexpr VarDef kExtrude[] = {
    {1, "Removes Material", L, 0}, {55, "Height Up", D, 1}, {56, "Height Down", D, 0}};

constexpr VarDef kAddOn[] = {{1, "Class", S, 0}};

constexpr VarDef kSMPart[] = {
    {1, "Thickness", D, 0.1}, {2, "Bend Radius", D, 0.1}, {3, "K Factor", D, 0.5}, {4, "Initialized", L, 0}};

constexpr VarDef kSMExtrude[] = {
    {1, "Sheet Metal Type", L, 1}, {55, "Thickness", D, 0.1}, {56, "Second Depth", D, 0}};

constexpr VarDef kSMBend[] = {{1, "Angle", D, 1.5707963267948966},
                              {2, "Radius", D, 0.1},
                              {3, "Direction", L, 1},
                              {4, "DropFlags", L, 0},
                              {5, "ReliefType", L, 0},
                              {6, "ReliefWidth", D, 0},
                              {7, "ReliefDepth", D, 0},
                              {8, "SuppressedReliefs", L, 0},
                              {9, "Extrude Distance 1", D, 1},
                              {10, "Extrude Distance 2", D, 1},
                              {11, "Stock Segment Length 0", D, 0},
                              {12, "Stock Segment Length 1", D, 0},
                              {13, "Corner Relief Depth 1", D, 0},
                              {14, "Corner Relief Depth 2", D, 0},
                              {15, "Corner Relief Type 1", L, 0},
                              {16, "Corner Relief Type 2", L, 0},
                              {17, "Corner Relief Orientation 1", L, 0},
                              {18, "Corner Relief Orientation 2", L, 0},
                              {19, "Initialized", L, 0}};

// A forming tool pressed into the sheet: direction 1 up, 2 down; lengths in
// page units.
constexpr VarDef kSMForm[] = {
    {1, "Direction", L, 1}, {2, "Depth", D, 0.25}, {3, "Punch Radius", D, 0.0625}, {4, "Die Radius", D, 0.0625}};

// Path curves: the variable numbers follow the host's curve layouts.
constexpr VarDef kStart[] = {{1, "X", D, 0}, {2, "Y", D, 0}};
constexpr VarDef kFillet[] = {
    {1, "X", D, 0}, {2, "Y", D, 0}, {3, "Radius", D, 0}, {5, "Center X", D, 0}, {6, "Center Y", D, 0}};
constexpr VarDef kLine[] = {{1, "X", D, 0}, {2, "Y", D, 0}, {9, "Start Trim", D, 0}, {10, "End Trim", D, 0}};
constexpr VarDef kArc[] = {
    {1, "X", D, 0},           {2, "Y", D, 0},        {3, "Start Trim", D, 0},   {4, "End Trim", D, 0},
    {8, "Angle Major", D, 0}, {9, "H Factor", D, 0}, {10, "Eccentricity", D, 0}};
constexpr VarDef kBezier[] = {{1, "X", D, 0},
                              {2, "Y", D, 0},
                              {3, "Tangent(1) X", D, 0},
                              {4, "Tangent(1) Y", D, 0},
                              {5, "Tangent(2) X", D, 0},
                              {6, "Tangent(2) Y", D, 0},
                              {9, "Start Trim", D, 0},
                              {10, "End Trim", D, 0}};
constexpr VarDef kEllipse[] = {{1, "Center X", D, 0},
                               {2, "Center Y", D, 0},
                               {3, "X Pt. On Curve", D, 0},
                               {4, "Y Pt. On Curve", D, 0},
                               {9, "Minor Height", D, 0}};
constexpr VarDef kBSpline[] = {{1, "X", D, 0}, {2, "Y", D, 0}};

}  // namespace

std::string_view ShapeKindName(std::int32_t kind) {
  if (kind < 1 || kind >= static_cast<std::int32_t>(kShapeKinds.size())) return {};
  return kShapeKinds[static_cast<std::size_t>(kind)];
}

std::string_view ComponentTypeName(std::int32_t type) {
  if (type < 1 || type >= static_cast<std::int32_t>(kComponentNames.size())) return {};
  return kComponentNames[static_cast<std::size_t>(type)];
}

std::span<const VarDef> ComponentVarDefs(std::int32_t type) {
  switch (type) {
    case ComponentType::Sizebox: return kSizebox;
    case ComponentType::Position: return kPosition;
    case ComponentType::Anchor: return kAnchor;
    case ComponentType::SurfaceFinish: return kFinish;
    case ComponentType::Extrude: return kExtrude;
    case ComponentType::AddOn: return kAddOn;
    case ComponentType::SMPart: return kSMPart;
    case ComponentType::SMExtrude: return kSMExtrude;
    case ComponentType::SMBend: return kSMBend;
    case ComponentType::SMForm: return kSMForm;
    default: return {};
  }
}

std::span<const VarDef> StartVarDefs() { return kStart; }

std::span<const VarDef> CurveVarDefs(std::int32_t curveType) {
  switch (curveType) {
    case CurveType::Fillet: return kFillet;
    case CurveType::Line: return kLine;
    case CurveType::Arc: return kArc;
    case CurveType::Bezier: return kBezier;
    case CurveType::Ellipse: return kEllipse;
    case CurveType::BSpline: return kBSpline;
    default: return {};
  }
}

}  // namespace TessarkAO::RefHost
