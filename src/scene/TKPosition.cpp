#include "scene/TKPosition.hpp"

#include <vector>

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "automation/Enumerations.hpp"
#include "host/HostAccess.hpp"
#include "scene/HostWalk.hpp"
#include "scene/SceneUtils.hpp"
#include "system/Units.hpp"

namespace TessarkAO {

namespace {

using Host::ComponentType::Anchor;
using Host::ComponentType::Position;

constexpr std::int32_t kMirrorVariable = 9;

// The seven host numbers of a point transform, in the host's argument order.
struct Placement {
  Variant values[7];
  Placement(double x, double y, double z, double rx, double ry, double rz, double angle)
      : values{x, y, z, rx, ry, rz, angle} {}
  void Read(double& x, double& y, double& z, double& rx, double& ry, double& rz, double& angle) const {
    double* out[] = {&x, &y, &z, &rx, &ry, &rz, &angle};
    for (int i = 0; i < 7; ++i) *out[i] = ToDouble(values[i]);
  }
};

}  // namespace

void TKPosition::Describe(ClassBuilder<TKPosition>& b) {
  const Opt noPage{Variant::Nothing()};
  b.Property<&TKPosition::GetPosX, &TKPosition::LetPosX>(
       "PosX", Doc{"X of the position, in scene or metric units (see ConvertUnitsFromSceneToMetric)."})
      .Property<&TKPosition::GetPosY, &TKPosition::LetPosY>("PosY", Doc{"Y of the position."})
      .Property<&TKPosition::GetPosZ, &TKPosition::LetPosZ>("PosZ", Doc{"Z of the position."})
      .Property<&TKPosition::GetRotX, &TKPosition::LetRotX>("RotX", Doc{"X of the rotation axis."})
      .Property<&TKPosition::GetRotY, &TKPosition::LetRotY>("RotY", Doc{"Y of the rotation axis."})
      .Property<&TKPosition::GetRotZ, &TKPosition::LetRotZ>("RotZ", Doc{"Z of the rotation axis."})
      .Property<&TKPosition::GetRotAngle, &TKPosition::LetRotAngle>(
          "RotAngle", Doc{"The rotation angle, in scene angle units or radians."})
      .Property<&TKPosition::GetMirror, &TKPosition::LetMirror>("Mirror",
                                                                Doc{"Whether the shape is mirrored."})
      .Property<&TKPosition::GetAnchorPosX, &TKPosition::LetAnchorPosX>("AnchorPosX",
                                                                        Doc{"X of the anchor position."})
      .Property<&TKPosition::GetAnchorPosY, &TKPosition::LetAnchorPosY>("AnchorPosY",
                                                                        Doc{"Y of the anchor position."})
      .Property<&TKPosition::GetAnchorPosZ, &TKPosition::LetAnchorPosZ>("AnchorPosZ",
                                                                        Doc{"Z of the anchor position."})
      .Property<&TKPosition::GetAnchorRotX, &TKPosition::LetAnchorRotX>("AnchorRotX",
                                                                        Doc{"X of the anchor rotation axis."})
      .Property<&TKPosition::GetAnchorRotY, &TKPosition::LetAnchorRotY>("AnchorRotY",
                                                                        Doc{"Y of the anchor rotation axis."})
      .Property<&TKPosition::GetAnchorRotZ, &TKPosition::LetAnchorRotZ>("AnchorRotZ",
                                                                        Doc{"Z of the anchor rotation axis."})
      .Property<&TKPosition::GetAnchorRotAngle, &TKPosition::LetAnchorRotAngle>(
          "AnchorRotAngle", Doc{"The anchor rotation angle."})
      .PropertyRef<&TKPosition::GetScene, &TKPosition::SetScene>(
          "Scene", Doc{"The page whose units the conversions use."})
      .PropertyRef<&TKPosition::GetShape, &TKPosition::SetShape>(
          "Shape", Doc{"The host shape the Get/Set members read and write."})
      .Method<&TKPosition::GetShapePosition>(
          "GetShapePosition", Doc{"Reads position variables 1 to 7 and 9 (Mirror) of Shape into the fields."})
      .Method<&TKPosition::GetAnchorPosition>("GetAnchorPosition",
                                              Doc{"Reads anchor variables 1 to 7 of Shape into the fields."})
      .Method<&TKPosition::SetShapePosition>(
          "SetShapePosition",
          Doc{"Writes the position fields to variables 1 to 7 and 9 of Shape; no host update."})
      .Method<&TKPosition::SetAnchorPosition>(
          "SetAnchorPosition", Doc{"Writes the anchor fields to anchor variables 1 to 7 of Shape."})
      .Method<&TKPosition::InheritPosition>(
          "InheritPosition", Names{"cPosition"},
          Doc{"Copies the position fields and Mirror from another position's properties."})
      .Method<&TKPosition::InheritAnchor>("InheritAnchor", Names{"cPosition"},
                                          Doc{"Copies the seven anchor fields from another position."})
      .Method<&TKPosition::GetPositionFromShape>("GetPositionFromShape", Names{"objShape"},
                                                 Doc{"As GetShapePosition on another shape; Shape is kept."})
      .Method<&TKPosition::GetAnchorFromShape>("GetAnchorFromShape", Names{"objShape"},
                                               Doc{"As GetAnchorPosition on another shape; Shape is kept."})
      .Method<&TKPosition::ConvertUnitsFromSceneToMetric>(
          "ConvertUnitsFromSceneToMetric", Names{"objPage"}, noPage,
          Doc{"Converts PosX to PosZ to centimetres and RotAngle to radians, once; False when no Scene is "
              "set or the fields already hold metric units."})
      .Method<&TKPosition::ConvertUnitsFromMetricToScene>(
          "ConvertUnitsFromMetricToScene", Names{"objPage"}, noPage,
          Doc{"The inverse of ConvertUnitsFromSceneToMetric; False when no Scene is set or the fields hold "
              "scene units."})
      .Method<&TKPosition::GetWorldPosition>(
          "GetWorldPosition",
          Doc{"Carries the position fields up to world coordinates (no unit conversion)."})
      .Method<&TKPosition::GetPositionFromWoldToParent>(
          "GetPositionFromWoldToParent", Names{"objParent"},
          Doc{"Carries world-coordinate position fields down into objParent's space. The name's spelling is "
              "the published one."})
      .Method<&TKPosition::TransformPositionUp>("TransformPositionUp", Names{"objPage"}, noPage,
                                                Doc{"GetPtTransformUp applied to the seven position fields."})
      .Method<&TKPosition::GetPtTransformUp>(
          "GetPtTransformUp", Names{"dblX", "dblY", "dblZ", "dblRotX", "dblRotY", "dblRotZ", "dblRotAngle"},
          Opt{0.0, 0.0, 0.0, 0.0}, Out<1, 2, 3, 4, 5, 6, 7>{},
          Doc{"The host's GetPointTransformUp of Shape, around a conversion to metric units and back; does "
              "nothing when no Scene is set."})
      .Method<&TKPosition::GetPtTransformDown>(
          "GetPtTransformDown",
          Names{"objChild", "dblX", "dblY", "dblZ", "dblRotX", "dblRotY", "dblRotZ", "dblRotAngle"},
          Opt{0.0, 0.0, 0.0, 0.0}, Out<2, 3, 4, 5, 6, 7, 8>{},
          Doc{"The host's GetPointTransformDown of Shape towards objChild, around the unit conversion."})
      .Method<&TKPosition::Rotate>("Rotate", Names{"lngAxis", "dblAngle"},
                                   Doc{"The host's Rotate of Shape, then GetShapePosition."})
      .Method<&TKPosition::Shift>("Shift", Names{"dblX", "dblY", "dblZ", "bUseParent"}, Opt{false},
                                  Doc{"The host's Shift of Shape, then GetShapePosition."})
      .Method<&TKPosition::GetNormal>("GetNormal", Names{"dblX", "dblY", "dblZ"}, Out<1, 2, 3>{},
                                      Doc{"The host's normal of Shape, unconverted."})
      .Method<&TKPosition::Zero>("Zero", Names{"Parameter"},
                                 Doc{"Clears position fields by TKZeroParameters (position, rotation or "
                                     "all); other values change nothing."})
      .Method<&TKPosition::ResetAnchor>(
          "ResetAnchor", Names{"dblLengthRatio", "dblWidthRatio", "dblHeightRatio", "bNormalize", "objPage"},
          noPage,
          Doc{"Re-anchors Shape at the given fractions of its size box and moves the shape by the anchor's "
              "displacement."});
}

void TKPosition::ReadPosition(const Variant& shape) {
  const Variant component = Host::FindComponent(shape, Position, true);
  posX_ = Host::VariableValue(component, 1);
  posY_ = Host::VariableValue(component, 2);
  posZ_ = Host::VariableValue(component, 3);
  rotX_ = Host::VariableValue(component, 4);
  rotY_ = Host::VariableValue(component, 5);
  rotZ_ = Host::VariableValue(component, 6);
  rotAngle_ = Host::VariableValue(component, 7);
  mirror_ = ToLong(Host::VariableRaw(component, kMirrorVariable));
}

void TKPosition::ReadAnchor(const Variant& shape) {
  const Variant component = Host::FindComponent(shape, Anchor, true);
  for (std::int32_t n = 1; n <= 7; ++n) anchor_[n - 1] = Host::VariableValue(component, n);
}

void TKPosition::GetShapePosition() { ReadPosition(ShapeVariant()); }

void TKPosition::GetAnchorPosition() { ReadAnchor(ShapeVariant()); }

void TKPosition::SetShapePosition() {
  const Variant component = Host::FindComponent(ShapeVariant(), Position, true);
  const double values[] = {posX_, posY_, posZ_, rotX_, rotY_, rotZ_, rotAngle_};
  for (std::int32_t n = 1; n <= 7; ++n) Host::LetVariableValue(component, n, values[n - 1]);
  Host::LetVariableValue(component, kMirrorVariable, mirror_);
}

void TKPosition::SetAnchorPosition() {
  const Variant component = Host::FindComponent(ShapeVariant(), Anchor, true);
  for (std::int32_t n = 1; n <= 7; ++n) Host::LetVariableValue(component, n, anchor_[n - 1]);
}

void TKPosition::InheritPosition(Ref<TKPosition> cPosition) {
  if (!cPosition) Raise(Err::ObjectNotSet);
  posX_ = cPosition->GetPosX();
  posY_ = cPosition->GetPosY();
  posZ_ = cPosition->GetPosZ();
  rotX_ = cPosition->GetRotX();
  rotY_ = cPosition->GetRotY();
  rotZ_ = cPosition->GetRotZ();
  rotAngle_ = cPosition->GetRotAngle();
  mirror_ = cPosition->GetMirror();
}

void TKPosition::InheritAnchor(Ref<TKPosition> cPosition) {
  if (!cPosition) Raise(Err::ObjectNotSet);
  for (int i = 0; i < 7; ++i) anchor_[i] = cPosition->anchor_[i];
}

void TKPosition::GetPositionFromShape(Ref<Object> objShape) { ReadPosition(Variant(std::move(objShape))); }

void TKPosition::GetAnchorFromShape(Ref<Object> objShape) { ReadAnchor(Variant(std::move(objShape))); }

void TKPosition::ConvertFields(bool toMetric) {
  // Metric means centimetres and radians; scene units are the page's.
  const std::int32_t fromLength = toMetric ? UNIT_PAGEUNITS : UNIT_CENTIMETERS;
  const std::int32_t toLength = toMetric ? UNIT_CENTIMETERS : UNIT_PAGEUNITS;
  const std::int32_t fromAngle = toMetric ? UNIT_PAGEANGLEUNITS : UNIT_RADIANS;
  const std::int32_t toAngle = toMetric ? UNIT_RADIANS : UNIT_PAGEANGLEUNITS;
  posX_ = Units::ConvertValue(scene_, posX_, fromLength, toLength);
  posY_ = Units::ConvertValue(scene_, posY_, fromLength, toLength);
  posZ_ = Units::ConvertValue(scene_, posZ_, fromLength, toLength);
  rotAngle_ = Units::ConvertValue(scene_, rotAngle_, fromAngle, toAngle);
}

bool TKPosition::ConvertUnitsFromSceneToMetric(Ref<Object> objPage) {
  if (objPage) scene_ = std::move(objPage);
  if (!scene_ || !sceneUnits_) return false;
  ConvertFields(true);
  sceneUnits_ = false;
  return true;
}

bool TKPosition::ConvertUnitsFromMetricToScene(Ref<Object> objPage) {
  if (objPage) scene_ = std::move(objPage);
  if (!scene_ || sceneUnits_) return false;
  ConvertFields(false);
  sceneUnits_ = true;
  return true;
}

void TKPosition::GetWorldPosition() {
  // Walk up collecting the ancestors; the nameless top is not collected.
  std::vector<Variant> ancestors;
  Variant current = ShapeVariant();
  Scene::HostWalk walk;
  walk.Step(current);
  for (;;) {
    Variant parent = SceneUtils::ParentOf(current);
    walk.Step(parent);
    if (Host::NameOf(parent).empty()) break;
    ancestors.push_back(parent);
    current = std::move(parent);
  }
  for (const Variant& ancestor : ancestors) {
    Placement p(posX_, posY_, posZ_, rotX_, rotY_, rotZ_, rotAngle_);
    Host::CallByRef(ancestor, "GetPointTransformUp", p.values);
    p.Read(posX_, posY_, posZ_, rotX_, rotY_, rotZ_, rotAngle_);
  }
}

void TKPosition::GetPositionFromWoldToParent(Ref<Object> objParent) {
  // Walk up from the parent; unlike GetWorldPosition the nameless top is kept
  // in the chain, so the first transform down is made by the top itself.
  std::vector<Variant> chain{Variant(std::move(objParent))};
  Scene::HostWalk walk;
  walk.Step(chain.back());
  for (;;) {
    chain.push_back(SceneUtils::ParentOf(chain.back()));
    walk.Step(chain.back());
    if (Host::NameOf(chain.back()).empty()) break;
  }
  // From the top down: the last transform is made by objParent's parent
  // with objParent as the child.
  for (std::size_t outer = chain.size() - 1; outer >= 1; --outer) {
    Placement p(posX_, posY_, posZ_, rotX_, rotY_, rotZ_, rotAngle_);
    Variant args[8] = {chain[outer - 1]};
    for (int i = 0; i < 7; ++i) args[i + 1] = p.values[i];
    Host::CallByRef(chain[outer], "GetPointTransformDown", args);
    for (int i = 0; i < 7; ++i) p.values[i] = args[i + 1];
    p.Read(posX_, posY_, posZ_, rotX_, rotY_, rotZ_, rotAngle_);
  }
}

void TKPosition::TransformPositionUp(Ref<Object> objPage) {
  if (objPage) scene_ = std::move(objPage);
  double x = posX_, y = posY_, z = posZ_, rx = rotX_, ry = rotY_, rz = rotZ_, angle = rotAngle_;
  GetPtTransformUp(x, y, z, rx, ry, rz, angle);
  posX_ = x;
  posY_ = y;
  posZ_ = z;
  rotX_ = rx;
  rotY_ = ry;
  rotZ_ = rz;
  rotAngle_ = angle;
}

void TKPosition::TransformThroughHost(const Variant* child, double& x, double& y, double& z, double& rotX,
                                      double& rotY, double& rotZ, double& rotAngle) {
  if (!scene_) return;  // silently nothing without a Scene, as callers rely on
  x = Units::ConvertValue(scene_, x, UNIT_PAGEUNITS, UNIT_CENTIMETERS);
  y = Units::ConvertValue(scene_, y, UNIT_PAGEUNITS, UNIT_CENTIMETERS);
  z = Units::ConvertValue(scene_, z, UNIT_PAGEUNITS, UNIT_CENTIMETERS);
  rotAngle = Units::ConvertValue(scene_, rotAngle, UNIT_PAGEANGLEUNITS, UNIT_RADIANS);
  Placement p(x, y, z, rotX, rotY, rotZ, rotAngle);
  if (child) {
    Variant args[8] = {*child};
    for (int i = 0; i < 7; ++i) args[i + 1] = p.values[i];
    Host::CallByRef(ShapeVariant(), "GetPointTransformDown", args);
    for (int i = 0; i < 7; ++i) p.values[i] = args[i + 1];
  } else {
    Host::CallByRef(ShapeVariant(), "GetPointTransformUp", p.values);
  }
  p.Read(x, y, z, rotX, rotY, rotZ, rotAngle);
  x = Units::ConvertValue(scene_, x, UNIT_CENTIMETERS, UNIT_PAGEUNITS);
  y = Units::ConvertValue(scene_, y, UNIT_CENTIMETERS, UNIT_PAGEUNITS);
  z = Units::ConvertValue(scene_, z, UNIT_CENTIMETERS, UNIT_PAGEUNITS);
  rotAngle = Units::ConvertValue(scene_, rotAngle, UNIT_RADIANS, UNIT_PAGEANGLEUNITS);
}

void TKPosition::GetPtTransformUp(double& dblX, double& dblY, double& dblZ, double& dblRotX, double& dblRotY,
                                  double& dblRotZ, double& dblRotAngle) {
  TransformThroughHost(nullptr, dblX, dblY, dblZ, dblRotX, dblRotY, dblRotZ, dblRotAngle);
}

void TKPosition::GetPtTransformDown(Ref<Object> objChild, double& dblX, double& dblY, double& dblZ,
                                    double& dblRotX, double& dblRotY, double& dblRotZ, double& dblRotAngle) {
  const Variant child(std::move(objChild));
  TransformThroughHost(&child, dblX, dblY, dblZ, dblRotX, dblRotY, dblRotZ, dblRotAngle);
}

void TKPosition::Rotate(std::int32_t lngAxis, double dblAngle) {
  Variant args[] = {lngAxis, dblAngle};
  Host::CallByRef(ShapeVariant(), "Rotate", args);
  GetShapePosition();
}

void TKPosition::Shift(double dblX, double dblY, double dblZ, bool bUseParent) {
  Variant args[] = {dblX, dblY, dblZ, bUseParent};
  Host::CallByRef(ShapeVariant(), "Shift", args);
  GetShapePosition();
}

void TKPosition::GetNormal(double& dblX, double& dblY, double& dblZ) {
  Variant args[] = {dblX, dblY, dblZ};
  Host::CallByRef(ShapeVariant(), "GetNormal", args);
  dblX = ToDouble(args[0]);
  dblY = ToDouble(args[1]);
  dblZ = ToDouble(args[2]);
}

void TKPosition::Zero(std::int32_t Parameter) {
  switch (static_cast<TKZeroParameters>(Parameter)) {
    case TKZeroParameters::ZeroPosition: posX_ = posY_ = posZ_ = 0; break;
    case TKZeroParameters::ZeroRotation:
      // The axis becomes the zero vector too: callers set a new rotation next.
      rotX_ = rotY_ = rotZ_ = rotAngle_ = 0;
      break;
    case TKZeroParameters::ZeroAll:
      posX_ = posY_ = posZ_ = rotX_ = rotY_ = rotZ_ = rotAngle_ = 0;
      mirror_ = 0;
      break;
  }
}

void TKPosition::ResetAnchor(double dblLengthRatio, double dblWidthRatio, double dblHeightRatio,
                             bool bNormalize, Ref<Object> objPage) {
  const Variant shape = ShapeVariant();
  shape.Call("ResetSizeBox");
  if (bNormalize) shape.Call("RealignAnchor");
  if (objPage) scene_ = std::move(objPage);

  const Variant anchor = Host::FindComponent(shape, Anchor, true);
  // The position component is looked up as well (which may add one) but not
  // used further: shapes expect both components after a re-anchoring.
  Host::FindComponent(shape, Position, true);

  double before[3];
  for (std::int32_t n = 1; n <= 3; ++n) before[n - 1] = Host::VariableValue(anchor, n);
  // The ratios are written with the locale's number text, which is what the
  // host's expression parser reads.  The backslash is the host's separator.
  Host::LetVariableExpression(anchor, 1, "(Sizebox\\Length * " + FormatDouble(dblLengthRatio) + ")");
  Host::LetVariableExpression(anchor, 2, "(Sizebox\\Width * " + FormatDouble(dblWidthRatio) + ")");
  Host::LetVariableExpression(anchor, 3, "(Sizebox\\Height * " + FormatDouble(dblHeightRatio) + ")");
  double after[3];
  for (std::int32_t n = 1; n <= 3; ++n) after[n - 1] = Host::VariableValue(anchor, n);

  Variant shift[3];
  for (int i = 0; i < 3; ++i) {
    const double displacement = Checked::Sub(after[i], before[i]);
    shift[i] = Units::ConvertValue(scene_, displacement, UNIT_PAGEUNITS, UNIT_CENTIMETERS);
  }
  Host::CallByRef(shape, "Shift", shift);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKPosition)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKZeroParameters, "TKPosition", ZeroPosition, ZeroRotation, ZeroAll)
