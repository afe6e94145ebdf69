// Writes the class reference (docs/reference/<Class>.md and its index) and the
// Python type stubs (python/tessarkao/__init__.pyi) from the member tables, the
// Doc texts and the enumerations, so that what a reader and an editor see is
// what the library answers to.
//
//   tk_reference OUT_DIR      writes OUT_DIR/docs/reference/*.md and
//                             OUT_DIR/python/tessarkao/__init__.pyi
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Enumerations.hpp"
#include "automation/Members.hpp"
#include "frame/ClassCatalogue.hpp"

using namespace TessarkAO;

namespace {

std::string DefaultText(const Variant& v) {
  if (v.IsMissing()) return {};
  if (v.IsNothing()) return "Nothing";
  switch (v.Type()) {
    case VarType::Empty: return "Empty";
    case VarType::String: return "\"" + v.AsString() + "\"";
    case VarType::Boolean: return v.AsBoolean() ? "True" : "False";
    default: return ToString(v);
  }
}

std::string Type(VarType t) { return std::string(TypeName(t)); }

// The parameters a caller passes: a property's without the assigned value.
const std::vector<ParamInfo>& CallParams(const MemberInfo& m, std::size_t& count) {
  static const std::vector<ParamInfo> none;
  if (m.get) {
    count = m.get.params.size();
    return m.get.params;
  }
  const Accessor& put = m.let ? m.let : m.set;
  count = put.params.empty() ? 0 : put.params.size() - 1;
  return put ? put.params : none;
}

std::string ValueType(const MemberInfo& m) {
  if (m.get) return m.get.result == VarType::Empty ? "" : Type(m.get.result);
  const Accessor& put = m.let ? m.let : m.set;
  return put.params.empty() ? "" : Type(put.params.back().type);
}

std::string Kinds(const MemberInfo& m) {
  if (m.isMethod) return "method";
  std::string k;
  for (auto [on, name] : {std::pair{bool(m.get), "get"}, {bool(m.let), "let"}, {bool(m.set), "set"}})
    if (on) k += (k.empty() ? "" : ", ") + std::string(name);
  return "property (" + k + ")";
}

std::string Signature(const MemberInfo& m) {
  std::size_t n = 0;
  const auto& ps = CallParams(m, n);
  std::string args;
  for (std::size_t i = 0; i < n; ++i) {
    const ParamInfo& p = ps[i];
    std::string s = p.paramArray ? "ParamArray " + p.name + "()"
                                 : (p.output ? "ByRef " : "") + p.name + ": " + Type(p.type);
    if (p.optional) {
      const std::string d = DefaultText(p.defaultValue);
      s = "[" + s + (d.empty() ? "" : " = " + d) + "]";
    }
    args += (i ? ", " : "") + s;
  }
  const std::string result = ValueType(m);
  if (m.isMethod) return m.name + "(" + args + ")" + (result.empty() ? "" : " -> " + result);
  return n ? m.name + "(" + args + ") -> " + result : m.name + ": " + result;
}

std::string ClassPage(const ClassRecord& r, const ClassInfo& info) {
  std::string s = "# " + std::string(r.name) + "\n\n";
  s += "Created by ProgID `" + std::string(r.progId) + "` or CLSID `" + std::string(r.clsid) + "`. ";
  s += "Dispatch interface `_" + std::string(r.name) + "` `" + std::string(r.iid) + "`";
  if (!r.earlierIids.empty()) {
    s += "; also answers to";
    for (std::size_t i = 0; i < r.earlierIids.size(); ++i) s += (i ? ", `" : " `") + std::string(r.earlierIids[i]) + "`";
  }
  s += ". ";
  s += r.counted ? "Takes part in the instance count (shares the localizer).\n\n"
                 : "Stays out of the instance count.\n\n";
  s += "Members in slot order; the slot is the dispatch id";
  const MemberInfo* def = info.Member(DispIdValue);
  if (def) s += ", and `" + def->name + "` is the default member (id 0)";
  s += ". Arguments in [brackets] are optional; ByRef arguments are outputs the member writes back.\n";
  for (const MemberInfo& m : info.Members()) {
    s += "\n## " + std::to_string(m.id) + ". " + m.name + "\n\n";
    s += "`" + Signature(m) + "` — " + Kinds(m) + "\n\n";
    std::size_t n = 0;
    const auto& ps = CallParams(m, n);
    if (n) {
      s += "| argument | type | passing | default |\n|---|---|---|---|\n";
      for (std::size_t i = 0; i < n; ++i) {
        const ParamInfo& p = ps[i];
        std::string def = p.optional ? DefaultText(p.defaultValue) : "required";
        if (p.optional && def.empty()) def = "may be omitted";
        s += "| " + p.name + " | " + (p.paramArray ? "Variant list" : Type(p.type)) + " | " +
             (p.output ? "ByRef (output)" : "ByVal") + " | " + def + " |\n";
      }
      s += "\n";
    }
    s += (m.doc.empty() ? std::string("(no description)") : m.doc) + "\n";
  }
  const auto enums = EnumerationsOf(r.name);
  if (!enums.empty()) {
    s += "\n## Enumerations\n";
    for (const EnumInfo* e : enums) {
      s += "\n### " + std::string(e->name) + "\n\n| constant | value |\n|---|---|\n";
      for (const EnumConstant& c : e->constants)
        s += "| " + std::string(c.name) + " | " + std::to_string(c.value) + " |\n";
    }
  }
  s += "\nErrors follow the library's conventions: 449 for a required argument left out, 450 for a wrong "
       "number of arguments, 13 for a value of the wrong type, 438 for an unknown member; a failing host "
       "call's error passes through unchanged.\n";
  return s;
}

// ---- Python stubs -------------------------------------------------------------------

std::string PyParamType(VarType t) {
  switch (t) {
    case VarType::Double: case VarType::Single: case VarType::Currency: return "float | _Value";
    case VarType::Long: case VarType::Integer: case VarType::Byte: return "int | _Value";
    case VarType::Boolean: return "bool | _Value";
    case VarType::String: return "str | _Value";
    default: return "Any";
  }
}

std::string PyResultType(VarType t) {
  switch (t) {
    case VarType::Empty: return "None";
    case VarType::Double: return "float";
    case VarType::Long: return "int";
    case VarType::Boolean: return "bool";
    case VarType::String: return "str";
    case VarType::Integer: return "Integer";
    case VarType::Byte: return "Byte";
    case VarType::Single: return "Single";
    case VarType::Currency: return "Currency";
    default: return "Any";
  }
}

std::string PyIdentifier(const std::string& name) {
  static const char* const kKeywords[] = {"False", "None", "True", "and", "as", "assert", "async", "await",
                                          "break", "class", "continue", "def", "del", "elif", "else", "except",
                                          "finally", "for", "from", "global", "if", "import", "in", "is",
                                          "lambda", "nonlocal", "not", "or", "pass", "raise", "return", "try",
                                          "while", "with", "yield"};
  for (const char* k : kKeywords)
    if (name == k) return name + "_";
  return name;
}

std::string Stubs(const std::vector<std::pair<const ClassRecord*, const ClassInfo*>>& classes) {
  std::string s =
      "# Generated from the library's member tables by tk_reference; do not edit.\n"
      "from typing import Any, Literal, overload\n"
      "import enum\n\n"
      "from ._core import *\n"
      "from ._core import Byte, Currency, EmptyType, Integer, MissingType, NullType, Object, Ref, Single, "
      "TypedValue, Variant, __version__\n\n"
      "# What any argument may also be: a typed value, a raw variant, a special\n"
      "# variant, or a tk.Ref (a by-reference argument).\n"
      "_Value = TypedValue | Variant | EmptyType | NullType | MissingType | Ref\n";
  for (const EnumInfo& e : Enumerations()) {
    s += "\nclass " + std::string(e.name) + "(enum.IntEnum):\n";
    for (const EnumConstant& c : e.constants) s += "    " + std::string(c.name) + " = " + std::to_string(c.value) + "\n";
  }
  for (const auto& [r, info] : classes) {
    s += "\nclass " + std::string(r->name) + "(Object):\n";
    for (const MemberInfo& m : info->Members()) {
      std::size_t n = 0;
      const auto& ps = CallParams(m, n);
      const std::string name = PyIdentifier(m.name);
      if (!m.isMethod) {
        // A property with arguments is indexed (obj.Value[2]) or called.
        s += "    " + name + ": " + (n ? "Any" : PyResultType(m.get ? m.get.result : ps.back().type)) + "\n";
        continue;
      }
      std::string args = "self";
      for (std::size_t i = 0; i < n; ++i) {
        const ParamInfo& p = ps[i];
        if (p.paramArray) {
          args += ", *" + PyIdentifier(p.name) + ": Any";
          continue;
        }
        args += ", " + PyIdentifier(p.name) + ": " + (p.output ? "Any" : PyParamType(p.type));
        if (p.optional) args += " = ...";
      }
      s += "    def " + name + "(" + args + ") -> " + PyResultType(m.get.result) + ": ...\n";
    }
  }
  s += "\n";
  for (const auto& [r, info] : classes)
    s += "@overload\ndef CreateObject(progid_or_clsid: Literal[\"" + std::string(r->progId) + "\"]) -> " +
         std::string(r->name) + ": ...\n";
  s += "@overload\ndef CreateObject(progid_or_clsid: str) -> Object: ...\n";
  return s;
}

bool Write(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream f(path, std::ios::binary);
  f << text;
  return bool(f);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s OUT_DIR\n", argv[0]);
    return 2;
  }
  const std::filesystem::path out = argv[1];
  std::vector<std::pair<const ClassRecord*, const ClassInfo*>> classes;
  std::vector<Ref<Object>> keep;  // one instance of each class, for its table
  for (const ClassRecord& r : LibraryClasses()) {
    Ref<Object> o = CreateObject(r.progId);
    classes.emplace_back(&r, o->Class());
    keep.push_back(std::move(o));
  }
  bool ok = true;
  std::string index =
      "# Class reference\n\nGenerated from the member tables by `tk_reference`; do not edit. The guides: "
      "[Python](../python.md), [VBA and VBScript](../com.md), [C++](../cpp.md).\n\n| class | ProgID | members |\n"
      "|---|---|---|\n";
  for (const auto& [r, info] : classes) {
    ok &= Write(out / "docs/reference" / (std::string(r->name) + ".md"), ClassPage(*r, *info));
    index += "| [" + std::string(r->name) + "](" + std::string(r->name) + ".md) | `" + std::string(r->progId) +
             "` | " + std::to_string(info->Members().size()) + " |\n";
  }
  index += "\n## Enumerations\n\n| enumeration | class |\n|---|---|\n";
  for (const EnumInfo& e : Enumerations())
    index += "| " + std::string(e.name) + " | [" + std::string(e.owner) + "](" + std::string(e.owner) + ".md) |\n";
  ok &= Write(out / "docs/reference/README.md", index);
  ok &= Write(out / "python/tessarkao/__init__.pyi", Stubs(classes));
  return ok ? 0 : 1;
}
