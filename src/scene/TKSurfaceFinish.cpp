#include "scene/TKSurfaceFinish.hpp"

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Enumerations.hpp"
#include "host/HostAccess.hpp"

namespace TessarkAO {

namespace {

// The values a preset sets; every preset is metallic, Nylon included, as the
// tools that offer the list expect.
struct Preset {
  double emissionIntensity;
  double highlightIntensity;
  std::int32_t surfaceColor;
  double surfaceColorIntensity;
};

// The colours are the ones the presets have always had, whatever their names suggest.
constexpr Preset kPresets[] = {
    {0, 30, Rgb(255, 255, 255), 30},   // Aluminum
    {0, 90, Rgb(255, 154, 43), 80},    // Brass
    {10, 50, Rgb(206, 112, 6), 80},    // Bronze
    {0, 90, Rgb(226, 174, 18), 80},    // Copper
    {0, 90, Rgb(255, 217, 96), 80},    // Gold
    {0, 100, Rgb(255, 255, 255), 80},  // Nylon
};

Variant FinishOf(const Variant& shape) {
  return Host::FindComponent(shape, Host::ComponentType::SurfaceFinish, true).Get("SurfaceFinish");
}

}  // namespace

void TKSurfaceFinish::Describe(ClassBuilder<TKSurfaceFinish>& b) {
  using C = TKSurfaceFinish;
  b.Property<&C::GetAmbientIntensity, &C::LetAmbientIntensity>("AmbientIntensity",
                                                               Doc{"The ambient light intensity."})
      .Property<&C::GetEdgeTransparency, &C::LetEdgeTransparency>("EdgeTransparency",
                                                                  Doc{"The edge transparency."})
      .Property<&C::GetEdgeTransparencyOn, &C::LetEdgeTransparencyOn>("EdgeTransparencyOn",
                                                                      Doc{"Whether edge transparency is on."})
      .Property<&C::GetEmissionIntensity, &C::LetEmissionIntensity>("EmissionIntensity",
                                                                    Doc{"The emission intensity."})
      .Property<&C::GetHighlightColor, &C::LetHighlightColor>(
          "HighlightColor", Doc{"The highlight colour (RGB, red in the low byte)."})
      .Property<&C::GetHighlightIntensity, &C::LetHighlightIntensity>("HighlightIntensity",
                                                                      Doc{"The highlight intensity."})
      .Property<&C::GetHighlightShininess, &C::LetHighlightShininess>("HighlightShininess",
                                                                      Doc{"The highlight shininess."})
      .Property<&C::GetIndexOfRefraction, &C::LetIndexOfRefraction>("IndexOfRefraction",
                                                                    Doc{"The index of refraction."})
      .Property<&C::GetMetallic, &C::LetMetallic>("Metallic", Doc{"Whether the finish is metallic."})
      .Property<&C::GetSurfaceColor, &C::LetSurfaceColor>(
          "SurfaceColor", Doc{"The surface colour (RGB, red in the low byte)."})
      .Property<&C::GetSurfaceColorIntensity, &C::LetSurfaceColorIntensity>(
          "SurfaceColorIntensity", Doc{"The surface colour intensity."})
      .Property<&C::GetTransparency, &C::LetTransparency>("Transparency", Doc{"The transparency."})
      .Method<&C::AssignDefaults>("AssignDefaults", Doc{"Sets the default finish, then UpdateColor."})
      .Method<&C::AssignPreviewDefaults>(
          "AssignPreviewDefaults", Doc{"Sets the default finish with Transparency 50, then UpdateColor."})
      .Method<&C::AssignCustomFinish>("AssignCustomFinish", Names{"intFinish"},
                                      Doc{"Sets a TKSurfaceFinishes preset, then UpdateColor; any other "
                                          "value changes nothing and calls nothing."})
      .PropertyRef<&C::GetShape, &C::SetShape>(
          "Shape", Doc{"The shape whose surface-finish component (added when missing) UpdateColor writes."})
      .Method<&C::GetFinishFromShape>(
          "GetFinishFromShape", Names{"objShape"},
          Doc{"Reads the twelve values of objShape's finish; returns this object."})
      .Method<&C::UpdateColor>(
          "UpdateColor",
          Doc{"Writes the twelve values to the shape's finish, AmbientIntensity first, Transparency last."});
}

TKSurfaceFinish::TKSurfaceFinish() = default;

void TKSurfaceFinish::AssignDefaults() {
  v_ = Values{};
  UpdateColor();
}

void TKSurfaceFinish::AssignPreviewDefaults() {
  v_ = Values{};
  v_.transparency = 50;
  UpdateColor();
}

void TKSurfaceFinish::AssignCustomFinish(std::int16_t intFinish) {
  if (intFinish < 1 || intFinish > 6) return;
  const Preset& p = kPresets[intFinish - 1];
  v_.ambientIntensity = 100;
  v_.edgeTransparency = 0;
  v_.edgeTransparencyOn = false;
  v_.emissionIntensity = p.emissionIntensity;
  v_.highlightColor = Rgb(255, 255, 255);
  v_.highlightIntensity = p.highlightIntensity;
  v_.highlightShininess = 150;
  v_.indexOfRefraction = 1.5;
  v_.metallic = true;
  v_.surfaceColor = p.surfaceColor;
  v_.surfaceColorIntensity = p.surfaceColorIntensity;
  v_.transparency = 0;
  UpdateColor();
}

void TKSurfaceFinish::SetShape(Ref<Object> objShape) {
  shape_ = std::move(objShape);
  finish_ = FinishOf(Variant(shape_));
}

Ref<TKSurfaceFinish> TKSurfaceFinish::GetFinishFromShape(Ref<Object> objShape) {
  const Variant finish = FinishOf(Variant(std::move(objShape)));
  v_.ambientIntensity = ToDouble(finish.Get("AmbientIntensity"));
  v_.edgeTransparency = ToDouble(finish.Get("EdgeTransparency"));
  v_.edgeTransparencyOn = ToBoolean(finish.Get("EdgeTransparencyOn"));
  v_.emissionIntensity = ToDouble(finish.Get("EmissionIntensity"));
  v_.highlightColor = ToLong(finish.Get("HighlightsColor"));
  v_.highlightIntensity = ToDouble(finish.Get("HighlightsIntensity"));
  v_.highlightShininess = ToDouble(finish.Get("HighlightsShininess"));
  v_.indexOfRefraction = ToDouble(finish.Get("IndexOfRefraction"));
  v_.metallic = ToBoolean(finish.Get("Metallic"));
  v_.surfaceColor = ToLong(finish.Get("SurfaceColor"));
  v_.surfaceColorIntensity = ToDouble(finish.Get("SurfaceColorIntensity"));
  v_.transparency = ToDouble(finish.Get("Transparency"));
  return Ref<TKSurfaceFinish>(this);
}

void TKSurfaceFinish::UpdateColor() {
  finish_.Let("AmbientIntensity", v_.ambientIntensity);
  finish_.Let("EdgeTransparency", v_.edgeTransparency);
  finish_.Let("EdgeTransparencyOn", v_.edgeTransparencyOn);
  finish_.Let("EmissionIntensity", v_.emissionIntensity);
  finish_.Let("HighlightsColor", v_.highlightColor);
  finish_.Let("HighlightsIntensity", v_.highlightIntensity);
  finish_.Let("HighlightsShininess", v_.highlightShininess);
  finish_.Let("IndexOfRefraction", v_.indexOfRefraction);
  finish_.Let("Metallic", v_.metallic);
  finish_.Let("SurfaceColor", v_.surfaceColor);
  finish_.Let("SurfaceColorIntensity", v_.surfaceColorIntensity);
  finish_.Let("Transparency", v_.transparency);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSurfaceFinish)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKSurfaceFinishes, "TKSurfaceFinish", Aluminum, Brass, Bronze, Copper,
                        Gold, Nylon)
