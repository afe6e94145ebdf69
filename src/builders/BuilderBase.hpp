// PlacedBuilder: what the feature builders that place their shape with a
// TKPosition of their own have in common (TKExtrudeShape and the sheet-metal
// extrude, forming, curved-stock and conic builders).
//
// Each of them keeps a user name (a string of the shared localizer at
// first), its own TKPosition, the created shape and the path collection of
// that shape's profile; Create(Parent) is each builder's own, Finish is the
// same for all: Update, ResetSizeBox and the size-box values the builder
// sends (FinishSizebox), and no host call at all before Create.
//
// The members are declared by the builder's own Describe, at the slots of its
// table; the Describe... helpers below add one shared member (or the closing
// run of them) at the place the builder calls them.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"
#include "builders/BuilderSteps.hpp"
#include "frame/Globals.hpp"
#include "frame/StringTable.hpp"
#include "host/HostAccess.hpp"

namespace TessarkAO {

template <class C, const std::int16_t (&FinishSizebox)[9] = BuilderSteps::kSheetMetalSizebox>
class PlacedBuilder : public Dispatch<C> {
 public:
  // The name the created shape receives.
  std::string GetUserName() const { return userName_; }
  void LetUserName(std::string name) { userName_ = std::move(name); }
  // The builder's own TKPosition.  Assigning copies the given position's
  // placement into it (InheritPosition); the caller's object is not kept.
  Ref<Object> GetPosition() const { return position_; }
  void SetPosition(Ref<Object> position) { Variant(position_).Call("InheritPosition", position); }
  // The path collection of the created shape's profile; Nothing before Create.
  Variant GetPathComponents() const { return pathComponents_; }
  // The created shape; Nothing before Create.
  Variant GetPart() const { return shape_; }
  // Regenerates the created shape; before Create it makes no host call.
  void Finish() {
    if (created_) BuilderSteps::FinishWithSizebox(shape_, FinishSizebox);
  }

 protected:
  // The builder joins the instance count first, then makes its position and
  // loads its default name: an empty localizer makes the creation fail with
  // 91, as every text lookup does.
  explicit PlacedBuilder(std::int32_t defaultNameId)
      : position_(CreateObject("TessarkAO.TKPosition")), userName_(Globals::LoadString(defaultNameId)) {}

  Variant Position() const { return Variant(position_); }

  // Places a new shape with the builder's position and gives it the user name.
  void PlaceAndName(const Variant& shape) const {
    BuilderSteps::Place(Position(), shape, false);
    shape.Let("Name", userName_);
  }

  // A new sheet-metal stock: in the container SheetMetalContainer gives for
  // `parent`, Shapes(11).Add, Initialize with `initialize` (the stock form;
  // none for flat stock), placement and name; its "SM Extrude" component
  // (63) then receives Variable(55) = thickness and (56) = 0, the second
  // depth (the counterpart of the extrude's Down height, which no sheet-metal
  // builder lets a caller change).
  struct Stock {
    Variant shape;
    Variant component;
  };
  template <class... Form>
  Stock NewSheetMetalStock(const Variant& parent, double thickness, Form... initialize) const {
    using namespace BuilderSteps;
    Stock s;
    s.shape = AddShape(SheetMetalContainer(parent, Position()), ShapeKind::SheetMetalExtrude);
    s.shape.Call("Initialize", initialize...);
    PlaceAndName(s.shape);
    s.component = LookupComponent(s.shape, Component::SheetMetalExtrude);
    Host::LetVariableValue(s.component, 55, thickness);
    Host::LetVariableValue(s.component, 56, 0.0);
    return s;
  }

  // Keeps `shape` as the created shape, from which Finish works, and the path
  // collection PathComponents shows; returns the shape.
  Variant Keep(const Variant& shape, const Variant& pathComponents = Variant::Nothing()) {
    shape_ = shape;
    pathComponents_ = pathComponents;
    created_ = true;
    return shape;
  }

  static ClassBuilder<C>& DescribeUserName(ClassBuilder<C>& b) {
    return b.template Property<&PlacedBuilder::GetUserName, &PlacedBuilder::LetUserName>(
        "UserName",
        Doc{"The name the created shape receives; a new builder holds the localized default name."});
  }
  static ClassBuilder<C>& DescribePosition(ClassBuilder<C>& b) {
    return b.template PropertyRef<&PlacedBuilder::GetPosition, &PlacedBuilder::SetPosition>(
        "Position",
        Doc{"The builder's own TKPosition (the same object on every read). Assigning copies the given "
            "position's placement into it (InheritPosition); the caller's object is not kept."});
  }
  // The members every such builder's table ends with, in this order:
  // PathComponents (when the builder has a drawn profile), Part (when it
  // shows its shape), Finish and Create(Parent).
  static void DescribeClosing(ClassBuilder<C>& b, bool pathComponents, bool part) {
    if (pathComponents)
      b.template Get<&PlacedBuilder::GetPathComponents>(
          "PathComponents", Doc{"The path collection of the created shape's profile, into which the caller "
                                "draws; Nothing before Create."});
    if (part)
      b.template Get<&PlacedBuilder::GetPart>("Part", Doc{"The created shape; Nothing before Create."});
    b.template Method<&PlacedBuilder::Finish>("Finish",
                                              Doc{"Sets the created shape's remaining host variables and "
                                                  "regenerates it; before Create it makes no host call."});
    b.template Method<&C::Create>(
        "Create", Names{"Parent"},
        Doc{"Adds the feature's shape under Parent (a part is made first when Parent is an assembly), places "
            "it at Position, writes its name and sizes, and returns the new host shape. Host errors are "
            "raised as they come; changes already made stay."});
  }

 private:
  InstanceRegistration registration_;
  Variant shape_ = Variant::Nothing();
  bool created_ = false;
  Ref<Object> position_;
  Variant pathComponents_ = Variant::Nothing();
  std::string userName_;
};

}  // namespace TessarkAO
