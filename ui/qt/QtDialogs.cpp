#include "QtDialogs.hpp"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <exception>
#include <vector>

namespace TessarkAO::Qt {

namespace {

QString Text(const std::string& s) { return QString::fromStdString(s); }

// Runs `call`; a failure (a host call that raises, say) is shown to the user
// in a critical message box instead of leaving through the event loop.
template <class F>
void Guarded(QWidget* parent, F&& call) {
  try {
    call();
  } catch (const std::exception& e) {
    QMessageBox::critical(parent, parent ? parent->windowTitle() : QString(), QString::fromUtf8(e.what()));
  }
}

}  // namespace

void ApplyFont(QWidget& widget, const FormFont& form) {
  if (form.name.empty()) return;  // no default font known: the toolkit's own stays
  QFont font(Text(form.name));
  if (form.points > 0) font.setPointSizeF(form.points);
  font.setWeight(static_cast<QFont::Weight>(std::clamp(form.weight, 1, 1000)));
  font.setItalic(form.italic);
  font.setUnderline(form.underline);
  font.setStrikeOut(form.strikethrough);
  widget.setFont(font);
}

// --- frmImportBSpline -------------------------------------------------------

FileChoiceDialog::FileChoiceDialog(ModalDialog& model, FileChoiceForm& form, QWidget* parent)
    : QDialog(parent), model_(model), form_(form) {
  setObjectName(Text(model.Name()));
  setWindowTitle(Text(form.Caption("")));
  setWindowFlag(::Qt::WindowContextHelpButtonHint, false);
  ApplyFont(*this, form.Font());

  auto* frame = new QGroupBox(Text(form.Caption("fraFilename")), this);
  frame->setObjectName("fraFilename");
  auto* description = new QLabel(Text(form.Caption("lblDescription")), frame);
  description->setObjectName("lblDescription");
  description->setWordWrap(true);
  // The file is chosen through Browse only; the box shows the choice.
  file_ = new QLineEdit(frame);
  file_->setObjectName("txtFilename");
  file_->setReadOnly(true);
  file_->setMinimumWidth(280);
  auto* browse = new QPushButton(Text(form.Caption("cmdBrowse")), frame);
  browse->setObjectName("cmdBrowse");
  auto* fileRow = new QHBoxLayout;
  fileRow->addWidget(file_, 1);
  fileRow->addWidget(browse);
  auto* frameLayout = new QVBoxLayout(frame);
  frameLayout->addWidget(description);
  frameLayout->addLayout(fileRow);

  import_ = new QPushButton(Text(form.Caption("cmdOK")), this);
  import_->setObjectName("cmdOK");
  import_->setDefault(true);
  auto* cancel = new QPushButton(Text(form.Caption("cmdCancel")), this);
  cancel->setObjectName("cmdCancel");
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(import_);
  buttons->addWidget(cancel);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(frame);
  layout->addLayout(buttons);
  setMinimumWidth(440);

  connect(browse, &QPushButton::clicked, this, [this] { Press("Browse"); });
  connect(import_, &QPushButton::clicked, this, [this] { Press("Import"); });
  connect(cancel, &QPushButton::clicked, this, [this] { Press("Cancel"); });
  Refresh();
}

void FileChoiceDialog::Press(const char* button) {
  bool closes = false;
  Guarded(this, [&] { closes = model_.IsEnabled(button) && model_.Press(button); });
  if (closes) {
    closedByButton_ = true;
    done(std::string_view(button) == "Import" ? Accepted : Rejected);
    return;
  }
  Refresh();
  if (std::string_view(button) == "Browse") file_->setFocus();
}

void FileChoiceDialog::Refresh() {
  file_->setText(Text(form_.ChosenFile()));
  import_->setEnabled(model_.IsEnabled("Import"));
}

void FileChoiceDialog::reject() {
  if (!closedByButton_) model_.CloseByControl();
  closedByButton_ = true;
  QDialog::reject();
}

// --- frmScene ---------------------------------------------------------------

TreeBrowserDialog::TreeBrowserDialog(ModalDialog& model, TreeBrowserForm& form, QWidget* parent)
    : QDialog(parent), model_(model), form_(form) {
  setObjectName(Text(model.Name()));
  setWindowTitle(Text(form.Caption("")));
  setWindowFlag(::Qt::WindowContextHelpButtonHint, false);
  ApplyFont(*this, form.Font());

  tree_ = new QTreeWidget(this);
  tree_->setObjectName("TreeView");
  tree_->setHeaderHidden(true);
  // Nodes by depth: the items of the current path from the root.
  std::vector<QTreeWidgetItem*> path;
  for (const TreeBrowserForm::TreeItem& item : form.TreeItems()) {
    const std::size_t depth = static_cast<std::size_t>(std::max(item.depth, 0));
    path.resize(std::min(depth, path.size()));
    QTreeWidgetItem* node = path.empty() ? new QTreeWidgetItem(tree_) : new QTreeWidgetItem(path.back());
    node->setText(0, Text(item.label));
    node->setData(0, ::Qt::UserRole, Text(item.key));
    path.push_back(node);
  }
  tree_->expandAll();

  auto* partsLabel = new QLabel(Text(form.Caption("lblComponents")), this);
  partsLabel->setObjectName("lblComponents");
  parts_ = new QListWidget(this);
  parts_->setObjectName("lstComponents");
  auto* detailsLabel = new QLabel(Text(form.Caption("lblVariables")), this);
  detailsLabel->setObjectName("lblVariables");
  details_ = new QListWidget(this);
  details_->setObjectName("lstVariables");
  status_ = new QLabel(this);
  status_->setObjectName("lblStatus");
  status_->setTextInteractionFlags(::Qt::TextSelectableByMouse);
  auto* ok = new QPushButton(Text(form.Caption("cmdOK")), this);
  ok->setObjectName("cmdOK");
  ok->setDefault(true);

  auto* lists = new QWidget(this);
  auto* listsLayout = new QVBoxLayout(lists);
  listsLayout->setContentsMargins(0, 0, 0, 0);
  listsLayout->addWidget(partsLabel);
  listsLayout->addWidget(parts_, 1);
  listsLayout->addWidget(detailsLabel);
  listsLayout->addWidget(details_, 2);
  auto* splitter = new QSplitter(::Qt::Horizontal, this);
  splitter->addWidget(tree_);
  splitter->addWidget(lists);
  splitter->setChildrenCollapsible(false);
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 2);
  auto* bottom = new QHBoxLayout;
  bottom->addWidget(status_, 1);
  bottom->addWidget(ok);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(splitter, 1);
  layout->addLayout(bottom);
  resize(720, 480);

  connect(tree_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (!item) return;
    Guarded(this, [&] { form_.SelectItem(item->data(0, ::Qt::UserRole).toString().toStdString()); });
    FillLists(true);
  });
  connect(parts_, &QListWidget::currentRowChanged, this, [this](int row) {
    if (row < 0) return;
    Guarded(this, [&] { form_.SelectPart(row + 1); });
    FillLists(false);
  });
  connect(details_, &QListWidget::currentRowChanged, this, [this](int row) {
    if (row < 0) return;
    Guarded(this, [&] { form_.SelectDetail(row + 1); });
    status_->setText(Text(form_.Status()));
  });
  connect(ok, &QPushButton::clicked, this, [this] {
    bool closes = false;
    Guarded(this, [&] { closes = model_.Press("OK"); });
    if (closes) {
      closedByButton_ = true;
      accept();
    }
  });
}

void TreeBrowserDialog::FillLists(bool parts) {
  auto fill = [](QListWidget* list, const std::vector<std::string>& rows) {
    const QSignalBlocker block(list);
    list->clear();
    for (const std::string& row : rows) list->addItem(Text(row));
  };
  if (parts) fill(parts_, form_.Parts());
  fill(details_, form_.Details());
  status_->setText(Text(form_.Status()));
}

void TreeBrowserDialog::reject() {
  if (!closedByButton_) model_.CloseByControl();
  closedByButton_ = true;
  QDialog::reject();
}

}  // namespace TessarkAO::Qt
