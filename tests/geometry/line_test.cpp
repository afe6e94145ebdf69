// TK2DLine: its definitions, the vertical sentinel and intersections.
#include "GeometrySupport.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

std::pair<double, double> SlopeAndIntercept(const TK2DLine& l) { return {l.Slope(), l.Intercept()}; }

}  // namespace

TEST(Line, DefinitionsKeepTheirResultsAndSentinel) {
  TK2DLine l;
  EXPECT_TRUE(l.SetDefinitionFromAngleAndPoint(45, 1, 1));
  EXPECT_EQ(SlopeAndIntercept(l), std::make_pair(0.9999999999999983, 1.6653345369377348e-15));
  EXPECT_TRUE(l.SetDefinitionFromAngleAndPoint(90, 2, 0));
  EXPECT_EQ(SlopeAndIntercept(l), std::make_pair(1e9, -2e9));
  EXPECT_TRUE(l.IsVertical());
  l.SetDefinitionFromAngleAndPoint(90.0000001, 0, 0);  // only the positive side is capped
  EXPECT_LT(l.Slope(), -1e8);
  EXPECT_FALSE(l.SetDefinitionFromTwoPoints(0, 0, 2, 4));
  EXPECT_EQ(SlopeAndIntercept(l), std::make_pair(2.0, 0.0));
  EXPECT_FALSE(l.SetDefinitionFromTwoPoints(1, 1, 1, 1));  // nothing changes
  EXPECT_EQ(SlopeAndIntercept(l), std::make_pair(2.0, 0.0));
  EXPECT_FALSE(l.SetDefinitionFromTwoPoints(3, 1, 3, 5));
  EXPECT_EQ(SlopeAndIntercept(l), std::make_pair(1e9, 1.0 - 3e9));
  EXPECT_EQ(ErrorOf([&] { l.SetDefinitionFromTwoPoints(0, -1e300, 1e-300, 1e300); }), 6);
  EXPECT_EQ(SlopeAndIntercept(l), std::make_pair(1e9, 1.0 - 3e9));
}

TEST(Line, IntersectionsThroughTheMemberTable) {
  auto a = MakeRef<TK2DLine>(), b = MakeRef<TK2DLine>();
  a->LetSlope(1);
  b->LetSlope(1);
  b->LetIntercept(5);
  std::vector<Variant> args = {Variant(b), Variant(std::int32_t{7}), Variant("kept")};
  EXPECT_FALSE(ToBoolean(a->Invoke("GetIntersectionPoint", CallKind::Method, args)));
  EXPECT_EQ(args[1].Type(), VarType::Long);  // left exactly as they were
  EXPECT_EQ(args[2].AsString(), "kept");
  b->SetDefinitionFromTwoPoints(0, 2, 2, 0);  // y = -x + 2
  EXPECT_TRUE(ToBoolean(a->Invoke("GetIntersectionPoint", CallKind::Method, args)));
  EXPECT_EQ(std::make_pair(args[1].AsDouble(), args[2].AsDouble()), std::make_pair(1.0, 1.0));
  // Two vertical lines never meet, whatever their sentinel slopes.
  a->LetSlope(1e9);
  b->LetSlope(2e9);
  Variant x = 0.5, y = 0.5;
  EXPECT_FALSE(a->GetIntersectionPoint(MakeRef<Foreign>(b), x, y));
  b->LetSlope(0);
  b->LetIntercept(3);
  a->LetIntercept(-2e9);  // x = 2, through the sentinel
  EXPECT_TRUE(a->GetIntersectionPoint(MakeRef<Foreign>(b), x, y));
  EXPECT_NEAR(x.AsDouble(), 2.000000003, 1e-12);
  EXPECT_NEAR(y.AsDouble(), 3.0, 1e-6);
}
