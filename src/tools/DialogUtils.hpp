// DialogUtils: settings of the host's twelve add-on tools' dialogs.  It
// remembers where each tool's dialog was last placed, finds the class
// identifier of each tool's automation class, and tells which tool created a
// shape.
//
// Positions live per tool under the user key
//   HKEY_CURRENT_USER\Software\Tessark\<product name>\<settings subkey>
// with the machine key
//   HKEY_LOCAL_MACHINE\Software\Tessark\New User Settings\<product name>\<settings subkey>
// as the defaults a new user starts from; values "PosX" and "PosY", text,
// in the screen units of the host's forms.
//
// Dialog identifiers outside 1 to 12 name no tool, so they have no settings
// subkey and no class: GetStartPosition answers (0, 0), SetStartPosition
// writes nothing, GetCLSID answers "" with the status 2 (not found), and none
// of them touches the registry.  (Reading or writing the bare product key
// instead would mix one tool's settings into the product's own.)
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class DialogUtils final : public Dispatch<DialogUtils> {
 public:
  static constexpr std::string_view kClassName = "DialogUtils";
  static void Describe(ClassBuilder<DialogUtils>& b);

  // The remembered position: the user's "PosX"; when it is there, the
  // user's "PosY", else the machine's, else "0"; when the user has no
  // "PosX", both from the machine key, each "0" when missing.  The texts
  // are read as numbers by their numeric prefix and rounded (6 beyond a
  // Long).  A position beyond the screen (X above its width or Y above its
  // height) gives (0, 0); one exactly at the screen's size is kept.
  void GetStartPosition(std::int32_t intDialog, std::int32_t& lngXPos, std::int32_t& lngYPos);
  // Writes "PosX" and "PosY" to the user key (created when needed) only,
  // as text without a terminating NUL, as every registry write of the
  // library does; GetStartPosition reads such a text back without its last
  // character (300 comes back as 30), which the tools have always lived with.
  void SetStartPosition(std::int32_t intDialog, std::int32_t lngXPos, std::int32_t lngYPos);
  // The page the scene viewer shows (see GetCLSID).
  void SetPage(Ref<Object> page) { page_ = std::move(page); }
  // The class identifier of a tool's class, lngError receiving the registry
  // status (0 found).  intDialog 707 with lngError 808 on entry looks
  // nothing up: it shows the scene viewer for the page last given to Page
  // (91 when none was given) and answers "".
  std::string GetCLSID(std::int32_t intDialog, std::int32_t& lngError);
  // The default value of HKEY_CLASSES_ROOT\<Class>\Clsid ("" on failure).
  std::string GetCLSIDOfClass(std::string Class, std::int32_t& lngError);
  // The tool whose class identifier a shape's component 43 holds in its
  // variable 1 (compared without regard to case); TKTOOL_NULL when the
  // shape has no such component or no tool matches.
  std::int32_t QueryTool(Ref<Object> objShape);

  // "Tool Settings\Assembly" ... ; "" outside 1 to 12.
  static std::string_view SettingsSubkey(std::int32_t dialog) noexcept;
  // "TessarkAOCA.Assembly" ... ; "" outside 1 to 12.
  static std::string_view ToolClass(std::int32_t dialog) noexcept;
  static std::string UserKey(std::int32_t dialog);
  static std::string MachineKey(std::int32_t dialog);

 private:
  InstanceRegistration registration_;
  Ref<Object> page_;
};

}  // namespace TessarkAO
