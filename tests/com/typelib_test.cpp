// The type-library and string-resource writers, driven by member tables,
// and what DllRegisterServer writes and DllUnregisterServer removes.
#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>

#include "calls/CallProbe.hpp"
#include "com/Guid.hpp"
#include "com/Registration.hpp"
#include "com/TypeLibraryWriter.hpp"
#include "frame/ClassCatalogue.hpp"
#include "frame/StringTable.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Com;

namespace {

constexpr std::array<std::string_view, 2> kEarlier = {"{11111111-2222-3333-4444-555555555555}",
                                                      "{66666666-7777-8888-9999-AAAAAAAAAAAA}"};
const ClassRecord kSampleRecord{"Sample", "TessarkAO.Sample", "{47ACD0FF-AF38-11D2-99DB-00A0244EC406}",
                                "{FC2139FF-4068-11D3-80CC-00C04F6BFADF}", kEarlier, false};

std::string SampleIdl() {
  const ServedClass c{&kSampleRecord, &Testing::CallProbe::StaticClass()};
  return WriteIdl(ServerTypeLibrary(), std::span<const ServedClass>(&c, 1));
}

bool Has(const std::string& text, const std::string& line) { return text.find(line) != std::string::npos; }

constexpr std::string_view kPath = "C:\\Program Files\\Tessark\\tktools.dll";

std::string Find(const std::vector<RegistryValue>& values, const std::string& key,
                 const std::string& name = "") {
  for (const RegistryValue& v : values)
    if (v.key == key && v.name == name) return v.data;
  return "<absent>";
}

bool Below(const std::string& key, const std::string& tree) {
  return key == tree ||
         (key.size() > tree.size() && key.compare(0, tree.size(), tree) == 0 && key[tree.size()] == '\\');
}

}  // namespace

TEST(TypeLibraryWriter, MembersBecomeDispatchInterfaceEntriesInSlotOrder) {
  const std::string idl = SampleIdl();
  const std::vector<std::string> expected = {
      "[id(1), propget] double X();",
      "[id(1), propput] void X([in] double rhs);",
      "[id(3)] long Sum([in] long a, [in, optional, defaultvalue(10)] long b);",
      "[id(4)] VARIANT_BOOL Seen([in, optional] VARIANT v);",
      "[id(5), vararg] BSTR List([in] BSTR prefix, [in] SAFEARRAY(VARIANT) items);",
      "[id(6)] void GetPair([in, out] long* a, [in, out] double* b);",
      // The default member is DISPID_VALUE.
      "[id(0), propget] long Item([in] long index);",
      "[id(0), propput] void Item([in] long index, [in] long rhs);",
      "[id(11), propget] IDispatch* Child();",
      "[id(11), propputref] void Child([in] IDispatch* rhs);",
      // A default the library cannot state (a fraction) leaves an optional
      // VARIANT; a reserved word is renamed.
      "[id(16)] double Scale([in, optional] VARIANT double_);",
      "[id(17)] BSTR Label([in, optional, defaultvalue(\"a\\\"b\")] BSTR text, "
      "[in, optional, defaultvalue(-1)] VARIANT_BOOL upper);",
  };
  std::size_t at = 0;
  for (const std::string& line : expected) {
    const std::size_t found = idl.find(line, at);
    ASSERT_NE(found, std::string::npos) << line << "\n" << idl;
    at = found;
  }
}

TEST(TypeLibraryWriter, LibraryInterfaceAndClassCarryTheCatalogueIdentifiers) {
  const std::string idl = SampleIdl();
  EXPECT_TRUE(Has(idl, "import \"TypeLibraryBase.idl\";"));
  EXPECT_TRUE(Has(idl, "uuid(" + std::string(StripBraces(kTypeLibraryId)) + "),\n  version(1.0)"));
  EXPECT_TRUE(Has(idl, "library TessarkAO\n{\n  importlib(\"stdole2.tlb\");"));
  EXPECT_TRUE(Has(idl, "[uuid(FC2139FF-4068-11D3-80CC-00C04F6BFADF), hidden"));
  EXPECT_TRUE(Has(idl, "dispinterface _Sample {"));
  EXPECT_TRUE(Has(idl, "[uuid(47ACD0FF-AF38-11D2-99DB-00A0244EC406), helpstring(\"TessarkAO.Sample\")]\n"
                       "  coclass Sample {\n    [default] dispinterface _Sample;\n  };"));
}

TEST(TypeLibraryWriter, IdentifiersAreMadeUsable) {
  EXPECT_EQ(IdlIdentifier("dblX"), "dblX");
  EXPECT_EQ(IdlIdentifier("double"), "double_");
  EXPECT_EQ(IdlIdentifier("Interface"), "Interface_");  // widl's words compare without case here
  EXPECT_EQ(IdlIdentifier("2nd value"), "_2nd_value");
  EXPECT_EQ(IdlIdentifier(""), "_");
}

TEST(TypeLibraryWriter, EveryServedClassAppearsOnceWithItsInterface) {
  const std::vector<ServedClass> served = ServedClasses();
  const std::string idl = WriteIdl(ServerTypeLibrary(), served);
  // Every member's entry, by name and dispatch id, is client_test's, in the compiled library.
  for (const ServedClass& c : served) {
    const std::string coclass = "coclass " + std::string(c.record->name) + " {";
    EXPECT_EQ(idl.find(coclass), idl.rfind(coclass)) << c.record->name;
    EXPECT_TRUE(Has(idl, "[uuid(" + std::string(StripBraces(c.record->iid)) + "), hidden")) << c.record->name;
  }
  // The interfaces' enumerations, with their constants' values, and the members' help strings.
  EXPECT_TRUE(Has(idl, "enum TKColumnTypes {\n    TKColumnType_None = 0,\n    TKColumnType_Double = 1,\n"
                       "    TKColumnType_Object = 2,\n    TKColumnType_String = 3\n  } TKColumnTypes;"));
  EXPECT_TRUE(Has(idl, "TKTOOL_BEARINGS = 12\n"));
  EXPECT_TRUE(Has(idl, "propget, helpstring(\"The number of columns.\")] long NumberOfColumns("));
}

TEST(StringTableScript, EveryEntryQuotedForTheResourceCompiler) {
  const std::string rc = WriteStringTableScript(StringTableEntries());
  EXPECT_TRUE(Has(rc, "#pragma code_page(65001)"));
  EXPECT_TRUE(Has(rc, "LANGUAGE 9, 1\nSTRINGTABLE\nBEGIN\n"));
  for (const auto& [id, text] : StringTableEntries())
    EXPECT_TRUE(Has(rc, "  " + std::to_string(id) + ", \"" + std::string(text) + "\"\n")) << id;
  const std::pair<std::int32_t, std::string_view> odd[] = {{7, "say \"hi\" \\ bye"}};
  EXPECT_TRUE(Has(WriteStringTableScript(odd), "  7, \"say \"\"hi\"\" \\\\ bye\"\n"));
}

TEST(Guid, ParsesTheCatalogueFormsAndRejectsTheRest) {
  const auto g = ParseGuid("{47acd072-AF38-11d2-99DB-00A0244EC406}");
  ASSERT_TRUE(g);
  EXPECT_EQ(FormatGuid(*g), "{47ACD072-AF38-11D2-99DB-00A0244EC406}");
  EXPECT_EQ(ParseGuid("47ACD072-AF38-11D2-99DB-00A0244EC406"), g);
  for (std::string_view bad : {"", "{47ACD072-AF38-11D2-99DB-00A0244EC406", "47ACD072AF3811D299DB00A0244EC406",
                               "{47ACD072-AF38-11D2-99DB-00A0244EC40G}", "{47ACD072-AF38+11D2-99DB-00A0244EC406}",
                               "(47ACD072-AF38-11D2-99DB-00A0244EC406)"})
    EXPECT_FALSE(ParseGuid(bad)) << bad;
  for (const ClassRecord& r : LibraryClasses()) {
    for (std::string_view id : {r.clsid, r.iid}) {
      const auto parsed = ParseGuid(id);
      ASSERT_TRUE(parsed) << id;
      EXPECT_EQ(FormatGuid(*parsed), id);
    }
  }
}

TEST(Registration, ClassProgIdInterfacesAndTypeLibrary) {
  const ServedClass c{&kSampleRecord, nullptr};
  const auto values = RegistrationValues(std::span<const ServedClass>(&c, 1), kPath, ServerTypeLibrary());
  const std::string clsid = "CLSID\\{47ACD0FF-AF38-11D2-99DB-00A0244EC406}";
  EXPECT_EQ(Find(values, clsid), "TessarkAO.Sample");
  EXPECT_EQ(Find(values, clsid + "\\InprocServer32"), kPath);
  EXPECT_EQ(Find(values, clsid + "\\InprocServer32", "ThreadingModel"), "Apartment");
  EXPECT_EQ(Find(values, clsid + "\\ProgID"), "TessarkAO.Sample");
  EXPECT_EQ(Find(values, clsid + "\\TypeLib"), std::string(kTypeLibraryId));
  EXPECT_EQ(Find(values, "TessarkAO.Sample\\Clsid"), "{47ACD0FF-AF38-11D2-99DB-00A0244EC406}");
  // The default interface and every earlier one go to the dispatch marshaller.
  for (std::string_view iid : {kSampleRecord.iid, kEarlier[0], kEarlier[1]}) {
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
    EXPECT_TRUE(t.rfind("CLSID\\{", 0) == 0 || t.rfind("Interface\\{", 0) == 0 ||
                t.rfind("TypeLib\\{", 0) == 0 || t.rfind("TessarkAO.", 0) == 0)
        << t;
}
