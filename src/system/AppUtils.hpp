// AppUtils: where the host keeps its settings and files.  The registry keys
// of the running product and of the product family, per-tool preferences
// with a current-user-then-machine fallback, the install and common-binaries
// folders, the product's version and automation identifier, and three
// special folders of the user.  Every name is worked out afresh on each call,
// so registry changes show at once.
//
// Not part of the instance count: building the shared localizer creates one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/Members.hpp"

namespace TessarkAO {

class AppUtils final : public Dispatch<AppUtils> {
 public:
  static constexpr std::string_view kClassName = "AppUtils";
  static void Describe(ClassBuilder<AppUtils>& b);

  // "SOFTWARE\" & "Tessark" & "\": the product family's key.
  static constexpr std::string_view kProductFamilyKey = "SOFTWARE\\Tessark\\";
  static constexpr std::string_view kNewUserSettings = "New User Settings";
  static constexpr std::string_view kCommonSuite = "VelloraSuite";

  // "LastRunProductName" of the "AddOns" preferences, else "TESSARK".
  static std::string LastRunProductName();
  // The last-run product name, a blank and its "ProductVersion" ("TESSARK 6.0").
  static std::string ProductName();

  std::string Path();
  // The product version as a number, read with the system locale's
  // conversion; 13 when the version text is not a number.
  double ApplicationVersion();
  std::string ProductInRegistryCurrentUser();
  std::string ProductInRegistryLocalMachine();
  std::string CommonInRegistryCurrentUser();
  // The same text as the current-user form: the family's common key has no
  // "New User Settings" branch, deliberately.
  std::string CommonInRegistryLocalMachine();
  // Preferences of the open section (current user first, then the machine);
  // true when found.  The section is used as it stands: with none open the
  // key ends in a backslash.
  bool GetRegistryPreferenceString(std::string ValueName, std::string& Value);
  bool GetRegistryPreferenceLong(std::string ValueName, std::int32_t& Value);
  // Sections do not nest: false, and the open one stays, while one is open.
  bool RegistryPreferenceBegin(std::string Section);
  void RegistryPreferenceEnd();
  bool GetCommonRegistryPreferenceString(std::string ValueName, std::string& Value);
  bool GetCommonRegistryPreferenceLong(std::string ValueName, std::int32_t& Value);
  std::string ProgID();
  std::string CommonBinariesPath();
  std::string ApplicationDataFolder();
  std::string CommonApplicationDataFolder();
  std::string PersonalFolder();

 private:
  template <class T>
  bool ReadPreference(bool common, const std::string& valueName, T& value);

  bool sectionOpen_ = false;
  std::string section_;
};

}  // namespace TessarkAO
