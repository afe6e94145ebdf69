// TKProfile: the in-memory copy of a host sketch profile.
//
// A profile is a list of outlines (TKOutline), each a start point and a list
// of curves (TKCurve).  It is read from a collection of host paths
// (GetProfileFromPaths), edited in memory (ShiftProfileData,
// MirrorProfileAboutAxis, CopyProfile) and written into host paths
// (SetProfileData).  Numbers are the host's page units as the host reports
// them; the one conversion is the unit-aware read of an ellipse's minor value.
//
// Host members used on a path collection: Count, Item(i), Add().  On a path:
// Closed, Construction, Variable(curve, n) (curve 0 is the start point),
// Curves, SetStartPoint, AddLineTo, AddArcTo, AddSplineTo, AddEllipse,
// AddBSplineTo, AddFilletAt.  On a path curve: Type and, for B-splines,
// Closed, Periodic, Degree, ControlPoints, GetControlPoint, FitPoints,
// GetFitPoint, Knots, GetKnot, Weights, GetWeight, SetDefinition.  On a
// variable: Value (also the default member) and Expression.  Host errors are
// not trapped: they reach the caller and what was filled before stays.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "frame/PublishedEnums.hpp"
#include "profiles/TKOutline.hpp"

namespace TessarkAO {

class TKProfile final : public Dispatch<TKProfile> {
 public:
  static constexpr std::string_view kClassName = "TKProfile";
  static void Describe(ClassBuilder<TKProfile>& b);

  TKProfile() = default;
  ~TKProfile() override;

  // The scene whose units convert the values that need converting.
  Ref<Object> GetPage() const { return page_; }
  void SetPage(Ref<Object> page) { page_ = std::move(page); }

  // True when no outline has Construction 0 (no outlines, or construction
  // outlines only).
  bool IsProfileEmpty() const;
  // False when an outline with Construction 0 is not Closed.  There is no
  // geometric test: closedness is the outlines' Closed flags as read.
  bool IsProfileCompletelyClosed() const;
  std::int32_t NumberOfOutlines() const { return static_cast<std::int32_t>(outlines_.size()); }
  Ref<TKOutline> AddOutline();
  // The outline at a 1-based index; an empty reference above the count, and
  // error 9 below 1 (the same one-sided test as TKOutline.GetCurve).
  Ref<TKOutline> GetOutline(std::int32_t index) const;

  // Fixes the coordinate variables of the given host paths at their current
  // values (each Value read and assigned back, which drops its expression),
  // all of them or only the X or only the Y coordinates.  The coordinates are
  // the point fields of the reading table: the start point (curve 0, X 1,
  // Y 2); a fillet's corner (1, 2) and centre (5, 6); the end point (1, 2) of
  // lines, arcs and B-splines; a Bezier's end and tangent points (1 to 6); an
  // ellipse's centre (1, 2) and point on the curve (3, 4).  Radii, trims,
  // angles and factors keep their expressions.  Any other option value fixes
  // nothing.
  void DeparameterizeProfile(Ref<Object> pathComponents, TKDeparameterizeOptions options);
  // Replaces the content with the paths of the collection; returns this profile.
  Ref<TKProfile> GetProfileFromPaths(Ref<Object> pathComponents);
  // Adds one host path per outline to the collection and draws the curves.
  void SetProfileData(Ref<Object> pathComponents);
  // Moves every point by distance along the direction angle (degrees).
  void ShiftProfileData(double angle, double distance);
  // Axis 1 negates the Y coordinates, axis 2 the X coordinates; every
  // curve's HFactor is negated whatever the axis.
  void MirrorProfileAboutAxis(std::int32_t axis);
  // Appends copies of the other profile's outlines.
  void CopyProfile(Ref<TKProfile> source);

  const std::vector<Ref<TKOutline>>& Outlines() const noexcept { return outlines_; }

 private:
  InstanceRegistration registration_;
  Ref<Object> page_;
  std::vector<Ref<TKOutline>> outlines_;
};

}  // namespace TessarkAO
