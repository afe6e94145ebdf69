// The one path of a late-bound call from a front end (the Windows server's
// IDispatch adapter, the Python module, the command-line tool).
//
// A front end turns what its caller wrote into a dispatch id or a name, a
// call kind and arguments in natural order, hands them to Call, and writes
// the outputs back where WritesBack says.  Which accessor a call reaches,
// where a named argument goes, which arguments are outputs and how a failure
// becomes an AutomationError are decided here and in the member tables
// (Members.hpp), never in a front end.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "automation/AutomationError.hpp"
#include "automation/Members.hpp"
#include "automation/Object.hpp"
#include "automation/Variant.hpp"

namespace TessarkAO {

// The kind of a call written as a read or a call (`obj.Name`, `obj.Name(a)`,
// `obj(a)`): a method of the table is called as a method, a property is
// read.  Objects without a member table (m == nullptr) get `written`.
// Assignments keep their kind.
CallKind ResolveKind(const MemberInfo* m, CallKind written) noexcept;

// The accessor that documents a property's assignment: its let, else its set.
const Accessor& PutAccessor(const MemberInfo& m) noexcept;

// A property that takes no arguments (a write-only one included, whose read
// raises 438 as it should): a front end reads it as soon as it is named
// rather than handing out something to call or index.
bool IsPlainProperty(const MemberInfo& m) noexcept;

// The kind of an assignment `obj.Name = value`: a set for an object, a let
// for anything else.
CallKind AssignmentKind(const Variant& value) noexcept;

// The 0-based position of parameter `name` (case-insensitive) of the
// accessor a call of `kind` reaches (then of the member's other accessors);
// npos when the member has no parameter of that name.
inline constexpr std::size_t kNoParameter = static_cast<std::size_t>(-1);
std::size_t ParameterIndex(const MemberInfo& m, CallKind kind, std::string_view name) noexcept;

// The parameter position of a named argument; raises 448 (Named argument not
// found) for a name the member lacks.
std::size_t NamedPosition(const MemberInfo* m, CallKind kind, std::string_view name);

// Whether argument `i` of a call of `kind` with `args` is written back to
// the caller: the by-reference outputs of the table; for an object without
// a table, every argument (a foreign member may write any of them).
bool WritesBack(const MemberInfo* m, CallKind kind, std::span<const Variant> args, std::size_t i) noexcept;

// Calls member `id` (or `name`) of `o`.  Every failure leaves as an
// AutomationError with number, description and source (see CurrentError);
// `o` stays alive through the call even when the call drops the caller's
// last reference.
Variant Call(Object& o, DispId id, CallKind kind, std::span<Variant> args);
Variant Call(Object& o, std::string_view name, CallKind kind, std::span<Variant> args);

// The source of errors raised by `o`: its class's ProgID or name.
std::string SourceOf(const Object& o);

}  // namespace TessarkAO
