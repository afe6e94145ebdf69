#include "platform/UserInterface.hpp"

#include <cstdio>

namespace TessarkAO {

std::string_view MessageIconName(MessageIcon icon) noexcept {
  switch (icon) {
    case MessageIcon::Critical: return "critical";
    case MessageIcon::Question: return "question";
    case MessageIcon::Exclamation: return "exclamation";
    case MessageIcon::Information: return "information";
    case MessageIcon::None: break;
  }
  return "none";
}

MessageIcon IconOfStyle(std::int32_t style) noexcept {
  switch (style & 0x70) {
    case MessageStyle::Critical: return MessageIcon::Critical;
    case MessageStyle::Question: return MessageIcon::Question;
    case MessageStyle::Exclamation: return MessageIcon::Exclamation;
    case MessageStyle::Information: return MessageIcon::Information;
    default: return MessageIcon::None;
  }
}

std::int32_t HeadlessUserInterface::MessageBox(std::string_view text, std::string_view title,
                                               std::int32_t style) {
  std::lock_guard lock(mutex_);
  MessageRecord r{std::string(text), std::string(title), IconOfStyle(style)};
  if (echo_)
    std::fprintf(stderr, "[%s] %s: %s\n", std::string(MessageIconName(r.icon)).c_str(), r.title.c_str(),
                 r.text.c_str());
  messages_.push_back(std::move(r));
  if (!answers_.empty()) {
    const std::int32_t a = answers_.front();
    answers_.pop_front();
    return a;
  }
  return (style & 0x0F) == MessageButtons::YesNo ? MessageAnswer::Yes : MessageAnswer::Ok;
}

std::string HeadlessUserInterface::OpenFile(std::string_view title, std::string_view filter,
                                            std::string_view defaultExtension) {
  std::lock_guard lock(mutex_);
  lastFileRequest_ = {std::string(title), std::string(filter), std::string(defaultExtension)};
  if (files_.empty()) return std::string();
  std::string f = std::move(files_.front());
  files_.pop_front();
  return f;
}

void HeadlessUserInterface::RunModal(ModalDialog& dialog) {
  std::size_t index;
  {
    std::lock_guard lock(mutex_);
    shown_.push_back(DialogRecord{dialog.Name(), dialog.Text()});
    index = shown_.size() - 1;
  }
  auto pending = [&](std::deque<std::string>& q) {
    std::lock_guard lock(mutex_);
    return !q.empty();
  };
  bool closed = false;
  while (!closed && pending(files_) && dialog.IsEnabled("Browse")) closed = dialog.Press("Browse");
  if (!closed) {
    std::string button;
    {
      std::lock_guard lock(mutex_);
      if (!buttons_.empty()) {
        button = std::move(buttons_.front());
        buttons_.pop_front();
      }
    }
    if (button.empty() || button == "Close" || !dialog.IsEnabled(button) || !dialog.Press(button))
      dialog.CloseByControl();
  }
  std::lock_guard lock(mutex_);
  shown_[index].text = dialog.Text();
}

std::pair<std::int32_t, std::int32_t> HeadlessUserInterface::ScreenSize() const {
  std::lock_guard lock(mutex_);
  return {width_, height_};
}

void HeadlessUserInterface::QueueFile(std::string name) {
  std::lock_guard lock(mutex_);
  files_.push_back(std::move(name));
}
void HeadlessUserInterface::QueueButton(std::string name) {
  std::lock_guard lock(mutex_);
  buttons_.push_back(std::move(name));
}
void HeadlessUserInterface::QueueAnswer(std::int32_t answer) {
  std::lock_guard lock(mutex_);
  answers_.push_back(answer);
}
void HeadlessUserInterface::SetScreenSize(std::int32_t width, std::int32_t height) {
  std::lock_guard lock(mutex_);
  width_ = width;
  height_ = height;
}
void HeadlessUserInterface::SetEcho(bool echo) {
  std::lock_guard lock(mutex_);
  echo_ = echo;
}
std::vector<MessageRecord> HeadlessUserInterface::Messages() const {
  std::lock_guard lock(mutex_);
  return messages_;
}
std::vector<DialogRecord> HeadlessUserInterface::Shown() const {
  std::lock_guard lock(mutex_);
  return shown_;
}
std::vector<std::string> HeadlessUserInterface::LastFileRequest() const {
  std::lock_guard lock(mutex_);
  return lastFileRequest_;
}
void HeadlessUserInterface::Clear() {
  std::lock_guard lock(mutex_);
  files_.clear();
  buttons_.clear();
  answers_.clear();
  messages_.clear();
  shown_.clear();
}

namespace {
std::unique_ptr<UserInterface>& Current() {
  static auto* ui = new std::unique_ptr<UserInterface>(StartupUserInterface());
  return *ui;
}
}  // namespace

UserInterface& GetUserInterface() { return *Current(); }
HeadlessUserInterface* GetHeadlessUserInterface() {
  return dynamic_cast<HeadlessUserInterface*>(Current().get());
}
void SetUserInterface(std::unique_ptr<UserInterface> ui) {
  Current() = ui ? std::move(ui) : std::make_unique<HeadlessUserInterface>();
}

}  // namespace TessarkAO
