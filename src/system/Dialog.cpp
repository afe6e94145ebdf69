#include "system/Dialog.hpp"

#include "system/AppUtils.hpp"
#include "system/TKSystemUtils.hpp"

namespace TessarkAO::Dialog {

std::string ReadProductMachineValue(std::string_view valueName, std::string_view defaultValue) {
  Ref<TKSystemUtils> sys = MakeRef<TKSystemUtils>();
  std::string value;
  const std::int32_t status = sys->ReadRegistryStringValue(
      TKRegistry_HKEY_LOCAL_MACHINE, std::string(AppUtils::kProductFamilyKey) + AppUtils::LastRunProductName(),
      std::string(valueName), value);
  return status == 0 ? value : std::string(defaultValue);
}

std::string ReadAddOnPreference(std::string_view valueName, std::string_view defaultValue) {
  Ref<AppUtils> app = MakeRef<AppUtils>();
  std::string result(defaultValue);
  std::string section = "AddOns";
  if (app->RegistryPreferenceBegin(section)) {
    std::string name(valueName), value;
    if (app->GetCommonRegistryPreferenceString(name, value)) result = value;
    app->RegistryPreferenceEnd();
  }
  return result;
}

}  // namespace TessarkAO::Dialog
