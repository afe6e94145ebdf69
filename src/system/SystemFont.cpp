#include "system/SystemFont.hpp"

namespace TessarkAO {

void SystemFont::Describe(ClassBuilder<SystemFont>& b) {
  b.Property<&SystemFont::GetName, &SystemFont::LetName>("Name", Doc{"The font's face name."})
      .Default()
      .Property<&SystemFont::GetSize, &SystemFont::LetSize>(
          "Size", Doc{"The size in points, kept to four decimals; 380 for a size that is not above 0."})
      .Property<&SystemFont::GetCharset, &SystemFont::LetCharset>("Charset", Doc{"The character set."})
      .Property<&SystemFont::GetWeight, &SystemFont::LetWeight>(
          "Weight", Doc{"0 to 1000 (400 regular, 700 bold); Bold follows the weight."})
      .Property<&SystemFont::GetBold, &SystemFont::LetBold>(
          "Bold", Doc{"Whether the font is bold (weight 700 or more)."})
      .Property<&SystemFont::GetItalic, &SystemFont::LetItalic>("Italic", Doc{"Whether the font is italic."})
      .Property<&SystemFont::GetUnderline, &SystemFont::LetUnderline>("Underline",
                                                                      Doc{"Whether the font is underlined."})
      .Property<&SystemFont::GetStrikethrough, &SystemFont::LetStrikethrough>(
          "Strikethrough", Doc{"Whether the font is struck through."});
}

void SystemFont::LetSize(Currency size) {
  if (size.scaled <= 0) Raise(Err::InvalidPropertyValue);
  size_ = size;
}

void SystemFont::LetWeight(std::int16_t weight) {
  if (weight < 0 || weight > 1000) Raise(Err::InvalidPropertyValue);
  weight_ = weight;
}

}  // namespace TessarkAO
