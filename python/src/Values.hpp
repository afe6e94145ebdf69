// The value mapping between Python and automation variants.
//
//   Python                       Variant
//   float                        Double
//   int                          Long (beyond Long's range: Double, as the
//                                classic runtime types a literal too large
//                                for a Long)
//   bool                         Boolean
//   str                          String
//   None                         Nothing (an empty object reference)
//   tk.Empty / tk.Null           Empty / Null
//   tk.Missing                   an omitted optional argument
//   tk.Integer(...) ...          the wrapper's own type (Integer, Long,
//                                Single, Double, Currency, Byte, Date,
//                                Decimal, Boolean, String)
//   tk.Array                     an array with its element type and bounds
//   list / tuple                 a 0-based array of Variant (nested lists:
//                                one dimension per level)
//   decimal.Decimal / datetime   Decimal / Date
//   tk.Variant                   the variant it holds, as it is
//   a library object (proxy)     that object
//   anything else                a host object resolving members on it
//
// Coming back, Double, Long, Boolean, String, Nothing and Empty become the
// plain Python values above; the other scalar types come back as their
// typed wrappers so that passing a result on keeps its type exactly.
// tk.Integer, tk.Long and tk.Byte are int subclasses and tk.Single,
// tk.Double and tk.Currency float subclasses (a Currency also holds its
// exact scaled value), so host objects and callers get usable numbers.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <string>

#include "automation/AutomationError.hpp"
#include "automation/Variant.hpp"

namespace TessarkAO::Python {

namespace py = pybind11;

// A typed wrapper (tk.Integer(5), tk.Currency("1.25"), ...): a scalar variant
// of exactly one type.
struct TypedValue {
  Variant value;
};

// tk.Array: an array variant's SafeArray, owned by the Python object.
struct ArrayValue {
  SafeArray array;
};

// tk.Variant: a raw variant, as tk.invoke returns it.
struct RawVariant {
  Variant value;
};

// tk.Ref: a by-reference argument; the callee's writes land in `value`.
struct RefBox {
  py::object value;
};

// Text across the boundary.  A classic string is any sequence of UTF-16 code
// units, so a str may hold lone surrogates: they travel inside the library
// as their three-byte (generalized UTF-8) forms and come back unchanged.
// Bytes that are not UTF-8 at all (read from a file, say) come back as the
// surrogate escapes U+DC80..U+DCFF, so every text reaches Python as a str.
std::string TextFromPython(PyObject* str);
py::str TextToPython(std::string_view text);

// Python to variant.  Raises AutomationError (13, 6) for values that do not
// convert, TypeError for a tk.Ref outside an argument list.
Variant ToVariant(py::handle h);
// Variant to Python (by-reference variants are read through).
py::object FromVariant(const Variant& v);
// The plain Python value of a scalar variant (what a wrapper's .value gives).
py::object PlainValue(const Variant& v);

// A new tk.Ref holding `value`.
py::object NewRef(py::object value);

// The tk.Missing singleton (borrowed).
PyObject* MissingObject() noexcept;

// The tk.Ref instance behind `h`, or nullptr when `h` is not one.
RefBox* AsRef(py::handle h);

// Parses a vartype given as a name ("Double"), a code (5) or a wrapper class
// (tk.Double).  Raises ValueError when it names no type.
VarType VarTypeOf(py::handle h);

// Registers the value classes and singletons into the module.
void RegisterValues(py::module_& m);

// ---------------------------------------------------------------------------
// Errors across the boundary.

// Registers tk.AutomationError and tk.MemberNotFoundError (also an
// AttributeError, so hasattr and getattr with a default behave).
void RegisterErrors(py::module_& m);

// Sets the Python error indicator from an automation error.
void SetPythonError(const AutomationError& e);
// Sets error 438 for an attribute that names no member, as MemberNotFoundError.
void SetMemberNotFound(std::string_view typeName, std::string_view member);
// Converts the Python exception being handled into an automation error: a
// tk.AutomationError keeps its number, description, source and HRESULT;
// built-in exceptions map to the nearest classic number.  The original
// exception is kept so that it becomes the __cause__ when the error reaches
// Python again.
AutomationError AutomationErrorFromPython(py::error_already_set& e);
// For use inside a catch (...) block of a raw Python entry point: sets the
// Python error indicator for the exception in flight and returns nullptr.
PyObject* TranslateException() noexcept;

}  // namespace TessarkAO::Python
