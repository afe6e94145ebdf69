// TKSystemUtils: the operating-system services the library and its callers
// use: registry reads and writes, the operating-system family, the login
// name and initials, a file-existence test, the system locale and the
// localizer that follows from it, the default interface font, environment
// variables.
//
// Not part of the instance count: building the shared localizer creates one.
#pragma once

#include <cstdint>
#include <string>

#include "automation/Members.hpp"
#include "frame/PublishedEnums.hpp"
#include "platform/SystemInfo.hpp"
#include "system/Registry.hpp"

namespace TessarkAO {

// The family of a version record (nullptr: no record could be had).  Every
// NT-family version reports TKOS_WindowsNT4, deliberately: callers only tell
// the NT line from the others.
TKOperatingSystems OperatingSystemOf(const OsVersionRecord* record) noexcept;

// Initials of a name: the first character of every word, words separated by
// blanks and hyphens ("mary-ann smith" gives "mas").
std::string InitialsOf(std::string_view name);

class TKSystemUtils final : public Dispatch<TKSystemUtils> {
 public:
  static constexpr std::string_view kClassName = "TKSystemUtils";
  static void Describe(ClassBuilder<TKSystemUtils>& b);

  // Registry members return the registry's status (0 success) and never raise.
  std::string ReadRegistryValue(std::int32_t lKey, std::string sSubKey, std::string sValueName,
                                std::int32_t& lError);
  // Always 0, whatever happened (see Registry::WriteRegistryEntry).
  std::int32_t SetRegistryStringValue(std::int32_t lRootKey, std::string sSubKey, std::string sValueName,
                                      std::string sValue);
  std::int32_t ReadRegistryStringValue(std::int32_t lRootKey, std::string sSubKey, std::string sValueName,
                                       std::string& pValue);
  bool DoesFileExist(std::string Filename);
  // Never raises; Nothing when no localizer could be created.  The main
  // library name is passed by reference and the caller's variable receives
  // the satellite name it was turned into.
  Ref<Object> SetLocaleDLL(std::string& strMainDllName, std::string strProjectName);
  std::int32_t SystemDefaultLCID();
  // Never raises.
  Ref<Object> DefaultSystemFont();
  // Never raises; controls without a font are passed over.
  void SetDefaultSystemFont(Ref<Object> objForm, bool bKeepProperties);
  // 0 and pValue set for a number (or numeric text); 1 and pValue untouched otherwise.
  std::int32_t ReadRegistryLongValue(std::int32_t lRootKey, std::string sSubKey, std::string sValueName,
                                     std::int32_t& pValue);
  std::int32_t SetRegistryLongValue(std::int32_t lRootKey, std::string sSubKey, std::string sValueName,
                                    std::int32_t pValue);
  std::int32_t OperatingSystem();
  // "" when the name cannot be had.
  std::string UserName();
  std::string UserInitials();
  // "" for a variable that is not set (never raises).
  std::string EnvironmentVariable(std::string Variable);

 private:
  Ref<Object> localizer_;
};

}  // namespace TessarkAO
