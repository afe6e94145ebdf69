// Steps the feature builders share: adding a shape of a kind to a container,
// placing a shape with the builder's own TKPosition, and reaching the path
// collection of a shape's profile.  All host calls are late-bound; nothing is
// trapped, so a host failure reaches the builder's caller unchanged.
#pragma once

#include <cstdint>

#include "automation/Variant.hpp"
#include "host/HostAccess.hpp"

namespace TessarkAO::BuilderSteps {

// Shape kinds the builders add (the host's own numbering).
namespace ShapeKind {
constexpr std::int16_t Part = 3;
constexpr std::int16_t Extrude = 5;
constexpr std::int16_t SheetMetalExtrude = 11;
constexpr std::int16_t SheetMetalForm = 13;
constexpr std::int16_t SheetMetalBend = 14;
}  // namespace ShapeKind

// Component type codes written by the builders: the host's.
namespace Component = Host::ComponentType;

// Stock forms a sheet-metal extrude (11) takes as the first argument of its
// Initialize; flat stock is the host's default when the argument is left out.
namespace StockForm {
constexpr std::int32_t Curved = 2;
constexpr std::int32_t Conic = 3;
}  // namespace StockForm

// The size-box values Finish sends: for an extrude, and for sheet-metal
// features, where variable 6 receives 1 (the host's parameter for
// sheet-metal stock).
inline constexpr std::int16_t kExtrudeSizebox[9] = {1, 1, 1, 1, 0, 0, 0, 0, 0};
inline constexpr std::int16_t kSheetMetalSizebox[9] = {1, 1, 1, 1, 0, 0, 0, 1, 0};

// A new shape of `kind` in the shape collection that receives the children of
// `container` (its group or history component): Shapes(kind).Add.
Variant AddShape(const Variant& container, std::int16_t kind);

// The component lookup of the builders: Components(type).Item(1), or
// Components(type).Add when the shape has none yet.
Variant LookupComponent(const Variant& shape, std::int32_t type);

// Places `shape` with the builder's position: the position's Shape becomes
// `shape`, SetShapePosition writes the placement, the anchor is set to the
// origin and written with SetAnchorPosition.  With `zeroAfterPlacing` the
// position is zeroed (ZeroAll) between the two, as a new part does so that
// the feature inside it starts at the part's origin.
void Place(const Variant& position, const Variant& shape, bool zeroAfterPlacing);

// Regenerates a finished feature: Update, ResetSizeBox, then the size-box
// variables 15, 8, 9, 10, 14, 4, 5, 6, 7 in that order with the values given
// (the host's parameters, sent exactly as listed).
void FinishWithSizebox(const Variant& shape, const std::int16_t (&values)[9]);

// The container a feature is added to: for a parent of type 1 (an assembly)
// a new part (3) made in it and placed by the builder's position, which is
// then zeroed (and stays zeroed); for any other parent the parent itself.
Variant FeatureContainer(const Variant& parent, const Variant& position);

// The container of a sheet-metal feature: FeatureContainer, whose sheet-metal
// part component (62) is then looked up, so that a plain part becomes a
// sheet-metal part.
Variant SheetMetalContainer(const Variant& parent, const Variant& position);

// Raises 5 (invalid procedure call or argument) unless `value` is at least
// `lowest` (strictly above it when `strict`): the builders refuse sizes the
// host cannot build before they reach it.
void RequireAtLeast(double value, double lowest, bool strict);

// The path collection (Components(3)) of the profile of `shape`'s profile component.
Variant ProfilePaths(const Variant& shape);

}  // namespace TessarkAO::BuilderSteps
