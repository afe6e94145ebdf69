// Helpers of the system tests: a private registry store and locale for each
// test, a scriptable host object, and late-bound calls with readable outputs.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "automation/Object.hpp"
#include "automation/Variant.hpp"
#include "platform/PlatformTestSupport.hpp"
#include "platform/Registry.hpp"
#include "TestSupport.hpp"

namespace TessarkAO::Testing {

// Each test gets an empty registry store of its own and an English locale.
class SystemTest : public ::testing::Test {
 protected:
  SystemTest() : lcAll_("LC_ALL", "C") { SetRegistry(OpenRegistryStore(dir_ / "registry.sqlite3")); }
  ~SystemTest() override { SetRegistry(nullptr); }

  // Imports REGEDIT4 lines (the header is added).
  void Import(const std::string& lines) {
    ASSERT_EQ(GetRegistry().ImportRegText("REGEDIT4\n" + lines), 0) << GetRegistry().LastError();
  }

  TempDir dir_;
  ScopedEnv lcAll_;
};

// A late-bound call whose arguments stay readable afterwards (outputs).
struct CallResult {
  Variant result;
  std::vector<Variant> args;
};
inline CallResult Invoke(const Ref<Object>& o, std::string_view name, CallKind kind, std::vector<Variant> args = {}) {
  CallResult r;
  r.args = std::move(args);
  r.result = o->Invoke(name, kind, r.args);
  return r;
}
inline CallResult Method(const Ref<Object>& o, std::string_view name, std::vector<Variant> args = {}) {
  return Invoke(o, name, CallKind::Method, std::move(args));
}
inline Variant Prop(const Ref<Object>& o, std::string_view name, std::vector<Variant> args = {}) {
  return Invoke(o, name, CallKind::Get, std::move(args)).result;
}


}  // namespace TessarkAO::Testing
