// What DllRegisterServer writes and DllUnregisterServer removes.
#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>

#include "com/Registration.hpp"
#include "frame/ClassCatalogue.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Com;

namespace {

constexpr std::array<std::string_view, 2> kEarlier = {"{11111111-2222-3333-4444-555555555555}",
                                                      "{66666666-7777-8888-9999-AAAAAAAAAAAA}"};
const ClassRecord kRecord{"Sample", "TessarkAO.Sample", "{47ACD0FF-AF38-11D2-99DB-00A0244EC406}",
                          "{FC2139FF-4068-11D3-80CC-00C04F6BFADF}", kEarlier, false};
constexpr std::string_view kPath = "C:\\Program Files\\Tessark\\tktools.dll";

std::string Find(const std::vector<RegistryValue>& values, const std::string& key, const std::string& name = "") {
  for (const RegistryValue& v : values)
    if (v.key == key && v.name == name) return v.data;
  return "<absent>";
}

bool Below(const std::string& key, const std::string& tree) {
  return key == tree || (key.size() > tree.size() && key.compare(0, tree.size(), tree) == 0 && key[tree.size()] == '\\');
}

}  // namespace

TEST(Registration, ClassProgIdInterfacesAndTypeLibrary) {
  const ServedClass c{&kRecord, nullptr};
  const auto values = RegistrationValues(std::span<const ServedClass>(&c, 1), kPath, ServerTypeLibrary());
  const std::string clsid = "CLSID\\{47ACD0FF-AF38-11D2-99DB-00A0244EC406}";
  EXPECT_EQ(Find(values, clsid), "TessarkAO.Sample");
  EXPECT_EQ(Find(values, clsid + "\\InprocServer32"), kPath);
  EXPECT_EQ(Find(values, clsid + "\\InprocServer32", "ThreadingModel"), "Apartment");
  EXPECT_EQ(Find(values, clsid + "\\ProgID"), "TessarkAO.Sample");
  EXPECT_EQ(Find(values, clsid + "\\TypeLib"), std::string(kTypeLibraryId));
  EXPECT_EQ(Find(values, "TessarkAO.Sample\\Clsid"), "{47ACD0FF-AF38-11D2-99DB-00A0244EC406}");
  // The default interface and every earlier one go to the dispatch marshaller.
  for (std::string_view iid : {kRecord.iid, kEarlier[0], kEarlier[1]}) {
    const std::string key = "Interface\\" + std::string(iid);
    EXPECT_EQ(Find(values, key), "_Sample") << iid;
    EXPECT_EQ(Find(values, key + "\\ProxyStubClsid32"), std::string(kDispatchProxyStub));
    EXPECT_EQ(Find(values, key + "\\TypeLib", "Version"), "1.0");
  }
  const std::string lib = "TypeLib\\" + std::string(kTypeLibraryId) + "\\1.0";
  EXPECT_EQ(Find(values, lib + "\\0\\win64"), kPath);
  EXPECT_EQ(Find(values, lib + "\\HELPDIR"), "C:\\Program Files\\Tessark");
  EXPECT_EQ(Find(values, lib + "\\FLAGS"), "0");
}

TEST(Registration, UnregistrationCoversEverythingRegistrationWrites) {
  // Every catalogued class registered at once: each value lies in a tree
  // that unregistration removes, and the trees name every class.
  std::vector<ServedClass> all;
  for (const ClassRecord& r : LibraryClasses()) all.push_back({&r, nullptr});
  const auto values = RegistrationValues(all, kPath, ServerTypeLibrary());
  const auto trees = RegistrationTrees(LibraryClasses(), ServerTypeLibrary());
  for (const RegistryValue& v : values) {
    bool covered = false;
    for (const std::string& t : trees) covered = covered || Below(v.key, t);
    EXPECT_TRUE(covered) << v.key;
  }
  const std::set<std::string> unique(trees.begin(), trees.end());
  EXPECT_EQ(unique.size(), trees.size());
  for (const ClassRecord& r : LibraryClasses()) {
    EXPECT_TRUE(unique.count("CLSID\\" + std::string(r.clsid))) << r.name;
    EXPECT_TRUE(unique.count(std::string(r.progId))) << r.name;
  }
  // Nothing outside the server's own identifiers is touched.
  for (const std::string& t : trees)
    EXPECT_TRUE(t.rfind("CLSID\\{", 0) == 0 || t.rfind("Interface\\{", 0) == 0 || t.rfind("TypeLib\\{", 0) == 0 ||
                t.rfind("TessarkAO.", 0) == 0)
        << t;
}
