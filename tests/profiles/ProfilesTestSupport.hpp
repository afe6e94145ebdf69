// Shared by the profile tests: a scene of the reference host with a
// profile's path collection, journal helpers, a text dump of a profile and a
// profile holding every curve kind.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "profiles/TKProfile.hpp"
#include "refhost/RefHost.hpp"

namespace TessarkAO::Testing {

inline int ErrorNumber(const std::function<void()>& f) {
  try {
    f();
  } catch (const AutomationError& e) {
    return e.Number();
  }
  return 0;
}

inline Ref<TKProfile> NewProfile() { return RefCast<TKProfile>(CreateObject("TessarkAO.TKProfile")); }

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

// Every value a profile holds, one line per outline and per curve.
inline std::vector<std::string> Dump(const TKProfile& profile) {
  std::vector<std::string> lines;
  auto num = [](double v) { return FormatDouble(v) + " "; };
  for (const Ref<TKOutline>& o : profile.Outlines()) {
    lines.push_back("outline " + num(o->GetStartPointX()) + num(o->GetStartPointY()) +
                    std::to_string(o->GetConstruction()) + (o->GetClosed() ? " closed" : " open"));
    for (const Ref<TKCurve>& k : o->Curves()) {
      std::string s = "curve " + std::to_string(k->GetCurveType()) + ": ";
      for (double v : {k->GetX(), k->GetY(), k->GetRadius(), k->GetCenterX(), k->GetCenterY(),
                       k->GetAngleMajor(), k->GetHFactor(), k->GetEccentricity(), k->GetMinorHeight(),
                       k->GetXPtOnCurve(), k->GetYPtOnCurve(), k->GetTan1X(), k->GetTan1Y(), k->GetTan2X(),
                       k->GetTan2Y(), k->GetStartTrim(), k->GetEndTrim()})
        s += num(v);
      s += "| " + std::to_string(k->GetBSplineDegree()) + (k->GetBSplinePeriodic() ? "P" : "") +
           (k->GetBSplineClosed() ? "C " : " ");
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
inline Ref<TKProfile> ProfileWithEveryKind() {
  auto profile = NewProfile();
  Ref<TKOutline> o = profile->AddOutline();
  o->LetStartPointX(0.5);
  o->AddLineTo(10, 0);
  Ref<TKCurve> fillet = o->AddCurve(TKCurveType_Fillet);
  fillet->LetX(10), fillet->LetRadius(2), fillet->LetCenterX(8), fillet->LetCenterY(2);
  o->AddLineTo(10, 10);
  Ref<TKCurve> arc = o->AddCurve(TKCurveType_Arc);
  arc->LetX(0), arc->LetY(10), arc->LetHFactor(-0.25);
  Ref<TKCurve> bezier = o->AddCurve(TKCurveType_Bezier);
  bezier->LetY(5), bezier->LetTan1X(-1), bezier->LetTan1Y(9), bezier->LetTan2X(-1.5), bezier->LetTan2Y(6);
  Ref<TKCurve> circle = o->AddCurve(TKCurveType_Ellipse);
  circle->LetCenterX(5), circle->LetCenterY(5), circle->LetMinorHeight(-1), circle->LetXPtOnCurve(2);
  Ref<TKCurve> ellipse = o->AddCurve(TKCurveType_Ellipse);
  ellipse->LetCenterX(4), ellipse->LetCenterY(6), ellipse->LetMinorHeight(0.75), ellipse->LetXPtOnCurve(5.5);
  ellipse->LetYPtOnCurve(6);
  Ref<TKCurve> spline = o->AddCurve(TKCurveType_BSpline);
  spline->LetX(0.5), spline->LetBSplineDegree(2), spline->LetBSplineClosed(true);
  spline->LetBSplineControlPoints(4);
  const double cp[4][2] = {{0, 5}, {-1, 3}, {1, 1}, {0.5, 0}};
  for (int i = 0; i < 4; ++i) spline->SetControlPoint(i + 1, cp[i][0], cp[i][1]);
  spline->LetBSplineWeights(4);
  for (int i = 1; i <= 4; ++i) spline->SetWeight(i, i == 2 ? 0.5 : 1);
  spline->LetBSplineKnots(7);
  const double knots[7] = {0, 0, 0, 0.5, 1, 1, 1};
  for (int i = 0; i < 7; ++i) spline->SetKnot(i + 1, knots[i]);
  o->LetClosed(true);
  Ref<TKOutline> construction = profile->AddOutline();
  construction->LetConstruction(1);
  construction->LetStartPointY(-3);
  construction->AddLineTo(4, -3);
  return profile;
}

}  // namespace TessarkAO::Testing
