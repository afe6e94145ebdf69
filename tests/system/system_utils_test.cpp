// TKSystemUtils and the Registry module, called late-bound as the library's
// callers call them.
#include <fstream>

#include "SystemTestSupport.hpp"
#include "automation/Catalogue.hpp"
#include "frame/Localizer.hpp"
#include "system/Registry.hpp"
#include "system/SystemFont.hpp"
#include "system/TKSystemUtils.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

class SystemUtilsTest : public SystemTest {
 protected:
  Ref<Object> sys_ = CreateObject("TessarkAO.TKSystemUtils");
};

TEST_F(SystemUtilsTest, MapRegistryRoot) {
  EXPECT_EQ(Registry::MapRegistryRoot(1), static_cast<std::int32_t>(0x80000000u));
  EXPECT_EQ(Registry::MapRegistryRoot(2), static_cast<std::int32_t>(0x80000002u));
  EXPECT_EQ(Registry::MapRegistryRoot(3), static_cast<std::int32_t>(0x80000001u));
  for (std::int32_t other : {0, 4, -1, static_cast<std::int32_t>(0x80000001u)}) EXPECT_EQ(Registry::MapRegistryRoot(other), 0) << other;
}

TEST_F(SystemUtilsTest, ReadRegistryStringValue) {
  Import("[HKEY_CURRENT_USER\\Software\\T]\n"
         "\"Padded\"=\"  x  \"\n"
         "\"Plain\"=\"TESSARK\"\n"
         "\"Empty\"=\"\"\n"
         "\"Number\"=dword:ffffffff\n"
         "\"Binary\"=hex:01,02\n"
         "\"Bare\"=hex(1):61,62,63\n"
         "\"Nothing\"=hex(1):\n"
         "@=\"the default\"\n");
  struct Row {
    std::int32_t root;
    const char* key;
    const char* name;
    std::int32_t status;
    const char* text;
  } rows[] = {
      {3, "software\\t", "Padded", 0, "x"},
      {3, "software\\t", "plain", 0, "TESSARK"},
      {3, "software\\t", "Empty", 0, ""},
      {3, "software\\t", "Number", 0, "-1"},  // a number reads as its decimal text
      {3, "software\\t", "Binary", -1, ""},   // another type: -1
      {3, "software\\t", "Bare", 0, "ab"},    // stored without its NUL: read as size - 1 characters
      {3, "software\\t", "Nothing", 0, ""},
      {3, "software\\t", "", 0, "the default"},
      {3, "software\\t", "Missing", 2, ""},
      {3, "Software\\None", "Plain", 2, ""},
      {0, "Software\\T", "Plain", 6, ""},  // an unknown root number maps to handle 0: invalid handle
  };
  for (const Row& r : rows) {
    auto c = Method(sys_, "ReadRegistryStringValue", {r.root, r.key, r.name, "previous"});
    EXPECT_EQ(ToLong(c.result), r.status) << r.key << " " << r.name;
    EXPECT_EQ(c.args[3].AsString(), r.text) << r.key << " " << r.name;  // written even when the read fails
  }
  // ReadRegistryValue takes the root handle as it stands.
  auto c =
      Method(sys_, "ReadRegistryValue", {static_cast<std::int32_t>(0x80000001u), "Software\\T", "Plain", 99});
  EXPECT_EQ(c.result.AsString(), "TESSARK");
  EXPECT_EQ(c.args[3].AsLong(), 0);
  c = Method(sys_, "ReadRegistryValue", {3, "Software\\T", "Plain", 99});
  EXPECT_EQ(c.args[3].AsLong(), 6);
}

TEST_F(SystemUtilsTest, ReadRegistryLongValue) {
  Import("[HKEY_LOCAL_MACHINE\\Software\\T]\n"
         "\"Text12\"=\"12\"\n"
         "\"Dword\"=dword:0000002a\n"
         "\"Abc\"=\"abc\"\n"
         "\"Blank\"=\"   \"\n"
         "\"Huge\"=\"99999999999\"\n"
         "\"Binary\"=hex:01\n");
  // Every failing read, of whatever kind (root 0: an invalid handle), is reported as 1.
  struct Row {
    std::int32_t root;
    const char* name;
    std::int32_t status;
    std::int32_t value;
  } rows[] = {{2, "Text12", 0, 12}, {2, "Dword", 0, 42},  {2, "Abc", 1, 77},     {2, "Blank", 1, 77},
              {2, "Huge", 1, 77},   {2, "Binary", 1, 77}, {2, "Missing", 1, 77}, {0, "Text12", 1, 77}};
  for (const Row& r : rows) {
    auto c = Method(sys_, "ReadRegistryLongValue", {r.root, "Software\\T", r.name, 77});
    EXPECT_EQ(ToLong(c.result), r.status) << r.root << " " << r.name;
    EXPECT_EQ(ToLong(c.args[3]), r.value) << r.root << " " << r.name;
  }
}

TEST_F(SystemUtilsTest, WritesReportSuccessWhateverHappens) {
  EXPECT_EQ(ToLong(Method(sys_, "SetRegistryStringValue", {3, "Software\\W", "S", "  hello"}).result), 0);
  EXPECT_EQ(ToLong(Method(sys_, "SetRegistryLongValue", {2, "Software\\W", "N", -5}).result), 0);
  // Root 0 writes nothing and still reports 0.
  EXPECT_EQ(ToLong(Method(sys_, "SetRegistryStringValue", {0, "Software\\W", "S", "x"}).result), 0);

  // The string went in counted without its NUL and was stored with the NUL
  // after it, as NT does; the number as a 4-byte dword.
  RegistryStore& reg = GetRegistry();
  RegHandle h = 0;
  ASSERT_EQ(reg.OpenKey(kHkeyCurrentUser, "Software\\W", RegAccess::Read, h), 0);
  std::uint32_t type = 0, size = 0;
  ASSERT_EQ(reg.QueryValue(h, "S", &type, nullptr, &size), 0);
  EXPECT_EQ(type, RegType::String);
  EXPECT_EQ(size, 8u);
  ASSERT_EQ(reg.OpenKey(kHkeyLocalMachine, "Software\\W", RegAccess::Read, h), 0);
  std::int32_t n = 0;
  size = 4;
  ASSERT_EQ(reg.QueryValue(h, "N", &type, reinterpret_cast<std::uint8_t*>(&n), &size), 0);
  EXPECT_EQ(type, RegType::Dword);
  EXPECT_EQ(n, -5);

  // Read back through the library: the number whole, the string whole and
  // trimmed.
  auto c = Method(sys_, "ReadRegistryLongValue", {2, "Software\\W", "N", 0});
  EXPECT_EQ(ToLong(c.args[3]), -5);
  c = Method(sys_, "ReadRegistryStringValue", {3, "Software\\W", "S", ""});
  EXPECT_EQ(c.args[3].AsString(), "hello");

  // Other value types write nothing.
  Registry::WriteRegistryEntry(Registry::MapRegistryRoot(3), "Software\\W", 3, "Bin", Variant("x"));
  EXPECT_EQ(reg.QueryValue(h, "Bin", nullptr, nullptr, nullptr), WinError::FileNotFound);
}

TEST_F(SystemUtilsTest, UserNameAndInitials) {
  EXPECT_EQ(InitialsOf("john  paul--jones"), "jpj");
  EXPECT_EQ(InitialsOf("mary-ann smith"), "mas");
  EXPECT_EQ(InitialsOf(""), "");
  EXPECT_EQ(InitialsOf(" -- "), "");
  EXPECT_EQ(InitialsOf("Élise 2nd-Ünal"), "É2Ü");

  // The login name comes from the platform (its fallbacks are tested there).
  const std::string name = Prop(sys_, "UserName").AsString();
  EXPECT_FALSE(name.empty());
  EXPECT_EQ(Prop(sys_, "UserInitials").AsString(), InitialsOf(name));
}

TEST_F(SystemUtilsTest, OperatingSystem) {
  struct Row {
    std::uint32_t platformId, major, minor;
    std::int32_t os;
  } rows[] = {{2, 4, 0, TKOS_WindowsNT4}, {2, 10, 0, TKOS_WindowsNT4}, {1, 4, 0, TKOS_Windows95},
              {1, 4, 10, TKOS_Windows98}, {1, 4, 90, TKOS_Windows98}, {0, 3, 0, TKOS_Windows31},
              {3, 4, 0, TKOS_Unknown}};
  for (const Row& row : rows) {
    OsVersionRecord r;
    r.platformId = row.platformId, r.major = row.major, r.minor = row.minor;
    EXPECT_EQ(OperatingSystemOf(&r), row.os) << row.platformId << " " << row.major << "." << row.minor;
  }
  EXPECT_EQ(OperatingSystemOf(nullptr), TKOS_Unknown);
  // No version record exists on this platform.
  EXPECT_EQ(ToLong(Prop(sys_, "OperatingSystem")), TKOS_Unknown);
}

// Thin layers over the platform (tested there): checked for their wiring.
TEST_F(SystemUtilsTest, FilesLocaleAndEnvironment) {
  std::ofstream(dir_ / "there.dll") << "x";
  EXPECT_TRUE(ToBoolean(Method(sys_, "DoesFileExist", {dir_ / "there.dll"}).result));
  EXPECT_FALSE(ToBoolean(Method(sys_, "DoesFileExist", {dir_ / "absent.dll"}).result));
  ScopedEnv all("LC_ALL", "ja_JP.UTF-8"), v("TK_SYSTEM_TEST", "a value");
  EXPECT_EQ(ToLong(Prop(sys_, "SystemDefaultLCID")), 1041);
  EXPECT_EQ(Prop(sys_, "EnvironmentVariable", {"TK_SYSTEM_TEST"}).AsString(), "a value");
  EXPECT_EQ(Prop(sys_, "EnvironmentVariable", {""}).AsString(), "");
}

TEST_F(SystemUtilsTest, DefaultSystemFont) {
  Variant font = Prop(sys_, "DefaultSystemFont");
  ASSERT_TRUE(font.IsObject());
  EXPECT_EQ(font.AsObject()->TypeName(), "StdFont");
  GuiFontMetrics metrics;
  ASSERT_TRUE(GetDefaultGuiFont(metrics));
  EXPECT_EQ(font.Get("Name").AsString(), metrics.faceName);
  // Points from the pixel height and the resolution, to four decimals.
  EXPECT_NEAR(ToDouble(font.Get("Size")), metrics.height * 72.0 / metrics.pixelsPerInch, 0.00005);
  EXPECT_EQ(font.Get("Size").Type(), VarType::Currency);
  EXPECT_EQ(ToLong(font.Get("Weight")), metrics.weight);
  EXPECT_EQ(ToLong(font.Get("Charset")), 0);
  for (const char* flag : {"Italic", "Underline", "Strikethrough"}) EXPECT_FALSE(ToBoolean(font.Get(flag))) << flag;

  // Bold and weight go together; sizes must be positive.
  font.Let("Bold", true);
  EXPECT_EQ(ToLong(font.Get("Weight")), 700);
  font.Let("Weight", std::int16_t{400});
  EXPECT_FALSE(ToBoolean(font.Get("Bold")));
  EXPECT_EQ(ErrorOf([&] { font.Let("Size", 0.0); }), 380);
  EXPECT_EQ(ErrorOf([&] { font.Let("Weight", std::int16_t{1001}); }), 380);
  // Each call hands out a new object.
  EXPECT_NE(Prop(sys_, "DefaultSystemFont").AsObject().get(), font.AsObject().get());
}

// A form whose Controls collection (counted from 0) holds controls with a
// font each, except for one control that has none.
struct FakeForm {
  Ref<FakeObject> form = MakeRef<FakeObject>();
  Ref<FakeObject> controls = MakeRef<FakeObject>();
  std::vector<Ref<SystemFont>> fonts;
  std::vector<Ref<FakeObject>> items;

  FakeForm() {
    for (int i = 0; i < 3; ++i) {
      items.push_back(MakeRef<FakeObject>());
      if (i == 1) continue;
      fonts.push_back(MakeRef<SystemFont>());
      fonts.back()->LetName("Old");
      fonts.back()->LetItalic(true);
      fonts.back()->LetWeight(900);
      items.back()->Value("Font", Variant(fonts.back()));
    }
    controls->Value("Count", 3).On("Item", [this](CallKind, std::span<Variant> a) {
      const std::int32_t i = ToLong(a[0]);
      if (i < 0 || i >= static_cast<std::int32_t>(items.size())) Raise(Err::SubscriptOutOfRange);
      return Variant(items[static_cast<std::size_t>(i)]);
    });
    form->Value("Controls", Variant(controls));
  }
};

TEST_F(SystemUtilsTest, SetDefaultSystemFontAppliesTheFontToEveryControl) {
  GuiFontMetrics metrics;
  ASSERT_TRUE(GetDefaultGuiFont(metrics));
  for (bool keep : {false, true}) {
    FakeForm f;
    EXPECT_EQ(ErrorOf([&] { Method(sys_, "SetDefaultSystemFont", {Variant(f.form), keep}); }), 0);
    ASSERT_EQ(f.fonts.size(), 2u);
    for (const auto& font : f.fonts) {
      EXPECT_EQ(font->GetName(), metrics.faceName);
      EXPECT_EQ(font->GetItalic(), keep) << "styles survive only with bKeepProperties";
      EXPECT_EQ(font->GetWeight(), keep ? 900 : metrics.weight);
    }
  }
  // Anything but a form: nothing happens, nothing is raised.
  EXPECT_EQ(ErrorOf([&] { Method(sys_, "SetDefaultSystemFont", {Variant::Nothing(), true}); }), 0);
  auto plain = MakeRef<FakeObject>();
  EXPECT_EQ(ErrorOf([&] { Method(sys_, "SetDefaultSystemFont", {Variant(plain), false}); }), 0);
}

TEST_F(SystemUtilsTest, SetLocaleDllOnAnEnglishSystem) {
  auto c = Method(sys_, "SetLocaleDLL", {"tktools.dll", "TessarkAO"});
  ASSERT_TRUE(c.result.IsObject());
  EXPECT_TRUE(RefCast<Localizer>(c.result.AsObject()));
  EXPECT_EQ(c.args[0].AsString(), "tktools.dll");  // untouched on an English system
  EXPECT_EQ(ToString(c.result.Call("LoadString", 101)), "millimeters");
  // The next call creates a new localizer in the same field.
  auto again = Method(sys_, "SetLocaleDLL", {"tktools.dll", "TessarkAO"});
  EXPECT_NE(again.result.AsObject().get(), c.result.AsObject().get());
  // An unknown project: the creation fails and the field keeps the last one.
  auto other = Method(sys_, "SetLocaleDLL", {"tktools.dll", "NoSuchProject"});
  EXPECT_EQ(other.result.AsObject().get(), again.result.AsObject().get());
  // A fresh object with nothing to keep returns Nothing.
  auto fresh = CreateObject("TessarkAO.TKSystemUtils");
  EXPECT_TRUE(Method(fresh, "SetLocaleDLL", {"tktools.dll", "NoSuchProject"}).result.IsNothing());
}

// The satellite rules on other systems: the name written back into the
// caller's variable and the localizer created.
TEST_F(SystemUtilsTest, SetLocaleDllOnOtherSystems) {
  // The common binaries folder holds the Japanese satellite.
  const std::string bin = dir_ / "bin";
  std::filesystem::create_directories(bin);
  std::ofstream(bin + "/tktooJP.dll") << "satellite";
  Import("[HKEY_CURRENT_USER\\SOFTWARE\\Tessark\\TESSARK 6.0\\Directories]\n\"CommonBinaries\"=\"" + bin + "\"\n");

  struct Row {
    const char* locale;
    const char* dll;
    const char* renamed;
  } rows[] = {
      {"de_DE.UTF-8", "tktools.dll", "tktoo.dll"},
      {"ja_JP.UTF-8", "tktools.dll", "tktooJP.dll"},
      {"ja_JP.UTF-8", "ab.dll", "JP.dll"},          // nothing left in front of the period
      {"ja_JP.UTF-8", "a.dll", "a.dllJP.dll"},      // a period before the third character: kept whole
      {"ja_JP.UTF-8", "tk", "tkJP.dll"},            // no period at all: kept whole
      {"fr_FR", "abc.dll", "a.dll"},
  };
  for (const Row& r : rows) {
    ScopedEnv all("LC_ALL", r.locale);
    auto c = Method(CreateObject("TessarkAO.TKSystemUtils"), "SetLocaleDLL", {r.dll, "TessarkAO"});
    EXPECT_EQ(c.args[0].AsString(), r.renamed) << r.locale << " " << r.dll;
  }

  // Japanese with the satellite present: its localizer ProgID does not exist
  // here, so nothing is created and the field stays empty.
  ScopedEnv ja("LC_ALL", "ja_JP.UTF-8");
  auto c = Method(CreateObject("TessarkAO.TKSystemUtils"), "SetLocaleDLL", {"tktools.dll", "TessarkAO"});
  EXPECT_TRUE(c.result.IsNothing());
  // Where a satellite's localizer can be created, it is.
  RegisterForeignProgId("TessarkAO_JP.Localizer", [] { return Ref<Object>(MakeRef<FakeObject>()); });
  c = Method(CreateObject("TessarkAO.TKSystemUtils"), "SetLocaleDLL", {"tktools.dll", "TessarkAO"});
  EXPECT_TRUE(RefCast<FakeObject>(c.result.AsObject()));
  RegisterForeignProgId("TessarkAO_JP.Localizer", nullptr);
  // Without the satellite file the library's own localizer serves.
  std::filesystem::remove(bin + "/tktooJP.dll");
  c = Method(CreateObject("TessarkAO.TKSystemUtils"), "SetLocaleDLL", {"tktools.dll", "TessarkAO"});
  EXPECT_TRUE(RefCast<Localizer>(c.result.AsObject()));
  // Another language never asks for a satellite.
  ScopedEnv de("LC_ALL", "de_DE");
  c = Method(CreateObject("TessarkAO.TKSystemUtils"), "SetLocaleDLL", {"tktools.dll", "TessarkAO"});
  EXPECT_TRUE(RefCast<Localizer>(c.result.AsObject()));
}

TEST_F(SystemUtilsTest, ADamagedStoreMakesReadsFailQuietly) {
  std::ofstream(dir_ / "bad.sqlite3") << "definitely not an SQLite database file at all";
  SetRegistry(OpenRegistryStore(dir_ / "bad.sqlite3"));
  auto c = Method(sys_, "ReadRegistryStringValue", {3, "Software\\T", "x", "previous"});
  EXPECT_EQ(ToLong(c.result), WinError::RegistryCorrupt);
  EXPECT_EQ(ToLong(Method(sys_, "SetRegistryStringValue", {3, "Software\\T", "x", "v"}).result), 0);
  EXPECT_NE(GetRegistry().LastError().find("corrupt"), std::string::npos);
}

}  // namespace
