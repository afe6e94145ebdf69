// TKProfile against a recording stand-in for the host's paths: what each
// curve kind reads and writes, the order of the host calls, the edits and
// their deliberate oddities.
#include <gtest/gtest.h>

#include <cmath>

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "FakeHost.hpp"
#include "profiles/TKProfile.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

Ref<TKProfile> NewProfile() { return RefCast<TKProfile>(CreateObject("TessarkAO.TKProfile")); }

// A path collection whose Add makes recording paths "path1", "path2", ...;
// AddBSplineTo on them returns recording curves "spline1", ...
Ref<FakeObject> MakeWritablePaths(CallLog log) {
  auto paths = MakeFake("paths", log);
  auto count = std::make_shared<int>(0);
  auto splines = std::make_shared<int>(0);
  paths->On("Add", [log, count, splines](CallKind, std::span<Variant>) {
    auto p = MakeFake("path" + std::to_string(++*count), log);
    for (const char* m : {"SetStartPoint", "AddLineTo", "AddArcTo", "AddSplineTo", "AddEllipse", "AddFilletAt",
                          "Construction", "Closed"})
      p->Returns(m, Variant());
    p->On("AddBSplineTo", [log, splines](CallKind, std::span<Variant>) {
      auto s = MakeFake("spline" + std::to_string(++*splines), log);
      s->Returns("SetDefinition", Variant());
      return Variant(s);
    });
    return Variant(p);
  });
  return paths;
}

// One outline holding every curve kind, each with distinct values.
Ref<TKProfile> ProfileWithEveryKind() {
  auto profile = NewProfile();
  Ref<TKOutline> o = profile->AddOutline();
  o->LetStartPointX(1);
  o->LetStartPointY(2);
  o->AddLineTo(3, 4);
  o->AddCurve(TKCurveType_Fillet)->LetRadius(2);
  Ref<TKCurve> arc = o->AddCurve(TKCurveType_Arc);
  arc->LetX(5), arc->LetY(6), arc->LetHFactor(0.5);
  Ref<TKCurve> bezier = o->AddCurve(TKCurveType_Bezier);
  bezier->LetX(7), bezier->LetY(8), bezier->LetTan1X(9), bezier->LetTan1Y(10), bezier->LetTan2X(11);
  bezier->LetTan2Y(12);
  Ref<TKCurve> circle = o->AddCurve(TKCurveType_Ellipse);
  circle->LetCenterX(1), circle->LetCenterY(1), circle->LetMinorHeight(-1), circle->LetXPtOnCurve(3);
  circle->LetYPtOnCurve(4);
  Ref<TKCurve> ellipse = o->AddCurve(TKCurveType_Ellipse);
  ellipse->LetCenterX(2), ellipse->LetCenterY(3), ellipse->LetMinorHeight(1.5), ellipse->LetXPtOnCurve(4);
  ellipse->LetYPtOnCurve(5);
  Ref<TKCurve> spline = o->AddCurve(TKCurveType_BSpline);
  spline->LetX(13), spline->LetY(14), spline->LetBSplineDegree(3), spline->LetBSplinePeriodic(true);
  spline->LetBSplineControlPoints(2);
  spline->SetControlPoint(1, 0.5, 1.5);
  spline->SetControlPoint(2, 2.5, 3.5);
  spline->LetBSplineWeights(2);
  spline->SetWeight(1, 1), spline->SetWeight(2, 0.25);
  spline->LetBSplineKnots(3);
  spline->SetKnot(3, 1);
  o->AddCurve(42);                                   // an unknown kind draws nothing
  o->AddCurve(TKCurveType_Fillet)->LetRadius(0.75);  // a second fillet, at position 9
  o->LetClosed(true);
  o->LetConstruction(0);
  return profile;
}

}  // namespace

TEST(Profile, OutlineListEmptinessAndClosedness) {
  auto profile = NewProfile();
  EXPECT_EQ(profile->NumberOfOutlines(), 0);
  EXPECT_TRUE(profile->IsProfileEmpty());
  EXPECT_TRUE(profile->IsProfileCompletelyClosed());
  EXPECT_TRUE(profile->GetOutline(1) == nullptr);
  EXPECT_EQ(ErrorNumber([&] { profile->GetOutline(0); }), Err::SubscriptOutOfRange);

  Ref<TKOutline> construction = profile->AddOutline();
  construction->LetConstruction(1);  // open, but construction outlines do not count
  EXPECT_TRUE(profile->IsProfileEmpty());
  EXPECT_TRUE(profile->IsProfileCompletelyClosed());
  Ref<TKOutline> closed = profile->AddOutline();
  closed->LetClosed(true);
  EXPECT_FALSE(profile->IsProfileEmpty());
  EXPECT_TRUE(profile->IsProfileCompletelyClosed());
  profile->AddOutline();  // ordinary and open
  EXPECT_FALSE(profile->IsProfileCompletelyClosed());
  EXPECT_TRUE(profile->GetOutline(2) == closed);
  EXPECT_TRUE(profile->GetOutline(4) == nullptr);
  const std::vector<std::string> slots = {"Page", "IsProfileEmpty", "IsProfileCompletelyClosed",
                                          "NumberOfOutlines", "AddOutline", "GetOutline",
                                          "DeparameterizeProfile", "GetProfileFromPaths", "SetProfileData",
                                          "ShiftProfileData", "MirrorProfileAboutAxis", "CopyProfile"};
  for (std::size_t i = 0; i < slots.size(); ++i)
    EXPECT_EQ(TKProfile::StaticClass().Members()[i].name, slots[i]);
}

TEST(Profile, SetProfileDrawsEachKindAndAddsFilletsAfterClosing) {
  auto log = NewLog();
  auto paths = MakeWritablePaths(log);
  Ref<TKProfile> profile = ProfileWithEveryKind();
  profile->AddOutline()->LetConstruction(2);  // a second, empty construction outline
  Variant(Ref<Object>(profile)).Call("SetProfileData", paths);
  const std::vector<std::string> expected = {
      "paths.Add()",
      "path1.SetStartPoint(1, 2)",
      "path1.AddLineTo(3, 4)",
      "path1.AddArcTo(5, 6, 0.5)",
      "path1.AddSplineTo(7, 8, 9, 10, 11, 12)",
      "path1.AddEllipse(1, 1, 5)",  // a circle: radius (3^2 + 4^2)^(1/2)
      "path1.AddEllipse(2, 3, 1.5, 4, 5)",
      "path1.AddBSplineTo(13, 14)",
      "spline1.SetDefinition(3, True, False, [0.5 2.5 1.5 3.5], [1 0.25], [0 0 1])",
      "path1.Construction=(0)",
      "path1.Closed=(True)",
      "path1.AddFilletAt(2, 2)",
      "path1.AddFilletAt(9, 0.75)",
      "paths.Add()",
      "path2.SetStartPoint(0, 0)",
      "path2.Construction=(2)",
      "path2.Closed=(False)",
  };
  EXPECT_EQ(*log, expected);
}

TEST(Profile, SetProfileHandsTheBSplineArraysByReference) {
  auto log = NewLog();
  auto profile = NewProfile();
  Ref<TKCurve> k = profile->AddOutline()->AddCurve(TKCurveType_BSpline);
  k->LetBSplineWeights(4);
  k->LetBSplineWeights(-1);  // a count below 1 gives an empty array
  std::vector<Variant> seen;
  std::vector<bool> byRef;
  auto spline = MakeFake("spline", log);
  spline->On("SetDefinition", [&](CallKind, std::span<Variant> args) {
    for (const Variant& a : args) seen.push_back(a.Deref()), byRef.push_back(a.IsByRef());
    return Variant();
  });
  auto path = MakeFake("path", log);
  for (const char* m : {"SetStartPoint", "Construction", "Closed"}) path->Returns(m, Variant());
  path->Returns("AddBSplineTo", Variant(spline));
  auto paths = MakeFake("paths", log);
  paths->Returns("Add", Variant(path));
  profile->SetProfileData(paths);
  ASSERT_EQ(seen.size(), 6u);
  for (int i = 3; i < 6; ++i) {
    EXPECT_TRUE(byRef[static_cast<std::size_t>(i)]);
    EXPECT_EQ(seen[static_cast<std::size_t>(i)].Type(), VarType::Double);
  }
  const SafeArray& cp = seen[3].AsArray();
  EXPECT_EQ(cp.Dims(), 2);
  EXPECT_EQ(cp.Bounds()[0].count, 0);
  EXPECT_EQ(cp.Bounds()[1].lower, 1);
  EXPECT_EQ(cp.Bounds()[1].count, 2);
  EXPECT_EQ(seen[4].AsArray().Size(), 0u);
}

TEST(Profile, GetProfileReadsEveryKindFromItsVariables) {
  auto log = NewLog();
  // Variable n of curve j holds 100 j + n, so any mixed-up number shows.
  auto vars = [](std::int32_t j, std::initializer_list<std::int32_t> ns) {
    std::map<std::int32_t, double> m;
    for (std::int32_t n : ns) m[n] = 100.0 * j + n;
    return m;
  };
  FakePathSpec spec;
  spec.closed = true;
  spec.construction = 0;
  spec.startX = -1, spec.startY = -2;
  spec.curves = {
      CurveSpec(0, vars(1, {1, 2, 3, 5, 6})),
      CurveSpec(1, vars(2, {1, 2, 9, 10})),
      CurveSpec(2, vars(3, {1, 2, 3, 4, 8, 9, 10})),
      CurveSpec(3, vars(4, {1, 2, 3, 4, 5, 6, 9, 10})),
      CurveSpec(4, vars(5, {1, 2, 3, 4, 9})),
      CurveSpec(5, vars(6, {1, 2})),
      CurveSpec(77, {}),
  };
  FakeCurveSpec& bspline = spec.curves[5];
  bspline.closed = true;
  bspline.degree = 2;
  bspline.controlPoints = {{1, 2}, {3, 4}};
  bspline.fitPoints = {{5, 6}};
  bspline.knots = {0, 0, 1, 1};
  bspline.weights = {1, 0.5};
  FakePathSpec construction;
  construction.construction = 1;
  auto path1 = MakePath("p1", log, spec);
  auto paths = MakeCollection("paths", log, {path1, MakePath("p2", log, construction)});

  auto profile = NewProfile();
  profile->AddOutline();  // replaced by the read
  Variant result = Variant(Ref<Object>(profile)).Call("GetProfileFromPaths", paths);
  EXPECT_EQ(result.AsObject().get(), profile.get());
  ASSERT_EQ(profile->NumberOfOutlines(), 2);
  Ref<TKOutline> o = profile->GetOutline(1);
  EXPECT_EQ(o->GetPathComponent().get(), path1.get());
  EXPECT_TRUE(o->GetClosed());
  EXPECT_EQ(o->GetStartPointX(), -1);
  EXPECT_EQ(o->GetStartPointY(), -2);
  EXPECT_EQ(profile->GetOutline(2)->GetConstruction(), 1);
  ASSERT_EQ(o->NumberOfCurves(), 7);

  // Each field the reader sets, as "Field=value" over the fields that are not 0.
  auto fields = [](const TKCurve& k) {
    std::string s;
    const std::pair<const char*, double> all[] = {
        {"X", k.GetX()},           {"Y", k.GetY()},         {"Radius", k.GetRadius()},
        {"CenterX", k.GetCenterX()}, {"CenterY", k.GetCenterY()}, {"AngleMajor", k.GetAngleMajor()},
        {"HFactor", k.GetHFactor()}, {"Eccentricity", k.GetEccentricity()}, {"MinorHeight", k.GetMinorHeight()},
        {"XPt", k.GetXPtOnCurve()}, {"YPt", k.GetYPtOnCurve()}, {"Tan1X", k.GetTan1X()},
        {"Tan1Y", k.GetTan1Y()},   {"Tan2X", k.GetTan2X()}, {"Tan2Y", k.GetTan2Y()},
        {"StartTrim", k.GetStartTrim()}, {"EndTrim", k.GetEndTrim()}};
    for (const auto& [name, v] : all)
      if (v != 0) s += std::string(s.empty() ? "" : " ") + name + "=" + FormatDouble(v);
    return s;
  };
  const char* expected[] = {
      "X=101 Y=102 Radius=103 CenterX=105 CenterY=106",
      "X=201 Y=202 StartTrim=209 EndTrim=210",
      "X=301 Y=302 AngleMajor=308 HFactor=309 Eccentricity=310 StartTrim=303 EndTrim=304",
      "X=401 Y=402 Tan1X=403 Tan1Y=404 Tan2X=405 Tan2Y=406 StartTrim=409 EndTrim=410",
      "CenterX=501 CenterY=502 MinorHeight=509 XPt=503 YPt=504",  // a plain minor value is not converted
      "X=601 Y=602",
      "",
  };
  for (std::int32_t j = 1; j <= 7; ++j) EXPECT_EQ(fields(*o->GetCurve(j)), expected[j - 1]) << "curve " << j;
  EXPECT_EQ(o->GetCurve(7)->GetCurveType(), 77);

  Ref<TKCurve> s = o->GetCurve(6);
  EXPECT_TRUE(s->GetBSplineClosed());
  EXPECT_FALSE(s->GetBSplinePeriodic());
  EXPECT_EQ(s->GetBSplineDegree(), 2);
  double x = 0, y = 0;
  s->GetControlPoint(2, x, y);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(3.0, 4.0));
  s->GetFitPoint(1, x, y);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(5.0, 6.0));
  EXPECT_EQ(s->GetBSplineKnots(), 4);
  EXPECT_EQ(s->GetKnot(3), 1.0);
  EXPECT_EQ(s->GetWeight(2), 0.5);

  // A failing host call reaches the caller; what was read before stays.
  spec.curves[1].vars.erase(10);
  auto broken = MakeCollection("paths", log, {MakePath("p1", log, spec)});
  EXPECT_EQ(ErrorNumber([&] { profile->GetProfileFromPaths(broken); }), Err::InvalidCall);
  ASSERT_EQ(profile->NumberOfOutlines(), 1);
  EXPECT_EQ(profile->GetOutline(1)->NumberOfCurves(), 2);
  EXPECT_EQ(profile->GetOutline(1)->GetCurve(2)->GetStartTrim(), 209);
  EXPECT_EQ(ErrorNumber([&] { profile->GetProfileFromPaths(Ref<Object>()); }), Err::ObjectNotSet);
}

TEST(Profile, AnExpressionDrivenMinorValueIsConvertedToSystemUnits) {
  if (!HasFactory("UnitUtils")) GTEST_SKIP() << "UnitUtils is not built yet";
  auto log = NewLog();
  FakePathSpec spec;
  spec.curves = {CurveSpec(4, {{1, 0}, {2, 0}, {3, 0}, {4, 0}, {9, 25}}, {{9, "Radius * 2"}})};
  auto page = MakeFake("page", log);
  page->On("UnitsScale", [](CallKind, std::span<Variant> args) {
    return Variant(ToLong(args[0]) == 2 ? 0.001 : 1.0);  // millimetres
  });
  auto profile = NewProfile();
  profile->SetPage(page);
  profile->GetProfileFromPaths(MakeCollection("paths", log, {MakePath("p", log, spec)}));
  EXPECT_EQ(profile->GetOutline(1)->GetCurve(1)->GetMinorHeight(), 25 * 0.001);
}

TEST(Profile, ShiftMovesPointsAndCentresOnly) {
  Ref<TKProfile> profile = ProfileWithEveryKind();
  Ref<TKCurve> spline = profile->GetOutline(1)->GetCurve(7);
  spline->LetBSplineFitPoints(1);
  spline->SetFitPoint(1, 1, 1);
  profile->ShiftProfileData(90, 10);
  const double a = 3.14159265358979 / 180 * 90;
  const double dx = std::cos(a) * 10, dy = std::sin(a) * 10;
  EXPECT_NE(dx, 0.0);  // the 15-digit pi leaves a trace
  EXPECT_NEAR(dx, 0.0, 1e-13);
  Ref<TKOutline> o = profile->GetOutline(1);
  EXPECT_EQ(o->GetStartPointX(), 1 + dx);
  EXPECT_EQ(o->GetStartPointY(), 2 + dy);
  Ref<TKCurve> bezier = o->GetCurve(4);
  EXPECT_EQ(bezier->GetX(), 7 + dx);
  EXPECT_EQ(bezier->GetCenterY(), dy);
  EXPECT_EQ(bezier->GetTan1X(), 9);  // tangent points stay
  Ref<TKCurve> circle = o->GetCurve(5);
  EXPECT_EQ(circle->GetCenterX(), 1 + dx);
  EXPECT_EQ(circle->GetXPtOnCurve(), 3);  // points on curve stay
  double x = 0, y = 0;
  spline->GetControlPoint(2, x, y);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(2.5 + dx, 3.5 + dy));
  spline->GetFitPoint(1, x, y);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(1 + dx, 1 + dy));
  EXPECT_EQ(spline->GetKnot(3), 1);
  profile->ShiftProfileData(0, 1.7e308);
  EXPECT_EQ(ErrorNumber([&] { profile->ShiftProfileData(0, 1.7e308); }), Err::Overflow);
}

TEST(Profile, MirrorNegatesOneAxisAndAlwaysTheHFactor) {
  for (std::int32_t axis : {1, 2, 0, 7}) {
    Ref<TKProfile> profile = ProfileWithEveryKind();
    profile->MirrorProfileAboutAxis(axis);
    const double sx = axis == 2 ? -1 : 1, sy = axis == 1 ? -1 : 1;
    Ref<TKOutline> o = profile->GetOutline(1);
    EXPECT_EQ(o->GetStartPointX(), 1 * sx);
    EXPECT_EQ(o->GetStartPointY(), 2 * sy);
    EXPECT_EQ(o->GetCurve(3)->GetHFactor(), -0.5) << "axis " << axis;
    Ref<TKCurve> bezier = o->GetCurve(4);
    EXPECT_EQ(bezier->GetTan1X(), 9 * sx);
    EXPECT_EQ(bezier->GetTan2Y(), 12 * sy);
    Ref<TKCurve> ellipse = o->GetCurve(6);
    EXPECT_EQ(ellipse->GetCenterX(), 2 * sx);
    EXPECT_EQ(ellipse->GetYPtOnCurve(), 5 * sy);
    EXPECT_EQ(ellipse->GetMinorHeight(), 1.5);
    double x = 0, y = 0;
    o->GetCurve(7)->GetControlPoint(1, x, y);
    EXPECT_EQ(std::make_pair(x, y), std::make_pair(0.5 * sx, 1.5 * sy));
  }
}

TEST(Profile, CopyAppendsOutlinesAndPutsEccentricityIntoEndTrim) {
  Ref<TKProfile> source = ProfileWithEveryKind();
  Ref<TKCurve> arc = source->GetOutline(1)->GetCurve(3);
  arc->LetEccentricity(0.3);
  arc->LetEndTrim(0.9);
  arc->LetStartTrim(0.1);
  Ref<TKCurve> spline = source->GetOutline(1)->GetCurve(7);
  spline->LetBSplineFitPoints(1);
  spline->SetFitPoint(1, 8, 9);
  source->GetOutline(1)->SetPathComponent(MakeFake("path", NewLog()));

  auto target = NewProfile();
  target->AddOutline();
  target->CopyProfile(source);
  ASSERT_EQ(target->NumberOfOutlines(), 2);
  Ref<TKOutline> o = target->GetOutline(2);
  EXPECT_TRUE(o->GetPathComponent() == nullptr);
  EXPECT_TRUE(o->GetClosed());
  EXPECT_EQ(o->GetStartPointY(), 2);
  ASSERT_EQ(o->NumberOfCurves(), 9);
  EXPECT_NE(o->GetCurve(3).get(), arc.get());
  EXPECT_EQ(o->GetCurve(3)->GetEndTrim(), 0.3);
  EXPECT_EQ(o->GetCurve(3)->GetStartTrim(), 0.1);
  EXPECT_EQ(o->GetCurve(3)->GetHFactor(), 0.5);
  EXPECT_EQ(o->GetCurve(8)->GetCurveType(), 42);

  // The copy writes the same host calls as the source, apart from nothing:
  // EndTrim is not drawn, so the drawing is identical.
  auto log1 = NewLog(), log2 = NewLog();
  source->SetProfileData(MakeWritablePaths(log1));
  auto copyOnly = NewProfile();
  copyOnly->CopyProfile(source);
  copyOnly->SetProfileData(MakeWritablePaths(log2));
  EXPECT_EQ(*log1, *log2);
  double x = 0, y = 0;
  copyOnly->GetOutline(1)->GetCurve(7)->GetFitPoint(1, x, y);
  EXPECT_EQ(std::make_pair(x, y), std::make_pair(8.0, 9.0));

  source->CopyProfile(source);  // the count is taken once: the profile doubles
  EXPECT_EQ(source->NumberOfOutlines(), 2);
  EXPECT_EQ(ErrorNumber([&] { target->CopyProfile(Ref<TKProfile>()); }), Err::ObjectNotSet);
  EXPECT_EQ(ErrorNumber([&] {
              Variant(Ref<Object>(target)).Call("CopyProfile", CreateObject("TessarkAO.TKOutline"));
            }),
            Err::TypeMismatch);
}

TEST(Profile, DeparameterizeFixesTheChosenCoordinates) {
  FakePathSpec spec;
  spec.startX = 1, spec.startY = 2;
  auto all = [](std::int32_t last) {
    std::map<std::int32_t, double> m;
    for (std::int32_t n = 1; n <= last; ++n) m[n] = n;
    return m;
  };
  for (std::int32_t type : {0, 1, 2, 3, 4, 5, 9}) spec.curves.push_back(CurveSpec(type, all(10)));
  struct Case {
    Variant option;
    std::string fixed;
  };
  const Case cases[] = {
      {Variant::Missing(),
       "v0.1 v0.2 v1.1 v1.2 v1.5 v1.6 v2.1 v2.2 v3.1 v3.2 v4.1 v4.2 v4.3 v4.4 v4.5 v4.6 v5.1 v5.2 v5.3 v5.4 "
       "v6.1 v6.2"},
      {Variant(TKDeparameterizeXAxis), "v0.1 v1.1 v1.5 v2.1 v3.1 v4.1 v4.3 v4.5 v5.1 v5.3 v6.1"},
      {Variant(TKDeparameterizeYAxis), "v0.2 v1.2 v1.6 v2.2 v3.2 v4.2 v4.4 v4.6 v5.2 v5.4 v6.2"},
      {Variant(5), ""},
  };
  for (const Case& c : cases) {
    auto log = NewLog();
    auto paths = MakeCollection("paths", log, {MakePath("p", log, spec)});
    std::vector<Variant> args = {Variant(Ref<Object>(paths)), c.option};
    Variant(CreateObject("TessarkAO.TKProfile")).Invoke("DeparameterizeProfile", CallKind::Method, args);
    std::string fixed;
    for (const std::string& line : *log) {
      if (line.find(".Value=(") == std::string::npos) continue;
      const std::string name = line.substr(0, line.find(".Value"));
      // Each fixed variable gets back exactly the value it had.
      EXPECT_EQ(line, name + ".Value=(" + name.substr(name.find('.') + 1) + ")");
      fixed += (fixed.empty() ? "" : " ") + name;
    }
    EXPECT_EQ(fixed, c.fixed) << ToString(c.option.IsMissing() ? Variant(0) : c.option);
  }
}
