#include "tools/DialogUtils.hpp"

#include <array>

#include "automation/Catalogue.hpp"
#include "automation/Enumerations.hpp"
#include "platform/Registry.hpp"
#include "platform/UserInterface.hpp"
#include "scene/Scene.hpp"
#include "system/AppUtils.hpp"
#include "system/Registry.hpp"

namespace TessarkAO {

namespace {

struct Tool {
  std::string_view subkey;
  std::string_view toolClass;
};

constexpr std::array<Tool, 12> kTools = {{
    {"Tool Settings\\Assembly", "TessarkAOCA.Assembly"},
    {"Tool Settings\\Assembly Tree", "TessarkAOCAT.AssemblyTree"},
    {"Tool Settings\\Custom Hole", "TessarkAOCH.Hole"},
    {"Tool Settings\\Pattern", "TessarkAORP.RPattern"},
    {"Tool Settings\\Fasteners", "TessarkAOCF.Fastener"},
    {"Tool Settings\\Spur Gear", "TessarkAOCG.Gear"},
    {"Tool Settings\\Helix", "TessarkAOCHX.CHelix"},
    {"Tool Settings\\Extrude", "TessarkAOCE.TKExtrude"},
    {"Tool Settings\\Ribwise", "TessarkAORib.ExtrudeRib"},
    {"Tool Settings\\Hot Formed Steel", "TessarkAOBeam.Beam"},
    {"Tool Settings\\Cold Formed Steel", "TessarkAOCFS.ColdFormedSteel"},
    {"Tool Settings\\Bearings", "TessarkAOBearing.Bearing"},
}};

constexpr std::int32_t kHiddenDialog = 707;
constexpr std::int32_t kHiddenError = 808;
constexpr std::int32_t kToolComponent = 43;

bool IsTool(std::int32_t dialog) noexcept { return dialog >= 1 && dialog <= 12; }

// A string value of the registry, with the registry read's status.
std::string Read(std::int32_t root, const std::string& key, std::string_view name, std::int32_t& status) {
  return Registry::ReadRegistryEntry(Registry::MapRegistryRoot(root), key, name, status);
}

}  // namespace

void DialogUtils::Describe(ClassBuilder<DialogUtils>& b) {
  b.Method<&DialogUtils::GetStartPosition>(
       "GetStartPosition", Names{"intDialog", "lngXPos", "lngYPos"}, Out<2, 3>{},
       Doc{"Writes the remembered screen position of dialog intDialog (TKToolDialogs) into lngXPos and "
           "lngYPos, from the user's settings, else the machine's; (0, 0) when beyond the screen. 6 beyond a "
           "Long."})
      .Method<&DialogUtils::SetStartPosition>(
          "SetStartPosition", Names{"intDialog", "lngXPos", "lngYPos"},
          Doc{"Remembers the screen position of dialog intDialog (TKToolDialogs) in the user's settings."})
      .Set<&DialogUtils::SetPage>("Page", Names{"objPage"},
                                  Doc{"The page the scene viewer shows (see GetCLSID)."})
      .Method<&DialogUtils::GetCLSID>(
          "GetCLSID", Names{"intDialog", "lngError"}, Out<2>{},
          Doc{"The class identifier of the tool of dialog intDialog (TKToolDialogs); lngError receives the "
              "registry status (0 found)."})
      .Method<&DialogUtils::GetCLSIDOfClass>("GetCLSIDOfClass", Names{"Class", "lngError"}, Out<2>{},
                                             Doc{"The class identifier of the ProgID Class; lngError "
                                                 "receives the registry status; \"\" on failure."})
      .Method<&DialogUtils::QueryTool>(
          "QueryTool", Names{"objShape"},
          Doc{"The tool (TKTools) that created objShape; TKTOOL_NULL when none."});
}

std::string_view DialogUtils::SettingsSubkey(std::int32_t dialog) noexcept {
  return IsTool(dialog) ? kTools[static_cast<std::size_t>(dialog - 1)].subkey : std::string_view();
}

std::string_view DialogUtils::ToolClass(std::int32_t dialog) noexcept {
  return IsTool(dialog) ? kTools[static_cast<std::size_t>(dialog - 1)].toolClass : std::string_view();
}

std::string DialogUtils::UserKey(std::int32_t dialog) {
  return "Software\\Tessark\\" + AppUtils::ProductName() + "\\" + std::string(SettingsSubkey(dialog));
}

std::string DialogUtils::MachineKey(std::int32_t dialog) {
  return "Software\\Tessark\\New User Settings\\" + AppUtils::ProductName() + "\\" +
         std::string(SettingsSubkey(dialog));
}

void DialogUtils::GetStartPosition(std::int32_t intDialog, std::int32_t& lngXPos, std::int32_t& lngYPos) {
  lngXPos = 0;
  lngYPos = 0;
  if (!IsTool(intDialog)) return;
  const std::string user = UserKey(intDialog), machine = MachineKey(intDialog);
  std::int32_t status = 0;
  std::string x, y;
  x = Read(TKRegistry_HKEY_CURRENT_USER, user, "PosX", status);
  if (status == 0) {
    y = Read(TKRegistry_HKEY_CURRENT_USER, user, "PosY", status);
    if (status != 0) {
      y = Read(TKRegistry_HKEY_LOCAL_MACHINE, machine, "PosY", status);
      if (status != 0) y = "0";
    }
  } else {
    x = Read(TKRegistry_HKEY_LOCAL_MACHINE, machine, "PosX", status);
    if (status != 0) x = "0";
    y = Read(TKRegistry_HKEY_LOCAL_MACHINE, machine, "PosY", status);
    if (status != 0) y = "0";
  }
  const std::int32_t px = RoundToLong(Val(x));
  const std::int32_t py = RoundToLong(Val(y));
  const auto [width, height] = GetUserInterface().ScreenSize();
  // Strictly beyond the screen: a position equal to its size is kept.
  if (px > width || py > height) return;
  lngXPos = px;
  lngYPos = py;
}

void DialogUtils::SetStartPosition(std::int32_t intDialog, std::int32_t lngXPos, std::int32_t lngYPos) {
  if (!IsTool(intDialog)) return;
  const std::string user = UserKey(intDialog);
  const std::int32_t root = Registry::MapRegistryRoot(TKRegistry_HKEY_CURRENT_USER);
  Registry::WriteRegistryEntry(root, user, RegType::String, "PosX", Variant(std::to_string(lngXPos)));
  Registry::WriteRegistryEntry(root, user, RegType::String, "PosY", Variant(std::to_string(lngYPos)));
}

std::string DialogUtils::GetCLSID(std::int32_t intDialog, std::int32_t& lngError) {
  if (intDialog == kHiddenDialog && lngError == kHiddenError) {
    if (!page_) Raise(Err::ObjectNotSet);
    Scene::ShowScene(Variant(page_));
    return std::string();
  }
  if (!IsTool(intDialog)) {
    lngError = WinError::FileNotFound;
    return std::string();
  }
  return GetCLSIDOfClass(std::string(ToolClass(intDialog)), lngError);
}

std::string DialogUtils::GetCLSIDOfClass(std::string Class, std::int32_t& lngError) {
  return Read(TKRegistry_HKEY_CLASSES_ROOT, Class + "\\Clsid", "", lngError);
}

std::int32_t DialogUtils::QueryTool(Ref<Object> objShape) {
  const Variant components = Variant(objShape).Get("Components", kToolComponent);
  if (ToLong(components.Get("Count")) <= 0) return TKTOOL_NULL;
  const std::string text = LowerCase(ToString(components.Call("Item", 1).Get("Variable", 1).Get("Value")));
  // An empty text names no tool (a class key with an empty Clsid must not match it).
  if (text.empty()) return TKTOOL_NULL;
  for (std::int32_t i = 1; i <= 12; ++i) {
    std::int32_t status = 0;
    const std::string clsid = GetCLSID(i, status);
    if (status == 0 && LowerCase(clsid) == text) return i;
  }
  return TKTOOL_NULL;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::DialogUtils)

// The enumerations of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKToolDialogs, "DialogUtils", DLG_ASSEMBLY, DLG_ASSEMBLYTREE,
                        DLG_CUSTOM_HOLE, DLG_PATTERN, DLG_FASTENERS, DLG_SPURGEAR, DLG_HELIX, DLG_EXTRUDE,
                        DLG_RIB, DLG_HOT_FORMED_STEEL, DLG_COLD_FORMED_STEEL, DLG_BEARINGS)
TK_REGISTER_ENUMERATION(TessarkAO::TKTools, "DialogUtils", TKTOOL_NULL, TKTOOL_ASSEMBLY, TKTOOL_ASSEMBLYTREE,
                        TKTOOL_CUSTOM_HOLE, TKTOOL_PATTERN, TKTOOL_FASTENERS, TKTOOL_SPURGEAR, TKTOOL_HELIX,
                        TKTOOL_EXTRUDE, TKTOOL_RIB, TKTOOL_HOT_FORMED_STEEL, TKTOOL_COLD_FORMED_STEEL,
                        TKTOOL_BEARINGS)
