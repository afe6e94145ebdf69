#include "system/SystemFont.hpp"

namespace TessarkAO {

void SystemFont::Describe(ClassBuilder<SystemFont>& b) {
  b.Property<&SystemFont::GetName, &SystemFont::LetName>("Name")
      .Default()
      .Property<&SystemFont::GetSize, &SystemFont::LetSize>("Size")
      .Property<&SystemFont::GetCharset, &SystemFont::LetCharset>("Charset")
      .Property<&SystemFont::GetWeight, &SystemFont::LetWeight>("Weight")
      .Property<&SystemFont::GetBold, &SystemFont::LetBold>("Bold")
      .Property<&SystemFont::GetItalic, &SystemFont::LetItalic>("Italic")
      .Property<&SystemFont::GetUnderline, &SystemFont::LetUnderline>("Underline")
      .Property<&SystemFont::GetStrikethrough, &SystemFont::LetStrikethrough>("Strikethrough");
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
