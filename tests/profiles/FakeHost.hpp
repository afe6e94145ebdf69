// A scriptable stand-in for host objects: each member answers through a
// handler, and every call is written to a shared log as
// "object.Member(arg, ...)", so tests can check what was called and in
// which order without the reference host.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "automation/Members.hpp"

namespace TessarkAO::Testing {

using CallLog = std::shared_ptr<std::vector<std::string>>;

inline std::string Describe(const Variant& v) {
  const Variant& d = v.Deref();
  if (d.IsArray()) {
    std::string s = "[";
    for (const Variant& e : d.AsArray().Data()) s += (s.size() > 1 ? " " : "") + Describe(e);
    return s + "]";
  }
  if (d.IsObject()) return d.IsNothing() ? "Nothing" : "obj";
  if (d.Type() == VarType::Integer) return ToString(d) + "%";  // marks a 16-bit integer
  return ToString(d);
}

class FakeObject final : public Object {
 public:
  using Handler = std::function<Variant(CallKind, std::span<Variant>)>;

  FakeObject(std::string name, CallLog log) : name_(std::move(name)), log_(std::move(log)) {}

  FakeObject& On(const std::string& member, Handler h) {
    handlers_[LowerCase(member)] = std::move(h);
    return *this;
  }
  // A member that answers a fixed value.
  FakeObject& Returns(const std::string& member, Variant v) {
    return On(member, [v](CallKind, std::span<Variant>) { return v; });
  }

  DispId GetDispId(std::string_view name) const override {
    return handlers_.count(LowerCase(name)) ? 1 : DispIdUnknown;
  }
  Variant InvokeId(DispId id, CallKind kind, std::span<Variant> args) override {
    if (id == DispIdValue) return Invoke("Value", kind, args);
    Raise(Err::NoSuchMember);
  }
  Variant Invoke(std::string_view name, CallKind kind, std::span<Variant> args) override {
    std::string line = name_ + "." + std::string(name);
    if (kind == CallKind::Let) line += "=";
    line += "(";
    for (std::size_t i = 0; i < args.size(); ++i) line += (i ? ", " : "") + Describe(args[i]);
    log_->push_back(line + ")");
    auto it = handlers_.find(LowerCase(name));
    if (it == handlers_.end()) Raise(Err::NoSuchMember);
    return it->second(kind, args);
  }

 private:
  std::string name_;
  CallLog log_;
  std::map<std::string, Handler> handlers_;
};

inline Ref<FakeObject> MakeFake(std::string name, CallLog log) {
  return MakeRef<FakeObject>(std::move(name), std::move(log));
}

inline CallLog NewLog() { return std::make_shared<std::vector<std::string>>(); }

inline int ErrorNumber(const std::function<void()>& f) {
  try {
    f();
  } catch (const AutomationError& e) {
    return e.Number();
  }
  return 0;
}

}  // namespace TessarkAO::Testing
