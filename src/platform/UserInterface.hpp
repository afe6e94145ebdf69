// The user-interface service: message boxes, the file-open dialog and the
// library's two modal dialogs (the B-spline import dialog and the scene
// viewer).
//
// Dialogs are models (ModalDialog) that know nothing of windows.  The
// headless service, the default everywhere no person is at the screen
// (tests, scripts, the command line), writes each message box to stderr,
// answers file dialogs from a queue, and drives a modal dialog from queued
// choices:
//   1. every queued file is consumed in order as one press of the dialog's
//      Browse button (the dialog asks for a file and validates the choice as
//      it would a person's);
//   2. the next queued button closes it: an enabled button is pressed, a
//      disabled one closes the dialog without accepting;
//   3. with no button queued it closes through the title-bar control.
// A real windowed service can replace it through SetUserInterface, and one
// is chosen at start-up where a person can see it (StartupUserInterface).
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/DialogForms.hpp"

namespace TessarkAO {

enum class MessageIcon { None, Critical, Question, Exclamation, Information };
std::string_view MessageIconName(MessageIcon icon) noexcept;  // "exclamation", ...

// Button sets and answers of a message box, with the classic values.
namespace MessageButtons {
constexpr std::int32_t Ok = 0;
constexpr std::int32_t OkCancel = 1;
constexpr std::int32_t YesNo = 4;
}  // namespace MessageButtons
// The icons of the style value (its bits 0x70).
namespace MessageStyle {
enum : std::int32_t { Critical = 0x10, Question = 0x20, Exclamation = 0x30, Information = 0x40 };
}  // namespace MessageStyle
namespace MessageAnswer {
constexpr std::int32_t Ok = 1;
constexpr std::int32_t Cancel = 2;
constexpr std::int32_t Yes = 6;
constexpr std::int32_t No = 7;
}  // namespace MessageAnswer

// The classic message-box style value split into its parts (icon in 0x70).
MessageIcon IconOfStyle(std::int32_t style) noexcept;

// A modal dialog, apart from any window.
class ModalDialog {
 public:
  virtual ~ModalDialog() = default;
  // "frmImportBSpline", "frmScene".
  virtual std::string Name() const = 0;
  // The captions and content as text (a tree: one line per node, indented).
  virtual std::string Text() const = 0;
  // Whether a button ("Import", "Cancel", "Close", "Browse") can be pressed now.
  virtual bool IsEnabled(std::string_view button) const = 0;
  // Presses an enabled button; returns true when the press closes the dialog.
  virtual bool Press(std::string_view button) = 0;
  // Closing through the title-bar control.
  virtual void CloseByControl() = 0;
  // The form a windowed service lays out; nullptr for a dialog it cannot show.
  virtual FileChoiceForm* AsFileChoice() { return nullptr; }
  virtual TreeBrowserForm* AsTreeBrowser() { return nullptr; }
};

struct MessageRecord {
  std::string text;
  std::string title;
  MessageIcon icon = MessageIcon::None;
};

struct DialogRecord {
  std::string name;
  std::string text;
};

class UserInterface {
 public:
  virtual ~UserInterface() = default;
  // Shows a message box with a classic style value; returns the answer.
  virtual std::int32_t MessageBox(std::string_view text, std::string_view title, std::int32_t style) = 0;
  // The file-open dialog: a file name, or "" when cancelled.  `filter` is a
  // "Description|pattern|..." list.
  virtual std::string OpenFile(std::string_view title, std::string_view filter,
                               std::string_view defaultExtension) = 0;
  // Runs a modal dialog until it closes.
  virtual void RunModal(ModalDialog& dialog) = 0;
  // The size of the screen in the units of stored dialog positions (twips).
  virtual std::pair<std::int32_t, std::int32_t> ScreenSize() const = 0;
};

// The headless service, with the queues and records scripts and tests use.
class HeadlessUserInterface final : public UserInterface {
 public:
  std::int32_t MessageBox(std::string_view text, std::string_view title, std::int32_t style) override;
  std::string OpenFile(std::string_view title, std::string_view filter,
                       std::string_view defaultExtension) override;
  void RunModal(ModalDialog& dialog) override;
  std::pair<std::int32_t, std::int32_t> ScreenSize() const override;

  void QueueFile(std::string name);       // "" answers the next file dialog as cancelled
  void QueueButton(std::string name);     // "Import", "Cancel", "Close", ...
  void QueueAnswer(std::int32_t answer);  // the answer of the next message box (default: OK / Yes)
  void SetScreenSize(std::int32_t width, std::int32_t height);
  void SetEcho(bool echo);  // write messages to stderr (default on)
  std::vector<MessageRecord> Messages() const;
  std::vector<DialogRecord> Shown() const;
  // The last file dialog's request: title, filter, default extension.
  std::vector<std::string> LastFileRequest() const;
  // Empties the messages, the dialogs shown and every queue.
  void Clear();

 private:
  mutable std::mutex mutex_;
  std::deque<std::string> files_;
  std::deque<std::string> buttons_;
  std::deque<std::int32_t> answers_;
  std::vector<MessageRecord> messages_;
  std::vector<DialogRecord> shown_;
  std::vector<std::string> lastFileRequest_;
  std::int32_t width_ = 15360, height_ = 11520;  // 1024 x 768 pixels at 15 twips each
  bool echo_ = true;
};

// The service a process starts with: headless, except off Windows with a
// display (DISPLAY or WAYLAND_DISPLAY) and TESSARKAO_UI not "headless", where
// the windowed service is loaded from its own library (libtessarkao_qt), with
// one line on stderr and the headless service when it cannot be loaded.
std::unique_ptr<UserInterface> StartupUserInterface();

// The service in force (the startup one unless replaced).
UserInterface& GetUserInterface();
// The headless service when it is the one in force, else nullptr.
HeadlessUserInterface* GetHeadlessUserInterface();
void SetUserInterface(std::unique_ptr<UserInterface> ui);

}  // namespace TessarkAO
