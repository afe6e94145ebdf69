#include "scene/SceneViewer.hpp"

#include <utility>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "host/HostAccess.hpp"
#include "scene/Scene.hpp"
#include "system/FormFont.hpp"

namespace TessarkAO {

namespace {

// Component types the component list asks the host for: every named type and
// the unnamed ones around them.
constexpr std::int32_t kHighestComponentType = 100;

std::string Labelled(std::string_view label, const Variant& value) {
  return std::string(label) + " : " + ToString(value);
}

std::string Indexed(std::string_view label, std::int32_t index, const Variant& value) {
  return std::string(label) + std::to_string(index) + ") : " + ToString(value);
}

}  // namespace

SceneViewer::SceneViewer(Variant page) : page_(std::move(page)) {
  class Builder final : public Scene::ShapeVisitor {
   public:
    explicit Builder(SceneViewer& viewer) : viewer_(viewer) {}
    void Visit(const Variant& shape, std::int32_t depth, std::int32_t) override {
      std::string key = "Top";
      if (depth > 0) {
        Level& parent = levels_[static_cast<std::size_t>(depth - 1)];
        key = parent.key + "\\Shape-" + std::to_string(++parent.children);
      }
      levels_.resize(static_cast<std::size_t>(depth) + 1);
      levels_.back() = Level{key, 0};
      viewer_.AddShape(shape, depth, key);
    }

   private:
    struct Level {
      std::string key;
      std::int32_t children = 0;
    };
    SceneViewer& viewer_;
    std::vector<Level> levels_;
  };
  Builder builder(*this);
  Scene::WalkShapes(page_.Get("Shape"), builder);
  font_ = ApplyDefaultSystemFont({"TreeView", "lstComponents", "lstVariables", "lblComponents", "lblVariables",
                                  "lblStatus", "cmdOK"});
}

std::string SceneViewer::Caption(std::string_view control) const {
  if (control.empty()) return "Scene Viewer";
  if (control == "lblComponents") return "Components";
  if (control == "lblVariables") return "Variables";
  if (control == "cmdOK") return "OK";
  return {};
}

std::vector<TreeBrowserForm::TreeItem> SceneViewer::TreeItems() const {
  std::vector<TreeItem> items;
  items.reserve(nodes_.size());
  for (const Node& node : nodes_) items.push_back(TreeItem{node.key, node.label, node.depth});
  return items;
}

void SceneViewer::SelectDetail(std::int32_t index) {
  // Only a component's variables have details of their own.
  if (activeObject_.IsEmpty()) return;
  const std::vector<std::string> detail = VariableDetail(index);
  status_ = detail[0] + "    " + detail[1];
}

void SceneViewer::AddShape(const Variant& shape, std::int32_t depth, const std::string& key) {
  Node node;
  node.key = key;
  node.depth = depth;
  node.object = shape;
  if (depth == 0) {
    node.kind = NodeKind::TopShape;
    node.label = "Top Shape";
  } else {
    node.kind = NodeKind::Shape;
    const std::string name = Host::NameOf(shape);
    node.label = name + " (" + Scene::ShapeTypeNameOf(shape) + ")";
  }
  nodes_.push_back(std::move(node));
  AddProfile(shape, depth + 1, key);
}

void SceneViewer::AddProfile(const Variant& shape, std::int32_t depth, const std::string& parentKey) {
  const Variant component = Host::FindComponent(shape, Host::ComponentType::Profile, false);
  if (component.IsNothing()) return;
  const Variant paths = component.Get("Profile").Get("Components", Host::ComponentType::Path);
  const Variant profile(CreateObject("TessarkAO.TKProfile"));
  profile.Set("Page", page_);
  profile.Call("GetProfileFromPaths", paths);

  const std::string profileKey = parentKey + "\\Profile";
  nodes_.push_back(Node{profileKey, "Profile Component", depth, NodeKind::ProfileComponent, component});
  const std::int32_t loops = ToLong(profile.Get("NumberOfOutlines"));
  for (std::int32_t i = 1; i <= loops; ++i) {
    const Variant outline = profile.Call("GetOutline", i);
    const std::string loopKey = profileKey + "\\Loop-" + std::to_string(i);
    nodes_.push_back(Node{loopKey, "Profile Loop", depth + 1, NodeKind::Loop, outline});
    const std::int32_t curves = ToLong(outline.Get("NumberOfCurves"));
    for (std::int32_t j = 1; j <= curves; ++j) {
      const Variant curve = outline.Call("GetCurve", j);
      const std::string label = "Loop Curve (" + Scene::CurveTypeName(ToLong(curve.Get("CurveType"))) + ")";
      nodes_.push_back(
          Node{loopKey + "\\Curve-" + std::to_string(j), label, depth + 2, NodeKind::Curve, curve});
    }
  }
}

const SceneViewer::Node* SceneViewer::FindNode(std::string_view key) const {
  for (const Node& node : nodes_)
    if (node.key == key) return &node;
  return nullptr;
}

void SceneViewer::SelectNode(std::string_view key) {
  const Node* node = FindNode(key);
  if (!node) Raise(Err::InvalidCall);
  components_.clear();
  componentObjects_.clear();
  activeComponent_.clear();
  activeObject_ = Variant();
  details_.clear();
  status_.clear();
  switch (node->kind) {
    case NodeKind::TopShape:
    case NodeKind::Shape:
      for (std::int32_t type = 1; type <= kHighestComponentType; ++type) {
        const Variant list = Host::Components(node->object, type);
        const std::int32_t count = Host::CountOf(list);
        for (std::int32_t i = 1; i <= count; ++i) {
          const Variant component = list.Call("Item", static_cast<std::int16_t>(i));
          components_.push_back(Scene::ComponentTypeName(Host::TypeOf(component)));
          componentObjects_.push_back(component);
        }
      }
      break;
    case NodeKind::ProfileComponent: break;
    case NodeKind::Loop: ShowOutlineData(node->object); break;
    case NodeKind::Curve: ShowCurveData(node->object); break;
  }
}

void SceneViewer::SelectComponent(std::int32_t index) {
  if (index < 1 || static_cast<std::size_t>(index) > componentObjects_.size()) Raise(Err::InvalidCall);
  activeObject_ = componentObjects_[static_cast<std::size_t>(index - 1)];
  std::string name = Host::NameOf(activeObject_);
  if (name.empty()) name = components_[static_cast<std::size_t>(index - 1)];
  activeComponent_ = "Active Component : " + name;
  status_ = activeComponent_;
  details_.clear();
  const Variant variables = activeObject_.Get("Variables");
  const std::int32_t count = Host::CountOf(variables);
  for (std::int32_t i = 1; i <= count; ++i) {
    const Variant item = variables.Call("Item", i);
    details_.push_back(VariableLabel(i, Host::TypeOf(item), Host::NameOf(item)));
  }
}

std::string SceneViewer::VariableLabel(std::int32_t index, std::int32_t itemType, std::string_view itemName) {
  std::string label = "[";
  label += std::to_string(index);
  if (itemType == Host::ComponentType::Variable) {
    label += "] Variable";
    return label;
  }
  // An unnamed item reads with two blanks after the bracket, as users know it.
  label += "] ";
  label += itemName.empty() ? std::string_view(" <No Name>") : itemName;
  return label;
}

std::vector<std::string> SceneViewer::VariableDetail(std::int32_t index) const {
  if (activeObject_.IsEmpty()) Raise(Err::InvalidCall);
  const Variant variables = activeObject_.Get("Variables");
  if (index < 1 || index > Host::CountOf(variables)) Raise(Err::InvalidCall);
  const Variant item = variables.Call("Item", index);
  return {Labelled("Value", item.Get("Value")), Labelled("Expression", item.Get("Expression"))};
}

void SceneViewer::ShowOutlineData(const Variant& outline) {
  details_.push_back("Outline Data");
  details_.push_back(Labelled("Closed", outline.Get("Closed")));
  details_.push_back(Labelled("Construction", outline.Get("Construction")));
  details_.push_back(Labelled("Number Of Curves", outline.Get("NumberOfCurves")));
  details_.push_back(Labelled("Start Point X", outline.Get("StartPointX")));
  details_.push_back(Labelled("Start Point Y", outline.Get("StartPointY")));
}

void SceneViewer::ShowCurveData(const Variant& curve) {
  details_.push_back("Curve Data");
  auto show = [&](std::string_view label, const char* member) {
    details_.push_back(Labelled(label, curve.Get(member)));
  };
  const std::int32_t type = ToLong(curve.Get("CurveType"));
  switch (type) {
    case 1:  // line
      show("X", "X");
      show("Y", "Y");
      show("Start Trim", "StartTrim");
      show("End Trim", "EndTrim");
      break;
    case 2:  // arc
      show("X", "X");
      show("Y", "Y");
      show("Start Trim", "StartTrim");
      show("End Trim", "EndTrim");
      show("Angle Major", "AngleMajor");
      show("H Factor", "HFactor");
      show("Eccentricity", "Eccentricity");
      break;
    case 3:  // Bezier
      show("X", "X");
      show("Y", "Y");
      show("Tangent(1) X", "Tan1X");
      show("Tangent(1) Y", "Tan1Y");
      show("Tangent(2) X", "Tan2X");
      show("Tangent(2) Y", "Tan2Y");
      show("Start Trim", "StartTrim");
      show("End Trim", "EndTrim");
      break;
    case 4:  // ellipse
      show("Center X", "CenterX");
      show("Center Y", "CenterY");
      show("X Pt. On Curve", "XPtOnCurve");
      show("Y Pt. On Curve", "YPtOnCurve");
      show("Minor Height", "MinorHeight");
      break;
    case 5: {  // B-spline
      show("X", "X");
      show("Y", "Y");
      show("B-Spline Closed", "BSplineClosed");
      show("B-Spline Periodic", "BSplinePeriodic");
      show("B-Spline Degree", "BSplineDegree");
      auto points = [&](const char* countMember, const char* getter, std::string_view xLabel,
                        std::string_view yLabel) {
        const std::int32_t n = ToLong(curve.Get(countMember));
        for (std::int32_t i = 1; i <= n; ++i) {
          Variant args[] = {i, 0.0, 0.0};
          Host::CallByRef(curve, getter, args);
          details_.push_back(Indexed(xLabel, i, args[1]));
          details_.push_back(Indexed(yLabel, i, args[2]));
        }
      };
      auto values = [&](const char* countMember, const char* getter, std::string_view label) {
        const std::int32_t n = ToLong(curve.Get(countMember));
        for (std::int32_t i = 1; i <= n; ++i) details_.push_back(Indexed(label, i, curve.Call(getter, i)));
      };
      show("B-Spline Fit Pts.", "BSplineFitPoints");
      points("BSplineFitPoints", "GetFitPoint", "FitPtX(", "FitPtY(");
      points("BSplineControlPoints", "GetControlPoint", "CtrlPtX(", "CtrlPtY(");
      show("B-Spline Knots", "BSplineKnots");
      values("BSplineKnots", "GetKnot", "Knot(");
      show("B-Spline Weights", "BSplineWeights");
      values("BSplineWeights", "GetWeight", "Weight(");
      break;
    }
    default:  // fillet, and any code the host may add
      show("X", "X");
      show("Y", "Y");
      show("Radius", "Radius");
      show("Center X", "CenterX");
      show("Center Y", "CenterY");
      break;
  }
}

std::string SceneViewer::Text() const {
  std::string text;
  for (const Node& node : nodes_) {
    text.append(static_cast<std::size_t>(node.depth) * 2, ' ');
    text += node.label;
    text += '\n';
  }
  return text;
}

bool SceneViewer::IsEnabled(std::string_view button) const { return button == "OK"; }

bool SceneViewer::Press(std::string_view button) { return button == "OK"; }

}  // namespace TessarkAO
