#include "com/TypeLibraryWriter.hpp"

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "automation/Enumerations.hpp"
#include "com/Guid.hpp"
#include "frame/ClassCatalogue.hpp"

namespace TessarkAO::Com {

namespace {

// Words widl's grammar or the base declarations take for themselves.
constexpr std::string_view kReserved[] = {
    "boolean",   "byte",        "case",     "char",       "coclass",      "const",     "cpp_quote",
    "default",   "dispinterface", "double", "enum",       "error_status_t", "extern",  "FALSE",
    "float",     "handle_t",    "hyper",    "import",     "importlib",    "in_line",   "int",
    "interface", "library",     "long",     "methods",    "module",       "properties", "short",
    "signed",    "sizeof",      "small",    "static",     "struct",       "switch",    "typedef",
    "union",     "unsigned",    "void",     "wchar_t",    "TRUE",         "NULL",      "namespace",
    "pascal",    "register",    "stdcall",  "cdecl",      "fastcall",     "inline",
    "VARIANT",   "BSTR",        "DATE",     "CURRENCY",   "DECIMAL",      "VARIANT_BOOL", "IDispatch",
    "IUnknown",  "HRESULT",     "SCODE",    "SAFEARRAY",  "int64",        "midl_pragma"};

bool IsReserved(std::string_view name) noexcept {
  for (std::string_view r : kReserved)
    if (EqualsNoCase(r, name)) return true;
  return false;
}

std::string Quote(std::string_view text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  out += '"';
  return out;
}

bool IsAscii(std::string_view text) noexcept {
  for (char c : text)
    if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) > 0x7E) return false;
  return true;
}

// The defaultvalue literal of an optional argument, or "" when the type
// library cannot state it (the argument is then an optional VARIANT).
std::string DefaultLiteral(const ParamInfo& p) {
  const Variant& d = p.defaultValue;
  if (d.IsMissing() || d.IsArray()) return {};
  try {
    switch (p.type) {
      case VarType::Long:
      case VarType::Integer:
      case VarType::Byte: {
        if (!IsIntegral(d.Type()) && d.Type() != VarType::Boolean) return {};
        return std::to_string(ToLong(d));
      }
      case VarType::Boolean:
        if (d.Type() != VarType::Boolean) return {};
        return d.AsBoolean() ? "-1" : "0";
      case VarType::String:
        if (d.Type() != VarType::String || !IsAscii(d.AsString())) return {};
        return Quote(d.AsString());
      default:
        return {};
    }
  } catch (const AutomationError&) {
    return {};
  }
}

// One parameter: "[in] double dblX", "[in, out] VARIANT* vValues", ...
std::string Param(const ParamInfo& p, std::string_view name) {
  // A trailing variable-length list is the array that a vararg method's
  // last parameter receives.
  if (p.paramArray) return "[in] SAFEARRAY(VARIANT) " + std::string(name);
  std::string attrs = p.output ? "in, out" : "in";
  std::string type(IdlTypeName(p.type));
  if (p.optional) {
    const std::string literal = DefaultLiteral(p);
    if (literal.empty()) {
      attrs += ", optional";
      type = "VARIANT";
    } else {
      attrs += ", optional, defaultvalue(" + literal + ")";
    }
  }
  if (p.output) type += "*";
  return "[" + attrs + "] " + type + " " + std::string(name);
}

// The parameter list of an accessor.  `names` gives names for leading
// parameters that the accessor itself leaves unnamed (a property's let and
// set take the get's index names); the value of a put is "rhs".
std::string ParamList(const Accessor& a, const Accessor* namesFrom, bool put) {
  std::string out;
  std::vector<std::string> used;
  for (std::size_t i = 0; i < a.params.size(); ++i) {
    std::string name = a.params[i].name;
    const bool generic = name.rfind("arg", 0) == 0;
    if (put && i + 1 == a.params.size()) {
      name = "rhs";
    } else if (generic && namesFrom && i < namesFrom->params.size()) {
      name = namesFrom->params[i].name;
    }
    name = IdlIdentifier(name);
    for (const std::string& u : used)
      if (EqualsNoCase(u, name)) name += std::to_string(i + 1);
    used.push_back(name);
    if (!out.empty()) out += ", ";
    out += Param(a.params[i], name);
  }
  return out;
}

std::string ResultType(const Accessor& a) {
  if (a.result == VarType::Empty) return "void";
  return std::string(IdlTypeName(a.result));
}

std::string Attributes(DispId id, std::string_view kind, const std::string& doc) {
  std::string out = "[id(" + std::to_string(id) + ")";
  if (!kind.empty()) out += ", " + std::string(kind);
  if (!doc.empty() && IsAscii(doc)) out += ", helpstring(" + Quote(doc) + ")";
  return out + "]";
}

void WriteInterface(std::string& out, const ServedClass& c) {
  const ClassInfo& info = *c.info;
  const std::string_view iid = StripBraces(c.record->iid);
  out += "  [uuid(" + std::string(iid) + "), hidden, helpstring(\"" + std::string(c.record->name) +
         " dispatch interface\")]\n";
  out += "  dispinterface _" + std::string(c.record->name) + " {\n";
  out += "    properties:\n    methods:\n";
  for (const MemberInfo& m : info.Members()) {
    // The default member answers to DISPID_VALUE as well as to its slot.
    const DispId id = (m.id == info.DefaultMember()) ? DispIdValue : m.id;
    const std::string name = IdlIdentifier(m.name);
    if (m.get) {
      std::string kind = m.isMethod ? "" : "propget";
      if (m.get.paramArray) kind += kind.empty() ? "vararg" : ", vararg";
      out += "      " + Attributes(id, kind, m.doc) + " " + ResultType(m.get) + " " +
             name + "(" + ParamList(m.get, nullptr, false) + ");\n";
    }
    if (m.let) {
      out += "      " + Attributes(id, "propput", m.get ? std::string() : m.doc) + " void " + name + "(" +
             ParamList(m.let, m.get ? &m.get : nullptr, true) + ");\n";
    }
    if (m.set) {
      out += "      " + Attributes(id, "propputref", (m.get || m.let) ? std::string() : m.doc) + " void " +
             name + "(" + ParamList(m.set, m.get ? &m.get : nullptr, true) + ");\n";
    }
  }
  out += "  };\n\n";
}

// The enumerations of a served class's interface, as the scripting runtimes
// show them: `TKColumnTypes` with its constants and their values.
void WriteEnumeration(std::string& out, const EnumInfo& e) {
  const std::string name = IdlIdentifier(e.name);
  out += "  typedef [helpstring(" + Quote("Enumeration of " + std::string(e.owner)) + ")] enum " + name + " {\n";
  for (std::size_t i = 0; i < e.constants.size(); ++i) {
    out += "    " + IdlIdentifier(e.constants[i].name) + " = " + std::to_string(e.constants[i].value);
    out += i + 1 < e.constants.size() ? ",\n" : "\n";
  }
  out += "  } " + name + ";\n\n";
}

}  // namespace

std::string_view IdlTypeName(VarType type) noexcept {
  switch (type) {
    case VarType::Double: return "double";
    case VarType::Single: return "float";
    case VarType::Long: return "long";
    case VarType::Integer: return "short";
    case VarType::Byte: return "unsigned char";
    case VarType::Boolean: return "VARIANT_BOOL";
    case VarType::String: return "BSTR";
    case VarType::Currency: return "CURRENCY";
    case VarType::Date: return "DATE";
    case VarType::Decimal: return "DECIMAL";
    case VarType::Object: return "IDispatch*";
    case VarType::Error: return "SCODE";
    default: return "VARIANT";
  }
}

std::string IdlIdentifier(std::string_view name) {
  std::string out;
  for (char c : name) {
    const bool ok = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
    out += ok ? c : '_';
  }
  if (out.empty() || (out[0] >= '0' && out[0] <= '9')) out.insert(out.begin(), '_');
  if (IsReserved(out)) out += '_';
  return out;
}

const TypeLibraryInfo& ServerTypeLibrary() noexcept {
  static const TypeLibraryInfo info{kTypeLibraryName, kTypeLibraryId, 1, 0, "TessarkAO automation library"};
  return info;
}

std::vector<ServedClass> ServedClasses(std::vector<std::string>* failures) {
  std::vector<ServedClass> out;
  (void)LibraryClasses();  // the catalogue is installed before it is read
  for (const ClassRecord& r : Catalogue()) {
    if (!HasFactory(r.name)) continue;
    try {
      Ref<Object> o = CreateObject(r.progId);
      if (o && o->Class()) out.push_back({&r, o->Class()});
    } catch (const AutomationError& e) {
      // A class that cannot be created cannot be served either.
      if (failures) failures->push_back(std::string(r.progId) + ": error " + std::to_string(e.Number()) + " " + e.Description());
    }
  }
  return out;
}

std::string WriteIdl(const TypeLibraryInfo& lib, std::span<const ServedClass> classes) {
  std::string out;
  out += "// Generated from the library's member tables by the type-library generator.\n";
  out += "// Do not edit: change a class's member table instead.\n\n";
  out += "import \"TypeLibraryBase.idl\";\n\n";
  out += "[\n  uuid(" + std::string(StripBraces(lib.libid)) + "),\n  version(" + std::to_string(lib.major) +
         "." + std::to_string(lib.minor) + "),\n  helpstring(" + Quote(lib.helpString) + ")\n]\n";
  out += "library " + IdlIdentifier(lib.name) + "\n{\n  importlib(\"stdole2.tlb\");\n\n";
  for (const ServedClass& c : classes)
    for (const EnumInfo* e : EnumerationsOf(c.record->name)) WriteEnumeration(out, *e);
  for (const ServedClass& c : classes) WriteInterface(out, c);
  for (const ServedClass& c : classes) {
    out += "  [uuid(" + std::string(StripBraces(c.record->clsid)) + "), helpstring(\"" +
           std::string(c.record->progId) + "\")]\n";
    out += "  coclass " + IdlIdentifier(c.record->name) + " {\n    [default] dispinterface _" +
           std::string(c.record->name) + ";\n  };\n\n";
  }
  out += "};\n";
  return out;
}

std::string WriteStringTableScript(std::span<const std::pair<std::int32_t, std::string_view>> entries) {
  std::string out;
  out += "// Generated from the library's string table by the type-library generator.\n";
  out += "#pragma code_page(65001)\n\n";
  out += "LANGUAGE 9, 1\nSTRINGTABLE\nBEGIN\n";
  for (const auto& [id, text] : entries) {
    out += "  " + std::to_string(id) + ", \"";
    for (char c : text) {
      if (c == '"')
        out += "\"\"";
      else if (c == '\\')
        out += "\\\\";
      else
        out += c;
    }
    out += "\"\n";
  }
  out += "END\n";
  return out;
}

}  // namespace TessarkAO::Com
