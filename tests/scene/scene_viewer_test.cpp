// The scene module's names and the viewer model on a reference-host scene
// holding every shape kind, every component type and a profile with every
// curve kind.
#include <set>

#include "SceneTestSupport.hpp"
#include "platform/UserInterface.hpp"
#include "scene/Scene.hpp"
#include "scene/SceneViewer.hpp"

using namespace TessarkAO;
using namespace TessarkAO::SceneTest;
namespace SceneModule = TessarkAO::Scene;

namespace {

const std::set<int> kUnnamed = {21, 22, 28, 35, 36, 37, 39, 41, 45, 46, 51, 52, 53};

// Shapes K1..K14 of every kind, a sheet-metal part, a shape with every
// component type the host can add, and an extrude whose profile holds one
// curve of each kind.
std::string EverythingScene() {
  std::string shapes;
  for (int kind = 1; kind <= 14; ++kind)
    shapes += R"({"name": "K)" + std::to_string(kind) + R"(", "type": )" + std::to_string(kind) + "},";
  shapes += R"({"name": "Sheet", "type": 3, "components": [{"type": 62}]},)";
  std::string components;
  for (int type = 1; type <= 68; ++type) {
    if (type == 18 || kUnnamed.count(type)) continue;
    components += (components.empty() ? "" : ",") + std::string(R"({"type": )") + std::to_string(type) + "}";
  }
  shapes += R"({"name": "Everything", "type": 12, "components": [)" + components + "]},";
  shapes += R"({"name": "Profiled", "type": 5, "components": [{"type": 15, "paths": [
    {"closed": true, "start": {"1": 0.0, "2": 0.0}, "curves": [
      {"type": 1, "variables": {"1": 10.0, "2": 0.0}},
      {"type": 2, "variables": {"1": 10.0, "2": 10.0, "9": 0.5}},
      {"type": 3, "variables": {"1": 0.0, "2": 10.0, "3": 8.0, "4": 12.0}},
      {"type": 4, "variables": {"1": 5.0, "2": 5.0, "3": 2.0, "9": -1.0}},
      {"type": 5, "variables": {"1": 0.0, "2": 0.0}, "degree": 3,
       "controlPoints": [[10, 0], [12, 4], [4, 8], [0, 0]],
       "knots": [0, 0, 0, 0, 1, 1, 1, 1], "weights": [1, 1, 1, 2]},
      {"type": 0, "variables": {"1": 0.0, "2": 0.0, "3": 1.5}}]}]}]})";
  return R"({"pages": [{"name": "Scene1", "root": {"name": "", "type": 1, "components": [
    {"type": 18}, {"type": 2, "shapes": [)" +
         shapes + "]}]}}]}";
}

bool Has(const std::vector<std::string>& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

}  // namespace

TEST(SceneNames, ShapeComponentAndCurveTypes) {
  EXPECT_EQ(SceneModule::ShapeTypeName(5, true), "Extrude");  // only a part turns sheet metal
  EXPECT_EQ(SceneModule::ShapeTypeName(0, false), "[Unknown Shape]");
  for (int code = 1; code <= 70; ++code) {
    const std::string name = SceneModule::ComponentTypeName(code);
    EXPECT_EQ(name == "Unknown [" + std::to_string(code) + "]", kUnnamed.count(code) == 1 || code > 68)
        << code;
  }
  EXPECT_EQ(SceneModule::ComponentTypeName(9), "Attatchment Point");
  EXPECT_EQ(SceneModule::ComponentTypeName(0), "Unknown [0]");
  const char* curves[] = {"Fillet", "Line", "Arc", "Bezier", "Ellipse", "B-Spline", "Fillet"};
  for (int code = 0; code <= 6; ++code) EXPECT_EQ(SceneModule::CurveTypeName(code), curves[code]);
  EXPECT_EQ(SceneViewer::VariableLabel(3, 34, "ignored"), "[3] Variable");
  EXPECT_EQ(SceneViewer::VariableLabel(12, 0, ""), "[12]  <No Name>");
}

TEST(SceneViewer, LabelsKeysAndDataDumpsOfEveryKind) {
  const Variant app(RefHost::LoadSceneFromString(EverythingScene()));
  SceneViewer viewer(Page(app));
  EXPECT_EQ(viewer.Name(), "frmScene");
  const std::string text = viewer.Text();
  // clang-format off
  const char* kinds[] = {"Assembly", "Facet", "Part", "Sweep", "Extrude", "Spin", "Loft", "Brep", "2D Profile",
                         "Bevel", "Sheet Metal Extrude", "Complex", "Sheet Metal Form Shape", "[Unknown Shape]"};
  // clang-format on
  std::string top = "Top Shape\n";
  for (int kind = 1; kind <= 14; ++kind) top += "  K" + std::to_string(kind) + " (" + kinds[kind - 1] + ")\n";
  EXPECT_EQ(text.rfind(top + "  Sheet (Sheet Metal Part)\n", 0), 0u) << text;
  EXPECT_NE(
      text.find("  Profiled (Extrude)\n    Profile Component\n      Profile Loop\n"
                "        Loop Curve (Line)\n        Loop Curve (Arc)\n        Loop Curve (Bezier)\n"
                "        Loop Curve (Ellipse)\n        Loop Curve (B-Spline)\n        Loop Curve (Fillet)\n"),
      std::string::npos)
      << text;

  // Every component of the shape that has them all, by its type name.
  const SceneViewer::Node* everything = nullptr;
  for (const auto& node : viewer.Nodes())
    if (node.label == "Everything (Complex)") everything = &node;
  ASSERT_NE(everything, nullptr);
  viewer.SelectNode(everything->key);
  std::vector<std::string> expected;
  for (int type = 1; type <= 68; ++type)
    if (type != 18 && !kUnnamed.count(type)) expected.push_back(SceneModule::ComponentTypeName(type));
  EXPECT_EQ(viewer.ComponentList(), expected);

  // The profile's nodes, keys and data dumps.
  std::string profiled;
  for (const auto& node : viewer.Nodes())
    if (node.label == "Profiled (Extrude)") profiled = node.key;
  ASSERT_FALSE(profiled.empty());
  const std::string loop = profiled + "\\Profile\\Loop-1";
  ASSERT_NE(viewer.FindNode(profiled + "\\Profile"), nullptr);
  std::set<std::string> keys;
  for (const auto& node : viewer.Nodes()) EXPECT_TRUE(keys.insert(node.key).second) << node.key;

  viewer.SelectNode(loop);
  EXPECT_EQ(viewer.DetailList(),
            (std::vector<std::string>{"Outline Data", "Closed : True", "Construction : 0",
                                      "Number Of Curves : 6", "Start Point X : 0", "Start Point Y : 0"}));
  viewer.SelectNode(loop + "\\Curve-1");
  EXPECT_EQ(viewer.DetailList(),
            (std::vector<std::string>{"Curve Data", "X : 10", "Y : 0", "Start Trim : 0", "End Trim : 0"}));
  const std::pair<int, const char*> details[] = {
      {2, "H Factor : 0.5"},        {3, "Tangent(1) Y : 12"},   {4, "Center X : 5"},
      {4, "X Pt. On Curve : 2"},    {5, "B-Spline Degree : 3"}, {5, "B-Spline Closed : False"},
      {5, "B-Spline Fit Pts. : 0"}, {5, "CtrlPtX(2) : 12"},     {5, "CtrlPtY(3) : 8"},
      {5, "B-Spline Knots : 8"},    {5, "Knot(5) : 1"},         {5, "B-Spline Weights : 4"},
      {5, "Weight(4) : 2"},         {6, "Radius : 1.5"}};
  for (const auto& [curve, line] : details) {
    viewer.SelectNode(loop + "\\Curve-" + std::to_string(curve));
    EXPECT_TRUE(Has(viewer.DetailList(), line)) << line;
  }
}

TEST(SceneViewer, ComponentsVariablesAndTheHeadlessDialog) {
  const Variant app(RefHost::NewApplication());
  const Variant a = AddShape(Root(app), 1, "A");
  const Variant b = AddShape(a, 8, "B");
  SetVar(b, 4, 1, 25.0);
  Comp(b, 4).Call("Variable", 2).Let("Expression", "1+1.5");
  SceneViewer viewer(Page(app));
  EXPECT_EQ(viewer.Text(), "Top Shape\n  A (Assembly)\n    B (Brep)\n");
  EXPECT_EQ(viewer.Nodes()[2].key, "Top\\Shape-1\\Shape-1");
  EXPECT_TRUE(Same(viewer.FindNode("Top\\Shape-1\\Shape-1")->object, b));

  viewer.SelectNode("Top\\Shape-1\\Shape-1");
  const auto& list = viewer.ComponentList();
  const auto at = std::find(list.begin(), list.end(), "Position");
  ASSERT_NE(at, list.end());
  viewer.SelectComponent(static_cast<std::int32_t>(at - list.begin()) + 1);
  EXPECT_EQ(viewer.ActiveComponent(), "Active Component : Position");
  ASSERT_EQ(viewer.DetailList().size(), 9u);
  EXPECT_EQ(viewer.DetailList().front(), "[1] X");
  EXPECT_EQ(viewer.VariableDetail(1), (std::vector<std::string>{"Value : 25", "Expression : "}));
  EXPECT_EQ(viewer.VariableDetail(2), (std::vector<std::string>{"Value : 2.5", "Expression : 1+1.5"}));
  EXPECT_EQ(ErrorOf([&] { viewer.SelectComponent(99); }), 5);
  EXPECT_EQ(ErrorOf([&] { viewer.SelectNode("Nowhere"); }), 5);

  HeadlessUserInterface* ui = GetHeadlessUserInterface();
  ASSERT_NE(ui, nullptr);
  ui->Clear();
  SceneModule::ShowScene(Page(app));
  const auto shown = ui->Shown();
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].name, "frmScene");
  EXPECT_EQ(shown[0].text, viewer.Text());
  ui->Clear();
}
