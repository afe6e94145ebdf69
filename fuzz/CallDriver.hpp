// CallDriver: random late-bound calls over every class of the library, as a
// hostile caller makes them.
//
// The driver keeps a pool of objects: one of each catalogued class, a
// reference-host application with a few shapes, and host objects that
// misbehave (members missing, calls raising, wrong types, themselves as the
// answer, graphs that lead back to where they started).  Each step picks an
// object of the pool, one of its members (or, for a host object, any name),
// a call kind and arguments of every type, and makes the call.  A call may
// end in success or in an automation error; anything else (a foreign
// exception) is a defect and stops the program.  Objects returned by calls
// join the pool.
//
// Every choice comes from a Choices source, the fuzzer's input bytes.
//
// Reference cycles: as with any reference-counted object model, a caller
// that makes object A hold B and B hold A leaks both.  The driver does not
// create such cycles itself: object arguments are fresh objects, host
// objects or reference-host objects, never members of the pool that the
// callee could already be holding, so that the leak checker's report is
// about the library.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Call.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Members.hpp"
#include "automation/Variant.hpp"
#include "frame/Conventions.hpp"
#include "platform/UserInterface.hpp"
#include "refhost/RefHost.hpp"

namespace TessarkAO::Fuzz {

// Where the choices come from.
class Choices {
 public:
  virtual ~Choices() = default;
  // A number in 0 .. n-1 (n >= 1).
  virtual std::uint32_t Pick(std::uint32_t n) = 0;
  // True once a byte source is used up.
  virtual bool Exhausted() const { return false; }
  bool Chance(std::uint32_t oneIn) { return Pick(oneIn) == 0; }
};

// The fuzzer's bytes, one or two per choice; zeros once they are used up.
class ByteChoices final : public Choices {
 public:
  explicit ByteChoices(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
  std::uint32_t Pick(std::uint32_t n) override {
    if (n <= 1) return 0;
    std::uint32_t v = Next();
    if (n > 256) v = (v << 8) | Next();
    return v % n;
  }
  bool Exhausted() const override { return at_ >= bytes_.size(); }

 private:
  std::uint32_t Next() { return at_ < bytes_.size() ? bytes_[at_++] : 0u; }
  std::span<const std::uint8_t> bytes_;
  std::size_t at_ = 0;
};

// A host object whose every answer is chosen by the driver: a missing
// member, a raised error, itself, a value of any type, a small count, or a
// write into its by-reference arguments.  It holds no references, so a
// library object that keeps it makes no cycle.
class HostMock final : public Object {
 public:
  using Value = Variant (*)(Choices&);
  HostMock(Choices& choices, Value value) : choices_(choices), value_(value) {}
  Variant Invoke(std::string_view, CallKind, std::span<Variant> args) override {
    if (++depth_ > 64) {  // guards against a mock that is asked by itself
      --depth_;
      Raise(Err::AutomationFailure);
    }
    struct Leave {
      int& d;
      ~Leave() { --d; }
    } leave{depth_};
    switch (choices_.Pick(8)) {
      case 0: Raise(Err::NoSuchMember);
      case 1: {
        static constexpr std::int32_t kErrors[] = {5, 6, 7, 9, 13, 28, 91, 424, 438, 450, 1004};
        Raise(kErrors[choices_.Pick(std::size(kErrors))], "raised by a host object");
      }
      case 2: throw AutomationError(-2147467259, 0x80004005u, "Unspecified error", "Host");
      case 3: return Variant(Ref<Object>(this));
      case 4: return Variant(static_cast<std::int32_t>(choices_.Pick(4)));
      case 5:
        for (Variant& a : args)
          if (a.IsByRef() && choices_.Chance(2)) a.Assign(value_(choices_));
        return value_(choices_);
      default: return value_(choices_);
    }
  }
  std::string TypeName() const override { return "HostMock"; }

 private:
  Choices& choices_;
  Value value_;
  int depth_ = 0;
};

class CallDriver {
 public:
  explicit CallDriver(Choices& choices) : c_(choices) {
    if (HeadlessUserInterface* ui = GetHeadlessUserInterface()) ui->SetEcho(false);
    for (const ClassRecord& r : Catalogue()) {
      progIds_.emplace_back(r.progId);
      try {
        pool_.push_back(CreateObject(r.progId));
      } catch (const AutomationError&) {
      }
    }
    app_ = RefHost::NewApplication();
    const Variant app(app_);
    // The first component of a type, added when the shape has none.
    auto component = [](const Variant& shape, std::int32_t type) {
      const Variant list = shape.Get("Components", type);
      return ToLong(list.Get("Count")) == 0 ? list.Call("Add") : list.Call("Item", 1);
    };
    const Variant root = app.Get("ActivePage").Get("Shape");
    const Variant group = component(root, 2);
    const Variant part = group.Get("Shapes", 3).Call("Add");
    const Variant extrude = component(part, 23).Get("Shapes", 5).Call("Add");
    hostObjects_ = {app, app.Get("ActivePage"), root, group, part, extrude};
    for (const Variant& h : hostObjects_) pool_.push_back(h.AsObject());
  }
  ~CallDriver() {
    pool_.clear();
    hostObjects_.clear();
    app_.reset();
    if (HeadlessUserInterface* ui = GetHeadlessUserInterface()) ui->Clear();
  }
  CallDriver(const CallDriver&) = delete;
  CallDriver& operator=(const CallDriver&) = delete;

  // Makes up to `count` calls (fewer when a byte source runs out).  Returns
  // the number of calls made; `errors` counts those that raised.
  std::size_t Run(std::size_t count, std::size_t& errors) {
    std::size_t made = 0;
    for (; made < count && !c_.Exhausted(); ++made) {
      if (Step()) ++errors;
      if (made % 512 == 511)
        if (HeadlessUserInterface* ui = GetHeadlessUserInterface()) ui->Clear();
    }
    return made;
  }

  // One call; true when it ended in an automation error.
  bool Step() {
    Ref<Object> target = pool_[c_.Pick(static_cast<std::uint32_t>(pool_.size()))];
    const ClassInfo* cls = target->Class();
    std::string name;
    CallKind kind = CallKind::Get;
    std::size_t argc = 0;
    DispId id = DispIdUnknown;
    if (cls && !cls->Members().empty() && !c_.Chance(16)) {
      const MemberInfo& m = cls->Members()[c_.Pick(static_cast<std::uint32_t>(cls->Members().size()))];
      id = m.id;
      const Accessor* a = nullptr;
      switch (c_.Pick(3)) {
        case 0:
          a = m.get ? &m.get : nullptr;
          kind = m.isMethod ? CallKind::Method : CallKind::Get;
          break;
        case 1:
          a = m.let ? &m.let : nullptr;
          kind = CallKind::Let;
          break;
        default:
          a = m.set ? &m.set : nullptr;
          kind = CallKind::Set;
          break;
      }
      if (!a) {
        a = m.get ? &m.get : (m.let ? &m.let : &m.set);
        kind =
            m.get ? (m.isMethod ? CallKind::Method : CallKind::Get) : (m.let ? CallKind::Let : CallKind::Set);
      }
      // Mostly the declared count, sometimes one fewer or more.
      argc = a->params.size();
      const std::uint32_t skew = c_.Pick(8);
      if (skew == 0 && argc > 0) --argc;
      if (skew == 1) ++argc;
      if (a->paramArray) argc += c_.Pick(4);
    } else {
      static constexpr const char* kNames[] = {"Item",   "Count",      "Name", "Value",  "Type", "Parent",
                                               "Shapes", "Components", "Add",  "Update", "Zz"};
      name = kNames[c_.Pick(std::size(kNames))];
      kind = static_cast<CallKind>(1u << c_.Pick(4));
      argc = c_.Pick(4);
    }
    std::vector<Variant> storage(argc);
    std::vector<Variant> args(argc);
    for (std::size_t i = 0; i < argc; ++i) {
      storage[i] = Value();
      args[i] = c_.Chance(3) ? Variant::ByRef(storage[i]) : storage[i];
    }
    try {
      // The one call path that every front end takes.
      Variant r = id != DispIdUnknown ? Call(*target, id, kind, args) : Call(*target, name, kind, args);
      Keep(r);
      for (const Variant& a : storage) Keep(a);
      return false;
    } catch (const AutomationError&) {
      return true;
    } catch (const std::exception& e) {
      std::fprintf(stderr, "foreign exception from %s.%s: %s\n", target->TypeName().c_str(),
                   MemberName(cls, id, name).c_str(), e.what());
      std::abort();
    } catch (...) {
      std::fprintf(stderr, "unknown exception from %s.%s\n", target->TypeName().c_str(),
                   MemberName(cls, id, name).c_str());
      std::abort();
    }
  }

  // The reference-host application the calls went to.
  const Ref<Object>& Application() const noexcept { return app_; }

  // A value of any type, with the edges the runtime must handle.
  Variant Value() { return ValueOf(c_, *this); }

 private:
  static std::string MemberName(const ClassInfo* cls, DispId id, const std::string& name) {
    if (!cls || id == DispIdUnknown) return name;
    for (const MemberInfo& m : cls->Members())
      if (m.id == id) return m.name;
    return name;
  }

  static Variant ValueOf(Choices& c, CallDriver& d) {
    static constexpr std::int32_t kLongs[] = {
        0, 1, 2, 3, -1, 4, 7, 16, 100, 1000, 32767, -32768, 65536, 2147483647, -2147483647 - 1, 1000000};
    static constexpr double kDoubles[] = {0.0,
                                          -0.0,
                                          0.5,
                                          1.0,
                                          -1.0,
                                          2.5,
                                          1e-10,
                                          1e-320,
                                          1e308,
                                          -1e308,
                                          kPi,
                                          1e15,
                                          std::numeric_limits<double>::infinity(),
                                          std::numeric_limits<double>::quiet_NaN(),
                                          2147483647.5,
                                          100.0};
    static const char* const kTexts[] = {"",
                                         "0",
                                         "1",
                                         "-1",
                                         "abc",
                                         " 12 ",
                                         "1e400",
                                         "&HFFFF",
                                         "1,5",
                                         "Sizebox\\Length * 2",
                                         "TessarkAO.TKColumn",
                                         "(7)",
                                         "1E-400",
                                         "\xED\xA0\x80",
                                         "\xFF\xFE",
                                         "A\xC3\xA9\xF0\x9F\x98\x80",
                                         "//",
                                         "HKEY_CURRENT_USER\\Software\\Tessark",
                                         "x\ny"};
    switch (c.Pick(14)) {
      case 0: return Variant();
      case 1: return Variant::Null();
      case 2: return Variant::Missing();
      case 3: return Variant::Nothing();
      case 4: return Variant(static_cast<std::int16_t>(kLongs[c.Pick(std::size(kLongs))]));
      case 5: return Variant(kLongs[c.Pick(std::size(kLongs))]);
      case 6: return Variant(kDoubles[c.Pick(std::size(kDoubles))]);
      case 7: return Variant(std::string(kTexts[c.Pick(std::size(kTexts))]));
      case 8: return Variant(c.Chance(2));
      case 9: return OtherScalar(c);
      case 10: return d.ArrayValue();
      case 11: return d.ObjectValue();
      case 12: return Variant(static_cast<std::int32_t>(c.Pick(20)));
      default: return Variant(static_cast<double>(c.Pick(200)) / 4.0 - 10.0);
    }
  }

  static Variant OtherScalar(Choices& c) {
    switch (c.Pick(4)) {
      case 0: return Variant(Currency{static_cast<std::int64_t>(c.Pick(1u << 16)) * 2500});
      case 1: return Variant(Date{static_cast<double>(c.Pick(80000))});
      case 2: return Variant(static_cast<std::uint8_t>(c.Pick(256)));
      default: return Variant(static_cast<float>(c.Pick(2000)) / 8.0f - 100.0f);
    }
  }

  Variant ArrayValue() {
    static constexpr VarType kTypes[] = {VarType::Double, VarType::Long,    VarType::Variant, VarType::String,
                                         VarType::Object, VarType::Integer, VarType::Boolean};
    const VarType t = kTypes[c_.Pick(std::size(kTypes))];
    static constexpr std::int32_t kLower[] = {0, 1, -1, 5, 2147483647, -2147483647 - 1, 2147483640};
    const int dims = 1 + static_cast<int>(c_.Pick(3));
    std::vector<ArrayBound> bounds;
    for (int d = 0; d < dims; ++d)
      bounds.push_back(ArrayBound{kLower[c_.Pick(std::size(kLower))], static_cast<std::int32_t>(c_.Pick(6))});
    try {
      SafeArray a(t, bounds);
      for (Variant& v : a.Data()) {
        if (t == VarType::Variant) {
          v = c_.Chance(4) ? Variant(static_cast<double>(c_.Pick(100)))
                           : Variant(static_cast<std::int32_t>(c_.Pick(9)));
        } else if (t == VarType::Double || t == VarType::Long || t == VarType::Integer) {
          v = ChangeType(Variant(static_cast<std::int32_t>(c_.Pick(200)) - 100), t);
        }
      }
      return Variant(std::move(a));
    } catch (const AutomationError&) {
      return Variant(SafeArray::Vector(t, 0, static_cast<std::int32_t>(c_.Pick(4)) - 1));
    }
  }

  Variant ObjectValue() {
    const std::uint32_t kind = c_.Pick(4);
    if (kind == 0) return Variant(MakeRef<HostMock>(c_, &HostValue));
    if (kind == 1) return hostObjects_[c_.Pick(static_cast<std::uint32_t>(hostObjects_.size()))];
    try {
      return Variant(CreateObject(progIds_[c_.Pick(static_cast<std::uint32_t>(progIds_.size()))]));
    } catch (const AutomationError&) {
      return Variant::Nothing();
    }
  }

  // What a misbehaving host object answers: scalars of any type, arrays,
  // Nothing; never one of the pool's objects.
  static Variant HostValue(Choices& c) {
    switch (c.Pick(8)) {
      case 0: return Variant::Nothing();
      case 1: return Variant("abc");
      case 2: return Variant(static_cast<std::int32_t>(c.Pick(3)) + 1);
      case 3:
        return Variant(SafeArray::Vector(VarType::Double, 0, static_cast<std::int32_t>(c.Pick(16)) - 1));
      case 4: return Variant::Null();
      case 5: return Variant(1e308);
      case 6: return Variant();
      default: return Variant(static_cast<double>(c.Pick(100)));
    }
  }

  // A returned object joins the pool (up to a bound), unless it is already there.
  void Keep(const Variant& v) {
    if (!v.IsObject() || v.IsNothing() || v.IsArray()) return;
    const Ref<Object>& o = v.AsObject();
    if (dynamic_cast<HostMock*>(o.get())) return;
    for (const Ref<Object>& p : pool_)
      if (p == o) return;
    if (pool_.size() < kMaxPool) {
      pool_.push_back(o);
    } else {
      pool_[kFixed + c_.Pick(static_cast<std::uint32_t>(kMaxPool - kFixed))] = o;
    }
  }

  static constexpr std::size_t kFixed = 40;  // the classes and the host objects stay
  static constexpr std::size_t kMaxPool = 96;

  Choices& c_;
  std::vector<std::string> progIds_;
  std::vector<Ref<Object>> pool_;
  Ref<Object> app_;
  std::vector<Variant> hostObjects_;
};

}  // namespace TessarkAO::Fuzz
