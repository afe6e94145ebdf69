// Helpers for the reference-host tests: late-bound calls as the library makes
// them, and random nested scenes built through the host's own members.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "automation/Variant.hpp"
#include "refhost/RefHost.hpp"
#include "TestSupport.hpp"

namespace TessarkAO::RefHostTest {

using Testing::ErrorOf;

inline Variant Root(const Variant& app) { return app.Get("ActivePage").Get("Shape"); }

// The component of a type, as the library looks it up (adding it if missing).
inline Variant Comp(const Variant& shape, int type) {
  Variant list = shape.Get("Components", type);
  if (ToLong(list.Get("Count")) == 0) return list.Call("Add");
  return list.Call("Item", 1);
}

// The component holding a container's children: group (2) for type 1,
// history (23) for type 3.
inline Variant ChildContainer(const Variant& shape) {
  return Comp(shape, ToLong(shape.Get("Type")) == 1 ? 2 : 23);
}

// The profile of a shape with a profile (extrusion, curved stock).
inline Variant ProfileOf(const Variant& shape) {
  return shape.Get("Components", 15).Call("Item", 1).Get("Profile");
}

inline Variant AddShape(const Variant& parent, int kind) {
  return ChildContainer(parent).Get("Shapes", kind).Call("Add");
}

inline void SetVar(const Variant& shape, int type, int n, const Variant& v) {
  Comp(shape, type).Call("Variable", n).Let("Value", v);
}

inline double GetVar(const Variant& shape, int type, int n) {
  return ToDouble(Comp(shape, type).Call("Variable", n).Get("Value"));
}

// Calls a member whose arguments are by-reference Doubles and returns them.
inline std::vector<double> CallDoubles(const Variant& obj, std::string_view member,
                                       std::vector<Variant> args) {
  obj.Invoke(member, CallKind::Method, args);
  std::vector<double> out;
  for (const Variant& a : args)
    if (a.Type() == VarType::Double) out.push_back(a.AsDouble());
  return out;
}

struct Pose {
  double x, y, z, ax, ay, az, angle;
};

inline std::vector<Variant> PoseArgs(const Pose& p) {
  return {Variant(p.x), Variant(p.y), Variant(p.z), Variant(p.ax), Variant(p.ay), Variant(p.az), Variant(p.angle)};
}

inline Pose ToPose(const std::vector<double>& v) { return {v[0], v[1], v[2], v[3], v[4], v[5], v[6]}; }

inline std::vector<double> Up(const Variant& shape, const Pose& p) {
  return CallDoubles(shape, "GetPointTransformUp", PoseArgs(p));
}

inline std::vector<double> Down(const Variant& shape, const Variant& child, const Pose& p) {
  std::vector<Variant> args = PoseArgs(p);
  args.insert(args.begin(), child);
  return CallDoubles(shape, "GetPointTransformDown", std::move(args));
}

// A scene of nested assemblies and parts with leaves of several kinds, every
// shape given a random position, anchor and (sometimes) mirror.
struct RandomScene {
  Variant app;
  std::vector<Variant> shapes;   // every shape below the root, in creation order
  std::vector<Variant> parents;  // the parent shape of each (the root for top-level ones)
};

inline RandomScene MakeRandomScene(std::mt19937& rng, int count, bool placements = true) {
  RandomScene s;
  s.app = Variant(RefHost::NewApplication());
  Variant root = Root(s.app);
  std::vector<Variant> containers{root};
  std::uniform_real_distribution<double> pos(-100.0, 100.0), unit(-1.0, 1.0), deg(-360.0, 360.0);
  const int leafKinds[] = {5, 9, 11, 2};
  for (int i = 0; i < count; ++i) {
    const Variant parent =
        containers[std::uniform_int_distribution<std::size_t>(0, containers.size() - 1)(rng)];
    const bool container = std::uniform_int_distribution<int>(0, 2)(rng) == 0;
    int kind = leafKinds[std::uniform_int_distribution<int>(0, 3)(rng)];
    if (container) kind = std::uniform_int_distribution<int>(0, 1)(rng) ? 1 : 3;
    Variant shape = AddShape(parent, kind);
    shape.Let("Name", "S" + std::to_string(i));
    if (placements) {
      for (int n = 1; n <= 3; ++n) SetVar(shape, 4, n, pos(rng));
      for (int n = 4; n <= 6; ++n) SetVar(shape, 4, n, unit(rng));
      SetVar(shape, 4, 7, deg(rng));
      SetVar(shape, 4, 9, std::int32_t{std::uniform_int_distribution<int>(0, 3)(rng) == 0 ? 1 : 0});
      for (int n = 1; n <= 3; ++n) SetVar(shape, 5, n, pos(rng) / 4);
      for (int n = 4; n <= 6; ++n) SetVar(shape, 5, n, unit(rng));
      SetVar(shape, 5, 7, deg(rng));
    }
    s.shapes.push_back(shape);
    s.parents.push_back(parent);
    if (container) containers.push_back(shape);
  }
  return s;
}

}  // namespace TessarkAO::RefHostTest
