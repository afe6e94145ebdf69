// Signature texts generated from the member tables: the docstrings of bound
// members and what tk.describe lists.
//
//   SetPosition(dblX: Double, dblY: Double, dblZ: Double)
//   GetPosition(ByRef X: Double, ByRef Y: Double, ByRef Z: Double)
//   Scaled([factor: Double = 2]) -> Double
//   X: Double {get, let}
//   Value(arg1: Long) -> Double {get, let}
//   Sum(ParamArray values())
#pragma once

#include <string>

#include "automation/Members.hpp"

namespace TessarkAO::Python {

// A default as the scripting runtimes write it ("0", "True", "\"\""); "" when
// the member sees the omission itself.
std::string DefaultText(const Variant& v);

std::string SignatureText(const MemberInfo& member);
// One line per member, in slot order, the default member marked.
std::string ClassDescription(const ClassInfo& info);

}  // namespace TessarkAO::Python
