// The windowed user-interface service: message boxes, the file-open dialog
// and the library's two dialogs as Qt widgets.  Loaded at run time by the
// POSIX service through tessarkao_create_windowed_ui.
#include <dlfcn.h>

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <cstdlib>
#include <string>

#include "QtDialogs.hpp"

namespace TessarkAO::Qt {

namespace {

QString Text(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

// "Text Files (*.txt)|*.txt|All Files (*.*)|*.*" as Qt's name filters; a
// description that does not show its pattern in parentheses gets it.
QStringList NameFilters(std::string_view filter) {
  const QStringList parts = Text(filter).split('|');
  QStringList out;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString patterns = parts[i + 1];
    patterns.replace(';', ' ');
    out << (parts[i].contains('(') ? parts[i] : parts[i] + " (" + patterns + ")");
  }
  return out;
}

QWidget* Owner() { return QApplication::activeWindow(); }

class QtUserInterface final : public UserInterface {
 public:
  std::int32_t MessageBox(std::string_view text, std::string_view title, std::int32_t style) override {
    QMessageBox box(Owner());
    box.setWindowTitle(Text(title));
    box.setText(Text(text));
    switch (IconOfStyle(style)) {
      case MessageIcon::Critical: box.setIcon(QMessageBox::Critical); break;
      case MessageIcon::Question: box.setIcon(QMessageBox::Question); break;
      case MessageIcon::Exclamation: box.setIcon(QMessageBox::Warning); break;
      case MessageIcon::Information: box.setIcon(QMessageBox::Information); break;
      case MessageIcon::None: break;
    }
    // The classic button sets, each button with its classic answer.
    struct Button {
      QMessageBox::StandardButton button;
      std::int32_t answer;
    };
    std::vector<Button> buttons;
    switch (style & 0x0F) {
      case 1: buttons = {{QMessageBox::Ok, 1}, {QMessageBox::Cancel, 2}}; break;
      case 2: buttons = {{QMessageBox::Abort, 3}, {QMessageBox::Retry, 4}, {QMessageBox::Ignore, 5}}; break;
      case 3: buttons = {{QMessageBox::Yes, 6}, {QMessageBox::No, 7}, {QMessageBox::Cancel, 2}}; break;
      case 4: buttons = {{QMessageBox::Yes, 6}, {QMessageBox::No, 7}}; break;
      case 5: buttons = {{QMessageBox::Retry, 4}, {QMessageBox::Cancel, 2}}; break;
      default: buttons = {{QMessageBox::Ok, 1}}; break;
    }
    QMessageBox::StandardButtons set;
    for (const Button& b : buttons) set |= b.button;
    box.setStandardButtons(set);
    // The default button: the first, or the one the style's 0x300 bits name.
    const std::size_t def = static_cast<std::size_t>((style >> 8) & 0x3);
    box.setDefaultButton(buttons[def < buttons.size() ? def : 0].button);
    const int pressed = box.exec();
    for (const Button& b : buttons)
      if (pressed == b.button) return b.answer;
    // Closed through the title bar: the answer of Cancel where there is one.
    for (const Button& b : buttons)
      if (b.answer == 2) return 2;
    return buttons.front().answer;
  }

  std::string OpenFile(std::string_view title, std::string_view filter, std::string_view defaultExtension) override {
    // Qt's own file dialog, the same on every desktop (and drivable by tests).
    QFileDialog dialog(Owner(), title.empty() ? QStringLiteral("Open") : Text(title));
    dialog.setObjectName("dlgFile");
    dialog.setOption(QFileDialog::DontUseNativeDialog, true);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setNameFilters(NameFilters(filter));
    dialog.setDefaultSuffix(Text(defaultExtension));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().first().toStdString();
  }

  void RunModal(ModalDialog& dialog) override {
    if (FileChoiceForm* form = dialog.AsFileChoice()) {
      FileChoiceDialog window(dialog, *form, Owner());
      window.exec();
    } else if (TreeBrowserForm* form = dialog.AsTreeBrowser()) {
      TreeBrowserDialog window(dialog, *form, Owner());
      window.exec();
    } else {
      dialog.CloseByControl();  // a dialog without a form of its own cannot be shown
    }
  }

  std::pair<std::int32_t, std::int32_t> ScreenSize() const override {
    // Stored dialog positions are in twips: 1440 per logical inch.
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) return {15360, 11520};
    const QRect r = screen->geometry();
    const double dpiX = screen->logicalDotsPerInchX() > 0 ? screen->logicalDotsPerInchX() : 96.0;
    const double dpiY = screen->logicalDotsPerInchY() > 0 ? screen->logicalDotsPerInchY() : 96.0;
    return {static_cast<std::int32_t>(r.width() * 1440 / dpiX), static_cast<std::int32_t>(r.height() * 1440 / dpiY)};
  }
};

// Qt ends the process when it cannot reach the display; an X display is
// tried first through the X protocol library Qt itself loads.
bool DisplayReachable() {
  const char* x = std::getenv("DISPLAY");
  if (!x || !*x) return true;  // Wayland: Qt's plugin reports failure itself
  void* xcb = dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
  if (!xcb) return false;
  using Connect = void* (*)(const char*, int*);
  using HasError = int (*)(void*);
  using Disconnect = void (*)(void*);
  auto connect = reinterpret_cast<Connect>(dlsym(xcb, "xcb_connect"));
  auto hasError = reinterpret_cast<HasError>(dlsym(xcb, "xcb_connection_has_error"));
  auto disconnect = reinterpret_cast<Disconnect>(dlsym(xcb, "xcb_disconnect"));
  bool ok = false;
  if (connect && hasError && disconnect) {
    void* c = connect(nullptr, nullptr);
    ok = c && hasError(c) == 0;
    if (c) disconnect(c);
  }
  dlclose(xcb);
  return ok;
}

}  // namespace

}  // namespace TessarkAO::Qt

extern "C" __attribute__((visibility("default"))) TessarkAO::UserInterface* tessarkao_create_windowed_ui() {
  if (!QApplication::instance()) {
    if (!TessarkAO::Qt::DisplayReachable()) return nullptr;
    // The application object lives as long as the process.
    static int argc = 1;
    static char name[] = "tessarkao";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
  }
  return new TessarkAO::Qt::QtUserInterface();
}
