// Shared by the profile tests: a scene of the reference host with a
// profile's path collection, journal helpers, a text dump of a profile and a
// profile holding every curve kind.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "TestSupport.hpp"
#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "profiles/TKInvoluteCurve.hpp"
#include "profiles/TKProfile.hpp"
#include "refhost/RefHost.hpp"

namespace TessarkAO::Testing {

inline Ref<TKProfile> NewProfile() { return RefCast<TKProfile>(CreateObject("TessarkAO.TKProfile")); }

// Row i of an involute's sampled points.
inline std::pair<double, double> Sample(const TKInvoluteCurve& c, std::int32_t i) {
  std::pair<double, double> p;
  c.GetCalculatedPointFromIndex(i, p.first, p.second);
  return p;
}

// GetFitPoint / GetControlPoint through the dispatcher, outputs read back.
inline std::pair<double, double> GetPoint(const Variant& curve, const char* member, std::int32_t index) {
  std::vector<Variant> args = {Variant(index), Variant(), Variant()};
  curve.Invoke(member, CallKind::Method, args);
  return {ToDouble(args[1]), ToDouble(args[2])};
}

// The named properties of an object, read late-bound, as numbers.
inline std::vector<double> Numbers(const Variant& object, std::initializer_list<const char*> names) {
  std::vector<double> out;
  for (const char* name : names) out.push_back(ToDouble(object.Get(name)));
  return out;
}

constexpr std::int32_t kProfileShape = 9, kGroup = 2, kProfileComponent = 15, kPath = 3;

// The path collection of a new profile shape in a new scene.
struct Scene {
  Ref<Object> app = RefHost::NewApplication();
  Variant page = Variant(app).Get("ActivePage");
  Variant shape =
      page.Get("Shape").Get("Components", kGroup).Call("Item", 1).Get("Shapes", kProfileShape).Call("Add");
  Variant paths =
      shape.Get("Components", kProfileComponent).Call("Item", 1).Get("Profile").Get("Components", kPath);
};

// The journal's calls on objects whose name ends with `suffix`,
// as "Member(args)".
inline std::vector<std::string> Calls(const std::vector<RefHost::JournalEntry>& journal,
                                      const std::string& suffix) {
  std::vector<std::string> out;
  for (const RefHost::JournalEntry& e : journal) {
    if (e.object.size() < suffix.size() ||
        e.object.compare(e.object.size() - suffix.size(), suffix.size(), suffix))
      continue;
    std::string line = e.member + (e.kind == CallKind::Let ? "=" : "") + "(";
    for (std::size_t i = 0; i < e.args.size(); ++i)
      line += (i ? ", " : "") + RefHost::FormatJournalValue(e.args[i]);
    out.push_back(line + ")");
  }
  return out;
}

inline std::vector<RefHost::JournalEntry> Journaled(const std::function<void()>& f) {
  RefHost::ClearJournal();
  RefHost::StartJournal();
  f();
  RefHost::StopJournal();
  return RefHost::Journal();
}

// Every value a profile holds, one line per outline and per curve: each
// curve property of the member table, then the B-spline arrays.
inline std::vector<std::string> Dump(const TKProfile& profile) {
  std::vector<std::string> lines;
  auto num = [](double v) { return FormatDouble(v) + " "; };
  for (const Ref<TKOutline>& o : profile.Outlines()) {
    lines.push_back("outline " + num(o->GetStartPointX()) + num(o->GetStartPointY()) +
                    std::to_string(o->GetConstruction()) + (o->GetClosed() ? " closed" : " open"));
    for (const Ref<TKCurve>& k : o->Curves()) {
      const Variant curve{Ref<Object>(k)};
      std::string s = "curve";
      for (const MemberInfo& m : TKCurve::StaticClass().Members())
        if (m.let) s += " " + m.name + "=" + num(ToDouble(curve.Get(m.name)));
      double x = 0, y = 0;
      for (std::int32_t i = 1; i <= k->GetBSplineControlPoints(); ++i)
        k->GetControlPoint(i, x, y), s += "cp " + num(x) + num(y);
      for (std::int32_t i = 1; i <= k->GetBSplineFitPoints(); ++i)
        k->GetFitPoint(i, x, y), s += "fp " + num(x) + num(y);
      for (std::int32_t i = 1; i <= k->GetBSplineKnots(); ++i) s += "k " + num(k->GetKnot(i));
      for (std::int32_t i = 1; i <= k->GetBSplineWeights(); ++i) s += "w " + num(k->GetWeight(i));
      lines.push_back(s);
    }
  }
  return lines;
}

// A closed outline with every curve kind, as the host reads it back: the
// fillet's corner is the end of the line before it, a circle keeps its
// radius as the point's X, an ellipse's centre is in CenterX / CenterY.
// Curves 1..8: line, fillet, line, arc, Bezier, circle, ellipse, B-spline.
inline Ref<TKProfile> ProfileWithEveryKind() {
  auto profile = NewProfile();
  Ref<TKOutline> o = profile->AddOutline();
  o->LetStartPointX(0.5);
  o->AddLineTo(10, 0);
  Ref<TKCurve> k = o->AddCurve(TKCurveType_Fillet);
  k->LetX(10), k->LetRadius(2), k->LetCenterX(8), k->LetCenterY(2);
  o->AddLineTo(10, 10);
  k = o->AddCurve(TKCurveType_Arc);
  k->LetX(0), k->LetY(10), k->LetHFactor(-0.25);
  k = o->AddCurve(TKCurveType_Bezier);
  k->LetY(5), k->LetTan1X(-1), k->LetTan1Y(9), k->LetTan2X(-1.5), k->LetTan2Y(6);
  k = o->AddCurve(TKCurveType_Ellipse);  // a circle
  k->LetCenterX(5), k->LetCenterY(5), k->LetMinorHeight(-1), k->LetXPtOnCurve(2);
  k = o->AddCurve(TKCurveType_Ellipse);
  k->LetCenterX(4), k->LetCenterY(6), k->LetMinorHeight(0.75), k->LetXPtOnCurve(5.5), k->LetYPtOnCurve(6);
  k = o->AddCurve(TKCurveType_BSpline);
  k->LetX(0.5), k->LetBSplineDegree(2), k->LetBSplineClosed(true);
  k->LetBSplineControlPoints(4), k->LetBSplineWeights(4), k->LetBSplineKnots(7);
  const double cp[4][2] = {{0, 5}, {-1, 3}, {1, 1}, {0.5, 0}}, knots[7] = {0, 0, 0, 0.5, 1, 1, 1};
  for (int i = 1; i <= 4; ++i)
    k->SetControlPoint(i, cp[i - 1][0], cp[i - 1][1]), k->SetWeight(i, i == 2 ? 0.5 : 1);
  for (int i = 1; i <= 7; ++i) k->SetKnot(i, knots[i - 1]);
  o->LetClosed(true);
  Ref<TKOutline> construction = profile->AddOutline();
  construction->LetConstruction(1);
  construction->LetStartPointY(-3);
  construction->AddLineTo(4, -3);
  return profile;
}

}  // namespace TessarkAO::Testing
