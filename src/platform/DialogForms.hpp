// What a windowed user-interface service needs to know of the library's two
// modal dialogs, apart from what they mean: the import dialog is a form that
// asks for one file, the scene viewer a form that browses a tree.  The models
// (in the layers above) implement these; the windows read them and forward
// every press and selection to them, so the behaviour stays in the model.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace TessarkAO {

// The font a form gives its controls (what SetDefaultSystemFont leaves on them).
struct FormFont {
  std::string name;      // face name; empty when no default font is known
  double points = 8.0;
  std::int32_t charset = 0;
  std::int32_t weight = 400;
  bool italic = false;
  bool underline = false;
  bool strikethrough = false;
};

// A form that asks for one file: a caption, a frame with a description, a
// read-only file-name box with Browse, and an accept (Import) and a Cancel
// button.  Presses go through ModalDialog::Press ("Browse", "Import",
// "Cancel"); Browse opens the service's file-open dialog itself.
class FileChoiceForm {
 public:
  virtual ~FileChoiceForm() = default;
  // Captions by control name: "" for the form itself, "fraFilename",
  // "lblDescription", "cmdBrowse", "cmdOK", "cmdCancel".
  virtual std::string Caption(std::string_view control) const = 0;
  virtual FormFont Font() const = 0;
  // The chosen file, as the file-name box shows it.
  virtual std::string ChosenFile() const = 0;
};

// A form that browses a tree (TreeView) with a list of the selected node's
// parts (lstComponents) and a detail list (lstVariables), closed with cmdOK.
class TreeBrowserForm {
 public:
  struct TreeItem {
    std::string key;    // unique; the parent's key is its prefix
    std::string label;
    std::int32_t depth = 0;
  };

  virtual ~TreeBrowserForm() = default;
  virtual std::string Caption(std::string_view control) const = 0;  // "" for the form
  virtual FormFont Font() const = 0;
  virtual std::vector<TreeItem> TreeItems() const = 0;
  // Each of these may raise the automation error of a failing host call.
  virtual void SelectItem(std::string_view key) = 0;
  virtual void SelectPart(std::int32_t index) = 0;     // from 1
  virtual void SelectDetail(std::int32_t index) = 0;   // from 1
  virtual std::vector<std::string> Parts() const = 0;
  virtual std::vector<std::string> Details() const = 0;
  // A status line: the active component, or a selected variable's value.
  virtual std::string Status() const = 0;
};

}  // namespace TessarkAO
