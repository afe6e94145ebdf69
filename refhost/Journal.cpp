// The call journal: every member call made on a host object while it is on.
#include <atomic>
#include <charconv>
#include <mutex>

#include "automation/Convert.hpp"
#include "refhost/HostModel.hpp"
#include "refhost/RefHost.hpp"

namespace TessarkAO::RefHost {

namespace {

struct JournalState {
  std::mutex mutex;
  bool on = false;
  std::vector<JournalEntry> entries;
};

JournalState& State() {
  static JournalState* state = new JournalState;  // lives until exit: objects may call late
  return *state;
}

// Read without the lock: switching the journal on or off races with calls
// only in a program that drives the host from several threads at once.
std::atomic<bool> gOn{false};

void Record(const HostObject& callee, std::string_view member, CallKind kind, std::span<Variant> args) {
  JournalEntry e;
  e.object = callee.JournalName();
  e.member = std::string(member);
  e.kind = kind;
  e.args.reserve(args.size());
  for (const Variant& a : args) e.args.push_back(a.Deref());
  JournalState& s = State();
  std::lock_guard lock(s.mutex);
  if (s.on) s.entries.push_back(std::move(e));
}

std::string ShortestDouble(double d) {
  char buf[64];
  auto r = std::to_chars(buf, buf + sizeof buf, d);
  return std::string(buf, r.ptr);
}

std::string ShortestSingle(float f) {
  char buf[64];
  auto r = std::to_chars(buf, buf + sizeof buf, f);
  return std::string(buf, r.ptr);
}

}  // namespace

bool JournalRecording() noexcept { return gOn.load(std::memory_order_relaxed); }

// The member's declared name when it exists, else the name as called (or the
// dispatch id) so that calls of missing members show too.
void RecordCall(const HostObject& callee, const ClassInfo& info, DispId id, std::string_view calledName,
                CallKind kind, std::span<Variant> args) {
  const MemberInfo* m = id != DispIdUnknown ? info.Member(id) : nullptr;
  if (m) {
    Record(callee, m->name, kind, args);
  } else if (!calledName.empty()) {
    Record(callee, calledName, kind, args);
  } else {
    Record(callee, "#" + std::to_string(id), kind, args);
  }
}

void RaiseDetached(std::string_view what) {
  Raise(Err::AutomationFailure, "The " + std::string(what) + " is no longer part of a scene");
}

void StartJournal() {
  std::lock_guard lock(State().mutex);
  State().on = true;
  gOn = true;
}

void StopJournal() {
  std::lock_guard lock(State().mutex);
  State().on = false;
  gOn = false;
}

void ClearJournal() {
  std::vector<JournalEntry> old;
  {
    std::lock_guard lock(State().mutex);
    old.swap(State().entries);
  }
  // The entries' objects are released here, outside the lock: a release may
  // destroy host objects.
}

bool JournalIsOn() { return gOn.load(); }

std::vector<JournalEntry> Journal() {
  std::lock_guard lock(State().mutex);
  return State().entries;
}

std::string DescribeObject(const Ref<Object>& object) {
  if (!object) return "Nothing";
  if (auto* h = dynamic_cast<const HostObject*>(object.get())) return h->JournalName();
  return "<" + object->TypeName() + ">";
}

std::string FormatJournalValue(const Variant& value) {
  const Variant& v = value.Deref();
  if (v.IsArray()) {
    const SafeArray& a = v.AsArray();
    std::string s = std::string(TypeName(a.ElementType())) + "(";
    for (int d = 1; d <= a.Dims(); ++d) {
      if (d > 1) s += ", ";
      s += std::to_string(a.LBound(d)) + " To " + std::to_string(a.UBound(d));
    }
    return s + ")";
  }
  if (v.IsMissing()) return "Missing";
  switch (v.Type()) {
    case VarType::Empty: return "Empty";
    case VarType::Null: return "Null";
    case VarType::Integer: return std::to_string(v.AsInteger()) + "%";
    case VarType::Long: return std::to_string(v.AsLong()) + "&";
    case VarType::Single: return ShortestSingle(v.AsSingle()) + "!";
    case VarType::Double: return ShortestDouble(v.AsDouble());
    case VarType::Boolean: return v.AsBoolean() ? "True" : "False";
    case VarType::Byte: return std::to_string(v.AsByte()) + "b";
    case VarType::String: {
      std::string s = "\"";
      for (char c : v.AsString()) {
        s += c;
        if (c == '"') s += '"';
      }
      return s + "\"";
    }
    case VarType::Object: return DescribeObject(v.AsObject());
    case VarType::Error: return "Error(" + std::to_string(v.AsError().scode) + ")";
    default: return ToString(v) + "(" + std::string(TypeName(v.Type())) + ")";
  }
}

std::string FormatJournal(const std::vector<JournalEntry>& entries) {
  std::string out;
  for (const JournalEntry& e : entries) {
    const bool put = e.kind == CallKind::Let || e.kind == CallKind::Set;
    const std::size_t n = put && !e.args.empty() ? e.args.size() - 1 : e.args.size();
    switch (e.kind) {
      case CallKind::Get: out += "get  "; break;
      case CallKind::Method: out += "call "; break;
      case CallKind::Let: out += "let  "; break;
      case CallKind::Set: out += "set  "; break;
    }
    out += e.object + "." + e.member;
    if (n > 0 || e.kind == CallKind::Method) {
      out += "(";
      for (std::size_t i = 0; i < n; ++i) {
        if (i) out += ", ";
        out += FormatJournalValue(e.args[i]);
      }
      out += ")";
    }
    if (put && !e.args.empty()) out += " = " + FormatJournalValue(e.args.back());
    out += "\n";
  }
  return out;
}

}  // namespace TessarkAO::RefHost
