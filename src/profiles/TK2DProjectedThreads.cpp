#include "profiles/TK2DProjectedThreads.hpp"

#include "automation/Catalogue.hpp"
#include "automation/Enumerations.hpp"

namespace TessarkAO {

void TK2DProjectedThreads::Describe(ClassBuilder<TK2DProjectedThreads>& b) {
  b.Get<&TK2DProjectedThreads::Callout>("Callout", Doc{"The thread callout text; always \"\"."})
      .Method<&TK2DProjectedThreads::GetHoleInformation>(
          "GetHoleInformation",
          Names{"bWantAnglesInDegrees", "bHoleDepthIsFinite", "dHoleDepth", "dCounterboreDepth",
                "dCounterboreDiameter", "dCountersinkDiameter", "dCountersinkAngle", "dBottomAngle"},
          Out<2, 3, 4, 5, 6, 7, 8>{},
          Doc{"Hole depth and counterbore, countersink and bottom values of the shape; always False with the "
              "outputs untouched."})
      .Get<&TK2DProjectedThreads::HoleInformationFlags>("HoleInformationFlags",
                                                        Doc{"The EHoleInformationFlags available; always 0."})
      .Get<&TK2DProjectedThreads::ProjectionFlags>("ProjectionFlags",
                                                   Doc{"The EProjectionFlags available; always 0."})
      .Method<&TK2DProjectedThreads::Initialize>(
          "Initialize", Names{"Shape"},
          Doc{"Reads the thread of Shape; always False (the shape is not examined)."})
      .Method<&TK2DProjectedThreads::GetDiameters>(
          "GetDiameters", Names{"InnerDiameter", "OuterDiameter"}, Out<1, 2>{},
          Doc{"The inner and outer thread diameters; always False with the outputs untouched."})
      .Method<&TK2DProjectedThreads::GetTaperFromMajorDiameter>(
          "GetTaperFromMajorDiameter", Names{"Angle"}, Out<1>{},
          Doc{"The taper angle; always False with the output untouched."})
      .Method<&TK2DProjectedThreads::GetPositionInformation>(
          "GetPositionInformation", Names{"Length", "OffsetDistance"}, Out<1, 2>{},
          Doc{"The thread length and offset; always False with the outputs untouched."})
      .Method<&TK2DProjectedThreads::GetThreadDirection>(
          "GetThreadDirection", Names{"VecX", "VecY", "VecZ"}, Out<1, 2, 3>{},
          Doc{"The thread direction; always False with the outputs untouched."})
      .Method<&TK2DProjectedThreads::GetIsHole>(
          "GetIsHole", Names{"IsHole"}, Out<1>{},
          Doc{"Whether the thread is in a hole; always False with the output untouched."})
      .Method<&TK2DProjectedThreads::GetTaperProjection>(
          "GetTaperProjection", Names{"TaperProjection"}, Out<1>{},
          Doc{"The taper projection; always False with the output untouched."})
      .Method<&TK2DProjectedThreads::GetProjectedThreadInformation>(
          "GetProjectedThreadInformation",
          Names{"Shape", "InnerDiameter", "OuterDiameter", "TaperAngle", "ThreadLength", "OffsetDistance",
                "VecX", "VecY", "VecZ", "IsHole", "TaperProjection"},
          Out<2, 3, 4, 5, 6, 7, 8, 9, 10, 11>{},
          Doc{"All thread values of Shape at once; always False with the outputs untouched."});
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

// The enumerations of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::EProjectionFlags, "TK2DProjectedThreads", DisplayCosmeticThread,
                        DisplayCallout, DisplayHoleInformation)
TK_REGISTER_ENUMERATION(TessarkAO::EHoleInformationFlags, "TK2DProjectedThreads", DisplayInfoExtent,
                        DisplayInfoDepth, DisplayInfoCounterboreDepth, DisplayInfoCounterboreDiameter,
                        DisplayInfoCountersinkDiameter, DisplayInfoCountersinkAngle, DisplayInfoBottomAngle)
