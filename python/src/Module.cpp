// The extension module tessarkao._core: everything the package exports.
#include <cstdlib>
#include <pybind11/stl.h>

#include "Docs.hpp"
#include "Proxy.hpp"
#include "Signatures.hpp"
#include "Values.hpp"
#include "automation/Catalogue.hpp"
#include "frame/ClassCatalogue.hpp"
#include "tessarkao/Version.hpp"

namespace TessarkAO::Python {

void RegisterUi(py::module_& m);
#ifdef TK_WITH_REFHOST
void RegisterRefHost(py::module_& m);
#endif

namespace {

CallKind KindOf(int kind) {
  switch (kind) {
    case static_cast<int>(CallKind::Method):
    case static_cast<int>(CallKind::Get):
    case static_cast<int>(CallKind::Let):
    case static_cast<int>(CallKind::Set): return static_cast<CallKind>(kind);
    default: throw py::value_error("kind must be tk.GET, tk.LET, tk.SET or tk.METHOD");
  }
}

// The object behind a script value: a proxy's object, or the host object of
// any other Python object.  424 for values that are not objects, 91 for None.
Ref<Object> ObjectOf(py::handle h) {
  Variant v = ToVariant(h);
  Ref<Object> o = ToObject(v);
  if (!o) Raise(Err::ObjectNotSet);
  return o;
}

}  // namespace

}  // namespace TessarkAO::Python

using namespace TessarkAO;
using namespace TessarkAO::Python;

PYBIND11_MODULE(_core, m) {
  m.doc() = "The TessarkAO automation library: library classes created by identifier and "
            "called late-bound by member name.";
  LibraryClasses();  // installs the catalogue of the library's classes
  // Scripts drive the dialogs through tk.ui: headless unless the caller
  // asks for windows (TESSARKAO_UI=windows) before the module loads.
  ::setenv("TESSARKAO_UI", "headless", 0);
  m.attr("__version__") = TESSARKAO_VERSION_STRING;

  RegisterErrors(m);
  RegisterValues(m);
  RegisterProxy(m);
  RegisterDocs(m);
  RegisterUi(m);
#ifdef TK_WITH_REFHOST
  RegisterRefHost(m);
#endif

  m.attr("METHOD") = static_cast<int>(CallKind::Method);
  m.attr("GET") = static_cast<int>(CallKind::Get);
  m.attr("LET") = static_cast<int>(CallKind::Let);
  m.attr("SET") = static_cast<int>(CallKind::Set);

  m.def(
      "CreateObject",
      [](const std::string& id) { return NewProxy(CreateObject(id)); }, py::arg("progid_or_clsid"),
      "Creates a library class by ProgID (\"TessarkAO.TKVector4d\") or CLSID (\"{...}\"); "
      "error 429 when the identifier is unknown.");

  m.def(
      "invoke",
      [](py::handle obj, py::handle name, int kind, py::args args) {
        Ref<Object> o = ObjectOf(obj);
        std::vector<PyObject*> items;
        for (py::handle a : args) items.push_back(a.ptr());
        CallArgs callArgs(items.data(), items.size());
        return RawVariant{InvokeRaw(*o, name, KindOf(kind), callArgs)};
      },
      py::arg("obj"), py::arg("name"), py::arg("kind"),
      "Calls member `name` (or a dispatch id) of `obj` with kind tk.GET, tk.LET, tk.SET or "
      "tk.METHOD and returns the raw tk.Variant result.  For a let or set the value is the last "
      "argument.");

  m.def(
      "same",
      [](py::handle a, py::handle b) {
        Variant x = ToVariant(a), y = ToVariant(b);
        return x.IsObject() && y.IsObject() && x.AsObject() == y.AsObject();
      },
      py::arg("a"), py::arg("b"), "Whether two references denote one object (None is None).");

  m.def(
      "describe",
      [](py::handle obj) -> std::string {
        Ref<Object> o = PyUnicode_Check(obj.ptr()) ? CreateObject(TextFromPython(obj.ptr())) : ObjectOf(obj);
        const ClassInfo* info = o->Class();
        if (!info) return o->TypeName() + "\n  (members resolved at call time)\n";
        return ClassDescription(*info);
      },
      py::arg("obj"), "The member signatures of an object, or of a class given by its identifier.");

  m.def(
      "typename",
      [](py::handle value) { return ToVariant(value).TypeName(); }, py::arg("value"),
      "The type name a scripting runtime's TypeName reports for a value.");

  m.def(
      "catalogue",
      [] {
        py::list out;
        for (const ClassRecord& r : Catalogue())
          out.append(py::make_tuple(std::string(r.name), std::string(r.progId), std::string(r.clsid)));
        return out;
      },
      "The library's classes as (name, ProgID, CLSID), in catalogue order.");
}
