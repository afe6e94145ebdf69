// tk.Object: the Python face of any automation object, and the call
// mechanics shared by its attribute access, its bound members and tk.invoke.
//
// Attribute access is late-bound through the object's member table:
//   obj.X            a property without arguments is read at once (get);
//   obj.X = v        let, or set when v is an object (or None);
//   obj.Value[2]     a property with arguments: get with those arguments;
//   obj.Value[2] = v let / set with the arguments and the value;
//   obj.Value(2)     the same get, in call form (a property whose arguments
//                    are all optional is bound too: obj.Prop() reads it);
//   obj.Method(...)  a method call; optional arguments may be left out, given
//                    as tk.Missing or named by their parameter names;
//   obj(...), obj[i] the default member.
// Dispatch ids are looked up once per class and attribute name and cached.
#pragma once

#include <pybind11/pybind11.h>

#include <cstddef>
#include <deque>
#include <span>
#include <vector>

#include "Values.hpp"
#include "automation/Members.hpp"

namespace TessarkAO::Python {

// Registers tk.Object (the proxy type) and its bound-member type.
void RegisterProxy(py::module_& m);

bool IsProxy(PyObject* o) noexcept;
// The object a proxy holds (borrowed).
Object* ProxyTarget(PyObject* proxy) noexcept;
// A new proxy holding `object` (not Nothing).
py::object NewProxy(Ref<Object> object);

// The arguments of one call made from Python.  Values are converted in
// order; a tk.Ref becomes a by-reference argument whose final value is
// written back to the Ref after the call (whether or not it succeeded, as a
// callee's writes through a reference stand).
class CallArgs {
 public:
  CallArgs(PyObject* const* items, std::size_t count);
  // Appends one more argument (the value of a let or set).
  void Append(PyObject* item);
  std::span<Variant> Span() noexcept { return values_; }
  void WriteBack();

 private:
  void Add(PyObject* item);
  struct RefSlot {
    std::size_t slot;
    PyObject* ref;     // borrowed: the caller keeps its arguments alive
    Variant original;  // to leave an unchanged value exactly as the caller gave it
  };
  std::vector<Variant> values_;
  std::deque<Variant> targets_;  // what the by-reference arguments point at (stable addresses)
  std::vector<RefSlot> refs_;
};

// Calls `name` on `object` with a raw kind and returns the raw result
// (tk.invoke).  A dispatch id may be given instead of a name.
Variant InvokeRaw(Object& object, py::handle nameOrId, CallKind kind, CallArgs& args);

}  // namespace TessarkAO::Python
