// TKProfile in memory: the outline list and its flags, and the edits with
// their deliberate oddities.
#include <gtest/gtest.h>

#include <cmath>

#include "ProfilesTestSupport.hpp"
#include "frame/Conventions.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

TEST(Profile, OutlineListEmptinessAndClosedness) {
  auto profile = NewProfile();
  EXPECT_TRUE(profile->IsProfileEmpty() && profile->IsProfileCompletelyClosed());
  EXPECT_TRUE(profile->GetOutline(1) == nullptr);
  EXPECT_EQ(ErrorOf([&] { profile->GetOutline(0); }), Err::SubscriptOutOfRange);
  profile->AddOutline()->LetConstruction(1);  // open, but construction outlines do not count
  EXPECT_TRUE(profile->IsProfileEmpty() && profile->IsProfileCompletelyClosed());
  Ref<TKOutline> closed = profile->AddOutline();
  closed->LetClosed(true);
  EXPECT_FALSE(profile->IsProfileEmpty());
  EXPECT_TRUE(profile->IsProfileCompletelyClosed());
  profile->AddOutline();  // ordinary and open
  EXPECT_FALSE(profile->IsProfileCompletelyClosed());
  EXPECT_TRUE(profile->GetOutline(2) == closed);
}

TEST(Profile, ShiftMovesPointsAndCentresOnly) {
  Ref<TKProfile> profile = ProfileWithEveryKind();
  Ref<TKOutline> o = profile->GetOutline(1);
  Ref<TKCurve> spline = o->GetCurve(8);
  spline->LetBSplineFitPoints(1);
  spline->SetFitPoint(1, 1, 1);
  profile->ShiftProfileData(90, 10);
  const double a = kPi / 180 * 90;
  const double dx = std::cos(a) * 10, dy = std::sin(a) * 10;
  EXPECT_NE(dx, 0.0);  // the 15-digit pi leaves a trace
  EXPECT_EQ(Numbers(o, {"StartPointX", "StartPointY"}), (std::vector<double>{0.5 + dx, dy}));
  // Tangent points and points on a curve stay.
  EXPECT_EQ(Numbers(o->GetCurve(5), {"X", "Y", "CenterY", "Tan1X"}),
            (std::vector<double>{dx, 5 + dy, dy, -1}));
  EXPECT_EQ(Numbers(o->GetCurve(6), {"CenterX", "XPtOnCurve"}), (std::vector<double>{5 + dx, 2}));
  EXPECT_EQ(GetPoint(spline, "GetControlPoint", 2), std::make_pair(-1 + dx, 3 + dy));
  EXPECT_EQ(GetPoint(spline, "GetFitPoint", 1), std::make_pair(1 + dx, 1 + dy));
  EXPECT_EQ(spline->GetKnot(4), 0.5);
  profile->ShiftProfileData(0, 1.7e308);
  EXPECT_EQ(ErrorOf([&] { profile->ShiftProfileData(0, 1.7e308); }), Err::Overflow);
}

TEST(Profile, MirrorNegatesOneAxisAndAlwaysTheHFactor) {
  for (std::int32_t axis : {1, 2, 0, 7}) {
    Ref<TKProfile> profile = ProfileWithEveryKind();
    profile->GetOutline(1)->LetStartPointY(2);
    profile->MirrorProfileAboutAxis(axis);
    const double sx = axis == 2 ? -1 : 1, sy = axis == 1 ? -1 : 1;
    Ref<TKOutline> o = profile->GetOutline(1);
    EXPECT_EQ(std::make_pair(o->GetStartPointX(), o->GetStartPointY()), std::make_pair(0.5 * sx, 2 * sy));
    SCOPED_TRACE(axis);
    EXPECT_EQ(o->GetCurve(4)->GetHFactor(), 0.25);
    EXPECT_EQ(Numbers(o->GetCurve(5), {"Tan1X", "Tan2Y"}), (std::vector<double>{-1 * sx, 6 * sy}));
    EXPECT_EQ(Numbers(o->GetCurve(7), {"CenterX", "YPtOnCurve", "MinorHeight"}),
              (std::vector<double>{4 * sx, 6 * sy, 0.75}));
    EXPECT_EQ(GetPoint(o->GetCurve(8), "GetControlPoint", 2), std::make_pair(-1 * sx, 3 * sy));
  }
}

TEST(Profile, CopyAppendsOutlinesAndPutsEccentricityIntoEndTrim) {
  Ref<TKProfile> source = ProfileWithEveryKind();
  Ref<TKOutline> from = source->GetOutline(1);
  Ref<TKCurve> arc = from->GetCurve(4);
  arc->LetEccentricity(0.3), arc->LetEndTrim(0.9), arc->LetStartTrim(0.1), arc->LetAngleMajor(12);
  from->GetCurve(8)->LetBSplineFitPoints(1);
  from->GetCurve(8)->SetFitPoint(1, 8, 9);
  from->SetPathComponent(CreateObject("TessarkAO.TKCurve"));

  auto target = NewProfile();
  target->AddOutline();
  target->CopyProfile(source);
  ASSERT_EQ(target->NumberOfOutlines(), 3);
  EXPECT_TRUE(target->GetOutline(2)->GetPathComponent() == nullptr);
  EXPECT_NE(target->GetOutline(2)->GetCurve(4).get(), arc.get());
  // Everything is copied but EndTrim, which takes the Eccentricity.
  EXPECT_EQ(target->GetOutline(2)->GetCurve(4)->GetEndTrim(), 0.3);
  arc->LetEndTrim(0.3);
  std::vector<std::string> copied = Dump(*target);
  copied.erase(copied.begin());  // the outline that was there before
  EXPECT_EQ(copied, Dump(*source));

  source->CopyProfile(source);  // the count is taken once: the profile doubles
  EXPECT_EQ(source->NumberOfOutlines(), 4);
  EXPECT_EQ(ErrorOf([&] { target->CopyProfile(Ref<TKProfile>()); }), Err::ObjectNotSet);
  EXPECT_EQ(
      ErrorOf([&] { Variant(Ref<Object>(target)).Call("CopyProfile", CreateObject("TessarkAO.TKOutline")); }),
      Err::TypeMismatch);
}
