// The library's two modal dialogs as Qt widgets, built over their models:
// every press and selection goes to the model, and the widgets show what the
// model says afterwards.  Object names are the controls' names, so scripts
// and tests find them (findChild<QPushButton*>("cmdOK")).
#pragma once

#include <QDialog>

#include "platform/UserInterface.hpp"

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTreeWidget;

namespace TessarkAO::Qt {

// Applies a form font (face, points, weight and styles) to a widget tree.
void ApplyFont(QWidget& widget, const FormFont& font);

// frmImportBSpline.
class FileChoiceDialog final : public QDialog {
 public:
  FileChoiceDialog(ModalDialog& model, FileChoiceForm& form, QWidget* parent);
  void reject() override;  // the title-bar close control and Escape

 private:
  void Press(const char* button);
  void Refresh();

  ModalDialog& model_;
  FileChoiceForm& form_;
  QLineEdit* file_ = nullptr;
  QPushButton* import_ = nullptr;
  bool closedByButton_ = false;
};

// frmScene.
class TreeBrowserDialog final : public QDialog {
 public:
  TreeBrowserDialog(ModalDialog& model, TreeBrowserForm& form, QWidget* parent);
  void reject() override;

 private:
  void FillLists(bool parts);

  ModalDialog& model_;
  TreeBrowserForm& form_;
  QTreeWidget* tree_ = nullptr;
  QListWidget* parts_ = nullptr;
  QListWidget* details_ = nullptr;
  QLabel* status_ = nullptr;
  bool closedByButton_ = false;
};

}  // namespace TessarkAO::Qt
