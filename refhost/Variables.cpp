// Numbered variables: storage, values by the variable's type, formulas, and
// the Variable object callers reach through `Variable(n)`.
#include <algorithm>
#include <cmath>

#include "automation/Convert.hpp"
#include "refhost/Expression.hpp"
#include "refhost/HostModel.hpp"

namespace TessarkAO::RefHost {

namespace {

const std::string kNoText;

// Host parameters list under their names; variables a scene declared are
// reported as the host's "Variable" items (type 34).
constexpr std::int32_t kParameterItem = 0;
constexpr std::int32_t kVariableItem = 34;

bool IsNumberText(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

double ReferencedValue(const VarSlot& slot, std::string_view component, std::string_view variable) {
  if (slot.type == VarType::String) {
    Raise(Err::InvalidCall, "the variable " + std::string(component) + (component.empty() ? "" : "\\") +
                                std::string(variable) + " holds text");
  }
  return slot.num;
}

VarSlot* LookUp(VarTable& table, std::string_view variable) {
  if (IsNumberText(variable)) {
    const long n = std::strtol(std::string(variable).c_str(), nullptr, 10);
    return n > 0 && n <= 0x7fffffff ? table.Find(static_cast<std::int32_t>(n)) : nullptr;
  }
  return table.FindByName(variable);
}

double Resolve(VarTable& own, HostShape* shape, std::string_view component, std::string_view variable) {
  VarTable* table = &own;
  if (!component.empty()) {
    table = nullptr;
    if (shape) {
      for (const Ref<HostComponent>& c : shape->ComponentList()) {
        if (EqualsNoCase(c->Name(), component)) {
          table = &c->Vars();
          break;
        }
      }
    }
    if (!table) Raise(Err::InvalidCall, "the shape has no component named " + std::string(component));
  }
  VarSlot* slot = LookUp(*table, variable);
  if (!slot) {
    Raise(Err::InvalidCall, "there is no variable " + std::string(component) +
                                (component.empty() ? "" : "\\") + std::string(variable));
  }
  return ReferencedValue(*slot, component, variable);
}

// Stores a formula's result in the slot's own type.
void StoreNumber(VarSlot& slot, double v) {
  switch (slot.type) {
    case VarType::Long: slot.num = RoundToLong(v); break;
    case VarType::Boolean: slot.num = v != 0.0 ? 1.0 : 0.0; break;
    case VarType::String: slot.Ext().text = FormatDouble(v); break;
    default: slot.num = v; break;
  }
}

}  // namespace

VarSlot::Extra& VarSlot::Ext() {
  if (!extra) extra = std::make_unique<Extra>();
  return *extra;
}

const std::string& VarSlot::Expression() const { return extra ? extra->expression : kNoText; }

std::string_view VarSlot::Name() const {
  if (def) return def->name;
  return extra ? std::string_view(extra->name) : std::string_view();
}

bool VarSlot::IsInitial() const {
  if (!def) return false;
  if (!Expression().empty()) return false;
  if (type == VarType::String) return !extra || extra->text.empty();
  // Bit for bit, so that a saved -0 comes back as -0.
  return num == def->initial && std::signbit(num) == std::signbit(def->initial);
}

VarTable::VarTable(std::span<const VarDef> defs) {
  slots_.reserve(defs.size());
  for (const VarDef& d : defs) {
    VarSlot& s = slots_.emplace_back();
    s.number = d.number;
    s.type = d.type;
    s.num = d.type == VarType::String ? 0.0 : d.initial;
    s.def = &d;
  }
}

VarSlot* VarTable::Find(std::int32_t number) {
  auto it = std::lower_bound(slots_.begin(), slots_.end(), number,
                             [](const VarSlot& s, std::int32_t n) { return s.number < n; });
  return it != slots_.end() && it->number == number ? &*it : nullptr;
}

const VarSlot* VarTable::Find(std::int32_t number) const { return const_cast<VarTable*>(this)->Find(number); }

VarSlot& VarTable::At(std::int32_t number) {
  VarSlot* s = Find(number);
  if (!s) Raise(Err::SubscriptOutOfRange);
  return *s;
}

VarSlot* VarTable::FindByName(std::string_view name) {
  for (VarSlot& s : slots_)
    if (EqualsNoCase(s.Name(), name)) return &s;
  return nullptr;
}

bool VarTable::Declare(std::int32_t number, VarType type, std::string name) {
  if (Find(number)) return false;
  auto it = std::lower_bound(slots_.begin(), slots_.end(), number,
                             [](const VarSlot& s, std::int32_t n) { return s.number < n; });
  VarSlot s;
  s.number = number;
  s.type = type;
  if (!name.empty()) s.Ext().name = std::move(name);
  slots_.insert(it, std::move(s));
  return true;
}

double VarTable::Number(std::int32_t number) const {
  const VarSlot* s = Find(number);
  return s && s->type != VarType::String ? s->num : 0.0;
}

void VarTable::SetNumber(std::int32_t number, double value) {
  VarSlot& s = At(number);
  if (s.extra) s.extra->expression.clear();
  StoreNumber(s, value);
}

Variant SlotValue(const VarSlot& slot) {
  switch (slot.type) {
    case VarType::Long: return Variant(static_cast<std::int32_t>(slot.num));
    case VarType::Boolean: return Variant(slot.num != 0.0);
    case VarType::String: return Variant(slot.extra ? slot.extra->text : std::string());
    default: return Variant(slot.num);
  }
}

void StoreSlotValue(VarSlot& slot, const Variant& value) {
  switch (slot.type) {
    case VarType::Long: {
      const std::int32_t v = ToLong(value);
      slot.num = v;
      break;
    }
    case VarType::Boolean: {
      const bool b = ToBoolean(value);
      slot.num = b ? 1.0 : 0.0;
      break;
    }
    case VarType::String: {
      std::string t = ToString(value);
      slot.Ext().text = std::move(t);
      break;
    }
    default: {
      const double d = ToDouble(value);
      if (!std::isfinite(d)) Raise(Err::Overflow);
      slot.num = d;
      break;
    }
  }
  if (slot.extra) slot.extra->expression.clear();
}

void AssignSlotExpression(VarSlot& slot, VarTable& table, HostShape* shape, const std::string& text) {
  if (TrimBlanks(text).empty()) {
    if (slot.extra) slot.extra->expression.clear();
    return;
  }
  const double v = EvaluateExpression(text, [&](std::string_view component, std::string_view variable) {
    return Resolve(table, shape, component, variable);
  });
  StoreNumber(slot, v);
  slot.Ext().expression = text;
}

bool ReevaluateSlot(VarSlot& slot, VarTable& table, HostShape* shape) {
  if (slot.Expression().empty()) return false;
  const double before = slot.num;
  const std::string text = slot.Expression();
  AssignSlotExpression(slot, table, shape, text);
  return slot.num != before;
}

// ---------------------------------------------------------------------------

HostVariable::HostVariable(Ref<HostObject> owner, VarTable* table, std::int32_t number, std::int32_t curve)
    : owner_(std::move(owner)), table_(table), number_(number), curve_(curve) {}

void HostVariable::Describe(ClassBuilder<HostVariable>& b) {
  b.Property<&HostVariable::Value, &HostVariable::LetValue>("Value")
      .Default()
      .Property<&HostVariable::Expression, &HostVariable::LetExpression>("Expression")
      .Get<&HostVariable::Name>("Name")
      .Get<&HostVariable::Type>("Type");
}

VarSlot& HostVariable::Slot() const { return table_->At(number_); }

Variant HostVariable::Value() const { return SlotValue(Slot()); }
void HostVariable::LetValue(const Variant& v) { StoreSlotValue(Slot(), v); }
std::string HostVariable::Expression() const { return Slot().Expression(); }
void HostVariable::LetExpression(std::string text) {
  AssignSlotExpression(Slot(), *table_, owner_->ContextShape(), text);
}
std::string HostVariable::Name() const { return std::string(Slot().Name()); }
std::int32_t HostVariable::Type() const { return Slot().def ? kParameterItem : kVariableItem; }

std::string HostVariable::JournalName() const {
  if (curve_ < 0) return owner_->JournalName() + ".Variable(" + std::to_string(number_) + ")";
  return owner_->JournalName() + ".Variable(" + std::to_string(curve_) + ", " + std::to_string(number_) + ")";
}

}  // namespace TessarkAO::RefHost
