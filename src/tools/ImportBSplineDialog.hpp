// ImportBSplineDialog: the model of the B-spline import dialog
// (frmImportBSpline), apart from any window.
//
// Controls: the file frame (fraFilename) with the description label
// (lblDescription), the file-name text box and the Browse button, the Import
// button (cmdOK) and cmdCancel.  States: shown with Import disabled; after
// each Browse the chosen name is validated through the ValidateFile handler
// and Import is enabled exactly when it answers true; the dialog closes
// accepted (Import) or not accepted (Cancel, or the title-bar close control).
//
// Headless, the dialog's text is its captions, the chosen file and which
// buttons are enabled, one per line.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/UserInterface.hpp"

namespace TessarkAO {

class ImportBSplineDialog final : public ModalDialog, public FileChoiceForm {
 public:
  // The ValidateFile event: receives the chosen file name (which it may
  // change) and answers whether Import may be pressed.
  using ValidateFile = std::function<bool(std::string& fileName)>;

  // Loads the form: the system's default font, the captions from the string
  // table (through the shared localizer, which must exist), Import disabled.
  explicit ImportBSplineDialog(ValidateFile validate);

  const std::string& FileName() const noexcept { return fileName_; }
  bool Accepted() const noexcept { return accepted_; }

  // ModalDialog.
  std::string Name() const override { return "frmImportBSpline"; }
  std::string Text() const override;
  bool IsEnabled(std::string_view button) const override;
  bool Press(std::string_view button) override;
  void CloseByControl() override { accepted_ = false; }
  FileChoiceForm* AsFileChoice() override { return this; }

  // FileChoiceForm.
  std::string Caption(std::string_view control) const override;
  FormFont Font() const override { return font_; }
  std::string ChosenFile() const override { return fileName_; }

 private:
  void Browse();

  ValidateFile validate_;
  std::string caption_, frameCaption_, description_, importCaption_, cancelCaption_, filter_;
  FormFont font_;
  std::string fileName_;      // the text box and the chosen name
  bool importEnabled_ = false;
  bool accepted_ = false;
};

}  // namespace TessarkAO
