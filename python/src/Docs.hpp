// What the member tables tell Python about each class: the per-class proxy
// types that help(), inspect.signature and editors read, the member
// metadata they are built from, and the enumerations.
#pragma once

#include <pybind11/pybind11.h>

#include "automation/Members.hpp"

namespace TessarkAO::Python {

namespace py = pybind11;

// Registers tk._class_members, tk._enumerations and tk._set_class_type_factory.
void RegisterDocs(py::module_& m);

// The proxy type for objects of `cls`: a subclass of `base` (tk.Object) that
// carries the class's documentation, made once per class by the factory the
// package installs; `base` itself before that or for objects without a table.
PyTypeObject* ProxyTypeFor(const ClassInfo* cls, PyTypeObject* base);

// inspect.signature of a bound member: the signature of the class attribute
// of the same name without its `self`; nullptr with AttributeError when the
// class has none.
PyObject* BoundMemberSignature(PyObject* owner, const MemberInfo* member);
// The docstring of the class attribute of the same name, or nullptr (no
// Python error set) when the class has none.
PyObject* BoundMemberDoc(PyObject* owner, const MemberInfo* member);

}  // namespace TessarkAO::Python
