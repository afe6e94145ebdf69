#ifdef _WIN32

#include "platform/win32/Win32UserInterface.hpp"

#include <cstdlib>
#include <memory>
#include <string>

#include "platform/UserInterface.hpp"
#include "platform/win32/Win32Dialogs.hpp"
#include "platform/win32/Windows.hpp"

#include <commdlg.h>

namespace TessarkAO::Win32 {

namespace {

HWND Owner() { return GetActiveWindow(); }

class WindowsUserInterface final : public UserInterface {
 public:
  std::int32_t MessageBox(std::string_view text, std::string_view title, std::int32_t style) override {
    const std::wstring t = Widen(text), c = Widen(title);
    return MessageBoxW(Owner(), t.c_str(), c.c_str(), static_cast<UINT>(style) | MB_TASKMODAL);
  }

  std::string OpenFile(std::string_view title, std::string_view filter, std::string_view defaultExtension) override {
    // "Text Files (*.txt)|*.txt|..." becomes the dialog's NUL-separated list.
    std::wstring list = Widen(filter);
    for (wchar_t& c : list)
      if (c == L'|') c = L'\0';
    list.push_back(L'\0');
    list.push_back(L'\0');
    const std::wstring caption = Widen(title), extension = Widen(defaultExtension);
    wchar_t file[MAX_PATH * 4] = L"";
    OPENFILENAMEW ofn{};
    ofn.lStructSize = sizeof ofn;
    ofn.hwndOwner = Owner();
    ofn.lpstrFilter = list.c_str();
    ofn.nFilterIndex = 1;
    ofn.lpstrFile = file;
    ofn.nMaxFile = static_cast<DWORD>(std::size(file));
    ofn.lpstrTitle = caption.empty() ? nullptr : caption.c_str();
    ofn.lpstrDefExt = extension.empty() ? nullptr : extension.c_str();
    ofn.Flags = OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_EXPLORER;
    if (!GetOpenFileNameW(&ofn)) return {};
    return Narrow(std::wstring_view(file));
  }

  void RunModal(ModalDialog& dialog) override {
    if (FileChoiceForm* form = dialog.AsFileChoice()) RunFileChoiceDialog(dialog, *form, Owner());
    else if (TreeBrowserForm* form = dialog.AsTreeBrowser()) RunTreeBrowserDialog(dialog, *form, Owner());
    else dialog.CloseByControl();  // a dialog without a form of its own cannot be shown
  }

  std::pair<std::int32_t, std::int32_t> ScreenSize() const override {
    // Stored dialog positions are in twips: 1440 per logical inch.
    HDC dc = GetDC(nullptr);
    const int dpiX = dc ? GetDeviceCaps(dc, LOGPIXELSX) : 96;
    const int dpiY = dc ? GetDeviceCaps(dc, LOGPIXELSY) : 96;
    if (dc) ReleaseDC(nullptr, dc);
    return {GetSystemMetrics(SM_CXSCREEN) * 1440 / (dpiX ? dpiX : 96),
            GetSystemMetrics(SM_CYSCREEN) * 1440 / (dpiY ? dpiY : 96)};
  }
};

}  // namespace

void InstallUserInterface() {
  const char* mode = std::getenv("TESSARKAO_UI");
  if (mode && std::string_view(mode) == "headless") return;
  SetUserInterface(std::make_unique<WindowsUserInterface>());
}

}  // namespace TessarkAO::Win32

namespace TessarkAO {
// The server puts its windows in force when it loads (InstallUserInterface);
// until then, and in the Windows build's own programs, the headless service.
std::unique_ptr<UserInterface> StartupUserInterface() { return std::make_unique<HeadlessUserInterface>(); }
}  // namespace TessarkAO

#endif  // _WIN32
