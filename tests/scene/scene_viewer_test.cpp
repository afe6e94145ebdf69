// The scene module's names and the viewer model: tree labels and keys,
// component and variable lists, and the headless dialog's text.
#include <gtest/gtest.h>

#include <set>

#include "FakeHost.hpp"
#include "platform/UserInterface.hpp"
#include "scene/Scene.hpp"
#include "scene/SceneViewer.hpp"

using namespace TessarkAO;
using Host = FakeHost::Scene;
namespace SceneModule = TessarkAO::Scene;

TEST(SceneNames, ShapeComponentAndCurveTypes) {
  EXPECT_EQ(SceneModule::ShapeTypeName(1, false), "Assembly");
  EXPECT_EQ(SceneModule::ShapeTypeName(3, false), "Part");
  EXPECT_EQ(SceneModule::ShapeTypeName(3, true), "Sheet Metal Part");
  EXPECT_EQ(SceneModule::ShapeTypeName(5, true), "Extrude");
  EXPECT_EQ(SceneModule::ShapeTypeName(9, false), "2D Profile");
  EXPECT_EQ(SceneModule::ShapeTypeName(13, false), "Sheet Metal Form Shape");
  EXPECT_EQ(SceneModule::ShapeTypeName(0, false), "[Unknown Shape]");
  EXPECT_EQ(SceneModule::ShapeTypeName(14, false), "[Unknown Shape]");

  const std::set<int> unnamed = {21, 22, 28, 35, 36, 37, 39, 41, 45, 46, 51, 52, 53, 69, 70};
  for (int code = 1; code <= 70; ++code) {
    const std::string name = SceneModule::ComponentTypeName(code);
    EXPECT_EQ(name == "Unknown [" + std::to_string(code) + "]", unnamed.count(code) == 1) << code << name;
  }
  EXPECT_EQ(SceneModule::ComponentTypeName(9), "Attatchment Point");
  EXPECT_EQ(SceneModule::ComponentTypeName(23), "History");
  EXPECT_EQ(SceneModule::ComponentTypeName(34), "Variable");
  EXPECT_EQ(SceneModule::ComponentTypeName(50), "Connection Point");
  EXPECT_EQ(SceneModule::ComponentTypeName(54), "Path Master");
  EXPECT_EQ(SceneModule::ComponentTypeName(68), "SM Lance");
  EXPECT_EQ(SceneModule::ComponentTypeName(0), "Unknown [0]");

  const char* curves[] = {"Fillet", "Line", "Arc", "Bezier", "Ellipse", "B-Spline", "Fillet"};
  for (int code = 0; code <= 6; ++code) EXPECT_EQ(SceneModule::CurveTypeName(code), curves[code]);
  EXPECT_EQ(SceneModule::CurveTypeName(-1), "Fillet");
}

TEST(SceneViewer, VariableLabels) {
  EXPECT_EQ(SceneViewer::VariableLabel(3, 34, "ignored"), "[3] Variable");
  EXPECT_EQ(SceneViewer::VariableLabel(1, 5, "Length"), "[1] Length");
  EXPECT_EQ(SceneViewer::VariableLabel(12, 5, ""), "[12]  <No Name>");
}

TEST(SceneViewer, TreeListsAndSelections) {
  Host scene;
  FakeHost::Shape* a = scene.AddShape(scene.Root(), 1, "Frame");
  FakeHost::Shape* p = scene.AddShape(a, 3, "Plate");
  scene.AddComponent(p, 62);  // a sheet-metal part
  scene.AddShape(p, 11, "Flange");
  FakeHost::Shape* e = scene.AddShape(scene.Root(), 5, "Boss");
  FakeHost::Component* pos = scene.AddComponent(e, 4);
  pos->values = {{1, 2.5}, {2, 0.0}};
  pos->varNames = {{1, "PosX"}};
  pos->expressions = {{1, "1+1.5"}};
  scene.AddComponent(e, 69);
  pos->name = "Where";

  SceneViewer viewer(scene.PageObject());
  EXPECT_EQ(viewer.Name(), "frmScene");
  EXPECT_EQ(viewer.Text(),
            "Top Shape\n"
            "  Frame (Assembly)\n"
            "    Plate (Sheet Metal Part)\n"
            "      Flange (Sheet Metal Extrude)\n"
            "  Boss (Extrude)\n");
  ASSERT_EQ(viewer.Nodes().size(), 5u);
  EXPECT_EQ(viewer.Nodes()[0].key, "Top");
  EXPECT_EQ(viewer.Nodes()[3].key, "Top\\Shape-1\\Shape-1\\Shape-1");
  EXPECT_EQ(viewer.Nodes()[4].key, "Top\\Shape-2");
  EXPECT_EQ(viewer.FindNode("Top\\Shape-2")->object.AsObject().get(), e->obj);
  EXPECT_EQ(viewer.FindNode("Top\\Shape-3"), nullptr);

  viewer.SelectNode("Top\\Shape-2");
  EXPECT_EQ(viewer.ComponentList(), (std::vector<std::string>{"Position", "Unknown [69]"}));
  viewer.SelectComponent(1);
  EXPECT_EQ(viewer.ActiveComponent(), "Active Component : Where");
  EXPECT_EQ(viewer.DetailList(), (std::vector<std::string>{"[1] PosX", "[2]  <No Name>"}));
  EXPECT_EQ(viewer.VariableDetail(1), (std::vector<std::string>{"Value : 2.5", "Expression : 1+1.5"}));
  viewer.SelectComponent(2);
  EXPECT_EQ(viewer.ActiveComponent(), "Active Component : Unknown [69]");
  EXPECT_TRUE(viewer.DetailList().empty());
  EXPECT_THROW(viewer.SelectComponent(3), AutomationError);
  EXPECT_THROW(viewer.SelectNode("Nowhere"), AutomationError);

  viewer.SelectNode("Top");
  EXPECT_EQ(viewer.ComponentList(), (std::vector<std::string>{"Group", "Studio"}));
  EXPECT_TRUE(viewer.ActiveComponent().empty());
}

TEST(SceneViewer, ShownHeadlessAsAnIndentedTree) {
  HeadlessUserInterface* ui = GetHeadlessUserInterface();
  ASSERT_NE(ui, nullptr);
  ui->Clear();
  Host scene;
  scene.AddShape(scene.AddShape(scene.Root(), 1, "A"), 5, "B");
  SceneModule::ShowScene(scene.PageObject());
  const auto shown = ui->Shown();
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].name, "frmScene");
  EXPECT_EQ(shown[0].text, "Top Shape\n  A (Assembly)\n    B (Extrude)\n");
  ui->Clear();
}
