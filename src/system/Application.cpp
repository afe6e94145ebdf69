#include "system/Application.hpp"

#include "automation/Object.hpp"
#include "system/AppUtils.hpp"

namespace TessarkAO::Application {

namespace {

// Opens "Directories" on a fresh AppUtils and takes the first preference of
// `names` that can be read, else the default folder.
std::string DirectoryPreference(std::initializer_list<std::string_view> names) {
  Ref<AppUtils> app = MakeRef<AppUtils>();
  std::string section = "Directories";
  if (!app->RegistryPreferenceBegin(section)) return {};
  std::string result(kDefaultBinaries);
  for (std::string_view name : names) {
    std::string value;
    std::string valueName(name);
    if (app->GetRegistryPreferenceString(valueName, value)) {
      result = value;
      break;
    }
  }
  app->RegistryPreferenceEnd();
  return result;
}

}  // namespace

std::string Path() { return DirectoryPreference({"Install", "Working"}); }

std::string CommonBinariesPath() { return DirectoryPreference({"CommonBinaries"}); }

}  // namespace TessarkAO::Application
