// The library's side of the host scene object model.
//
// Host objects (application, page, shape, component, variable, path,
// collection) are never linked against: they are reached only through
// late-bound member calls by name.  These helpers name the few call patterns
// every scene class repeats, so that each class reads like the steps it
// performs:
//
//     Variant position = Host::FindComponent(shape, ComponentType::Position, true);
//     double x = Host::VariableValue(position, 1);
//
// Nothing here traps an error: whatever the host raises reaches the caller
// unchanged, and an empty object reference (Nothing) means "not found".
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "automation/Variant.hpp"

namespace TessarkAO::Host {

// Component type codes the library relies on.
namespace ComponentType {
constexpr std::int32_t Sizebox = 1;
constexpr std::int32_t Group = 2;
constexpr std::int32_t Path = 3;
constexpr std::int32_t Position = 4;
constexpr std::int32_t Anchor = 5;
constexpr std::int32_t SurfaceFinish = 7;
constexpr std::int32_t FaceGeometry = 10;  // carries the Faces collection
constexpr std::int32_t Extrude = 14;
constexpr std::int32_t Profile = 15;
constexpr std::int32_t Studio = 18;  // marks the scene's top object
constexpr std::int32_t History = 23;
constexpr std::int32_t Variable = 34;
constexpr std::int32_t SheetMetalPart = 62;
constexpr std::int32_t SheetMetalExtrude = 63;
constexpr std::int32_t SheetMetalBend = 66;
constexpr std::int32_t SheetMetalForm = 67;
}  // namespace ComponentType

// Shape type codes of the two container kinds.
namespace ShapeType {
constexpr std::int32_t Assembly = 1;  // children in the group component (2)
constexpr std::int32_t Part = 3;      // children in the history component (23)
}  // namespace ShapeType

// shape.Components(type): the collection of the shape's components of a type.
Variant Components(const Variant& shape, std::int32_t type);

// The component of type `type` of `shape`: Components(type).Item(1) when the
// collection is not empty, else the new Components(type).Add() when `create`
// is set, else Nothing.  The item index goes to the host as an Integer, the
// type as a Long.
Variant FindComponent(const Variant& shape, std::int32_t type, bool create);

// component.Variable(number).Value, as a Double (13 when the host's value is
// not numeric).
double VariableValue(const Variant& component, std::int32_t number);
// component.Variable(number).Value, as the host holds it.
Variant VariableRaw(const Variant& component, std::int32_t number);
// The variable of a component whose Name is `name` (compared without regard
// to case, as the host compares variable names in its formulas), found by
// walking component.Variables from Item(1) to Item(Count); the first match
// wins.  Nothing when the component has no such variable.  The conic
// sheet-metal builder reaches its parameters this way, since the host gives
// them names but no fixed numbers.  Host errors are not trapped.
Variant FindVariable(const Variant& component, std::string_view name);
// component.Variable(number).Value = value.
void LetVariableValue(const Variant& component, std::int32_t number, Variant value);
// component.Variable(number).Expression = text: the host re-evaluates the variable.
void LetVariableExpression(const Variant& component, std::int32_t number, std::string text);

// object.name(values...) with every argument passed by reference: what the
// host writes back lands in `values`.
Variant CallByRef(const Variant& object, std::string_view name, std::span<Variant> values);

// object.Name as text.
std::string NameOf(const Variant& object);
// object.Type as a Long.
std::int32_t TypeOf(const Variant& object);
// collection.Count as a Long.
std::int32_t CountOf(const Variant& collection);

}  // namespace TessarkAO::Host
