#include "HostObject.hpp"

#include <mutex>
#include <unordered_map>
#include <vector>

#include "Values.hpp"
#include "automation/AutomationError.hpp"
#include "automation/IdentityMap.hpp"
#include "automation/Members.hpp"
#include "automation/Variant.hpp"

namespace TessarkAO::Python {

namespace {

class PyHostObject;

// Python object to its host object, so that one Python object is one host
// object.
IdentityMap<PyObject, PyHostObject>& Registry() {
  static auto* map = new IdentityMap<PyObject, PyHostObject>();  // lives with the process
  return *map;
}

// Dispatch ids of host members: one id per name (case-insensitive) across
// all host objects, so an id handed out stays valid.
class NameTable {
 public:
  DispId IdOf(std::string_view name) {
    std::lock_guard lock(mutex_);
    for (std::size_t i = 0; i < names_.size(); ++i)
      if (EqualsNoCase(names_[i], name)) return static_cast<DispId>(i + 1);
    names_.emplace_back(name);
    return static_cast<DispId>(names_.size());
  }
  bool NameOf(DispId id, std::string& out) {
    std::lock_guard lock(mutex_);
    if (id < 1 || static_cast<std::size_t>(id) > names_.size()) return false;
    out = names_[static_cast<std::size_t>(id - 1)];
    return true;
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> names_;
};
NameTable& Names() {
  static auto* table = new NameTable();
  return *table;
}

// A Python method, or a function stored as an attribute: a get without
// arguments calls it.  Other callables (collections with a default member,
// classes) are values.
bool IsMethodLike(PyObject* attr) {
  return PyMethod_Check(attr) || PyCFunction_Check(attr) || PyFunction_Check(attr);
}

bool IsAttributeError() { return PyErr_ExceptionMatches(PyExc_AttributeError) != 0; }

// The attribute's name as the object spells it: exact first, then the first
// name of dir(obj) equal but for case.  Empty when there is none.
std::string FindNameNoCase(PyObject* target, std::string_view name) {
  py::object names = py::reinterpret_steal<py::object>(PyObject_Dir(target));
  if (!names) throw py::error_already_set();
  for (py::handle n : names) {
    if (!PyUnicode_Check(n.ptr())) continue;
    const std::string s = TextFromPython(n.ptr());
    if (EqualsNoCase(s, name)) return s;
  }
  return {};
}

// Reads attribute `name` (resolving the case); nullptr and 438 when absent.
py::object ReadAttribute(PyObject* target, std::string_view name) {
  py::str key(name.data(), name.size());
  PyObject* attr = PyObject_GetAttr(target, key.ptr());
  if (attr) return py::reinterpret_steal<py::object>(attr);
  if (!IsAttributeError()) throw py::error_already_set();
  PyErr_Clear();
  const std::string spelled = FindNameNoCase(target, name);
  if (spelled.empty() || spelled == name) Raise(Err::NoSuchMember);
  attr = PyObject_GetAttrString(target, spelled.c_str());
  if (!attr) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(attr);
}

// The name to assign: the exact name when the object or its class has it
// (looked up without running getters), else a case-insensitive match, else
// the name as given (a new attribute).
std::string NameToAssign(PyObject* target, std::string_view name) {
  py::str key(name.data(), name.size());
  py::handle type(reinterpret_cast<PyObject*>(Py_TYPE(target)));
  if (PyObject_HasAttr(type.ptr(), key.ptr())) return std::string(name);
  PyObject** dict = _PyObject_GetDictPtr(target);
  if (dict && *dict && PyDict_Contains(*dict, key.ptr()) == 1) return std::string(name);
  std::string spelled = FindNameNoCase(target, name);
  return spelled.empty() ? std::string(name) : spelled;
}

py::object KeyOf(const std::vector<py::object>& args, std::size_t count) {
  if (count == 1) return args[0];
  py::tuple t(count);
  for (std::size_t i = 0; i < count; ++i) t[i] = args[i];
  return t;
}

class PyHostObject final : public Object {
 public:
  explicit PyHostObject(PyObject* target) : target_(target) {
    Py_INCREF(target_);
  }

  ~PyHostObject() override {
    // After the interpreter has gone there is nothing left to release.
    if (!Py_IsInitialized() || _Py_IsFinalizing()) return;
    PyGILState_STATE state = PyGILState_Ensure();
    Registry().Erase(target_, this);
    Py_DECREF(target_);
    PyGILState_Release(state);
  }

  PyObject* Target() const noexcept { return target_; }

  DispId GetDispId(std::string_view name) const override {
    py::gil_scoped_acquire gil;
    try {
      py::str key(name.data(), name.size());
      if (PyObject_HasAttr(target_, key.ptr()) || !FindNameNoCase(target_, name).empty())
        return Names().IdOf(name);
    } catch (py::error_already_set&) {
    }
    return DispIdUnknown;
  }

  Variant InvokeId(DispId id, CallKind kind, std::span<Variant> args) override {
    if (id == DispIdValue) return Call(std::string_view(), kind, args);
    std::string name;
    if (!Names().NameOf(id, name)) Raise(Err::NoSuchMember);
    return Call(name, kind, args);
  }

  Variant Invoke(std::string_view name, CallKind kind, std::span<Variant> args) override {
    return Call(name, kind, args);
  }

  std::string TypeName() const override {
    py::gil_scoped_acquire gil;
    return Py_TYPE(target_)->tp_name;
  }

 private:
  // An empty name is the default member: the object itself, called.
  Variant Call(std::string_view name, CallKind kind, std::span<Variant> args) {
    py::gil_scoped_acquire gil;
    Ref<Object> keep(this);
    std::vector<py::object> pyArgs;
    std::vector<std::pair<std::size_t, py::object>> refs;  // by-reference arguments as tk.Ref
    try {
      pyArgs.reserve(args.size());
      for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i].IsByRef()) {
          py::object ref = NewRef(FromVariant(args[i].Deref()));
          refs.emplace_back(i, ref);
          pyArgs.push_back(ref);
        } else {
          pyArgs.push_back(FromVariant(args[i]));
        }
      }
      py::object result = Dispatch(name, kind, pyArgs);
      WriteBack(args, refs);
      return ToVariant(result);
    } catch (py::error_already_set& e) {
      WriteBackQuietly(args, refs);
      throw AutomationErrorFromPython(e);
    } catch (const AutomationError&) {
      WriteBackQuietly(args, refs);
      throw;
    } catch (const py::builtin_exception& e) {
      WriteBackQuietly(args, refs);
      e.set_error();
      py::error_already_set err;
      throw AutomationErrorFromPython(err);
    }
  }

  py::object Dispatch(std::string_view name, CallKind kind, std::vector<py::object>& args) {
    py::tuple callArgs(args.size());
    for (std::size_t i = 0; i < args.size(); ++i) callArgs[i] = args[i];
    const bool put = kind == CallKind::Let || kind == CallKind::Set;
    if (name.empty()) {  // default member
      if (put || !PyCallable_Check(target_)) Raise(Err::NoSuchMember);
      return py::reinterpret_borrow<py::object>(target_)(*callArgs);
    }
    if (put) {
      if (args.empty()) Raise(Err::WrongArgumentCount);
      if (args.size() == 1) {
        const std::string spelled = NameToAssign(target_, name);
        if (PyObject_SetAttrString(target_, spelled.c_str(), args[0].ptr()) < 0) throw py::error_already_set();
        return py::none();
      }
      // A property with arguments: item assignment on the attribute's value.
      py::object attr = ReadAttribute(target_, name);
      if (!PyObject_HasAttrString(attr.ptr(), "__setitem__")) Raise(Err::NoSuchMember);
      attr[KeyOf(args, args.size() - 1)] = args.back();
      return py::none();
    }
    py::object attr = ReadAttribute(target_, name);
    if (args.empty() && kind == CallKind::Get) return IsMethodLike(attr.ptr()) ? attr() : attr;
    if (PyCallable_Check(attr.ptr())) return attr(*callArgs);
    if (args.empty()) return attr;  // a property read in call form
    if (PyObject_HasAttrString(attr.ptr(), "__getitem__")) return attr[KeyOf(args, args.size())];
    Raise(Err::WrongArgumentCount);
  }

  static void WriteBack(std::span<Variant> args, std::vector<std::pair<std::size_t, py::object>>& refs) {
    for (auto& [i, ref] : refs) args[i].Assign(ToVariant(ref.attr("value")));
  }
  static void WriteBackQuietly(std::span<Variant> args, std::vector<std::pair<std::size_t, py::object>>& refs) {
    PyObject *type, *value, *trace;
    PyErr_Fetch(&type, &value, &trace);  // keep the error being handled
    try {
      WriteBack(args, refs);
    } catch (...) {
      PyErr_Clear();
    }
    PyErr_Restore(type, value, trace);
  }

  PyObject* target_;
};

}  // namespace

Ref<Object> WrapHostObject(py::handle target) {
  // Both ways the map hands the host object over with one reference added.
  PyHostObject* host = Registry().FindOrAdd(
      target.ptr(), [](PyHostObject* h) { return h->TryAddRef(); },
      [&] {
        auto* h = new PyHostObject(target.ptr());
        h->AddRef();
        return h;
      });
  Ref<Object> ref(host);
  host->Release();
  return ref;
}

PyObject* HostTarget(const Object* object) noexcept {
  const auto* host = dynamic_cast<const PyHostObject*>(object);
  return host ? host->Target() : nullptr;
}

}  // namespace TessarkAO::Python
