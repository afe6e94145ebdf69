// System information on Windows: each fact straight from the Win32 call the
// library's contract names.
#ifdef _WIN32

#include "platform/SystemInfo.hpp"

#include <shlobj.h>

#include <cstring>
#include <vector>

#include "platform/win32/Windows.hpp"

namespace TessarkAO {

bool GetOsVersion(OsVersionRecord& record) {
  OSVERSIONINFOA info{};
  info.dwOSVersionInfoSize = sizeof info;  // 148 bytes
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  if (!GetVersionExA(&info)) return false;
#pragma GCC diagnostic pop
  record.size = info.dwOSVersionInfoSize;
  record.major = info.dwMajorVersion;
  record.minor = info.dwMinorVersion;
  record.build = info.dwBuildNumber;
  record.platformId = info.dwPlatformId;
  record.servicePack = info.szCSDVersion;
  return true;
}

bool GetLoginName(char* buffer, std::uint32_t capacity, std::uint32_t& length) {
  DWORD n = capacity;
  const BOOL ok = GetUserNameA(buffer, &n);
  length = n;
  return ok != FALSE;
}

std::uint32_t GetSystemDefaultLcid() { return ::GetSystemDefaultLCID(); }

std::int32_t FileExistenceError(std::string_view path) {
  // OpenFile's existence test; its own result is not what counts, the
  // error code in the record is.
  OFSTRUCT record{};
  record.cBytes = sizeof record;
  const std::string p(path);
  ::OpenFile(p.c_str(), &record, OF_EXIST);
  return record.nErrCode;
}

bool GetDefaultGuiFont(GuiFontMetrics& font) {
  // A hidden static window named "gdx_localizer_win" lends its device
  // context, as the library has always done it.
  HWND window = CreateWindowExA(0, "STATIC", "gdx_localizer_win", 0, 0, 0, 0, 0, nullptr, nullptr,
                                GetModuleHandleA(nullptr), nullptr);
  if (!window) return false;
  bool ok = false;
  if (HDC dc = GetDC(window)) {
    HGDIOBJ previous = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    char face[LF_FACESIZE] = "";
    TEXTMETRICA metrics{};
    const int faceLength = GetTextFaceA(dc, sizeof face, face);
    if (faceLength > 0 && GetTextMetricsA(dc, &metrics)) {
      font.faceName.assign(face, std::strlen(face));
      font.height = metrics.tmHeight;
      font.weight = metrics.tmWeight;
      font.italic = metrics.tmItalic != 0;
      font.underline = metrics.tmUnderlined != 0;
      font.strikeOut = metrics.tmStruckOut != 0;
      font.charset = metrics.tmCharSet;
      font.pixelsPerInch = GetDeviceCaps(dc, LOGPIXELSY);
      ok = true;
    }
    SelectObject(dc, previous);
    ReleaseDC(window, dc);
  }
  DestroyWindow(window);
  return ok;
}

std::int32_t GetSpecialFolder(std::int32_t folder, std::string& path) {
  char buffer[MAX_PATH] = "";
  const HRESULT hr = SHGetFolderPathA(nullptr, folder, nullptr, SHGFP_TYPE_CURRENT, buffer);
  path = SUCCEEDED(hr) ? std::string(buffer) : std::string();
  return static_cast<std::int32_t>(hr);
}

std::optional<std::string> GetEnvironment(std::string_view name) {
  const std::wstring wide = Win32::Widen(name);
  const DWORD n = GetEnvironmentVariableW(wide.c_str(), nullptr, 0);
  if (n == 0) return std::nullopt;
  std::vector<wchar_t> value(n);
  const DWORD got = GetEnvironmentVariableW(wide.c_str(), value.data(), n);
  return Win32::Narrow(value.data(), got);
}

}  // namespace TessarkAO

#endif  // _WIN32
