// DialogUtils against a registry store seeded through a .reg import.
#include <gtest/gtest.h>

#include "ToolsTestSupport.hpp"
#include "automation/Catalogue.hpp"
#include "platform/Registry.hpp"
#include "refhost/RefHost.hpp"
#include "tools/DialogUtils.hpp"

using namespace TessarkAO;
using namespace ToolsTest;

namespace {

class DialogSettings : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::string path = (TempDir() / ("registry-" + std::to_string(++counter_) + ".sqlite3")).string();
    ::setenv("TESSARKAO_REGISTRY", path.c_str(), 1);
    SetRegistry(nullptr);
    ASSERT_EQ(GetRegistry().ImportRegText(R"(REGEDIT4

[HKEY_CURRENT_USER\Software\Tessark\TESSARK 6.0\Tool Settings\Assembly]
"PosX"="120"
"PosY"="340"

[HKEY_CURRENT_USER\Software\Tessark\TESSARK 6.0\Tool Settings\Pattern]
"PosX"="  77.5xyz"

[HKEY_LOCAL_MACHINE\Software\Tessark\New User Settings\TESSARK 6.0\Tool Settings\Pattern]
"PosX"="1"
"PosY"="2&"

[HKEY_LOCAL_MACHINE\Software\Tessark\New User Settings\TESSARK 6.0\Tool Settings\Helix]
"PosY"="9"

[HKEY_CURRENT_USER\Software\Tessark\TESSARK 6.0\Tool Settings\Spur Gear]
"PosX"="15361"
"PosY"="10"

[HKEY_CURRENT_USER\Software\Tessark\TESSARK 6.0\Tool Settings\Extrude]
"PosX"="15360"
"PosY"="11520"

[HKEY_CLASSES_ROOT\TessarkAOCE.TKExtrude\Clsid]
@="{0D1C3A2B-1111-4A4A-8888-ABCDEF012345}"

[HKEY_CLASSES_ROOT\TessarkAOBearing.Bearing\Clsid]
@="{99999999-2222-4B4B-9999-ABCDEF012345}"
)"),
              0)
        << GetRegistry().LastError();
    Ui().Clear();
    Ui().SetScreenSize(15360, 11520);
    utils_ = CreateObject("TessarkAO.DialogUtils");
  }
  void TearDown() override {
    utils_.reset();
    SetRegistry(nullptr);
    Ui().Clear();
  }
  std::pair<std::int32_t, std::int32_t> Position(std::int32_t dialog) {
    Variant args[] = {Variant(dialog), Variant(std::int32_t{-1}), Variant(std::int32_t{-1})};
    utils_->Invoke("GetStartPosition", CallKind::Method, args);
    return {ToLong(args[1]), ToLong(args[2])};
  }
  std::pair<std::string, std::int32_t> Clsid(std::int32_t dialog, std::int32_t error = 0) {
    Variant args[] = {Variant(dialog), Variant(error)};
    const Variant r = utils_->Invoke("GetCLSID", CallKind::Method, args);
    return {ToString(r), ToLong(args[1])};
  }

  static inline int counter_ = 0;
  Ref<Object> utils_;
};

TEST_F(DialogSettings, StartPositionFallbacks) {
  EXPECT_EQ(Position(DLG_ASSEMBLY), std::make_pair(120, 340));
  // The user's X with the machine's Y; texts read by their numeric prefix and rounded to even.
  EXPECT_EQ(Position(DLG_PATTERN), std::make_pair(78, 2));
  // No user X: both from the machine, a missing one 0.
  EXPECT_EQ(Position(DLG_HELIX), std::make_pair(0, 9));
  EXPECT_EQ(Position(DLG_FASTENERS), std::make_pair(0, 0));
  // One beyond the screen width: both 0; exactly the screen size: kept.
  EXPECT_EQ(Position(DLG_SPURGEAR), std::make_pair(0, 0));
  EXPECT_EQ(Position(DLG_EXTRUDE), std::make_pair(15360, 11520));
  Ui().SetScreenSize(20000, 20000);
  EXPECT_EQ(Position(DLG_SPURGEAR), std::make_pair(15361, 10));
  // Outside 1 to 12: no tool, (0, 0).
  EXPECT_EQ(Position(0), std::make_pair(0, 0));
  EXPECT_EQ(Position(13), std::make_pair(0, 0));
}

TEST_F(DialogSettings, SetStartPositionWritesOnlyTheUserKey) {
  Variant args[] = {Variant(std::int32_t{DLG_SPURGEAR}), Variant(std::int32_t{1234}), Variant(std::int32_t{567})};
  utils_->Invoke("SetStartPosition", CallKind::Method, args);
  // Written as the characters alone, stored with the NUL that follows them
  // (as NT stores them), and so read back whole.
  EXPECT_EQ(Position(DLG_SPURGEAR), std::make_pair(1234, 567));
  std::string text;
  ASSERT_EQ(GetRegistry().ExportRegText(kHkeyCurrentUser, "Software\\Tessark\\TESSARK 6.0\\Tool Settings\\Spur Gear",
                                        text, RegFileFormat::Regedit4),
            0);
  EXPECT_NE(text.find("\"PosX\"=\"1234\"\r\n\"PosY\"=\"567\"\r\n"), std::string::npos) << text;
  ASSERT_EQ(GetRegistry().ExportRegText(kHkeyLocalMachine, "", text, RegFileFormat::Regedit4), 0);
  EXPECT_EQ(text.find("1234"), std::string::npos) << text;
  // An identifier outside 1 to 12 writes nothing anywhere.
  std::string before, after;
  GetRegistry().ExportRegText(0, "", before);
  Variant outside[] = {Variant(std::int32_t{0}), Variant(std::int32_t{5}), Variant(std::int32_t{6})};
  utils_->Invoke("SetStartPosition", CallKind::Method, outside);
  GetRegistry().ExportRegText(0, "", after);
  EXPECT_EQ(before, after);
}

TEST_F(DialogSettings, ClassIdentifiersAndQueryTool) {
  EXPECT_EQ(Clsid(DLG_EXTRUDE), std::make_pair(std::string("{0D1C3A2B-1111-4A4A-8888-ABCDEF012345}"), 0));
  EXPECT_EQ(Clsid(DLG_ASSEMBLY).first, "");
  EXPECT_EQ(Clsid(DLG_ASSEMBLY).second, 2);
  EXPECT_EQ(Clsid(99).second, 2);

  Ref<Object> app = RefHost::NewApplication();
  const Variant page = Variant(app).Get("ActivePage");
  const Variant shapes = page.Get("Shape").Get("Components", 2).Call("Item", 1).Get("Shapes", 3);
  const Variant plain = shapes.Call("Add");
  const Variant tooled = shapes.Call("Add");
  tooled.Get("Components", 43).Call("Add").Get("Variable", 1).Let("Value", "{99999999-2222-4b4b-9999-abcdef012345}");
  const Variant unknown = shapes.Call("Add");
  unknown.Get("Components", 43).Call("Add").Get("Variable", 1).Let("Value", "{00000000-0000-0000-0000-000000000000}");
  auto query = [&](const Variant& shape) {
    Variant args[] = {shape};
    return ToLong(utils_->Invoke("QueryTool", CallKind::Method, args));
  };
  EXPECT_EQ(query(tooled), TKTOOL_BEARINGS);
  EXPECT_EQ(query(plain), TKTOOL_NULL);
  EXPECT_EQ(query(unknown), TKTOOL_NULL);
}

TEST_F(DialogSettings, HiddenEntryShowsTheSceneViewer) {
  // Without a page the viewer has nothing to show: 91.
  EXPECT_EQ(ErrorOf([&] { Clsid(707, 808); }), Err::ObjectNotSet);
  Ref<Object> app = RefHost::NewApplication();
  Variant page[] = {Variant(app).Get("ActivePage")};
  utils_->Invoke("Page", CallKind::Set, page);
  EXPECT_EQ(Clsid(707, 808), std::make_pair(std::string(), 808));
  ASSERT_EQ(Ui().Shown().size(), 1u);
  EXPECT_EQ(Ui().Shown()[0].name, "frmScene");
  // 707 with any other status is an ordinary (unknown) identifier.
  EXPECT_EQ(Clsid(707, 0).second, 2);
  EXPECT_EQ(Ui().Shown().size(), 1u);
}

}  // namespace
