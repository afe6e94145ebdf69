// TK2DProjectedThreads: the interface a 2D drawing tool binds to when it asks
// a shape for the thread of a hole or shaft (cosmetic thread, callout, hole
// information).
//
// This library provides no thread data: every query answers that nothing is
// available (false, 0 or an empty text) and leaves its output arguments as
// the caller passed them.  The fixed answers are intended; callers rely on
// them to fall back to drawing without thread information.  The class keeps
// no state and stays out of the library's instance count.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/Members.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class TK2DProjectedThreads final : public Dispatch<TK2DProjectedThreads> {
 public:
  static constexpr std::string_view kClassName = "TK2DProjectedThreads";
  static void Describe(ClassBuilder<TK2DProjectedThreads>& b);

  std::string Callout() const { return {}; }
  bool GetHoleInformation(bool wantAnglesInDegrees, bool& holeDepthIsFinite, double& holeDepth,
                          double& counterboreDepth, double& counterboreDiameter, double& countersinkDiameter,
                          double& countersinkAngle, double& bottomAngle) const;
  std::int32_t HoleInformationFlags() const { return 0; }
  std::int32_t ProjectionFlags() const { return 0; }
  bool Initialize(Ref<Object> shape) const;
  bool GetDiameters(double& innerDiameter, double& outerDiameter) const;
  bool GetTaperFromMajorDiameter(double& angle) const;
  bool GetPositionInformation(double& length, double& offsetDistance) const;
  bool GetThreadDirection(double& vecX, double& vecY, double& vecZ) const;
  bool GetIsHole(bool& isHole) const;
  bool GetTaperProjection(double& taperProjection) const;
  bool GetProjectedThreadInformation(Ref<Object> shape, double& innerDiameter, double& outerDiameter,
                                     double& taperAngle, double& threadLength, double& offsetDistance,
                                     double& vecX, double& vecY, double& vecZ, bool& isHole,
                                     double& taperProjection) const;
};

}  // namespace TessarkAO
