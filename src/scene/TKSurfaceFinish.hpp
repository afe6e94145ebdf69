// TKSurfaceFinish: the rendering finish of a host shape as twelve plain
// properties, filled from presets, read from the shape's surface-finish
// component (type 7) and written back to it.
//
// Three properties are spelled `Highlight...` while the host members they
// carry are spelled `Highlights...`; both spellings are part of the published
// interfaces.  Colours are RGB Longs with red in the low byte.
#pragma once

#include <cstdint>
#include <string_view>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

// RGB(r, g, b) as a colour Long: red in the low byte.
constexpr std::int32_t Rgb(std::int32_t r, std::int32_t g, std::int32_t b) { return r + g * 256 + b * 65536; }

class TKSurfaceFinish final : public Dispatch<TKSurfaceFinish> {
 public:
  static constexpr std::string_view kClassName = "TKSurfaceFinish";
  static void Describe(ClassBuilder<TKSurfaceFinish>& b);

  TKSurfaceFinish();

  // The twelve finish values, in the order the host is written.
  struct Values {
    double ambientIntensity = 100;
    double edgeTransparency = 0;
    bool edgeTransparencyOn = false;
    double emissionIntensity = 0;
    std::int32_t highlightColor = Rgb(255, 255, 255);
    double highlightIntensity = 90;
    double highlightShininess = 150;
    double indexOfRefraction = 1.5;
    bool metallic = false;
    std::int32_t surfaceColor = Rgb(192, 192, 192);
    double surfaceColorIntensity = 80;
    double transparency = 0;
  };
  const Values& Current() const { return v_; }

  double GetAmbientIntensity() const { return v_.ambientIntensity; }
  void LetAmbientIntensity(double x) { v_.ambientIntensity = x; }
  double GetEdgeTransparency() const { return v_.edgeTransparency; }
  void LetEdgeTransparency(double x) { v_.edgeTransparency = x; }
  bool GetEdgeTransparencyOn() const { return v_.edgeTransparencyOn; }
  void LetEdgeTransparencyOn(bool x) { v_.edgeTransparencyOn = x; }
  double GetEmissionIntensity() const { return v_.emissionIntensity; }
  void LetEmissionIntensity(double x) { v_.emissionIntensity = x; }
  std::int32_t GetHighlightColor() const { return v_.highlightColor; }
  void LetHighlightColor(std::int32_t x) { v_.highlightColor = x; }
  double GetHighlightIntensity() const { return v_.highlightIntensity; }
  void LetHighlightIntensity(double x) { v_.highlightIntensity = x; }
  double GetHighlightShininess() const { return v_.highlightShininess; }
  void LetHighlightShininess(double x) { v_.highlightShininess = x; }
  double GetIndexOfRefraction() const { return v_.indexOfRefraction; }
  void LetIndexOfRefraction(double x) { v_.indexOfRefraction = x; }
  bool GetMetallic() const { return v_.metallic; }
  void LetMetallic(bool x) { v_.metallic = x; }
  std::int32_t GetSurfaceColor() const { return v_.surfaceColor; }
  void LetSurfaceColor(std::int32_t x) { v_.surfaceColor = x; }
  double GetSurfaceColorIntensity() const { return v_.surfaceColorIntensity; }
  void LetSurfaceColorIntensity(double x) { v_.surfaceColorIntensity = x; }
  double GetTransparency() const { return v_.transparency; }
  void LetTransparency(double x) { v_.transparency = x; }

  // The defaults, then UpdateColor.
  void AssignDefaults();
  // The defaults with Transparency 50, then UpdateColor.
  void AssignPreviewDefaults();
  // A TKSurfaceFinishes preset, then UpdateColor; any other value changes
  // nothing and calls nothing.
  void AssignCustomFinish(std::int16_t intFinish);
  // The shape whose surface-finish component (added when missing) is written.
  Ref<Object> GetShape() const { return shape_; }
  void SetShape(Ref<Object> objShape);
  // Reads the twelve host members of objShape's finish; returns this object.
  Ref<TKSurfaceFinish> GetFinishFromShape(Ref<Object> objShape);
  // Writes the twelve properties to the stored finish, AmbientIntensity
  // first, Transparency last; asks the host to regenerate nothing.
  void UpdateColor();

 private:
  InstanceRegistration registration_;
  Values v_;
  Ref<Object> shape_;
  Variant finish_ = Variant::Nothing();
};

}  // namespace TessarkAO
