// A Python object acting as a host object: the library's late-bound calls
// resolve on its attributes.
//
//   get without arguments      reads the attribute, and calls it when it is
//                              a method (a value that is merely callable, such
//                              as a collection, is returned as it is);
//   get with arguments, method calls the attribute with the arguments (an
//                              attribute that cannot be called but can be
//                              indexed is indexed instead);
//   let / set without arguments assigns the attribute;
//   let / set with arguments   assigns an item of the attribute.
// Names resolve exactly first, then case-insensitively, as automation names
// do.  Arguments arrive as Python values; by-reference arguments arrive as
// tk.Ref and what the host leaves in .value is written back.  A Python
// exception becomes an AutomationError (a tk.AutomationError keeps its
// number).  Every entry takes the GIL, so the library may call from any
// thread.  One Python object is always the same host object, so identity
// tests in the library see it as one.
#pragma once

#include <pybind11/pybind11.h>

#include "automation/Object.hpp"

namespace TessarkAO::Python {

namespace py = pybind11;

// The host object standing for `target` (made on first use).
Ref<Object> WrapHostObject(py::handle target);
// The Python object behind a host object (borrowed), or nullptr when
// `object` is not one.
PyObject* HostTarget(const Object* object) noexcept;

}  // namespace TessarkAO::Python
