#include "frame/Globals.hpp"

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "automation/Catalogue.hpp"
#include "frame/ClassCatalogue.hpp"

namespace TessarkAO::Globals {

namespace {
std::int32_t g_count = 0;
Ref<Object>& Localizer() {
  static Ref<Object>* shared = new Ref<Object>();  // outlives static destruction
  return *shared;
}
}  // namespace

void RegisterInstance(std::string_view mainDllName, std::string_view projectName) {
  ++g_count;
  if (Localizer()) return;
  // A temporary TKSystemUtils builds the localizer and goes at once.  Its
  // SetLocaleDLL never raises; should the class itself be unavailable the
  // localizer stays empty and the next registration tries again.
  try {
    Ref<Object> utils = CreateObject("TessarkAO.TKSystemUtils");
    Variant result =
        Variant(utils).Call("SetLocaleDLL", std::string(mainDllName), std::string(projectName));
    if (result.IsObject()) Localizer() = result.AsObject();
  } catch (const AutomationError&) {
  }
}

void ReleaseInstance() {
  --g_count;
  if (g_count < 1) {
    g_count = 0;
    Ref<Object> old = std::move(Localizer());
    Localizer() = Ref<Object>();
  }
}

std::int32_t InstanceCount() noexcept { return g_count; }

Ref<Object> SharedLocalizer() noexcept { return Localizer(); }

std::string LoadString(std::int32_t id) {
  Ref<Object> loc = Localizer();
  if (!loc) Raise(Err::ObjectNotSet);
  return ToString(Variant(loc).Call("LoadString", id));
}

}  // namespace TessarkAO::Globals

namespace TessarkAO {

InstanceRegistration::InstanceRegistration() {
  Globals::RegisterInstance(kMainDllName, kProjectName);
}

InstanceRegistration::~InstanceRegistration() { Globals::ReleaseInstance(); }

}  // namespace TessarkAO
