#include "automation/Catalogue.hpp"

#include <mutex>
#include <string>
#include <unordered_map>

#include "automation/AutomationError.hpp"
#include "automation/Members.hpp"

namespace TessarkAO {

namespace {

struct State {
  std::mutex mutex;
  std::span<const ClassRecord> records;
  std::unordered_map<std::string, Factory> factories;  // by lower-cased class name
  std::unordered_map<std::string, Factory> foreign;    // by lower-cased ProgID
  SystemFactory system = nullptr;
};

State& GetState() {
  static State* s = new State();  // never destroyed: factories register at load time
  return *s;
}

std::string Lower(std::string_view s) {
  std::string out(s);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
  return out;
}

// "{47ACD072-...}" and "47acd072-..." name the same CLSID.
std::string_view StripBraces(std::string_view s) {
  if (s.size() >= 2 && s.front() == '{' && s.back() == '}') return s.substr(1, s.size() - 2);
  return s;
}

}  // namespace

void RegisterCatalogue(std::span<const ClassRecord> records) {
  State& s = GetState();
  std::lock_guard lock(s.mutex);
  s.records = records;
}

std::span<const ClassRecord> Catalogue() {
  State& s = GetState();
  std::lock_guard lock(s.mutex);
  return s.records;
}

void RegisterFactory(std::string_view className, Factory factory) {
  State& s = GetState();
  std::lock_guard lock(s.mutex);
  s.factories[Lower(className)] = factory;
}

bool HasFactory(std::string_view className) {
  State& s = GetState();
  std::lock_guard lock(s.mutex);
  return s.factories.count(Lower(className)) != 0;
}

void RegisterForeignProgId(std::string_view progId, Factory factory) {
  State& s = GetState();
  std::lock_guard lock(s.mutex);
  if (factory)
    s.foreign[Lower(progId)] = factory;
  else
    s.foreign.erase(Lower(progId));
}

void SetSystemFactory(SystemFactory factory) {
  State& s = GetState();
  std::lock_guard lock(s.mutex);
  s.system = factory;
}

const ClassRecord* FindClass(std::string_view id) noexcept {
  State& s = GetState();
  std::lock_guard lock(s.mutex);
  const std::string_view bare = StripBraces(id);
  for (const ClassRecord& r : s.records) {
    if (EqualsNoCase(r.progId, id) || EqualsNoCase(StripBraces(r.clsid), bare)) return &r;
  }
  return nullptr;
}

namespace {
// 429 naming the identifier that could not be created.
[[noreturn]] void RaiseCannotCreate(std::string_view id) {
  throw AutomationError(Err::CannotCreateObject,
                        std::string(StandardDescription(Err::CannotCreateObject)) + ": " + std::string(id));
}
}  // namespace

Ref<Object> CreateClass(std::string_view className) {
  Factory factory = nullptr;
  {
    State& s = GetState();
    std::lock_guard lock(s.mutex);
    auto it = s.factories.find(Lower(className));
    if (it != s.factories.end()) factory = it->second;
  }
  Ref<Object> o = factory ? factory() : Ref<Object>();
  if (!o) RaiseCannotCreate(className);
  return o;
}

Ref<Object> CreateObject(std::string_view id) {
  Factory factory = nullptr;
  SystemFactory system = nullptr;
  if (const ClassRecord* r = FindClass(id)) {
    State& s = GetState();
    std::lock_guard lock(s.mutex);
    auto it = s.factories.find(Lower(r->name));
    if (it != s.factories.end()) factory = it->second;
  } else {
    State& s = GetState();
    std::lock_guard lock(s.mutex);
    auto it = s.foreign.find(Lower(id));
    if (it != s.foreign.end()) factory = it->second;
    system = s.system;
  }
  if (!factory && system) {
    Ref<Object> o = system(id);
    if (!o) RaiseCannotCreate(id);
    return o;
  }
  if (!factory) RaiseCannotCreate(id);
  Ref<Object> o = factory();
  if (!o) RaiseCannotCreate(id);
  return o;
}

}  // namespace TessarkAO
