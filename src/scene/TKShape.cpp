#include "scene/TKShape.hpp"

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "automation/Enumerations.hpp"
#include "geometry/TKMatrix4d.hpp"
#include "geometry/TKVector4d.hpp"
#include "host/HostAccess.hpp"
#include "scene/Functions.hpp"
#include "system/UnitUtils.hpp"
#include "system/Units.hpp"

namespace TessarkAO {

namespace {

// A UnitUtils whose Page is the shape's page: the placements convert through it.
Variant UnitsOfPage(const Variant& shape) {
  Variant units(New<UnitUtils>());
  units.Set("Page", shape.Get("Page"));
  return units;
}

double Convert(const Variant& units, double value, std::int32_t fromUnits, std::int32_t toUnits) {
  return ToDouble(units.Call("ConvertUnits", Variant::Nothing(), value, fromUnits, toUnits));
}

}  // namespace

void TKShape::Describe(ClassBuilder<TKShape>& b) {
  b.PropertyRef<&TKShape::GetShape, &TKShape::SetShape>(
       "Shape", Doc{"The host shape; assigning reads and keeps its BoundingBox and makes the next Parent and "
                    "History reads search anew."})
      .Get<&TKShape::SizeboxToParentTransform>(
          "SizeboxToParentTransform", Doc{"The size box's placement in the parent as a TKMatrix4d "
                                          "(translation in page length units); the identity with no shape."})
      .Get<&TKShape::Parent>("Parent",
                             Doc{"The parent shape, searched on the first read after Shape was set."})
      .Get<&TKShape::History>("History", Doc{"The child container (history or group component), looked up on "
                                             "the first read after Shape was set."})
      .Get<&TKShape::BoundingBox>("BoundingBox", Names{"lngIndex"},
                                  Doc{"Extent Index (TKBoundingBoxIndices): 1 to 6 the minima and maxima, 7 "
                                      "to 9 the sizes; 0 for any other index."})
      .Get<&TKShape::Position>(
          "Position", Doc{"The shape's TKPosition, refreshed from the host (anchor, then position)."})
      .Get<&TKShape::SurfaceFinish>("SurfaceFinish",
                                    Doc{"The shape's TKSurfaceFinish, refreshed from the host."})
      .Get<&TKShape::Component>("Component", Names{"lngComponent", "bCanBeCreated"}, Opt{Variant::Missing()},
                                Doc{"The shape's first component of a type; a missing one is added only when "
                                    "bCanBeCreated is True, else Nothing. Nothing with no shape."})
      .Get<&TKShape::PositionTransform>("PositionTransform",
                                        Doc{"The placement of the position component (4) as a TKMatrix4d."})
      .Get<&TKShape::AnchorTransform>("AnchorTransform",
                                      Doc{"The placement of the anchor component (5) as a TKMatrix4d."});
}

void TKShape::SetShape(Ref<Object> objShape) {
  shape_ = std::move(objShape);
  boundingBox_ = Variant(shape_).Get("BoundingBox");
  // The cached objects stay referenced until they are fetched again.
  parentFetched_ = false;
  historyFetched_ = false;
}

Ref<Object> TKShape::Parent() {
  if (!parentFetched_) {
    parent_ = ToObject(Functions::FindShapeParent(Variant(shape_)));
    parentFetched_ = true;
  }
  return parent_;
}

Ref<Object> TKShape::History() {
  if (!historyFetched_) {
    history_ = ToObject(Functions::FindChildContainer(Variant(shape_)));
    historyFetched_ = true;
  }
  return history_;
}

double TKShape::BoundingBox(std::int32_t lngIndex) {
  static constexpr const char* kMembers[] = {"MinX", "MinY", "MinZ", "MaxX", "MaxY", "MaxZ"};
  if (lngIndex >= 1 && lngIndex <= 6) return ToDouble(boundingBox_.Get(kMembers[lngIndex - 1]));
  if (lngIndex >= 7 && lngIndex <= 9) {
    const int axis = lngIndex - 7;
    const double max = ToDouble(boundingBox_.Get(kMembers[axis + 3]));
    const double min = ToDouble(boundingBox_.Get(kMembers[axis]));
    return Checked::Sub(max, min);
  }
  return 0;
}

Ref<TKPosition> TKShape::Position() {
  if (!position_) position_ = MakeRef<TKPosition>();
  position_->SetShape(shape_);
  position_->GetAnchorPosition();
  position_->GetShapePosition();
  return position_;
}

Ref<TKSurfaceFinish> TKShape::SurfaceFinish() {
  if (!finish_) finish_ = MakeRef<TKSurfaceFinish>();
  finish_->SetShape(shape_);
  finish_->GetFinishFromShape(shape_);
  return finish_;
}

Ref<Object> TKShape::Component(std::int32_t lngComponent, const Variant& bCanBeCreated) {
  if (!shape_) return Ref<Object>();
  const Variant shape(shape_);
  const Variant components = Host::Components(shape, lngComponent);
  if (Host::CountOf(components) > 0) return ToObject(components.Call("Item", std::int16_t{1}));
  if (!bCanBeCreated.IsMissing() && ToBoolean(bCanBeCreated)) return ToObject(components.Call("Add"));
  return Ref<Object>();
}

Ref<Object> TKShape::ComponentTransform(std::int32_t type) {
  const Ref<Object> matrix = New<TKMatrix4d>();
  const Variant component(Component(type, Variant(true)));
  if (component.IsNothing()) return matrix;
  const Variant units = UnitsOfPage(Variant(shape_));
  double v[7];
  for (std::int32_t n = 1; n <= 7; ++n) v[n - 1] = Host::VariableValue(component, n);
  // Only the angle is converted: the point stays in page length units.
  const double degrees = Convert(units, v[6], UNIT_PAGEANGLEUNITS, UNIT_DEGREES);
  const Variant point(New<TKVector4d>());
  point.Call("SetPosition", v[0], v[1], v[2]);
  const Variant axis(New<TKVector4d>());
  axis.Call("SetPosition", v[3], v[4], v[5]);
  Variant(matrix).Call("SetRotationFromPointAxisAndAngle", point, axis, degrees);
  return matrix;
}

Ref<Object> TKShape::PositionTransform() { return ComponentTransform(Host::ComponentType::Position); }

Ref<Object> TKShape::AnchorTransform() { return ComponentTransform(Host::ComponentType::Anchor); }

Ref<Object> TKShape::SizeboxToParentTransform() {
  const Ref<Object> matrix = New<TKMatrix4d>();
  if (!shape_) return matrix;
  const Variant shape(shape_);
  const Variant units = UnitsOfPage(shape);

  Variant values(SafeArray::Vector(VarType::Double, 0, 15));
  Variant args[] = {values};
  Host::CallByRef(shape, "GetLocalToParentXform", args);
  values = args[0];
  if (!values.IsArray()) Raise(Err::TypeMismatch);
  const SafeArray& x = values.AsArray();
  const std::int32_t base = x.LBound(1);
  auto element = [&](std::int32_t i) { return ToDouble(x.Get(base + i)); };

  // The host hands its 16 values column by column; the translation comes in
  // system length units and is shown in page length units.
  SafeArray m = SafeArray::Matrix(VarType::Double, 0, 3, 0, 3);
  for (std::int32_t r = 0; r < 4; ++r) {
    for (std::int32_t c = 0; c < 4; ++c) {
      double value = element(4 * c + r);
      if (c == 3 && r < 3) value = Convert(units, value, UNIT_SYSTEM_LENGTH_UNITS, UNIT_PAGEUNITS);
      m.Put(r, c, value);
    }
  }
  Variant matrixArray(std::move(m));
  Variant setArgs[] = {matrixArray};
  Host::CallByRef(Variant(matrix), "SetMatrix", setArgs);
  return matrix;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKShape)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKBoundingBoxIndices, "TKShape", TKMinX, TKMinY, TKMinZ, TKMaxX, TKMaxY,
                        TKMaxZ, TKLength, TKWidth, TKHeight)
