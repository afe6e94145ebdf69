#include "Signatures.hpp"

#include "automation/Call.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO::Python {

namespace {

std::string ParamText(const ParamInfo& p) {
  if (p.paramArray) return "ParamArray " + p.name + "()";
  std::string s = p.output ? "ByRef " : "";
  s += p.name + ": " + std::string(TypeName(p.type));
  if (!p.optional) return s;
  const std::string def = DefaultText(p.defaultValue);
  return "[" + s + (def.empty() ? "" : " = " + def) + "]";
}

std::string ParamList(const std::vector<ParamInfo>& params, std::size_t count) {
  std::string s;
  for (std::size_t i = 0; i < count && i < params.size(); ++i) {
    if (i) s += ", ";
    s += ParamText(params[i]);
  }
  return s;
}

}  // namespace

std::string SignatureText(const MemberInfo& m) {
  if (m.isMethod) {
    std::string s = m.name + "(" + ParamList(m.get.params, m.get.params.size()) + ")";
    if (m.get.result != VarType::Empty) s += " -> " + std::string(TypeName(m.get.result));
    return s;
  }
  // A property: its arguments are the get's, or the let's / set's less the value.
  const Accessor& put = PutAccessor(m);
  std::string args;
  std::size_t argCount = 0;
  VarType type = VarType::Variant;
  if (m.get) {
    argCount = m.get.params.size();
    args = ParamList(m.get.params, argCount);
    type = m.get.result;
  } else if (put && !put.params.empty()) {
    argCount = put.params.size() - 1;
    args = ParamList(put.params, argCount);
    type = put.params.back().type;
  }
  std::string s = m.name;
  s += argCount ? "(" + args + ") -> " : ": ";
  s += std::string(TypeName(type));
  std::string kinds;
  auto add = [&kinds](const char* k) { kinds += kinds.empty() ? k : std::string(", ") + k; };
  if (m.get) add("get");
  if (m.let) add("let");
  if (m.set) add("set");
  s += " {" + kinds + "}";
  if (!m.doc.empty()) s += "\n" + m.doc;
  return s;
}

std::string ClassDescription(const ClassInfo& info) {
  std::string s = info.Name() + "\n";
  const MemberInfo* def = info.Member(DispIdValue);
  for (const MemberInfo& m : info.Members()) {
    std::string line = SignatureText(m);
    const std::size_t nl = line.find('\n');
    if (nl != std::string::npos) line.resize(nl);
    s += "  " + line + (&m == def ? "  (default member)" : "") + "\n";
  }
  return s;
}

std::string DefaultText(const Variant& v) {
  if (v.IsMissing()) return {};
  if (v.IsNothing()) return "Nothing";
  if (v.IsArray()) return "()";
  switch (v.Type()) {
    case VarType::Empty: return "Empty";
    case VarType::Null: return "Null";
    case VarType::String: return "\"" + v.AsString() + "\"";
    case VarType::Error: return "Error " + std::to_string(v.AsError().scode);
    default: return ToString(v);
  }
}

}  // namespace TessarkAO::Python
