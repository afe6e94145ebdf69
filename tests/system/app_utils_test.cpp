// AppUtils with the Application and Dialog procedures: key names, the
// preference fallbacks, defaults on an empty registry, special folders.
#include "SystemTestSupport.hpp"
#include "automation/Catalogue.hpp"
#include "system/AppUtils.hpp"
#include "system/Application.hpp"
#include "system/Dialog.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

class AppUtilsTest : public SystemTest {
 protected:
  Ref<Object> app_ = CreateObject("TessarkAO.AppUtils");
  std::string Text(std::string_view name) { return Prop(app_, name).AsString(); }
  // A preference read as "found: value" or "missing: value" (what the
  // caller's variable holds afterwards).
  std::string Read(std::string_view method, std::string_view name, Variant previous = "") {
    const CallResult c = Method(app_, method, {std::string(name), previous});
    return (ToBoolean(c.result) ? "found: " : "missing: ") + ToString(c.args[1]);
  }
};

TEST_F(AppUtilsTest, EmptyRegistryDefaults) {
  EXPECT_EQ(Text("ProductInRegistryCurrentUser"), "SOFTWARE\\Tessark\\TESSARK 6.0");
  EXPECT_EQ(Text("ProductInRegistryLocalMachine"), "SOFTWARE\\Tessark\\New User Settings\\TESSARK 6.0");
  EXPECT_EQ(Text("CommonInRegistryCurrentUser"), "SOFTWARE\\Tessark\\VelloraSuite");
  EXPECT_EQ(Text("CommonInRegistryLocalMachine"), "SOFTWARE\\Tessark\\VelloraSuite");
  const Variant version = Prop(app_, "ApplicationVersion");
  EXPECT_EQ(version.Type(), VarType::Double);
  EXPECT_EQ(version.AsDouble(), 6.0);
  EXPECT_EQ(Text("ProgID"), "TESSARK.Application");
  EXPECT_EQ(Text("Path"), "v:\\bin.32");
  EXPECT_EQ(Text("CommonBinariesPath"), "v:\\bin.32");
  EXPECT_EQ(Dialog::ReadAddOnPreference("Anything", "fallback"), "fallback");
  EXPECT_EQ(Dialog::ReadProductMachineValue("Anything", "fallback"), "fallback");
  // A failed string read still writes its "".
  EXPECT_EQ(Read("GetRegistryPreferenceString", "Install", "previous"), "missing: ");
  EXPECT_EQ(Read("GetRegistryPreferenceLong", "Count", 5), "missing: 5");
}

TEST_F(AppUtilsTest, ProductNamesFollowTheRegistry) {
  Import("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessark\\VelloraSuite\\AddOns]\n"
         "\"LastRunProductName\"=\"TESSARK Pro\"\n"
         "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessark\\TESSARK Pro]\n"
         "\"ProductVersion\"=\"7.5\"\n"
         "\"ProductProgID\"=\"TESSARKPRO.Application\"\n");
  EXPECT_EQ(Text("ProductInRegistryCurrentUser"), "SOFTWARE\\Tessark\\TESSARK Pro 7.5");
  EXPECT_EQ(Text("ProductInRegistryLocalMachine"), "SOFTWARE\\Tessark\\New User Settings\\TESSARK Pro 7.5");
  EXPECT_EQ(ToDouble(Prop(app_, "ApplicationVersion")), 7.5);
  EXPECT_EQ(Text("ProgID"), "TESSARKPRO.Application");
  // The current user's product name wins over the machine's; nothing is cached.
  Import("[HKEY_CURRENT_USER\\SOFTWARE\\Tessark\\VelloraSuite\\AddOns]\n\"LastRunProductName\"=\"OTHER\"\n");
  EXPECT_EQ(Text("ProductInRegistryCurrentUser"), "SOFTWARE\\Tessark\\OTHER 6.0");
  EXPECT_EQ(Text("ProgID"), "TESSARK.Application");

  // A version that is not a number raises a type mismatch.
  Import("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessark\\OTHER]\n\"ProductVersion\"=\"six\"\n");
  EXPECT_EQ(ErrorOf([&] { Prop(app_, "ApplicationVersion"); }), 13);
  // The version is read with the system locale's conversion.
  Import("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessark\\OTHER]\n\"ProductVersion\"=\" 8.25 \"\n");
  EXPECT_EQ(ToDouble(Prop(app_, "ApplicationVersion")), 8.25);
}

TEST_F(AppUtilsTest, SectionsDoNotNest) {
  EXPECT_TRUE(ToBoolean(Method(app_, "RegistryPreferenceBegin", {"Directories"}).result));
  EXPECT_FALSE(ToBoolean(Method(app_, "RegistryPreferenceBegin", {"AddOns"}).result));
  Import("[HKEY_CURRENT_USER\\SOFTWARE\\Tessark\\TESSARK 6.0\\Directories]\n\"Install\"=\"/opt/tessark\"\n"
         "[HKEY_CURRENT_USER\\SOFTWARE\\Tessark\\TESSARK 6.0\\AddOns]\n\"Install\"=\"wrong\"\n");
  EXPECT_EQ(Read("GetRegistryPreferenceString", "Install"), "found: /opt/tessark")
      << "the first section stays in force";
  Method(app_, "RegistryPreferenceEnd");
  Method(app_, "RegistryPreferenceEnd");  // never fails
  EXPECT_TRUE(ToBoolean(Method(app_, "RegistryPreferenceBegin", {"AddOns"}).result));
  EXPECT_EQ(Read("GetRegistryPreferenceString", "Install"), "found: wrong");
}

TEST_F(AppUtilsTest, PreferencesFallBackFromUserToMachine) {
  Import("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessark\\New User Settings\\TESSARK 6.0\\Tool]\n"
         "\"MachineOnly\"=\"machine\"\n\"Both\"=\"machine\"\n\"Count\"=dword:00000007\n"
         "[HKEY_CURRENT_USER\\SOFTWARE\\Tessark\\TESSARK 6.0\\Tool]\n"
         "\"Both\"=\"user\"\n\"Count\"=\"nine\"\n"
         "[HKEY_CURRENT_USER\\SOFTWARE\\Tessark\\TESSARK 6.0]\n\"NoSection\"=\"top\"\n"
         "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessark\\VelloraSuite\\AddOns]\n\"Common\"=\"machine\"\n"
         "\"CommonCount\"=\"12\"\n");
  Method(app_, "RegistryPreferenceBegin", {"Tool"});
  EXPECT_EQ(Read("GetRegistryPreferenceString", "MachineOnly"), "found: machine");
  EXPECT_EQ(Read("GetRegistryPreferenceString", "Both"), "found: user");
  // A user value that is not a number gives way to the machine's number.
  EXPECT_EQ(Read("GetRegistryPreferenceLong", "Count", 0), "found: 7");
  Method(app_, "RegistryPreferenceEnd");

  // With no section open the key ends in a backslash and still names the product key.
  EXPECT_EQ(Read("GetRegistryPreferenceString", "NoSection"), "found: top");

  // The common forms read the family's key under both roots.
  Method(app_, "RegistryPreferenceBegin", {"AddOns"});
  EXPECT_EQ(Read("GetCommonRegistryPreferenceString", "Common"), "found: machine");
  EXPECT_EQ(Read("GetCommonRegistryPreferenceLong", "CommonCount", 0), "found: 12");
  EXPECT_EQ(Dialog::ReadAddOnPreference("Common", "x"), "machine");
}

TEST_F(AppUtilsTest, InstallAndBinariesFolders) {
  Import("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tessark\\New User Settings\\TESSARK 6.0\\Directories]\n"
         "\"Working\"=\"/work/tessark\"\n\"CommonBinaries\"=\"/opt/common\"\n");
  EXPECT_EQ(Text("Path"), "/work/tessark");
  EXPECT_EQ(Text("CommonBinariesPath"), "/opt/common");
  Import("[HKEY_CURRENT_USER\\SOFTWARE\\Tessark\\TESSARK 6.0\\Directories]\n\"Install\"=\"/opt/tessark\"\n");
  EXPECT_EQ(Application::Path(), "/opt/tessark");
}

TEST_F(AppUtilsTest, SpecialFolders) {
  ScopedEnv home("HOME", dir_.Path()), cfg("XDG_CONFIG_HOME", std::nullopt), data("XDG_DATA_DIRS", "/srv/share");
  EXPECT_EQ(Text("ApplicationDataFolder"), dir_ / ".config");
  EXPECT_EQ(Text("CommonApplicationDataFolder"), "/srv/share");
  EXPECT_EQ(Text("PersonalFolder"), dir_.Path());
  ScopedEnv noHome("HOME", std::nullopt), cfg2("XDG_CONFIG_HOME", "/" + std::string(300, 'c'));
  EXPECT_EQ(Text("ApplicationDataFolder"), "") << "a failing call gives an empty string";
}

}  // namespace
