// TKCurve and TKOutline, driven late-bound as scripts drive them.
#include <gtest/gtest.h>

#include "ProfilesTestSupport.hpp"
#include "profiles/TKOutline.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

TEST(Curve, NewCurveIsZeroAndEveryPropertyKeepsItsOwnValue) {
  Variant curve(CreateObject("TessarkAO.TKCurve"));
  std::vector<std::string> properties;
  for (const MemberInfo& m : TKCurve::StaticClass().Members())
    if (m.let && m.name.rfind("BSpline", 0) != 0) properties.push_back(m.name);  // counts size arrays
  ASSERT_EQ(properties.size(), 18u);
  for (const std::string& p : properties) EXPECT_EQ(ToDouble(curve.Get(p)), 0.0) << p;
  // Distinct values everywhere: a getter wired to the wrong field shows up.
  for (std::size_t i = 0; i < properties.size(); ++i)
    curve.Let(properties[i], static_cast<std::int32_t>(i + 90));
  for (std::size_t i = 0; i < properties.size(); ++i)
    EXPECT_EQ(ToDouble(curve.Get(properties[i])), static_cast<double>(i + 90)) << properties[i];
}

TEST(Curve, CountsSizeTheArraysAndIndicesOutsideAreIgnored) {
  Variant curve(CreateObject("TessarkAO.TKCurve"));
  curve.Let("BSplineFitPoints", 3);
  for (int i : {0, 3, 4}) curve.Call("SetFitPoint", i, 1.5 * i, -2.0);
  EXPECT_EQ(GetPoint(curve, "GetFitPoint", 3), std::make_pair(4.5, -2.0));
  for (int i : {-1, 1, 4}) EXPECT_EQ(GetPoint(curve, "GetFitPoint", i), std::make_pair(0.0, 0.0)) << i;

  // Setting a count again clears the array.
  curve.Let("BSplineKnots", 5);
  curve.Call("SetKnot", 5, 7.5);
  EXPECT_EQ(ToDouble(curve.Call("GetKnot", 5)), 7.5);
  curve.Let("BSplineKnots", 5);
  EXPECT_EQ(ToDouble(curve.Call("GetKnot", 5)), 0.0);

  // A count of 0 or below keeps the old array out of reach; a positive
  // count afterwards makes a fresh one, so nothing old comes back.
  curve.Let("BSplineWeights", 4);
  curve.Call("SetWeight", 1, 3.0);
  curve.Let("BSplineWeights", 0);
  EXPECT_EQ(ToDouble(curve.Call("GetWeight", 1)), 0.0);
  curve.Call("SetWeight", 1, 8.0);
  curve.Let("BSplineWeights", -2);
  EXPECT_EQ(curve.Get("BSplineWeights").AsLong(), -2);
  curve.Let("BSplineWeights", 2);
  EXPECT_EQ(ToDouble(curve.Call("GetWeight", 1)), 0.0);

  // An array too large to make raises 7 and leaves the curve as it was.
  curve.Let("BSplineControlPoints", 2);
  curve.Call("SetControlPoint", 2, -1.0, 4.0);
  EXPECT_EQ(ErrorOf([&] { curve.Let("BSplineControlPoints", 2147483647); }), Err::OutOfMemory);
  EXPECT_EQ(curve.Get("BSplineControlPoints").AsLong(), 2);
  EXPECT_EQ(GetPoint(curve, "GetControlPoint", 2), std::make_pair(-1.0, 4.0));
}

TEST(Outline, CurveListAndTheOneSidedIndexTest) {
  Variant outline(CreateObject("TessarkAO.TKOutline"));
  EXPECT_TRUE(outline.Call("GetCurve", 1).IsNothing());
  Variant first = outline.Call("AddLineTo", 1.0, 2.0);
  Variant second = outline.Call("AddLineTo", 3.0, 4.0);
  EXPECT_EQ(ToDouble(second.Get("Y")), 4.0);
  EXPECT_EQ(outline.Call("GetCurve", 2).AsObject(), second.AsObject());
  // Past the end is Nothing; 0 and below raise 9.
  EXPECT_TRUE(outline.Call("GetCurve", 3).IsNothing());
  for (int i : {0, -5}) EXPECT_EQ(ErrorOf([&] { outline.Call("GetCurve", i); }), Err::SubscriptOutOfRange);
  // Curves handed out are the outline's own.
  first.Let("X", 10.0);
  EXPECT_EQ(ToDouble(outline.Call("GetCurve", 1).Get("X")), 10.0);
  EXPECT_EQ(outline.Call("AddCurve").Get("CurveType").AsLong(), 0);
  EXPECT_EQ(outline.Call("AddCurve", -7).Get("CurveType").AsLong(), -7);
  EXPECT_EQ(outline.Get("NumberOfCurves").AsLong(), 4);
}

TEST(Outline, AddEllipseTakesThePointsYFromItsX) {
  Variant outline(CreateObject("TessarkAO.TKOutline"));
  struct Case {
    std::vector<double> args;
    double minor, xPt, yPt;
  };
  const Case cases[] = {
      {{1, 2, 5}, -1, 5, 0},       // a circle: the radius goes to XPtOnCurve
      {{1, 2, 5, 3, 7}, 5, 3, 3},  // the point's Y comes from its X
      {{1, 2, 5, 0, 7}, 5, 0, 0},  // a non-zero Y alone picks the first branch
      {{1, 2, 5, -2, 0}, 5, -2, -2},
  };
  for (const Case& c : cases) {
    std::vector<Variant> args(c.args.begin(), c.args.end());
    const Variant e = outline.Invoke("AddEllipse", CallKind::Method, args);
    // The centre is carried in X, Y only.
    EXPECT_EQ(Numbers(e, {"CurveType", "Y", "CenterX", "MinorHeight", "XPtOnCurve", "YPtOnCurve"}),
              (std::vector<double>{4, 2, 0, c.minor, c.xPt, c.yPt}));
  }
}

TEST(Outline, HoldsItsPathWhileItLives) {
  Scene scene;
  const Ref<Object> path = ToObject(scene.paths.Call("Add"));
  const std::uint32_t pathRefs = path->RefCount();
  {
    Variant outline(CreateObject("TessarkAO.TKOutline"));
    outline.Set("PathComponent", path);
    EXPECT_EQ(outline.Get("PathComponent").AsObject().get(), path.get());
    EXPECT_GT(path->RefCount(), pathRefs);
  }
  EXPECT_EQ(path->RefCount(), pathRefs);
}
