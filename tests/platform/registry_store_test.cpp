// The registry store: Win32 semantics (handles, names, data, status codes),
// .reg import and export, and the file's behaviour under concurrent
// writers, crashes, damage and refused access.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>

#include "PlatformTestSupport.hpp"
#include "platform/RegFile.hpp"
#include "platform/Registry.hpp"
#include "platform/posix/Syscalls.hpp"

using namespace TessarkAO;
using TessarkAO::Testing::Failing;
using TessarkAO::Testing::TempDir;

namespace {

std::vector<std::uint8_t> Bytes(std::string_view s) { return {s.begin(), s.end()}; }

class RegistryStoreTest : public ::testing::Test {
 protected:
  void SetUp() override { store_ = OpenRegistryStore(dir_ / "reg.sqlite3"); }
  void TearDown() override { RestorePosixCalls(); }

  // Each helper works on store_, or on the store given last.
  RegHandle Create(RegHandle root, std::string_view path, RegistryStore* in = nullptr) {
    RegHandle h = 0;
    EXPECT_EQ(Of(in).CreateKey(root, path, h), 0) << Of(in).LastError();
    return h;
  }
  RegHandle Open(RegHandle root, std::string_view path, std::uint32_t access = RegAccess::Read,
                 RegistryStore* in = nullptr) {
    RegHandle h = 0;
    EXPECT_EQ(Of(in).OpenKey(root, path, access, h), 0) << Of(in).LastError();
    return h;
  }
  void Put(RegHandle key, std::string_view name, std::uint32_t type, std::string_view data,
           RegistryStore* in = nullptr) {
    ASSERT_EQ(Of(in).SetValue(key, name, type, reinterpret_cast<const std::uint8_t*>(data.data()),
                              static_cast<std::uint32_t>(data.size())),
              0)
        << Of(in).LastError();
  }
  // The value's bytes (its type in type_), or "status N" when the query fails.
  std::string Data(RegHandle key, std::string_view name, RegistryStore* in = nullptr) {
    std::uint32_t size = 0;
    RegStatus s = Of(in).QueryValue(key, name, &type_, nullptr, &size);
    std::vector<std::uint8_t> buf(size + 1, 0xAA);
    if (s == 0) s = Of(in).QueryValue(key, name, &type_, buf.data(), &size);
    return s == 0 ? std::string(buf.begin(), buf.begin() + size) : Failed(s);
  }
  RegistryStore& Of(RegistryStore* in) { return in ? *in : *store_; }
  static std::string Failed(RegStatus s) { return "status " + std::to_string(s); }

  TempDir dir_;
  std::unique_ptr<RegistryStore> store_;
  std::uint32_t type_ = 0;
};

TEST_F(RegistryStoreTest, MissingFileIsAnEmptyStoreCreatedOnFirstWrite) {
  const std::string path = dir_ / "deep/er/reg.sqlite3";
  auto store = OpenRegistryStore(path);
  RegHandle h = 0;
  EXPECT_EQ(store->OpenKey(kHkeyCurrentUser, "SOFTWARE", RegAccess::Read, h), WinError::FileNotFound);
  std::uint32_t size = 0;
  EXPECT_EQ(store->QueryValue(kHkeyLocalMachine, "", nullptr, nullptr, &size), WinError::FileNotFound);
  std::string text;
  EXPECT_EQ(store->ExportRegText(0, "", text, RegFileFormat::Regedit4), 0);
  EXPECT_EQ(text, "REGEDIT4\r\n");
  EXPECT_EQ(store->ExportRegText(kHkeyCurrentUser, "SOFTWARE", text), WinError::FileNotFound);
  std::string name;
  EXPECT_EQ(store->EnumKey(kHkeyCurrentUser, 0, name), WinError::NoMoreItems);
  EXPECT_EQ(store->EnumValue(kHkeyCurrentUser, 0, name, nullptr, nullptr), WinError::NoMoreItems);
  EXPECT_EQ(store->DeleteValue(kHkeyCurrentUser, "v"), WinError::FileNotFound);
  EXPECT_EQ(store->DeleteKey(kHkeyCurrentUser, "SOFTWARE"), WinError::FileNotFound);
  EXPECT_EQ(store->DeleteTree(kHkeyCurrentUser, "SOFTWARE"), WinError::FileNotFound);
  EXPECT_EQ(store->DeleteTree(kHkeyCurrentUser, ""), 0);  // nothing to empty
  EXPECT_FALSE(std::filesystem::exists(path)) << "reads and deletions must not create the file";

  ASSERT_EQ(store->CreateKey(kHkeyCurrentUser, "SOFTWARE\\Tessark", h), 0) << store->LastError();
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(RegistryStoreTest, HandlesAndRoots) {
  RegHandle h = 0;
  // Only the three roots and open handles are valid.
  for (RegHandle bad : {0u, 0x80000003u, 0x80000004u, 0x12345u}) {
    EXPECT_EQ(store_->OpenKey(bad, "x", RegAccess::Read, h), WinError::InvalidHandle) << bad;
    EXPECT_EQ(store_->CreateKey(bad, "x", h), WinError::InvalidHandle) << bad;
    EXPECT_EQ(store_->QueryValue(bad, "x", nullptr, nullptr, nullptr), WinError::InvalidHandle) << bad;
  }
  EXPECT_EQ(store_->CloseKey(0x4242), WinError::InvalidHandle);
  EXPECT_EQ(store_->CloseKey(kHkeyCurrentUser), 0);

  // The roots are separate trees.
  const RegHandle cu = Create(kHkeyCurrentUser, "Software\\A");
  Put(cu, "v", RegType::String, std::string_view("cu\0", 3));
  EXPECT_EQ(store_->OpenKey(kHkeyLocalMachine, "Software\\A", RegAccess::Read, h), WinError::FileNotFound);
  EXPECT_EQ(store_->OpenKey(kHkeyClassesRoot, "Software\\A", RegAccess::Read, h), WinError::FileNotFound);

  // A handle closed is gone; handles never take the roots' values.
  EXPECT_LT(cu, 0x80000000u);
  EXPECT_EQ(store_->CloseKey(cu), 0);
  EXPECT_EQ(store_->CloseKey(cu), WinError::InvalidHandle);
  EXPECT_EQ(store_->QueryValue(cu, "v", nullptr, nullptr, nullptr), WinError::InvalidHandle);
}

TEST_F(RegistryStoreTest, NamesAreCaseInsensitiveAndKeepTheirFirstSpelling) {
  const RegHandle k = Create(kHkeyCurrentUser, "SOFTWARE\\Tessark\\AddOns");
  Put(k, "LastRunProductName", RegType::String, std::string_view("TESSARK\0", 8));
  RegHandle h = Open(kHkeyCurrentUser, "software\\TESSARK\\addons\\");
  EXPECT_EQ(Data(h, "lastrunproductname"), std::string("TESSARK\0", 8));

  // Rewriting under another spelling replaces the value and keeps the name.
  Put(k, "LASTRUNPRODUCTNAME", RegType::String, "X");
  std::string name;
  std::vector<std::uint8_t> bytes;
  ASSERT_EQ(store_->EnumValue(h, 0, name, &type_, &bytes), 0);
  EXPECT_EQ(name, "LastRunProductName");
  EXPECT_EQ(bytes, Bytes(std::string_view("X\0", 2)));  // stored with the NUL after it
  EXPECT_EQ(store_->EnumValue(h, 1, name, &type_, &bytes), WinError::NoMoreItems);

  // Creating a key spelled otherwise opens the existing one.
  const RegHandle again = Create(kHkeyCurrentUser, "Software\\tessark");
  ASSERT_EQ(store_->EnumKey(again, 0, name), 0);
  EXPECT_EQ(name, "AddOns");
  ASSERT_EQ(store_->EnumKey(kHkeyCurrentUser, 0, name), 0);
  EXPECT_EQ(name, "SOFTWARE");

  // Text outside ASCII folds too.
  const RegHandle u = Create(kHkeyCurrentUser, "Software\\Ärger");
  Put(u, "Größe", RegType::Dword, std::string_view("\x01\0\0\0", 4));
  h = Open(kHkeyCurrentUser, "SOFTWARE\\äRGER");
  EXPECT_EQ(Data(h, "GRÖSSE"), Failed(WinError::FileNotFound));  // no special casing of ß
  EXPECT_EQ(Data(h, "GRÖßE"), std::string_view("\x01\0\0\0", 4));
}

TEST_F(RegistryStoreTest, DataIsKeptAsWritten) {
  const RegHandle k = Create(kHkeyCurrentUser, "T");
  Put(k, "", RegType::String, std::string_view("default\0", 8));  // the key's default value
  Put(k, "raw", RegType::String, std::string_view("abcd", 3));    // no terminating NUL
  // Counted without the NUL that follows it: stored with it, as NT does.
  Put(k, "counted", RegType::String, "abc");
  Put(k, "empty", RegType::String, "");
  Put(k, "bin", RegType::Binary, std::string_view("\0\1\2\xff", 4));
  Put(k, "odd", 0x1234, "?");

  std::uint32_t type = 0, size = 0;
  ASSERT_EQ(store_->QueryValue(k, "raw", &type, nullptr, &size), 0);
  EXPECT_EQ(type, RegType::String);
  EXPECT_EQ(size, 3u);
  std::uint8_t buf[8];
  std::memset(buf, 'Z', sizeof buf);
  // Too small: 234 and the size needed, nothing copied.
  std::uint32_t n = 2;
  EXPECT_EQ(store_->QueryValue(k, "raw", &type, buf, &n), WinError::MoreData);
  EXPECT_EQ(n, 3u);
  EXPECT_EQ(buf[0], 'Z');
  // Exactly the size: the bytes, no NUL added.
  n = 3;
  ASSERT_EQ(store_->QueryValue(k, "raw", &type, buf, &n), 0);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buf), 4), "abcZ");
  // With room, string data gains the NUL it was stored without.
  n = sizeof buf;
  ASSERT_EQ(store_->QueryValue(k, "raw", &type, buf, &n), 0);
  EXPECT_EQ(n, 3u);
  EXPECT_EQ(buf[3], 0);

  EXPECT_EQ(Data(k, "counted"), std::string("abc\0", 4));
  EXPECT_EQ(Data(k, ""), std::string("default\0", 8));
  EXPECT_EQ(Data(k, "empty"), "");
  EXPECT_EQ(Data(k, "bin"), std::string("\0\1\2\xff", 4));
  EXPECT_EQ(type_, RegType::Binary);
  EXPECT_EQ(Data(k, "odd"), "?");
  EXPECT_EQ(type_, 0x1234u);

  // A name ends at its first NUL, as a C string does.
  EXPECT_EQ(Data(k, std::string_view("raw\0junk", 8)), "abc");

  // RegSetValueA stores a default value with its NUL, creating the subkey.
  ASSERT_EQ(store_->SetKeyDefault(kHkeyClassesRoot, "Tool.Class\\Clsid", "{1234}"), 0);
  EXPECT_EQ(Data(Open(kHkeyClassesRoot, "Tool.Class\\Clsid"), ""), std::string("{1234}\0", 7));
}

TEST_F(RegistryStoreTest, AccessRightsPathsAndDeletion) {
  const RegHandle w = Create(kHkeyCurrentUser, "A\\B\\C");
  Put(w, "v", RegType::String, "1");
  const RegHandle r = Open(kHkeyCurrentUser, "A\\B\\C", RegAccess::QueryValue);
  EXPECT_EQ(store_->SetValue(r, "v", RegType::String, nullptr, 0), WinError::AccessDenied);
  EXPECT_EQ(store_->DeleteValue(r, "v"), WinError::AccessDenied);
  const RegHandle setOnly = Open(kHkeyCurrentUser, "A\\B\\C", RegAccess::SetValue);
  EXPECT_EQ(store_->QueryValue(setOnly, "v", nullptr, nullptr, nullptr), WinError::AccessDenied);

  RegHandle h = 0;
  EXPECT_EQ(store_->CreateKey(kHkeyCurrentUser, "\\A", h), WinError::BadPathname);
  EXPECT_EQ(store_->CreateKey(kHkeyCurrentUser, "A\\\\B", h), WinError::BadPathname);
  EXPECT_EQ(store_->CreateKey(kHkeyCurrentUser, std::string(256, 'k'), h), WinError::InvalidParameter);
  EXPECT_EQ(store_->CreateKey(kHkeyCurrentUser, std::string(255, 'k'), h), 0);

  // Relative opens below an open key.
  const RegHandle a = Create(kHkeyCurrentUser, "A");
  ASSERT_EQ(store_->OpenKey(a, "b\\c", RegAccess::Read, h), 0);
  EXPECT_EQ(Data(h, "V"), std::string("1\0", 2));

  // A key with subkeys cannot be deleted on its own; the tree can.
  EXPECT_EQ(store_->DeleteKey(kHkeyCurrentUser, "A\\B"), WinError::AccessDenied);
  EXPECT_EQ(store_->DeleteKey(kHkeyCurrentUser, "A\\B\\C"), 0);
  EXPECT_EQ(store_->DeleteKey(kHkeyCurrentUser, "A\\B\\C"), WinError::FileNotFound);
  // Writing through a handle to a deleted key fails with 1018.
  EXPECT_EQ(store_->SetValue(w, "v", RegType::String, nullptr, 0), WinError::KeyDeleted);

  Create(kHkeyCurrentUser, "A\\B\\D\\E");
  Create(kHkeyCurrentUser, "A\\BB");  // a sibling whose name starts alike survives
  ASSERT_EQ(store_->DeleteTree(kHkeyCurrentUser, "a\\b"), 0);
  EXPECT_EQ(store_->OpenKey(kHkeyCurrentUser, "A\\B\\D\\E", RegAccess::Read, h), WinError::FileNotFound);
  EXPECT_EQ(store_->OpenKey(kHkeyCurrentUser, "A\\B", RegAccess::Read, h), WinError::FileNotFound);
  EXPECT_EQ(store_->OpenKey(kHkeyCurrentUser, "A\\BB", RegAccess::Read, h), 0);
  EXPECT_EQ(store_->DeleteKey(kHkeyCurrentUser, ""), WinError::AccessDenied);
  // DeleteTree with no subkey empties the handle's key and keeps it.
  Put(a, "v", RegType::String, "x");
  ASSERT_EQ(store_->DeleteTree(a, ""), 0);
  EXPECT_EQ(Data(a, "v"), Failed(WinError::FileNotFound));
  EXPECT_EQ(store_->OpenKey(kHkeyCurrentUser, "A", RegAccess::Read, h), 0);
  EXPECT_EQ(store_->OpenKey(kHkeyCurrentUser, "A\\BB", RegAccess::Read, h), WinError::FileNotFound);
}

// Another process (a second store on the same file) changes keys between
// this store's calls: every read and write sees the file as it is now.
TEST_F(RegistryStoreTest, ChangesByAnotherProcessAreSeenAtOnce) {
  auto other = OpenRegistryStore(dir_ / "reg.sqlite3");
  const RegHandle k = Create(kHkeyCurrentUser, "Software\\Shared");
  Put(k, "v", RegType::String, "first");
  std::uint32_t type = 0;
  RegHandle r = Open(kHkeyCurrentUser, "Software\\Shared");
  EXPECT_EQ(Data(r, "v"), std::string("first\0", 6));
  store_->CloseKey(r);

  // Deleted and made anew, with another value, by the other store.
  ASSERT_EQ(other->DeleteTree(kHkeyCurrentUser, "Software\\Shared"), 0);
  Put(Create(kHkeyCurrentUser, "Software\\Shared", other.get()), "v", RegType::String, "second", other.get());

  r = Open(kHkeyCurrentUser, "Software\\Shared");
  EXPECT_EQ(Data(r, "v"), std::string("second\0", 7));
  std::string name;
  ASSERT_EQ(store_->EnumValue(r, 0, name, nullptr, nullptr), 0);
  // The handle opened before the key was deleted no longer writes anywhere.
  EXPECT_EQ(store_->SetValue(k, "v", RegType::String, nullptr, 0), WinError::KeyDeleted);

  // Deleted for good: the next open or read says so.
  ASSERT_EQ(other->DeleteTree(kHkeyCurrentUser, "Software\\Shared"), 0);
  EXPECT_EQ(Data(r, "v"), Failed(WinError::FileNotFound));
  RegHandle gone = 0;
  const RegStatus s = store_->OpenKey(kHkeyCurrentUser, "Software\\Shared", RegAccess::Read, gone);
  EXPECT_EQ(s == 0 ? Data(gone, "v") : Failed(s), Failed(WinError::FileNotFound));

  // A size query and the data query after it return one consistent value.
  const RegHandle w = Create(kHkeyCurrentUser, "Software\\Snap");
  Put(w, "v", RegType::String, "short");
  std::uint32_t size = 0;
  ASSERT_EQ(store_->QueryValue(w, "v", &type, nullptr, &size), 0);
  Put(Create(kHkeyCurrentUser, "Software\\Snap", other.get()), "v", RegType::String, "much longer",
      other.get());
  std::vector<std::uint8_t> buf(size);
  ASSERT_EQ(store_->QueryValue(w, "v", &type, buf.data(), &size), 0);
  EXPECT_EQ(std::string(buf.begin(), buf.end()), std::string("short\0", 6));
  EXPECT_EQ(Data(w, "v"), std::string("much longer\0", 12));  // a fresh read sees the new value
  // A write through this store drops what a size query kept.
  ASSERT_EQ(store_->QueryValue(w, "v", &type, nullptr, &size), 0);
  Put(w, "v", RegType::String, "x");
  std::uint8_t big[32];
  size = sizeof big;
  ASSERT_EQ(store_->QueryValue(w, "v", &type, big, &size), 0);
  EXPECT_EQ(size, 2u);
}

TEST_F(RegistryStoreTest, RegFilesRoundTripByteForByte) {
  const RegHandle k = Create(kHkeyCurrentUser, "SOFTWARE\\Tessark\\VelloraSuite\\AddOns");
  Put(k, "LastRunProductName", RegType::String, std::string_view("TESSARK\0", 8));
  Put(k, "", RegType::String, std::string_view("quote \" and \\ back\0", 19));
  Put(k, "Count", RegType::Dword, std::string_view("\x0c\0\0\0", 4));
  Put(k, "Unterminated", RegType::String, std::string_view("abcd", 3));
  Put(k, "Lines", RegType::String, std::string_view("a\r\nb\0", 5));
  Put(k, "Long", RegType::Binary, std::string(100, '\x5a'));
  Put(k, "Short dword", RegType::Dword, "\x01");
  Create(kHkeyLocalMachine, "SOFTWARE\\Empty");

  std::string text;
  ASSERT_EQ(store_->ExportRegText(0, "", text, RegFileFormat::Regedit4), 0);
  EXPECT_EQ(text.rfind("REGEDIT4\r\n", 0), 0u);
  EXPECT_NE(text.find("[HKEY_CURRENT_USER\\SOFTWARE\\Tessark\\VelloraSuite\\AddOns]\r\n"), std::string::npos);
  EXPECT_NE(text.find("\"LastRunProductName\"=\"TESSARK\"\r\n"), std::string::npos);
  EXPECT_NE(text.find("@=\"quote \\\" and \\\\ back\"\r\n"), std::string::npos);
  EXPECT_NE(text.find("\"Count\"=dword:0000000c\r\n"), std::string::npos);
  EXPECT_NE(text.find("\"Unterminated\"=hex(1):61,62,63\r\n"), std::string::npos);
  EXPECT_NE(text.find("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Empty]"), std::string::npos);
  for (std::size_t pos = 0, end; (end = text.find("\r\n", pos)) != std::string::npos; pos = end + 2)
    EXPECT_LE(end - pos, 80u) << "lines are wrapped";

  // Both formats carry everything: each file imported into a fresh store
  // exports the same again.
  std::string again;
  for (RegFileFormat format : {RegFileFormat::Regedit4, RegFileFormat::Version5}) {
    std::string file;
    ASSERT_EQ(store_->ExportRegText(0, "", file, format), 0);
    auto copy = OpenRegistryStore(dir_ / ("copy" + std::to_string(static_cast<int>(format)) + ".sqlite3"));
    ASSERT_EQ(copy->ImportRegText(file), 0) << copy->LastError();
    ASSERT_EQ(copy->ExportRegText(0, "", again, RegFileFormat::Regedit4), 0);
    EXPECT_EQ(again, text);
  }

  // A subtree alone, and through a file.
  const std::string file = dir_ / "addons.reg";
  ASSERT_EQ(store_->ExportRegFile(file, kHkeyCurrentUser, "software\\tessark\\vellorasuite",
                                  RegFileFormat::Regedit4),
            0);
  std::ifstream in(file, std::ios::binary);
  std::string sub((std::istreambuf_iterator<char>(in)), {});
  EXPECT_NE(sub.find("AddOns]"), std::string::npos);
  EXPECT_EQ(sub.find("HKEY_LOCAL_MACHINE"), std::string::npos);
  EXPECT_EQ(store_->ExportRegText(kHkeyCurrentUser, "No\\Such", again), WinError::FileNotFound);
  EXPECT_EQ(store_->ExportRegText(0x1234, "", again), WinError::InvalidHandle);
}

// ASCII text as UTF-16LE bytes.
std::string Widen(std::string_view ascii) {
  std::string wide;
  for (char c : ascii) wide.append({c, '\0'});
  return wide;
}

// Text is UTF-8 in the store, the ANSI code page in REGEDIT4 files (strings
// in hex included) and UTF-16LE in version 5.00 files.
TEST_F(RegistryStoreTest, RegFileEncodings) {
  const RegHandle k = Create(kHkeyCurrentUser, "Software\\W\xC3\xB6rld");
  Put(k, "Text", RegType::String, "hello w\xC3\xB6rld \xE2\x82\xAC");
  Put(k, "Multi", RegType::MultiString, std::string_view("a\0w\xC3\xB6rld\0\0", 10));
  std::string v4, v5;
  ASSERT_EQ(store_->ExportRegText(kHkeyCurrentUser, "Software", v4, RegFileFormat::Regedit4), 0);
  EXPECT_NE(
      v4.find("[HKEY_CURRENT_USER\\Software\\W\xF6rld]\r\n\"Multi\"=hex(7):61,00,77,f6,72,6c,64,00,00\r\n"
              "\"Text\"=\"hello w\xF6rld \x80\"\r\n"),
      std::string::npos)
      << v4;
  ASSERT_EQ(store_->ExportRegText(kHkeyCurrentUser, "Software", v5), 0);
  EXPECT_EQ(v5.rfind("\xFF\xFE" + Widen("Windows Registry Editor Version 5.00\r\n"), 0), 0u);
  EXPECT_NE(v5.find(Widen("\"Multi\"=hex(7):61,00,00,00,77,00,f6,00,72,00,6c,00,64,00,00,00,00,00\r\n")),
            std::string::npos);
  EXPECT_NE(v5.find(Widen("\"Text\"=\"hello w") + "\xF6" + std::string(1, '\0') + Widen("rld ") + "\xAC\x20" +
                    Widen("\"\r\n")),
            std::string::npos);

  // Each file, and the version 5.00 one as UTF-8 with and without its mark,
  // imports into a fresh store as the same values.
  std::string utf8 =
      "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\W\xC3\xB6rld]\r\n"
      "\"Text\"=\"hello w\xC3\xB6rld \xE2\x82\xAC\"\r\n"
      "\"Multi\"=hex(7):61,00,00,00,77,00,f6,00,72,00,6c,00,64,00,00,00,00,00\r\n";
  int n = 0;
  for (const std::string& file : {v4, v5, utf8, "\xEF\xBB\xBF" + utf8}) {
    auto copy = OpenRegistryStore(dir_ / ("enc" + std::to_string(++n) + ".sqlite3"));
    ASSERT_EQ(copy->ImportRegText(file), 0) << copy->LastError();
    std::string again;
    ASSERT_EQ(copy->ExportRegText(kHkeyCurrentUser, "Software", again, RegFileFormat::Regedit4), 0);
    EXPECT_EQ(again, v4) << n;
  }
  // A REGEDIT4 file in another code page, when told so.
  auto other = OpenRegistryStore(dir_ / "cp.sqlite3");
  ASSERT_EQ(other->ImportRegText("REGEDIT4\n[HKCU\\T]\n\"v\"=\"w\xC3\xB6rld\"\n", kCodePageUtf8), 0);
  const RegHandle t = Open(kHkeyCurrentUser, "T", RegAccess::Read, other.get());
  EXPECT_EQ(Data(t, "v", other.get()), std::string("w\xC3\xB6rld\0", 7));  // not "wÃ¶rld"
  // Text the code page lacks is refused, not replaced.
  Put(k, "Kanji", RegType::String, "\xE6\x97\xA5");
  EXPECT_EQ(store_->ExportRegText(kHkeyCurrentUser, "Software", v4, RegFileFormat::Regedit4),
            WinError::NoUnicodeTranslation);
  EXPECT_NE(store_->LastError().find("\"Kanji\""), std::string::npos) << store_->LastError();
  EXPECT_NE(store_->LastError().find("format 5"), std::string::npos);
  EXPECT_EQ(store_->ExportRegText(kHkeyCurrentUser, "Software", v5), 0);
}

TEST_F(RegistryStoreTest, RegImportAppliesDeletionsAndIsAllOrNothing) {
  ASSERT_EQ(store_->ImportRegText("REGEDIT4\n\n[HKCU\\Software\\X]\n\"a\"=\"1\"\n\"b\"=\"2\"\n"
                                  "\"c\"=hex:01,02,\\\n  03,04\n\n[HKEY_CURRENT_USER\\Software\\Y\\Z]\n"),
            0)
      << store_->LastError();
  const RegHandle x = Open(kHkeyCurrentUser, "Software\\X");
  EXPECT_EQ(Data(x, "c"), std::string("\1\2\3\4", 4));
  // Line breaks as Wine's registry editor writes them inside a string.
  ASSERT_EQ(store_->ImportRegText("REGEDIT4\n[HKCU\\Software\\X]\n\"w\"=\"a\\r\\nb\\\\n\"\n"), 0);
  EXPECT_EQ(Data(x, "w"), std::string("a\r\nb\\n\0", 7));

  ASSERT_EQ(store_->ImportRegText("REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\X]\r\n\"a\"=-\r\n"
                                  "[-HKEY_CURRENT_USER\\Software\\Y]\r\n"),
            0);
  EXPECT_EQ(Data(x, "a"), Failed(WinError::FileNotFound));
  EXPECT_EQ(Data(x, "b"), std::string("2\0", 2));
  RegHandle h = 0;
  EXPECT_EQ(store_->OpenKey(kHkeyCurrentUser, "Software\\Y\\Z", RegAccess::Read, h), WinError::FileNotFound);

  // A bad line anywhere applies nothing and names the line.
  struct Bad {
    const char* text;
    const char* message;
  } bad[] = {
      {"Windows Registry Editor Version 4.00\n", "line 1"},
      {"\xFF\xFER", "line 1: not valid UTF-16LE"},
      {"Windows Registry Editor Version 5.00\n[HKCU\\x]\n\"\xC3\"=\"1\"\n", "line 3: not valid UTF-8"},
      {"Windows Registry Editor Version 5.00\n[HKCU\\x]\n\"v\"=hex(1):61,00,62\n",
       "line 3: string data in hex must be UTF-16LE"},
      {"", "REGEDIT4"},
      {"REGEDIT4\n[HKEY_USERS\\x]\n", "line 2: unknown root key 'HKEY_USERS'"},
      {"REGEDIT4\n\"v\"=\"1\"\n", "line 2"},
      {"REGEDIT4\n[HKCU\\x]\n\"v\"=dword:123456789\n", "line 3"},
      {"REGEDIT4\n[HKCU\\x]\n\"v\"=hex:1,2\n", "line 3"},
      {"REGEDIT4\n[HKCU\\x]\n\"v\"=\"open\n", "line 3"},
      {"REGEDIT4\n[HKCU\\x]\n\"v\"=word:1\n", "line 3"},
      {"REGEDIT4\n[HKCU\\x\n", "line 2"},
  };
  for (const Bad& b : bad) {
    EXPECT_EQ(store_->ImportRegText(b.text), WinError::InvalidData) << b.text;
    EXPECT_NE(store_->LastError().find(b.message), std::string::npos) << store_->LastError();
  }
  // The valid part of a failing file is not applied either.
  EXPECT_EQ(store_->ImportRegText("REGEDIT4\n[HKCU\\Software\\X]\n\"b\"=\"changed\"\n\"bad\"=?\n"),
            WinError::InvalidData);
  EXPECT_EQ(Data(x, "b"), std::string("2\0", 2));
  EXPECT_EQ(store_->ImportRegFile(dir_ / "missing.reg"), WinError::FileNotFound);
  EXPECT_NE(store_->LastError().find("missing.reg"), std::string::npos);
}

// Makes a store file holding one key, then writes `bytes` over it at `offset`.
std::string Overwritten(const std::string& path, std::streamoff offset, std::string_view bytes) {
  RegHandle h = 0;
  EXPECT_EQ(OpenRegistryStore(path)->CreateKey(kHkeyCurrentUser, "Software\\Kept", h), 0);
  std::filesystem::remove(path + "-wal");
  std::filesystem::remove(path + "-shm");
  std::fstream f(path, std::ios::in | std::ios::out | std::ios::binary);
  f.seekp(offset);
  f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return path;
}

TEST_F(RegistryStoreTest, CorruptOrUnreadableStoreGivesAClearStatus) {
  RegHandle h = 0;
  // Not a database at all.
  const std::string garbage = dir_ / "garbage.sqlite3";
  std::ofstream(garbage) << "this is not a registry store, just some text long enough";
  auto store = OpenRegistryStore(garbage);
  EXPECT_EQ(store->OpenKey(kHkeyCurrentUser, "Software", RegAccess::Read, h), WinError::RegistryCorrupt);
  EXPECT_NE(store->LastError().find(garbage), std::string::npos);
  EXPECT_NE(store->LastError().find("corrupt"), std::string::npos);
  EXPECT_EQ(store->CreateKey(kHkeyCurrentUser, "Software", h), WinError::RegistryCorrupt);
  EXPECT_EQ(store->ImportRegText("REGEDIT4\n[HKCU\\a]\n"), WinError::RegistryCorrupt);

  // A real store whose pages were overwritten.
  store = OpenRegistryStore(Overwritten(dir_ / "damaged.sqlite3", 16, std::string(4096, '\xEE')));
  EXPECT_EQ(store->OpenKey(kHkeyCurrentUser, "Software\\Kept", RegAccess::Read, h),
            WinError::RegistryCorrupt);
  EXPECT_NE(store->LastError().find("corrupt"), std::string::npos);

  // A database of some other program: another application id in the header.
  store = OpenRegistryStore(Overwritten(dir_ / "foreign.sqlite3", 68, std::string_view("\0\0\0\1", 4)));
  EXPECT_EQ(store->OpenKey(kHkeyCurrentUser, "Software\\Kept", RegAccess::Read, h),
            WinError::RegistryCorrupt);
  EXPECT_NE(store->LastError().find("another program"), std::string::npos);

  // A folder where the file should be.
  store = OpenRegistryStore(dir_.Path());
  EXPECT_EQ(store->OpenKey(kHkeyCurrentUser, "x", RegAccess::Read, h), WinError::AccessDenied);
  EXPECT_NE(store->LastError().find("folder"), std::string::npos);

  // A file the process may not read (made to fail, since tests may run as root).
  store = OpenRegistryStore(dir_ / "reg.sqlite3");
  ASSERT_EQ(store->CreateKey(kHkeyCurrentUser, "x", h), 0);
  store = OpenRegistryStore(dir_ / "reg.sqlite3");
  PosixCalls().open = &Failing<int, EACCES>;
  EXPECT_EQ(store->OpenKey(kHkeyCurrentUser, "x", RegAccess::Read, h), WinError::AccessDenied);
  EXPECT_NE(store->LastError().find("Permission denied"), std::string::npos);
  RestorePosixCalls();
  PosixCalls().read = &Failing<ssize_t, EIO>;
  EXPECT_EQ(store->OpenKey(kHkeyCurrentUser, "x", RegAccess::Read, h), WinError::RegistryIoFailed);
  // Once the file can be read again, the same store works.
  RestorePosixCalls();
  EXPECT_EQ(store->OpenKey(kHkeyCurrentUser, "x", RegAccess::Read, h), 0);
  EXPECT_EQ(store->LastError(), "");

  // A folder that cannot be created for a new store.
  PosixCalls().mkdir = &Failing<int, EACCES>;
  store = OpenRegistryStore(dir_ / "new/reg.sqlite3");
  EXPECT_EQ(store->CreateKey(kHkeyCurrentUser, "x", h), WinError::AccessDenied);
}

// Runs `body` in a child process; returns its exit status.
template <class F>
pid_t Spawn(F body) {
  const pid_t pid = fork();
  if (pid == 0) _exit(body());
  return pid;
}

int ExitCode(pid_t pid) {
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST_F(RegistryStoreTest, TwoProcessesWritingAtOnceLoseNothing) {
  const std::string path = dir_ / "shared.sqlite3";
  constexpr int kEach = 1000;
  auto writer = [&](char tag) {
    return [&path, tag] {
      auto store = OpenRegistryStore(path);
      for (int i = 0; i < kEach; ++i) {
        RegHandle h = 0;
        if (store->CreateKey(kHkeyCurrentUser, "Software\\Shared", h) != 0) return 1;
        const std::string name = std::string(1, tag) + std::to_string(i);
        if (store->SetValue(h, name, RegType::Dword, reinterpret_cast<const std::uint8_t*>(&i), 4) != 0)
          return 2;
        store->CloseKey(h);
      }
      return 0;
    };
  };
  const pid_t a = Spawn(writer('a'));
  const pid_t b = Spawn(writer('b'));
  ASSERT_EQ(ExitCode(a), 0);
  ASSERT_EQ(ExitCode(b), 0);

  auto store = OpenRegistryStore(path);
  const RegHandle h = Open(kHkeyCurrentUser, "Software\\Shared", RegAccess::Read, store.get());
  std::set<std::string> names;
  std::string name;
  for (std::uint32_t i = 0; store->EnumValue(h, i, name, nullptr, nullptr) == 0; ++i) names.insert(name);
  EXPECT_EQ(names.size(), 2u * kEach);
  for (int i = 0; i < kEach; ++i)
    ASSERT_EQ(Data(h, "b" + std::to_string(i), store.get()),
              std::string(reinterpret_cast<const char*>(&i), 4));
}

TEST_F(RegistryStoreTest, AWriterKilledMidTransactionLeavesEveryCommittedValue) {
  const std::string path = dir_ / "crash.sqlite3";
  int pipeFd[2];
  ASSERT_EQ(pipe(pipeFd), 0);
  constexpr int kCommitted = 40;
  constexpr int kImported = 50000;
  const pid_t child = Spawn([&] {
    close(pipeFd[0]);
    auto store = OpenRegistryStore(path);
    RegHandle h = 0;
    if (store->CreateKey(kHkeyCurrentUser, "Software\\Committed", h) != 0) return 1;
    for (int i = 0; i < kCommitted; ++i) {
      const std::string name = "v" + std::to_string(i);
      if (store->SetValue(h, name, RegType::String, reinterpret_cast<const std::uint8_t*>(name.data()),
                          static_cast<std::uint32_t>(name.size())) != 0)
        return 2;
      if (write(pipeFd[1], "c", 1) != 1) return 3;  // acknowledged only once committed
    }
    // One long transaction, killed while it runs.
    std::string text = "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Import]\n";
    for (int i = 0; i < kImported; ++i) text += "\"n" + std::to_string(i) + "\"=dword:00000001\n";
    if (write(pipeFd[1], "i", 1) != 1) return 3;
    for (;;) store->ImportRegText(text);
  });
  close(pipeFd[1]);
  int acknowledged = 0;
  char c = 0;
  while (read(pipeFd[0], &c, 1) == 1 && c == 'c') ++acknowledged;
  ASSERT_EQ(c, 'i');
  usleep(30000);
  kill(child, SIGKILL);
  EXPECT_EQ(ExitCode(child), 128 + SIGKILL);
  close(pipeFd[0]);

  auto store = OpenRegistryStore(path);
  const RegHandle h = Open(kHkeyCurrentUser, "Software\\Committed", RegAccess::Read, store.get());
  EXPECT_EQ(acknowledged, kCommitted);
  for (int i = 0; i < acknowledged; ++i)
    EXPECT_EQ(Data(h, "v" + std::to_string(i), store.get()), "v" + std::to_string(i) + '\0') << i;
  // The import is there whole or not at all.
  RegHandle imp = 0;
  if (store->OpenKey(kHkeyCurrentUser, "Software\\Import", RegAccess::Read, imp) == 0) {
    std::string name;
    EXPECT_EQ(store->EnumValue(imp, kImported - 1, name, nullptr, nullptr), 0);
    EXPECT_EQ(store->EnumValue(imp, kImported, name, nullptr, nullptr), WinError::NoMoreItems);
  }
  // And the store takes writes again.
  RegHandle w = 0;
  EXPECT_EQ(store->CreateKey(kHkeyCurrentUser, "Software\\After", w), 0);
}

}  // namespace
