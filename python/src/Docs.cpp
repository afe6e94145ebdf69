#include "Docs.hpp"

#include <unordered_map>

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"

#include "Signatures.hpp"
#include "Values.hpp"
#include "automation/Enumerations.hpp"
#include "automation/VarType.hpp"

namespace TessarkAO::Python {

namespace {

py::object& TypeFactory() {
  static py::object* factory = new py::object();  // lives as long as the interpreter
  return *factory;
}

std::unordered_map<const ClassInfo*, PyTypeObject*>& TypeCache() {
  static auto* cache = new std::unordered_map<const ClassInfo*, PyTypeObject*>();
  return *cache;
}

// (name, type, output, optional, default, param_array, default text) per parameter.
py::list Params(const std::vector<ParamInfo>& params, std::size_t count) {
  py::list out;
  for (std::size_t i = 0; i < count && i < params.size(); ++i) {
    const ParamInfo& p = params[i];
    py::object def = p.optional ? FromVariant(p.defaultValue) : py::none();
    const std::string text = p.optional ? DefaultText(p.defaultValue) : std::string();
    out.append(
        py::make_tuple(p.name, std::string(TypeName(p.type)), p.output, p.optional, def, p.paramArray, text));
  }
  return out;
}

// One member: name, kind ("method" or "property"), the access kinds, the
// parameters (a property's without its value), the result type ("" for
// none), the doc text and whether it is the default member.
py::tuple MemberRow(const MemberInfo& m, bool isDefault) {
  py::list kinds;
  if (m.isMethod) {
    kinds.append("method");
  } else {
    if (m.get) kinds.append("get");
    if (m.let) kinds.append("let");
    if (m.set) kinds.append("set");
  }
  const Accessor& put = m.let ? m.let : m.set;
  py::list params;
  std::string result;
  if (m.get) {
    params = Params(m.get.params, m.get.params.size());
    if (m.get.result != VarType::Empty) result = TypeName(m.get.result);
  } else if (put && !put.params.empty()) {
    params = Params(put.params, put.params.size() - 1);
    result = TypeName(put.params.back().type);
  }
  return py::make_tuple(m.name, m.isMethod ? "method" : "property", kinds, params, result, m.doc, isDefault);
}

py::list ClassRows(const ClassInfo& info) {
  py::list rows;
  const MemberInfo* def = info.Member(DispIdValue);
  for (const MemberInfo& mi : info.Members()) rows.append(MemberRow(mi, &mi == def));
  return rows;
}

}  // namespace

PyTypeObject* ProxyTypeFor(const ClassInfo* cls, PyTypeObject* base) {
  if (!cls || !TypeFactory()) return base;
  auto& cache = TypeCache();
  if (auto it = cache.find(cls); it != cache.end()) return it->second;
  py::object t = TypeFactory()(py::handle(reinterpret_cast<PyObject*>(base)), cls->Name(), ClassRows(*cls));
  if (!PyType_Check(t.ptr()) || !PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(t.ptr()), base))
    throw py::type_error("the class type factory must return a subclass of tk.Object");
  auto* type = reinterpret_cast<PyTypeObject*>(t.release().ptr());  // kept for the interpreter's life
  cache.emplace(cls, type);
  return type;
}

PyObject* BoundMemberSignature(PyObject* owner, const MemberInfo* member) {
  if (!member) {
    PyErr_SetString(PyExc_AttributeError, "__signature__");
    return nullptr;
  }
  PyObject* attr = PyObject_GetAttrString(reinterpret_cast<PyObject*>(Py_TYPE(owner)), member->name.c_str());
  if (!attr) return nullptr;
  PyObject* sig = PyObject_GetAttrString(attr, "__bound_signature__");
  Py_DECREF(attr);
  return sig;
}

PyObject* BoundMemberDoc(PyObject* owner, const MemberInfo* member) {
  PyTypeObject* type = Py_TYPE(owner);
  PyObject* attr = PyDict_GetItemString(type->tp_dict, member->name.c_str());  // borrowed
  if (!attr) return nullptr;
  PyObject* doc = PyObject_GetAttrString(attr, "__doc__");
  if (!doc) PyErr_Clear();
  return doc;
}

void RegisterDocs(py::module_& m) {
  m.def(
      "_class_members",
      [](const std::string& progIdOrName) {
        // By class name ("TKVector4d") or by identifier.
        Ref<Object> o;
        for (const ClassRecord& r : Catalogue())
          if (r.name == progIdOrName) o = CreateObject(r.progId);
        if (!o) o = CreateObject(progIdOrName);
        const ClassInfo* info = o->Class();
        return info ? ClassRows(*info) : py::list();
      },
      py::arg("name"),
      "The member table of a class as rows (name, kind, access, parameters, result, doc, default).");
  m.def(
      "_enumerations",
      [] {
        py::list out;
        for (const EnumInfo& e : Enumerations()) {
          py::list constants;
          for (const EnumConstant& c : e.constants) constants.append(py::make_tuple(std::string(c.name), c.value));
          out.append(py::make_tuple(std::string(e.name), std::string(e.owner), constants));
        }
        return out;
      },
      "The enumerations of the classes' interfaces as (name, owning class, [(constant, value)]).");
  m.def(
      "_set_class_type_factory", [](py::object f) { TypeFactory() = std::move(f); }, py::arg("factory"),
      "Installs factory(base, class_name, member_rows) -> type, which makes the proxy type of each "
      "class.");
}

}  // namespace TessarkAO::Python
