// The registry service: the Win32 registry calls the library makes, with
// their handles, value types and status codes.
//
// Callers see the Win32 contract exactly: three predefined roots with their
// handle values, keys opened and created by backslash-separated paths below a
// handle, values read and written as the bytes given with a type code, and
// every call answering with a Win32 status (0 success, 2 not found, 5 access
// denied, 6 invalid handle, 234 more data, ...).  Key and value names compare
// case-insensitively and keep the spelling they were created with; the empty
// value name is the key's default value.  Value data is kept as written,
// with the one rule Windows NT adds: string data whose length leaves out the
// NUL that follows it in memory is stored with that NUL (so a caller that
// counts only the characters still stores the whole string); reads are
// literal.
//
// Off Windows the store is an SQLite database file (posix/SqliteRegistry.cpp):
// `$TESSARKAO_REGISTRY` when set, else
// `$XDG_CONFIG_HOME/tessarkao/registry.sqlite3`.  A missing file is an empty
// store, created on the first write.  Every write is one durable transaction,
// so concurrent processes lose nothing and a crash leaves every committed
// value in place.  Flush() (and FlushRegistry() at process exit) moves the
// committed values into the main file and lets go of it, so that a copy of
// that one file holds everything.  A store that cannot be read answers with a status
// (5, 1015 corrupt, 1016 I/O failure) and LastError() says why.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace TessarkAO {

using RegHandle = std::uint32_t;
using RegStatus = std::int32_t;

// Predefined root keys, with the Win32 handle values.
inline constexpr RegHandle kHkeyClassesRoot = 0x80000000u;
inline constexpr RegHandle kHkeyCurrentUser = 0x80000001u;
inline constexpr RegHandle kHkeyLocalMachine = 0x80000002u;

// Value types.
namespace RegType {
constexpr std::uint32_t None = 0;
constexpr std::uint32_t String = 1;        // REG_SZ
constexpr std::uint32_t ExpandString = 2;  // REG_EXPAND_SZ
constexpr std::uint32_t Binary = 3;        // REG_BINARY
constexpr std::uint32_t Dword = 4;         // REG_DWORD, little-endian
constexpr std::uint32_t DwordBigEndian = 5;
constexpr std::uint32_t Link = 6;
constexpr std::uint32_t MultiString = 7;   // REG_MULTI_SZ
constexpr std::uint32_t Qword = 11;
}  // namespace RegType

// Access rights asked for when a key is opened.
namespace RegAccess {
constexpr std::uint32_t QueryValue = 0x0001;
constexpr std::uint32_t SetValue = 0x0002;
constexpr std::uint32_t CreateSubKey = 0x0004;
constexpr std::uint32_t EnumerateSubKeys = 0x0008;
constexpr std::uint32_t Read = 0x20019;
constexpr std::uint32_t Write = 0x20006;
constexpr std::uint32_t AllAccess = 0xF003F;
}  // namespace RegAccess

// Win32 status codes the registry answers with.
namespace WinError {
constexpr RegStatus Success = 0;
constexpr RegStatus FileNotFound = 2;
constexpr RegStatus PathNotFound = 3;
constexpr RegStatus AccessDenied = 5;
constexpr RegStatus InvalidHandle = 6;
constexpr RegStatus NotEnoughMemory = 8;
constexpr RegStatus InvalidData = 13;
constexpr RegStatus OutOfMemory = 14;
constexpr RegStatus InvalidParameter = 87;
constexpr RegStatus DiskFull = 112;
constexpr RegStatus InsufficientBuffer = 122;
constexpr RegStatus BadPathname = 161;
constexpr RegStatus Busy = 170;
constexpr RegStatus MoreData = 234;
constexpr RegStatus NoMoreItems = 259;
constexpr RegStatus CantOpen = 1011;
constexpr RegStatus RegistryCorrupt = 1015;
constexpr RegStatus RegistryIoFailed = 1016;
constexpr RegStatus KeyDeleted = 1018;
constexpr RegStatus NoUnicodeTranslation = 1113;
}  // namespace WinError

// The two formats of the registry editor's .reg files (platform/RegFile.hpp).
enum class RegFileFormat { Regedit4 = 4, Version5 = 5 };
// The code page of REGEDIT4 files unless told otherwise.
inline constexpr unsigned kRegFileCodePage = 1252;
// UTF-8, as a code page number.
inline constexpr unsigned kCodePageUtf8 = 65001;
struct RegFileKey;

// The name a .reg file uses for a root ("HKEY_CURRENT_USER"); "" for other handles.
std::string_view RegistryRootName(RegHandle root) noexcept;
// The root of a .reg file's name or its short form ("HKCU"); 0 when unknown.
RegHandle RegistryRootFromName(std::string_view name) noexcept;

class RegistryStore {
 public:
  virtual ~RegistryStore() = default;

  // RegOpenKeyExA: opens `subKey` below `key` ("" opens `key` itself again).
  // 2 when the key does not exist, 6 for a handle that is not open.
  virtual RegStatus OpenKey(RegHandle key, std::string_view subKey, std::uint32_t access,
                            RegHandle& result) = 0;
  // RegCreateKeyA: opens `subKey`, creating it and any missing parent keys.
  virtual RegStatus CreateKey(RegHandle key, std::string_view subKey, RegHandle& result) = 0;
  // RegCloseKey.  Closing a predefined root succeeds and does nothing.
  virtual RegStatus CloseKey(RegHandle key) = 0;

  // RegQueryValueExA.  With `data` null only the type and size are reported.
  // With a buffer of *size bytes: 234 and the needed size when it is too
  // small; else the data, and for string types a NUL appended when the data
  // lacks one and the buffer has room for it.  Any pointer may be null.
  virtual RegStatus QueryValue(RegHandle key, std::string_view name, std::uint32_t* type,
                               std::uint8_t* data, std::uint32_t* size) = 0;
  // RegSetValueExA: stores `size` bytes of `data` with the type, as given,
  // except that for a string type (1, 2, 7) whose last counted byte is not
  // NUL and whose next byte is, that NUL is stored too, as NT does: for
  // string types the byte after the data must be readable.
  virtual RegStatus SetValue(RegHandle key, std::string_view name, std::uint32_t type,
                             const std::uint8_t* data, std::uint32_t size) = 0;
  // RegSetValueA: the default value of `subKey` (created when missing) as a
  // string with its terminating NUL.
  virtual RegStatus SetKeyDefault(RegHandle key, std::string_view subKey, std::string_view text) = 0;
  // RegDeleteValueA.
  virtual RegStatus DeleteValue(RegHandle key, std::string_view name) = 0;
  // RegDeleteKeyA: 5 when the key still has subkeys, as on Windows.
  virtual RegStatus DeleteKey(RegHandle key, std::string_view subKey) = 0;
  // RegDeleteTreeA: the key, its subkeys and values ("" empties `key` itself).
  virtual RegStatus DeleteTree(RegHandle key, std::string_view subKey) = 0;

  // RegEnumKeyA / RegEnumValueA: the index-th subkey or value, in name
  // order; 259 past the end.
  virtual RegStatus EnumKey(RegHandle key, std::uint32_t index, std::string& name) = 0;
  virtual RegStatus EnumValue(RegHandle key, std::uint32_t index, std::string& name,
                              std::uint32_t* type, std::vector<std::uint8_t>* data) = 0;

  // .reg import of a file's bytes in either format (`codePage` is that of a
  // REGEDIT4 file): applies the whole file in one transaction, or nothing
  // (13 with LastError naming the line when the text is not valid).
  RegStatus ImportRegText(std::string_view file, unsigned codePage = kRegFileCodePage);
  RegStatus ImportRegFile(const std::string& path, unsigned codePage = kRegFileCodePage);
  // .reg export of `subKey` below a root and everything under it (the whole
  // root when subKey is ""); `root` 0 exports all three roots.  1113 when a
  // name or text cannot be written in the format's encoding.
  RegStatus ExportRegText(RegHandle root, std::string_view subKey, std::string& file,
                          RegFileFormat format = RegFileFormat::Version5, unsigned codePage = kRegFileCodePage);
  RegStatus ExportRegFile(const std::string& path, RegHandle root, std::string_view subKey,
                          RegFileFormat format = RegFileFormat::Version5, unsigned codePage = kRegFileCodePage);
  // The sections of a parsed file applied as one transaction, or none.
  virtual RegStatus ImportRegKeys(const std::vector<RegFileKey>& keys) = 0;
  // The sections an export writes, keys in name order, each with its values.
  virtual RegStatus ExportRegKeys(RegHandle root, std::string_view subKey, std::vector<RegFileKey>& keys) = 0;

  // What went wrong in the last call that failed for a reason beyond the
  // Win32 status (the store file, a line of a .reg file); "" after a call
  // that succeeded.
  const std::string& LastError() const noexcept { return lastError_; }
  // The file behind the store, when there is one.
  virtual std::string Location() const = 0;
  // Writes every committed change into the store's main file and closes it
  // (open handles stay valid; the next call opens the file again).
  virtual void Flush() noexcept {}

 protected:
  std::string lastError_;
};

// The store at `path` (the file need not exist yet).
std::unique_ptr<RegistryStore> OpenRegistryStore(std::string path);
// `$TESSARKAO_REGISTRY`, else `$XDG_CONFIG_HOME/tessarkao/registry.sqlite3`
// (`$HOME/.config` when XDG_CONFIG_HOME is not set).
std::string DefaultRegistryPath();

// The process's store, opened at DefaultRegistryPath() on first use.
RegistryStore& GetRegistry();
// Replaces the process's store (nullptr: reopen from DefaultRegistryPath()
// on next use, which picks up a changed TESSARKAO_REGISTRY).
void SetRegistry(std::unique_ptr<RegistryStore> store);
// Flushes the process's store when it has been opened.  Runs by itself at
// process exit; callers that write in batches (the command line) call it
// after each batch.
void FlushRegistry() noexcept;

}  // namespace TessarkAO
