#include "tools/ImportBSplineDialog.hpp"

#include "automation/Convert.hpp"
#include "frame/Globals.hpp"
#include "system/FormFont.hpp"

namespace TessarkAO {

ImportBSplineDialog::ImportBSplineDialog(ValidateFile validate) : validate_(std::move(validate)) {
  font_ = ApplyDefaultSystemFont(
      {"fraFilename", "lblDescription", "txtFilename", "cmdBrowse", "cmdOK", "cmdCancel", "dlgFile"});
  caption_ = Globals::LoadString(109);
  frameCaption_ = Globals::LoadString(110);
  description_ = Globals::LoadString(111);
  importCaption_ = Globals::LoadString(112);
  cancelCaption_ = Globals::LoadString(113);
  filter_ = Globals::LoadString(114);
}

std::string ImportBSplineDialog::Text() const {
  auto state = [](bool enabled) { return enabled ? "" : " (disabled)"; };
  std::string t;
  t += caption_ + "\n";
  t += "[" + frameCaption_ + "]\n";
  t += description_ + "\n";
  t += "File: " + fileName_ + "\n";
  t += "[Browse...] [" + importCaption_ + "]" + state(importEnabled_) + " [" + cancelCaption_ + "]\n";
  t += "Font: " + font_.name + " " + ToString(Variant(font_.points)) + "\n";
  return t;
}

std::string ImportBSplineDialog::Caption(std::string_view control) const {
  if (control.empty()) return caption_;
  if (control == "fraFilename") return frameCaption_;
  if (control == "lblDescription") return description_;
  if (control == "cmdOK") return importCaption_;
  if (control == "cmdCancel") return cancelCaption_;
  if (control == "cmdBrowse") return "Browse...";
  return {};
}

bool ImportBSplineDialog::IsEnabled(std::string_view button) const {
  if (button == "Import") return importEnabled_;
  return button == "Browse" || button == "Cancel" || button == "Close";
}

bool ImportBSplineDialog::Press(std::string_view button) {
  if (button == "Browse") {
    Browse();
    return false;
  }
  if (button == "Import") {
    if (!importEnabled_) return false;
    accepted_ = true;
    return true;
  }
  if (button == "Cancel" || button == "Close") {
    accepted_ = false;
    return true;
  }
  return false;
}

// A cancelled file dialog answers "", which is stored and validated like
// any other choice: Import is disabled again until a valid file is chosen.
void ImportBSplineDialog::Browse() {
  fileName_ = GetUserInterface().OpenFile("", filter_, "txt");
  importEnabled_ = validate_ && validate_(fileName_);
}

}  // namespace TessarkAO
