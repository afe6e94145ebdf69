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
  b.Get<&AppUtils::Path>("Path")
      .Get<&AppUtils::ApplicationVersion>("ApplicationVersion")
      .Get<&AppUtils::ProductInRegistryCurrentUser>("ProductInRegistryCurrentUser")
      .Get<&AppUtils::ProductInRegistryLocalMachine>("ProductInRegistryLocalMachine")
      .Get<&AppUtils::CommonInRegistryCurrentUser>("CommonInRegistryCurrentUser")
      .Get<&AppUtils::CommonInRegistryLocalMachine>("CommonInRegistryLocalMachine")
      .Method<&AppUtils::GetRegistryPreferenceString>("GetRegistryPreferenceString", Names{"ValueName", "Value"}, Out<2>{})
      .Method<&AppUtils::GetRegistryPreferenceLong>("GetRegistryPreferenceLong", Names{"ValueName", "Value"}, Out<2>{})
      .Method<&AppUtils::RegistryPreferenceBegin>("RegistryPreferenceBegin", Names{"Section"})
      .Method<&AppUtils::RegistryPreferenceEnd>("RegistryPreferenceEnd")
      .Method<&AppUtils::GetCommonRegistryPreferenceString>("GetCommonRegistryPreferenceString",
                                                            Names{"ValueName", "Value"}, Out<2>{})
      .Method<&AppUtils::GetCommonRegistryPreferenceLong>("GetCommonRegistryPreferenceLong",
                                                          Names{"ValueName", "Value"}, Out<2>{})
      .Get<&AppUtils::ProgID>("ProgID")
      .Get<&AppUtils::CommonBinariesPath>("CommonBinariesPath")
      .Get<&AppUtils::ApplicationDataFolder>("ApplicationDataFolder")
      .Get<&AppUtils::CommonApplicationDataFolder>("CommonApplicationDataFolder")
      .Get<&AppUtils::PersonalFolder>("PersonalFolder");
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
