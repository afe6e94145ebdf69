// The class catalogue, CreateObject and the localizer's string table.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "frame/ClassCatalogue.hpp"
#include "frame/Globals.hpp"
#include "frame/StringTable.hpp"
#include "TestSupport.hpp"

using namespace TessarkAO;

namespace {
using Testing::ErrorOf;
}  // namespace

TEST(Catalogue, ThirtyOneClassesWithDistinctIdentifiers) {
  const auto classes = LibraryClasses();
  ASSERT_EQ(classes.size(), 31u);
  std::set<std::string_view> ids;
  int counted = 0;
  for (const ClassRecord& r : classes) {
    EXPECT_EQ(r.progId, "TessarkAO." + std::string(r.name));
    EXPECT_TRUE(ids.insert(r.clsid).second) << r.name;
    EXPECT_TRUE(ids.insert(r.iid).second) << r.name;
    for (auto e : r.earlierIids) EXPECT_TRUE(ids.insert(e).second) << r.name;
    counted += r.counted ? 1 : 0;
  }
  EXPECT_EQ(counted, 21);  // the classes that share the localizer's lifecycle
  EXPECT_EQ(Catalogue().size(), 31u);
}

// An object takes part in the instance count exactly when its class is marked
// counted, with the counted objects it makes for itself: a TKTransform's
// three local axes, a placed builder's TKPosition.
TEST(Catalogue, InstanceCountFollowsTheCountedFlag) {
  const std::map<std::string_view, int> parts = {{"TKTransform", 3},      {"TKExtrudeShape", 1},
                                                 {"TKSMExtrudeShape", 1}, {"TKSMFormingShape", 1},
                                                 {"TKSMConicShape", 1},   {"TKSMCurvedStockShape", 1}};
  const std::int32_t before = Globals::InstanceCount();
  for (const ClassRecord& r : LibraryClasses()) {
    {
      Ref<Object> o = CreateObject(r.progId);
      const int own = parts.contains(r.name) ? parts.at(r.name) : 0;
      EXPECT_EQ(Globals::InstanceCount() - before, r.counted ? 1 + own : 0) << r.name;
    }
    EXPECT_EQ(Globals::InstanceCount(), before) << r.name;
  }
}

TEST(Catalogue, CreateObjectByProgIdOrClsid) {
  EXPECT_EQ(CreateObject("TessarkAO.Localizer")->TypeName(), "Localizer");
  EXPECT_EQ(CreateObject("tessarkao.localizer")->TypeName(), "Localizer");
  EXPECT_EQ(CreateObject("{B0131D2E-07ED-11D3-80A0-00C04F6BFADF}")->TypeName(), "Localizer");
  EXPECT_EQ(CreateObject("b0131d2e-07ed-11d3-80a0-00c04f6bfadf")->TypeName(), "Localizer");
  EXPECT_EQ(ErrorOf([] { CreateObject("TessarkAO.NoSuchClass"); }), 429);
  EXPECT_EQ(ErrorOf([] { CreateObject("{00000000-0000-0000-0000-000000000000}"); }), 429);
  EXPECT_EQ(ErrorOf([] { CreateObject(""); }), 429);
}

TEST(Localizer, LoadsEveryTextAndRaisesOutsideTheTable) {
  Variant loc(CreateObject("TessarkAO.Localizer"));
  EXPECT_EQ(ToString(loc.Call("LoadString", 101)), "millimeters");
  EXPECT_EQ(ToString(loc.Call("LoadString", 116)),
            "Excel does not seem to be installed on this system.  Unable to export.");
  EXPECT_EQ(ToString(loc.Call("LoadString", "114")), "Text Files (*.txt)|*.txt|All Files (*.*)|*.*");
  EXPECT_NE(ToString(loc.Call("LoadString", 111)).find("deliminated"), std::string::npos);
  EXPECT_EQ(ErrorOf([&] { loc.Call("LoadString", 100); }), 326);
  EXPECT_EQ(ErrorOf([&] { loc.Call("LoadString", 125); }), 326);
  int n = 0;
  for (const auto& [id, text] : StringTableEntries()) {
    EXPECT_EQ(id, 101 + n++);
    EXPECT_EQ(*LookupString(id), text);
  }
  EXPECT_EQ(n, 24);
}
