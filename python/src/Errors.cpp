// Automation errors across the Python boundary, both ways.
#include <pybind11/eval.h>

#include <string>

#include "Values.hpp"

namespace TessarkAO::Python {

namespace {

PyObject* g_automationError = nullptr;  // tk.AutomationError
PyObject* g_memberNotFound = nullptr;   // tk.MemberNotFoundError

// The exception classes are ordinary Python classes, so that scripts can
// raise them from host objects and subclass them.
constexpr const char* kErrorClasses = R"PY(
class AutomationError(Exception):
    """An automation error.

    .number is the classic error number (438, 13, ...), .hresult the HRESULT
    (0x800A0000 | number for classic numbers), .description its text and
    .source what raised it.  Raised by a host object written in Python, it
    reaches the library's caller with its number unchanged.
    """

    def __init__(self, number=440, description=None, source="", hresult=None):
        number = int(number)
        if description is None:
            description = _standard_description(number)
        if hresult is None:
            hresult = (0x800A0000 | number) if 0 <= number <= 0xFFFF else number & 0xFFFFFFFF
        super().__init__(number, description)
        self.number = number
        self.description = str(description)
        self.source = str(source)
        self.hresult = int(hresult) & 0xFFFFFFFF

    def __str__(self):
        return f"{self.description} (error {self.number})"


class MemberNotFoundError(AutomationError, AttributeError):
    """Error 438 for an attribute that names no member of the object."""
)PY";

// The Python exception behind the last automation error made from one, so
// that the error can carry it as its cause when it reaches Python again.
struct PendingCause {
  PyObject* exception = nullptr;  // owned
  std::int32_t number = 0;
  std::string description;
};
thread_local PendingCause t_cause;

void ClearCause() {
  Py_CLEAR(t_cause.exception);
  t_cause.description.clear();
}

// Nearest classic error number of a built-in exception.
std::int32_t NumberOfBuiltin(PyObject* type) {
  struct Map {
    PyObject* type;
    std::int32_t number;
  };
  const Map map[] = {
      {PyExc_AttributeError, Err::NoSuchMember},   {PyExc_ZeroDivisionError, Err::DivisionByZero},
      {PyExc_OverflowError, Err::Overflow},        {PyExc_IndexError, Err::SubscriptOutOfRange},
      {PyExc_KeyError, Err::SubscriptOutOfRange},  {PyExc_TypeError, Err::TypeMismatch},
      {PyExc_ValueError, Err::InvalidCall},        {PyExc_MemoryError, Err::OutOfMemory},
      {PyExc_FileNotFoundError, Err::FileNotFound}, {PyExc_PermissionError, Err::PermissionDenied},
      {PyExc_OSError, Err::PathFileAccess},
  };
  for (const Map& e : map)
    if (PyErr_GivenExceptionMatches(type, e.type)) return e.number;
  return Err::AutomationFailure;
}

std::string StrOf(PyObject* o) {
  PyObject* s = PyObject_Str(o);
  if (!s) {
    PyErr_Clear();
    return "?";
  }
  std::string out = "?";
  try {
    out = TextFromPython(s);
  } catch (py::error_already_set&) {
    PyErr_Clear();
  }
  Py_DECREF(s);
  return out;
}

}  // namespace

void RegisterErrors(py::module_& m) {
  py::dict ns;
  ns["__builtins__"] = py::module_::import("builtins");
  ns["__name__"] = m.attr("__name__");
  ns["_standard_description"] =
      py::cpp_function([](std::int32_t n) { return std::string(StandardDescription(n)); });
  py::exec(kErrorClasses, ns);
  g_automationError = py::object(ns["AutomationError"]).release().ptr();
  g_memberNotFound = py::object(ns["MemberNotFoundError"]).release().ptr();
  py::setattr(py::handle(g_automationError), "__module__", py::str("tessarkao"));
  py::setattr(py::handle(g_memberNotFound), "__module__", py::str("tessarkao"));
  m.attr("AutomationError") = py::handle(g_automationError);
  m.attr("MemberNotFoundError") = py::handle(g_memberNotFound);
  m.def("standard_description", [](std::int32_t n) { return std::string(StandardDescription(n)); },
        py::arg("number"), "The standard description of a classic error number.");

  py::register_exception_translator([](std::exception_ptr p) {
    try {
      if (p) std::rethrow_exception(p);
    } catch (const AutomationError& e) {
      SetPythonError(e);
    }
  });
}

namespace {

void SetErrorOf(PyObject* cls, const AutomationError& e) {
  PyObject* inst = nullptr;
  try {
    inst = py::handle(cls)(e.Number(), TextToPython(e.Description()), TextToPython(e.Source()),
                           static_cast<std::uint64_t>(e.HResult()))
               .release()
               .ptr();
  } catch (py::error_already_set& failed) {
    failed.restore();  // the error of the failed construction stands
  }
  if (!inst) return;  // the error of the failed construction stands
  PyObject* cause = nullptr;
  if (t_cause.exception && t_cause.number == e.Number() && t_cause.description == e.Description()) {
    cause = t_cause.exception;
    t_cause.exception = nullptr;
  }
  ClearCause();
  if (cause && !PyErr_GivenExceptionMatches(cause, PyExc_Exception)) {
    // KeyboardInterrupt, SystemExit and the like keep going as themselves.
    Py_DECREF(inst);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(cause)), cause);
    Py_DECREF(cause);
    return;
  }
  if (cause && PyObject_IsInstance(cause, g_automationError) == 1) {
    // An error a Python host raised comes back as the very exception object.
    Py_DECREF(inst);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(cause)), cause);
    Py_DECREF(cause);
    return;
  }
  if (cause) PyException_SetCause(inst, cause);  // steals `cause`
  PyErr_SetObject(cls, inst);
  Py_DECREF(inst);
}

}  // namespace

void SetPythonError(const AutomationError& e) { SetErrorOf(g_automationError, e); }

void SetMemberNotFound(std::string_view typeName, std::string_view member) {
  SetErrorOf(g_memberNotFound,
             AutomationError(Err::NoSuchMember,
                             std::string(StandardDescription(Err::NoSuchMember)) + ": " + std::string(typeName) +
                                 "." + std::string(member)));
}

AutomationError AutomationErrorFromPython(py::error_already_set& e) {
  PyObject* value = e.value().ptr();
  ClearCause();
  if (value && PyObject_IsInstance(value, g_automationError) == 1) {
    try {
      py::handle h(value);
      const auto number = h.attr("number").cast<std::int32_t>();
      const auto hresult = static_cast<std::uint32_t>(h.attr("hresult").cast<std::uint64_t>());
      AutomationError out(number, hresult, TextFromPython(py::str(h.attr("description")).ptr()),
                          TextFromPython(py::str(h.attr("source")).ptr()));
      t_cause.exception = value;
      Py_INCREF(value);
      t_cause.number = out.Number();
      t_cause.description = out.Description();
      return out;
    } catch (py::error_already_set&) {
      // A malformed error object: fall through to the generic mapping.
    } catch (const py::cast_error&) {
    }
  }
  const std::int32_t number = e.type() ? NumberOfBuiltin(e.type().ptr()) : Err::AutomationFailure;
  const std::string typeName = e.type() ? py::str(e.type().attr("__name__")).cast<std::string>() : "Exception";
  std::string text = value ? StrOf(value) : std::string();
  std::string description = text.empty() ? typeName : typeName + ": " + text;
  t_cause.exception = value;
  Py_XINCREF(value);
  t_cause.number = number;
  t_cause.description = description;
  return AutomationError(number, std::move(description), "Python");
}

PyObject* TranslateException() noexcept {
  try {
    throw;
  } catch (py::error_already_set& e) {
    e.restore();
  } catch (const AutomationError& e) {
    SetPythonError(e);
  } catch (const py::builtin_exception& e) {
    e.set_error();  // the module's own complaints about Python values
  } catch (...) {
    SetPythonError(CurrentError());
  }
  return nullptr;
}

}  // namespace TessarkAO::Python
