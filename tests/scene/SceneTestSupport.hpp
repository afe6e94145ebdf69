// Helpers for the scene tests: reference-host scenes built through the host's
// own members, and the host's call journal.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Variant.hpp"
#include "refhost/RefHost.hpp"
#include "refhost/RefHostTestSupport.hpp"
#include "TestSupport.hpp"

namespace TessarkAO::SceneTest {

using namespace RefHostTest;  // Root, Comp, SetVar, GetVar

inline Variant Page(const Variant& app) { return app.Get("ActivePage"); }

inline std::int32_t CountOf(const Variant& shape, int type) {
  return ToLong(shape.Get("Components", type).Get("Count"));
}

// A new shape of `kind` named `name` under an assembly (1) or a part (3).
inline Variant AddShape(const Variant& parent, int kind, const std::string& name) {
  Variant shape = RefHostTest::AddShape(parent, kind);
  shape.Let("Name", name);
  return shape;
}

inline bool Same(const Variant& a, const Variant& b) { return a.AsObject().get() == b.AsObject().get(); }

// A scene in millimetres and degrees: an assembly, a part in it, an extrude in that.
struct ThreeLevels : ::testing::Test {
  Variant app{RefHost::NewApplication()};
  Variant assembly = AddShape(Root(app), 1, "Assembly");
  Variant part = AddShape(assembly, 3, "Part");
  Variant extrude = AddShape(part, 5, "Extrude");
};

// Records the host calls made while it lives.
class Journal {
 public:
  Journal() {
    RefHost::ClearJournal();
    RefHost::StartJournal();
  }
  ~Journal() {
    RefHost::StopJournal();
    RefHost::ClearJournal();
  }
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  void Clear() { RefHost::ClearJournal(); }
  std::vector<RefHost::JournalEntry> Entries() const { return RefHost::Journal(); }
  // The calls of a member, on `object` when given (its journal name, "Scene1//Part").
  std::vector<RefHost::JournalEntry> Calls(const std::string& member, const std::string& object = {}) const {
    std::vector<RefHost::JournalEntry> out;
    for (const RefHost::JournalEntry& e : RefHost::Journal())
      if (e.member == member && (object.empty() || e.object == object)) out.push_back(e);
    return out;
  }
  std::size_t Count(const std::string& member, const std::string& object = {}) const {
    return Calls(member, object).size();
  }
};

}  // namespace TessarkAO::SceneTest
