// TKPosition: where a host shape sits and how it is turned, and where its
// anchor sits.
//
// The fields are a copy of the host's position component (type 4: variables
// 1-3 position, 4-6 rotation axis, 7 angle, 9 mirror flag; 8 is never
// touched) and anchor component (type 5: variables 1-7 likewise).  They are
// read and written by variable number, converted between scene units (page
// length and angle units) and metric units (centimetres and radians), and
// carried up and down the scene through the host's point transforms.
//
// Host access finds a component by type and adds it when the shape has none.
// Nothing is trapped: a failing host call, a missing Shape or a missing page
// where a conversion needs page units raises to the caller.
#pragma once

#include <cstdint>
#include <string_view>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class TKPosition final : public Dispatch<TKPosition> {
 public:
  static constexpr std::string_view kClassName = "TKPosition";
  static void Describe(ClassBuilder<TKPosition>& b);

  // Fields (get and let).
  double GetPosX() const { return posX_; }
  void LetPosX(double v) { posX_ = v; }
  double GetPosY() const { return posY_; }
  void LetPosY(double v) { posY_ = v; }
  double GetPosZ() const { return posZ_; }
  void LetPosZ(double v) { posZ_ = v; }
  double GetRotX() const { return rotX_; }
  void LetRotX(double v) { rotX_ = v; }
  double GetRotY() const { return rotY_; }
  void LetRotY(double v) { rotY_ = v; }
  double GetRotZ() const { return rotZ_; }
  void LetRotZ(double v) { rotZ_ = v; }
  double GetRotAngle() const { return rotAngle_; }
  void LetRotAngle(double v) { rotAngle_ = v; }
  std::int32_t GetMirror() const { return mirror_; }
  void LetMirror(std::int32_t v) { mirror_ = v; }
  double GetAnchorPosX() const { return anchor_[0]; }
  void LetAnchorPosX(double v) { anchor_[0] = v; }
  double GetAnchorPosY() const { return anchor_[1]; }
  void LetAnchorPosY(double v) { anchor_[1] = v; }
  double GetAnchorPosZ() const { return anchor_[2]; }
  void LetAnchorPosZ(double v) { anchor_[2] = v; }
  double GetAnchorRotX() const { return anchor_[3]; }
  void LetAnchorRotX(double v) { anchor_[3] = v; }
  double GetAnchorRotY() const { return anchor_[4]; }
  void LetAnchorRotY(double v) { anchor_[4] = v; }
  double GetAnchorRotZ() const { return anchor_[5]; }
  void LetAnchorRotZ(double v) { anchor_[5] = v; }
  double GetAnchorRotAngle() const { return anchor_[6]; }
  void LetAnchorRotAngle(double v) { anchor_[6] = v; }

  // The page whose units the conversions use, and the host shape.
  Ref<Object> GetScene() const { return scene_; }
  void SetScene(Ref<Object> page) { scene_ = std::move(page); }
  Ref<Object> GetShape() const { return shape_; }
  void SetShape(Ref<Object> shape) { shape_ = std::move(shape); }

  // Reads position variables 1-7 and 9 (Mirror, as a Long) of Shape.
  void GetShapePosition();
  // Reads anchor variables 1-7 of Shape.
  void GetAnchorPosition();
  // Writes position variables 1-7 (Doubles) and 9 (a Long); no host update.
  void SetShapePosition();
  // Writes anchor variables 1-7.
  void SetAnchorPosition();
  // Copies the position fields and Mirror from another position's properties.
  void InheritPosition(Ref<TKPosition> cPosition);
  // Copies the seven anchor fields.
  void InheritAnchor(Ref<TKPosition> cPosition);
  // As GetShapePosition / GetAnchorPosition on another shape; Shape is kept.
  void GetPositionFromShape(Ref<Object> objShape);
  void GetAnchorFromShape(Ref<Object> objShape);
  // PosX-PosZ to centimetres and RotAngle to radians, once: False when no
  // Scene is set or the fields already hold metric units.
  bool ConvertUnitsFromSceneToMetric(Ref<Object> objPage);
  // The inverse; False when no Scene is set or the fields hold scene units.
  bool ConvertUnitsFromMetricToScene(Ref<Object> objPage);
  // Carries the position fields up to world coordinates (no unit conversion).
  void GetWorldPosition();
  // Carries world-coordinate position fields down into objParent's space.
  // The member name is spelled so: it is the published name.
  void GetPositionFromWoldToParent(Ref<Object> objParent);
  // GetPtTransformUp on the seven position fields.
  void TransformPositionUp(Ref<Object> objPage);
  // The host's GetPointTransformUp of Shape around a conversion to metric
  // units and back; does nothing when no Scene is set.
  void GetPtTransformUp(double& dblX, double& dblY, double& dblZ, double& dblRotX, double& dblRotY,
                        double& dblRotZ, double& dblRotAngle);
  // The same with the host's GetPointTransformDown towards objChild.
  void GetPtTransformDown(Ref<Object> objChild, double& dblX, double& dblY, double& dblZ, double& dblRotX,
                          double& dblRotY, double& dblRotZ, double& dblRotAngle);
  // The host's Rotate / Shift of Shape, then GetShapePosition.
  void Rotate(std::int32_t lngAxis, double dblAngle);
  void Shift(double dblX, double dblY, double dblZ, bool bUseParent);
  // The host's normal of Shape, unconverted.
  void GetNormal(double& dblX, double& dblY, double& dblZ);
  // Clears position fields by TKZeroParameters; other values change nothing.
  void Zero(std::int32_t Parameter);
  // Re-anchors Shape at the given fractions of its size box and moves the
  // shape by the anchor's displacement.
  void ResetAnchor(double dblLengthRatio, double dblWidthRatio, double dblHeightRatio, bool bNormalize,
                   Ref<Object> objPage);

 private:
  // Converts the four convertible fields; `toMetric` picks the direction.
  void ConvertFields(bool toMetric);
  void ReadPosition(const Variant& shape);
  void ReadAnchor(const Variant& shape);
  void TransformThroughHost(const Variant* child, double& x, double& y, double& z, double& rotX, double& rotY,
                            double& rotZ, double& rotAngle);
  Variant ShapeVariant() const { return Variant(shape_); }

  InstanceRegistration registration_;
  double posX_ = 0, posY_ = 0, posZ_ = 0;
  double rotX_ = 0, rotY_ = 0, rotZ_ = 0, rotAngle_ = 0;
  std::int32_t mirror_ = 0;
  double anchor_[7] = {};
  Ref<Object> shape_;
  Ref<Object> scene_;
  bool sceneUnits_ = true;  // the position fields hold scene units
};

}  // namespace TessarkAO
