// SceneViewer: the model of the scene viewer dialog (frmScene), apart from
// any window.
//
// The dialog shows a scene as a tree (TreeView): the page's root shape as
// "Top Shape", every shape below it as its name with its type name, and under
// a shape with a profile its profile content: "Profile Component", its loops
// ("Profile Loop") and their curves ("Loop Curve" with the curve type name).
// Selecting a shape lists its components (lstComponents); selecting a
// component announces it ("Active Component : ...") and lists its variables
// (lstVariables), and selecting a variable shows its value and expression.
// Selecting a loop or a curve lists its data under the section header
// "Outline Data" or "Curve Data".  cmdOK ("OK") closes it.
//
// Every node has a unique key: "Top" for the root, then the parent's key
// followed by "\Shape-i", "\Profile", "\Loop-i" or "\Curve-i" (i from 1), so a
// selection traces back to its host object.  Headless, the dialog's text is
// the tree, one line per node, indented two blanks per level.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "automation/Variant.hpp"
#include "platform/UserInterface.hpp"

namespace TessarkAO {

class SceneViewer final : public ModalDialog, public TreeBrowserForm {
 public:
  enum class NodeKind { TopShape, Shape, ProfileComponent, Loop, Curve };

  struct Node {
    std::string key;
    std::string label;
    std::int32_t depth = 0;  // the root is 0
    NodeKind kind = NodeKind::Shape;
    Variant object;  // the host shape, the TKOutline or the TKCurve
  };

  // Reads the whole tree of `page` (the page's Shape and everything below).
  explicit SceneViewer(Variant page);

  const std::vector<Node>& Nodes() const { return nodes_; }
  // The node of a key; nullptr when there is none.
  const Node* FindNode(std::string_view key) const;

  // Selects a node (5 for an unknown key): a shape fills the component list,
  // a loop or a curve the detail list.
  void SelectNode(std::string_view key);
  const std::vector<std::string>& ComponentList() const { return components_; }
  // Selects the index-th (from 1) entry of the component list: fills the
  // variable list (5 when there is no such entry).
  void SelectComponent(std::int32_t index);
  // "Active Component : " and the component's name; empty before a selection.
  const std::string& ActiveComponent() const { return activeComponent_; }
  // Variable labels after SelectComponent, or the curve or outline data.
  const std::vector<std::string>& DetailList() const { return details_; }
  // The value and expression of the index-th (from 1) variable of the
  // active component (5 when there is no such variable).
  std::vector<std::string> VariableDetail(std::int32_t index) const;

  // ModalDialog.
  std::string Name() const override { return "frmScene"; }
  std::string Text() const override;
  bool IsEnabled(std::string_view button) const override;
  bool Press(std::string_view button) override;
  void CloseByControl() override {}
  TreeBrowserForm* AsTreeBrowser() override { return this; }

  // TreeBrowserForm: the window's view of the same state.  Its caption is
  // "Scene Viewer"; selecting a variable puts its value and expression in
  // the status line.
  std::string Caption(std::string_view control) const override;
  FormFont Font() const override { return font_; }
  std::vector<TreeItem> TreeItems() const override;
  void SelectItem(std::string_view key) override { SelectNode(key); }
  void SelectPart(std::int32_t index) override { SelectComponent(index); }
  void SelectDetail(std::int32_t index) override;
  std::vector<std::string> Parts() const override { return components_; }
  std::vector<std::string> Details() const override { return details_; }
  std::string Status() const override { return status_; }

  // The label of the index-th variable of a component, as lstVariables shows it.
  static std::string VariableLabel(std::int32_t index, std::int32_t itemType, std::string_view itemName);

 private:
  void AddShape(const Variant& shape, std::int32_t depth, const std::string& key);
  void AddProfile(const Variant& shape, std::int32_t depth, const std::string& parentKey);
  void ShowCurveData(const Variant& curve);
  void ShowOutlineData(const Variant& outline);

  Variant page_;
  std::vector<Node> nodes_;
  std::vector<std::string> components_;
  std::vector<Variant> componentObjects_;
  Variant activeObject_;  // the active component
  std::string activeComponent_;
  std::vector<std::string> details_;
  std::string status_;
  FormFont font_;
};

}  // namespace TessarkAO
