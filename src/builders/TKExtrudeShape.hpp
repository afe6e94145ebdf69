// TKExtrudeShape: builds one extruded feature in the host's scene.
//
// A caller sets the heights, the material flag and the position, calls
// Create(Parent) to make the host shape, draws the cross-section into the
// returned PathComponents and calls Finish to regenerate the shape.
//   Create with a parent of type 1 (an assembly) first makes a part in it,
//   placed by the builder's position; the position is then zeroed so that the
//   extrude starts at the part's origin (the builder's position stays zeroed).
//   Finish before Create does nothing and makes no host call.
// Heights are in the page's length units, as the host holds them.
#pragma once

#include <cstdint>
#include <string>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"

namespace TessarkAO {

enum TKExtrudeDirection : std::int32_t { TKExtrude_Up = 1, TKExtrude_Down = 2 };

class TKExtrudeShape final : public Dispatch<TKExtrudeShape> {
 public:
  static constexpr std::string_view kClassName = "TKExtrudeShape";
  static void Describe(ClassBuilder<TKExtrudeShape>& b);

  // The default user name is string 117 of the shared localizer; an empty
  // localizer makes the creation fail with 91, as every text lookup does.
  TKExtrudeShape();

  std::string GetUserName() const { return userName_; }
  void LetUserName(std::string name) { userName_ = std::move(name); }
  bool GetRemovesMaterial() const { return removesMaterial_; }
  void LetRemovesMaterial(bool removes) { removesMaterial_ = removes; }
  // The builder's own TKPosition.  Assigning copies the given position's
  // placement into it (InheritPosition); the caller's object is not kept.
  Ref<Object> GetPosition() const { return position_; }
  void SetPosition(Ref<Object> position);
  // Height(1) up, Height(2) down; any other direction raises 9.
  double GetHeight(std::int32_t direction) const;
  void LetHeight(std::int32_t direction, double height);
  // The profile's path collection of the created shape; Nothing before Create.
  Variant GetPathComponents() const { return pathComponents_; }
  void Finish();
  Variant Create(Variant parent);

 private:
  InstanceRegistration registration_;
  Variant shape_ = Variant::Nothing();
  bool created_ = false;
  Ref<Object> position_;
  Variant pathComponents_ = Variant::Nothing();
  double heights_[2] = {5.0, 0.0};
  bool removesMaterial_ = false;
  std::string userName_;
};

}  // namespace TessarkAO
