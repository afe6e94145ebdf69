// TKOutline: one loop of a profile, a start point followed by curves.
//
// Each curve runs from the previous end point (the first from StartPointX,
// StartPointY) to its own X, Y.  The outline owns its curves; the curves it
// hands out are shared references, so changing one changes the outline.
// PathComponent remembers the host path the outline was read from or
// written to; Construction is the host's construction setting of that path,
// carried unchanged.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "profiles/TKCurve.hpp"

namespace TessarkAO {

class TKOutline final : public Dispatch<TKOutline> {
 public:
  static constexpr std::string_view kClassName = "TKOutline";
  static void Describe(ClassBuilder<TKOutline>& b);

  TKOutline() = default;
  ~TKOutline() override;

  Ref<Object> GetPathComponent() const { return pathComponent_; }
  void SetPathComponent(Ref<Object> path) { pathComponent_ = std::move(path); }
  double GetStartPointX() const { return startPointX_; }
  void LetStartPointX(double v) { startPointX_ = v; }
  double GetStartPointY() const { return startPointY_; }
  void LetStartPointY(double v) { startPointY_ = v; }
  std::int32_t GetConstruction() const { return construction_; }
  void LetConstruction(std::int32_t v) { construction_ = v; }
  bool GetClosed() const { return closed_; }
  void LetClosed(bool v) { closed_ = v; }
  std::int32_t NumberOfCurves() const { return static_cast<std::int32_t>(curves_.size()); }

  // Appends a line (CurveType 1) ending at (x, y).
  Ref<TKCurve> AddLineTo(double x, double y);
  // Appends an ellipse (CurveType 4) whose X, Y carry the centre.  With a
  // point on the ellipse (either coordinate not 0) MinorHeight = radius and
  // both XPtOnCurve and YPtOnCurve take xPt: the Y of the point is
  // deliberately taken from xPt, yPt only decides the branch.  Without one
  // (a circle) MinorHeight = -1, XPtOnCurve = radius and YPtOnCurve = 0.
  Ref<TKCurve> AddEllipse(double centerX, double centerY, double radius, double xPt, double yPt);
  // Appends a new curve; a type of 0 leaves the new curve's default type 0.
  Ref<TKCurve> AddCurve(std::int32_t type);
  // The curve at a 1-based index; an empty reference above the count.  An
  // index below 1 raises 9: the test is one-sided on purpose and callers
  // depend on it.
  Ref<TKCurve> GetCurve(std::int32_t index) const;

  // C++ access for the profile code: the curves in drawing order.
  const std::vector<Ref<TKCurve>>& Curves() const noexcept { return curves_; }

 private:
  InstanceRegistration registration_;
  Ref<Object> pathComponent_;
  double startPointX_ = 0, startPointY_ = 0;
  std::int32_t construction_ = 0;
  bool closed_ = false;
  std::vector<Ref<TKCurve>> curves_;
};

}  // namespace TessarkAO
