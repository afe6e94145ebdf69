#include "profiles/TK2DProjectedThreads.hpp"

#include "automation/Catalogue.hpp"

namespace TessarkAO {

void TK2DProjectedThreads::Describe(ClassBuilder<TK2DProjectedThreads>& b) {
  b.Get<&TK2DProjectedThreads::Callout>("Callout")
      .Method<&TK2DProjectedThreads::GetHoleInformation>(
          "GetHoleInformation",
          Names{"bWantAnglesInDegrees", "bHoleDepthIsFinite", "dHoleDepth", "dCounterboreDepth",
                "dCounterboreDiameter", "dCountersinkDiameter", "dCountersinkAngle", "dBottomAngle"}, Out<2, 3, 4, 5, 6, 7, 8>{})
      .Get<&TK2DProjectedThreads::HoleInformationFlags>("HoleInformationFlags")
      .Get<&TK2DProjectedThreads::ProjectionFlags>("ProjectionFlags")
      .Method<&TK2DProjectedThreads::Initialize>("Initialize", Names{"Shape"})
      .Method<&TK2DProjectedThreads::GetDiameters>("GetDiameters", Names{"InnerDiameter", "OuterDiameter"}, Out<1, 2>{})
      .Method<&TK2DProjectedThreads::GetTaperFromMajorDiameter>("GetTaperFromMajorDiameter", Names{"Angle"}, Out<1>{})
      .Method<&TK2DProjectedThreads::GetPositionInformation>("GetPositionInformation",
                                                             Names{"Length", "OffsetDistance"}, Out<1, 2>{})
      .Method<&TK2DProjectedThreads::GetThreadDirection>("GetThreadDirection", Names{"VecX", "VecY", "VecZ"}, Out<1, 2, 3>{})
      .Method<&TK2DProjectedThreads::GetIsHole>("GetIsHole", Names{"IsHole"}, Out<1>{})
      .Method<&TK2DProjectedThreads::GetTaperProjection>("GetTaperProjection", Names{"TaperProjection"}, Out<1>{})
      .Method<&TK2DProjectedThreads::GetProjectedThreadInformation>(
          "GetProjectedThreadInformation",
          Names{"Shape", "InnerDiameter", "OuterDiameter", "TaperAngle", "ThreadLength", "OffsetDistance",
                "VecX", "VecY", "VecZ", "IsHole", "TaperProjection"}, Out<2, 3, 4, 5, 6, 7, 8, 9, 10, 11>{});
}

// No member looks at its arguments: the outputs keep the caller's values.

bool TK2DProjectedThreads::GetHoleInformation(bool, bool&, double&, double&, double&, double&, double&,
                                              double&) const {
  return false;
}

bool TK2DProjectedThreads::Initialize(Ref<Object>) const { return false; }

bool TK2DProjectedThreads::GetDiameters(double&, double&) const { return false; }

bool TK2DProjectedThreads::GetTaperFromMajorDiameter(double&) const { return false; }

bool TK2DProjectedThreads::GetPositionInformation(double&, double&) const { return false; }

bool TK2DProjectedThreads::GetThreadDirection(double&, double&, double&) const { return false; }

bool TK2DProjectedThreads::GetIsHole(bool&) const { return false; }

bool TK2DProjectedThreads::GetTaperProjection(double&) const { return false; }

bool TK2DProjectedThreads::GetProjectedThreadInformation(Ref<Object>, double&, double&, double&, double&,
                                                         double&, double&, double&, double&, bool&,
                                                         double&) const {
  return false;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TK2DProjectedThreads)
