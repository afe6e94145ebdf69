#include "system/TKSystemUtils.hpp"

#include <exception>

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "automation/Enumerations.hpp"
#include "platform/Registry.hpp"
#include "system/Application.hpp"
#include "system/SystemFont.hpp"

namespace TessarkAO {

namespace {

// The members that trap every error run each step through this: a step that
// fails is skipped and the next one runs, as the member promises.
template <class F>
void Step(F&& f) noexcept {
  try {
    f();
  } catch (const std::exception&) {
  }
}

}  // namespace

TKOperatingSystems OperatingSystemOf(const OsVersionRecord* record) noexcept {
  if (!record) return TKOS_Unknown;
  switch (record->platformId) {
    case 2: return TKOS_WindowsNT4;
    case 1: return record->minor == 0 ? TKOS_Windows95 : TKOS_Windows98;
    case 0: return TKOS_Windows31;
    default: return TKOS_Unknown;
  }
}

std::string InitialsOf(std::string_view name) {
  const std::u16string units = ToUtf16(name);
  std::u16string initials;
  bool wordStart = true;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t c = units[i];
    if (c == u' ' || c == u'-') {
      wordStart = true;
    } else if (wordStart) {
      initials.push_back(c);
      // A character outside the basic plane is one character of the name.
      if (c >= 0xD800 && c < 0xDC00 && i + 1 < units.size()) initials.push_back(units[i + 1]);
      wordStart = false;
    }
  }
  return ToUtf8(initials);
}

void TKSystemUtils::Describe(ClassBuilder<TKSystemUtils>& b) {
  b.Method<&TKSystemUtils::ReadRegistryValue>(
       "ReadRegistryValue", Names{"lKey", "sSubKey", "sValueName", "lError"}, Out<4>{},
       Doc{"The value sValueName of key sSubKey under the root handle lKey, as text; lError receives the "
           "registry status (0 success). Never raises."})
      .Method<&TKSystemUtils::SetRegistryStringValue>(
          "SetRegistryStringValue", Names{"lRootKey", "sSubKey", "sValueName", "sValue"},
          Doc{"Writes a string value under the root lRootKey (TKRegistryKeys); always returns 0."})
      .Method<&TKSystemUtils::ReadRegistryStringValue>(
          "ReadRegistryStringValue", Names{"lRootKey", "sSubKey", "sValueName", "pValue"}, Out<4>{},
          Doc{"Reads a string value into pValue; returns the registry status (0 success)."})
      .Method<&TKSystemUtils::DoesFileExist>("DoesFileExist", Names{"Filename"},
                                             Doc{"Whether the file exists."})
      .Method<&TKSystemUtils::SetLocaleDLL>(
          "SetLocaleDLL", Names{"strMainDllName", "strProjectName"}, Out<1>{},
          Doc{"The localizer of the system's language, made from the main library's satellite; Nothing when "
              "none could be created. The caller's strMainDllName receives the satellite's name. Never "
              "raises."})
      .Get<&TKSystemUtils::SystemDefaultLCID>(
          "SystemDefaultLCID",
          Doc{"The system's default locale identifier (1033 English, 1041 Japanese, ...)."})
      .Get<&TKSystemUtils::DefaultSystemFont>(
          "DefaultSystemFont", Doc{"The system's default font as a font object. Never raises."})
      .Method<&TKSystemUtils::SetDefaultSystemFont>(
          "SetDefaultSystemFont", Names{"objForm", "bKeepProperties"},
          Doc{"Applies the default system font to the controls of objForm (with bKeepProperties, keeping "
              "size and style). Never raises."})
      .Method<&TKSystemUtils::ReadRegistryLongValue>(
          "ReadRegistryLongValue", Names{"lRootKey", "sSubKey", "sValueName", "pValue"}, Out<4>{},
          Doc{"Reads a number value into pValue; returns 0 for a number (or numeric text), else 1 with "
              "pValue untouched."})
      .Method<&TKSystemUtils::SetRegistryLongValue>(
          "SetRegistryLongValue", Names{"lRootKey", "sSubKey", "sValueName", "pValue"},
          Doc{"Writes a number value under the root lRootKey; always returns 0."})
      .Get<&TKSystemUtils::OperatingSystem>(
          "OperatingSystem", Doc{"The operating system (TKOperatingSystems); TKOS_Unknown off Windows."})
      .Get<&TKSystemUtils::UserName>("UserName",
                                     Doc{"The login name of the user; \"\" when it cannot be had."})
      .Get<&TKSystemUtils::UserInitials>(
          "UserInitials", Doc{"The user's initials, made from UserName; \"\" when it cannot be had."})
      .Get<&TKSystemUtils::EnvironmentVariable>(
          "EnvironmentVariable", Names{"Variable"},
          Doc{"The value of the environment variable Variable; \"\" when it is not set. Never raises."});
}

std::string TKSystemUtils::ReadRegistryValue(std::int32_t lKey, std::string sSubKey, std::string sValueName,
                                             std::int32_t& lError) {
  // lKey is a root handle as it stands (not one of the library's root numbers).
  return Registry::ReadRegistryEntry(lKey, sSubKey, sValueName, lError);
}

std::int32_t TKSystemUtils::SetRegistryStringValue(std::int32_t lRootKey, std::string sSubKey,
                                                   std::string sValueName, std::string sValue) {
  Registry::WriteRegistryEntry(Registry::MapRegistryRoot(lRootKey), sSubKey, RegType::String, sValueName,
                               Variant(std::move(sValue)));
  return 0;
}

std::int32_t TKSystemUtils::ReadRegistryStringValue(std::int32_t lRootKey, std::string sSubKey,
                                                    std::string sValueName, std::string& pValue) {
  std::int32_t status = 0;
  // pValue receives the text read even when the read fails ("" then).
  pValue = Registry::ReadRegistryEntry(Registry::MapRegistryRoot(lRootKey), sSubKey, sValueName, status);
  return status;
}

bool TKSystemUtils::DoesFileExist(std::string Filename) { return FileExistenceError(Filename) == 0; }

Ref<Object> TKSystemUtils::SetLocaleDLL(std::string& strMainDllName, std::string strProjectName) {
  std::int32_t lcid = 0;
  Step([&] { lcid = SystemDefaultLCID(); });
  if (lcid != LCID_English) {
    // The satellite's name: the two characters in front of the period and
    // the period go, "JP" follows on a Japanese system, then ".dll"
    // ("tktools.dll" gives "tktooJP.dll" or "tktoo.dll").  A period before
    // the third character makes the truncation fail; it is skipped and the
    // name stays whole, and the suffixes are still appended.
    Step([&] {
      const std::u16string units = ToUtf16(strMainDllName);
      const std::size_t period = units.find(u'.');
      const std::int64_t keep =
          (period == std::u16string::npos ? 0 : static_cast<std::int64_t>(period) + 1) - 3;
      if (keep < 0) Raise(Err::InvalidCall);
      strMainDllName = ToUtf8(units.substr(0, static_cast<std::size_t>(keep)));
    });
    if (lcid == LCID_Japanese) strMainDllName += "JP";
    strMainDllName += ".dll";
  }
  std::string path;
  Step([&] { path = Application::CommonBinariesPath() + "\\" + strMainDllName; });
  if (!path.empty()) {
    // On an English system the test looks for the library itself and the
    // library's own localizer is created whatever it finds.
    std::string prefix;
    Step([&] {
      if (DoesFileExist(path) && lcid == LCID_Japanese)
        prefix = strProjectName + "_JP";
      else
        prefix = strProjectName;
    });
    // A satellite that cannot be created leaves the field as it was.
    Step([&] { localizer_ = CreateObject(prefix + ".Localizer"); });
  }
  return localizer_;
}

std::int32_t TKSystemUtils::SystemDefaultLCID() { return static_cast<std::int32_t>(GetSystemDefaultLcid()); }

Ref<Object> TKSystemUtils::DefaultSystemFont() {
  Ref<SystemFont> font = MakeRef<SystemFont>();
  GuiFontMetrics metrics;
  bool found = false;
  Step([&] { found = GetDefaultGuiFont(metrics); });
  if (found) {
    Step([&] { font->LetName(metrics.faceName); });
    // Points from the metrics' pixel height and the screen's pixels per inch.
    Step([&] {
      const double points = Checked::Div(Checked::Mul(metrics.height, 72.0), metrics.pixelsPerInch);
      font->LetSize(ToCurrency(Variant(points)));
    });
    Step([&] { font->LetCharset(static_cast<std::int16_t>(metrics.charset)); });
    Step([&] { font->LetWeight(static_cast<std::int16_t>(metrics.weight)); });
    font->LetItalic(metrics.italic);
    font->LetUnderline(metrics.underline);
    font->LetStrikethrough(metrics.strikeOut);
  }
  return font;
}

void TKSystemUtils::SetDefaultSystemFont(Ref<Object> objForm, bool bKeepProperties) {
  Ref<Object> font;
  Step([&] { font = DefaultSystemFont(); });
  if (!font) return;
  const Variant source(font);
  Variant controls;
  std::int32_t count = 0;
  Step([&] { controls = Variant(objForm).Get("Controls"); });
  Step([&] { count = ToLong(controls.Get("Count")); });
  // A form's Controls collection counts from 0.
  for (std::int32_t i = 0; i < count; ++i) {
    Variant control, target;
    Step([&] { control = controls.Call("Item", i); });
    Step([&] { target = control.Get("Font"); });
    // The face, size and character set always come from the default font;
    // with bKeepProperties the control keeps its own weight and styles.
    for (const char* property : {"Name", "Size", "Charset"})
      Step([&] { target.Let(property, source.Get(property)); });
    if (!bKeepProperties)
      for (const char* property : {"Weight", "Bold", "Italic", "Underline", "Strikethrough"})
        Step([&] { target.Let(property, source.Get(property)); });
  }
}

std::int32_t TKSystemUtils::ReadRegistryLongValue(std::int32_t lRootKey, std::string sSubKey,
                                                  std::string sValueName, std::int32_t& pValue) {
  std::int32_t status = 0;
  const std::string text =
      Registry::ReadRegistryEntry(Registry::MapRegistryRoot(lRootKey), sSubKey, sValueName, status);
  if (status != 0 || text.empty() || !IsNumeric(Variant(text))) return 1;
  // Numeric text beyond a Long's range is not a value either.
  try {
    pValue = ToLong(Variant(text));
  } catch (const std::exception&) {
    return 1;
  }
  return 0;
}

std::int32_t TKSystemUtils::SetRegistryLongValue(std::int32_t lRootKey, std::string sSubKey,
                                                 std::string sValueName, std::int32_t pValue) {
  Registry::WriteRegistryEntry(Registry::MapRegistryRoot(lRootKey), sSubKey, RegType::Dword, sValueName,
                               Variant(pValue));
  return 0;
}

std::int32_t TKSystemUtils::OperatingSystem() {
  OsVersionRecord record;
  return OperatingSystemOf(GetOsVersion(record) ? &record : nullptr);
}

std::string TKSystemUtils::UserName() {
  char buffer[256] = {};
  std::uint32_t length = 255;
  if (!GetLoginName(buffer, 255, length) || length < 1) return {};
  // The length counts the terminating NUL.
  return std::string(buffer, length - 1);
}

std::string TKSystemUtils::UserInitials() { return InitialsOf(UserName()); }

std::string TKSystemUtils::EnvironmentVariable(std::string Variable) {
  std::string value;
  Step([&] { value = GetEnvironment(Variable).value_or(std::string()); });
  return value;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSystemUtils)

// The enumerations of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKRegistryKeys, "TKSystemUtils", TKRegistry_HKEY_CLASSES_ROOT,
                        TKRegistry_HKEY_LOCAL_MACHINE, TKRegistry_HKEY_CURRENT_USER)
TK_REGISTER_ENUMERATION(TessarkAO::TKOperatingSystems, "TKSystemUtils", TKOS_Unknown, TKOS_Windows31,
                        TKOS_Windows95, TKOS_Windows98, TKOS_WindowsNT4)
TK_REGISTER_ENUMERATION(TessarkAO::TKSystemLCIDs, "TKSystemUtils", LCID_English, LCID_Japanese)
