// The dialogs as a person meets them on Linux: the library loads its Qt
// service because a display is set, and the test clicks, types and closes
// through the real widgets while the library waits in its modal dialog.
// Each window is grabbed to a PNG in $TK_SCREENS when that is set.
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>
#include <functional>

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "platform/UserInterface.hpp"
#include "refhost/RefHost.hpp"

using namespace TessarkAO;

namespace {

const QString kCamTrack = QStringLiteral(TK_EXAMPLES_DATA "/cam_track.txt");

void Grab(QWidget* w, const QString& name) {
  const QString dir = qEnvironmentVariable("TK_SCREENS");
  if (dir.isEmpty()) return;
  QDir().mkpath(dir);
  QVERIFY(w->grab().save(dir + "/" + name + ".png"));
}

// Acts on the window in front while the library runs `call` modally: every
// tick first plans the next, then does one step (a click may open a nested
// modal loop of its own), until `call` returns.
void Drive(const std::function<void()>& call, const std::function<void(QWidget*)>& step) {
  QObject context;  // ends the ticks still planned when the call returns
  int ticks = 0;
  std::function<void()> tick = [&] {
    // A minute: Qt's file dialog under the sanitizers on a loaded machine
    // can take seconds to open, but a dialog that never closes still ends.
    if (++ticks > 2400) qFatal("the dialog did not close within a minute");
    QTimer::singleShot(25, &context, tick);
    if (QWidget* top = QApplication::activeModalWidget()) step(top);
  };
  QTimer::singleShot(25, &context, tick);
  call();
}

void Click(QWidget* top, const char* name) {
  auto* button = top->findChild<QPushButton*>(name);
  QVERIFY2(button, name);
  QVERIFY2(button->isEnabled(), name);
  QTest::mouseClick(button, Qt::LeftButton);
}

// Types a file name into Qt's file dialog and confirms it with Enter.
void ChooseFile(QWidget* fileDialog, const QString& path) {
  auto* edit = fileDialog->findChild<QLineEdit*>("fileNameEdit");
  QVERIFY(edit);
  edit->clear();
  QTest::keyClicks(edit, path);
  QTest::keyClick(edit, Qt::Key_Return);
}

}  // namespace

class QtDialogs : public QObject {
  Q_OBJECT

 private:
  Ref<Object> app_;
  Variant page_, part_;
  QStringList messages_;

  void Import(const std::function<void(QWidget*)>& step) {
    messages_.clear();
    Drive([&] {
      Ref<Object> imports = CreateObject("TessarkAO.TKImports");
      Variant args[] = {Variant(app_)};
      imports->Invoke("ImportBSpline", CallKind::Method, args);
    }, step);
  }
  // Answers message boxes (noting their text) and the file dialog.
  bool Common(QWidget* top, const QString& file) {
    if (auto* box = qobject_cast<QMessageBox*>(top)) {
      messages_ << box->text();
      QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
      return true;
    }
    if (qobject_cast<QFileDialog*>(top)) {
      ChooseFile(top, file);
      return true;
    }
    return false;
  }
  std::int32_t Paths() const { return ToLong(part_.Get("Components", 3).Get("Count")); }

 private slots:
  void init() {
    app_ = RefHost::NewApplication();
    page_ = Variant(app_).Get("ActivePage");
    part_ = page_.Get("Shape").Get("Components", 2).Call("Item", 1).Get("Shapes", 3).Call("Add");
    page_.Get("SelectedItems").Call("Add", part_);
  }

  // Browse, type the cam track's name, Import: the path is created.
  void importThroughTheControls() {
    bool browsed = false, before = false;
    Import([&](QWidget* top) {
      if (Common(top, kCamTrack)) return;
      QCOMPARE(top->objectName(), QString("frmImportBSpline"));
      auto* ok = top->findChild<QPushButton*>("cmdOK");
      if (!browsed) {
        QCOMPARE(top->windowTitle(), QString("B-Spline Import"));
        QVERIFY(!ok->isEnabled());
        for (const char* control : {"fraFilename", "lblDescription", "txtFilename", "cmdBrowse", "cmdCancel"})
          QVERIFY2(top->findChild<QWidget*>(control), control);
        if (!before) Grab(top, "linux-import-dialog");
        before = true;
        browsed = true;
        Click(top, "cmdBrowse");
        return;
      }
      QCOMPARE(top->findChild<QLineEdit*>("txtFilename")->text(), kCamTrack);
      QVERIFY(ok->isEnabled());
      Grab(top, "linux-import-dialog-file-chosen");
      Click(top, "cmdOK");
    });
    QCOMPARE(messages_, QStringList{"Import of B-Spline completed successfully."});
    QCOMPARE(Paths(), 1);
  }

  // A valid file chosen, then Cancel or the title-bar close: nothing is
  // created and nothing is said.  A file of one number per line is refused:
  // the message, Import disabled.
  void cancelCloseAndInvalidFilesCreateNothing() {
    QTemporaryFile invalid(QDir::tempPath() + "/tk-XXXXXX.txt");
    QVERIFY(invalid.open());
    invalid.write("1\n2\n3\n");
    invalid.close();
    const struct {
      QString file;
      const char* how;
      QStringList messages;
    } rows[] = {{kCamTrack, "cmdCancel", {}},
                {kCamTrack, "close", {}},
                {invalid.fileName(), "cmdCancel", {"The file does not contain valid B-Spline point data."}}};
    for (const auto& row : rows) {
      bool browsed = false;
      Import([&](QWidget* top) {
        if (Common(top, row.file)) return;
        if (!browsed) {
          browsed = true;
          Click(top, "cmdBrowse");
          return;
        }
        QCOMPARE(top->findChild<QPushButton*>("cmdOK")->isEnabled(), row.messages.isEmpty());
        if (std::string_view(row.how) == "close")
          top->close();
        else
          Click(top, row.how);
      });
      QCOMPARE(messages_, row.messages);
      QCOMPARE(Paths(), 0);
    }
  }

  // The viewer through the hidden dialog id: select the B-spline of the
  // cam's profile, then a shape and its first component.
  void sceneViewerFillsItsLists() {
    Ref<Object> app = RefHost::LoadScene(TK_EXAMPLES_DATA "/profiled_scene.json");
    Ref<Object> utils = CreateObject("TessarkAO.DialogUtils");
    Variant page[] = {Variant(app).Get("ActivePage")};
    utils->Invoke("Page", CallKind::Set, page);
    int stage = 0;
    Drive([&] {
      Variant args[] = {Variant(std::int32_t{707}), Variant(std::int32_t{808})};
      utils->Invoke("GetCLSID", CallKind::Method, args);
    }, [&](QWidget* top) {
      QCOMPARE(top->objectName(), QString("frmScene"));
      auto* tree = top->findChild<QTreeWidget*>("TreeView");
      auto* parts = top->findChild<QListWidget*>("lstComponents");
      auto* details = top->findChild<QListWidget*>("lstVariables");
      QVERIFY(tree && parts && details);
      auto click = [&](const QString& label) {
        const auto items = tree->findItems(label, Qt::MatchStartsWith | Qt::MatchRecursive);
        QVERIFY2(!items.isEmpty(), qPrintable(label));
        tree->scrollToItem(items.first());
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(items.first()).center());
        QCOMPARE(tree->currentItem(), items.first());
      };
      switch (stage++) {
        case 0:
          click("Loop Curve (B-Spline)");
          QCOMPARE(details->item(0)->text(), QString("Curve Data"));
          QVERIFY(details->count() > 10);
          Grab(top, "linux-scene-viewer");
          break;
        case 1:
          click("Base plate");
          QVERIFY(parts->count() >= 3);
          QTest::mouseClick(parts->viewport(), Qt::LeftButton, {}, parts->visualItemRect(parts->item(0)).center());
          QVERIFY(top->findChild<QLabel*>("lblStatus")->text().startsWith("Active Component : "));
          break;
        default: Click(top, "cmdOK");
      }
    });
    QCOMPARE(stage, 3);
  }
};

QTEST_MAIN(QtDialogs)
#include "qt_dialogs_test.moc"
