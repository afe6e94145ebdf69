#include "system/AppUtils.hpp"

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "platform/SystemInfo.hpp"
#include "system/Application.hpp"
#include "system/Dialog.hpp"
#include "system/TKSystemUtils.hpp"

namespace TessarkAO {

namespace {

// SHGetFolderPathA's answer: the path, or "" when the call fails.
std::string SpecialFolderPath(std::int32_t folder) {
  std::string path;
  if (GetSpecialFolder(folder, path) != 0) return {};
  // The folder's path is what the 260-character buffer holds up to its first NUL.
  return path.substr(0, path.find('\0'));
}

}  // namespace

void AppUtils::Describe(ClassBuilder<AppUtils>& b) {
  b.Get<&AppUtils::Path>("Path", Doc{"The host's install folder."})
      .Get<&AppUtils::ApplicationVersion>("ApplicationVersion",
                                          Doc{"The product version as a number, converted with the system "
                                              "locale; 13 when the version text is not a number."})
      .Get<&AppUtils::ProductInRegistryCurrentUser>("ProductInRegistryCurrentUser",
                                                    Doc{"The product's registry key for the current user."})
      .Get<&AppUtils::ProductInRegistryLocalMachine>(
          "ProductInRegistryLocalMachine",
          Doc{"The product's registry key for the machine (\"New User Settings\")."})
      .Get<&AppUtils::CommonInRegistryCurrentUser>("CommonInRegistryCurrentUser",
                                                   Doc{"The product family's common registry key."})
      .Get<&AppUtils::CommonInRegistryLocalMachine>(
          "CommonInRegistryLocalMachine", Doc{"The same text as CommonInRegistryCurrentUser, deliberately."})
      .Method<&AppUtils::GetRegistryPreferenceString>(
          "GetRegistryPreferenceString", Names{"ValueName", "Value"}, Out<2>{},
          Doc{"Reads string value ValueName of the open section (current user first, then the machine) into "
              "Value; True when found."})
      .Method<&AppUtils::GetRegistryPreferenceLong>(
          "GetRegistryPreferenceLong", Names{"ValueName", "Value"}, Out<2>{},
          Doc{"Reads number value ValueName of the open section (current user first, then the machine) into "
              "Value; True when found."})
      .Method<&AppUtils::RegistryPreferenceBegin>(
          "RegistryPreferenceBegin", Names{"Section"},
          Doc{"Opens preference section Section; False, with the open one kept, while one is open."})
      .Method<&AppUtils::RegistryPreferenceEnd>("RegistryPreferenceEnd", Doc{"Closes the open section."})
      .Method<&AppUtils::GetCommonRegistryPreferenceString>(
          "GetCommonRegistryPreferenceString", Names{"ValueName", "Value"}, Out<2>{},
          Doc{"As GetRegistryPreferenceString, on the product family's keys."})
      .Method<&AppUtils::GetCommonRegistryPreferenceLong>(
          "GetCommonRegistryPreferenceLong", Names{"ValueName", "Value"}, Out<2>{},
          Doc{"As GetRegistryPreferenceLong, on the product family's keys."})
      .Get<&AppUtils::ProgID>("ProgID", Doc{"The host application's ProgID."})
      .Get<&AppUtils::CommonBinariesPath>("CommonBinariesPath", Doc{"The host's common binaries folder."})
      .Get<&AppUtils::ApplicationDataFolder>("ApplicationDataFolder",
                                             Doc{"The user's application-data folder."})
      .Get<&AppUtils::CommonApplicationDataFolder>("CommonApplicationDataFolder",
                                                   Doc{"The all-users application-data folder."})
      .Get<&AppUtils::PersonalFolder>("PersonalFolder", Doc{"The user's documents folder."});
}

std::string AppUtils::LastRunProductName() { return Dialog::ReadAddOnPreference("LastRunProductName", "TESSARK"); }

std::string AppUtils::ProductName() {
  return LastRunProductName() + " " + Dialog::ReadProductMachineValue("ProductVersion", "6.0");
}

std::string AppUtils::Path() { return Application::Path(); }

double AppUtils::ApplicationVersion() {
  return ToDouble(Variant(Dialog::ReadProductMachineValue("ProductVersion", "6.0")));
}

std::string AppUtils::ProductInRegistryCurrentUser() { return std::string(kProductFamilyKey) + ProductName(); }

std::string AppUtils::ProductInRegistryLocalMachine() {
  return std::string(kProductFamilyKey) + std::string(kNewUserSettings) + "\\" + ProductName();
}

std::string AppUtils::CommonInRegistryCurrentUser() { return std::string(kProductFamilyKey) + std::string(kCommonSuite); }

std::string AppUtils::CommonInRegistryLocalMachine() { return std::string(kProductFamilyKey) + std::string(kCommonSuite); }

template <class T>
bool AppUtils::ReadPreference(bool common, const std::string& valueName, T& value) {
  Ref<TKSystemUtils> sys = MakeRef<TKSystemUtils>();
  auto read = [&](std::int32_t root, const std::string& key) {
    if constexpr (std::is_same_v<T, std::string>)
      return sys->ReadRegistryStringValue(root, key + "\\" + section_, valueName, value);
    else
      return sys->ReadRegistryLongValue(root, key + "\\" + section_, valueName, value);
  };
  if (read(TKRegistry_HKEY_CURRENT_USER, common ? CommonInRegistryCurrentUser() : ProductInRegistryCurrentUser()) == 0)
    return true;
  return read(TKRegistry_HKEY_LOCAL_MACHINE,
              common ? CommonInRegistryLocalMachine() : ProductInRegistryLocalMachine()) == 0;
}

bool AppUtils::GetRegistryPreferenceString(std::string ValueName, std::string& Value) {
  return ReadPreference(false, ValueName, Value);
}

bool AppUtils::GetRegistryPreferenceLong(std::string ValueName, std::int32_t& Value) {
  return ReadPreference(false, ValueName, Value);
}

bool AppUtils::RegistryPreferenceBegin(std::string Section) {
  if (sectionOpen_) return false;
  section_ = std::move(Section);
  sectionOpen_ = true;
  return true;
}

void AppUtils::RegistryPreferenceEnd() {
  section_.clear();
  sectionOpen_ = false;
}

bool AppUtils::GetCommonRegistryPreferenceString(std::string ValueName, std::string& Value) {
  return ReadPreference(true, ValueName, Value);
}

bool AppUtils::GetCommonRegistryPreferenceLong(std::string ValueName, std::int32_t& Value) {
  return ReadPreference(true, ValueName, Value);
}

std::string AppUtils::ProgID() { return Dialog::ReadProductMachineValue("ProductProgID", "TESSARK.Application"); }

std::string AppUtils::CommonBinariesPath() { return Application::CommonBinariesPath(); }

std::string AppUtils::ApplicationDataFolder() { return SpecialFolderPath(SpecialFolder::AppData); }

std::string AppUtils::CommonApplicationDataFolder() { return SpecialFolderPath(SpecialFolder::CommonAppData); }

std::string AppUtils::PersonalFolder() { return SpecialFolderPath(SpecialFolder::Personal); }

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::AppUtils)
