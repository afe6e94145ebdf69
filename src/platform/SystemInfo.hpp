// System information: the operating-system facts the library asks for, each
// with the contract of the Win32 call it stands for.
//
//   GetOsVersion           GetVersionExA      (no record exists off Windows)
//   GetLoginName           GetUserNameA       (length counts the NUL)
//   GetSystemDefaultLcid   GetSystemDefaultLCID (from the POSIX locale)
//   FileExistenceError     OpenFile(OF_EXIST) (stat; '\' is a separator too)
//   GetDefaultGuiFont      the stock default GUI font and the screen's
//                          vertical resolution (fontconfig's sans-serif)
//   GetSpecialFolder       SHGetFolderPathA   (XDG base and user directories)
//   GetEnvironment         the process environment
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace TessarkAO {

// The operating-system version record (148 bytes in its Win32 form).
struct OsVersionRecord {
  std::uint32_t size = 148;
  std::uint32_t major = 0;
  std::uint32_t minor = 0;
  std::uint32_t build = 0;
  std::uint32_t platformId = 0;  // 0 Win32s, 1 the 9x family, 2 the NT family
  std::string servicePack;       // at most 127 characters
};
// Fills the record; false when the system has none (every system but Windows).
bool GetOsVersion(OsVersionRecord& record);

// GetUserNameA: the login name of the process owner into `buffer` of
// `capacity` bytes.  On success `length` is the name's length plus its NUL;
// when the buffer is too small it fails with `length` the size needed; with
// no name to be had it fails with `length` 0.
bool GetLoginName(char* buffer, std::uint32_t capacity, std::uint32_t& length);

// The system's default locale identifier, from LC_ALL, then LC_MESSAGES,
// then LANG (the first that is set and not empty), read as text whether or
// not that locale is installed.
std::uint32_t GetSystemDefaultLcid();
// The Windows locale identifier of a POSIX locale name ("ja_JP.UTF-8",
// "de_CH", "C"): en_* is 1033 and ja_* 1041 whatever the territory, other
// languages their own identifiers (the language's default for a territory
// without one), "C", "POSIX", "" and unknown languages 1033.
std::uint32_t LcidFromLocaleName(std::string_view name) noexcept;

// OpenFile's existence test: 0 when `path` names a file that exists, else the
// Win32 error the test reports (2 no such file, 3 no such folder, 5 a folder
// or no access).  A backslash separates folders as a slash does.
std::int32_t FileExistenceError(std::string_view path);

// The default interface font as the screen shows it.
struct GuiFontMetrics {
  std::string faceName;
  std::int32_t height = 0;         // character height in pixels (the metrics' tmHeight)
  std::int32_t weight = 400;       // 100 to 900, 400 regular, 700 bold
  bool italic = false;
  bool underline = false;
  bool strikeOut = false;
  std::int32_t charset = 0;        // 0 ANSI, 128 Shift-JIS, 1 default
  std::int32_t pixelsPerInch = 96; // the vertical resolution (LOGPIXELSY)
};
// False when no font can be found.
bool GetDefaultGuiFont(GuiFontMetrics& font);

// Special folders by their Win32 identifiers.
namespace SpecialFolder {
constexpr std::int32_t Personal = 5;            // the user's documents
constexpr std::int32_t AppData = 26;            // the user's application data
constexpr std::int32_t CommonAppData = 35;      // application data of all users
}  // namespace SpecialFolder
// SHGetFolderPathA: 0 (S_OK) with the folder's path, or a failing HRESULT
// (0x80070057 for an identifier it does not know, 0x80004005 when the folder
// cannot be named or its path does not fit in 260 characters).
std::int32_t GetSpecialFolder(std::int32_t folder, std::string& path);

// The value of an environment variable; nothing when it is not set.
std::optional<std::string> GetEnvironment(std::string_view name);

}  // namespace TessarkAO
