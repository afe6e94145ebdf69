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

// A host variable: Value (get, let; also the default member) and Expression.
inline Ref<FakeObject> MakeVariable(std::string name, CallLog log, Variant value, std::string expression = {}) {
  auto state = std::make_shared<Variant>(std::move(value));
  auto v = MakeFake(std::move(name), std::move(log));
  v->On("Value", [state](CallKind kind, std::span<Variant> args) {
     if (kind == CallKind::Let) *state = args.back().Deref();
     return kind == CallKind::Let ? Variant() : *state;
   }).Returns("Expression", Variant(std::move(expression)));
  return v;
}

// A collection with Count and Item(i), 1-based.
inline Ref<FakeObject> MakeCollection(std::string name, CallLog log, std::vector<Ref<Object>> items) {
  auto c = MakeFake(std::move(name), std::move(log));
  const auto count = static_cast<std::int32_t>(items.size());
  c->Returns("Count", Variant(count)).On("Item", [items](CallKind, std::span<Variant> args) {
    const std::int32_t i = ToLong(args[0]);
    if (i < 1 || i > static_cast<std::int32_t>(items.size())) Raise(Err::InvalidCall);
    return Variant(items[static_cast<std::size_t>(i) - 1]);
  });
  return c;
}

// One curve of a host path as the profile reader sees it.
struct FakeCurveSpec {
  std::int32_t type = 1;
  std::map<std::int32_t, double> vars;            // variable number -> value
  std::map<std::int32_t, std::string> expressions;  // variable number -> formula
  bool closed = false, periodic = false;
  std::int32_t degree = 0;
  std::vector<std::pair<double, double>> controlPoints, fitPoints;
  std::vector<double> knots, weights;
};

inline FakeCurveSpec CurveSpec(std::int32_t type, std::map<std::int32_t, double> vars,
                               std::map<std::int32_t, std::string> expressions = {}) {
  FakeCurveSpec c;
  c.type = type;
  c.vars = std::move(vars);
  c.expressions = std::move(expressions);
  return c;
}

struct FakePathSpec {
  bool closed = false;
  std::int32_t construction = 0;
  double startX = 0, startY = 0;
  std::vector<FakeCurveSpec> curves;
};

// A host path: Closed, Construction, Variable(curve, n) (curve 0 the start
// point; a variable the spec lacks raises 5 as the host does) and Curves,
// whose items carry Type and the B-spline members.  Variables are named
// "v<curve>.<n>", curves "c<curve>".
inline Ref<FakeObject> MakePath(std::string name, CallLog log, const FakePathSpec& spec) {
  auto vars = std::make_shared<std::map<std::pair<std::int32_t, std::int32_t>, Ref<FakeObject>>>();
  auto addVar = [&](std::int32_t j, std::int32_t n, double value, std::string expression) {
    (*vars)[{j, n}] = MakeVariable("v" + std::to_string(j) + "." + std::to_string(n), log, Variant(value),
                                   std::move(expression));
  };
  addVar(0, 1, spec.startX, {});
  addVar(0, 2, spec.startY, {});
  std::vector<Ref<Object>> curves;
  for (std::size_t k = 0; k < spec.curves.size(); ++k) {
    const FakeCurveSpec& cs = spec.curves[k];
    const auto j = static_cast<std::int32_t>(k + 1);
    for (const auto& [n, value] : cs.vars) addVar(j, n, value, cs.expressions.count(n) ? cs.expressions.at(n) : "");
    auto c = MakeFake("c" + std::to_string(j), log);
    auto points = [](const std::vector<std::pair<double, double>>& pts) {
      return [pts](CallKind, std::span<Variant> args) {
        const auto& p = pts.at(static_cast<std::size_t>(ToLong(args[0])) - 1);
        args[1].Assign(Variant(p.first));
        args[2].Assign(Variant(p.second));
        return Variant();
      };
    };
    auto values = [](const std::vector<double>& v) {
      return [v](CallKind, std::span<Variant> args) {
        return Variant(v.at(static_cast<std::size_t>(ToLong(args[0])) - 1));
      };
    };
    c->Returns("Type", Variant(cs.type))
        .Returns("Closed", Variant(cs.closed))
        .Returns("Periodic", Variant(cs.periodic))
        .Returns("Degree", Variant(cs.degree))
        .Returns("ControlPoints", Variant(static_cast<std::int32_t>(cs.controlPoints.size())))
        .Returns("FitPoints", Variant(static_cast<std::int32_t>(cs.fitPoints.size())))
        .Returns("Knots", Variant(static_cast<std::int32_t>(cs.knots.size())))
        .Returns("Weights", Variant(static_cast<std::int32_t>(cs.weights.size())))
        .On("GetControlPoint", points(cs.controlPoints))
        .On("GetFitPoint", points(cs.fitPoints))
        .On("GetKnot", values(cs.knots))
        .On("GetWeight", values(cs.weights));
    curves.push_back(c);
  }
  auto p = MakeFake(std::move(name), log);
  p->Returns("Closed", Variant(spec.closed))
      .Returns("Construction", Variant(spec.construction))
      .Returns("Curves", Variant(MakeCollection("curves", log, std::move(curves))))
      .On("Variable", [vars](CallKind, std::span<Variant> args) {
        auto it = vars->find({ToLong(args[0]), ToLong(args[1])});
        if (it == vars->end()) Raise(Err::InvalidCall);
        return Variant(it->second);
      });
  return p;
}

inline int ErrorNumber(const std::function<void()>& f) {
  try {
    f();
  } catch (const AutomationError& e) {
    return e.Number();
  }
  return 0;
}

}  // namespace TessarkAO::Testing
