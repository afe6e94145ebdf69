// System information: locale identifiers from the process's locale
// variables, the existence test, the login name, special folders, the
// environment and the interface font, with failing system calls.
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>

#include "PlatformTestSupport.hpp"
#include "automation/Convert.hpp"
#include "platform/SystemInfo.hpp"
#include "platform/posix/Syscalls.hpp"

using namespace TessarkAO;
using TessarkAO::Testing::Failing;
using TessarkAO::Testing::ScopedEnv;
using TessarkAO::Testing::TempDir;

namespace {

struct RestoreCalls {
  ~RestoreCalls() { RestorePosixCalls(); }
};

TEST(SystemInfo, LcidOfLocaleNames) {
  struct Row {
    const char* name;
    std::uint32_t lcid;
  } rows[] = {
      {"C", 1033},          {"POSIX", 1033},      {"C.UTF-8", 1033},        {"", 1033},
      {"en_US.UTF-8", 1033}, {"en_GB", 1033},     {"en", 1033},             {"ja_JP.UTF-8", 1041},
      {"ja_JP.eucJP", 1041}, {"ja", 1041},        {"de_DE.UTF-8", 1031},    {"de_CH", 2055},
      {"de_AT@euro", 3079},  {"de_BE", 1031},     {"fr_CA.UTF-8", 3084},    {"fr_FR", 1036},
      {"es_ES", 3082},       {"es_MX", 2058},     {"pt_BR", 1046},          {"pt_PT", 2070},
      {"zh_CN.GB18030", 2052}, {"zh_TW", 1028},   {"ko_KR.UTF-8", 1042},    {"ru_RU", 1049},
      {"sv_FI", 2077},       {"nb_NO", 1044},     {"sr_RS@latin", 0x241A},  {"xx_YY", 1033},
      {"DE_de", 1031},
  };
  for (const Row& r : rows) EXPECT_EQ(LcidFromLocaleName(r.name), r.lcid) << r.name;
}

TEST(SystemInfo, SystemLcidReadsLcAllThenLcMessagesThenLang) {
  ScopedEnv all("LC_ALL", std::nullopt), messages("LC_MESSAGES", std::nullopt), lang("LANG", std::nullopt);
  EXPECT_EQ(GetSystemDefaultLcid(), 1033u);
  {
    ScopedEnv l("LANG", "ja_JP.UTF-8");  // need not be installed: read as text
    EXPECT_EQ(GetSystemDefaultLcid(), 1041u);
    ScopedEnv m("LC_MESSAGES", "de_DE");
    EXPECT_EQ(GetSystemDefaultLcid(), 1031u);
    ScopedEnv emptyAll("LC_ALL", "");  // set but empty: passed over
    EXPECT_EQ(GetSystemDefaultLcid(), 1031u);
    ScopedEnv a("LC_ALL", "fr_FR.UTF-8");
    EXPECT_EQ(GetSystemDefaultLcid(), 1036u);
  }
  // The number format follows the identifier.
  EXPECT_EQ(NumberLocaleForLcid(LcidFromLocaleName("de_DE")).decimal, ',');
}

TEST(SystemInfo, FileExistence) {
  TempDir dir;
  std::ofstream(dir / "tktools.dll") << "x";
  EXPECT_EQ(FileExistenceError(dir / "tktools.dll"), 0);
  std::string windows = dir / "tktools.dll";
  windows[windows.rfind('/')] = '\\';
  EXPECT_EQ(FileExistenceError(windows), 0) << windows;
  EXPECT_EQ(FileExistenceError(dir / "none.dll"), 2);
  EXPECT_EQ(FileExistenceError(dir / "no\\such\\none.dll"), 3);
  EXPECT_EQ(FileExistenceError(dir.Path()), 5);  // a folder is not a file
  EXPECT_EQ(FileExistenceError(""), 2);
  EXPECT_EQ(FileExistenceError("v:\\bin.32\\tktools.dll"), 3);

  RestoreCalls restore;
  PosixCalls().stat = &Failing<int, EACCES>;
  EXPECT_EQ(FileExistenceError(dir / "tktools.dll"), 5);
}

TEST(SystemInfo, LoginNameCountsItsNul) {
  RestoreCalls restore;
  char buf[256];
  std::uint32_t length = 0;
  ASSERT_TRUE(GetLoginName(buf, 255, length));
  ASSERT_GE(length, 2u);
  EXPECT_EQ(buf[length - 1], '\0');
  const std::string name(buf, length - 1);
  // Too small a buffer: fails with the size needed.
  std::uint32_t needed = 0;
  EXPECT_FALSE(GetLoginName(buf, length - 1, needed));
  EXPECT_EQ(needed, length);

  // No passwd entry: the login environment's name, else nothing.
  PosixCalls().getpwuid_r = [](uid_t, struct passwd*, char*, std::size_t, struct passwd** r) -> int {
    *r = nullptr;
    return 0;
  };
  {
    ScopedEnv logname("LOGNAME", "mary-ann smith"), user("USER", "other");
    ASSERT_TRUE(GetLoginName(buf, 255, length));
    EXPECT_EQ(std::string(buf), "mary-ann smith");
    EXPECT_EQ(length, 15u);
  }
  ScopedEnv logname("LOGNAME", std::nullopt), user("USER", std::nullopt);
  EXPECT_FALSE(GetLoginName(buf, 255, length));
  EXPECT_EQ(length, 0u);
}

// The folder's path, or "status N" when the call fails (the path left empty).
std::string Folder(std::int32_t which) {
  std::string path;
  const std::int32_t status = GetSpecialFolder(which, path);
  return status == 0 ? path : "status " + std::to_string(status) + path;
}

TEST(SystemInfo, SpecialFoldersFollowXdg) {
  TempDir home;
  ScopedEnv h("HOME", home.Path()), cfg("XDG_CONFIG_HOME", std::nullopt), data("XDG_DATA_DIRS", std::nullopt);
  EXPECT_EQ(Folder(SpecialFolder::AppData), home / ".config");
  EXPECT_EQ(Folder(SpecialFolder::CommonAppData), "/usr/local/share");
  EXPECT_EQ(Folder(SpecialFolder::Personal), home.Path()) << "no user-dirs.dirs: the home folder";
  EXPECT_EQ(Folder(7), "status -2147024809");  // E_INVALIDARG

  std::filesystem::create_directories(home / "cfg");
  std::ofstream(home / "cfg/user-dirs.dirs") << "# written by xdg-user-dirs-update\n"
                                                "XDG_DESKTOP_DIR=\"$HOME/Desktop\"\n"
                                                "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n";
  ScopedEnv cfg2("XDG_CONFIG_HOME", home / "cfg/"), data2("XDG_DATA_DIRS", "relative:/opt/share:/usr/share");
  EXPECT_EQ(Folder(SpecialFolder::AppData), home / "cfg");
  EXPECT_EQ(Folder(SpecialFolder::Personal), home / "Dokumente");
  EXPECT_EQ(Folder(SpecialFolder::CommonAppData), "/opt/share");

  // A relative XDG_CONFIG_HOME is not valid and is ignored.
  ScopedEnv cfg3("XDG_CONFIG_HOME", "relative/cfg");
  EXPECT_EQ(Folder(SpecialFolder::AppData), home / ".config");
  // A path that does not fit the 260-character buffer fails.
  ScopedEnv cfg4("XDG_CONFIG_HOME", "/" + std::string(300, 'x'));
  EXPECT_EQ(Folder(SpecialFolder::AppData), "status -2147467259");  // E_FAIL
}

TEST(SystemInfo, Environment) {
  ScopedEnv v("TK_TEST_VARIABLE", "value=with=equals");
  EXPECT_EQ(GetEnvironment("TK_TEST_VARIABLE"), "value=with=equals");
  EXPECT_EQ(GetEnvironment("TK_TEST_VARIABLE_UNSET"), std::nullopt);
  EXPECT_EQ(GetEnvironment(""), std::nullopt);
  EXPECT_EQ(GetEnvironment("A=B"), std::nullopt);
  RestoreCalls restore;
  PosixCalls().getenv = [](const char*) -> char* { return nullptr; };
  EXPECT_EQ(GetEnvironment("TK_TEST_VARIABLE"), std::nullopt);
}

TEST(SystemInfo, DefaultGuiFontComesFromFontconfig) {
  GuiFontMetrics font;
  ASSERT_TRUE(GetDefaultGuiFont(font)) << "fontconfig found no sans-serif font";
  EXPECT_FALSE(font.faceName.empty());
  EXPECT_GT(font.height, 0);
  EXPECT_GT(font.pixelsPerInch, 0);
  EXPECT_GE(font.weight, 100);
  EXPECT_LE(font.weight, 900);
  EXPECT_EQ(font.charset, 0);
}

}  // namespace
