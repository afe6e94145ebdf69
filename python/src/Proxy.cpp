// tk.Object and its bound members, written against the CPython API directly:
// a property read is the hot path of every script, so attribute access goes
// straight from tp_getattro to the object's InvokeId without the generic
// attribute machinery (no AttributeError raised and caught on the way).
#include "Proxy.hpp"

#include <structmember.h>

#include <unordered_map>

#include "Docs.hpp"
#include "Signatures.hpp"
#include "automation/Call.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO::Python {

namespace {

struct ProxyObject {
  PyObject_HEAD
  Object* object;  // one reference, released with the proxy
  PyObject* weakrefs;
};

// A member that needs arguments (or is a method), bound to its object.
struct BoundObject {
  PyObject_HEAD
  PyObject* owner;           // the proxy
  DispId id;
  const MemberInfo* member;  // nullptr when the object has no member table
  PyObject* name;            // as the script wrote it
};

PyTypeObject* g_proxyType = nullptr;
PyTypeObject* g_boundType = nullptr;

// ----- Dispatch id cache ---------------------------------------------------------
//
// Per class, attribute name (an interned Python string, compared by pointer)
// to dispatch id.  Only answers that agree with the class's member table are
// kept, so objects that add members of their own are asked every time.

struct ClassCache {
  std::unordered_map<PyObject*, DispId> ids;
};
constexpr std::size_t kMaxCachedNames = 1024;

std::unordered_map<const ClassInfo*, ClassCache>& Caches() {
  static auto* caches = new std::unordered_map<const ClassInfo*, ClassCache>();  // lives with the process
  return *caches;
}

DispId LookupId(Object* o, const ClassInfo* cls, PyObject* name, std::string_view text) {
  if (!cls || !PyUnicode_CHECK_INTERNED(name)) return o->GetDispId(text);
  static const ClassInfo* lastClass = nullptr;
  static ClassCache* lastCache = nullptr;
  if (cls != lastClass) {
    lastCache = &Caches()[cls];
    lastClass = cls;
  }
  if (auto it = lastCache->ids.find(name); it != lastCache->ids.end()) return it->second;
  const DispId id = o->GetDispId(text);
  if (id != DispIdUnknown && id == cls->Find(text) && lastCache->ids.size() < kMaxCachedNames) {
    Py_INCREF(name);  // keeps the key's address from being reused
    lastCache->ids.emplace(name, id);
  }
  return id;
}

std::string_view Utf8(PyObject* str) {
  Py_ssize_t n = 0;
  const char* s = PyUnicode_AsUTF8AndSize(str, &n);
  if (!s) throw py::error_already_set();
  return {s, static_cast<std::size_t>(n)};
}

// ----- Calls -------------------------------------------------------------------------

// Places keyword arguments at their parameters' positions; the gaps they
// leave are omitted optional arguments.
std::vector<PyObject*> MergeKeywords(const MemberInfo* m, CallKind kind, PyObject* const* items, std::size_t n,
                                     PyObject* kwargs) {
  std::vector<PyObject*> merged(items, items + n);
  PyObject* key = nullptr;
  PyObject* value = nullptr;
  Py_ssize_t pos = 0;
  while (PyDict_Next(kwargs, &pos, &key, &value)) {
    const std::string_view kw = Utf8(key);
    const std::size_t index = NamedPosition(m, kind, kw);
    if (index >= merged.size()) merged.resize(index + 1, nullptr);
    if (merged[index]) throw py::type_error("argument " + std::string(kw) + " given twice");
    merged[index] = value;
  }
  for (PyObject*& p : merged)
    if (!p) p = MissingObject();
  return merged;
}

PyObject* CallMember(Object* o, DispId id, const MemberInfo* m, CallKind kind, PyObject* const* items,
                     std::size_t n, PyObject* kwargs, PyObject* value) {
  try {
    Ref<Object> keep(o);  // the call may drop the script's last reference
    std::vector<PyObject*> merged;
    if (kwargs && PyDict_GET_SIZE(kwargs) > 0) {
      merged = MergeKeywords(m, kind, items, n, kwargs);
      items = merged.data();
      n = merged.size();
    }
    CallArgs args(items, n);
    if (value) {
      args.Append(value);
      kind = AssignmentKind(args.Span().back());
    }
    Variant r;
    try {
      r = Call(*o, id, kind, args.Span());
    } catch (...) {
      try {
        args.WriteBack();
      } catch (...) {
        PyErr_Clear();  // the call's own error is the one to report
      }
      throw;
    }
    args.WriteBack();
    if (value) Py_RETURN_NONE;
    return FromVariant(r).release().ptr();
  } catch (...) {
    return TranslateException();
  }
}

// Subscript keys: a[i] gives one argument, a[i, j] two.
void KeyItems(PyObject* const& key, PyObject* const*& items, std::size_t& n) {
  if (PyTuple_Check(key)) {
    items = &PyTuple_GET_ITEM(key, 0);
    n = static_cast<std::size_t>(PyTuple_GET_SIZE(key));
  } else {
    items = &key;  // the caller's own variable, alive through the call
    n = 1;
  }
}

// ----- tk.Object ----------------------------------------------------------------------

Object* Target(PyObject* self) { return reinterpret_cast<ProxyObject*>(self)->object; }

const MemberInfo* DefaultMember(Object* o) {
  const ClassInfo* cls = o->Class();
  return cls ? cls->Member(DispIdValue) : nullptr;
}

PyObject* NewBound(PyObject* owner, DispId id, const MemberInfo* m, PyObject* name) {
  BoundObject* b = PyObject_New(BoundObject, g_boundType);
  if (!b) return nullptr;
  Py_INCREF(owner);
  Py_INCREF(name);
  b->owner = owner;
  b->id = id;
  b->member = m;
  b->name = name;
  return reinterpret_cast<PyObject*>(b);
}

PyObject* ProxyGetAttr(PyObject* self, PyObject* name) {
  if (!PyUnicode_Check(name)) return PyObject_GenericGetAttr(self, name);
  Py_ssize_t len = 0;
  const char* s = PyUnicode_AsUTF8AndSize(name, &len);
  if (!s) {  // a name with a lone surrogate names no member
    PyErr_Clear();
    return PyObject_GenericGetAttr(self, name);
  }
  // Automation names start with a letter: the rest are Python's own.
  if (len == 0 || s[0] == '_') return PyObject_GenericGetAttr(self, name);
  const std::string_view text(s, static_cast<std::size_t>(len));
  Object* o = Target(self);
  try {
    const ClassInfo* cls = o->Class();
    const DispId id = LookupId(o, cls, name, text);
    if (id == DispIdUnknown) {
      SetMemberNotFound(o->TypeName(), text);
      return nullptr;
    }
    const MemberInfo* m = cls ? cls->Member(id) : nullptr;
    if (m && !IsPlainProperty(*m)) return NewBound(self, id, m, name);
    try {
      return FromVariant(Call(*o, id, CallKind::Get, {})).release().ptr();
    } catch (const AutomationError& e) {
      // A member the table does not describe and that wants arguments is
      // handed out bound, to be called or indexed.
      if (m || e.Number() != Err::ArgumentNotOptional) throw;
    }
    return NewBound(self, id, m, name);
  } catch (...) {
    return TranslateException();
  }
}

int ProxySetAttr(PyObject* self, PyObject* name, PyObject* value) {
  if (!PyUnicode_Check(name)) return PyObject_GenericSetAttr(self, name, value);
  Py_ssize_t len = 0;
  const char* s = PyUnicode_AsUTF8AndSize(name, &len);
  if (!s) {  // a name with a lone surrogate names no member
    PyErr_Clear();
    return PyObject_GenericSetAttr(self, name, value);
  }
  if (len == 0 || s[0] == '_') return PyObject_GenericSetAttr(self, name, value);
  const std::string_view text(s, static_cast<std::size_t>(len));
  if (!value) {
    PyErr_Format(PyExc_TypeError, "cannot delete the member %U of an automation object", name);
    return -1;
  }
  Object* o = Target(self);
  try {
    const DispId id = LookupId(o, o->Class(), name, text);
    if (id == DispIdUnknown) {
      SetMemberNotFound(o->TypeName(), text);
      return -1;
    }
    PyObject* r = CallMember(o, id, nullptr, CallKind::Let, nullptr, 0, nullptr, value);
    if (!r) return -1;
    Py_DECREF(r);
    return 0;
  } catch (...) {
    TranslateException();
    return -1;
  }
}

void ProxyDealloc(PyObject* self) {
  PyTypeObject* tp = Py_TYPE(self);
  auto* p = reinterpret_cast<ProxyObject*>(self);
  if (p->weakrefs) PyObject_ClearWeakRefs(self);
  if (Object* o = std::exchange(p->object, nullptr)) o->Release();
  tp->tp_free(self);
  Py_DECREF(tp);
}

PyObject* ProxyRepr(PyObject* self) {
  try {
    const std::string name = Target(self)->TypeName();
    return PyUnicode_FromFormat("<tk.Object %s at %p>", name.c_str(), static_cast<void*>(Target(self)));
  } catch (...) {
    return TranslateException();
  }
}

Py_hash_t ProxyHash(PyObject* self) {
  Py_hash_t h = static_cast<Py_hash_t>(reinterpret_cast<std::uintptr_t>(Target(self)) >> 4);
  return h == -1 ? -2 : h;
}

PyObject* ProxyCompare(PyObject* self, PyObject* other, int op) {
  if ((op != Py_EQ && op != Py_NE) || !IsProxy(other)) Py_RETURN_NOTIMPLEMENTED;
  const bool same = Target(self) == Target(other);
  return PyBool_FromLong((op == Py_EQ) == same);
}

PyObject* ProxyCall(PyObject* self, PyObject* args, PyObject* kwargs) {
  Object* o = Target(self);
  return CallMember(o, DispIdValue, DefaultMember(o), CallKind::Method, &PyTuple_GET_ITEM(args, 0),
                    static_cast<std::size_t>(PyTuple_GET_SIZE(args)), kwargs, nullptr);
}

PyObject* ProxySubscript(PyObject* self, PyObject* key) {
  Object* o = Target(self);
  PyObject* const* items = nullptr;
  std::size_t n = 0;
  KeyItems(key, items, n);
  return CallMember(o, DispIdValue, DefaultMember(o), CallKind::Get, items, n, nullptr, nullptr);
}

int ProxyAssSubscript(PyObject* self, PyObject* key, PyObject* value) {
  if (!value) {
    PyErr_SetString(PyExc_TypeError, "cannot delete an item of an automation object");
    return -1;
  }
  Object* o = Target(self);
  PyObject* const* items = nullptr;
  std::size_t n = 0;
  KeyItems(key, items, n);
  PyObject* r = CallMember(o, DispIdValue, DefaultMember(o), CallKind::Let, items, n, nullptr, value);
  if (!r) return -1;
  Py_DECREF(r);
  return 0;
}

PyObject* ProxyDir(PyObject* self, PyObject*) {
  PyObject* list = PyList_New(0);
  if (!list) return nullptr;
  if (const ClassInfo* cls = Target(self)->Class()) {
    for (const MemberInfo& m : cls->Members()) {
      PyObject* s = PyUnicode_FromStringAndSize(m.name.data(), static_cast<Py_ssize_t>(m.name.size()));
      if (!s || PyList_Append(list, s) < 0) {
        Py_XDECREF(s);
        Py_DECREF(list);
        return nullptr;
      }
      Py_DECREF(s);
    }
  }
  return list;
}

PyMethodDef kProxyMethods[] = {
    {"__dir__", ProxyDir, METH_NOARGS, "The object's member names."},
    {nullptr, nullptr, 0, nullptr},
};

PyMemberDef kProxyMembers[] = {
    {"__weaklistoffset__", T_PYSSIZET, offsetof(ProxyObject, weakrefs), READONLY, nullptr},
    {nullptr, 0, 0, 0, nullptr},
};

// ----- Bound members ------------------------------------------------------------------

BoundObject* Bound(PyObject* self) { return reinterpret_cast<BoundObject*>(self); }

void BoundDealloc(PyObject* self) {
  PyTypeObject* tp = Py_TYPE(self);
  Py_CLEAR(Bound(self)->owner);
  Py_CLEAR(Bound(self)->name);
  tp->tp_free(self);
  Py_DECREF(tp);
}

PyObject* BoundCall(PyObject* self, PyObject* args, PyObject* kwargs) {
  BoundObject* b = Bound(self);
  const CallKind kind = ResolveKind(b->member, CallKind::Method);
  return CallMember(Target(b->owner), b->id, b->member, kind, &PyTuple_GET_ITEM(args, 0),
                    static_cast<std::size_t>(PyTuple_GET_SIZE(args)), kwargs, nullptr);
}

PyObject* BoundSubscript(PyObject* self, PyObject* key) {
  BoundObject* b = Bound(self);
  PyObject* const* items = nullptr;
  std::size_t n = 0;
  KeyItems(key, items, n);
  return CallMember(Target(b->owner), b->id, b->member, CallKind::Get, items, n, nullptr, nullptr);
}

int BoundAssSubscript(PyObject* self, PyObject* key, PyObject* value) {
  if (!value) {
    PyErr_SetString(PyExc_TypeError, "cannot delete a property value");
    return -1;
  }
  BoundObject* b = Bound(self);
  PyObject* const* items = nullptr;
  std::size_t n = 0;
  KeyItems(key, items, n);
  PyObject* r = CallMember(Target(b->owner), b->id, b->member, CallKind::Let, items, n, nullptr, value);
  if (!r) return -1;
  Py_DECREF(r);
  return 0;
}

PyObject* BoundRepr(PyObject* self) {
  BoundObject* b = Bound(self);
  try {
    const std::string type = Target(b->owner)->TypeName();
    return PyUnicode_FromFormat("<member %s.%U>", type.c_str(), b->name);
  } catch (...) {
    return TranslateException();
  }
}

PyObject* BoundDoc(PyObject* self, void*) {
  BoundObject* b = Bound(self);
  if (!b->member) Py_RETURN_NONE;
  if (PyObject* doc = BoundMemberDoc(b->owner, b->member)) return doc;
  const std::string text = SignatureText(*b->member);
  return PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size()));
}

PyObject* BoundName(PyObject* self, void*) {
  BoundObject* b = Bound(self);
  if (b->member)
    return PyUnicode_FromStringAndSize(b->member->name.data(), static_cast<Py_ssize_t>(b->member->name.size()));
  Py_INCREF(b->name);
  return b->name;
}

PyObject* BoundSelf(PyObject* self, void*) {
  PyObject* owner = Bound(self)->owner;
  Py_INCREF(owner);
  return owner;
}

PyObject* BoundSignature(PyObject* self, void*) {
  return BoundMemberSignature(Bound(self)->owner, Bound(self)->member);
}

PyGetSetDef kBoundGetSet[] = {
    {"__signature__", BoundSignature, nullptr, "The member's signature for inspect.", nullptr},
    {"__doc__", BoundDoc, nullptr, "The member's signature.", nullptr},
    {"__name__", BoundName, nullptr, "The member's name.", nullptr},
    {"__self__", BoundSelf, nullptr, "The object the member is bound to.", nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

PyType_Slot kProxySlots[] = {
    {Py_tp_doc, const_cast<char*>("An automation object of the library or of the host, called late-bound "
                                  "by member name.  Compare with == or tk.same for identity.")},
    {Py_tp_dealloc, reinterpret_cast<void*>(ProxyDealloc)},
    {Py_tp_getattro, reinterpret_cast<void*>(ProxyGetAttr)},
    {Py_tp_setattro, reinterpret_cast<void*>(ProxySetAttr)},
    {Py_tp_repr, reinterpret_cast<void*>(ProxyRepr)},
    {Py_tp_hash, reinterpret_cast<void*>(ProxyHash)},
    {Py_tp_richcompare, reinterpret_cast<void*>(ProxyCompare)},
    {Py_tp_call, reinterpret_cast<void*>(ProxyCall)},
    {Py_mp_subscript, reinterpret_cast<void*>(ProxySubscript)},
    {Py_mp_ass_subscript, reinterpret_cast<void*>(ProxyAssSubscript)},
    {Py_tp_methods, kProxyMethods},
    {Py_tp_members, kProxyMembers},
    {0, nullptr},
};

PyType_Slot kBoundSlots[] = {
    {Py_tp_dealloc, reinterpret_cast<void*>(BoundDealloc)},
    {Py_tp_call, reinterpret_cast<void*>(BoundCall)},
    {Py_tp_repr, reinterpret_cast<void*>(BoundRepr)},
    {Py_mp_subscript, reinterpret_cast<void*>(BoundSubscript)},
    {Py_mp_ass_subscript, reinterpret_cast<void*>(BoundAssSubscript)},
    {Py_tp_getset, kBoundGetSet},
    {0, nullptr},
};

}  // namespace

// ----- Public ---------------------------------------------------------------------------

bool IsProxy(PyObject* o) noexcept { return PyObject_TypeCheck(o, g_proxyType); }

Object* ProxyTarget(PyObject* proxy) noexcept { return Target(proxy); }

py::object NewProxy(Ref<Object> object) {
  // tp_alloc: a class's proxy type (Docs.hpp) is a heap subtype with GC support.
  PyTypeObject* type = ProxyTypeFor(object->Class(), g_proxyType);
  auto* p = reinterpret_cast<ProxyObject*>(type->tp_alloc(type, 0));
  if (!p) throw py::error_already_set();
  p->object = object.detach();
  p->weakrefs = nullptr;
  return py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(p));
}

CallArgs::CallArgs(PyObject* const* items, std::size_t count) {
  values_.reserve(count + 1);
  for (std::size_t i = 0; i < count; ++i) Add(items[i]);
}

void CallArgs::Append(PyObject* item) { Add(item); }

void CallArgs::Add(PyObject* item) {
  if (RefBox* r = AsRef(item)) {
    Variant& target = targets_.emplace_back(ToVariant(r->value));
    refs_.push_back(RefSlot{values_.size(), item, target});
    values_.push_back(Variant::ByRef(target));
  } else {
    values_.push_back(ToVariant(item));
  }
}

void CallArgs::WriteBack() {
  for (RefSlot& r : refs_) {
    const Variant& now = values_[r.slot].Deref();
    if (SameValue(now, r.original)) continue;
    py::handle(r.ref).cast<RefBox&>().value = FromVariant(now);
  }
}

Variant InvokeRaw(Object& object, py::handle nameOrId, CallKind kind, CallArgs& args) {
  Variant r;
  try {
    if (PyLong_Check(nameOrId.ptr()))
      r = Call(object, nameOrId.cast<DispId>(), kind, args.Span());
    else
      r = Call(object, TextFromPython(py::str(nameOrId).ptr()), kind, args.Span());
  } catch (...) {
    try {
      args.WriteBack();
    } catch (...) {
    }
    throw;
  }
  args.WriteBack();
  return r;
}

void RegisterProxy(py::module_& m) {
  PyType_Spec proxySpec = {"tessarkao.Object", sizeof(ProxyObject), 0,
                           Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_DISALLOW_INSTANTIATION,
                           kProxySlots};  // subclassed once per class (Docs.hpp)
  PyType_Spec boundSpec = {"tessarkao.BoundMember", sizeof(BoundObject), 0,
                           Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, kBoundSlots};
  g_proxyType = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&proxySpec));
  if (!g_proxyType) throw py::error_already_set();
  g_boundType = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&boundSpec));
  if (!g_boundType) throw py::error_already_set();
  m.attr("Object") = py::handle(reinterpret_cast<PyObject*>(g_proxyType));
  m.attr("BoundMember") = py::handle(reinterpret_cast<PyObject*>(g_boundType));
}

}  // namespace TessarkAO::Python
