// Profiles and involutes against the reference host, with its call journal.
#include <gtest/gtest.h>

#include <cmath>

#include "ProfilesTestSupport.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

TEST(HostPaths, EveryCurveKindSurvivesWritingAndReadingBack) {
  Scene scene;
  Ref<TKProfile> written = ProfileWithEveryKind();
  written->SetProfileData(ToObject(scene.paths));
  auto read = NewProfile();
  read->SetPage(ToObject(scene.page));
  Variant(Ref<Object>(read)).Call("GetProfileFromPaths", scene.paths);

  // The host places the fillet's centre itself: near (8, 2) for this corner.
  Ref<TKCurve> fillet = read->GetOutline(1)->GetCurve(2);
  EXPECT_NEAR(fillet->GetCenterX(), 8, 1e-12);
  EXPECT_NEAR(fillet->GetCenterY(), 2, 1e-12);
  written->GetOutline(1)->GetCurve(2)->LetCenterX(fillet->GetCenterX());
  written->GetOutline(1)->GetCurve(2)->LetCenterY(fillet->GetCenterY());
  EXPECT_EQ(Dump(*read), Dump(*written));
  EXPECT_EQ(read->GetOutline(2)->GetPathComponent().get(), ToObject(scene.paths.Call("Item", 2)).get());
}

TEST(HostPaths, FilletsFollowClosedAndACircleIsDrawnWithItsPointsLength) {
  Scene scene;
  auto profile = NewProfile();
  Ref<TKOutline> o = profile->AddOutline();
  o->AddLineTo(10, 0);
  o->AddCurve(TKCurveType_Fillet)->LetRadius(2);
  o->AddLineTo(10, 10);
  Ref<TKCurve> circle = o->AddCurve(TKCurveType_Ellipse);
  circle->LetCenterX(5), circle->LetCenterY(5), circle->LetMinorHeight(-1), circle->LetXPtOnCurve(3);
  circle->LetYPtOnCurve(4);
  o->LetClosed(true);
  const auto journal = Journaled([&] { profile->SetProfileData(ToObject(scene.paths)); });
  EXPECT_EQ(Calls(journal, ".Item(1)"),
            (std::vector<std::string>{"SetStartPoint(0, 0)", "AddLineTo(10, 0)", "AddLineTo(10, 10)",
                                      "AddEllipse(5, 5, 5)", "Construction=(0&)", "Closed=(True)",
                                      "AddFilletAt(2&, 2)"}))
      << RefHost::FormatJournal(journal);
  EXPECT_EQ(ToLong(scene.paths.Call("Item", 1).Get("Curves").Call("Item", 2).Get("Type")), 0);
}

TEST(HostPaths, DeparameterizeFixesOnlyTheChosenAxis) {
  Scene scene;
  ProfileWithEveryKind()->SetProfileData(ToObject(scene.paths));
  const Variant path = scene.paths.Call("Item", 1);
  auto expression = [&](std::int32_t curve, std::int32_t n) {
    return ToString(path.Get("Variable", curve, n).Get("Expression"));
  };
  // Curve 0 is the start point; curve 5 the Bezier, whose 3 and 4 are its
  // first tangent; a fillet's radius (2, 3) is not a coordinate.
  struct Row {
    std::int32_t curve, n;
    bool afterX, afterBoth;  // still driven
  };
  const Row rows[] = {{0, 1, false, false}, {0, 2, true, false}, {5, 3, false, false},
                      {5, 4, true, false},  {5, 9, true, true},  {2, 3, true, true}};
  for (const Row& r : rows) path.Get("Variable", r.curve, r.n).Let("Expression", "2 + 3");
  Variant profile(CreateObject("TessarkAO.TKProfile"));
  profile.Call("DeparameterizeProfile", scene.paths, TKDeparameterizeXAxis);
  for (const Row& r : rows) EXPECT_EQ(expression(r.curve, r.n), r.afterX ? "2 + 3" : "") << r.curve << r.n;
  EXPECT_EQ(ToDouble(path.Get("Variable", 5, 3).Get("Value")), 5.0);
  profile.Call("DeparameterizeProfile", scene.paths);
  for (const Row& r : rows) EXPECT_EQ(expression(r.curve, r.n), r.afterBoth ? "2 + 3" : "") << r.curve << r.n;
}

TEST(HostPaths, AnExpressionDrivenMinorValueIsReadInSystemUnits) {
  Scene scene;
  scene.page.Let("UnitsScale", 2, 0.001);  // millimetres
  auto profile = NewProfile();
  Ref<TKOutline> o = profile->AddOutline();
  for (int i = 0; i < 2; ++i) o->AddEllipse(0, 0, 40, 1, 1)->LetCenterX(1);
  profile->SetProfileData(ToObject(scene.paths));
  scene.paths.Call("Item", 1).Get("Variable", 2, 9).Let("Expression", "20 * 2");
  profile->SetPage(ToObject(scene.page));
  profile->GetProfileFromPaths(ToObject(scene.paths));
  EXPECT_EQ(profile->GetOutline(1)->GetCurve(1)->GetMinorHeight(), 40);  // a plain value as it stands
  EXPECT_EQ(profile->GetOutline(1)->GetCurve(2)->GetMinorHeight(), 40 * 0.001);

  // Without a page the conversion fails; the error reaches the caller and
  // what was read before it stays.
  profile->SetPage(Ref<Object>());
  EXPECT_NE(ErrorOf([&] { profile->GetProfileFromPaths(ToObject(scene.paths)); }), 0);
  ASSERT_EQ(profile->NumberOfOutlines(), 1);
  EXPECT_EQ(profile->GetOutline(1)->NumberOfCurves(), 2);
  EXPECT_EQ(profile->GetOutline(1)->GetCurve(2)->GetCenterX(), 1);
}

TEST(HostPaths, DrawInvoluteReversesTheFitPointsButKeepsTheEndPoint) {
  Scene scene;
  auto involute = RefCast<TKInvoluteCurve>(CreateObject("TessarkAO.TKInvoluteCurve"));
  involute->LetPoints(5);
  involute->LetCircleRadius(4);
  involute->CalculatePointsThroughAngle(1.2);
  const Variant path = scene.paths.Call("Add");
  path.Call("SetStartPoint", 4.0, 0.0);
  const auto journal = Journaled([&] { Variant(Ref<Object>(involute)).Call("DrawInvolute", path, false); });
  const std::vector<std::string> calls = Calls(journal, "");
  ASSERT_EQ(calls.size(), 2u) << RefHost::FormatJournal(journal);
  EXPECT_EQ(calls[1].rfind("SetDefinitionByFitPoints(3%, False, False, ", 0), 0u) << calls[1];
  EXPECT_NE(calls[1].find(", Nothing, Nothing)"), std::string::npos) << calls[1];

  auto profile = NewProfile();
  profile->GetProfileFromPaths(ToObject(scene.paths));
  Ref<TKCurve> spline = profile->GetOutline(1)->GetCurve(1);
  EXPECT_EQ(std::make_pair(spline->GetX(), spline->GetY()), Sample(*involute, 5));
  ASSERT_EQ(spline->GetBSplineFitPoints(), 5);
  for (std::int32_t i = 1; i <= 5; ++i)
    EXPECT_EQ(GetPoint(spline, "GetFitPoint", i), Sample(*involute, 6 - i)) << "fit point " << i;

  // Points changed since sampling: the missing row raises 9 before any host call.
  involute->LetPoints(6);
  EXPECT_TRUE(Journaled([&] {
                EXPECT_EQ(ErrorOf([&] { involute->DrawInvolute(ToObject(path), true); }),
                          Err::SubscriptOutOfRange);
              }).empty());
}
