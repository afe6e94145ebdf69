// Functions: the structural queries on host shapes that the host object model
// does not answer directly.  SceneUtils publishes them; TKShape, TKPosition and
// the feature builders call them directly.
//
// Every procedure drives the host late-bound (host/HostAccess.hpp) and traps
// nothing: host errors, the 512-entry path limit (9) and the 16-bit identifier
// read of ShapesAreIdentical (6) reach the caller.
#pragma once

#include <cstdint>
#include <string>

#include "automation/Variant.hpp"

namespace TessarkAO::Functions {

// The most entries a shape path holds; storing one more raises 9.
inline constexpr std::int32_t kMaxPathEntries = 512;

// The temporary name that marks a shape while its parent is searched:
// "TKUTIL@" followed by Int(seconds since midnight * 1000) in decimal.
std::string IdentityTag(double secondsSinceMidnight);
// Local time of day in seconds, with the fraction.
double SecondsSinceMidnight();

// The component that holds a container shape's children: history (23) for a
// part (type 3), group (2) for an assembly (type 1), added when missing;
// Nothing for any other shape type.
Variant FindChildContainer(const Variant& shape);

// The shape one level up.  The shape carries the identity tag as its name
// during the search, so that it can be told apart from same-named siblings,
// and gets its name back when the search returns normally.  Directly under
// the scene's top object the answer is the page's root shape; Nothing when
// the shape is not found among its parent's grandchildren.
Variant FindShapeParent(const Variant& shape);

// "Page//Ancestor//...//Parent//": the page name first, then the ancestors
// from the top down to the shape's parent, each followed by "//".  The
// shape's own name is never part of it.
std::string ShapePathOf(const Variant& shape);

// Removes the shape from its parent's child container.
void RemoveShapeFromParent(const Variant& shape);

// Same path and the same SystemID read as a 16-bit Integer.
bool ShapesAreIdentical(const Variant& shape1, const Variant& shape2);

// Whether the shape's face-bearing component (10) has the face; False without
// touching the face when the shape has no such component.
bool ShapeOwnsFace(const Variant& shape, const Variant& face);

}  // namespace TessarkAO::Functions
