// What the test programs of every folder share.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "automation/Object.hpp"

namespace TessarkAO::Testing {

// The number of the automation error `f` raises, 0 when it raises none; with
// `description`, the error's description is stored there too.
inline int ErrorOf(const std::function<void()>& f, std::string* description = nullptr) {
  try {
    f();
  } catch (const AutomationError& e) {
    if (description) *description = e.Description();
    return e.Number();
  }
  return 0;
}

// A host object whose members are lambdas, recording each call by name.
class FakeObject final : public Object {
 public:
  using Member = std::function<Variant(CallKind, std::span<Variant>)>;
  FakeObject& On(const std::string& name, Member m) {
    members_[LowerCase(name)] = std::move(m);
    return *this;
  }
  FakeObject& Value(const std::string& name, Variant v) {
    return On(name, [v](CallKind, std::span<Variant>) { return v; });
  }
  Variant Invoke(std::string_view name, CallKind kind, std::span<Variant> args) override {
    calls.push_back(std::string(name));
    auto it = members_.find(LowerCase(name));
    if (it == members_.end()) Raise(Err::NoSuchMember);
    return it->second(kind, args);
  }
  std::vector<std::string> calls;

 private:
  std::map<std::string, Member> members_;
};

}  // namespace TessarkAO::Testing
